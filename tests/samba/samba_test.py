"""Workstations that reach a store through Samba, and the programs beside them on the server's own disk.

    samba_test.py BIN [TEST ...]

Process 1 of namespaces of its own (run.sh). What excludes what is read from the table of docs/file-server.md, the share
from examples/smb.conf, with the path, the user and the groups of this machine in place of the example's.
"""
import contextlib
import multiprocessing
import os
import pathlib
import pwd
import re
import shutil
import socket
import struct
import subprocess
import sys
import tempfile
import threading
import time
import unittest

from samba import NTSTATUSError, credentials
from samba.dcerpc import security, xattr
from samba.samba3 import libsmb_samba_internal as libsmb
from samba.samba3 import param

PROJECT = pathlib.Path(__file__).resolve().parents[2]
OWNER, PUPIL = pwd.getpwnam("daemon"), pwd.getpwnam("nobody")  # every Debian has them
READ, ALONE = security.SEC_FILE_READ_DATA, security.SEC_FILE_READ_DATA | security.SEC_FILE_WRITE_DATA
SHARING_VIOLATION = 0xC0000043
BATCH_OPLOCK = 6
HIDDEN, READ_ONLY = libsmb.FILE_ATTRIBUTE_HIDDEN, libsmb.FILE_ATTRIBUTE_READONLY
ROOM = r"Classes.zep\Hill\Classes.zep\Room"
ANN = ROOM + r"\Students\AnnLee"
SHARES = {  # what a share has more, and what it lacks of the stanza
    "tutor": ("", ""),
    "samba-defaults": ("", r"oplocks|level2|csc|kernel|store|comment"),
    "kernel-oplocks": ("kernel oplocks = yes", r"oplocks|level2"),
    "kernel-share-modes": ("", r"kernel"),
    "by-group": ("", r"force user"),
}


def stanza(name, path):
    text = (PROJECT / "examples/smb.conf").read_text(encoding="ascii")
    for old, new in (("[tutor]", f"[{name}]"), ("/srv/tutor", str(path)), ("@school", "nobody"),
                     ("force user = tutor", f"force user = {OWNER.pw_name}"),
                     ("force group = tutor", "force group = daemon")):
        assert old in text, old
        text = text.replace(old, new)
    more, less = SHARES[name]
    lines = [line for line in text.splitlines() if not less or not re.match(f" *({less})", line)]
    if name == "kernel-share-modes":
        more = "kernel share modes = yes"
    return "\n".join(lines) + f"\n   {more}\n"


class Server:
    """smbd with all that it keeps, in a folder of its own."""

    def __init__(self, folder, store):
        kept = {f"{kind} dir{end}": folder / kind for kind, end in (
            ("private", ""), ("lock", "ectory"), ("state", "ectory"), ("cache", "ectory"), ("pid", "ectory"),
            ("ncalrpc", ""))}
        for place in kept.values():
            place.mkdir()
        self.configuration = folder / "smb.conf"
        self.configuration.write_text("\n".join(
            ["[global]", *(f"{key} = {place}" for key, place in kept.items()), f"log file = {folder}/log.%m",
             "interfaces = 127.0.0.1", "bind interfaces only = yes", "smb ports = 445", "disable netbios = yes",
             "server role = standalone", "load printers = no", "disable spoolss = yes",
             f"passdb backend = tdbsam:{folder}/private/passdb.tdb", *(stanza(name, store) for name in SHARES)]))
        subprocess.run(["ip", "link", "set", "lo", "up"], check=True)
        subprocess.run(["smbpasswd", "-c", self.configuration, "-s", "-a", PUPIL.pw_name], input="secret\nsecret\n",
                       text=True, check=True, stdout=subprocess.DEVNULL)
        # It ends by ending its process group, of which whoever started this script may be.
        self.process = subprocess.Popen(["/usr/sbin/smbd", "--foreground", "--no-process-group",
                                         f"--configfile={self.configuration}"], start_new_session=True)
        end = time.monotonic() + 20
        while not self.answers():
            assert self.process.poll() is None and time.monotonic() < end, "smbd does not start"
            time.sleep(0.02)

    @staticmethod
    def answers():
        with socket.socket() as asking:
            return asking.connect_ex(("127.0.0.1", 445)) == 0

    def open_files(self):
        """What smbstatus tells of them."""
        return subprocess.run(["smbstatus", "-s", self.configuration, "-L"], text=True, check=True,
                              capture_output=True).stdout

    def set_mode(self, path, mode):
        """By a workstation, as in the dialog of a file's properties: "+h"."""
        subprocess.run(["smbclient", "-s", self.configuration, "-U", f"{PUPIL.pw_name}%secret", "//127.0.0.1/tutor",
                        "-c", f'setmode "{path}" {mode}'], check=True, stdout=subprocess.DEVNULL)

    def end(self):
        self.process.terminate()
        self.process.wait()


