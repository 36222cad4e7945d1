"""A private copy of the tree, in which one change at a time is built and tested."""
import json
import os
import re
import shlex
import shutil
import subprocess
import time
from dataclasses import dataclass

from mutation.changes import Change
from mutation.shield import run
from mutation.tree import NOT_PRODUCT, ROOT, WORK, Problem, tracked_files

BUILD_LIMIT = 1800            # seconds for all that a change makes necessary to build
# Tests that are scripts, with what they need built and what makes them ask the same every time.
SCRIPTS = {"hosts": (("kivadmin", "kivreport", "hold_file"), ()),
           "roster_files": (("kivadmin", "kivreport"), ()),
           "backups": (("kivadmin", "kivreport"), ()),
           "report_terminal": (("kivadmin", "kivreport"), ()),
           "examples": (("kivstore",), ()),
           "planted_links": (("kivadmin", "kivreport"), ()),
           "callers": (("kivadmin", "kivreport", "kivstore"), ("--seed", "1")),
           "page": (("kivadmin", "kivreport"), ())}
# A browser reserves more memory than there is, and wants a home to write in.
BEFORE = {"page": ("sh", "-c", 'ulimit -S -v unlimited; HOME=$TMPDIR exec "$@"', "sh")}
CANNOT_RUN_HERE = 77
CAUGHT, SURVIVED, NOT_BUILT, SAME_CODE = "caught", "SURVIVED", "does not compile", "same code"


@dataclass
class Outcome:
    """What became of a change; `by` names the test that caught it."""

    change: Change
    kind: str
    by: str = ""
    seconds: float = 0.0

    @property
    def is_fault(self):
        return self.kind in (CAUGHT, SURVIVED)


@dataclass(frozen=True)
class Check:
    """A test program or a test that is a script, and what is built for it."""

    name: str
    command: tuple
    targets: tuple
    is_program: bool = True


def stamp_of(path):
    status = os.stat(path)
    return status.st_mtime_ns, status.st_size


def files_below(folder):
    return [path for path in folder.rglob("*") if path.is_symlink() or path.is_file()]


def catcher(check, ran):
    """The test that failed, or the one that ran last."""
    failed = re.findall(r"^\[  FAILED  \] ([^\s,]+)", ran.output, re.M)
    begun = re.findall(r"^\[ RUN      \] (\S+)", ran.output, re.M)
    how = "hung in " if not ran.in_time else "" if failed else "died in "
    return f"{check.name}: {how}{(failed or begun[-1:] or ['its start'])[0]}"


