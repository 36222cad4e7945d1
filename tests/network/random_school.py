#!/usr/bin/env python3
"""A school that many change at once, while somebody is killed each second: is anything lost?

    random_school.py BIN [--seconds N] [--seed N] [--spare] [ROOT ...]

Four processes add, rename, move, delete and bring back teachers, classes and students at random, set
options and progress, by BIN's kivadmin, while two others list and report. Each second one of them is
killed, unless they are to be spared. The roots lead to one empty folder, through several mounts where
there are several, and the processes are spread over them; without any a folder of this machine is
taken.

A ledger keeps what each command was told (ledger.py). Every few seconds all wait, and the store is
held against it: nothing that was told is undone, nobody is lost or stands twice, there is no name
that nobody gave, and the store is in order, after `check --repair` where somebody died.

Exit code 0 if all of that held; otherwise the commands on whom it did not hold for are printed.
"""
import argparse
import collections
import csv
import io
import pathlib
import random
import re
import signal
import subprocess
import sys
import tempfile
import threading
import time

sys.dont_write_bytecode = True
from ledger import Ledger, Place

WORKERS = 4
READERS = 2
LONGEST = 120      # seconds of one command
FEWEST = 10        # changes, for a run that says something
MOST = {"teacher": 8, "class": 16, "student": 150}
# Each worker sets an option of its own on whomever it meets, so that one's decisions stand beside
# another's in one file.
OPTIONS = ["MinWPMGoal", "GamebreakInterval", "MinAccuracyGoal", "NumberErrorsPowerBooster"]
MISSION = "mission"
UNDECIDED = {"MinWPMGoal": "1", "GamebreakInterval": "5", "MinAccuracyGoal": "50",
             "NumberErrorsPowerBooster": "12", MISSION: "1"}
DEFAULTS = ("Default", "TDefault")  # the store gives one of them to whoever has none


