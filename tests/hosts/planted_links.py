#!/usr/bin/env python3
"""Plants links and pipes in a store and runs every command of the host programs over it.

    planted_links.py BIN [--draw N [--seed S]] [--only TEXT]

For each file and folder of a store and each command: what is there moves out of the store, and in
its place stands a symbolic link to it, which belongs to a user who is neither root nor the one who
runs the command. Then

- nothing outside is changed, or read where the file system keeps the time of the last reading,
- the link still stands, unless it went as itself with what was moved or deleted,
- the command does what it does without the link, or fails and names the link and its owner.

Where the link belongs to root, or to the user who runs the command, all goes as without it. A pipe
in place of a file is neither written over nor waited for. Links are given away, so it takes root.
All rows take some minutes; --draw takes so many of them, drawn anew each time.
"""
import argparse
import collections
import multiprocessing
import os
import pathlib
import random
import shutil
import stat
import subprocess
import sys
import tempfile

SKIPPED = 77
NOBODY = 65534
TUTOR = 65500  # a user who is not root; nobody has the number
LONGEST = 60  # seconds of one command: some wait for a lock

ROSTER = "teacher,class,first_name,last_name\nMs Hill,Room 12,Eve,Fox\n"

Command = collections.namedtuple("Command", "name words")
COMMANDS = [Command(line.split("|")[0].strip(), tuple(line.split("|")[1].split())) for line in """
    report              | kivreport ROOT
    export              | kivadmin export ROOT
    check               | kivadmin check ROOT
    repair              | kivadmin check --repair ROOT
    lay out             | kivadmin init ROOT
    settle              | kivadmin add teacher ROOT Mr~Poe --charset windows-1252
    add teacher         | kivadmin add teacher ROOT Mr~Poe
    add class           | kivadmin add class ROOT Room~13 --teacher Ms~Hill
    add student         | kivadmin add student ROOT Eve Fox --teacher Ms~Hill --class Room~12
    rename teacher      | kivadmin rename teacher ROOT Ms~Hill Ms~Dale
    rename class        | kivadmin rename class ROOT Room~12 Attic --teacher Ms~Hill
    rename student      | kivadmin rename student ROOT Ann~Lee Ada Lee --teacher Ms~Hill --class Room~12
    move class          | kivadmin move class ROOT Room~12 --teacher Ms~Hill --to-teacher Mr~Fell
    move student        | kivadmin move student ROOT Ann~Lee --teacher Ms~Hill --class Room~12 --to-class Hall
    delete teacher      | kivadmin delete teacher ROOT Ms~Hill --yes
    delete class        | kivadmin delete class ROOT Room~12 --teacher Ms~Hill --yes
    delete student      | kivadmin delete student ROOT Ann~Lee --teacher Ms~Hill --class Room~12 --yes
    delete for good     | kivadmin delete student ROOT Ann~Lee --teacher Ms~Hill --class Room~12 --yes --purge
    list deleted        | kivadmin undelete ROOT
    undelete            | kivadmin undelete ROOT Bob
    purge               | kivadmin purge ROOT --yes
    import              | kivadmin import ROOT ROSTER
    options show        | kivadmin options show ROOT --teacher Ms~Hill --class Room~12 --student Ann~Lee
    options set         | kivadmin options set ROOT VocabLevel=2 --teacher Ms~Hill --class Room~12 --student Ann~Lee
    options set above   | kivadmin options set ROOT VocabLevel=2 --teacher Ms~Hill
    list                | kivadmin list ROOT --teacher Ms~Hill
    find                | kivadmin find ROOT ann
    log                 | kivadmin log ROOT
    back up             | kivadmin backup ROOT NEWZIP
    restore student     | kivadmin restore OLDZIP ROOT --teacher Ms~Hill --class Room~12 --student Ann~Lee --replace
    progress            | kivadmin progress ROOT --teacher Ms~Hill --class Room~12 --student Ann~Lee --mission 4
""".strip().splitlines()]

# What is in the way of these is told, and of the commands only those fail that read them.
LOG = ("kivadmin.log", "kivadmin.lok")
READ_LOG = ("log", "back up")

Outcome = collections.namedtuple("Outcome", "code text error")


class Programs:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder).resolve()

    def run(self, words, place, user=0):
        words = [word.replace("~", " ").replace("ROOT", str(place.root))
                 .replace("ROSTER", str(place.roster)).replace("OLDZIP", str(place.backup))
                 .replace("NEWZIP", str(place.top / "new.zip")) for word in words]
        done = subprocess.run([str(self.folder / words[0]), *words[1:]], input=b"",
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=LONGEST,
                              check=False, user=user, env={"USER": "hill", "PATH": os.environ["PATH"]})
        here = str(place.top)
        return Outcome(done.returncode, done.stdout.decode("latin-1").replace(here, ""),
                       done.stderr.decode("latin-1").replace(here, ""))


