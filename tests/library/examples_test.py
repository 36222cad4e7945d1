"""The public header and the examples: that strict compilers take them, and that each prints a store.

    examples_test.py ROOT LIBRARY [--under=EMULATOR PROGRAM ...]

The examples are compiled against the shared library LIBRARY, with the flags that it was built with.
On a system without a compiler the programs that are named were compiled along with the tests.
"""
import os
import pathlib
import re
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


class Examples(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        for kind in ("teachers", "local"):
            shutil.copytree(ROOT / "tests/golden" / kind / "store", self.folder / kind)

    def run_example(self, *command, **options):
        """The exit code, and what it prints and complains of, which is UTF-8."""
        run = subprocess.run(command, cwd=self.folder, check=False, capture_output=True, **options)
        return (run.returncode, *(text.replace(b"\r", b"").decode("utf-8")
                                  for text in (run.stdout, run.stderr)))

    def expect_rosters(self, *command, **options):
        for arguments, roster in (["teachers"], NETWORKED), (["--local", "local"], LOCAL):
            self.assertEqual(self.run_example(*command, *arguments, **options), (0, roster, ""))
        code, printed, _ = self.run_example(*command, "--charset", "windows-1250", "teachers", **options)
        self.assertEqual((code, printed), (0, NETWORKED.translate({0xC5: 0x139, 0xF1: 0x144})))
        for arguments in ["missing"], ["--local", "missing"], ["local"]:
            code, printed, complaint = self.run_example(*command, *arguments, **options)
            self.assertEqual((code, printed), (1, ""))
            self.assertRegex(complaint, rf"^print_store[.py]*: {arguments[-1]}: no .* there: .*kivadmin")
        code, _, complaint = self.run_example(*command, "--charset", "none", "teachers", **options)
        self.assertEqual(code, 2, complaint)
        shutil.rmtree(self.folder / "teachers/Classes.zep/MrBjrk/Classes.zep")
        code, printed, complaint = self.run_example(*command, "teachers", **options)
        self.assertEqual((code, printed), (1, "Mr Björk\nMs Hill\n" + LOCAL))
        self.assertIn("unable to read the classes of Mr Björk;", complaint)
        shutil.copytree(ROOT / "tests/golden/teachers/store", self.folder / "teachers",
                        dirs_exist_ok=True)

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

    def test_the_one_in_c_sharp_has_the_block_of_the_header(self):
        header = (ROOT / "include/kivstore/general_proc.h").read_text(encoding="utf-8")
        source = (ROOT / "examples/print_store.cs").read_text(encoding="utf-8")
        kinds = {"int32_t": "int", "uint8_t": "byte", "const char*": "IntPtr", "char": "fixed byte",
                 "uint16_t": "ushort", "int16_t": "short"}
        wanted = [(at, kinds[kind], name + length) for kind, name, length, at in re.findall(
            r"^ +([\w ]+\*?) (\w+)(\[\d+\])?; +/\* (0x\w\w) (?:in|out)", header, re.M)]
        self.assertEqual(len(wanted), 25)
        self.assertEqual(re.findall(r"FieldOffset\((0x\w\w)\)\] public ([\w ]+) (\w+(?:\[\d+\])?);",
                                    source), wanted)

    @unittest.skipIf("--under" in str(sys.argv), "compiled there by nobody")
    def test_the_one_in_c_sharp_runs(self):
        if FLAGS_OF_BUILD or not shutil.which("mcs") or not shutil.which("mono"):
            self.skipTest("no mcs and mono for this build")
        program = self.folder / "print_store.exe"
        subprocess.run(["mcs", "-unsafe", "-warnaserror", f"-out:{program}",
                        ROOT / "examples/print_store.cs"], check=True)
        self.expect_rosters("mono", program, env=dict(os.environ, LD_LIBRARY_PATH=str(LIBRARY.parent)))

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
