#!/usr/bin/env python3
"""Kills kivadmin at its changing system calls, and looks what is left.

    try_deaths.py BIN [--seconds N] [--seed N] [--jobs N] [--only COMMAND [--at CALL:WHEN]]

BIN holds kivadmin and kivreport. Each command of the table is run undisturbed first, to learn its changing calls;
then it is killed as it enters each of them, on a copy of its store. After each death
  - the lists and the figures are those from before the command or those from after it: nobody is lost, nobody is
    there twice, no name is wrong, and who was deleted is either in the list or in Deleted;
  - the same command succeeds, or says truly that it is done, and then all is as after it;
  - `check` finds the store in order, and nothing half made lies about.
Every second death is followed by a report ahead of the repetition, since a listing repairs.

Without --seconds every death is tried, some minutes' work. With it some drawn by the seed, of as many
commands as fit. Exit code 77 where no program may be traced.
"""
import argparse
import concurrent.futures
import dataclasses
import os
import pathlib
import random
import re
import shutil
import sys
import tempfile
import threading
import time

import killing
import schools

CANNOT_TRACE = 77
DRAWN_OF_EACH = 4
HILL = "--teacher 'Ms Hill'"


@dataclasses.dataclass
class Command:
    name: str
    store: str  # one of schools.LAYOUTS, or "nothing"
    line: str
    changes: list  # of an export: what is replaced (a pattern) and by what; None for lines that go
    comes: list = dataclasses.field(default_factory=list)  # lines that an export has afterwards
    before: list = dataclasses.field(default_factory=list)  # commands, or changes of the tree, ahead of it
    damage: list = dataclasses.field(default_factory=list)  # what is to be repaired, so that no report can look
    done: str = "$^"  # what a repetition may say that finds it done
    is_whole: bool = True  # before or after, nothing between; else each line for itself
    offers: dict = dataclasses.field(default_factory=dict)  # what undelete may offer: then all these lines come back


def student(row):
    return f"^{row}$"


