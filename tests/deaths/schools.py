"""The stores that the deaths are tried on, and what is to be seen in one."""
import collections
import itertools
import json
import pathlib
import re
import shlex
import subprocess

import killing

# Each list that changes takes more than one block of 4,096 bytes in its index.
FIRST = "Ann Beatrice Christopher Dorothea Ebenezer Francesca Guillermo Henrietta Ignatius Josephine Katharine Leopold " \
        "Margarethe Nathaniel Ophelia Penelope Quentin Rosalinda Sebastian Theodora".split()
LAST = "Lee Applebaum Birmingham Castellano Dombrowski Eisenhower Featherstone Grimshaw Hollingsworth Ishikawa " \
       "Jorgensen Kowalczyk Lindqvist Montgomery Nightingale Oppenheimer Pfefferkorn Quintanilla".split()
PEOPLE = [f"{first},{last}" for last, first in itertools.product(LAST, FIRST)]
HEADER = "teacher,class,first_name,last_name"

# What there is to lose: the lines of an export, the figures of a report by student, what undelete offers.
Seen = collections.namedtuple("Seen", "lines figures deleted")


def students():
    """A class of 330, one of 200, and a small one."""
    return ([f"Ms Hill,5a,{person}" for person in PEOPLE[:330]] + [f"Ms Hill,5b,{person}" for person in PEOPLE[20:220]] +
            [f"Ms Hill,Barn,{person}" for person in PEOPLE[:3]])


def classes():
    """Two teachers with a long list of classes each; three classes have students."""
    many = [f"{teacher},Room {number} of the {wing} wing" for teacher in ("Ms Hill", "Mr Reed")
            for number, wing in itertools.product(range(1, 37), ("eastern", "western", "southern", "northern"))]
    return ([line + ",," for line in many] + [f"Ms Hill,Barn,{person}" for person in PEOPLE[:4]] +
            [f"Mr Reed,Yard,{person}" for person in PEOPLE[2:5]] + [f"Ms Hill,Yard,{person}" for person in PEOPLE[5:7]])


def teachers():
    """A long list of teachers, of whom one has classes."""
    return ([f"{first} {last} the elder,,," for last, first in itertools.product(LAST[:9], FIRST)] +
            [f"Ms Hill,{group},{person}" for group in ("5a", "Barn") for person in PEOPLE[:3]])


LAYOUTS = {"students": students, "classes": classes, "teachers": teachers}


class Programs:
    """The two host programs, run as anybody runs them."""

    def __init__(self, folder):
        self.kivadmin = str(pathlib.Path(folder).resolve() / "kivadmin")
        self.kivreport = str(pathlib.Path(folder).resolve() / "kivreport")

    def line(self, line):
        program, *arguments = shlex.split(line)
        return [getattr(self, program), *arguments]

    def run(self, line, where):
        return subprocess.run(self.line(line), cwd=where, env=killing.environment(), text=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)

    def need(self, line, where):
        done = self.run(line, where)
        if done.returncode != 0:
            raise RuntimeError(f"{line}: ended with {done.returncode}: {done.stdout}{done.stderr}")
        return done.stdout

    def report(self, where):
        done = self.run("kivreport --format json store", where)
        if done.returncode == 1:  # a school without classes
            return []
        if done.returncode != 0:
            raise RuntimeError(f"kivreport: ended with {done.returncode}: {done.stderr}")
        report = json.loads(done.stdout)
        told = ("name", "current_mission", "previous_mission", "vocab_level")
        return sorted((teacher["name"], group["name"], *[student[key] for key in told])
                      for teacher in report["teachers"] for group in teacher["classes"]
                      for student in group["students"])

    def look(self, where):
        """Nothing of it repairs anything."""
        lines = sorted(self.need("kivadmin export store", where).splitlines()[1:])
        deleted = self.need("kivadmin undelete store", where).splitlines()
        return Seen(lines, None, sorted(re.sub(r"^#\d+  \S+ \S+  ", "", line) for line in deleted))

    def see(self, where):
        """As a teacher sees it, which repairs the lists on the way."""
        figures = self.report(where)
        return self.look(where)._replace(figures=figures)


def lay_out(programs, layout, where):
    """A new store `store` in the folder, with figures that tell some students from the others."""
    where.mkdir(parents=True)
    rows = LAYOUTS[layout]()
    (where / "all.csv").write_text("\n".join([HEADER, *rows]) + "\n")
    programs.need("kivadmin init store", where)
    programs.need("kivadmin import store all.csv", where)
    group = "5a" if "Ms Hill,5a," in "\n".join(rows) else "Barn"
    for mission, person in enumerate(PEOPLE[:3], start=4):
        programs.need(f"kivadmin progress store --teacher 'Ms Hill' --class '{group}' "
                      f"--student '{person.replace(',', ' ')}' --mission {mission} --learned-keys yes", where)


def copy_store(template, where):
    subprocess.run(["cp", "-r", str(template), str(where)], check=True)
