#!/usr/bin/env python3
"""Replays sessions with the host programs and compares all that they print.

    run_transcripts.py BIN [--update] [--under EMULATOR] [NAME ...]

BIN holds kivadmin, kivreport and hold_file. Every transcripts/NAME.txt is played, or those that are
named. --update writes what was printed into the transcripts where it is not what they expect.

A transcript is read like a terminal session. It has a folder of its own, in which its commands run:

    # What rule is shown, and why.
    $ kivadmin init {root}                a command, quoted as in a shell; {root} is a folder to be
                                          made, {above} the one above it
    laid out a store of kind teachers at {root}          its standard output, whole
    ! kivadmin: ...                       a line of its standard error
    [1]                                   its exit code, if not 0
    ...                                   any lines
    {any}                                 within a line: any text
    {time}, {stamp}, {seconds}            a time of our days: a date with its time, the same as
                                          20260102-030405, or in seconds since 1904
    {hundreds}                            a whole number of at least 100
    {=NAME}                               any text, but the same wherever {=NAME} stands

Control characters and bytes that are no UTF-8 are shown as \\r, \\0, \\xNN; a last line without its
end has a backslash for it, and so has an output's line that would be taken for something else in
front. What begins as JSON must be JSON. Behind a command `> FILE` keeps its standard output instead
of comparing it, and `&` runs it at once with the commands up to the first that has none.
{tab} is a tab; {=processors} is how many processors there are, of which at most 64 are counted.

Steps of the runner's own. What they print is compared like a command's output; `\\` works in names
and bytes as it does in a `> file` if a quotation keeps it, and a `*` stands for what is found.

    > begin with NAME              plays another transcript first
    > let NAME PATH                from then on {NAME} is that path
    > file PATH                    writes the lines below, each with four blanks in front; \\r, \\0,
                                   \\xNN, \\\\; a backslash at a line's end: no line's end there
    > show PATH [FIRST COUNT]      prints a file, or so many bytes from one on
    > copy KIND [PATH]             puts the golden store of that kind at {root}, or another path
    > duplicate FROM TO            copies a file
    > folder PATH, > remove PATH   makes, removes one
    > lines PATH COUNT LINE        adds so many lines to a file, in which {n} is 1, 2 and so on
    > cut PATH LENGTH              shortens a file, as a crash does
    > empty PATH                   makes an empty file
    > splice PATH AT COUNT BYTES   puts these bytes in place of so many
    > edit PATH OLD NEW            puts NEW in place of every OLD, which must be there
    > tree [PATH]                  prints the paths below {root} or another, with lengths but 0; this
                                   and the next four pass over the log, which every change grows
    > remember                     keeps what is below {root}, names and bytes
    > restore                      puts it back
    > same                         all is as remembered, or nothing behind it is played
    > changed                      prints what is not: + came, - went, ~ has other bytes
    > json PATH KEY ...            prints what a file of JSON holds there
    > diff A B                     prints the lines that differ in two files
    > hold PATH, > read PATH       has it open for writing, reading in another process
    > let go                       lets all of these go
    > examples NAME                brings what lies in that folder of the examples
    > session DOC HEADING          plays the commands of that section of a document, which shows a
                                   terminal: errors as they come, no codes, /srv for {above}, and
                                   any time for a time
    > not under wine: WHY          leaves the transcript out there
    > only on x86: WHY             leaves it out on other processors
"""
import argparse
import concurrent.futures
import difflib
import json
import os
import pathlib
import platform
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import threading
import time

sys.dont_write_bytecode = True
from transcript import WILD, Wrong, body_bytes, bytes_of, joined, parse, shown

HERE = pathlib.Path(__file__).resolve().parent
TRANSCRIPTS = HERE / "transcripts"
GOLDEN = HERE.parent / "golden"
LONGEST = 300  # seconds of one command
LOG = ("kivadmin.log", "kivadmin.lok")


def contents(path):
    """The bytes of a file; of one that a program holds alone, since it keeps out readers too, its
    length and time."""
    try:
        with open(path, "rb", opener=lambda name, flags: os.open(
                name, flags | getattr(os, "O_NONBLOCK", 0))) as file:
            return file.read()
    except BlockingIOError:
        facts = path.stat()
        return (facts.st_size, facts.st_mtime_ns) if facts.st_size else b""


