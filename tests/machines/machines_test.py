"""A store on shares that two Linux machines have mounted, and on the disk of their server.

    machines_test.py BIN KERNEL [TEST ...]

Process 1 of namespaces of its own (run.sh). The machines are stations 1 and 2, each with the share at a folder of its
name; station 0 is the NFS server. Samba runs here, as in tests/samba. Each share has to stand the trial of
`kivadmin check --two-machines`, and a school that is changed at random from all sides, mostly while somebody is killed
each second (tests/network/random_school.py).
"""
import concurrent.futures
import os
import pathlib
import shutil
import subprocess
import sys
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(PROJECT / "tests/samba"))
import samba_test  # noqa: E402
from machine import PROGRAMS, Machine, lay_system  # noqa: E402
from samba_test import OWNER  # noqa: E402

SECONDS = os.environ.get("KIVSTORE_SECONDS", "60")
CIFS = "username=nobody,password=secret,vers=3.1.1"
# What exportfs and its daemon would tell the kernel: everybody may, as whoever he is, below the one folder. Version 3
# would want a port mapper.
SERVE_NFS = """mkdir /srv
mount -t ext4 /dev/vda /srv
mount -t nfsd nfsd /proc/fs/nfsd
echo 10 >/proc/fs/nfsd/nfsv4leasetime
echo 10 >/proc/fs/nfsd/nfsv4gracetime
echo "-2 -3 +4" >/proc/fs/nfsd/versions
end=$(($(date +%s) + 86400))
cd /proc/net/rpc
echo "nfsd 10.0.2.2 $end all" >auth.unix.ip/channel
printf 'all 1 \\\\x00000000 %s /srv\\n' $end >nfsd.fh/channel
echo "all /srv $end 9218 65534 65534 0" >nfsd.export/channel
echo 4 >/proc/fs/nfsd/threads
ln -s /srv /station0"""


