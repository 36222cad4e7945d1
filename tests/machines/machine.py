#!/usr/bin/python3
"""Machines of their own: QEMU with Debian's kernel and a file system in memory that has the programs.

As a program, by a link with the name of one: runs kivadmin or kivreport on the machine that the root names, with the
files that are read or written here. Its end, by whatever, is the end of the other.
"""
import os
import pathlib
import re
import shutil
import signal
import socket
import struct
import subprocess
import sys
import time

PROGRAMS = ("kivadmin", "kivreport")
MEMORY = 320  # MiB
PORTS = 7000  # and the number of the machine
HERE = pathlib.Path(__file__).resolve().parent
# The clients, the server, the network, and what cifs asks of the kernel's cryptography without naming it.
MODULES = ("virtio_pci virtio_net virtio_blk cifs nfsv4 nfsd cmac ccm gcm ctr ghash_generic aes_generic sha512_generic"
           " md4 ecb hmac").split()


def lay_system(folder, programs, kernel):
    """All that a machine needs, as the kernel unpacks it at its start: the path of kernel and file."""
    system = folder / "system"
    for name in ("bin", "dev", "etc", "proc", "sys", "tmp", "mnt", "var/lib/nfs/v4recovery"):
        (system / name).mkdir(parents=True)
    shutil.copy("/bin/busybox", system / "bin/busybox")
    for name in ("init", "agent.py"):
        shutil.copy(HERE / "guest" / name, system)
    (system / "init").chmod(0o755)
    (system / "etc/passwd").write_text("root:x:0:0::/:/bin/sh\n")
    (system / "etc/group").write_text("root:x:0:\n")
    copy_python(system)
    for name in PROGRAMS:
        copy_program(system, programs / name, "bin")
    copy_character_sets(system)
    copy_modules(system, kernel)
    packed = folder / "system.cpio"
    with open(packed, "wb") as file:
        names = "\n".join(str(path.relative_to(system)) for path in sorted(system.rglob("*")))
        subprocess.run(["busybox", "cpio", "-o", "-H", "newc"], cwd=system, input=names.encode(), stdout=file,
                       check=True, stderr=subprocess.DEVNULL)
    shutil.rmtree(system)
    return next((kernel / "boot").glob("vmlinuz-*")), packed


def copy_program(system, path, place):
    """With the libraries that it is linked with."""
    linked = subprocess.run(["ldd", path], text=True, check=True, capture_output=True).stdout
    for source in re.findall(r"(/\S+) \(0x", linked):
        copy_to_same_place(system, source)
    (system / place).mkdir(parents=True, exist_ok=True)
    shutil.copy(path, system / place)


def copy_to_same_place(system, source):
    target = system / str(source)[1:]
    target.parent.mkdir(parents=True, exist_ok=True)
    shutil.copy(source, target)


def copy_python(system):
    listed = subprocess.run(["dpkg", "-L", "libpython3.11-minimal"], text=True, check=True, capture_output=True).stdout
    for name in re.findall(r"^/usr/lib/python.*\.py$", listed, re.MULTILINE):
        copy_to_same_place(system, name)
    copy_program(system, pathlib.Path("/usr/bin/python3.11"), "usr/bin")


def copy_character_sets(system):
    for path in pathlib.Path("/usr/lib/x86_64-linux-gnu/gconv").glob("*"):
        if path.name.startswith(("gconv-modules", "CP125")) and path.is_file():
            copy_to_same_place(system, path)


def copy_modules(system, kernel):
    """Those that are named, and what they need."""
    folder = next((kernel / "lib/modules").iterdir())
    subprocess.run(["busybox", "depmod", "-b", kernel, folder.name], check=True)
    needs = dict(line.split(":") for line in (folder / "modules.dep").read_text().splitlines())
    paths = {pathlib.Path(path).stem.replace("-", "_"): path for path in needs}
    wanted = [name for name in MODULES if name in paths]  # else it is part of the kernel
    target = system / "lib/modules" / folder.name
    for path in {path for name in wanted for path in [paths[name], *needs[paths[name]].split()]}:
        (target / path).parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(folder / path, target / path)
    shutil.copy(folder / "modules.dep", target)
    (system / "modules").write_text("".join(f"{name}\n" for name in wanted))