ANN = {'student "Ann Lee"': "Ms Hill,5a,Ann,Lee"}
BARN = {'class "Barn"': "Ms Hill,Barn,"}
IMPORTED = ["Ms Hill,5a,Zoe,Young", "Ms Hill,6c,Xaver,York", "New One,6d,Yan,Zimmer"]
COMMANDS = [
    Command("init", "nothing", "init store", []),
    Command("init over a store", "students", "init store", [],
            damage=["remove Students/AnnLee/index.lok", "remove 5b/options.lok", "remove 5b/Students/index.lok"]),
    Command("init with a charset", "teachers", "init store --charset iso-8859-1", []),
    Command("add teacher", "teachers", "add teacher store 'Zoe Young'", [], ["Zoe Young,,,"], done="name taken"),
    Command("add class", "classes", f"add class store 'Zoo' {HILL}", [], ["Ms Hill,Zoo,,"], done="name taken"),
    Command("add student", "students", "add student store Ann Leigh --class 5a", [], ["Ms Hill,5a,Ann,Leigh"],
            done="name taken"),
    Command("add student of a like name", "students", "add student store Annl Ee --class 5a", [],
            ["Ms Hill,5a,Annl,Ee"], done="name taken"),
    Command("rename teacher", "teachers", "rename teacher store 'Ms Hill' 'Ms Vale'", [("^Ms Hill,", "Ms Vale,")],
            done="no teacher"),
    Command("rename class", "classes", f"rename class store Barn Granary {HILL}",
            [("^Ms Hill,Barn,", "Ms Hill,Granary,")], done="no class"),
    Command("rename student", "students", "rename student store 'Ann Lee' Annabel Leigh --class 5a",
            [(student("Ms Hill,5a,Ann,Lee"), "Ms Hill,5a,Annabel,Leigh")], done="no student"),
    Command("rename student to a shorter name", "students", "rename student store 'Christopher Lee' C L --class 5a",
            [(student("Ms Hill,5a,Christopher,Lee"), "Ms Hill,5a,C,L")], done="no student"),
    Command("move class", "classes", f"move class store Barn {HILL} --to-teacher 'Mr Reed'",
            [("^Ms Hill,Barn,", "Mr Reed,Barn,")], done="no class"),
    Command("move class under another folder name", "classes", f"move class store Barn {HILL} --to-teacher 'Mr Reed'",
            [("^Ms Hill,Barn,", "Mr Reed,Barn,")], done="no class",
            before=["rename class store Yard Barny --teacher 'Mr Reed'", "move Barn ../../MrReed/Classes.zep/Yard"]),
    Command("move student", "students", "move student store 'Ann Lee' --class 5a --to-class 5b",
            [(student("Ms Hill,5a,Ann,Lee"), "Ms Hill,5b,Ann,Lee")], done="no student"),
    Command("move student under another folder name", "students",
            "move student store 'Ann Lee' --class 5a --to-class 5b",
            [(student("Ms Hill,5a,Ann,Lee"), "Ms Hill,5b,Ann,Lee")], ["Ms Hill,5b,An,Nlee"], done="no student",
            before=["add student store An Nlee --class 5b"]),
    Command("delete teacher", "teachers", "delete teacher store 'Ms Hill' --yes", [("^Ms Hill,", None)],
            done="no teacher"),
    Command("delete class", "classes", f"delete class store Barn {HILL} --yes", [("^Ms Hill,Barn,", None)],
            done="no class"),
    Command("delete student", "students", "delete student store 'Ann Lee' --class 5a --yes",
            [(student("Ms Hill,5a,Ann,Lee"), None)], done="no student"),
    Command("delete class for good", "classes", f"delete class store Barn {HILL} --yes --purge",
            [("^Ms Hill,Barn,", None)], done="no class", is_whole=False, offers=BARN),
    Command("delete student for good", "students", "delete student store 'Ann Lee' --class 5a --yes --purge",
            [(student("Ms Hill,5a,Ann,Lee"), None)], done="no student", is_whole=False, offers=ANN),
    Command("undelete teacher", "teachers", "undelete store 'Ms Hill'", [], done="was deleted",
            before=["delete teacher store 'Ms Hill' --yes"], comes=[f"Ms Hill,{group},{person}" for group in ("5a", "Barn")
                                                                    for person in schools.PEOPLE[:3]]),
    Command("undelete class", "classes", "undelete store Barn", [], done="was deleted",
            before=[f"delete class store Barn {HILL} --yes"],
            comes=[f"Ms Hill,Barn,{person}" for person in schools.PEOPLE[:4]]),
    Command("undelete student", "students", "undelete store 'Ann Lee'", [], ["Ms Hill,5a,Ann,Lee"], done="was deleted",
            before=["delete student store 'Ann Lee' --class 5a --yes"]),
    Command("undelete student whose folder name is taken", "students", "undelete store 'Ann Lee'", [],
            ["Ms Hill,5a,Ann,Lee", "Ms Hill,5a,An,Nlee"], done="was deleted",
            before=["delete student store 'Ann Lee' --class 5a --yes", "add student store An Nlee --class 5a"]),
    Command("purge", "students", "purge store --yes", [], is_whole=False, offers={**ANN, **BARN},
            before=["delete student store 'Ann Lee' --class 5a --yes", "delete class store Barn --yes"]),
    Command("import", "students", "import store new.csv", [], IMPORTED, is_whole=False,
            before=["write new.csv " + "|".join([schools.HEADER, *IMPORTED])]),
    Command("options set for the store", "students", "options set store VocabLevel=3", [], is_whole=False),
    Command("options set for a class", "students", "options set store --class 5b VocabLevel=3", [], is_whole=False),
    Command("options set for a student", "students",
            "options set store --class 5a --student 'Ann Lee' VocabLevel=3 --charset iso-8859-1", [], is_whole=False),
    Command("options import", "students", "options import store --class 5a new.txt", [], is_whole=False,
            before=["options export store --class 5a new.txt", "edit new.txt VocabLevel=1 VocabLevel=4"]),
    Command("progress", "students",
            "progress store --class 5a --student 'Ann Lee' --mission 9 --lessons-done 1-8 --learned-keys yes", [],
            is_whole=False),
    Command("check --repair of torn lists", "students", "check store --repair", [],
            damage=["cut Students/index.kiv 5000", "cut ../../index.kiv 3", "empty 5a/options.kiv"]),
    Command("check --repair of what is missing", "students", "check store --repair", [],
            damage=["remove Students/AnnLee/longname.kiv", "remove 5b/Students/index.kiv", "remove 5b/index.lok",
                    "empty Students/BtrceLee/autogame.zep"]),
    # What must change nothing at all has no call to be killed at.
    Command("a dry run", "students", "delete student store 'Ann Lee' --class 5a --yes --dry-run", []),
    Command("export", "students", "export store", []),
    Command("options show", "students", "options show store --class 5a", []),
    Command("check", "students", "check store", []),
    Command("undelete without a name", "students", "undelete store", []),
]
CHANGE_NOTHING = {"a dry run", "export", "options show", "check", "undelete without a name"}


