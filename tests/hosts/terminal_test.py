#!/usr/bin/env python3
"""kivadmin at a terminal: it asks before it takes away or moves, notices what somebody else changes
while it waits for the answer, and Ctrl-C ends it between two entries.

    terminal_test.py BIN
"""
import os
import pathlib
import pty
import re
import select
import signal
import subprocess
import sys
import tempfile
import time

KIVADMIN = pathlib.Path(sys.argv[1]).resolve() / "kivadmin"
HEADING = "teacher,class,first_name,last_name\n"
PATIENCE = 60  # seconds


class Terminal:
    """A command with a terminal of its own."""

    def __init__(self, *words):
        self.pid, self.side = pty.fork()
        if self.pid == 0:
            os.execv(KIVADMIN, ["kivadmin", *map(str, words)])
        self.text = ""

    def read(self, until=None):
        """What it prints up to a text, or to its end."""
        end = time.monotonic() + PATIENCE
        while until is None or until not in self.text:
            if not select.select([self.side], [], [], max(0, end - time.monotonic()))[0]:
                sys.exit(f"it waits, having said: {self.text}")
            try:
                data = os.read(self.side, 4096)
            except OSError:
                break
            if not data:
                break
            self.text += data.decode()
        return self.text

    def answer(self, text):
        os.write(self.side, text.encode())

    def end(self):
        """What it has said, and its exit code."""
        self.read()
        return self.text, os.waitstatus_to_exitcode(os.waitpid(self.pid, 0)[1])


def run(*words, root=""):
    done = subprocess.run([KIVADMIN, *map(str, words)], capture_output=True, text=True, check=False,
                          stdin=subprocess.DEVNULL, env={**os.environ, "KIVSTORE_ROOT": str(root)})
    if done.returncode:
        sys.exit(f"{words}: {done.stdout}{done.stderr}")
    return done.stdout


def expect(what, is_so, told):
    if not is_so:
        sys.exit(f"{what}\n{told}")


def roster(folder, name, rows):
    path = folder / name
    path.write_text(HEADING + "".join(f"Ms Hill,{row}\n" for row in rows))
    return path


def check_asking(folder):
    store = folder / "asked"
    run("init", store)
    run("import", store, roster(folder, "first.csv", ["4a,Ann,Lee", "4a,Bo,Chan", "4b,Cy,Dee"]))
    moved = roster(folder, "moved.csv", ["4b,Ann,Lee", "4b,Bo,Chan", "4b,Cy,Dee"])

    shell = Terminal("sync", store, moved)
    shell.read("[y/N]")
    shell.answer("n\n")
    text, code = shell.end()
    expect("what moves is yellow", "\x1b[33m~ student Ann Lee" in text, text)
    expect("a no is a no", code == 1 and "nothing done" in text, text)
    expect("and changes nothing", "4a,Ann,Lee" in run("export", store), text)

    shell = Terminal("sync", store, moved)
    shell.read("[y/N]")
    run("delete", "student", store, "Ann Lee", "--class", "4a", "--yes")
    run("add", "student", store, "Ann", "Lee", "--class", "4b")
    shell.answer("y\n")
    text, code = shell.end()
    expect("who has gone meanwhile is told", code == 1 and '"Ann Lee": not there any more' in text, text)
    expect("the others are moved", "1 student moved" in text, text)
    told = run("export", store)
    expect("nobody is there twice", told.count("Ann,Lee") == 1 and "4b,Bo,Chan" in told, told)
    expect("and all is in order", "in order" in run("check", store), told)


