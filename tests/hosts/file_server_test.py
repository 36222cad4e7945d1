"""kivadmin on the disk of a file server that asks for no locks and meets none, as smbd does.

    file_server_test.py BIN

The file server is this script: it opens files, tries again while that "would block", and looks
after its own clients alone. No more is needed to stand for it: what counts is who has a file open.
"""
import contextlib
import fcntl
import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest

SEED = random.randrange(10000)
CHANGES = 100  # of each kivadmin in the random run


class Server:
    """A file that a client of the file server has open."""

    def __init__(self, path, how=os.O_RDWR):
        end = time.monotonic() + 60
        while True:
            try:
                self.file = os.open(path, how | os.O_NONBLOCK)
                return
            except BlockingIOError:
                if time.monotonic() > end:
                    raise
                time.sleep(0.005)

    def lease(self, kind):
        fcntl.fcntl(self.file, fcntl.F_SETSIG, signal.SIGURG)
        fcntl.fcntl(self.file, fcntl.F_SETLEASE, kind)
        return self

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.file)


class BesideAFileServer(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        with self.need("leases"), open(self.folder / "file", "w", encoding="ascii") as file:
            fcntl.fcntl(file, fcntl.F_SETLEASE, fcntl.F_WRLCK)
        self.root = self.folder / "store"
        for words in (["init"], ["add", "teacher", "Hill"], ["add", "class", "Room"],
                      ["add", "class", "Other"], ["add", "student", "Ann", "Lee", "--class=Room"]):
            self.done(*words)
        self.room = self.root / "Classes.zep/Hill/Classes.zep/Room"
        self.students = self.room / "Students"

    @contextlib.contextmanager
    def need(self, what):
        try:
            yield
        except OSError as error:
            self.skipTest(f"no {what} here: {error}")

    def kivadmin(self, *words, **how):
        names = 2 if words[0] in ("add", "delete", "move") else 1
        line = [BIN / "kivadmin", *words[:names], self.root, *words[names:]]
        return subprocess.run(line, text=True, check=False, timeout=120, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, **how)

    def done(self, *words):
        result = self.kivadmin(*words)
        self.assertEqual((result.returncode, result.stderr), (0, ""), words)
        return result.stdout

    def contents(self):
        """What is below the root, with its bytes. Nothing may be held alone."""
        return {path: path.is_file() and path.read_bytes() for path in self.root.rglob("*")}

    def refused(self, path, *words):
        """Nothing is changed, and the message names what is in use."""
        before = self.contents()
        result = self.kivadmin(*words)
        self.assertEqual((result.returncode, result.stdout), (1, ""), (words, result.stderr))
        self.assertIn(str(path), result.stderr)
        self.assertRegex(result.stderr, "by someone else")
        self.assertEqual(self.contents(), before)

    def test_what_a_client_has_open_is_in_use(self):
        game = self.students / "AnnLee/autogame.zep"
        self.done("progress", "--class=Room", "--student=Ann Lee", "--mission=2")
        for path, how, commands in (
                (self.students / "index.lok", os.O_RDWR,
                 [["add", "student", "Ben", "--class=Room"]]),
                (self.students / "AnnLee/index.lok", os.O_RDWR,
                 [["progress", "--class=Room", "--student=Ann Lee", "--mission=3"],
                  ["delete", "class", "Room", "--yes"]]),
                (game, os.O_WRONLY,
                 [["delete", "student", "Ann Lee", "--class=Room", "--yes"],
                  ["move", "student", "Ann Lee", "--class=Room", "--to-class=Other"]])):
            with Server(path, how):
                for words in commands:
                    self.refused(path, *words)
        self.done("move", "student", "Ann Lee", "--class=Room", "--to-class=Other")

    def test_what_a_client_has_leased_is_in_use(self):
        """By a server that passes its clients' leases on to the kernel."""
        lock = self.students / "AnnLee/index.lok"
        with Server(lock) as server:
            server.lease(fcntl.F_WRLCK)
            result = self.kivadmin("delete", "student", "Ann Lee", "--class=Room", "--yes")
            self.assertEqual((result.returncode, result.stdout), (1, ""))
            self.assertIn(f"{lock} is in use by someone else", result.stderr)
        self.assertIn("Ann,Lee", self.done("export"))

    @contextlib.contextmanager
    def held(self, path, how):
        """By a program of ours."""
        flag = self.folder / "held"
        with subprocess.Popen([BIN / "hold_file", path, how, flag]) as program:
            while not flag.exists() and program.poll() is None:
                time.sleep(0.005)
            try:
                yield program
            finally:
                flag.unlink(missing_ok=True)
        self.assertEqual(program.returncode, 0, "being asked for the file ended its holder")

    def test_what_we_have_alone_the_server_waits_for(self):
        lock = self.students / "index.lok"
        for how, asked, opens in (("w", os.O_RDWR, False), ("w", os.O_RDONLY, False),
                                  ("r", os.O_RDONLY, True), ("r", os.O_RDWR, True)):
            with self.subTest(how=how, asked=asked), self.held(lock, how):
                if opens:
                    os.close(os.open(lock, asked | os.O_NONBLOCK))
                else:
                    with self.assertRaises(BlockingIOError):
                        os.open(lock, asked | os.O_NONBLOCK)
            with Server(lock, asked):
                pass

    def test_nobody_writes_what_a_client_reads_behind_its_lock(self):
        """Beside two programs that change a list a client takes its lock at random: the list stands
        still meanwhile, and no change is lost."""
        print("seed", SEED)
        chance, over, moved = random.Random(SEED), threading.Event(), []
        rounds = 0

        def client():
            nonlocal rounds
            while not over.is_set():
                with Server(self.students / "index.lok"):
                    before = (self.students / "index.kiv").read_bytes()
                    time.sleep(chance.random() * 0.006)
                    if (self.students / "index.kiv").read_bytes() != before:
                        moved.append(before)
                rounds += 1
                time.sleep(chance.random() * 0.05)

        def program(name):
            for number in range(CHANGES):
                words = ["add", "student", f"{name}{number}", "--class=Room"]
                while (result := self.kivadmin(*words)).returncode == 1:
                    self.assertIn("by someone else", result.stderr)
                self.assertEqual((result.returncode, result.stderr), (0, ""))

        threads = [threading.Thread(target=program, args=name) for name in "AB"]
        server = threading.Thread(target=client)
        for thread in [server, *threads]:
            thread.start()
        for thread in threads:
            thread.join()
        over.set()
        server.join()
        self.assertEqual(moved, [], "written under the client's lock")
        self.assertGreater(rounds, 5)
        for name in "AB":
            for number in range(CHANGES):
                self.assertTrue((self.students / f"{name}{number}").is_dir(), (name, number))
        self.assertEqual(len(self.done("export").splitlines()), 3 + 2 * CHANGES)

    def test_who_cannot_have_a_lease_goes_on_with_the_lock(self):
        """As a user who does not own the files."""
        if os.geteuid() != 0:
            self.skipTest("needs another user to become")
        for path in [self.folder, self.root, *self.root.rglob("*")]:
            path.chmod(0o777)
        other = {"user": 65534, "group": 65534, "extra_groups": []}
        try:
            result = self.kivadmin("check", **other)
        except PermissionError:
            self.skipTest("the program is not open to another user")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertRegex(result.stdout, f"^note: {self.root}: no write leases can be had here: the "
                         "lock files belong to another user.*\nthe store is in order\n$")
        with Server(self.students / "index.lok"):
            result = self.kivadmin("add", "student", "Ben", "--class=Room", **other)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
        with self.held(self.students / "index.lok", "w"):
            result = self.kivadmin("add", "student", "Cay", "--class=Room", **other)
            self.assertEqual(result.returncode, 1)

    def test_marks_of_the_server_are_honoured(self):
        def mark(path, value):
            os.setxattr(path, "user.DOSATTRIB", value)

        with self.need("extended attributes"):
            mark(self.students, b"0x10\0")
        self.done("add", "class", "Plain")
        mark(self.room.parent, b"0x10\0")
        self.done("add", "class", "New")
        self.done("add", "student", "Ben", "Ng", "--class=Room")
        for path, marks in ((self.students / "BenNg", 1), (self.room.parent / "New/Students", 1),
                            (self.room.parent / "Plain", 0)):
            self.assertEqual(len(os.listxattr(path)), marks, path)
        self.done("progress", "--class=Room", "--student=Ben Ng", "--mission=2")
        options = self.students / "BenNg/options.kiv"
        mark(options, b"0x21\0")
        before = options.read_bytes()
        result = self.kivadmin("progress", "--class=Room", "--student=Ben Ng", "--mission=3")
        self.assertNotEqual(result.returncode, 0)
        self.assertEqual(options.read_bytes(), before)


if __name__ == "__main__":
    BIN = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()