class Fault(Exception):
    pass


def place(where, path):
    """Below the class list of Ms Hill; `Students` is that of 5a. What is no part of the store lies beside it."""
    hill = where / "store/Classes.zep/MsHill/Classes.zep"
    beside = where / path
    return beside if path.startswith("new.") else hill / re.sub("^Students/", "5a/Students/", path)


def prepare(programs, where, step):
    word, *rest = step.split(" ", 2)
    if word == "remove":
        place(where, rest[0]).unlink()
    elif word == "empty":
        place(where, rest[0]).write_bytes(b"")
    elif word == "cut":
        os.truncate(place(where, rest[0]), int(rest[1]))
    elif word == "write":
        place(where, rest[0]).write_text(rest[1].replace("|", "\n") + "\n")
    elif word == "edit":
        old, new = rest[1].split()
        path = place(where, rest[0])
        path.write_text(path.read_text().replace(old, new))
    elif word == "move" and step.startswith("move Barn "):
        place(where, rest[1]).rename(place(where, "../../MrReed/Classes.zep/Barn"))
    else:
        programs.need("kivadmin " + step, where)


class Trial:
    """A command on its store: what it does undisturbed, and what its deaths leave."""

    laid_out = {}  # what is seen in a store as it was laid out

    def __init__(self, programs, command, scratch):
        self.programs = programs
        self.command = command
        self.scratch = scratch
        self.template = scratch / re.sub(r"\W+", "-", command.name)
        self.line = "kivadmin " + command.line
        self.calls = []
        self.before = self.after = self.original = None
        self.is_learned = False

    def learn(self):
        self.lay_out()
        self.run_undisturbed()
        self.is_learned = True

    def lay_out(self):
        if self.command.store == "nothing":
            self.template.mkdir()
            return
        schools.copy_store(self.scratch / self.command.store, self.template)
        if self.command.offers:
            self.original = self.seen_as_laid_out()
        for step in self.command.before:
            prepare(self.programs, self.template, step)
        self.before = self.seen_in_copy(self.template) if self.command.before else self.seen_as_laid_out()
        for step in self.command.damage:
            prepare(self.programs, self.template, step)

    def seen_in_copy(self, where):
        """A report repairs, so that it is asked about a copy."""
        copy = self.new_place()
        schools.copy_store(where, copy)
        seen = self.programs.see(copy)
        shutil.rmtree(copy)
        return seen

    def seen_as_laid_out(self):
        if self.command.store not in self.laid_out:
            self.laid_out[self.command.store] = self.seen_in_copy(self.scratch / self.command.store)
        return self.laid_out[self.command.store]

    def new_place(self):
        return pathlib.Path(tempfile.mkdtemp(dir=self.scratch)) / "trial"

    def run_undisturbed(self):
        where = self.new_place()
        schools.copy_store(self.template, where)
        done, calls = killing.changing_calls(self.programs.line(self.line), where)
        if done.returncode != 0:
            raise Fault(f"undisturbed it ended with {done.returncode}: {done.stderr}")
        self.after = self.programs.see(where)
        shutil.rmtree(where.parent)
        self.compare_lines()
        if not self.changes_nothing():
            self.calls = calls
        elif changes := [call.text for call in calls if not call.text.startswith("write(1,")]:
            raise Fault(f"it changes something: {changes[0]}")

    def changes_nothing(self):
        return self.command.name in CHANGE_NOTHING

    def compare_lines(self):
        """What it did is what the table says."""
        expected = list(self.before.lines) if self.before else []
        for pattern, new in self.command.changes:
            expected = [re.sub(pattern, new or "", line) for line in expected if new or not re.search(pattern, line)]
        expected = sorted({*expected, *self.command.comes}) if self.command.comes else sorted(expected)
        if expected != self.after.lines:
            raise Fault(f"undisturbed it did something else: {differences(expected, self.after.lines)}")

    def die(self, call, reports_first):
        where = self.new_place()
        schools.copy_store(self.template, where)
        if not killing.kill_at(call, self.programs.line(self.line), where):
            raise Fault("it did not die there")
        if self.before:
            self.judge(self.programs.look(where), "after the death")
            if reports_first and not self.command.damage:
                self.judge(self.programs.see(where), "after the death and a report")
            if self.command.offers:
                self.take_back(where)
        self.repeat(where)
        shutil.rmtree(where.parent)

    def take_back(self, where):
        """What is still offered comes back as it was when it was deleted."""
        copy = self.new_place()
        schools.copy_store(where, copy)
        offered = [text for text in self.command.offers
                   for deleted in self.programs.look(copy).deleted if deleted.startswith(text)]
        for text in offered:
            self.programs.need(f"kivadmin undelete store {text.split(' ', 1)[1]}", copy)
        seen = self.programs.see(copy)
        shutil.rmtree(copy.parent)
        for text in offered:
            lines = [line for line in self.original.lines if line.startswith(self.command.offers[text])]
            if not set(lines) <= set(seen.lines):
                raise Fault(f"what comes back is not whole: {differences(lines, seen.lines)}")
            names = {line.split(",", 2)[2].replace(",", " ") for line in lines}
            lost = {each for each in self.original.figures if each[2] in names and each[1] in lines[0]}
            if not lost <= set(seen.figures):
                raise Fault(f"what comes back has other figures: {differences(lost, seen.figures)}")

    def repeat(self, where):
        done = self.programs.run(self.line, where)
        if done.returncode != 0 and not (done.returncode == 1 and re.search(self.command.done, done.stderr)):
            raise Fault(f"repeated it ended with {done.returncode}: {done.stdout}{done.stderr}")
        seen = self.programs.see(where)
        if seen._replace(deleted=None) != self.after._replace(deleted=None):
            raise Fault(f"repeated it has another outcome: {differences(self.after, seen)}")
        if self.command.is_whole and seen.deleted != self.after.deleted:
            raise Fault(f"repeated it leaves in Deleted: {differences(self.after.deleted, seen.deleted)}")
        checked = self.programs.run("kivadmin check store", where)
        if checked.returncode != 0:
            raise Fault(f"not in order after the repetition: {checked.stdout}")
        left = [str(path) for ending in ("new", "copy") for path in where.glob(f"store/**/*.{ending}")]
        if left:
            raise Fault(f"left half made: {left}")

    def judge(self, seen, when):
        if self.command.is_whole:
            wholes = [self.before, self.after]
            if seen.figures is None:
                wholes = [whole._replace(figures=None) for whole in wholes]
            if seen not in wholes:
                raise Fault(f"{when} neither as before nor as after it: {differences(wholes[0], seen)}, "
                            f"{differences(wholes[1], seen)}")
            return
        # Who goes or comes does so one by one, and nobody else does; figures change for whom they may.
        stay = set(self.before.lines) & set(self.after.lines)
        known = {*self.before.lines, *self.after.lines, *unfilled(self.command.comes)}
        if len(set(seen.lines)) != len(seen.lines) or not stay <= set(seen.lines) <= known:
            raise Fault(f"{when}: {differences(self.before.lines, seen.lines)}")
        self.judge_figures(seen, when)

    def judge_figures(self, seen, when):
        if seen.figures is None:
            return
        same = set(self.before.figures) & set(self.after.figures)
        if not same <= set(seen.figures):
            raise Fault(f"{when} other figures: {differences(self.before.figures, seen.figures)}")