def check_ctrl_c(folder):
    """In the middle of many: what is done stays whole, the rest is told, and goes on when asked."""
    store, rows = folder / "stopped", [f"class {n % 40},First{n},Last{n}" for n in range(4000)]
    many = roster(folder, "many.csv", rows)
    run("init", store)
    shell = Terminal("import", store, many)
    shell.read("of 4041 entries")
    os.kill(shell.pid, signal.SIGINT)
    text, code = shell.end()
    told = re.search(r"stopped; (\d+) of \d+ steps are not done",
                     text.replace(",", ""))
    expect("it ends and says how far it came", code == 1 and told, text[-500:])
    kept = [row.split(",") for row in run("export", store).splitlines()[1:]]
    there = 1 + len({row[1] for row in kept}) + sum(bool(row[2]) for row in kept)
    expect("what is told is so", there == 4041 - int(told[1]), f"{there} there, {told[0]}")
    run("import", store, many)
    expect("the same command goes on", run("export", store).count("First") == 4000, "")
    expect("and all is in order", "in order" in run("check", store), "")

    locks = sorted(store.rglob("Students/*/options.lok"))
    for lock in locks:
        lock.unlink()
    shell = Terminal("check", store, "--repair")
    while not any(lock.exists() for lock in locks[::40]):
        time.sleep(0.001)
    os.kill(shell.pid, signal.SIGINT)
    text, code = shell.end()
    made = sum(lock.exists() for lock in locks)
    expect("so does a repair", code == 1 and "a part of the store is repaired" in text and
           0 < made < 4000, f"{made} made, {text[-500:]}")
    run("check", store, "--repair")
    expect("and goes on", "in order" in run("check", store), "")

    leavers = folder / "leavers.csv"
    leavers.write_text(HEADING + "".join(f"Ms Hill,{row}\n" for row in rows[:400]))
    run("delete", "student", store, "--from-file", leavers, "--yes")
    shell = Terminal("purge", store, "-y")
    shell.read("purged student")
    os.kill(shell.pid, signal.SIGINT)
    text, code = shell.end()
    told = re.search(r"interrupted: (\d+) of 400 purged", text)
    left = len(run("undelete", store).splitlines())
    expect("so does a purge", code == 1 and told and left == 400 - int(told[1]), text[-500:])


def check_completion(folder):
    """What a shell is told of a line that is being typed, the store's names too."""
    store = folder / "completed"
    run("init", store)
    run("add", "teacher", store, "Ms Hill")
    run("add", "class", store, "Room 12", "--teacher", "Ms Hill")
    for words, wanted in ((["ad"], "add"), (["add", "te"], "teacher"), (["completion", "z"], "zsh"),
                          (["init", store, "--kind", "s"], "shared"),
                          (["add", "class", store, "X", "--teac"], "--teacher"),
                          (["add", "class", store, "X", "--teacher", "ms"], "Ms Hill"),
                          (["delete", "student", store, "X", "-c", "Roo"], "Room 12")):
        told = run("__complete", *words)
        expect(f"{words} is completed", told == wanted + "\n", told)
    line = ["kivadmin", "add", "class", str(store), "X", "--teacher", "M"]
    script = f"""source <("$0" completion bash); kivadmin() {{ "$BIN" "$@"; }}; BIN=$0
        COMP_WORDS=({' '.join(line)}); COMP_CWORD={len(line) - 1}; _kivadmin; echo "${{COMPREPLY[@]}}\""""
    told = subprocess.run(["bash", "-c", script, KIVADMIN], capture_output=True, text=True, check=True)
    expect("bash quotes a name", told.stdout == "Ms\\ Hill\n", told.stdout + told.stderr)


def check_root_variable(folder):
    """A root that is left out is the one of KIVSTORE_ROOT; one that is given stands."""
    store, other = folder / "meant", folder / "other"
    run("init", root=store)
    run("init", other, root=store)
    run("add", "teacher", "Ms Hill", root=store)
    run("add", "class", "--teacher", "Ms Hill", "5a", root=store)
    run("add", "teacher", other, "Mr Fox", root=store)
    run("backup", folder / "all.zip", root=store)
    told = run("list", root=store)
    expect("the variable's store has its own", "Ms Hill" in told and "Mr Fox" not in told, told)
    expect("the other its own", "Mr Fox" in run("list", other, root=store), "")
    run("restore", folder / "all.zip", root=folder / "again")
    expect("a root may stand behind", "Ms Hill" in run("list", folder / "again"), "")


def main():
    with tempfile.TemporaryDirectory(prefix="kivstore-test-") as folder:
        check_asking(pathlib.Path(folder))
        check_ctrl_c(pathlib.Path(folder))
        check_completion(pathlib.Path(folder))
        check_root_variable(pathlib.Path(folder))
    print("[  PASSED  ] 4 tests.")


main()
