#!/usr/bin/env python3
"""Prints the teachers, classes and students of a store in UTF-8, and the mission each student is at.

    print_store.py [--charset NAME] ROOT            a networked store, with teachers
    print_store.py [--charset NAME] --local ROOT    a store on this machine: classes stand at the top

NAME is the character set of the store's texts, windows-1252 unless told. The exit code is 1 if something
could not be read, 2 for wrong usage. The library is found by the system's rules, or by its path in
KIVSTORE_LIBRARY.
"""
import argparse
import codecs
import ctypes
import os
import sys

ANY_ENTRIES, COUNT_CLASSES = 8, 3
CACHE_TEACHERS, CACHED_TEACHER_NAME = 9, 10
CACHE_CLASSES, CACHED_CLASS_NAME = 11, 12
CACHE_STUDENTS, STUDENT_PROGRESS = 13, 6
NAME_SIZE = 52
WINDOWS_1252 = "windows-1252"


class Block(ctypes.Structure):
    """The parameter block: every field at the same offset on every platform."""

    _fields_ = [
        ("command", ctypes.c_int32),
        ("mode", ctypes.c_uint8),
        ("result", ctypes.c_uint8),
        ("gap06", ctypes.c_uint8 * 2),
        ("dataPath", ctypes.c_char_p),
        ("gap0C", ctypes.c_uint8 * (8 - ctypes.sizeof(ctypes.c_char_p))),
        ("topCount", ctypes.c_int32),
        ("teacherListIndex", ctypes.c_int32),
        ("teacherName", ctypes.c_char * NAME_SIZE),
        ("teacherNameSize", ctypes.c_int32),
        ("teacherIndex", ctypes.c_int32),
        ("classCount", ctypes.c_int32),
        ("classListIndex", ctypes.c_int32),
        ("classIndex", ctypes.c_int32),
        ("className", ctypes.c_char * NAME_SIZE),
        ("classNameSize", ctypes.c_int32),
        ("studentCount", ctypes.c_int32),
        ("studentListIndex", ctypes.c_int32),
        ("studentIndex", ctypes.c_int32),
        ("currentMission", ctypes.c_int32),
        ("previousMission", ctypes.c_int32),
        ("vocabLevel", ctypes.c_int32),
        ("studentName", ctypes.c_char * NAME_SIZE),
        ("studentNameSize", ctypes.c_int32),
        ("productGeneration", ctypes.c_uint16),
        ("productId", ctypes.c_char * 10),
        ("productIdSize", ctypes.c_int16),
        ("gapF6", ctypes.c_uint8 * 2),
    ]


assert ctypes.sizeof(Block) == 0xF8


def library():
    name = "kivstore.dll" if os.name == "nt" else "libkivstore.so.1"
    try:
        loaded = ctypes.CDLL(os.environ.get("KIVSTORE_LIBRARY", name))
    except OSError as error:
        sys.exit(f"print_store.py: no library to load: {error}")
    loaded.GeneralProc.argtypes = [ctypes.POINTER(Block)]
    loaded.GeneralProc.restype = None
    return loaded


class Store:
    """What the library answers; what it does not is told and counted."""

    def __init__(self, root, local, charset=WINDOWS_1252):
        self.library = library()
        self.charset = charset
        self.root = root
        self.failures = 0
        self.block = Block(mode=0 if local else 1, dataPath=os.fsencode(root))
        self.block.teacherNameSize = NAME_SIZE
        self.block.classNameSize = NAME_SIZE
        self.block.studentNameSize = NAME_SIZE

    def call(self, command):
        self.block.command = command
        self.library.GeneralProc(ctypes.byref(self.block))
        return self.block.result == 1

    def text(self, name):
        return name.decode(self.charset, "replace")

    def fail(self, what, of):
        """The block does not tell why."""
        tell(f"unable to read {what} of {of}; kivadmin check {self.root} tells why")
        self.failures += 1

    def teachers(self):
        count = self.block.topCount if self.call(CACHE_TEACHERS) else 0
        if count == 0:
            self.fail("the teachers", self.root)
        for number in range(1, count + 1):
            self.block.teacherListIndex = self.block.teacherIndex = number
            if self.call(CACHED_TEACHER_NAME):
                yield self.text(self.block.teacherName)
            else:
                self.fail(f"teacher {number}", self.root)

    def classes(self, of):
        count = self.block.classCount if self.call(CACHE_CLASSES) else 0
        # A list without a class is counted as the one that a tutor would make there; one that cannot be
        # read is not.
        if count == 0 and not self.call(COUNT_CLASSES):
            self.fail("the classes", of)
        for number in range(1, count + 1):
            self.block.classListIndex = number
            if self.call(CACHED_CLASS_NAME):  # sets classIndex for the students
                yield self.text(self.block.className)
            else:
                self.fail(f"class {number}", of)

    def students(self, of):
        if not self.call(CACHE_STUDENTS):
            self.fail("the students", of)
            return
        count = self.block.studentCount
        if count == 0:
            # An empty class and one that cannot be read are answered alike.
            tell(f"note: no student of {of}: nobody is in it, or it cannot be read")
        for number in range(1, count + 1):
            self.block.studentListIndex = number
            if self.call(STUDENT_PROGRESS):
                yield self.text(self.block.studentName), self.block.currentMission
            else:
                self.fail(f"student {number}", of)


def tell(message):
    sys.stdout.flush()
    print(f"print_store.py: {message}", file=sys.stderr)


def print_classes(store, of):
    for name in store.classes(of):
        print(f"  {name}")
        for student, mission in store.students(name):
            print(f"    {student}: mission {mission}")


def charset_named(name):
    try:
        return codecs.lookup(name).name
    except LookupError:
        raise argparse.ArgumentTypeError(f"no character set {name}") from None


def main():
    parser = argparse.ArgumentParser(prog="print_store.py", description="Prints a store.")
    parser.add_argument("--local", action="store_true")
    parser.add_argument("--charset", metavar="NAME", type=charset_named, default=WINDOWS_1252)
    parser.add_argument("root", metavar="ROOT")
    line = parser.parse_args()
    sys.stdout.reconfigure(encoding="utf-8", errors="replace")
    sys.stderr.reconfigure(encoding="utf-8", errors="replace")

    store = Store(line.root, line.local, line.charset)
    if not store.call(ANY_ENTRIES):
        tell(f"{line.root}: no {'class' if line.local else 'teacher'} there: no store of this kind, nobody "
             "in it yet, or it cannot be read; kivadmin check tells which")
        return 1
    if line.local:
        print_classes(store, line.root)
    else:
        for teacher in store.teachers():
            print(teacher)
            print_classes(store, teacher)
    return 1 if store.failures else 0


if __name__ == "__main__":
    sys.exit(main())