class Machine:
    """One that runs until it is ended."""

    def __init__(self, system, number, disk=None):
        kernel, files = system
        self.number, self.name = number, f"station{number}"
        self.console = files.parent / f"{self.name}.log"
        served = ",hostfwd=tcp:127.0.0.1:2049-:2049" if disk else ""
        self.process = subprocess.Popen(
            ["qemu-system-x86_64", "-accel", "tcg", "-m", str(MEMORY), "-nodefaults", "-display", "none", "-no-reboot",
             "-kernel", kernel, "-initrd", files, "-append", f"console=ttyS0 quiet panic=-1 machine={self.name}",
             "-serial", f"file:{self.console}", "-device", "virtio-net-pci,netdev=net",
             "-netdev", f"user,id=net,hostfwd=tcp:127.0.0.1:{PORTS + number}-:7000{served}",
             *(["-drive", f"file={disk},format=raw,if=virtio"] if disk else [])], stdin=subprocess.DEVNULL)

    def await_start(self):
        end = time.monotonic() + 180
        while "machine: ready" not in self.log():
            assert self.process.poll() is None and time.monotonic() < end, f"{self.name} does not start:\n{self.log()}"
            time.sleep(0.1)

    def log(self):
        return self.console.read_text(errors="replace") if self.console.exists() else ""

    def run(self, *words):
        """Its exit code, output and errors."""
        return run_at(self.number, words)

    def done(self, *words):
        code, output, errors = self.run(*words)
        assert code == 0, f"{self.name}: {words}: [{code}] {output}{errors}"
        return output

    def shell(self, text):
        return self.done("/bin/sh", "-ec", text)

    def end(self):
        self.process.kill()
        self.process.wait()


def run_at(number, words, text=b""):
    with socket.create_connection(("127.0.0.1", PORTS + number)) as connection:
        request = b"\0".join(os.fsencode(str(word)) for word in words) + b"\0\0" + text
        connection.sendall(struct.pack("<I", len(request)) + request)
        stream = connection.makefile("rb")
        code, size = struct.unpack("<iI", stream.read(8))
        output = stream.read(size)
        return code, output.decode(errors="replace"), stream.read().decode(errors="replace")


def run_here(name, words):
    """As the owner of the root, in place of this process."""
    facts = os.stat(next(word for word in words if word.startswith("/") and os.path.isdir(word)))
    if words[0] == "import":
        os.dup2(os.open(words[-1], os.O_RDONLY), 0)
        words[-1] = "-"
    elif words[:2] == ["options", "export"]:
        os.dup2(os.open(words[-1], os.O_WRONLY | os.O_CREAT, 0o600), 1)
        words[-1] = "-"
    os.setgroups([])
    os.setgid(facts.st_gid)
    os.setuid(facts.st_uid)
    os.execv(os.path.join(os.environ["PROGRAMS"], name), [name, *words])


def stand_in(name, words):
    """A root /station1/... is on the machine of that number; any other is here."""
    found = [match for match in map(re.compile(r"/station(\d)/").match, words) if match]
    if not found:
        run_here(name, words)
    number, text, target = int(found[0][1]), b"", None
    if words[0] == "import":
        text, words[-1] = pathlib.Path(words[-1]).read_bytes(), "-"
    elif words[:2] == ["options", "export"]:
        target, words[-1] = words[-1], "-"
    code, output, errors = run_at(number, ["/bin/" + name, *words], text)
    if target is not None and code == 0:
        pathlib.Path(target).write_text(output, encoding="utf-8")
        output = ""
    sys.stdout.write(output)
    sys.stderr.write(errors)
    sys.stdout.flush()
    if code < 0:
        os.kill(os.getpid(), -code)
    return code


if __name__ == "__main__":
    signal.signal(signal.SIGINT, signal.SIG_DFL)
    sys.exit(stand_in(pathlib.Path(sys.argv[0]).name, sys.argv[1:]))