class Workstation:
    """A client in a process of its own: a call that waits holds up nobody else."""

    def __init__(self, configuration, share="tutor"):
        self.here, there = multiprocessing.Pipe()
        self.process = multiprocessing.Process(target=self.serve, args=(there, str(configuration), share), daemon=True)
        self.process.start()

    @staticmethod
    def serve(pipe, configuration, share):
        context = param.get_context()
        context.load(configuration)
        who = credentials.Credentials()
        who.guess(context)
        who.set_username(PUPIL.pw_name)
        who.set_password("secret")
        client = libsmb.Conn("127.0.0.1", share, context, who)
        while True:
            try:
                name, words, more = pipe.recv()
                pipe.send(getattr(client, name)(*words, **more))
            except NTSTATUSError as error:
                pipe.send(OSError(*error.args))
            except EOFError:
                return

    def begin(self, name, *words, **more):
        self.here.send((name, words, more))

    def is_done(self, seconds):
        return self.here.poll(seconds)

    def answer(self):
        assert self.is_done(60), "Samba does not answer"
        result = self.here.recv()
        if isinstance(result, OSError):
            raise result
        return result

    def ask(self, name, *words, **more):
        self.begin(name, *words, **more)
        return self.answer()

    def begin_open(self, path, how, flags=0):
        """As the tutor does: for reading, shared with readers, or alone."""
        share = libsmb.FILE_SHARE_READ if how == READ else 0
        self.begin("create", path, DesiredAccess=how, ShareAccess=share, CreateDisposition=1, CreateFlags=flags)

    def open(self, path, how, flags=0):
        self.begin_open(path, how, flags)
        return self.answer()

    def close(self, number):
        self.ask("close", number)

    def names(self, folder):
        every = HIDDEN | READ_ONLY | libsmb.FILE_ATTRIBUTE_DIRECTORY | libsmb.FILE_ATTRIBUTE_ARCHIVE
        return {entry["name"]: entry["attrib"] for entry in self.ask("list", folder, attribs=every)}

    def end(self):
        self.here.close()
        self.process.terminate()
        self.process.join()


def run_as(user, *line):
    """As that user, with an umask that keeps everybody else out."""
    return subprocess.run(line, text=True, check=False, timeout=120, umask=0o077, user=user.pw_uid,
                          group=user.pw_gid, extra_groups=[OWNER.pw_gid], stdin=subprocess.DEVNULL,
                          capture_output=True)


