#!/usr/bin/env python3
"""Runs the lines of docs/district.md, on two small schools, against a PostgreSQL of the test's own.

    district_test.py BIN

PostgreSQL listens on a socket in a folder of the test and nowhere else, and ends with it. Exit code
77 where it is not installed.
"""
import glob
import os
import pathlib
import pwd
import re
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
BIN = pathlib.Path(sys.argv[1]).resolve()
SCHOOLS = {"east": ["Mr Fox,7b,Bo,Chan", "Mr Fox,7b,Cy,Dee"], "hill": ["Ms Hill,5a,Ann,Lee"]}


def lines_of(page):
    """Each command of the page with what stands below it."""
    blocks = re.findall(r"(?:^    .*\n|^\n(?=    ))+", page, re.M)
    commands = []
    for line in "".join(blocks).splitlines():
        if line.startswith("    $ "):
            commands.append((line[6:], []))
        elif commands:
            commands[-1][1].append(line[4:])
    return [(command, "\n".join(told).strip("\n")) for command, told in commands]


class Database:
    """A server that only this test knows; the superuser cannot run one, so somebody else does."""

    def __init__(self, folder):
        found = sorted(glob.glob("/usr/lib/postgresql/*/bin"))
        if not found:
            print("PostgreSQL is not installed")
            sys.exit(77)
        self.bin, self.folder = pathlib.Path(found[-1]), folder
        self.user = "postgres" if os.geteuid() == 0 else None
        if self.user:
            shutil.chown(folder, self.user)
        self.call("initdb", "-D", folder / "data", "-A", "trust", "-U", "district", "--no-sync", "-E", "UTF8",
                  "--locale=C.UTF-8")

    def call(self, program, *words):
        subprocess.run([self.bin / program, *map(str, words)], check=True, user=self.user, cwd=self.folder,
                       stdout=subprocess.DEVNULL, stderr=subprocess.STDOUT, extra_groups=[] if self.user else None,
                       group=pwd.getpwnam(self.user).pw_gid if self.user else None)

    def __enter__(self):
        options = f"-c listen_addresses= -c unix_socket_directories={self.folder} -c fsync=off"
        self.call("pg_ctl", "-D", self.folder / "data", "-w", "-l", self.folder / "log", "-o", options, "start")

    def __exit__(self, *_):
        self.call("pg_ctl", "-D", self.folder / "data", "-m", "immediate", "stop")


def lay_schools(work):
    for name, rows in SCHOOLS.items():
        roster = work / "roster.csv"
        roster.write_text("teacher,class,first_name,last_name\n" + "\n".join(rows) + "\n")
        for words in (["init", work / name], ["import", work / name, roster]):
            subprocess.run([BIN / "kivadmin", *words], check=True, stdout=subprocess.DEVNULL)
    subprocess.run([BIN / "kivadmin", "progress", work / "hill", "--class", "5a", "--student", "Ann Lee", "--mission", "5",
                    "--lessons-done", "1-4", "--learned-keys", "yes"], check=True, stdout=subprocess.DEVNULL)
    (work / "schools.csv").write_text("name,data root\n" + "".join(
        f"{name.capitalize()},{work / name}\n" for name in SCHOOLS))
    shutil.copytree(ROOT / "examples" / "district", work, dirs_exist_ok=True)


def environment_with(database):
    return {**os.environ, "PATH": f"{BIN}:{os.environ['PATH']}", "PGHOST": str(database), "PGUSER": "district",
            "PGDATABASE": "postgres", "PSQLRC": "/dev/null"}


def load_a_bad_night(work, environment):
    """Of two with one name in one class one counts; who could not be read keeps what is known."""
    night = ("school,teacher,class,student,current_mission,previous_mission,vocab_level,lessons_done,last_work\n"
             "East,Mr Fox,7b,Bo Chan,2,1,1,1,\nEast,Mr Fox,7b,Bo Chan,3,2,1,2,\nHill,Ms Hill,5a,Ann Lee,,,,,\nWest,,,,,,,,\n")
    (work / "night.csv").write_text(night)
    ask = "SELECT student, current_mission FROM student ORDER BY student"
    told = subprocess.run(["sh", "-c", f'psql -q -v ON_ERROR_STOP=1 -f load.sql < night.csv && psql -Atc "{ask}"'],
                          cwd=work, env=environment, text=True, check=False, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT).stdout
    if told != "Ann Lee|5\nBo Chan|3\nCy Dee|1\n":
        sys.exit(f"a bad night: {told}")


def play(work, environment):
    for command, wanted in lines_of((ROOT / "docs" / "district.md").read_text()):
        done = subprocess.run(["sh", "-c", command], cwd=work, env=environment, text=True, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        told = done.stdout.replace(str(work), "/srv").strip("\n")
        if done.returncode or told != wanted:
            sys.exit(f"$ {command}\n{told}\n[{done.returncode}]\nwanted:\n{wanted}")


def main():
    with tempfile.TemporaryDirectory(prefix="kivstore-test-") as folder:
        work, database = pathlib.Path(folder) / "work", pathlib.Path(folder) / "database"
        os.chmod(folder, 0o755)
        work.mkdir()
        database.mkdir()
        lay_schools(work)
        with Database(database):
            environment = environment_with(database)
            play(work, environment)
            play(work, environment)  # a night that is loaded twice
            load_a_bad_night(work, environment)
    print("[  PASSED  ] 1 test.")


main()
