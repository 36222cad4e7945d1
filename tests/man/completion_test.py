"""The completions as they are installed: each shell takes its file and completes with it at the first Tab.

    completion_test.py COMPLETIONS PROGRAMS

Shells that are not there are left out; what kivadmin answers them is tested with the programs.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

# zsh finds a function of that name in a folder; what it would show is told instead.
ZSH = """fpath=("$0"); autoload -Uz _kivadmin; compadd() { print -r -- $answers }
words=(kivadmin unde); CURRENT=2; _kivadmin"""
BASH = """source "$0/kivadmin"; COMP_WORDS=(kivadmin unde); COMP_CWORD=1; _kivadmin; echo "${COMPREPLY[@]}" """
FISH = 'source "$argv[1]/kivadmin.fish"; complete -C "kivadmin unde"'


class Shells(unittest.TestCase):
    def complete(self, shell, name, script, *options):
        if not shutil.which(shell):
            self.skipTest(f"no {shell}")
        with tempfile.TemporaryDirectory(prefix="kivstore-test-") as folder:
            shutil.copy(COMPLETIONS / shell, pathlib.Path(folder) / name)
            environment = dict(os.environ, HOME=folder, PATH=f"{PROGRAMS}:{os.environ['PATH']}")
            run = subprocess.run([shell, *options, "-c", script, folder], check=True,
                                 capture_output=True, encoding="utf-8", env=environment)
            self.assertEqual((run.stdout, run.stderr), ("undelete\n", ""))

    def test_bash(self):
        self.complete("bash", "kivadmin", BASH)

    def test_zsh(self):
        self.complete("zsh", "_kivadmin", ZSH, "-f")

    def test_fish(self):
        self.complete("fish", "kivadmin.fish", FISH)


if __name__ == "__main__":
    COMPLETIONS, PROGRAMS = map(pathlib.Path, sys.argv[1:3])
    unittest.main(argv=sys.argv[:1])
