"""The public header and the examples: that strict compilers take them, and that each prints a store.

    examples_test.py ROOT LIBRARY [--under=EMULATOR PROGRAM ...]

The examples are compiled against the shared library LIBRARY, with the flags that it was built with.
On a system without a compiler the programs that are named were compiled along with the tests.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

LOCAL = """\
  Room 12
    Ann Lee: mission 7
    José Núñez: mission 4
    Mei: mission 1
  Späte Gruppe
    Bob O'Brien: mission 25
"""
NETWORKED = """\
Mr Björk
  Klasse 7
    Nils Åkesson: mission 1
Ms Hill
""" + LOCAL
HOST = """\
#include <kivstore/general_proc.h>
int main(void) { SGeneralParams p; p.command = KIV_PRODUCT_ID; return p.command != 78; }
"""


def text_of(output):
    """The examples print names as the store has them; Python's in UTF-8."""
    output = output.replace(b"\r", b"")
    try:
        return output.decode("utf-8")
    except UnicodeDecodeError:
        return output.decode("cp1252")


class Examples(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        for kind in ("teachers", "local"):
            shutil.copytree(ROOT / "tests/golden" / kind / "store", self.folder / kind)

    def expect_rosters(self, *command, **options):
        for arguments, roster in (["teachers"], NETWORKED), (["--local", "local"], LOCAL):
            run = subprocess.run([*command, *arguments], cwd=self.folder, check=True,
                                 stdout=subprocess.PIPE, **options)
            self.assertEqual(text_of(run.stdout), roster)

    def compile_and_run(self, compiler, standard, source):
        program = self.folder / "example"
        subprocess.run([compiler, standard, "-pedantic", *FLAGS, "-o", program,
                        ROOT / "examples" / source, f"-L{LIBRARY.parent}", "-lkivstore",
                        f"-Wl,-rpath,{LIBRARY.parent}"], check=True)
        self.expect_rosters(program)

    @unittest.skipIf("--under" in str(sys.argv), "compiled along with the tests")
    def test_the_compiled_ones_run(self):
        self.compile_and_run("cc", "-std=c99", "print_store.c")
        self.compile_and_run("c++", "-std=c++17", "print_store.cpp")

    @unittest.skipUnless("--under" in str(sys.argv), "compiled here")
    def test_the_programs_run(self):
        for program in PROGRAMS:
            self.expect_rosters(*UNDER, program)

    @unittest.skipIf("--under" in str(sys.argv), "no interpreter there")
    def test_the_one_in_python_runs(self):
        if FLAGS_OF_BUILD:
            self.skipTest("the interpreter is of another build than the library")
        self.expect_rosters(sys.executable, ROOT / "examples/print_store.py",
                            env=dict(os.environ, KIVSTORE_LIBRARY=str(LIBRARY)))

    @unittest.skipIf("--under" in str(sys.argv), "no compiler there")
    def test_the_header_is_strict_c_and_cpp(self):
        for compiler, standard, name in (("cc", "-std=c99", "host.c"), ("cc", "-std=c17", "host.c"),
                                         ("c++", "-std=c++11", "host.cpp"),
                                         ("c++", "-std=c++20", "host.cpp")):
            (self.folder / name).write_text(HOST)
            subprocess.run([compiler, standard, "-pedantic-errors", "-fsyntax-only", *FLAGS,
                            self.folder / name], check=True)


def flags_of(library):
    """32 bits by the word size in the file's head, the sanitizers by what the library asks for."""
    if not library.exists() or library.suffix == ".dll":
        return []
    flags = ["-m32"] if library.read_bytes()[4] == 1 else []
    if b"__asan_init" in library.read_bytes():
        flags.append("-fsanitize=address,undefined")
    return flags


if __name__ == "__main__":
    ROOT, LIBRARY = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    UNDER = [part for argument in sys.argv[3:4] for part in argument.split("=", 1)[1].split(";")]
    PROGRAMS = sys.argv[4:]
    FLAGS_OF_BUILD = flags_of(LIBRARY)
    FLAGS = ["-Wall", "-Wextra", "-Werror", f"-I{ROOT}/include", *FLAGS_OF_BUILD]
    unittest.main(argv=sys.argv[:1])