def unfilled(lines):
    """A teacher whose classes are still to come, a class without its students."""
    fields = [line.split(",") for line in lines]
    return {f"{teacher},{group},," for teacher, group, *_ in fields} | {f"{each[0]},,," for each in fields}


def differences(expected, found):
    def parts(seen):
        if isinstance(seen, schools.Seen):
            return {str(row) for part in seen for row in part or []}
        return {str(row) for row in seen}
    lacks, has = sorted(parts(expected) - parts(found)), sorted(parts(found) - parts(expected))
    return f"lacks {lacks[:5]}, has {has[:5]}"


def draw(trials, tally, seed, seconds):
    """All deaths command by command; or in an order drawn by the seed, some of each command in turn."""
    if seconds is None:
        for trial in trials:
            tally.learn(trial)
            yield from ((trial, call) for call in trial.calls)
        return
    drawn = random.Random(seed)
    for trial in drawn.sample(trials, len(trials)):
        tally.learn(trial)
        yield from ((trial, call) for call in drawn.sample(trial.calls, min(DRAWN_OF_EACH, len(trial.calls))))


class Tally:
    def __init__(self, folder):
        self.folder = folder
        self.tried = {}
        self.faults = 0
        self.lock = threading.Lock()

    def learn(self, trial):
        try:
            trial.learn()
        except (Fault, RuntimeError) as fault:
            self.tell(trial, None, fault)

    def try_one(self, trial, call, number):
        try:
            trial.die(call, number % 2 == 1)
        except (Fault, RuntimeError) as fault:
            self.tell(trial, call, fault)
        with self.lock:
            self.tried[trial.command.name] = self.tried.get(trial.command.name, 0) + 1

    def tell(self, trial, call, fault):
        with self.lock:
            self.faults += 1
            at = f" --at {call.name}:{call.when}" if call else ""
            print(f"{trial.command.name}, {'killed at ' + call.text if call else 'undisturbed'}:\n  {fault}\n"
                  f"  again: {sys.argv[0]} {self.folder} --only '{trial.command.name}'{at}", flush=True)


