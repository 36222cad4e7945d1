"""How the source is built up: what links and includes what, and where the system is spoken to.

    house_test.py TABLE NM ROOT

TABLE has a line for each room, as CMake knows it: name, rooms that it links, library, sources; parted
by tabs, the lists by semicolons.
"""
import collections
import pathlib
import re
import subprocess
import sys
import unittest

Room = collections.namedtuple("Room", "below library sources")
Object = collections.namedtuple("Object", "room defined wanted")


def read_table(text):
    rooms = {}
    for line in text.splitlines():
        name, below, library, sources = line.split("\t")
        rooms[name] = Room(set(below.split(";")) - {""}, library, sources.split(";"))
    return rooms


def read_objects(room, listing):
    """From what `nm -A -P` prints: library[member]: symbol kind ..."""
    objects = {}
    for member, symbol, kind in re.findall(r"\[(.+?)\]: (\S+) (\w)", listing):
        object = objects.setdefault(f"{room}/{member}", Object(room, set(), set()))
        (object.wanted if kind in "Uvw" else object.defined).add(symbol)
    return objects


def reach(graph, start):
    """Everything that can be come to from there, itself only by a ring."""
    found, open = set(), [start]
    while open:
        new = graph.get(open.pop(), set()) - found
        found |= new
        open += new
    return found


def faults_of(below, objects):
    """What is wrong with the house, a text each; `below` by room, `objects` by name."""
    under = {room: reach(below, room) for room in below}
    faults = [f"{room} links itself" for room in below if room in under[room]]
    homes = collections.defaultdict(set)
    for name, object in objects.items():
        for symbol in object.defined:
            homes[symbol].add(name)
    edges = collections.defaultdict(set)
    for name, object in objects.items():
        for symbol in (object.wanted - object.defined) & homes.keys():
            allowed = under[object.room] | {object.room}
            fitting = {home for home in homes[symbol] if objects[home].room in allowed}
            edges[name] |= fitting or homes[symbol]
            if not fitting:
                faults.append(f"{name} wants {symbol} of {', '.join(sorted(homes[symbol]))}")
    for name in objects:
        ring = [other for other in reach(edges, name) if name in reach(edges, other)]
        if {objects[other].room for other in ring} - {objects[name].room}:
            faults.append(f"{name} stands in a ring of {len(ring)} files")
    return sorted(faults)


class Checker(unittest.TestCase):
    """What looks at the house finds what it is for, in made-up ones."""

    BELOW = {"low": set(), "middle": {"low"}, "high": {"middle"}, "beside": {"low"}}
    GOOD = {
        "low": "l.a[low.o]: Base T 0 5\nl.a[low.o]: malloc U\nl.a[low.o]: Inline W 0 5\n",
        "middle": "m.a[mid.o]: Mid T 0 5\nm.a[mid.o]: Base U\nm.a[two.o]: Mid U\n",
        "high": "h.a[high.o]: High T 0 5\nh.a[high.o]: Base U\nh.a[high.o]: Inline W 0 5\n",
        "beside": "b.a[side.o]: Side T 0 5\nb.a[side.o]: Inline U\n",
    }

    def faults(self, room="low", more="", below=BELOW):
        objects = {}
        for name, listing in self.GOOD.items():
            objects |= read_objects(name, listing + (more if name == room else ""))
        return faults_of(below, objects)

    def test_a_sound_house_has_no_faults(self):
        self.assertEqual(self.faults(), [])

    def test_one_symbol_that_runs_upwards_or_aside_is_a_fault(self):
        for room, symbol, home in [("low", "High", "high/high.o"), ("beside", "Mid", "middle/mid.o"),
                                   ("middle", "Side", "beside/side.o")]:
            faults = self.faults(room, f"x.a[new.o]: {symbol} U\n")
            self.assertEqual(faults, [f"{room}/new.o wants {symbol} of {home}"])

    def test_files_of_two_rooms_in_a_ring_are_a_fault(self):
        faults = self.faults("low", "l.a[low.o]: Mid U\n")
        self.assertIn("low/low.o stands in a ring of 2 files", faults)

    def test_rooms_that_link_each_other_are_a_fault(self):
        faults = self.faults(below=self.BELOW | {"low": {"high"}})
        self.assertIn("low links itself", faults)


