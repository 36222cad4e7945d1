"""The exported function as its hosts call it: from several threads at once, and against the report.

    callers_test.py LIBRARY PROGRAMS [--seed N] [--stores N]

PROGRAMS is the folder of kivadmin and kivreport. kivreport reads a store class by class and must say
what the progress query says of every student: tried on the golden stores and on random ones with
options at all levels, some of them damaged. Whatever it does not know it has to say so.
"""
import argparse
import ctypes
import json
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import threading
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(PROJECT / "examples"))
import print_store  # noqa: E402: the block, as a host declares it

COUNT_TEACHERS, TEACHER_NAME, COUNT_CLASSES, CLASS_NAME, COUNT_STUDENTS, PROGRESS = range(1, 7)


class Host:
    """One block, and the plain chain of commands."""

    def __init__(self, root, teachers):
        os.environ["KIVSTORE_LIBRARY"] = str(ARGUMENTS.library)
        self.store = print_store.Store(str(root), not teachers)
        self.teachers = teachers

    def call(self, command, **fields):
        for field, value in fields.items():
            setattr(self.store.block, field, value)
        return self.store.call(command)

    def text(self, field):
        return getattr(self.store.block, field).decode("cp1252", "replace")

    def students(self):
        """Teacher, class, name and progress of all, in the order of the lists."""
        block = self.store.block
        teachers = 1
        if self.teachers:
            teachers = block.topCount if self.call(COUNT_TEACHERS) else 0
        for teacher in range(1, teachers + 1):
            if self.teachers:
                self.call(TEACHER_NAME, teacherListIndex=teacher)
            block.teacherIndex = teacher
            for group in range(1, (block.classCount if self.call(COUNT_CLASSES) else 0) + 1):
                # An empty list counts the class that a tutor would make there.
                if not self.call(CLASS_NAME, classListIndex=group):
                    continue
                self.call(COUNT_STUDENTS)
                for student in range(1, block.studentCount + 1):
                    known = self.call(PROGRESS, studentListIndex=student)
                    yield (self.text("teacherName"), self.text("className"),
                           self.text("studentName"), (block.currentMission, block.previousMission,
                                                      block.vocabLevel) if known else None)