def snapshot(root):
    """Every path below but the log, with its bytes; None for a folder."""
    return {str(path.relative_to(root)): None if path.is_dir() else contents(path)
            for path in sorted(root.rglob("*")) if path.name not in LOG}


def differences(before, after):
    for path in sorted(before.keys() | after.keys()):
        if path not in after:
            yield "- " + path
        elif path not in before:
            yield "+ " + path
        elif before[path] != after[path]:
            yield "~ " + path


class Programs:
    """How the programs are run."""

    def __init__(self, folder, emulator):
        self.folder = pathlib.Path(folder).resolve()
        self.emulator = shlex.split(emulator)
        self.environment = {key: value for key, value in os.environ.items() if key != "SUDO_USER"}
        self.environment["USER"] = "hill"

    def command(self, words):
        path = self.folder / words[0]
        if not path.exists():
            path = path.with_suffix(".exe")
        if not path.exists():
            raise Wrong(f"no program {path}")
        return self.emulator + [str(path)] + words[1:]

    def run(self, words, folder):
        """With a standard input that no system takes for a terminal."""
        return subprocess.run(self.command(words), cwd=folder, env=self.environment, input=b"",
                              check=False, timeout=LONGEST, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE)

    def start(self, words):
        return subprocess.Popen(self.command(words), env=self.environment,
                                stdin=subprocess.DEVNULL)


# Steps that say where a transcript is left out.
LEFT_OUT = {"> not under wine": lambda programs: bool(programs.emulator),
            "> only on x86": lambda programs: not re.match(r"x86|i.86|AMD64", platform.machine())}


