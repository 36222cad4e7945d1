#!/usr/bin/env python3
"""Writes a report of a store each night, keeps one of each day, and says what wants a look.

    nightly_report.py [OPTIONS] ROOT FOLDER

ROOT is the data root of the store. In FOLDER, which is made if it is not there, there are then

    report.html                  the page of the last night that could be read as a whole, with who moved
                                 on in a week and each class's median over time
    kept/2026-11-22.json         a report of each day, which the next ones are compared with
    incomplete/2026-11-22.json   what there is of a night on which not all could be read, with its page;
    incomplete/2026-11-22.html   nothing is ever compared with it

Each file comes into its place whole. What was done is one line on standard output, what went wrong stands
on standard error. Exit codes:

    0  good
    1  the report is kept, but wants a look: nobody is in the store, or many are gone since the last one
    2  wrong usage
    3  not all could be read, or nothing, or the report could not be written
"""
import argparse
import datetime
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

GOOD, WANTS_A_LOOK, WRONG_USAGE, FAILED = range(4)
MANY_GONE = 0.1  # of those who were there
A_DAY = 24 * 60 * 60
DATED = re.compile(r"(\d{4}-\d\d-\d\d)\.(json|html)")


class Failure(Exception):
    """What ends the run, in words for a person."""


def tell(message):
    print(f"nightly_report.py: {message}", file=sys.stderr)


class Night:
    """One run: `today` names its files."""

    def __init__(self, line):
        self.line = line
        self.today = line.date
        self.kept = line.folder / "kept"
        self.incomplete = line.folder / "incomplete"
        self.told = set()
        for folder in self.kept, self.incomplete:
            folder.mkdir(parents=True, exist_ok=True)

    def run(self):
        """The exit code."""
        with tempfile.TemporaryDirectory(dir=self.line.folder, prefix="writing-") as folder:
            folder = pathlib.Path(folder)
            code = self.ask(folder / "report.json", "json")
            report = json.loads((folder / "report.json").read_text(encoding="utf-8"))
            code = max(code, self.ask(folder / "report.html", "html", *self.comparison()))
            if code >= FAILED:
                place(folder / "report.json", self.incomplete / f"{self.today}.json")
                place(folder / "report.html", self.incomplete / f"{self.today}.html")
                raise Failure(f"not all could be read: {self.incomplete}/{self.today}.html has the rest, "
                              "report.html is still that of before")
            before = self.last_kept()
            place(folder / "report.json", self.kept / f"{self.today}.json")
            place(folder / "report.html", self.line.folder / "report.html")
        self.forget()
        return max(code, self.judge(students_in(report), before))

    def ask(self, output, form, *options):
        """kivreport's exit code, if there is a report; its own words are passed on, once."""
        command = [self.line.kivreport, str(self.line.root), "--quiet", "--format", form, *options,
                   "--output", str(output)]
        run = subprocess.run(command, check=False, stdin=subprocess.DEVNULL, stderr=subprocess.PIPE)
        for line in run.stderr.splitlines():
            if line not in self.told:
                sys.stderr.buffer.write(line + b"\n")
            self.told.add(line)
        sys.stderr.flush()
        if run.returncode not in (GOOD, WANTS_A_LOOK, FAILED) or not output.exists():
            raise Failure(f"kivreport ended with {run.returncode} and wrote no report of {self.line.root}")
        return run.returncode

    def days(self, folder):
        """What is there, by day; what has no date for its name is somebody else's."""
        names = (DATED.fullmatch(path.name) for path in folder.iterdir())
        return sorted({name[1] for name in names if name})

    def read_kept(self, day):
        """None for what is no report; there is one less to compare with."""
        path = self.kept / f"{day}.json"
        try:
            report = json.loads(path.read_text(encoding="utf-8"))
            students_in(report)
            return report
        except (ValueError, AttributeError, KeyError, TypeError):
            tell(f"{path} is no report and is passed over; remove it")
            return None

    def comparison(self):
        """With the youngest report of a week ago or earlier, or else the oldest."""
        days = [day for day in self.days(self.kept) if day < self.today]
        week = str(datetime.date.fromisoformat(self.today) - datetime.timedelta(days=self.line.since))
        order = ([day for day in reversed(days) if day <= week] + [day for day in days if day > week])
        since = next((day for day in order if self.read_kept(day)), None)
        if since is None:
            return []
        return ["--since", str(self.kept / f"{since}.json"), "--history", str(self.kept)]

    def last_kept(self):
        """How many students the last report of an earlier day has; None without one."""
        days = [day for day in self.days(self.kept) if day < self.today]
        report = self.read_kept(days[-1]) if days else None
        return None if report is None else students_in(report)

    def judge(self, students, before):
        print(f"{self.today}: {students} students of {self.line.root}, "
              f"{'the first report' if before is None else f'{before} the last time'}")
        if before and students < before * (1 - MANY_GONE):
            tell(f"{before - students} of {before} students are gone since the last report; "
                 f"kivadmin log {self.line.root} tells who did what, kivadmin undelete brings back")
            return WANTS_A_LOOK
        return GOOD

    def forget(self):
        """Takes away what is older than it is to be kept."""
        oldest = datetime.date.fromisoformat(self.today) - datetime.timedelta(days=self.line.keep)
        for folder in self.kept, self.incomplete:
            for path in folder.iterdir():
                name = DATED.fullmatch(path.name)
                if name and name[1] < str(oldest):
                    path.unlink()
        for path in self.line.folder.glob("writing-*"):  # of a run that was killed
            if path.stat().st_mtime < time.time() - A_DAY:
                shutil.rmtree(path)


def students_in(report):
    holders = report.get("teachers", [report])
    return sum(len(group["students"]) for holder in holders for group in holder.get("classes", []))


def place(source, target):
    """Onto the disk, and then under its name at once."""
    with open(source, "rb") as file:
        os.fsync(file.fileno())
    os.replace(source, target)


def day(text):
    try:
        return str(datetime.date.fromisoformat(text))
    except ValueError:
        raise argparse.ArgumentTypeError(f"{text} is no day, as in 2026-11-22") from None


def days(text):
    if not re.fullmatch("[1-9][0-9]{0,4}", text):
        raise argparse.ArgumentTypeError(f"{text} is no number of days from 1")
    return int(text)


def command_line():
    parser = argparse.ArgumentParser(prog="nightly_report.py", description="Writes a report of a store "
                                     "each night and keeps one of each day.")
    parser.add_argument("root", metavar="ROOT", type=pathlib.Path, help="the data root of the store")
    parser.add_argument("folder", metavar="FOLDER", type=pathlib.Path, help="where the reports go")
    parser.add_argument("--keep", metavar="DAYS", type=days, default=400,
                        help="how long a day's report is kept [400]")
    parser.add_argument("--since", metavar="DAYS", type=days, default=7,
                        help="the page tells who moved on in so many days [7]")
    parser.add_argument("--date", metavar="YYYY-MM-DD", type=day, default=str(datetime.date.today()),
                        help="the day of the report; else today")
    parser.add_argument("--kivreport", metavar="PROGRAM", default="kivreport",
                        help="the program; else the one on the PATH")
    return parser.parse_args()


def main():
    line = command_line()
    try:
        return Night(line).run()
    except OSError as error:
        tell(f"{error.filename}: {error.strerror}")
        return FAILED
    except (Failure, ValueError) as error:
        tell(error)
        return FAILED


if __name__ == "__main__":
    sys.exit(main())