def code_of(path):
    return re.sub(r"//.*", "", path.read_text())


class House(unittest.TestCase):
    """The house as it stands."""

    # The system, or the language's own ways to it.
    SYSTEM_HEADER = re.compile(r".+/.+|.+\.h|filesystem|fstream|thread|chrono|ctime|mutex|future")
    MAKER = re.compile(
        r"\b(O_CREAT|O_TMPFILE|CREATE_NEW|CREATE_ALWAYS|OPEN_ALWAYS"
        r"|(creat|mkdir|mkdirat|mknod|mkfifo|symlink|link|linkat|fopen|freopen|tmpfile|mkstemp"
        r"|sendfile|copy_file_range|CreateDirectoryA|CopyFileA|CreateHardLinkA|GetTempFileNameA)\()"
    )

    @classmethod
    def setUpClass(cls):
        cls.below = {name: room.below for name, room in ROOMS.items()}
        folders = {str(pathlib.PurePath(source).parent): name
                   for name, room in ROOMS.items() for source in room.sources}
        cls.code, cls.room_of = {}, {}
        for floor in sorted({folder.split("/")[0] for folder in folders}):
            for path in sorted((ROOT / floor).rglob("*")):
                if path.suffix in (".h", ".cpp", ".def"):
                    name = str(path.relative_to(ROOT))
                    cls.code[name] = code_of(path)
                    cls.room_of[name] = next((folders[str(parent)] for parent in
                                              path.relative_to(ROOT).parents
                                              if str(parent) in folders), None)

    def expect_none(self, faults):
        if faults:
            self.fail("\n" + "\n".join(faults))

    def includes(self, pattern):
        for name, text in self.code.items():
            for included in re.findall(rf"^#include {pattern}", text, re.MULTILINE):
                yield name, included

    def test_no_symbol_runs_upwards_and_no_files_of_two_rooms_form_a_ring(self):
        objects = {}
        for name, room in ROOMS.items():
            listing = subprocess.run([NM, "-A", "-P", room.library], check=True, text=True,
                                     stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
            found = read_objects(name, listing)
            self.assertTrue(any(object.defined for object in found.values()), name)
            objects |= found
        self.expect_none(faults_of(self.below, objects))

    def test_a_room_includes_nothing_but_itself_and_what_it_links(self):
        wrong = []
        for name, included in self.includes('"(.*)"'):
            room = self.room_of[name]
            allowed = reach(self.below, room) | {room}
            if not included.startswith("kivstore/") and self.room_of.get(included) not in allowed:
                wrong.append(f"{name} ({room}) includes {included} ({self.room_of.get(included)})")
        self.expect_none(wrong)

    def test_no_two_files_include_each_other_in_a_ring(self):
        graph = collections.defaultdict(set)
        for name, included in self.includes('"(.*)"'):
            graph[name].add(included)
        self.expect_none([name for name in list(graph) if name in reach(graph, name)])

    def test_only_the_platform_folder_includes_system_headers(self):
        self.expect_none([
            f"{name} includes {included}" for name, included in self.includes("<(.*)>")
            if not name.startswith("platform/") and included != "stdint.h"
            and not included.startswith("kivstore/") and self.SYSTEM_HEADER.fullmatch(included)
        ])

    def test_what_creates_stands_in_a_file_that_the_library_does_not_link(self):
        makers = {name for name, text in self.code.items() if self.MAKER.search(text)}
        self.assertEqual(makers, {f"platform/{system}/creating_file_services.cpp"
                                  for system in ("posix", "win32")})
        linked = {source for room in ROOMS.values() for source in room.sources}
        self.assertEqual(makers & linked, set())

    def test_system_calls_by_number_create_nothing(self):
        calls = {word for text in self.code.values()
                 for word in re.findall(r"\b(?:SYS|__NR)_\w+", text)}
        # openat2 can create only with the flag of open that stands in the makers' file.
        self.assertLessEqual(calls, {"SYS_getdents64", "SYS_openat2", "SYS_renameat2"})


if __name__ == "__main__":
    table, NM, root = sys.argv[1:]
    ROOT = pathlib.Path(root)
    ROOMS = read_table(pathlib.Path(table).read_text())
    unittest.main(argv=sys.argv[:1])