def reported(root):
    """The same as Host.students, from the report; progress that it does not know is None."""
    run = subprocess.run([PROGRAMS / "kivreport", root, "--format", "json", "--quiet"],
                         stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    report = json.loads(run.stdout) if run.stdout else {"teachers": [], "complete": True}
    if report["complete"] != (run.returncode != 3):
        raise AssertionError(f"exit code {run.returncode}: {run.stderr}")
    groups = [("", report)] if "classes" in report else [
        (teacher["name"], teacher) for teacher in report["teachers"]]
    students = []
    for teacher, holder in groups:
        for group in holder["classes"]:
            for student in group["students"]:
                progress = tuple(student[key] for key in
                                 ("current_mission", "previous_mission", "vocab_level"))
                students.append((teacher, group["name"], student["name"],
                                 None if progress[0] is None else progress))
    return students, report["complete"]


def names_of(student):
    """As far as a block has room for them."""
    return [name[:print_store.NAME_SIZE - 1] for name in student[:3]]


def admin(*arguments):
    subprocess.run([PROGRAMS / "kivadmin", *map(str, arguments)], stdout=subprocess.DEVNULL,
                   check=True)


class Records:
    """Options and games that the tutor's like wrote, of a few students and levels."""

    def __init__(self, folder, draw):
        root = folder / "source"
        admin("init", root, "--kind", "teachers")
        admin("add", "teacher", root, "T")
        admin("add", "class", root, "C", "--teacher", "T")
        admin("add", "student", root, "S", "--class", "C", "--teacher", "T")
        group = next(root.glob("Classes.zep/T/Classes.zep/C"))
        student = group / "Students/S"
        self.options, self.games = [], []
        for _ in range(24):
            level = draw.choice(([], ["--class", "C"], ["--class", "C", "--student", "S"]))
            admin("options", "set", root, "--teacher", "T", *level,
                  f"VocabLevel={draw.randint(1, 5)}")
            admin("progress", root, "--teacher", "T", "--class", "C", "--student", "S",
                  "--mission", draw.randint(1, 25), "--learned-keys", draw.choice(("yes", "no")),
                  "--lessons-done", draw.choice(("none", "1-4", "1-24", "2,5,7")))
            self.options += [path.read_bytes() for path in root.rglob("options.kiv")]
            self.games += [path.read_bytes() for path in root.rglob("autogame.zep")]
        assert (student / "options.kiv").exists() and self.games


class Layout:
    """A random store, as a file server shows it: folders with their names and records."""

    def __init__(self, root, records, draw, damaged):
        self.records, self.draw, self.damaged = records, draw, damaged
        self.teachers = draw.random() < 0.7
        lists = [root / "Classes.zep"]
        lists[0].mkdir(parents=True)
        if self.teachers:
            holders = self.entries(lists[0], draw.randint(1, 3))
            lists = [holder / "Classes.zep" for holder in holders]
        for classes in lists:
            classes.mkdir(exist_ok=True)
            self.level(classes)
            for group in self.entries(classes, draw.randint(0, 3)):
                self.level(group)
                students = group / "Students"
                students.mkdir()
                for student in self.entries(students, draw.randint(0, 5)):
                    self.level(student)
                    if draw.random() < 0.7:
                        self.put(student / "autogame.zep", draw.choice(records.games))

    def entries(self, folder, count):
        # Whoever opens the store first fills the index: the library makes no file.
        (folder / "index.lok").touch()
        (folder / "index.kiv").touch()
        made = []
        for _ in range(count):
            name = self.draw.choice(("Ann", "An n", "Bea", "\xc5ke", "Zo", "x" * 30)).encode("cp1252")
            last = self.draw.choice((b"", b"Lee", b"Ray"))
            entry = folder / f"f{self.draw.randint(0, 10 ** 6)}"
            entry.mkdir()
            (entry / "index.lok").touch()
            self.put(entry / "longname.kiv", name + b"\0" + last + b"\0")
            made.append(entry)
        return made

    def level(self, folder):
        if self.draw.random() < 0.6:
            # Damage behind the head is waited on, 13 seconds a time, lest it be a write at work.
            self.put(folder / "options.kiv", self.draw.choice(self.records.options), 8)
            (folder / "options.lok").touch()

    def put(self, path, contents, most=1 << 16):
        if self.damaged and self.draw.random() < 0.15:
            damage = self.draw.randint(0, 3)
            at = self.draw.randrange(min(len(contents), most))
            if damage == 0:
                contents = contents[:at]
            elif damage == 1:
                contents = contents[:at] + self.draw.randbytes(1) + contents[at + 1:]
            elif damage == 2:
                contents = contents[:at] + self.draw.randbytes(4) + contents[at:]
            else:
                contents = self.draw.randbytes(40)
        path.write_bytes(contents)


class Callers(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def expect_one_answer(self, root, teachers, what):
        # A first look at each list may repair it and show it in another order.
        reported(root)
        students, complete = reported(root)
        asked = list(Host(root, teachers).students())
        self.assertEqual([names_of(student) for student in students],
                         [names_of(student) for student in asked], what)
        for mine, theirs in zip(students, asked):
            if mine[3] is not None:
                self.assertEqual(mine[3], theirs[3], f"{what}: {mine}")
            else:
                self.assertFalse(complete, f"{what}: {mine} is unknown and nobody says so")
        return students

    # Local stores first: a networked one makes the library expect teachers from then on.
    def test_1_the_report_says_what_the_progress_query_says(self):
        for kind in ("local", "teachers"):
            shutil.copytree(PROJECT / "tests/golden" / kind / "store", self.folder / kind)
        draw = random.Random(ARGUMENTS.seed)
        records = Records(self.folder, draw)
        stores = [(self.folder / kind, kind == "teachers", kind) for kind in ("local", "teachers")]
        known = 0
        for number in range(ARGUMENTS.stores):
            layout = Layout(self.folder / str(number), records, draw, number % 2 == 1)
            what = f"seed {ARGUMENTS.seed}, store {number}"
            stores.append((self.folder / str(number), layout.teachers, what))
        for root, teachers, what in sorted(stores, key=lambda store: store[1]):
            students = self.expect_one_answer(root, teachers, what)
            if " " not in what or int(what.split()[-1]) % 2 == 0:
                self.assertTrue(all(student[3] for student in students), what)
            known += sum(student[3] is not None for student in students)
        self.assertGreater(known, ARGUMENTS.stores, "the stores have students")

    def test_2_threads_are_served_one_after_the_other(self):
        shutil.copytree(PROJECT / "tests/golden/teachers/store", self.folder / "store")
        expected = list(Host(self.folder / "store", True).students())
        answers = []

        def ask():
            host = Host(self.folder / "store", True)
            for _ in range(20):
                answers.append(list(host.students()))

        threads = [threading.Thread(target=ask) for _ in range(6)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(answers, [expected] * 120)


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("library", type=pathlib.Path)
    parser.add_argument("programs", type=pathlib.Path)
    parser.add_argument("--seed", type=int, default=random.randrange(10 ** 6))
    parser.add_argument("--stores", type=int, default=60)
    ARGUMENTS = parser.parse_args()
    PROGRAMS = ARGUMENTS.programs
    if ctypes.sizeof(ctypes.c_void_p) != 8:
        sys.exit("needs an interpreter of the library's build")
    print(f"seed {ARGUMENTS.seed}")
    unittest.main(argv=sys.argv[:1])