class Play:
    """One transcript, played in a folder of its own."""

    def __init__(self, name, programs):
        self.name, self.programs = name, programs
        self.path = TRANSCRIPTS / (name + ".txt")
        self.steps, self.tail = parse(self.path.read_text(encoding="utf-8"))
        self.skipped = self.why_skipped()
        self.remembered, self.captured, self.held, self.together = {}, {}, [], []
        self.fault = ""

    def why_skipped(self):
        for step in self.steps:
            condition, _, why = step.line.partition(": ")
            if condition in LEFT_OUT and LEFT_OUT[condition](self.programs):
                return why
        return ""

    def run(self):
        start = time.monotonic()
        with tempfile.TemporaryDirectory(prefix="kivstore-test-") as folder:
            self.above = pathlib.Path(folder).resolve()
            self.root = self.above / "store"
            self.names = {"{root}": str(self.root), "{above}": str(self.above), "{tab}": "\t"}
            self.captured["processors"] = str(min(64, len(os.sched_getaffinity(0))))
            try:
                self.play(self.steps)
            finally:
                self.let_go()
        self.seconds = time.monotonic() - start
        return self

    def play(self, steps):
        for step in steps:
            try:
                (self.run_command if step.line[0] == "$" else self.run_step)(step)
            except (Wrong, OSError, KeyError, IndexError, TypeError, ValueError) as error:
                self.fault = f"{step.line}\n{type(error).__name__}: {error}\n"
                return

    def faults(self):
        """What is not as expected, as a unified diff."""
        text = ""
        for step in self.steps:
            if not step.is_met and step.got is not None:
                diff = difflib.unified_diff(step.expected, step.got, "expected", "got", lineterm="")
                text += joined([step.line, *diff])
        unplayed = [step.line for step in self.steps if step.got is None]
        return text + self.fault + ("not played: " + unplayed[0] if unplayed else "")

    def update(self):
        lines = [line for step in self.steps for line in step.lines()]
        self.path.write_text(joined(lines + self.tail), encoding="utf-8")

    # Names and paths

    def expand(self, text):
        for name, path in self.names.items():
            text = text.replace(name, path)
        return text

    def at(self, path):
        path = self.above / os.fsdecode(bytes_of(self.expand(path)))
        if "*" not in path.name + path.parent.name:
            return path
        found = list(self.above.glob(str(path.relative_to(self.above))))
        if len(found) != 1:
            raise Wrong(f"{len(found)} of these are there")
        return found[0]

    def hide(self, data):
        """The folder's name out of what was printed, and slashes below it on every system."""
        text = data.decode("utf-8", "surrogateescape")
        if self.programs.emulator:
            below = re.escape(str(self.above)).replace("/", r"[/\\]{1,2}")
            text = re.sub(rf"(?:[A-Za-z]:)?{below}[^\s\"',;:]*",
                          lambda match: re.sub(r"^[A-Za-z]:|(?<=\\)\\", "", match[0])
                          .replace("\\", "/"), text)
        text = text.replace(str(self.root), "{root}").replace(str(self.above), "{above}")
        return text.encode("utf-8", "surrogateescape")

    # Commands

    def run_command(self, step):
        words = step.words
        is_together = words[-1] == "&"
        words = words[:-1] if is_together else words
        thread = threading.Thread(target=self.run_words, args=(step, words))
        thread.start()
        self.together.append(thread)
        if not is_together:
            for other in self.together:
                other.join()
            self.together = []

    def run_words(self, step, words):
        kept = None
        if len(words) > 2 and words[-2] == ">":
            kept, words = self.at(words[-1]), words[:-2]
        try:
            result = self.programs.run([self.expand(word) for word in words], self.above)
        except (Wrong, OSError, subprocess.SubprocessError) as error:
            step.settle([f"(not run: {error})"], self.captured)
            return
        output = self.hide(result.stdout)
        if kept:
            kept.write_bytes(output)
        step.settle(self.told(b"" if kept else output, self.hide(result.stderr),
                              result.returncode), self.captured)

    @staticmethod
    def told(output, errors, code):
        lines = shown(output)
        if output.startswith((b"{\n", b"[\n")):
            try:
                json.loads(output)
            except ValueError as error:
                lines.append(f"(no JSON: {error})")
        lines += ["! " + line for line in shown(errors)]
        return lines + ([f"[{code}]"] if code else [])

    # The runner's own steps

    def run_step(self, step):
        if step.line.partition(": ")[0] in LEFT_OUT:
            step.settle([], self.captured)
            return
        first, *words = step.words
        if first == "file":
            words.append(step.body)
        two = f"{first}_{words[0]}" if words else first
        if hasattr(self, "do_" + two):
            first, words = two, words[1:]
        do = getattr(self, "do_" + first, None)
        if do is None:
            raise Wrong("no such step")
        step.settle(list(do(*words) or []), self.captured)

    @staticmethod
    def write(path, data):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)

    def do_begin_with(self, name):
        other = Play(name, self.programs)
        other.above, other.root, other.names = self.above, self.root, self.names
        other.play(other.steps)
        if other.faults():
            raise Wrong(f"{name}: {other.faults()}")

    def do_examples(self, name):
        shutil.copytree(HERE.parent.parent / "examples" / name, self.above, dirs_exist_ok=True)

    def do_session(self, doc, heading):
        text = (HERE.parent.parent / doc).read_text(encoding="utf-8")
        section = re.search(rf"^##? {re.escape(heading)}$(.*?)(?=^##? \w|\Z)", text, re.M | re.S)[1]
        fenced = re.findall(r"^```\n(.*?)^```$", section, re.M | re.S)
        blocks = fenced or [re.sub("^    ", "", block, flags=re.M)
                            for block in re.findall(r"(?:^    .*\n)+", section, re.M)]
        shown_there = re.sub("^# ", r"\\# ", "".join(blocks), flags=re.M)
        steps, _ = parse(re.sub(WILD["{time}"], "{time}", shown_there))
        for step in steps:
            result = self.programs.run(step.words, self.above)
            got = self.hide(result.stdout + result.stderr)
            got = got.replace(b"{above}", b"/srv").replace(b"\r\n", b"\n")
            step.settle(shown(got), self.captured)
            if not step.is_met:
                raise Wrong("\n".join([step.line, *step.got]))

    def do_let(self, name, path):
        self.names["{" + name + "}"] = self.expand(path)

    def do_file(self, path, body):
        self.write(self.at(path), body_bytes(body))

    def do_show(self, path, first="0", count=None):
        data = self.at(path).read_bytes()[int(first):]
        return shown(data if count is None else data[:int(count)])

    def do_copy(self, kind, path="{root}"):
        shutil.copytree(GOLDEN / kind / "store", self.at(path))

    def do_duplicate(self, source, target):
        self.write(self.at(target), self.at(source).read_bytes())

    def do_folder(self, path):
        self.at(path).mkdir(parents=True)

    def do_remove(self, path):
        path = self.at(path)
        shutil.rmtree(path) if path.is_dir() else path.unlink()

    def do_lines(self, path, count, line):
        with open(self.at(path), "ab") as file:
            for number in range(1, int(count) + 1):
                file.write(bytes_of(line.replace("{n}", str(number)) + "\n"))

    def do_cut(self, path, length):
        data = self.at(path).read_bytes()
        if int(length) >= len(data):
            raise Wrong(f"it has {len(data)} bytes")
        self.write(self.at(path), data[:int(length)])

    def do_empty(self, path):
        self.write(self.at(path), b"")

    def do_splice(self, path, at, count, new=""):
        data, at, count = self.at(path).read_bytes(), int(at), int(count)
        if at + count > len(data):
            raise Wrong(f"it has {len(data)} bytes")
        self.write(self.at(path), data[:at] + bytes_of(new) + data[at + count:])

    def do_edit(self, path, old, new):
        data, old = self.at(path).read_bytes(), bytes_of(old)
        if old not in data:
            raise Wrong("it is not there")
        self.write(self.at(path), data.replace(old, bytes_of(new)))

    def do_tree(self, path="{root}"):
        folder = self.at(path)
        return [name + ("/" if data is None else f": {len(data)} bytes" if data else "")
                for name, data in snapshot(folder).items()]

    def do_remember(self):
        self.remembered = snapshot(self.root)

    def do_restore(self):
        shutil.rmtree(self.root)
        for path, data in self.remembered.items():
            target = self.root / path
            target.mkdir(parents=True) if data is None else self.write(target, data)

    def do_same(self):
        changes = list(self.do_changed())
        if changes:
            raise Wrong("\n".join(["it is not:", *changes]))

    def do_changed(self):
        return differences(self.remembered, snapshot(self.root))

    def do_diff(self, a, b):
        lines = [shown(self.at(path).read_bytes()) for path in (a, b)]
        diff = difflib.unified_diff(*lines, lineterm="", n=0)
        return [line for line in list(diff)[2:] if not line.startswith("@@")]

    def do_json(self, path, *keys):
        value = json.loads(self.at(path).read_bytes())
        for key in keys:
            value = value[int(key) if isinstance(value, list) else key]
        return [json.dumps(value, ensure_ascii=False)]

    def do_hold(self, path, how="w"):
        flag = self.above / f"held{len(self.held)}"
        program = self.programs.start(["hold_file", str(self.at(path)), how, str(flag)])
        self.held.append((flag, program))
        while not flag.exists():
            if program.poll() is not None:
                raise Wrong("it cannot be held")
            time.sleep(0.001)

    def do_read(self, path):
        self.do_hold(path, "r")

    def do_let_go(self):
        self.let_go()

    def let_go(self):
        for flag, program in self.held:
            flag.unlink(missing_ok=True)
            program.wait()
        self.held = []