class Shares(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = samba_test.folder_with_attributes()
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.folder.chmod(0o755)
        for name in ("samba", "store", "here", "there"):
            (cls.folder / name).mkdir()
        for name in PROGRAMS:
            shutil.copy(samba_test.BIN / name, cls.folder / "here")
            (cls.folder / "there" / name).symlink_to(PROJECT / "tests/machines/machine.py")
        cls.store = cls.folder / "store"
        os.chown(cls.store, OWNER.pw_uid, OWNER.pw_gid)
        cls.store.chmod(0o2770)
        cls.samba = samba_test.Server(cls.folder / "samba", cls.store)
        cls.addClassCleanup(cls.samba.end)
        cls.start_machines()

    @classmethod
    def start_machines(cls):
        disk = cls.folder / "disk"
        subprocess.run(["truncate", "-s", "256M", disk], check=True)
        subprocess.run(["mkfs.ext4", "-q", disk], check=True)
        system = lay_system(cls.folder, samba_test.BIN, KERNEL)
        cls.machines = [Machine(system, number, disk if number == 0 else None) for number in range(3)]
        for machine in cls.machines:
            cls.addClassCleanup(machine.end)
        for machine in cls.machines:
            machine.await_start()
        cls.machines[0].shell(SERVE_NFS)

    def mount(self, kind, source, options):
        for station in self.machines[1:]:
            place = f"/{station.name}"
            station.shell(f"mkdir -p {place}; mount -t {kind} {source} {place} -o {options}")
            self.addCleanup(station.shell, f"umount {place}")

    def mount_samba(self, share, more=""):
        """A new folder of the share: its name."""
        self.mount("cifs", f"//10.0.2.2/{share}", CIFS + more)
        return self.new_store(self.machines[1])

    def mount_samba_with_two_students(self):
        name = self.mount_samba("tutor")
        root = f"/station1/{name}"
        for words in (["teacher", root, "Hill"], ["class", root, "Room"],
                      ["student", root, "Ann", "Lee", "--class=Room"],
                      ["student", root, "Bea", "Lee", "--class=Room"]):
            self.machines[1].done("kivadmin", "add", *words)
        return name

    def mount_nfs(self):
        self.mount("nfs4", "10.0.2.2:/", "addr=10.0.2.2,clientaddr=10.0.2.15,port=2049,vers=4.2,sec=sys")
        return self.new_store(self.machines[0])

    def new_store(self, machine):
        name = self.id().split(".")[-1]
        machine.done("mkdir", f"/{machine.name}/{name}", f"/{machine.name}/{name}/school")
        machine.done("kivadmin", "init", f"/{machine.name}/{name}")
        return name

    def trial(self, name):
        """Of both stations at once: the exit code and what was said by the one that tells."""
        with concurrent.futures.ThreadPoolExecutor() as pool:
            said = list(pool.map(lambda station: station.run("kivadmin", "check", "--two-machines",
                                                             f"/{station.name}/{name}"), self.machines[1:]))
        return max(code for code, _, _ in said), "".join(output + errors for _, output, errors in said)

    def stands_the_trial(self, name):
        code, said = self.trial(name)
        self.assertEqual(code, 0, said)
        self.assertIn("listings: 12 of 12 as they must be", said)

    def loses_nothing(self, *words):
        subprocess.run(["/usr/bin/python3", PROJECT / "tests/network/random_school.py", self.folder / "there",
                        f"--seconds={SECONDS}", *words], check=True,
                       env={**os.environ, "PROGRAMS": str(self.folder / "here")})

    def is_good(self, name, *roots):
        self.stands_the_trial(name)
        self.loses_nothing(f"/station1/{name}/school", f"/station2/{name}/school", *roots)

    def test_samba_by_the_stanza(self):
        self.is_good(self.mount_samba("tutor"))

    def test_samba_and_programs_on_its_disk(self):
        """Nobody is killed: where a program on a machine dies while it waits for one here, the file stays open at the
        server and is locked from then on (docs/file-server.md)."""
        name = self.mount_samba("tutor")
        self.loses_nothing("--spare", f"/station1/{name}/school", f"/station2/{name}/school",
                           self.store / name / "school")

    def test_samba_by_its_defaults(self):
        """As a server of Windows has it: clients are lent files to cache them."""
        self.is_good(self.mount_samba("samba-defaults"))

    def test_nfs(self):
        name = self.mount_nfs()
        self.is_good(name, f"/station0/{name}/school")

    def test_samba_without_locks_is_found_out(self):
        code, said = self.trial(self.mount_samba("tutor", ",nobrl"))
        self.assertEqual(code, 1, said)
        self.assertRegex(said, "locks: [0-3] of 4 as they must be")

    def test_what_a_workstation_hides_or_protects_is_so_on_a_linux_machine(self):
        name = self.mount_samba_with_two_students()
        self.samba.set_mode(rf"{name}\{samba_test.ANN}", "+h")
        for station in self.machines[1:]:
            listed = station.done("kivreport", "--format=csv", f"/{station.name}/{name}")
            self.assertNotIn("Ann Lee", listed)
            self.assertIn("Bea Lee", listed)
        self.machines[1].done("kivadmin", "options", "set", f"/station1/{name}", "MinWPMGoal=5")
        self.samba.set_mode(rf"{name}\Classes.zep\Hill\Classes.zep\options.kiv", "+r")
        code, _, errors = self.machines[2].run("kivadmin", "options", "set", f"/station2/{name}", "MinWPMGoal=7")
        self.assertEqual(code, 3, errors)
        self.assertIn("options.kiv", errors)

    def test_a_workstation_at_work_keeps_linux_machines_out(self):
        name = self.mount_samba_with_two_students()
        words = ["kivadmin", "add", "student", f"/station2/{name}", "Cy", "Lee", "--class=Room"]
        workstation = samba_test.Workstation(self.samba.configuration)
        self.addCleanup(workstation.end)
        lock = workstation.open(rf"{name}\{samba_test.ROOM}\Students\index.lok", samba_test.ALONE)
        code, output, errors = self.machines[2].run(*words)
        self.assertEqual((code, output), (1, ""))
        self.assertIn("locked", errors)
        workstation.close(lock)
        self.machines[2].done(*words)

    def test_a_group_is_given_nothing_that_a_share_does_not_keep(self):
        code, output, errors = self.machines[1].run("kivadmin", "init", f"/station1/{self.mount_samba('tutor')}",
                                                    "--group", "root")
        self.assertEqual((code, output), (3, ""))
        self.assertIn("keeps no such rights here; if it is a share, do it on its server", errors)


if __name__ == "__main__":
    samba_test.BIN = pathlib.Path(sys.argv.pop(1)).resolve()
    KERNEL = pathlib.Path(sys.argv.pop(1)).resolve()
    # What a server takes from a terminal is not for it.
    os.dup2(os.open(os.devnull, os.O_RDONLY), 0)
    unittest.main()
