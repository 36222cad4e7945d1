"""Which lines are changed, and how: the draw of mutate.py, and what is left out of it."""
import hashlib
import re
import threading
from collections import Counter, defaultdict
from dataclasses import dataclass

from mutation.changes import changes_of, code_lines
from mutation.tree import ROOT, Problem, product_files, read_source, room_of

EXCLUSIONS = ROOT / "scripts" / "mutate_equivalent.txt"
LEAST_OF_A_ROOM = 3
MOST_VAIN_DRAWS = 40          # in a row, before something else must be wrong


@dataclass
class Exclusion:
    """A line, or one change of it, that is left out; file `*` is any, `~` begins a pattern."""

    file: str
    before: str
    after: str
    used: bool = False

    def holds_for(self, change):
        if self.file not in ("*", change.name):
            return False
        before = change.before.strip()
        if self.before.startswith("~"):
            return re.search(self.before[1:], before) is not None
        return self.before == before and self.after in ("", change.after.strip())


def read_exclusions():
    exclusions, has_reason = [], False
    for number, line in enumerate(EXCLUSIONS.read_text(encoding="utf-8").splitlines(), 1):
        if line.startswith("why: "):
            has_reason = True
        elif line.strip() and not line.startswith("#"):
            file, colon, code = line.strip().partition(": ")
            if not colon or not has_reason or not line.startswith(" "):
                raise Problem(f"{EXCLUSIONS.name}:{number}: "
                              "want 'why: REASON' and below it, indented, 'FILE: CODE'")
            before, _, after = code.partition(" => ")
            exclusions.append(Exclusion(file, before, after))
    return exclusions


def is_excluded(change, exclusions):
    found = [entry for entry in exclusions if entry.holds_for(change)]
    for entry in found:
        entry.used = True
    return bool(found)


def rank(seed, *parts):
    return hashlib.sha256("\0".join([str(seed), *map(str, parts)]).encode()).hexdigest()


def chosen(seed, changes, copy):
    """The place of a line in the draw, and the one of its changes that is tried."""
    key = (changes[0].name, changes[0].before.strip(), copy)
    return rank(seed, *key), min(changes, key=lambda change: rank(seed, *key, change.after.strip()))


def lines_drawn(seed, path, source, exclusions, copies):
    """What `chosen` says of each line of a file; `copies` tells apart lines of the same text."""
    for changes in changes_of(path, source):
        text = (changes[0].name, changes[0].before.strip())
        copy, copies[text] = copies[text], copies[text] + 1
        if left := [change for change in changes if not is_excluded(change, exclusions)]:
            yield chosen(seed, left, copy)


def draws_of_rooms(seed, only, exclusions):
    """For each room its changes in the order of the draw, and its lines of code."""
    drawn, sizes, copies = defaultdict(list), Counter(), Counter()
    for path in product_files():
        if only and path != only and not path.startswith(only.rstrip("/") + "/"):
            continue
        source = read_source(path)
        sizes[room_of(path)] += code_lines(source)
        drawn[room_of(path)] += lines_drawn(seed, path, source, exclusions, copies)
    order = {room: [change for _, change in sorted(lines, key=lambda line: line[0])]
             for room, lines in drawn.items() if lines}
    return order, {room: sizes[room] for room in order}


def shares(sizes, count):
    """How many changes each room gets: by its lines, but a few each."""
    total = sum(sizes.values())
    wanted = {room: max(LEAST_OF_A_ROOM, count * size / total) for room, size in sizes.items()}
    given = {room: int(want) for room, want in wanted.items()}
    while sum(given.values()) < count:
        given[max(sorted(given), key=lambda room: wanted[room] - given[room])] += 1
    while sum(given.values()) > max(count, len(given)):
        given[max(sorted(given), key=lambda room: given[room])] -= 1
    return given


class Draw:
    """Hands out changes until each room has its number of faults; for what was none, another."""

    def __init__(self, order, wanted):
        self.order, self.wanted = order, wanted
        self.at, self.taken, self.vain = Counter(), Counter(), 0
        self.lock = threading.Lock()

    def next(self):
        """None if there is nothing to do at present."""
        with self.lock:
            for room in sorted(self.wanted):
                if self.taken[room] < self.wanted[room] and self.at[room] < len(self.order[room]):
                    self.taken[room] += 1
                    self.at[room] += 1
                    return self.order[room][self.at[room] - 1]
        return None

    def settle(self, change, is_fault):
        with self.lock:
            self.vain = 0 if is_fault else self.vain + 1
            if not is_fault:
                self.taken[room_of(change.path)] -= 1
            if self.vain > MOST_VAIN_DRAWS:
                raise Problem(f"{self.vain} changes in a row did not compile or changed nothing; "
                              "build/mutate/1/build.log has the last one's build")

    def faults(self):
        """How many faults there will be."""
        return sum(min(number, len(self.order[room])) for room, number in self.wanted.items())

    def first(self):
        """What is tried first, before anything is found to be no fault."""
        return [change for room, number in sorted(self.wanted.items())
                for change in self.order[room][:number]]
