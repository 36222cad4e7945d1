"""Runs commands for whoever connects, each in a process of its own that ends when the connection does.

A request is the number of its bytes (4, little-endian), then the words, divided by zero bytes, one more and what is
for the standard input. The answer is the exit code (4, signed), the number of bytes of the output (4), those, and the
errors.
"""
import os
import select
import signal
import socket
import struct
import subprocess
import tempfile
import threading

PORT = 7000


def serve(connection):
    with connection, tempfile.TemporaryFile() as given, tempfile.TemporaryFile() as said, \
         tempfile.TemporaryFile() as errors:
        stream = connection.makefile("rb")
        size, = struct.unpack("<I", stream.read(4))
        words, _, text = stream.read(size).partition(b"\0\0")
        given.write(text)
        given.seek(0)
        try:
            process = subprocess.Popen(words.split(b"\0"), stdin=given, stdout=said, stderr=errors)
        except OSError as error:
            connection.sendall(struct.pack("<iI", 127, 0) + str(error).encode())
            return
        ended = os.pidfd_open(process.pid)
        waiting = select.poll()
        waiting.register(ended, select.POLLIN)
        waiting.register(connection, select.POLLIN)
        if any(number == connection.fileno() for number, _ in waiting.poll()):
            process.send_signal(signal.SIGKILL)
        os.close(ended)
        code = process.wait()
        said.seek(0)
        errors.seek(0)
        output = said.read()
        try:
            connection.sendall(struct.pack("<iI", code, len(output)) + output + errors.read())
        except OSError:
            pass


def main():
    listening = socket.create_server(("", PORT), backlog=64)
    with open("/dev/console", "w", encoding="ascii") as console:
        print("machine: ready", file=console)
    while True:
        connection, _ = listening.accept()
        threading.Thread(target=serve, args=(connection,), daemon=True).start()


main()