def command_line():
    parser = argparse.ArgumentParser(description="Replays sessions with the host programs.")
    parser.add_argument("programs", metavar="BIN")
    parser.add_argument("names", metavar="NAME", nargs="*")
    parser.add_argument("--update", action="store_true")
    parser.add_argument("--under", metavar="EMULATOR", default="")
    return parser.parse_intermixed_args()


def main():
    """The counts are told as the other test programs tell theirs."""
    line = command_line()
    names = line.names or sorted(path.stem for path in TRANSCRIPTS.glob("*.txt"))
    plays = [Play(name, Programs(line.programs, line.under)) for name in names]
    left = [play for play in plays if play.skipped]
    # What takes time is waiting for locks, or starting the programs under an emulator.
    workers = 2 * os.cpu_count() if line.under else 16
    with concurrent.futures.ThreadPoolExecutor(workers) as pool:
        played = list(pool.map(Play.run, [play for play in plays if not play.skipped]))
    failed = [play for play in played if play.faults()]
    for play in failed:
        print(f"--- {play.name}\n{play.faults()}")
        if line.update:
            play.update()
    for play in left:
        print(f"left out: {play.name}: {play.skipped}")
    print(f"[  PASSED  ] {len(played) - len(failed)} tests.")
    if left:
        print(f"[  SKIPPED ] {len(left)} tests.")
    if failed:
        print(f"[  FAILED  ] {len(failed)} tests: " + " ".join(play.name for play in failed))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