class Place:
    """A folder with a store in it and a room outside of the store."""

    def __init__(self, top):
        self.top = pathlib.Path(top)
        self.root = self.top / "store"
        self.outside = self.top / "outside"
        self.roster = self.top / "roster.csv"
        self.backup = self.top / "old.zip"

    def fill(self, model, user):
        shutil.copytree(model, self.root, symlinks=True)
        shutil.copy(model.parent / self.backup.name, self.backup)
        self.outside.mkdir()
        self.roster.write_text(ROSTER)
        for path in [self.top, self.roster, self.backup, self.root, *self.root.rglob("*")]:
            os.lchown(path, user, user)

    def plant(self, path, owner):
        """The link's target is what stood in its place."""
        target = self.outside / "target"
        os.rename(self.root / path, target)
        os.symlink(target, self.root / path)
        os.lchown(self.root / path, owner, owner)
        for one in [target, *target.rglob("*")]:
            os.utime(one, (1, 2))  # read after that, it has another time

    def plant_pipe(self, path, owner):
        os.unlink(self.root / path)
        os.mkfifo(self.root / path, 0o666)
        os.lchown(self.root / path, owner, owner)

    def snapshot(self):
        """What lies outside: bytes, modes and times of the last reading and writing."""
        found = {}
        for path in sorted([self.outside, *self.outside.rglob("*")]):
            facts = path.stat()  # before its bytes are read
            found[path] = [facts.st_mode, facts.st_uid, facts.st_mtime_ns, facts.st_ctime_ns,
                           facts.st_atime_ns if path != self.outside else 0]
        return found


def lay_out(programs, top):
    """The store of which each row gets a copy."""
    place = Place(top)
    place.roster.write_text("teacher,class,first_name,last_name\nMr Fell,Loft,,\nMs Hill,Hall,,\n"
                            "Ms Hill,Room 12,Ann,Lee\nMs Hill,Room 12,Bob,\n")
    for words in ("kivadmin init ROOT --charset windows-1252", "kivadmin import ROOT ROSTER",
                  "kivadmin options set ROOT VocabLevel=1 --teacher Ms~Hill --class Room~12",
                  "kivadmin progress ROOT --teacher Ms~Hill --class Room~12 --student Ann~Lee --mission 3",
                  "kivadmin delete student ROOT Bob --teacher Ms~Hill --class Room~12 --yes",
                  "kivadmin backup ROOT OLDZIP"):
        outcome = programs.run(words.split(), place)
        assert outcome.code == 0, outcome
    return place.root


def paths_of(store):
    return [str(path.relative_to(store)) for path in sorted(store.rglob("*"))]


def without_times(outcome):
    """Two runs are a second apart at times."""
    digits = str.maketrans("0123456789", "##########")
    return Outcome(outcome.code, outcome.text.translate(digits), outcome.error.translate(digits))


class Trial:
    """One row: a path, a command, who planted what, who runs the command."""

    def __init__(self, suite, path, command, user):
        self.suite, self.path, self.command, self.user = suite, path, command, user

    def play(self, prepare, judge):
        with tempfile.TemporaryDirectory(prefix="planted") as top:
            place = Place(top)
            place.fill(self.suite.model, self.user)
            prepare(place)
            before = place.snapshot()
            try:
                outcome = self.suite.programs.run(self.command.words, place, self.user)
            except subprocess.TimeoutExpired:
                return "did not end"
            return judge(place, before, outcome)

    def plain(self):
        return self.suite.plain[self.command, self.user]

    def foreign_link(self):
        def judge(place, before, outcome):
            if place.snapshot() != before:
                return "what lies outside was touched"
            if not self.stands(place, stat.S_ISLNK):
                return "the link was replaced"
            if self.tells(outcome, "a link that belongs to nobody: not followed"):
                return self.ended_badly(outcome)
            if without_times(outcome) != without_times(self.plain()):
                return f"did something else and did not tell of the link: {outcome}"
            return None

        return self.play(lambda place: place.plant(self.path, NOBODY), judge)

    def own_link(self, owner):
        def judge(_place, _before, outcome):
            if without_times(outcome) != without_times(self.plain()):
                return f"does not go as without the link: {outcome}, not {self.plain()}"
            return None

        return self.play(lambda place: place.plant(self.path, owner), judge)

    def pipe(self):
        def judge(place, _before, outcome):
            if not self.stands(place, stat.S_ISFIFO):
                return "the pipe was replaced"
            if self.tells(outcome, "a pipe, a socket or a device, and no file of a store"):
                return self.ended_badly(outcome)
            if without_times(outcome) != without_times(self.plain()):
                return f"did something else and did not tell of the pipe: {outcome}"
            return None

        return self.play(lambda place: place.plant_pipe(self.path, self.user), judge)

    def ended_badly(self, outcome):
        """None if it failed as it must, or did all but write the log."""
        if self.path not in LOG or self.command.name in READ_LOG:
            return None if outcome.code != 0 else "told what is in the way and ended with 0"
        is_done = without_times(outcome)[:2] == without_times(self.plain())[:2]
        is_found = self.command.name in ("check", "repair")
        return None if is_done or is_found else f"does not go as with a log: {outcome}"

    def tells(self, outcome, what):
        """A finding has a colon behind the path."""
        told = outcome.error + outcome.text
        return any(f"/store/{self.path}{colon} is {what}" in told for colon in ("", ":"))

    def stands(self, place, is_planted):
        """What was planted is there as it was, or gone with what was moved or deleted. With whom
        another takes the place of it is in Deleted."""
        path = place.root / self.path
        set_aside = list(place.root.glob(f"Deleted/*-AnnLee*/{self.path.partition('/Students/')[2]}"))
        if self.command.name == "restore student" and "/AnnLee/" in self.path and set_aside:
            path = set_aside[0]
        return not os.path.lexists(path) or is_planted(os.lstat(path).st_mode)


