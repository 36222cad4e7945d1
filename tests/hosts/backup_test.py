"""Backups of a store that is worked in, backups that are no good, and deaths on the way.

    backup_test.py BIN [NAME ...]
"""
import json
import os
import pathlib
import random
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import warnings
import zipfile
import zlib

SEED = random.randrange(10000)
MANIFEST = "kivstore-backup.json"
ROSTER = "teacher,class,first_name,last_name\n" + "".join(
    f"Ms Hill,{group},{name},Lee\n" for group in ("5a", "5b") for name in ("Ann", "Ben", "Cay", "Dan", "Eve", "Fay"))


class Backups(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        """A school and a backup of it; each test has its own copy of both."""
        cls.model = pathlib.Path(tempfile.mkdtemp())
        cls.addClassCleanup(shutil.rmtree, cls.model)
        (cls.model / "roster.csv").write_text(ROSTER)
        for line in ("init store", "import store roster.csv", "add student store Gil --class 5a",
                     "progress store --class 5a --student 'Ann Lee' --mission 7",
                     "delete student store Gil --class 5a --yes", "backup store good.zip"):
            subprocess.run(f"'{BIN}/kivadmin' {line}", shell=True, check=True, cwd=cls.model,
                           stdout=subprocess.DEVNULL)

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        shutil.copytree(self.model, self.folder, dirs_exist_ok=True)
        self.root = self.folder / "store"
        self.list = self.root / "Classes.zep/MsHill/Classes.zep"
        self.good = self.folder / "good.zip"

    def kivadmin(self, *words, **how):
        return subprocess.run([BIN / "kivadmin", *words], text=True, check=False, timeout=120,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, cwd=self.folder, **how)

    def start(self, *words):
        return subprocess.Popen([BIN / "kivadmin", *words], cwd=self.folder,
                                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL)

    def deaths(self, *words):
        """Starts it again and again and kills it on its way; tells of each whether it died."""
        start = time.monotonic()
        self.kivadmin("about")
        longest = 0.01 + time.monotonic() - start
        drawn, died = random.Random(SEED), 0
        for _ in range(60):
            with self.start(*words) as program:
                begun = time.monotonic()
                try:
                    program.wait(drawn.random() * longest)
                except subprocess.TimeoutExpired:
                    program.kill()
            longest = max(longest, time.monotonic() - begun) if program.returncode == 0 else longest * 1.1
            died += program.returncode != 0
            yield program.returncode != 0
            if died == 12:
                return
        self.assertGreater(died, 2, SEED)

    def done(self, *words):
        result = self.kivadmin(*words)
        self.assertEqual((result.returncode, result.stderr), (0, ""), words)
        return result.stdout

    def refused(self, code, text, *words, **how):
        """In one clear line."""
        result = self.kivadmin(*words, **how)
        self.assertEqual((result.returncode, result.stdout), (code, ""), (words, result.stderr))
        self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
        self.assertRegex(result.stderr, text)

    def files(self):
        return sorted(path.name for path in self.folder.iterdir())

    @staticmethod
    def contents(root):
        """Names and bytes, without the log, which tells of the restore too."""
        return {str(path.relative_to(root)): path.read_bytes() if path.is_file() else None
                for path in root.rglob("*") if path.name not in ("kivadmin.log", "kivadmin.lok")}

    def repacked(self, change=lambda entries: None, fix=True, **how):
        """The good backup with `change` made to its entries; `fix` lets the manifest know of it."""
        with zipfile.ZipFile(self.good) as file:
            entries = [[info.filename, file.read(info)] for info in file.infolist()]
        change(entries)
        checksum = 0
        for name, data in entries:
            if name != MANIFEST:
                checksum = zlib.crc32(f"{name}\0{len(data)} {zlib.crc32(data)}\n".encode(), checksum)
        path = self.folder / "bad.zip"
        with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as file:
            for name, data in entries:
                if name == MANIFEST and fix:
                    data = json.dumps({**json.loads(data), "checksum": checksum})
                info = zipfile.ZipInfo(name)
                info.compress_type = how.get("method", zipfile.ZIP_DEFLATED)
                file.writestr(info, data)
        return path

    def nothing_comes_of(self, path, text=r"kivadmin: \S"):
        before = self.contents(self.root)
        student = ("--class=5a", "--student=Ann Lee", "--replace")
        for words in (("new",), ("new", "--dry-run"), ("store", *student)):
            result = self.kivadmin("restore", str(path), *words)
            self.assertIn(result.returncode, (1, 2, 3), (words, result))
            self.assertEqual((result.stdout, result.stderr.count("\n")), ("", 1), result)
            self.assertRegex(result.stderr, text)
            self.assertFalse((self.folder / "new").exists(), words)
        self.assertEqual(self.contents(self.root), before)

    def test_what_is_restored_is_what_was_there(self):
        self.done("restore", "good.zip", "new")
        self.assertEqual(self.contents(self.folder / "new"), self.contents(self.root))
        self.done("check", "new")

    def test_another_program_reads_it(self):
        with zipfile.ZipFile(self.good) as file:
            self.assertIsNone(file.testzip())
            manifest = json.loads(file.read(MANIFEST))
            names = [name for name in file.namelist() if not name.endswith("/")]
            locks = {len(file.read(name)) for name in names if name.endswith(".lok")}
            self.assertTrue(all(info.flag_bits & 0x800 for info in file.infolist()))
            self.assertLess(abs(time.mktime(time.localtime()) - time.mktime(
                (*file.infolist()[0].date_time, 0, 0, -1))), 24 * 60 * 60)
        self.assertEqual((manifest["classes"], manifest["students"], manifest["files"]),
                         (2, 12, len(names) - 1))
        self.assertEqual(locks, {0})

    def test_a_torn_backup_is_none(self):
        whole = self.good.read_bytes()
        torn = self.folder / "bad.zip"
        lengths = sorted({0, 1, 3, 4, 21, 22, len(whole) - 22, len(whole) - 13,
                          *random.Random(SEED).sample(range(len(whole) - 12), 15)})
        for length in lengths:
            with self.subTest(length=length, seed=SEED):
                torn.write_bytes(whole[:length])
                self.nothing_comes_of(torn, "bad.zip: is (no zip file|torn)")

    def test_no_changed_byte_does_harm(self):
        """It is refused, or what is restored is what was backed up."""
        whole = self.good.read_bytes()
        drawn = random.Random(SEED)
        refused = 0
        for _ in range(60):
            at, bit = drawn.randrange(len(whole)), 1 << drawn.randrange(8)
            bad = bytearray(whole)
            bad[at] ^= bit
            (self.folder / "bad.zip").write_bytes(bad)
            with self.subTest(at=at, bit=bit):
                result = self.kivadmin("restore", "bad.zip", "new")
                self.assertIn(result.returncode, (0, 2, 3), result)
                refused += result.returncode != 0
                if result.returncode == 0:
                    restored = self.contents(self.folder / "new")
                    shutil.rmtree(self.folder / "new")
                    self.assertEqual(restored, self.contents(self.root))
                self.assertFalse((self.folder / "new").exists(), result)
        self.assertGreater(refused, 20)

    def test_names_that_lead_out_or_are_no_store_s(self):
        for name, text in (
                ("../out", "leads out"), ("Classes.zep/../../out", "leads out"), ("/out", "leads out"),
                ("Classes.zep/a\\..\\..\\out", "leads out"), ("C:/out", "leads out"),
                ("Classes.zep//out", "leads out"), ("Classes.zep/./out", "leads out"),
                ("out", "is of no store"), ("Other.zep/out", "is of no store"),
                ("Classes.zep/MsHill/LONGNAME.KIV", "the name of another"),
                ("Classes.zep/MsHill/longname.kiv/x", "stands in a file"),
                ("Classes.zep/MsHill/longname.kiv/", "stands in a file"),
                ("Classes.zep/\u65e5\u672c", "is no name in the character set")):
            with self.subTest(name=name):
                path = self.repacked(lambda entries, name=name: entries.append([name, b"" if name.endswith("/") else b"x"]))
                self.nothing_comes_of(path, text)
                self.assertFalse((self.folder.parent / "out").exists())

    def test_a_name_twice(self):
        with warnings.catch_warnings():
            warnings.simplefilter("ignore")
            path = self.repacked(lambda entries: entries.append(list(entries[2])))
        self.nothing_comes_of(path, "twice")

    def test_what_is_no_backup(self):
        (self.folder / "text.zip").write_text("PK is how a zip file begins")
        with zipfile.ZipFile(self.folder / "empty.zip", "w"):
            pass
        with zipfile.ZipFile(self.folder / "other.zip", "w") as file:
            file.writestr("a.txt", "a")
        os.mkfifo(self.folder / "pipe.zip")
        (self.folder / "folder.zip").mkdir()
        for name, text in (("text", "is torn"), ("empty", "is an empty zip file"), ("other", "is no backup"),
                           ("pipe", "is no plain file"), ("folder", "is a folder"),
                           ("gone", "no such file")):
            with self.subTest(name=name):
                self.nothing_comes_of(f"{name}.zip", text)

        def manifest(text):
            def change(entries):
                entries[-1][1] = text
            return self.repacked(change, fix=False)

        for text, why in ((b"", "tells of no backup"), (b"{}", "tells of no backup"),
                          (b"[[[[", "tells of no backup"), (b'{"format": 2}', "newer kivadmin"),
                          (b'{"format": "x"}', "tells of no backup")):
            with self.subTest(text=text):
                self.nothing_comes_of(manifest(text), why)
        for change in (lambda entries: entries.pop(3), lambda entries: entries.insert(3, ["kivstore.conf", b""]),
                       lambda entries: entries.reverse()):
            self.nothing_comes_of(self.repacked(change, fix=False), "does not hold what it was made with")
        self.nothing_comes_of(self.repacked(method=zipfile.ZIP_LZMA), "method 14")

    def test_an_encrypted_backup(self):
        data = bytearray(self.good.read_bytes())
        with zipfile.ZipFile(self.good) as file:
            places = [info.header_offset for info in file.infolist()]
            at = file.start_dir
        for place in places:
            data[place + 6] |= 1
        while data[at:at + 4] == b"PK\1\2":
            data[at + 8] |= 1
            at += 46 + sum(struct.unpack_from("<HHH", data, at + 28))
        (self.folder / "bad.zip").write_bytes(data)
        self.nothing_comes_of(self.folder / "bad.zip", "is encrypted")

    def test_a_size_that_lies_takes_no_memory(self):
        """As a name of 4 GB that is a few bytes long."""
        data = bytearray(self.good.read_bytes())
        with zipfile.ZipFile(self.good) as file:
            at = file.start_dir
        while data[at:at + 4] == b"PK\1\2":
            length = struct.unpack_from("<H", data, at + 28)[0]
            if data[at + 46:at + 46 + length].decode() == MANIFEST:
                struct.pack_into("<I", data, at + 24, 0xFFFFFFF0)
            at += 46 + sum(struct.unpack_from("<HHH", data, at + 28))
        (self.folder / "bad.zip").write_bytes(data)
        self.nothing_comes_of(self.folder / "bad.zip", "too large|torn")

    def test_more_entries_than_the_old_form_counts(self):
        game = self.list / "5a/Students/AnnLee"
        for number in range(66000):
            (game / f"{number}.zep").touch()
        self.done("backup", "store", "many.zip")
        with zipfile.ZipFile(self.folder / "many.zip") as file:
            self.assertGreater(len(file.namelist()), 66000)

    def test_a_target_that_is_none(self):
        os.mkfifo(self.folder / "pipe")
        (self.folder / "no").mkdir()
        before = self.files()
        for target, text in (("pipe", "is no plain file"), ("no", "is a folder"),
                             ("good.zip", "is there already; --force"), ("gone/new.zip", "not there"),
                             ("/dev/full", "is no plain file"), 
                             ("-", "standard output"), ("store/Classes.zep/x.zip", "in a store"),
                             ("store/Deleted/x.zip", "in a store")):
            with self.subTest(target=target):
                self.refused(2, text, "backup", "store", target)
                if target != "good.zip":
                    self.refused(2, text, "backup", "store", target, "--force")
        self.assertEqual(self.files(), before)

    def test_force_replaces_only_by_a_whole_one(self):
        before = self.good.read_bytes()
        game = self.list / "5a/Students/AnnLee/autogame.zep"
        game.unlink()
        os.mkfifo(game)
        self.refused(3, "a pipe.*--incomplete", "backup", "store", "good.zip", "--force")
        self.assertEqual(self.good.read_bytes(), before)
        result = self.kivadmin("backup", "store", "part.zip", "--incomplete")
        self.assertEqual(result.returncode, 3)
        self.assertRegex(result.stderr, r"left out: .*autogame.zep is a pipe[^\0]*not complete: 1 part of")
        result = self.kivadmin("restore", "part.zip", "new")
        self.assertEqual(result.returncode, 3)
        self.assertRegex(result.stderr, r"left out: .*autogame.zep is a pipe[^\0]*not complete: 1 part of")
        game.unlink()
        expected = self.contents(self.root)
        self.assertEqual(self.contents(self.folder / "new"), expected)
        self.done("backup", "store", "good.zip", "--force")
        self.assertNotEqual(self.good.read_bytes(), before)

    def test_no_permission(self):
        if os.geteuid() != 0:
            self.skipTest("needs another user to become")
        other = {"user": 65534, "group": 65534, "extra_groups": []}
        for path in [self.folder, *self.folder.rglob("*")]:
            path.chmod(0o777)
        try:
            self.kivadmin("about", **other)
        except PermissionError:
            self.skipTest("the program is not open to another user")
        game = self.list / "5a/Students/AnnLee/autogame.zep"
        game.chmod(0o600)
        self.refused(3, "autogame.zep is not open to this user.*--incomplete", "backup", "store",
                     "new.zip", **other)
        game.chmod(0o666)
        (self.folder / "locked").mkdir(mode=0o700)
        self.refused(3, "not open to this user|ermission denied", "backup", "store", "locked/x.zip", **other)
        self.refused(3, "not open to this user|ermission denied", "restore", "good.zip", "locked/x", **other)
        self.assertFalse((self.folder / "new.zip").exists())

    def test_a_full_disk(self):
        """As big as half of what is written."""
        place = self.folder / "small"
        place.mkdir()
        for size, words in ((8, ("backup", "store", "small/new.zip")),
                            (40, ("restore", "good.zip", "small/new"))):
            if subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}k", "none", place],
                              check=False, stderr=subprocess.DEVNULL).returncode != 0:
                self.skipTest("needs to mount a small disk")
            try:
                self.refused(3, "on a full disk", *words)
                self.assertEqual(list(place.iterdir()), [])
            finally:
                subprocess.run(["umount", place], check=True)

    def test_a_killed_backup_leaves_no_zip(self):
        for number in range(200):
            (self.list / f"5a/Students/AnnLee/{number}.zep").write_bytes(random.randbytes(20000))
        for is_dead in self.deaths("backup", "store", "new.zip"):
            new = self.folder / "new.zip"
            self.assertTrue(is_dead or new.exists(), SEED)
            if new.exists():  # it had its name already
                with zipfile.ZipFile(new) as file:
                    self.assertIsNone(file.testzip(), SEED)
                new.unlink()
        self.done("backup", "store", "new.zip")
        self.assertFalse((self.folder / "new.zip.new").exists())

    def test_a_killed_restore_is_no_store(self):
        new = self.folder / "new"
        begun = new / "kivadmin-restoring"
        for _ in self.deaths("restore", "good.zip", "new"):
            if (new / "Classes.zep").exists():
                self.assertEqual({name: data for name, data in self.contents(new).items()
                                  if name != "kivadmin-restoring"}, self.contents(self.root))
            shutil.rmtree(new, ignore_errors=True)
        for number in range(200):
            (self.list / f"5a/Students/AnnLee/{number}.zep").write_bytes(random.randbytes(20000))
        self.done("backup", "store", "many.zip")
        with self.start("restore", "many.zip", "new") as program:
            while not begun.exists() and program.poll() is None:
                time.sleep(0.001)
            program.kill()
        self.assertTrue(begun.exists() and not (new / "Classes.zep").exists())
        self.refused(1, "kivadmin-restoring: a restore is at work, or was killed", "restore", "good.zip",
                     "new")

    def test_a_killed_restore_of_a_student_loses_nobody(self):
        words = ("restore", "good.zip", "store", "--class=5a", "--student=Ann Lee", "--replace")
        for _ in self.deaths(*words):
            listed = "Ann Lee" in self.done("list", "store", "--class=5a")
            offered = 'student "Ann Lee"' in self.done("undelete", "store")
            self.assertTrue(listed or offered, SEED)
            self.done("purge", "store", "--yes") if listed else self.done("undelete", "store", "#1")
            self.done("check", "store")
        self.done(*words)
        self.done("check", "store")

    def test_who_has_no_long_name_is_known_by_the_index(self):
        (self.list / "5a/Students/AnnLee/longname.kiv").unlink()
        self.done("backup", "store", "nameless.zip")
        self.done("delete", "student", "store", "Ann Lee", "--class=5a", "--yes")
        self.done("restore", "nameless.zip", "store", "--class=5a", "--student=Ann Lee")
        self.assertIn("Ann Lee", self.done("list", "store", "--class=5a"))

    def test_no_file_is_torn_and_nobody_is_missing(self):
        """While students are moved to and fro, and a tutor writes one's options."""
        over = threading.Event()
        told = []

        def change(*commands):
            while not over.is_set():
                for words in commands:
                    result = self.kivadmin(*words)
                    if result.returncode not in (0, 1):
                        told.append(result)

        moves = [("move", "student", "store", "Ben Lee", f"--class={a}", f"--to-class={b}")
                 for a, b in (("5a", "Den"), ("Den", "5a"))]
        sets = [("options", "set", "store", "--class=5b", "--student=Cay Lee", f"TextSize={size}")
                for size in (1, 2)]
        self.done("add", "class", "store", "Den")
        threads = [threading.Thread(target=change, args=commands) for commands in (moves, sets)]
        for thread in threads:
            thread.start()
        try:
            for number in range(8):
                while (result := self.kivadmin("backup", "store", f"{number}.zip")).returncode == 1:
                    self.assertIn("locked by someone else", result.stderr)
                self.assertEqual((result.returncode, result.stderr), (0, ""))
        finally:
            over.set()
            for thread in threads:
                thread.join()
        self.assertEqual(told, [])
        for number in range(8):
            self.done("restore", f"{number}.zip", f"new{number}")
            report = self.done("export", f"new{number}")
            self.assertIn("Ben,Lee", report)
            found = json.loads(self.kivadmin("check", f"new{number}", "--format=json").stdout)
            kinds = {problem["kind"] for problem in found["problems"]}
            self.assertLessEqual(kinds, {"index", "twin"}, found)  # who came meanwhile


if __name__ == "__main__":
    BIN = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()
