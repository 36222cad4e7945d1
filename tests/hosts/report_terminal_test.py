#!/usr/bin/env python3
"""kivreport at a terminal: its table fits the columns that there are, whatever names stand in it, and
draws only what the locale shows. In a pipe nothing is cut.

    report_terminal_test.py BIN
"""
import fcntl
import os
import pathlib
import pty
import struct
import subprocess
import sys
import tempfile
import termios
import unicodedata

BIN = pathlib.Path(sys.argv[1]).resolve()
UTF8 = "C.UTF-8"
NAMES = ["Al", "Alexandra Fairweather-Montgomery of the Hill", "山田花子" * 3, "Zoe\u0301" * 9,
         "\u0e01\u0e33" * 12, "x" * 51, "yQQQz"]
STRETCHED = NAMES[1]


def cells(text):
    """Columns of a terminal."""
    return sum(0 if unicodedata.category(c) in ("Mn", "Me", "Cf") else
               2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in text)


def kivadmin(*words):
    subprocess.run([BIN / "kivadmin", *words, "--charset", "utf-8"], check=True,
                   stdout=subprocess.DEVNULL, stdin=subprocess.DEVNULL)


def shown(columns, locale, *words, no_color="1"):
    """What a terminal of so many columns is given."""
    pid, side = pty.fork()
    if pid == 0:
        size = struct.pack("HHHH", 24, columns, 0, 0)
        fcntl.ioctl(0, termios.TIOCSWINSZ, size)
        environment = {**os.environ, "LC_ALL": locale, "NO_COLOR": no_color}
        os.execve(BIN / "kivreport", ["kivreport", *words, "--charset", "utf-8"], environment)
    data = b""
    try:
        while block := os.read(side, 65536):
            data += block
    except OSError:
        pass
    os.waitpid(pid, 0)
    return data.decode().replace("\r\n", "\n")


def turn(root):
    """Puts a character that turns the direction of writing into the name that has room for it."""
    for path in pathlib.Path(root).rglob("*.kiv"):
        path.write_bytes(path.read_bytes().replace(b"QQQ", "\u202e".encode()))


def need(isTrue, what, text):
    if not isTrue:
        sys.exit(f"{what}:\n{text}")


def look(root, columns, locale):
    text = shown(columns, locale, root)
    lines = text.split("\n")
    rows = [line for line in lines if line.startswith("  ") and line[2] != " "][1:]
    need(len(rows) == len(NAMES), f"{len(NAMES)} students at {columns} columns", text)
    for line in lines:
        need(cells(line) <= columns, f"{columns} columns hold {line!r}", text)
        need("\u202e" not in line, "no character turns the line", text)
    # The level stands in one place, behind names of any width.
    ends = {cells(row[:row.rindex("not begun")]) for row in rows}
    need(len(ends) == 1, "the columns are lined up", text)
    return text


def main():
    with tempfile.TemporaryDirectory() as folder:
        root = os.path.join(folder, "school")
        kivadmin("init", root, "--kind", "local")
        kivadmin("add", "class", root, "Klasse 7")
        for name in NAMES:
            kivadmin("add", "student", root, name, "", "--class", "Klasse 7")
        turn(root)
        for columns in (80, 100, 200):
            text = look(root, columns, UTF8)
            need("░" in text, "a bar for the missions", text)
            need((STRETCHED in text) == (columns > 80), f"what fits is not cut at {columns}", text)
        need("…" in look(root, 80, UTF8), "what is cut is told", "")
        text = look(root, 80, "C")
        need(text.isascii() or "░" not in text and "…" not in text, "only names are no ASCII", text)
        need("~" in text, "what is cut is told", text)
        sheet = shown(80, UTF8, root, "--student", "Al")
        need("▶" in sheet and max(map(cells, sheet.split("\n"))) <= 80, "a sheet", sheet)
        piped = subprocess.run([BIN / "kivreport", root, "--charset", "utf-8", "--output", "/dev/stdout"],
                               check=True, stdout=subprocess.PIPE).stdout.decode()
        need(STRETCHED in piped and "░" not in piped, "a pipe gets it whole", piped)
        same = subprocess.run([BIN / "kivreport", root, "--charset", "utf-8", "--width", "80"],
                              check=True, env={**os.environ, "LC_ALL": UTF8},
                              stdout=subprocess.PIPE).stdout.decode()
        need(same == shown(80, UTF8, root), "--width shows what a terminal does", same)
        coloured = shown(80, UTF8, root, no_color="")
        need("\x1b[31mnot begun\x1b[0m" in coloured, "who has not begun is red", coloured)


if __name__ == "__main__":
    main()