class Suite:
    def __init__(self, programs, top):
        self.programs = programs
        self.model = lay_out(programs, top)
        self.plain = {}

    def remember_plain(self, user):
        for command in COMMANDS:
            Trial(self, "", command, user).play(
                lambda place: None,
                lambda place, before, outcome, key=(command, user): self.plain.update({key: outcome}))
            assert self.plain[command, user].code == 0, (command, self.plain[command, user])

    def rows(self):
        """A name and what is to be tried, for each row."""
        for path in paths_of(self.model):
            for command in COMMANDS:
                yield path, command, "foreign link", lambda p, c: Trial(self, p, c, 0).foreign_link()
                yield path, command, "root's link", lambda p, c: self.followed(p, c, 0, 0)
                yield path, command, "foreign link, as a user", \
                    lambda p, c: Trial(self, p, c, TUTOR).foreign_link()
                yield path, command, "own link, as a user", lambda p, c: self.followed(p, c, TUTOR, TUTOR)
                if (self.model / path).is_file():
                    yield path, command, "pipe", lambda p, c: Trial(self, p, c, 0).pipe()

    def followed(self, path, command, owner, user):
        return Trial(self, path, command, user).own_link(owner)


def keeps_reading_times(top):
    probe = pathlib.Path(top) / "probe"
    probe.write_text("x")
    os.utime(probe, (1, 2))
    probe.read_text()
    return probe.stat().st_atime_ns != 1_000_000_000


ROWS = []


def outcome_of(number):
    """In a process of its own, not a thread: the files that a thread has open are those of each program too
    that another thread is just starting, and what is to be moved would be in use."""
    path, command, _, trial = ROWS[number]
    return trial(path, command)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("bin")
    parser.add_argument("--draw", type=int, help="so many rows instead of all")
    parser.add_argument("--seed", type=int, default=random.randrange(1 << 32))
    parser.add_argument("--only", default="", help="rows whose line has this text")
    arguments = parser.parse_args()
    if os.name != "posix" or os.geteuid() != 0:
        print("skipped: to give a link to another user takes root")
        return SKIPPED
    os.umask(0o022)
    with tempfile.TemporaryDirectory(prefix="planted") as top:
        os.chmod(top, 0o755)
        if not keeps_reading_times(top):
            print("this file system keeps no times of reading: only changes are looked for")
        suite = Suite(Programs(arguments.bin), top)
        for user in (0, TUTOR):
            suite.remember_plain(user)
        rows = [row for row in suite.rows()
                if arguments.only in f"{row[2]}: {row[1].name}: {row[0]}"]
        if arguments.draw is not None:
            print(f"--seed {arguments.seed}")
            rows = random.Random(arguments.seed).sample(rows, min(arguments.draw, len(rows)))
        ROWS.extend(rows)
        with multiprocessing.get_context("fork").Pool() as pool:
            results = pool.map(outcome_of, range(len(rows)), 1)
    failures = 0
    for (path, command, what, _), result in zip(rows, results):
        if result is not None:
            failures += 1
            print(f"{what}: {command.name}: {path}: {result}")
    print(f"{len(rows)} rows, {failures} failed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
