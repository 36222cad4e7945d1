"""The example that writes a report each night, on stores that can be read, not at all, and in part.

    nightly_test.py PROGRAMS
"""
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
NIGHTLY = PROJECT / "examples/nightly"


class Nights(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="kivstore-test-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.store, self.reports = self.folder / "store", self.folder / "reports"
        shutil.copytree(PROJECT / "tests/golden/teachers/store", self.store)

    def night(self, date, *options, store=None):
        run = subprocess.run([sys.executable, NIGHTLY / "nightly_report.py", "--kivreport",
                              PROGRAMS / "kivreport", "--date", date, *options,
                              store or self.store, self.reports],
                             check=False, capture_output=True, encoding="utf-8",
                             env=dict(os.environ, LC_ALL="C.UTF-8"))
        return run.returncode, run.stdout, run.stderr

    def files(self):
        return sorted(str(path.relative_to(self.reports)) for path in self.reports.rglob("*")
                      if path.is_file())

    def page(self):
        return (self.reports / "report.html").read_text(encoding="utf-8")

    def moved(self):
        """Since when the page tells who moved on, and by how much."""
        return (set(re.findall("Since ([^<]*)<", self.page())),
                re.findall(r'<td class="num">([+\d]+)<td><svg', self.page()))

    def admin(self, *arguments):
        subprocess.run([PROGRAMS / "kivadmin", *arguments], check=True, stdout=subprocess.DEVNULL)

    def written_on(self, date):
        """As if the report of that day had been written then."""
        path = self.reports / "kept" / f"{date}.json"
        report = json.loads(path.read_text(encoding="utf-8"))
        report["written_at"] = f"{date}T02:30:00"
        path.write_text(json.dumps(report), encoding="utf-8")

    def test_the_second_night_is_compared_with_the_first(self):
        self.assertEqual(self.night("2026-11-14"),
                         (0, f"2026-11-14: 5 students of {self.store}, the first report\n", ""))
        self.assertEqual(self.moved(), (set(), []))
        self.written_on("2026-11-14")
        self.admin("progress", self.store, "--teacher", "Ms Hill", "--class", "Room 12", "--student",
                   "Mei", "--mission", "3", "--learned-keys", "yes")
        code, told, complaint = self.night("2026-11-22")
        self.assertEqual((code, complaint), (0, ""))
        self.assertIn("5 the last time", told)
        self.assertEqual(self.moved(), ({"14 Nov 2026"}, ["0", "0", "0", "+2", "0"]))
        self.assertEqual(self.files(), ["kept/2026-11-14.json", "kept/2026-11-22.json", "report.html"])

    def test_the_week_is_that_of_the_line(self):
        for date in "2026-11-01", "2026-11-12", "2026-11-19":
            self.night(date)
            self.written_on(date)
        (self.reports / "kept/2026-11-12.json").write_text("{")
        code, _, complaint = self.night("2026-11-20", "--since", "7")
        self.assertIn("kept/2026-11-12.json is no report", complaint)
        self.assertEqual(code, 0, "a spoilt report is one less to compare with")
        self.assertEqual(self.moved()[0], {"1 Nov 2026"})

    def test_what_is_old_goes_and_what_is_not_ours_stays(self):
        for date in "2026-01-01", "2026-11-01":
            self.night(date)
        (self.reports / "kept/notes.txt").touch()
        (self.reports / "writing-dead").mkdir()
        os.utime(self.reports / "writing-dead", (0, 0))
        self.night("2026-11-02", "--keep", "1")
        self.assertEqual(self.files(), ["kept/2026-11-01.json", "kept/2026-11-02.json",
                                        "kept/notes.txt", "report.html"])
        self.assertFalse((self.reports / "writing-dead").exists())

    def test_a_store_that_is_not_there_leaves_all_as_it_was(self):
        self.night("2026-11-01")
        before = self.page()
        code, told, complaint = self.night("2026-11-02", store=self.folder / "missing")
        self.assertEqual((code, told), (3, ""))
        self.assertIn("no such folder", complaint)
        self.assertEqual(complaint.count("nightly_report.py: "), 1)
        self.assertEqual((self.page(), self.files()), (before, ["kept/2026-11-01.json", "report.html"]))

    def test_what_could_not_all_be_read_is_kept_apart(self):
        self.night("2026-11-01")
        before = self.page()
        options = self.store / "Classes.zep/MrBjrk/Classes.zep/Klasse7/options.kiv"
        options.write_bytes(b"BIN\1\0\1\0\0xx")
        code, told, complaint = self.night("2026-11-02")
        self.assertEqual((code, told), (3, ""))
        self.assertIn("options.kiv is damaged", complaint)
        self.assertIn("not all could be read", complaint)
        self.assertEqual((self.page(), self.files()),
                         (before, ["incomplete/2026-11-02.html", "incomplete/2026-11-02.json",
                                   "kept/2026-11-01.json", "report.html"]))
        options.unlink()
        self.assertIn("5 the last time", self.night("2026-11-03")[1])

    def test_many_who_are_gone_want_a_look(self):
        self.night("2026-11-01")
        self.admin("delete", "class", self.store, "Room 12", "--teacher", "Ms Hill", "--yes")
        code, _, complaint = self.night("2026-11-02")
        self.assertEqual(code, 1)
        self.assertIn("3 of 5 students are gone", complaint)
        self.assertIn("kept/2026-11-02.json", self.files())

    @unittest.skipUnless(shutil.which("systemd-analyze"), "no systemd-analyze")
    def test_systemd_takes_the_units(self):
        units = []
        for unit in "kivstore-report.service", "kivstore-report.timer":
            text = (NIGHTLY / unit).read_text(encoding="utf-8")
            units.append(self.folder / unit)
            units[-1].write_text(text.replace("/usr/local/lib/kivstore", str(NIGHTLY)), encoding="utf-8")
        run = subprocess.run(["systemd-analyze", "verify", "--man=no", *units], check=False,
                             capture_output=True, encoding="utf-8")
        self.assertEqual((run.returncode, run.stdout + run.stderr), (0, ""))


if __name__ == "__main__":
    PROGRAMS = pathlib.Path(sys.argv[1])
    unittest.main(argv=sys.argv[:1])
