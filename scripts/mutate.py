#!/usr/bin/env python3
"""Tells whether the tests catch what they should: makes small faults and counts those that pass.

A fault is one changed line of the product: a comparison widened, a constant off by one, a condition
negated or forced, a call dropped, `&&` for `||`, an answer flipped. The lines are drawn by a seed,
each room (folder at the root) getting its share by its lines of code. One fault at a time is put
into a private copy of the tree, which is built and tested: first the test programs that bear the
name of a folder above the file, then all. It is caught by the first program that fails, dies or
takes four times as long as it should. A change that does not compile, or that compiles to the same
code, is no fault, and the next is drawn for it.

    scripts/mutate.py                          120 changes, the same ones for the same seed and tree
    scripts/mutate.py --seed 7 --count 40      others, and fewer
    scripts/mutate.py --only store/lock        of one room, folder or file
    scripts/mutate.py --list                   says what would be changed; builds nothing
    scripts/mutate.py --again                  those only that passed in the last run
    scripts/mutate.py --least 85               exit code 1 if less than 85 % is caught

A draw hangs on the text of a line and the name of its file, not on where they stand: a tree that
was moved about, or grew, is mostly asked the same questions as before. What no test can catch is
listed, each with its reason, in scripts/mutate_equivalent.txt, and is not drawn.

The copy and its build lie in build/mutate and stay there, so that the next run begins at once; the
working tree is only read. What is built and run sees everything but that copy read-only, and its
temporary files are in memory: a faulty deletion cannot harm this machine.

Exit codes: 0 done, 1 less caught than --least, 2 wrong usage, something is missing, or the tests
fail on the unchanged tree.
"""
import argparse
import json
import os
import shutil
import sys
import threading
from collections import defaultdict

sys.dont_write_bytecode = True
from mutation.changes import Change  # noqa: E402
from mutation.draw import EXCLUSIONS, Draw, draws_of_rooms, read_exclusions, shares  # noqa: E402
from mutation.private_copy import CAUGHT, SURVIVED, PrivateCopy  # noqa: E402
from mutation.shield import run  # noqa: E402
from mutation.tree import ROOT, WORK, Problem, read_source, room_of  # noqa: E402

SURVIVORS = WORK / "survivors.json"
NEEDED = {"git": "git", "cmake": "cmake", "ninja": "ninja-build", "g++": "g++",
          "unshare": "util-linux"}