class BesideSamba(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = folder_with_attributes()
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.folder.chmod(0o777)  # where any program may say that it has a file open
        for name in ("kivadmin", "hold_file"):  # where any user may run them
            shutil.copy(BIN / name, cls.folder)
        cls.store = cls.folder / "store"
        (cls.folder / "samba").mkdir()
        cls.store.mkdir()
        cls.server = Server(cls.folder / "samba", cls.store)
        cls.addClassCleanup(cls.server.end)

    def setUp(self):
        """By the words of examples/smb.conf."""
        shutil.rmtree(self.store, ignore_errors=True)
        self.store.mkdir()
        os.chown(self.store, OWNER.pw_uid, OWNER.pw_gid)
        self.store.chmod(0o2770)
        self.room = self.store / ROOM.replace("\\", "/")
        self.done("init", "--group=daemon")
        for words in (["add", "teacher", "Hill"], ["add", "class", "Room"],
                      ["add", "student", "Ann", "Lee", "--class=Room"]):
            self.done(*words)

    def kivadmin(self, *words, user=OWNER):
        names = 2 if words[0] == "add" else 1
        return run_as(user, self.folder / "kivadmin", *words[:names], self.store, *words[names:])

    def done(self, *words, **how):
        result = self.kivadmin(*words, **how)
        self.assertEqual((result.returncode, result.stderr), (0, ""), words)
        return result.stdout

    def workstation(self, share="tutor"):
        client = Workstation(self.server.configuration, share)
        self.addCleanup(client.end)
        return client

    @contextlib.contextmanager
    def held(self, path, how):
        """By a program on the server."""
        flag = self.folder / "held"
        line = [self.folder / "hold_file", path, "r" if how == READ else "w", flag]
        with subprocess.Popen(line, user=OWNER.pw_uid, group=OWNER.pw_gid) as program:
            while not flag.exists() and program.poll() is None:
                time.sleep(0.002)
            try:
                yield program.poll() is None
            finally:
                flag.unlink(missing_ok=True)

    # Who keeps whom out

    def meet(self, path, holder, asker, share):
        """What becomes of the second who opens a file: each is "workstation" or "program", and how."""
        (who, how), (other, wanted) = holder, asker
        smb = str(path.relative_to(self.store)).replace("/", "\\")
        first, second = self.clients[share]
        with contextlib.ExitStack() as stack:
            if who == "workstation":
                stack.callback(first.close, first.open(smb, how))
            else:
                self.assertTrue(stack.enter_context(self.held(path, how)), "is not open to begin with")
            if other == "program":
                # Two flags at once: the one that holds keeps its own.
                flag = self.folder / "asked"
                line = [self.folder / "hold_file", path, "r" if wanted == READ else "w", flag]
                with subprocess.Popen(line, user=OWNER.pw_uid, group=OWNER.pw_gid) as program:
                    while not flag.exists() and program.poll() is None:
                        time.sleep(0.002)
                    flag.unlink(missing_ok=True)
                return "let in" if program.returncode == 0 else "refused"
            second.begin_open(smb, wanted)
            is_waiting = not second.is_done(0.3)
            stack.close()
            try:
                second.close(second.answer())
            except OSError as error:
                self.assertEqual(error.args[0] & 0xFFFFFFFF, SHARING_VIOLATION, error)
                return "refused"
            return "waits" if is_waiting else "let in"

    def test_who_keeps_whom_out_is_as_the_guide_says(self):
        table = guide_table("Who keeps whom out")
        self.assertEqual(len(table), 4)
        for share in ("tutor", "samba-defaults", "kernel-oplocks"):
            self.clients = {share: (self.workstation(share), self.workstation(share))}
            for path in (self.room / "Students/index.lok", self.room / "Students/index.kiv"):
                for holder, row in table.items():
                    for asker, answer in row.items():
                        with self.subTest(share=share, file=path.name, holder=holder, asker=asker):
                            self.assertEqual(self.meet(path, words(holder), words(asker), share), answer)

    def test_what_is_not_kept_out(self):
        """As the guide says: a folder is renamed though a program has a file in it open."""
        client = self.workstation()
        with self.held(self.room / "Students/AnnLee/index.lok", ALONE):
            client.ask("rename", ANN, ROOM + r"\Students\AnnLee2")
        self.assertTrue((self.room / "Students/AnnLee2/index.lok").exists())

    def test_with_kernel_share_modes_nothing_opens(self):
        with self.assertRaises(OSError):
            self.workstation("kernel-share-modes").open(ROOM + r"\Students\index.lok", ALONE)

    def test_a_command_is_refused_for_a_workstation_and_a_workstation_waits_for_a_command(self):
        client, other = self.workstation(), self.workstation()
        lock = ROOM + r"\Students\index.lok"
        number = client.open(lock, ALONE)
        result = self.kivadmin("add", "student", "Ben", "--class=Room")
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertRegex(result.stderr, "index.lok is locked by someone else")
        client.close(number)
        with self.held(self.room / "Students/index.lok", ALONE):
            other.begin_open(lock, ALONE)
            self.assertFalse(other.is_done(0.3))
        begun = time.monotonic()
        other.close(other.answer())
        self.assertLess(time.monotonic() - begun, 2)
        self.done("add", "student", "Ben", "--class=Room")

    def test_two_workstations_and_two_programs_that_change_one_list_lose_nothing(self):
        """A workstation that holds the lock finds the list as it is, and as it stays."""
        over, moved, rounds, added = threading.Event(), [], [], []
        end = time.monotonic() + 20
        lock, index = ROOM + r"\Students\index.lok", ROOM + r"\Students\index.kiv"

        def client(workstation):
            while not over.is_set():
                try:
                    number = workstation.open(lock, ALONE, BATCH_OPLOCK)
                except OSError:
                    time.sleep(0.01)
                    continue
                before = workstation.ask("loadfile", index)
                time.sleep(0.01)
                rounds.append(before)
                if {before, workstation.ask("loadfile", index)} != {(self.room / "Students/index.kiv").read_bytes()}:
                    moved.append(before)
                workstation.close(number)
                time.sleep(0.03)

        def program(letter):
            # A client looks for a lock that a program has once a second.
            while len(added) < 30 or (len(set(rounds)) < 4 and time.monotonic() < end):
                number = len(added)
                while (result := self.kivadmin("add", "student", f"{letter}{number}", "--class=Room")).returncode == 1:
                    self.assertIn("by someone else", result.stderr)
                self.assertEqual((result.returncode, result.stderr), (0, ""))
                added.append(f"{letter}{number}")
                time.sleep(0.05)

        programs = [threading.Thread(target=program, args=letter) for letter in "AB"]
        clients = [threading.Thread(target=client, args=(self.workstation(),)) for _ in "AB"]
        for thread in programs + clients:
            thread.start()
        for thread in programs:
            thread.join()
        over.set()
        for thread in clients:
            thread.join()
        self.assertEqual(moved, [], "written under a workstation's lock, or not seen by it")
        self.assertGreater(len(set(rounds)), 2)
        self.assertEqual(len(self.done("export").splitlines()), 2 + len(set(added)))

    # What a workstation sees, and what it does that programs see

    def test_a_workstation_may_keep_nothing_but_by_the_defaults_of_samba_would(self):
        index = ROOM + r"\Students\index.kiv"
        for share, kept in (("tutor", "NONE"), ("samba-defaults", "BATCH")):
            client = self.workstation(share)
            number = client.open(index, READ, BATCH_OPLOCK)
            line, = (line for line in self.server.open_files().splitlines() if "index.kiv" in line)
            self.assertIn(kept, line, share)
            client.close(number)

    def test_letter_case_is_no_matter(self):
        client = self.workstation()
        self.assertEqual(client.ask("loadfile", (ANN + r"\LongName.KIV").upper()),
                         (self.room / "Students/AnnLee/longname.kiv").read_bytes())
        with self.assertRaises(OSError):
            client.ask("mkdir", ROOM.upper())
        client.ask("rename", ANN, ANN.replace("AnnLee", "ANNLEE"))
        self.done("progress", "--class=Room", "--student=Ann Lee", "--mission=4")
        self.assertIn("Ann,Lee", self.done("export"))
        self.assertEqual(set(os.listdir(self.room / "Students")), {"ANNLEE", "index.kiv", "index.lok"})

    def test_who_is_hidden_by_a_workstation_is_hidden_from_the_programs(self):
        self.done("add", "student", "Ben", "Ng", "--class=Room")
        for mode, listed in (("+h", "Ben"), ("-h", "Ann Ben"), ("+hr", "Ben"), ("-hr", "Ann Ben")):
            self.server.set_mode(ANN, mode)
            self.assertEqual(" ".join(re.findall("Room,(Ann|Ben)", self.done("export"))), listed, mode)
        client, hiding = self.workstation(), set()
        for version, form in forms_of_mark(HIDDEN | 0x10):
            os.setxattr(self.room / "Students/AnnLee", "user.DOSATTRIB", form)
            is_hidden = client.names(ROOM + r"\Students")["AnnLee"] & HIDDEN != 0
            with self.subTest(version=version, form=form, is_hidden=is_hidden):
                self.assertEqual("Ann,Lee" in self.done("export"), not is_hidden)
            hiding |= {version} if is_hidden else set()
        self.assertLessEqual({0, 1, 2, 3, 4, 5}, hiding)

    def test_what_a_workstation_makes_read_only_stays_as_it_is(self):
        self.done("progress", "--class=Room", "--student=Ann Lee", "--mission=2")
        options = self.room / "Students/AnnLee/options.kiv"
        before = options.read_bytes()
        self.server.set_mode(ANN + r"\options.kiv", "+r")
        result = self.kivadmin("progress", "--class=Room", "--student=Ann Lee", "--mission=3")
        self.assertNotEqual(result.returncode, 0)
        self.assertEqual(options.read_bytes(), before)
        self.server.set_mode(ANN + r"\options.kiv", "-r")
        self.done("progress", "--class=Room", "--student=Ann Lee", "--mission=3")

    def test_whom_a_workstation_makes_the_programs_adopt_unless_he_is_hidden(self):
        client = self.workstation()
        for name, hidden in (("Yan", 0), ("Zoe", HIDDEN)):
            folder = rf"{ROOM}\Students\{name}"
            client.ask("create", folder, FileAttributes=hidden, CreateDisposition=2, CreateOptions=1)
            client.ask("savefile", folder + r"\longname.kiv", name.encode() + b"\0Ito\0")
            self.assertEqual(os.stat(self.room / "Students" / name).st_mode & 0o7777, 0o2770)
        self.done("check", "--repair")
        self.assertRegex(self.done("export"), "Room,Yan,Ito")
        self.assertNotIn("Zoe", self.done("export"))

    # Rights

    def test_whoever_changes_a_store_others_can_go_on(self):
        """With an umask that keeps everybody out, as the owner, as root and as another of the group."""
        for user, name in ((OWNER, "Ben"), (pwd.getpwnam("root"), "Cay"), (PUPIL, "Dan")):
            self.done("add", "student", name, "--class=Room", user=user)
            self.done("progress", "--class=Room", f"--student={name}", "--mission=2", user=user)
        for share in ("tutor", "by-group"):
            client = self.workstation(share)
            for name in ("Ben", "Cay", "Dan"):
                for file in ("index.lok", "options.kiv", "longname.kiv"):
                    client.close(client.open(rf"{ROOM}\Students\{name}\{file}", ALONE))
            client.ask("savefile", rf"{ANN}\{share}.txt", b"x")
            self.assertEqual(os.stat(self.room / f"Students/AnnLee/{share}.txt").st_mode & 0o777, 0o660)
        self.assertEqual(self.done("check").splitlines()[0], "the store is in order")

    def test_the_owner_alone_and_root_have_leases(self):
        self.assertNotIn("note", self.done("check"))
        self.assertNotIn("note", self.done("check", user=pwd.getpwnam("root")))
        self.assertIn("no write leases can be had here: the lock files belong to another user",
                      self.done("check", user=PUPIL))


def forms_of_mark(bits):
    """Every form in which Samba has kept the attributes of a file, with and without them as text."""
    yield 0, b"0x%x" % bits
    yield 0, b"0x%x\0" % bits
    sizes_and_times = bytes(4 + 2 * 8) + bytes(2 * 8)
    for version, info in ((1, struct.pack("<I", bits) + sizes_and_times),
                          (2, struct.pack("<II", 1, bits) + sizes_and_times + bytes(8) + b"\0"),
                          (3, struct.pack("<II", xattr.XATTR_DOSINFO_ATTRIB, bits) + sizes_and_times),
                          (4, struct.pack("<II", xattr.XATTR_DOSINFO_ATTRIB, bits) + bytes(16)),
                          (5, struct.pack("<II", xattr.XATTR_DOSINFO_ATTRIB, bits) + bytes(8)),
                          (3, struct.pack("<II", 0, bits) + sizes_and_times),  # says that it says nothing of them
                          (4, struct.pack("<II", 0, bits) + bytes(16)),
                          (5, struct.pack("<II", 0, bits) + bytes(8))):
        for text in (b"\0", b"0x%x\0" % bits):
            mark = text + bytes(len(text) % 2) + struct.pack("<HH", version, version)
            yield version, mark + bytes(-len(mark) % 4) + info


def guide_table(title):
    """The table below that heading of the guide: a row by what stands first in it."""
    text = (PROJECT / "docs/file-server.md").read_text(encoding="utf-8").split(f"## {title}\n")[1]
    rows = [[cell.strip(" *") for cell in line.strip("|").split("|")]
            for line in text.split("\n## ")[0].splitlines() if line.startswith("|")]
    head, _, *rest = rows
    return {row[0]: dict(zip(head[1:], row[1:])) for row in rest}


def words(cell):
    who, how = cell.split(", ")
    return who, {"alone": ALONE, "reading": READ}[how]


def folder_with_attributes():
    """Not every temporary folder keeps them."""
    for above in (None, BIN):
        folder = pathlib.Path(tempfile.mkdtemp(prefix="kivstore-samba-", dir=above))
        try:
            os.setxattr(folder, "user.try", b"")
            return folder
        except OSError:
            folder.rmdir()
    print("the run with Samba is left out: no file system here keeps extended attributes")
    sys.exit(77)


if __name__ == "__main__":
    BIN = pathlib.Path(sys.argv.pop(1)).resolve()
    multiprocessing.set_start_method("fork")
    unittest.main()
