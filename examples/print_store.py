#!/usr/bin/env python3
"""Prints the teachers, classes and students of a store, and the mission each student is at.

    print_store.py ROOT            a networked store, with teachers
    print_store.py --local ROOT    a store on this machine: classes stand at the top

The library is found by the system's rules, or by its path in KIVSTORE_LIBRARY.
"""
import ctypes
import os
import sys

CACHE_TEACHERS, CACHED_TEACHER_NAME = 9, 10
CACHE_CLASSES, CACHED_CLASS_NAME = 11, 12
CACHE_STUDENTS, STUDENT_PROGRESS = 13, 6
NAME_SIZE = 52
CHARACTER_SET = "windows-1252"


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
    loaded = ctypes.CDLL(os.environ.get("KIVSTORE_LIBRARY", name))
    loaded.GeneralProc.argtypes = [ctypes.POINTER(Block)]
    loaded.GeneralProc.restype = None
    return loaded


class Store:
    def __init__(self, root, local):
        self.library = library()
        self.block = Block(mode=0 if local else 1, dataPath=os.fsencode(root))
        self.block.teacherNameSize = NAME_SIZE
        self.block.classNameSize = NAME_SIZE
        self.block.studentNameSize = NAME_SIZE

    def call(self, command):
        self.block.command = command
        self.library.GeneralProc(ctypes.byref(self.block))
        return self.block.result == 1

    def teachers(self):
        count = self.block.topCount if self.call(CACHE_TEACHERS) else 0
        for number in range(1, count + 1):
            self.block.teacherListIndex = self.block.teacherIndex = number
            if self.call(CACHED_TEACHER_NAME):
                yield self.block.teacherName.decode(CHARACTER_SET, "replace")

    def classes(self):
        count = self.block.classCount if self.call(CACHE_CLASSES) else 0
        for number in range(1, count + 1):
            self.block.classListIndex = number
            if self.call(CACHED_CLASS_NAME):  # sets classIndex for the students
                yield self.block.className.decode(CHARACTER_SET, "replace")

    def students(self):
        count = self.block.studentCount if self.call(CACHE_STUDENTS) else 0
        for number in range(1, count + 1):
            self.block.studentListIndex = number
            if self.call(STUDENT_PROGRESS):
                name = self.block.studentName.decode(CHARACTER_SET, "replace")
                yield name, self.block.currentMission


def print_classes(store):
    for name in store.classes():
        print(f"  {name}")
        for student, mission in store.students():
            print(f"    {student}: mission {mission}")


def main(arguments):
    local = arguments[:1] == ["--local"]
    if len(arguments) != (2 if local else 1):
        print("print_store.py [--local] ROOT", file=sys.stderr)
        return 2
    store = Store(arguments[-1], local)
    if local:
        print_classes(store)
    else:
        for teacher in store.teachers():
            print(teacher)
            print_classes(store)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
