"""A store that the members of a group work in together, each as a user of his own with an umask that shuts all others out.

    group_test.py BIN
"""
import grp
import os
import pathlib
import pwd
import re
import shutil
import stat
import subprocess
import sys
import tempfile
import unittest

GROUP = grp.getgrnam("daemon")
# Both are of the group, the last is not; every Debian has them.
OWNER, MEMBER, STRANGER = (pwd.getpwnam(name) for name in ("daemon", "games", "nobody"))


class OfAGroup(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.folder.chmod(0o755)
        shutil.copy(BIN / "kivadmin", self.folder)
        self.root = self.folder / "store"
        self.root.mkdir()
        os.chown(self.root, OWNER.pw_uid, GROUP.gr_gid)
        self.done("init", "--group=daemon")
        self.done("add", "teacher", "Hill")
        self.done("add", "class", "Room")
        self.list = self.root / "Classes.zep/Hill/Classes.zep"
        self.students = self.list / "Room/Students"

    def run_as(self, user, *line):
        groups = [] if user == STRANGER else [GROUP.gr_gid]
        return subprocess.run(line, text=True, check=False, timeout=60, umask=0o077, user=user.pw_uid,
                              group=user.pw_gid, extra_groups=groups, stdin=subprocess.DEVNULL, capture_output=True)

    def kivadmin(self, *words, user=OWNER):
        names = 2 if words[0] in ("add", "delete", "move", "options") else 1
        return self.run_as(user, self.folder / "kivadmin", *words[:names], self.root, *words[names:])

    def done(self, *words, user=OWNER):
        result = self.kivadmin(*words, user=user)
        self.assertEqual((result.returncode, result.stderr), (0, ""), words)
        return result.stdout

    def rights(self):
        for path in [self.root, *self.root.rglob("*")]:
            facts = path.stat()
            yield path, facts.st_gid, stat.S_IMODE(facts.st_mode)

    def assert_shared(self):
        for path, group, mode in self.rights():
            wanted = 0o2770 if path.is_dir() else 0o660
            self.assertEqual((group, oct(mode)), (GROUP.gr_gid, oct(wanted)), path)

    def test_whoever_makes_something_all_of_the_group_can_go_on(self):
        users = (OWNER, MEMBER, pwd.getpwnam("root"))
        for i, user in enumerate(users):
            self.done("add", "class", f"Room {i}", user=user)
            self.done("add", "student", f"Stu{i}", "--class=Room", user=user)
            self.done("options", "set", f"--class=Room {i}", "VocabLevel=2", user=user)
            self.done("progress", "--class=Room", f"--student=Stu{i}", "--mission=3", user=user)
        self.assert_shared()
        for i in range(len(users)):
            other = users[i - 1]
            self.done("progress", "--class=Room", f"--student=Stu{i}", "--mission=4", user=other)
            self.done("delete", "student", f"Stu{i}", "--class=Room", "--yes", user=other)
            self.done("undelete", f"Stu{i}", user=users[i - 2])
        self.done("backup", self.folder / "b.zip", user=pwd.getpwnam("root"))
        shutil.rmtree(self.list)
        shutil.rmtree(self.root / "Classes.zep")
        for path in self.root.iterdir():
            shutil.rmtree(path) if path.is_dir() else path.unlink()
        result = self.run_as(pwd.getpwnam("root"), self.folder / "kivadmin", "restore", self.folder / "b.zip", self.root)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assert_shared()
        self.assertNotEqual(self.kivadmin("list", user=STRANGER).returncode, 0)

    def test_check_names_what_shuts_the_group_out_and_the_command_that_mends_it(self):
        self.done("add", "student", "Ann", "--class=Room")
        self.assertIn("the store is in order", self.done("check"))
        lock, student = self.students / "index.lok", self.students / "Ann"
        for path, mode, group, what in (
                (lock, 0o600, GROUP.gr_gid, "others of the group \"daemon\" cannot open it"),
                (lock, 0o660, STRANGER.pw_gid, "belongs to the group \"nogroup\" and not to \"daemon\""),
                (lock, 0o640, STRANGER.pw_gid, "belongs to the group \"nogroup\" and not to \"daemon\""),
                (student, 0o770, GROUP.gr_gid, "is not set-group, so that what is made in it is not the group"),
                (student, 0o2700, GROUP.gr_gid, "others of the group \"daemon\" cannot work in it"),
                (student / "longname.kiv", 0o444, GROUP.gr_gid, None)):
            with self.subTest(path=path.name, mode=oct(mode), group=group):
                os.chown(path, -1, group)
                path.chmod(mode)
                result = self.kivadmin("check", user=pwd.getpwnam("root"))
                if what is not None:
                    self.assertEqual(result.returncode, 1)
                    line, = (line for line in result.stdout.splitlines() if line.startswith(f"{path}: "))
                    self.assertIn(what, line)
                    subprocess.run(re.search(r"ch(?:grp|mod) .*", line)[0], shell=True, check=True)
                    result = self.kivadmin("check")
                self.assertEqual((result.returncode, result.stdout), (0, "the store is in order\n"))

    def test_many_troubles_are_told_in_a_few_lines(self):
        for i in range(8):
            self.done("add", "student", f"Stu{i}", "--class=Room")
        for path, _, _ in self.rights():
            if path.name == "index.lok":
                path.chmod(0o600)
        self.done("add", "student", "New", "--class=Room")
        lines = self.kivadmin("check").stdout.splitlines()
        self.assertEqual(len(lines), 12)
        self.assertRegex(lines[10], f"^{self.root}: [0-9]+ more of these: kivadmin init '{self.root}' --group daemon$")
        self.done("init", "--group=daemon")
        self.assert_shared()

    def test_what_others_planted_is_left_alone(self):
        """Though root gives the rest to the group."""
        theirs = self.folder / "theirs"
        theirs.write_text("")
        theirs.chmod(0o600)
        (self.students / "link").symlink_to(theirs)
        os.lchown(self.students / "link", MEMBER.pw_uid, GROUP.gr_gid)
        os.link(theirs, self.students / "name")
        os.mkfifo(self.students / "pipe")
        result = self.kivadmin("init", "--group=daemon", user=pwd.getpwnam("root"))
        self.assertEqual(result.returncode, 3)
        self.assertRegex(result.stderr, f"^kivadmin: unable to give all to the group: {self.students}/name: .*\n$")
        facts = theirs.stat()
        self.assertEqual((facts.st_uid, facts.st_gid, stat.S_IMODE(facts.st_mode)), (0, 0, 0o600))

    def test_an_owners_link_is_followed(self):
        away = self.folder / "away"
        shutil.move(self.list / "Room", away)
        (self.list / "Room").symlink_to(away)
        (away / "index.lok").chmod(0o600)
        self.done("init", "--group=daemon", user=pwd.getpwnam("root"))
        self.assertEqual(stat.S_IMODE((away / "index.lok").stat().st_mode), 0o660)

    def test_a_store_of_one_alone_stays_so(self):
        for path, _, _ in self.rights():
            path.chmod(0o700 if path.is_dir() else 0o600)
        self.done("add", "student", "Ann", "--class=Room")
        self.assertEqual({mode & 0o077 for _, _, mode in self.rights()}, {0})
        self.assertEqual(self.done("check"), "the store is in order\n")

    def test_a_group_that_cannot_be_is_refused_ahead_of_anything(self):
        self.root = self.folder / "new"
        result = self.kivadmin("init", "--group=no-such-group", user=pwd.getpwnam("root"))
        self.assertEqual((result.returncode, result.stderr), (
            2, "kivadmin: --group no-such-group: there is no group of that name; groupadd makes one\n"))
        self.assertFalse(self.root.exists())
        self.root = self.folder / "store"
        result = self.kivadmin("init", "--group=tty", user=OWNER)
        self.assertEqual(result.returncode, 3)
        self.assertIn("only its owner, a member of the group, or root can do that", result.stderr)
        self.assert_shared()


if __name__ == "__main__":
    BIN = pathlib.Path(sys.argv.pop(1)).resolve()
    if os.geteuid() != 0:
        print("left out: it takes root to become other users")
        sys.exit(77)
    unittest.main()