class Run:
    """Workers that take changes from the draw, and what came of them."""

    def __init__(self, draw, jobs, keep_going):
        self.draw, self.outcomes, self.problems = draw, [], []
        self.lock = threading.Lock()
        build_jobs = max(1, (os.cpu_count() or 1) // jobs)
        self.copies = [PrivateCopy(number, build_jobs, keep_going) for number in range(1, jobs + 1)]

    def go(self):
        for copy in self.copies:
            print(f"building {copy.own.relative_to(ROOT)}", flush=True)
            copy.prepare()
        workers = [threading.Thread(target=self.work, args=(copy,)) for copy in self.copies]
        for worker in workers:
            worker.start()
        try:
            for worker in workers:
                worker.join()
        except KeyboardInterrupt:
            print("stopping after the change at hand", flush=True)
            self.problems.append(Problem("stopped"))
        if self.problems:
            raise self.problems[0]

    def work(self, copy):
        try:
            while not self.problems and (change := self.draw.next()):
                outcome = copy.attempt(change)
                self.note(outcome)
                self.draw.settle(change, outcome.is_fault)
        except Exception as problem:  # told where the workers are waited for
            self.problems.append(problem)

    def note(self, outcome):
        with self.lock:
            self.outcomes.append(outcome)
            place = f"{len(self.faults()):3} of {self.draw.faults()}" if outcome.is_fault else ""
            by = f", {outcome.by}" if outcome.by else ""
            how = f"({outcome.seconds:.1f} s{by})"
            print(f"{place:10} {outcome.kind:8} {told(outcome.change)} {how}", flush=True)

    def faults(self):
        return [outcome for outcome in self.outcomes if outcome.is_fault]


def told(change):
    return f"{change.path}:{change.line} {change.kind}"


def tell_change(change):
    print(f"{told(change)}\n  - {change.before.strip()}\n  + {change.after.strip()}")


def percent(part, whole):
    return 100.0 * part / whole if whole else 0.0


def tell_results(faults):
    """The share that was caught, in percent."""
    survivors = [outcome.change for outcome in faults if outcome.kind == SURVIVED]
    print("\nnot caught:" if survivors else "")
    for change in sorted(survivors, key=lambda change: (change.path, change.line)):
        tell_change(change)
    rooms = defaultdict(list)
    for outcome in faults:
        rooms[room_of(outcome.change.path)].append(outcome.kind == CAUGHT)
    print()
    for room, caught in sorted(rooms.items()):
        print(f"{room}: {len(caught)} changes, {sum(caught)} caught "
              f"({percent(sum(caught), len(caught)):.0f} %)")
    caught = len(faults) - len(survivors)
    print(f"{len(faults)} changes, {caught} caught ({percent(caught, len(faults)):.1f} %)")
    return percent(caught, len(faults))


def keep_survivors(faults):
    kept = [vars(outcome.change) for outcome in faults if outcome.kind == SURVIVED]
    SURVIVORS.write_text(json.dumps(kept, indent=1), encoding="utf-8")


def as_it_stands(change):
    """The change at the place where its line is now; None if the line is gone."""
    lines = read_source(change.path).split("\n") if (ROOT / change.path).is_file() else []
    places = [number for number, line in enumerate(lines, 1) if line == change.before]
    if not places:
        return None
    line = min(places, key=lambda number: abs(number - change.line))
    return Change(change.path, line, change.kind, change.before, change.after)


def survivors_of_last_run(only):
    if not SURVIVORS.is_file():
        raise Problem("there is no last run to repeat")
    order = defaultdict(list)
    for fields in json.loads(SURVIVORS.read_text(encoding="utf-8")):
        change = as_it_stands(Change(**fields))
        if change and change.path.startswith(only):
            order[room_of(change.path)].append(change)
    return order, {room: len(changes) for room, changes in order.items()}


def draw(arguments):
    exclusions = read_exclusions()
    order, sizes = draws_of_rooms(arguments.seed, arguments.only, exclusions)
    for entry in exclusions:
        if not entry.used and not arguments.only:
            print(f"{EXCLUSIONS.name}: no such line any more: {entry.file}: {entry.before}")
    wanted = shares(sizes, arguments.count) if order else {}
    if arguments.again:
        order, wanted = survivors_of_last_run(arguments.only)
    if not order:
        raise Problem("there is nothing to change")
    return Draw(order, wanted)


def need_tools():
    missing = " ".join(package for tool, package in NEEDED.items() if not shutil.which(tool))
    if missing:
        raise Problem(f"missing: {missing}; on Debian: apt-get install {missing}")
    WORK.mkdir(parents=True, exist_ok=True)
    tried = run(["true"], 60, WORK)
    if not tried.is_good:
        raise Problem("no mount namespace can be made here, and without one a faulty deletion "
                      f"could harm this machine: {tried.output}")


def positive(text):
    if not text.isdecimal() or int(text) < 1:
        raise argparse.ArgumentTypeError("must be a number of at least 1")
    return int(text)


def read_arguments():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seed", type=int, default=1, help="draws other changes (default: 1)")
    parser.add_argument("--count", type=positive, default=120,
                        help="how many faults (default: 120)")
    parser.add_argument("--jobs", type=positive, default=1,
                        help="faults tried at once, each in a copy of its own (default: 1)")
    parser.add_argument("--only", default="", metavar="PATH", help="a room, a folder or a file")
    parser.add_argument("--list", action="store_true", help="say what would be changed, and stop")
    parser.add_argument("--again", action="store_true",
                        help="what passed in the last run, once more")
    parser.add_argument("--keep-going", action="store_true",
                        help="leave out tests that fail on the unchanged tree instead of stopping")
    parser.add_argument("--least", type=float, default=0.0, metavar="PERCENT",
                        help="exit code 1 if less is caught")
    return parser.parse_args()


def main():
    arguments = read_arguments()
    drawn = draw(arguments)
    if arguments.list:
        for change in drawn.first():
            tell_change(change)
        return 0
    need_tools()
    os.nice(5)
    work = Run(drawn, arguments.jobs, arguments.keep_going)
    try:
        work.go()
    finally:
        # What a repetition that was stopped has not asked again is kept.
        if work.faults() and not (arguments.again and work.problems):
            keep_survivors(work.faults())
    return 1 if tell_results(work.faults()) < arguments.least else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except Problem as problem:
        print(f"mutate: {problem}", file=sys.stderr)
        sys.exit(2)
    except KeyboardInterrupt:
        sys.exit(130)