def run(arguments, scratch):
    end = time.monotonic() + arguments.seconds if arguments.seconds else None
    programs = schools.Programs(arguments.bin)
    commands = [each for each in COMMANDS if arguments.only in (None, each.name)]
    for layout in sorted({each.store for each in commands} - {"nothing"}):
        schools.lay_out(programs, layout, scratch / layout)
    trials = [Trial(programs, each, scratch) for each in commands]
    tally = Tally(arguments.bin)
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        waiting = []
        for number, (trial, call) in enumerate(draw(trials, tally, arguments.seed, arguments.seconds)):
            if arguments.at and arguments.at != f"{call.name}:{call.when}":
                continue
            if end and time.monotonic() > end:
                break
            waiting.append(pool.submit(tally.try_one, trial, call, number))
            if end and len(waiting) >= arguments.jobs:
                waiting.pop(0).result()
        for each in waiting:
            each.result()
    for trial in trials:
        deaths = f"{tally.tried.get(trial.command.name, 0)} of {len(trial.calls)} deaths" if trial.is_learned else "-"
        print(f"{trial.command.name:48} {'changes nothing' if trial.changes_nothing() else deaths}")
    print(f"{sum(tally.tried.values())} deaths tried, {tally.faults} faults")
    return 1 if tally.faults else 0


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("bin")
    parser.add_argument("--seconds", type=float)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(10**6))
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--only")
    parser.add_argument("--at")
    arguments = parser.parse_args()
    if why := killing.strace_is_here():
        print("no deaths tried: " + why)
        return CANNOT_TRACE
    if arguments.seconds:
        print(f"seed {arguments.seed}", flush=True)
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    with tempfile.TemporaryDirectory(dir=memory) as scratch:
        return run(arguments, pathlib.Path(scratch))


if __name__ == "__main__":
    sys.exit(main())
