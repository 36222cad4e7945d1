"""The manual pages: that formatters take them, and that they tell what the programs and the header have.

    man_test.py PAGES PROGRAMS LIBRARY

PAGES is the folder of the pages that were made, PROGRAMS that of kivadmin and kivreport. The options are
those that kivadmin completes, which is another road than the help that the pages are made of. Ends with 77
where the pages were not made, or nothing can format them.
"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
WIDE = 400  # columns in which no paragraph is broken
# Options of programs that are not ours.
FOREIGN = {"--cflags", "--libs"}


def output(*command):
    return subprocess.run([*map(str, command)], check=True, encoding="utf-8", stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT).stdout


def shown(page, width=WIDE):
    text = output("mandoc", "-T", "utf8", "-O", f"width={width}", page)
    return re.sub(".\b", "", text)


def parts_of(text, heading):
    """What stands below each heading."""
    pieces = re.split(f"^{heading}(\\S.*)$", text, flags=re.M)
    return dict(zip(pieces[1::2], pieces[2::2]))


def options_in(text):
    return set(re.findall(r"(?<![\w-])--[a-z][\w-]*", text))


def tagged(text):
    """The options that a list of them has as its heads."""
    return options_in("\n".join(re.findall(r"^ {7}(-.*)$", text, re.M)))


def completed(*words):
    return set(output(PROGRAMS / "kivadmin", "__complete", *words, "--").split())


def commands(*above):
    names = [name for name in output(PROGRAMS / "kivadmin", "__complete", *above, "").split()
             if not name.startswith("-")]
    if above and not set(names).isdisjoint(("bash", "fish")):
        return [above]  # choices of an argument
    return [command for name in names for command in commands(*above, name)] or [above]


class Pages(unittest.TestCase):
    def test_formatters_have_nothing_to_say(self):
        for page in sorted(PAGES.glob("*.[1-9]")):
            with self.subTest(page.name):
                lint = subprocess.run(["mandoc", "-T", "lint", "-W", "warning", page], check=False,
                                      capture_output=True)
                self.assertEqual(lint.stdout + lint.stderr, b"")
                if shutil.which("groff"):
                    text = subprocess.run(["groff", "-ww", "-t", "-man", "-Tutf8", "-rLL=78n", page],
                                          check=True, capture_output=True)
                    self.assertEqual(text.stderr, b"")
                long = [line for line in shown(page, 80).splitlines() if len(line) > 80]
                self.assertEqual(long, [])

    def test_each_command_has_its_options_and_no_other(self):
        every = commands()
        self.assertGreater(len(every), 20)
        shared = parts_of(shown(PAGES / "kivadmin.1"), "")["OPTIONS"]
        self.assertEqual(completed(), tagged(shared) & {"--help", "--version"})
        for command in every:
            with self.subTest(command):
                text = shown(PAGES / f"kivadmin-{command[0]}.1")
                section = parts_of(parts_of(text, "")["COMMANDS"], " {3}")[" ".join(command)]
                besides = options_in("".join(re.findall(r"Besides (.*)", section)))
                self.assertEqual(tagged(section) | besides, completed(*command))
                self.assertLessEqual(besides, tagged(shared))

    def test_kivreport_has_its_options_and_no_other(self):
        told = output(PROGRAMS / "kivreport", "--help")
        heads = options_in("\n".join(re.findall(r"^  (-\S+)", told, re.M)).replace(",", " "))
        self.assertEqual(tagged(parts_of(shown(PAGES / "kivreport.1"), "")["OPTIONS"]), heads)

    def test_what_is_mentioned_is_there(self):
        known = FOREIGN | options_in(output(PROGRAMS / "kivreport", "--help").replace(",", " "))
        for command in [(), *commands()]:
            known |= completed(*command)
        for page in sorted(PAGES.glob("*.[1-9]")):
            with self.subTest(page.name):
                text = shown(page)
                self.assertLessEqual(options_in(text), known)
                for name, section in re.findall(r"(kiv[\w-]+)\((\d)\)", text):
                    self.assertTrue((PAGES / f"{name}.{section}").exists(), f"{name}({section})")

    def test_the_block_is_that_of_the_header(self):
        header = (PROJECT / "include/kivstore/general_proc.h").read_text(encoding="utf-8")
        text = shown(PAGES / "kivstore.3")
        fields = re.findall(r"(\w+)(?:\[\d+\])?; +/\* (0x[0-9A-F]+) (in|out)\b", header)
        rows = re.findall(r"^ +(0x[0-9A-F]{2}) +(\w+) +(in|out|both)\b", text, re.M)
        self.assertEqual([(name, at) for at, name, _ in rows], [(name, at) for name, at, _ in fields])
        self.assertEqual([way for _, name, way in rows if name != "classIndex"],
                         [way for name, _, way in fields if name != "classIndex"])
        self.assertEqual(sorted(re.findall(r"(KIV_\w+) \((\d+)\)", text)),
                         sorted(re.findall(r"(KIV_\w+) = (\d+)", header)))

    def test_the_example_is_a_program(self):
        example = parts_of(shown(PAGES / "kivstore.3"), "")["EXAMPLES"]
        source = re.search(r"^ +#include.*?^ +}$", example, re.M | re.S)[0]
        with tempfile.TemporaryDirectory(prefix="kivstore-test-") as folder:
            folder = pathlib.Path(folder)
            (folder / "host.c").write_text(source, encoding="utf-8")
            shutil.copytree(PROJECT / "tests/golden/teachers/store", folder / "store")
            output("cc", "-Wall", "-Wextra", "-Werror", f"-I{PROJECT}/include", "-o", folder / "host",
                   folder / "host.c", LIBRARY, f"-Wl,-rpath,{LIBRARY.parent}")
            self.assertEqual(output(folder / "host", folder / "store"), "Ann Lee is at mission 7\n")


if __name__ == "__main__":
    PAGES, PROGRAMS, LIBRARY = map(pathlib.Path, sys.argv[1:4])
    if not PAGES.is_dir() or not shutil.which("mandoc"):
        print("the pages were not made, or there is no mandoc")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])