class Programs:
    """Runs the programs, remembers what they said, and kills one of them."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder).resolve()
        self.running, self.log = [], []
        self.lock = threading.Lock()
        self.deaths = 0

    def run(self, name, *words):
        """Its exit code, below 0 if it was killed, its output and its errors."""
        begun = time.monotonic()
        with subprocess.Popen([self.folder / name, *words], stdin=subprocess.DEVNULL, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
            with self.lock:
                self.running.append(process)
            try:
                output, errors = process.communicate(timeout=LONGEST)
            except subprocess.TimeoutExpired:
                process.send_signal(signal.SIGABRT)
                output, errors = process.communicate()
            with self.lock:
                self.running.remove(process)
                self.log.append((begun, time.monotonic(), process.returncode, [name, *words],
                                 (output + errors).strip()))
        return process.returncode, output, errors

    def kill_one(self, draw):
        with self.lock:
            if self.running:
                draw.choice(self.running).kill()
                self.deaths += 1

    def told(self, names):
        """The commands that name one of these, a line each."""
        start = self.log[0][0]
        for begun, ended, code, words, said in sorted(self.log):
            if names & set(words):
                yield (f"    {begun - start:8.3f} to {ended - start:8.3f}  {' '.join(words)}"
                       f"  [{code}] {said[:300]}")


class School:
    """A store, its ledger, and how both are asked."""

    def __init__(self, programs, roots):
        self.programs, self.roots = programs, roots
        self.ledger = Ledger()
        self.count = 0
        self.outcomes = collections.Counter()
        self.lock = threading.Lock()

    def new_name(self, kind):
        """None comes twice. Those of students lead to folder names that collide."""
        with self.lock:
            self.count += 1
            return {"teacher": "T{} Hill", "class": "C{} Maple",
                    "student": "Ann Leewood {}"}[kind].format(self.count)

    def change(self, root, verb, words, change):
        """A command that is to change something; what came of it goes to the ledger."""
        code, _, errors = self.programs.run("kivadmin", *verb.split(), root, *words)
        is_killed = code == -signal.SIGKILL
        if code == 0:
            change.done()
        elif is_killed or "not all of it is" in errors:
            change.died()
        else:
            change.refused()
        if code < 0 and not is_killed:
            self.ledger.fault(change.entry, f"kivadmin {verb} ended by signal {-code}")
        with self.lock:
            self.outcomes[verb.split()[0], "done" if code == 0 else
                          "killed" if is_killed else "refused"] += 1

    # Looking, when nobody else is at work

    def ask(self, root, name, *words):
        code, output, errors = self.programs.run(name, *words[:-1], root, *words[-1:])
        if code != 0:
            self.ledger.fault(None, f"{name} {' '.join(words)} through {root}: [{code}]\n"
                              f"{output}{errors}")
        return output

    def look(self, root, had_deaths):
        """Holds the store against the ledger."""
        if had_deaths:
            self.programs.run("kivadmin", "check", root, "--repair")
        self.ask(root, "kivadmin", "check", "--format=text")
        self.ledger.settle(self.places(root))
        self.look_at_missions(root)
        self.look_at_options(root)

    def places(self, root):
        """As Ledger.settle takes them."""
        found = collections.defaultdict(list)
        for row in rows(self.ask(root, "kivadmin", "export", "--charset=windows-1252")):
            above = ()
            for name in (row[0], row[1], " ".join(row[2:]).strip()):
                is_student = len(above) == 2
                if name and name not in DEFAULTS and (is_student or name not in found):
                    found[name].append((above, False))
                above += (name,)
        listed = self.ask(root, "kivadmin", "undelete", "--charset=windows-1252")
        for name in re.findall(r'^#\d+  .{19}  \w+ "([^"]*)"', listed, re.MULTILINE):
            found[name].append(((), True))
        return found

    def look_at_missions(self, root):
        report = self.ask(root, "kivreport", "--format=csv")
        missions = {row[2]: row[3] for row in rows(report)}
        for entry in self.ledger.of_kind("student"):
            if entry.is_shown and MISSION in entry.told and entry.place.name in missions:
                self.ledger.settle_option(entry, MISSION, missions[entry.place.name])

    def look_at_options(self, root):
        """At each level by itself, and only where something was set since the last look."""
        for entry in self.ledger.entries:
            if not entry.is_shown or not entry.is_changed:
                continue
            entry.is_changed = False
            with tempfile.TemporaryDirectory() as folder:
                text = pathlib.Path(folder) / "options.txt"
                self.ask(root, "kivadmin", "options", "export", *level(entry), str(text))
                values = dict(re.findall(r"^(\w+)=(\d+)", text.read_text("latin-1"), re.MULTILINE))
            for key in OPTIONS:
                if key in entry.told:
                    self.ledger.settle_option(entry, key, values.get(key))


def rows(text):
    """Of a CSV report, without its head."""
    return list(csv.reader(io.StringIO(text)))[1:]


def level(entry):
    """The options of the command line that name it."""
    names = [*(above.place.name for above in entry.ancestors)][::-1] + [entry.place.name]
    return [word for pair in zip(("--teacher", "--class", "--student"), names) for word in pair]


class Actor(threading.Thread):
    """Does one thing after another, unless all are to wait."""

    def __init__(self, school, number, seed):
        super().__init__(daemon=True)
        self.school, self.number = school, number
        self.root = school.roots[number % len(school.roots)]
        self.draw = random.Random(f"{seed} {number}")
        self.may_go, self.is_idle = threading.Event(), threading.Event()
        self.error = None

    def run(self):
        try:
            while True:
                self.is_idle.set()
                self.may_go.wait()
                self.is_idle.clear()
                self.act()
        except Exception as error:  # whatever it is, the school cannot go on without
            self.error = error
            self.is_idle.set()


class Reader(Actor):
    """Lists and reports. In none of that may a name stand that nobody gave."""

    QUESTIONS = [("kivadmin", "export"), ("kivreport", "--format=csv"), ("kivadmin", "check"),
                 ("kivreport", "--roster", "--format=csv")]

    def act(self):
        name, *words = self.draw.choice(self.QUESTIONS)
        code, output, errors = self.school.programs.run(name, *words, self.root)
        if code < 0 and code != -signal.SIGKILL:
            self.school.ledger.fault(None, f"{name} {words} ended by signal {-code}: {errors}")
        if code < 0 or words == ["check"]:
            return
        for row in rows(output):
            student = row[2] if name == "kivreport" else " ".join(row[2:]).strip()
            for given in {row[0], row[1], student} - {"", *DEFAULTS}:
                if not self.school.ledger.has_given(given):
                    self.school.ledger.fault(None, f'{name} listed "{given}", a name nobody gave')


class Worker(Actor):
    """Changes the school at random."""

    def act(self):
        action, kinds = self.draw.choices(
            [(self.add, "student"), (self.add, "class"), (self.add, "teacher"),
             (self.rename, "student"), (self.rename, "class"), (self.rename, "teacher"),
             (self.move, "student"), (self.move, "class"),
             (self.delete, "student"), (self.delete, "class"), (self.delete, "teacher"),
             (self.undelete, "student"), (self.undelete, "class"), (self.undelete, "teacher"),
             (self.purge, "student"), (self.set_option, "student class teacher"),
             (self.set_mission, "student")],
            [8, 2, 1, 8, 3, 2, 8, 2, 4, 1, 1, 4, 2, 2, 1, 8, 5])[0]
        with self.school.ledger.lock:
            command = action(self.draw.choice(kinds.split()))
        if command is not None:
            self.school.change(self.root, *command)

    # Each gives the command's verb, its words and the change for the ledger; None if there is
    # nobody to do it to. A few of each kind are everybody's favourites, so that people meet.

    def pick(self, kind, condition=lambda entry: entry.is_shown):
        fitting = [entry for entry in self.school.ledger.of_kind(kind)
                   if entry.is_sure and condition(entry)]
        few = fitting[:2] if self.draw.random() < 0.4 else fitting
        return self.draw.choice(few) if few else None

    def pick_above(self, kind):
        return self.pick({"student": "class", "class": "teacher"}[kind])

    def add(self, kind):
        above = self.pick_above(kind) if kind != "teacher" else None
        ledger = self.school.ledger
        there = sum(entry.is_listed for entry in ledger.of_kind(kind))
        if (above is None and kind != "teacher") or there >= MOST[kind]:
            return None
        name = self.school.new_name(kind)
        words = split_name(kind, name) + (level(above) if above else [])
        return "add " + kind, words, ledger.begin(kind, None, Place(above, name))

    def rename(self, kind):
        entry = self.pick(kind)
        if entry is None:
            return None
        name = self.school.new_name(kind)
        words = [entry.place.name, *split_name(kind, name), *level(entry)[:-2]]
        return "rename " + kind, words, self.begin(entry, Place(entry.place.parent, name))

    def move(self, kind):
        entry, above = self.pick(kind), self.pick_above(kind)
        if entry is None or above is None or entry.place.parent is above:
            return None
        to = [word.replace("--", "--to-") for word in level(above)]
        words = [entry.place.name, *level(entry)[:-2], *to]
        return "move " + kind, words, self.begin(entry, Place(above, entry.place.name))

    def delete(self, kind):
        entry = self.pick(kind)
        if entry is None:
            return None
        to = Place(entry.place.parent, entry.place.name, is_deleted=True)
        return ("delete " + kind, [entry.place.name, "--yes", *level(entry)[:-2]],
                self.begin(entry, to))

    def purge(self, kind):
        entry = self.pick(kind)
        if entry is None:
            return None
        return ("delete " + kind, [entry.place.name, "--yes", "--purge", *level(entry)[:-2]],
                self.begin(entry, None))

    def undelete(self, kind):
        entry = self.pick(kind, lambda entry: entry.place and entry.place.is_deleted)
        if entry is None:
            return None
        to = Place(entry.place.parent, entry.place.name)
        return "undelete", [entry.place.name], self.begin(entry, to)

    def begin(self, entry, to):
        return self.school.ledger.begin(entry.kind, entry, to)

    def begin_option(self, entry, key, value, halfway=()):
        ledger = self.school.ledger
        return entry and ledger.begin_option(entry, key, value, UNDECIDED[key], halfway)

    def set_option(self, kind):
        entry, key, value = self.pick(kind), OPTIONS[self.number], str(self.draw.randrange(2, 30000))
        change = self.begin_option(entry, key, value)
        return change and ("options set", [*level(entry), f"{key}={value}"], change)

    def set_mission(self, kind):
        """Told by two files; without the second a student is reported at the mission before."""
        entry, mission = self.pick(kind), self.draw.randrange(2, 26)
        value = str(mission)
        change = self.begin_option(entry, MISSION, value, (str(mission - 1),))
        return change and ("progress", [*level(entry), "--mission", value, "--learned-keys", "yes"],
                           change)


def split_name(kind, name):
    """As the command line takes it."""
    return name.split(" ", 1) if kind == "student" else [name]


class Play:
    """The whole of it: a school is laid out, works, and is looked at in between."""

    def __init__(self, line):
        self.seed = line.seed or str(random.randrange(10 ** 6))
        self.seconds, self.spares = line.seconds, line.spare
        self.programs = Programs(line.programs)
        self.school = School(self.programs, line.roots)
        self.actors = [Worker(self.school, i, self.seed) for i in range(WORKERS)]
        self.actors += [Reader(self.school, i, self.seed) for i in range(WORKERS, WORKERS + READERS)]
        self.draw = random.Random(self.seed)

    def run(self):
        print(f"seed {self.seed}, {self.seconds} s, {WORKERS} that change, {READERS} that read")
        self.lay_out()
        for actor in self.actors:
            actor.start()
        end = time.monotonic() + self.seconds
        while time.monotonic() < end and not self.school.ledger.faults:
            self.work(min(end, time.monotonic() + max(4, self.seconds / 6)))
        if not self.school.ledger.faults:
            self.bring_all_back()
        return self.tell()

    def lay_out(self):
        root, ledger = self.school.roots[0], self.school.ledger
        self.programs.run("kivadmin", "init", root, "--kind", "teachers")
        text = "teacher,class,first_name,last_name\n"
        changes = []
        for teacher in self.lay(changes, "teacher", None, 3):
            for group in self.lay(changes, "class", teacher, 2):
                for student in self.lay(changes, "student", group, 8):
                    text += ",".join([teacher.first.name, group.first.name,
                                      *split_name("student", student.first.name)]) + "\n"
        with tempfile.NamedTemporaryFile("w", suffix=".csv") as file:
            file.write(text)
            file.flush()
            code, _, errors = self.programs.run("kivadmin", "import", root, file.name)
        if code != 0:
            ledger.fault(None, "nothing could be laid out: " + errors)

    def lay(self, changes, kind, above, count):
        entries = []
        for _ in range(count):
            place = Place(above, self.school.new_name(kind))
            change = self.school.ledger.begin(kind, None, place)
            change.done()
            entries.append(change.entry)
        return entries

    def work(self, until):
        """Lets all of them work, kills one each second, and looks what has become of it."""
        deaths = self.programs.deaths
        for actor in self.actors:
            actor.may_go.set()
        while time.monotonic() + 1 < until:
            time.sleep(1)
            if not self.spares:
                self.programs.kill_one(self.draw)
        time.sleep(max(0, until - time.monotonic()))
        for actor in self.actors:
            actor.may_go.clear()
        for actor in self.actors:
            actor.is_idle.wait()
            if actor.error is not None:
                raise actor.error
        self.school.look(self.draw.choice(self.school.roots), self.programs.deaths > deaths)

    def bring_all_back(self):
        """So that what was in it is looked at too; what belongs to a list that is gone stays."""
        for kind in ("teacher", "class", "student"):
            for entry in self.school.ledger.of_kind(kind):
                if entry.place is not None and entry.place.is_deleted:
                    to = Place(entry.place.parent, entry.place.name)
                    self.school.change(self.school.roots[0], "undelete", [entry.place.name],
                                       self.school.ledger.begin(kind, entry, to))
        # What a death left in something that was set aside is back with it.
        self.school.look(self.school.roots[-1], self.programs.deaths > 0)

    def tell(self):
        outcomes = self.school.outcomes
        for verb in sorted({verb for verb, _ in outcomes}):
            print(f"  {verb:9}" + ", ".join(f"{outcomes[verb, how]:5} {how}"
                                            for how in ("done", "refused", "killed")))
        done = sum(count for (_, how), count in outcomes.items() if how == "done")
        print(f"{done} changes, {self.programs.deaths} killed,"
              f" {sum(entry.is_shown for entry in self.school.ledger.of_kind('student'))} students")
        for entry, text in self.school.ledger.faults:
            print("FAULT: " + text)
            # A path has the folder's name, which is the first of its owner's without the blanks.
            names = entry.names if entry else {name for name in self.school.ledger.by_name
                                               if name.replace(" ", "") in text}
            print("\n".join(self.programs.told(names)))
        if done < FEWEST:
            print(f"FAULT: fewer than {FEWEST} changes went through")
        is_good = not self.school.ledger.faults and done >= FEWEST
        print("nothing was lost" if is_good else f"it did not hold (--seed {self.seed})")
        return 0 if is_good else 1


def command_line():
    parser = argparse.ArgumentParser(description="Is anything lost in a school that many change?")
    parser.add_argument("programs", metavar="BIN")
    parser.add_argument("roots", metavar="ROOT", nargs="*")
    parser.add_argument("--seconds", type=int, default=15)
    parser.add_argument("--seed")
    parser.add_argument("--spare", action="store_true", help="kill nobody")
    return parser.parse_intermixed_args()


def main():
    line = command_line()
    with tempfile.TemporaryDirectory(prefix="kivstore-school-") as folder:
        line.roots = line.roots or [folder]
        return Play(line).run()


if __name__ == "__main__":
    sys.exit(main())
