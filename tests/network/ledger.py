"""What the commands on a school were told, and whether the store kept its word.

Every teacher, class and student is an Entry, known by its identity through all renames and moves. A Place
is where it stands: in which list, under which name, or set aside by a delete. No name is given twice,
so a name that is found tells whose it is, and a name that is found and was never given is a fault.

A command begins from the place that its entry has, and leads to another. It is told done, it is refused,
or it dies. Two commands may begin from one place at the same time, but only one of them may be told that
it led away from there. One that died may have come to its end or not: its entry is left alone until
somebody has looked.
"""
import dataclasses
import threading


@dataclasses.dataclass(frozen=True)
class Place:
    parent: object  # the Entry whose list it is in; None for a teacher
    name: str
    is_deleted: bool = False

    def __str__(self):
        where = f" of {self.parent.place.name}" if self.parent and self.parent.place else ""
        return f"{'deleted ' if self.is_deleted else ''}\"{self.name}\"{where}"


class Entry:
    """`place` is what was told last, None before it is added and once it is purged."""

    def __init__(self, kind, place):
        self.kind = kind
        self.first = place  # where it was to be added
        self.place = None
        self.doubts = []    # where commands that died may have led, from `place`
        self.names = {place.name}
        self.told = {}      # value by option: what was told last
        self.unsure = {}    # values by option: what commands that died may have written
        self.busy = set()   # the options that are being set
        self.is_changed = False  # options were set since somebody looked

    def __str__(self):
        return f"{self.kind} {self.place or self.first}"

    @property
    def is_listed(self):
        return self.place is not None and not self.place.is_deleted

    @property
    def ancestors(self):
        entry = self.place.parent if self.place else None
        while entry is not None:
            yield entry
            entry = entry.place.parent if entry.place else None

    @property
    def is_sure(self):
        """Neither it nor what it is in depends on a command that died."""
        return not self.doubts and not any(above.doubts for above in self.ancestors)

    @property
    def is_shown(self):
        """A list of everybody has it."""
        return self.is_listed and all(above.is_listed for above in self.ancestors)


class Ledger:
    def __init__(self):
        self.lock = threading.RLock()
        self.entries = []
        self.by_name = {}
        self.faults = []

    def fault(self, entry, text):
        with self.lock:
            self.faults.append((entry, text))

    # Places

    def begin(self, kind, entry, to):
        """A command that leads `entry`, None for one to be added, to the place `to`."""
        with self.lock:
            if entry is None:
                entry = Entry(kind, to)
                self.entries.append(entry)
            if to is not None:
                entry.names.add(to.name)
                self.by_name[to.name] = entry
            return Change(self, entry, entry.place, to)

    def has_given(self, name):
        with self.lock:
            return name in self.by_name

    def of_kind(self, kind):
        with self.lock:
            return [entry for entry in self.entries if entry.kind == kind]

    # Options

    def begin_option(self, entry, key, value, before, halfway=()):
        """`before` is what it is where nobody has set it, `halfway` what else a death may leave. None
        if another command is at it: which of two came last nobody can say."""
        with self.lock:
            if key in entry.busy:
                return None
            entry.busy.add(key)
            entry.told.setdefault(key, before)
            return OptionChange(self, entry, key, value, halfway)

    # The judgement, when no command runs

    def settle(self, found):
        """`found` gives the places of each name: pairs of the names above, none where it was set
        aside, and whether it was. Says what became of the commands that died, and what is wrong."""
        found = dict(found)
        for kind in ("teacher", "class", "student"):
            for entry in self.of_kind(kind):
                self.settle_entry(entry, found)
        for name, places in found.items():
            entry = self.by_name.get(name)
            self.fault(entry, f'"{name}" is listed at {places}: '
                       + ("nobody is called that any more" if entry else "nobody gave that name"))

    def settle_entry(self, entry, found):
        """Takes what belongs to the entry out of `found`."""
        candidates = [entry.place, *entry.doubts]
        seen = {name: found.pop(name) for name in entry.names if name in found}
        right = [place for place in candidates if is_to_be_seen(place)
                 and seen == {place.name: [(tuple(names_above(place)), place.is_deleted)]}]
        if not seen:
            right = [place for place in candidates if not is_to_be_seen(place)]
        if not right:
            self.fault(entry, f"{entry} was told to be {' or '.join(map(str, candidates))}"
                       f", and is found {seen or 'nowhere'}")
        entry.place, *entry.doubts = right or [None]

    def settle_option(self, entry, key, value):
        """`value` is what the store says of it."""
        possible = [entry.told[key]] + entry.unsure.pop(key, [])
        if value not in possible:
            self.fault(entry, f"{entry}: {key} was told to be {' or '.join(map(str, possible))}"
                       f", and is {value}")
        entry.told[key] = value


def is_to_be_seen(place):
    """What stands below something that was deleted is not, until that comes back."""
    return place is not None and (place.is_deleted or not place.parent or place.parent.is_shown)


def names_above(place):
    """From the top; what was set aside stands by itself."""
    if place.is_deleted or not place.parent:
        return []
    return [*names_above(place.parent.place), place.parent.place.name]


@dataclasses.dataclass
class Change:
    """A command under way that leads an entry from one place to another."""
    ledger: Ledger
    entry: Entry
    source: Place
    target: Place

    def done(self):
        with self.ledger.lock:
            entry = self.entry
            if entry.place != self.source:
                self.ledger.fault(entry, f"{entry}: two commands were told that they led away from"
                                  f" {self.source}, one to {entry.place}, one to {self.target}")
            entry.place, entry.doubts = self.target, []

    def refused(self):
        pass

    def died(self):
        """Where another led away from the same place, this one did not. What is purged may have been
        set aside and no more."""
        with self.ledger.lock:
            if self.entry.place == self.source:
                self.entry.doubts.append(self.target)
            if self.entry.place == self.source and self.target is None:
                self.entry.doubts.append(dataclasses.replace(self.source, is_deleted=True))


@dataclasses.dataclass
class OptionChange:
    ledger: Ledger
    entry: Entry
    key: str
    value: object
    halfway: tuple

    def done(self):
        self.end(lambda: self.entry.told.update({self.key: self.value}))

    def refused(self):
        self.end(lambda: None)

    def died(self):
        self.end(lambda: self.entry.unsure.setdefault(self.key, []).extend([self.value, *self.halfway]))

    def end(self, note):
        with self.ledger.lock:
            note()
            self.entry.is_changed = True
            self.entry.busy.discard(self.key)