class PrivateCopy:
    """The copy (tree), its build, and a second copy of the build (clean) to come back to."""

    def __init__(self, number, build_jobs, keep_going):
        self.own = WORK / str(number)
        self.tree, self.build, self.clean = (self.own / name for name in ("tree", "build", "clean"))
        self.build_jobs, self.keep_going = build_jobs, keep_going
        self.objects = {}          # source or header -> the objects that are made of it
        self.compiled = {}         # object -> its source and the compiler's command line
        self.limits = {}           # check -> seconds that it may take, the quickest first
        self.left_out = {}         # check -> tests that fail on the unchanged tree

    # The unchanged tree.

    def prepare(self):
        self.sync()
        self.configure()
        built = self.ninja("all")
        if not built.is_good:
            raise Problem(f"the unchanged tree does not build:\n{built.output[-3000:]}")
        self.read_dependencies()
        self.measure()
        shutil.rmtree(self.clean, ignore_errors=True)
        shutil.copytree(self.build, self.clean, symlinks=True)

    def sync(self):
        """What differs is written anew and so built anew, also what an interrupted run left."""
        files = set(tracked_files())
        for name in files:
            source, copy = ROOT / name, self.tree / name
            if not copy.is_file() or copy.read_bytes() != source.read_bytes():
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(source, copy)
            shutil.copymode(source, copy)
        for copy in files_below(self.tree):
            if str(copy.relative_to(self.tree)) not in files:
                copy.unlink()

    def configure(self):
        """Quick to compile, and no warnings: what a change leaves unused is the tests' to find."""
        self.build.mkdir(parents=True, exist_ok=True)
        settings = ["-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
                    "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"]
        for language in ("C", "CXX"):
            settings += [f"-DCMAKE_{language}_FLAGS=-w", f"-DCMAKE_{language}_FLAGS_DEBUG=-O0"]
        done = self.make(["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", *settings])
        if not done.is_good:
            raise Problem(f"cmake cannot configure the tree:\n{done.output[-3000:]}")

    def make(self, command):
        return run(command, BUILD_LIMIT, WORK, self.own)

    def ninja(self, *targets):
        done = self.make(["ninja", "-C", self.build, "-j", self.build_jobs, *targets])
        (self.own / "build.log").write_text(done.output, encoding="utf-8")
        return done

    def read_dependencies(self):
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            words = shlex.split(entry["command"])
            source = os.path.relpath(entry["file"], self.tree)
            self.compiled[words[words.index("-o") + 1]] = source, words
        listed = subprocess.run(["ninja", "-C", str(self.build), "-t", "deps"], capture_output=True,
                                text=True, check=True).stdout
        for line in listed.splitlines():
            if line[:1].strip():
                name = line.split(":")[0]
            elif line.strip() and name in self.compiled:
                path = os.path.relpath(os.path.normpath(self.build / line.strip()), self.tree)
                self.objects.setdefault(path, []).append(name)

    def checks(self):
        programs = [Check(path.name, (path,), (f"bin/{path.name}",))
                    for path in sorted((self.build / "bin").glob("test_*"))
                    if os.access(path, os.X_OK)]
        if not programs:
            raise Problem(f"no test programs in {self.build / 'bin'}")
        shown = subprocess.run(["ctest", "--test-dir", str(self.build), "--show-only=json-v1"],
                               capture_output=True, text=True, check=True).stdout
        commands = {test["name"]: test.get("command") for test in json.loads(shown)["tests"]}
        scripts = [Check(name, (*BEFORE.get(name, ()), *commands[name], *arguments), targets, False)
                   for name, (targets, arguments) in SCRIPTS.items() if commands.get(name)]
        return programs + scripts

    def measure(self):
        """Runs every check once: how long it takes, and what fails anyway."""
        seconds = {}
        for check in self.checks():
            ran = run(list(check.command), BUILD_LIMIT, WORK)
            if ran.status == CANNOT_RUN_HERE:
                print(f"left out, for it cannot run here: {check.name}")
                continue
            failed = sorted(set(re.findall(r"^\[  FAILED  \] ([\w./]+)", ran.output, re.M)))
            if not ran.is_good and not (self.keep_going and failed and check.is_program):
                raise Problem(f"{check.name} fails on the unchanged tree "
                              f"(--keep-going leaves tests of a program out): "
                              f"{failed or ran.output[-500:]}")
            if failed:
                print(f"left out, for it fails on the unchanged tree: {', '.join(failed)}")
            self.left_out[check], seconds[check] = failed, ran.seconds
        for check in sorted(seconds, key=seconds.get):
            self.limits[check] = min(max(10.0, 4 * seconds[check]), 300.0)

    # One change.

    def attempt(self, change):
        began = time.monotonic()
        source = self.tree / change.path
        text, status = source.read_text(encoding="utf-8"), os.stat(source)
        lines = text.split("\n")
        lines[change.line - 1] = change.after
        changed = "\n".join(lines)
        source.write_text(changed, encoding="utf-8")
        outcome = self.judge(change)
        if outcome.kind == SURVIVED and self.is_same_optimized(change.path, text, changed):
            outcome.kind = SAME_CODE
        # In this order: whenever it is interrupted, the next run sees what has to be built anew.
        self.restore_build()
        source.write_text(text, encoding="utf-8")
        os.utime(source, ns=(status.st_atime_ns, status.st_mtime_ns))
        outcome.seconds = time.monotonic() - began
        return outcome

    def judge(self, change):
        """First by what is quick: one object, then the nearest tests."""
        objects = self.product_objects(change.path)
        if not objects:
            return Outcome(change, SAME_CODE)
        if not self.ninja(objects[0]).is_good:
            return Outcome(change, NOT_BUILT)
        if len(self.objects[change.path]) == 1 and not self.differs(objects[0]):
            return Outcome(change, SAME_CODE)
        near = self.near_checks(change.path)
        targets = [target for check in near for target in check.targets]
        outcome = self.judge_by(change, targets, near)
        return outcome if outcome.kind != SURVIVED else self.judge_by(change, ["all"], self.limits)

    def judge_by(self, change, targets, checks):
        if targets and not self.ninja(*targets).is_good:
            return Outcome(change, NOT_BUILT)
        if targets == ["all"] and not any(self.differs(name) for name in self.objects[change.path]):
            return Outcome(change, SAME_CODE)
        for check in checks:
            ran = self.run_tests(check)
            if not ran.is_good:
                return Outcome(change, CAUGHT, catcher(check, ran))
        return Outcome(change, SURVIVED)

    def run_tests(self, check):
        command = list(check.command)
        if check.is_program:
            command.append("--gtest_fail_fast")
        if self.left_out[check]:
            command.append("--gtest_filter=-" + ":".join(self.left_out[check]))
        return run(command, self.limits[check], WORK)

    def near_checks(self, path):
        """Those that bear the name of a folder above the file, the nearest first."""
        found = {check.name.removeprefix("test_"): check for check in self.limits}
        return [found[folder] for folder in path.split("/")[-2::-1] if folder in found]

    def product_objects(self, path):
        """The file's objects that are no tests', those of its own folder first."""
        folder = os.path.dirname(path)
        source = {name: self.compiled[name][0] for name in self.objects.get(path, [])}
        product = [name for name in source if not NOT_PRODUCT.search(source[name])]
        return sorted(product, key=lambda name: (os.path.dirname(source[name]) != folder, name))

    def differs(self, name):
        return (self.build / name).read_bytes() != (self.clean / name).read_bytes()

    def is_same_optimized(self, path, text, changed):
        """Whether the optimizer makes the same of both: then they are one program."""
        for name in self.product_objects(path):
            results = []
            for content in (text, changed):
                (self.tree / path).write_text(content, encoding="utf-8")
                results.append(self.optimized(name))
            if results[0] is None or results[0] != results[1]:
                return False
        return True

    def optimized(self, name):
        words, result = self.compiled[name][1], self.own / "optimized.o"
        result.unlink(missing_ok=True)
        at = words.index("-o")
        done = self.make([*words[:at], "-o", result, *words[at + 2:], "-O2", "-DNDEBUG"])
        return result.read_bytes() if done.is_good else None

    def restore_build(self):
        """Everything that was built since stands again as it was, with its time."""
        for path in files_below(self.build):
            if not os.path.lexists(self.clean / path.relative_to(self.build)):
                path.unlink()
        for clean in files_below(self.clean):
            path = self.build / clean.relative_to(self.clean)
            if not clean.is_symlink() and (not path.exists() or stamp_of(path) != stamp_of(clean)):
                shutil.copy2(clean, path)
