"""The page in a real browser, on paper, and the workbook as its file.

    page_test.py BIN

BIN holds kivadmin and kivreport. Needs chromium, tidy, pdftotext.
"""
import base64
import csv
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree as ElementTree
import zipfile

sys.dont_write_bytecode = True
from browser import Browser

HERE = pathlib.Path(__file__).resolve().parent
GOLDEN = HERE.parent / "golden"
MANY = 1000
STUDENTS = "table.students tbody tr"

# What a stranger might have written into the files of a store; longer than a folder's name.
HOSTILE = ["<script>alert(1)</script>", "</script><img src=x onerror=alert(1)>", "\"'&<>`{}" * 6,
           "\u202egnp.exe", "=HYPERLINK(\"http://x.example\")", "+1+1+1+1+1", "-1-1-1-1-1",
           "@SUM(A1:B2)",
           "Ann\u0007\u0085Lee", "\u05d0\u05d1 \U0001f600", "e\u0301" * 5 + " \ufffe",
           "</title><style>*{display:none}"]

# The least contrast of any text with what is behind it, and where.
CONTRAST = """(() => {
  const parse = (color) => {
    const found = color.match(/[\\d.]+/g).map(Number);
    const isShare = color.startsWith("color(");
    return isShare ? found.slice(0, 3).map((part) => part * 255).concat(found[3] ?? 1)
                   : found.length < 4 ? [...found, 1] : found;
  };
  const behind = (element) => {
    for (let at = element; at; at = at.parentElement) {
      const color = parse(getComputedStyle(at).backgroundColor);
      if (color[3] === 1) return color;
    }
    return parse(getComputedStyle(document.documentElement).backgroundColor);
  };
  const light = (color) => {
    const [r, g, b] = color.slice(0, 3).map((part) => {
      const share = part / 255;
      return share <= 0.04045 ? share / 12.92 : ((share + 0.055) / 1.055) ** 2.4;
    });
    return 0.2126 * r + 0.7152 * g + 0.0722 * b;
  };
  let least = [99, ""];
  for (const element of document.querySelectorAll("body *:not(script):not(option)")) {
    const hasText = [...element.childNodes].some((node) => node.nodeType === 3 && node.data.trim());
    if (!hasText || !element.checkVisibility()) continue;
    const style = getComputedStyle(element);
    const text = parse(element instanceof SVGElement ? style.fill : style.color);
    const [a, b] = [light(text), light(behind(element))].sort((x, y) => y - x);
    const ratio = (a + 0.05) / (b + 0.05);
    if (ratio < least[0]) least = [ratio, element.outerHTML.slice(0, 80)];
  }
  return least;
})()"""


def run(*words, expect=0, **environment):
    result = subprocess.run([str(word) for word in words], check=False, text=True, timeout=120,
                            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE,
                            env=os.environ | {"LC_ALL": "C.UTF-8"} | environment)
    if result.returncode != expect:
        raise AssertionError(f"{words}: {result.returncode}\n{result.stderr}")
    return result.stdout


def most_memory(*words):
    """In KiB, of the process itself; what it took is told until it ends."""
    most = 0
    with subprocess.Popen(words) as process:
        status = pathlib.Path(f"/proc/{process.pid}/status")
        while process.poll() is None:
            most = max(most, *map(int, re.findall(r"VmHWM:\s+(\d+)", status.read_text())), 0)
            time.sleep(0.002)
    return most


def list_stores(path, stores):
    with open(path, "w", encoding="utf-8", newline="") as file:
        csv.writer(file).writerows([("name", "data root"), *stores])
    return f"--stores={path}"


def roster(path, rows):
    with open(path, "w", encoding="utf-8", newline="") as file:
        writer = csv.writer(file)
        writer.writerow(["teacher", "class", "first_name", "last_name"])
        writer.writerows(rows)
    return path


def lay_hostile(folder):
    """Names as they cannot be given to kivadmin: put in place of others of the same length."""
    root = folder / "hostile"
    fitting = {f"{number:02}".ljust(len(name.encode()), "x"): name
               for number, name in enumerate(HOSTILE)}
    run(BIN / "kivadmin", "init", root, "--kind", "teachers", "--charset", "utf-8")
    long = "W" * 51
    rows = [["Teacher", "Class", place, ""] for place in fitting]
    rows += [["Teacher", place, "Ann", "Lee"] for place in fitting]
    rows += [["Other", "class", long[:25], long[:25]], [long[:50], long[:50], long[:25], long[:25]]]
    run(BIN / "kivadmin", "import", root, roster(folder / "hostile.csv", rows))
    for path in root.rglob("*.kiv"):
        old = new = path.read_bytes()
        for place, name in fitting.items():
            new = new.replace(place.encode(), name.encode())
        if new != old:
            path.write_bytes(new)
    return root


class Pages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp())
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.roots = {}
        for kind in ("local", "shared", "teachers"):
            cls.roots[kind] = shutil.copytree(GOLDEN / kind / "store", cls.folder / kind)
        cls.roots["hostile"] = lay_hostile(cls.folder)
        cls.roots["many"] = cls.folder / "many"
        run(BIN / "kivadmin", "init", cls.roots["many"], "--kind", "local")
        run(BIN / "kivadmin", "import", cls.roots["many"], roster(
            cls.folder / "many.csv",
            [["", "Room", f"Student {number * 7919 % MANY:03}", ""] for number in range(MANY)]
            + [["", "Small", "Zoë", "Ångström"]]))
        run(BIN / "kivadmin", "progress", cls.roots["many"], "--class=Room",
            "--student=Student 500", "--mission=9", "--lessons-done=1-8", "--learned-keys=yes")
        cls.pages = {kind: cls.report(root, "html") for kind, root in cls.roots.items()}
        teachers = cls.roots["teachers"]
        kept = cls.folder / "kept"
        kept.mkdir()
        cls.report(teachers, "json").rename(kept / "2026-01-31.json")
        old = kept / "2025-12-31.json"
        old.write_text((kept / "2026-01-31.json").read_text("utf-8").replace("Ann Lee", "Ian Lee"))
        old.write_text(re.sub(r'"written_at": "[^"]*"', '"written_at": "2025-12-31"',
                              old.read_text("utf-8")), "utf-8")
        cls.pages["change"] = cls.report(teachers, "html", "--since", old, "--history", kept)
        cls.pages["student"] = cls.report(cls.roots["many"], "html", "--student", "Student 500")
        # One of them cannot be read, one not all of it.
        torn = shutil.copytree(teachers, cls.folder / "torn")
        next(torn.rglob("Room12/Students/index.lok")).unlink()
        cls.schools = {"Hill": teachers, "Gone": cls.folder / "gone", "<b>Dale": cls.roots["local"],
                       "Torn": torn}
        cls.pages["schools"] = cls.report(
            list_stores(cls.folder / "north.csv", cls.schools.items()), "html", expect=3)
        cls.browser = Browser()
        cls.addClassCleanup(cls.browser.close)

    @classmethod
    def report(cls, root, form, *words, **environment):
        path = cls.folder / f"{len(list(cls.folder.iterdir()))}.{form}"
        run(BIN / "kivreport", root, "--format", form, "--output", path, "--force", *words,
            **environment)
        return path

    def texts(self, selector):
        return self.browser.run(f"[...document.querySelectorAll({selector!r})]"
                                ".filter(e => e.checkVisibility()).map(e => e.textContent)")

    def test_every_page_is_valid_opens_without_complaint_and_asks_for_nothing(self):
        for kind, path in self.pages.items():
            with self.subTest(kind):
                self.assertEqual(run("tidy", "-q", "-e", path), "")
                self.assertLess(self.browser.open(path), 3)
                self.assertEqual(self.browser.complaints(), [])

    def test_the_policy_forbids_what_a_name_might_do(self):
        self.browser.open(self.pages["many"])
        for act in ("new Image().src = 'http://127.0.0.1:9/'", "fetch('http://127.0.0.1:9/')",
                    "document.body.append(Object.assign(document.createElement('script'),"
                    "{textContent: 'window.wasRun = 1'}))",
                    "document.body.setAttribute('style', 'color: red')"):
            forbidden = self.browser.run(
                "new Promise((done) => { setTimeout(() => done('allowed'), 2000); "
                "document.addEventListener('securitypolicyviolation', (e) => "
                f"done(e.effectiveDirective), {{once: true}}); {act}; }})")
            self.assertNotEqual(forbidden, "allowed", act)
        self.assertIsNone(self.browser.run("window.wasRun ?? null"))

    def test_names_are_shown_as_they_are_and_do_nothing(self):
        self.browser.open(self.pages["hostile"])
        shown = re.sub(r"[\u0007\u0085\ufffe]", "\ufffd", "\n".join(HOSTILE)).split("\n")
        self.assertLessEqual(set(shown), set(self.texts(f"{STUDENTS} th")))
        self.assertLessEqual(set(shown), set(self.texts("section.group h3 > bdi:first-child")))

    def test_a_table_is_sorted_by_click_and_key_and_says_so(self):
        self.browser.open(self.pages["many"])
        names = f"{STUDENTS} th"
        head = "document.querySelector('#c1 thead th:nth-child({}) button')"
        listed = self.texts("#c1 tbody th")
        self.browser.run(head.format(1) + ".click()")
        self.assertEqual(self.texts("#c1 tbody th"), sorted(listed))
        self.browser.run(head.format(2) + ".focus()")
        for order, expected in (("ascending", "1"), ("descending", "9")):
            for kind in ("keyDown", "keyUp"):
                self.browser.ask("Input.dispatchKeyEvent", type=kind, key="Enter", code="Enter",
                                 text="\r" if kind == "keyDown" else "", windowsVirtualKeyCode=13)
            self.assertEqual(self.texts("#c1 tbody tr:first-child td:nth-child(2)"), [expected])
            self.assertEqual(self.browser.run("[...document.querySelectorAll('#c1 [aria-sort]')]"
                                              ".map(e => e.ariaSort)"), [order])
        self.assertEqual(self.texts("#c1 tbody tr:first-child th"), ["Student 500"])
        self.assertEqual(len(self.texts(names)), MANY + 1)

    def test_the_search_finds_by_name_class_and_standing_whatever_the_accents(self):
        self.browser.open(self.pages["many"])
        for words, standing, count in (("student 50", "", 20), ("ANGSTROM", "", 1),
                                       ("small", "", 1), ("room student 99", "", 19),
                                       ("nobody", "", 0), ("", "n", MANY), ("500", "n", 0),
                                       ("", "", MANY + 1)):
            self.browser.run(
                f"document.getElementById('words').value = {words!r};"
                f"document.getElementById('standing').value = {standing!r};"
                "document.getElementById('find').dispatchEvent(new Event('input'))")
            self.assertEqual(len(self.texts(STUDENTS)), count, words)
            told = {0: ["No student found"], 1: ["1 student found"], MANY + 1: []}
            self.assertEqual(self.texts("#found"), told.get(count, [f"{count} students found"]))

    def test_a_change_and_its_course_are_told(self):
        self.browser.open(self.pages["change"])
        self.assertEqual(self.texts("[aria-labelledby=left] tbody th"), ["Ian Lee"])
        rows = dict(zip(self.texts(f"{STUDENTS} th"), self.texts(f"{STUDENTS} td:nth-child(8)")))
        self.assertEqual((rows["Ann Lee"], rows["José Núñez"]), ("new", "0"))
        self.assertTrue([name for role, name in self.browser.named()
                         if role == "image" and "over time: 31 Dec 2025: " in name])

    def test_many_schools_are_told_beside_each_other_and_each_below(self):
        self.browser.open(self.pages["schools"])
        self.assertEqual(self.texts(".school > h2"), list(self.schools))
        rows = dict(zip(self.texts("#glance ~ div tbody th a"),
                        self.texts("#glance ~ div tbody td:nth-child(2)")))
        self.assertIn("not read: ", rows.pop("Gone"))
        self.assertEqual(rows, {"Hill": "3", "<b>Dale": "2", "Torn": "3"})
        self.assertEqual([text.split(":")[0] for text in self.texts(".notice li")],
                         ["Gone", "Torn, Ms Hill, Room 12"])
        self.browser.run("document.querySelector('#glance ~ div th button').click()")
        self.assertEqual(self.texts("#glance ~ div tbody th a"), sorted(self.schools))
        everybody = len(self.texts(f"{STUDENTS} th"))
        self.browser.run("document.getElementById('words').value = 'room dale';"
                         "document.getElementById('find').dispatchEvent(new Event('input'))")
        self.assertEqual((everybody, self.texts(f"{STUDENTS} th")),
                         (11, ["Ann Lee", "José Núñez", "Mei"]))
        self.assertEqual(self.texts(".school > h2"), ["<b>Dale"])

    def test_memory_does_not_grow_with_the_schools(self):
        if b"__asan_init" in (BIN / "kivreport").read_bytes():
            self.skipTest("the sanitizer keeps what was freed")
        most = []
        for count in (3, 24):
            stores = list_stores(self.folder / f"{count}.csv", [(f"School {number}", self.roots["many"])
                                                                for number in range(count)])
            path = self.folder / f"{count}.html"
            most.append(most_memory(BIN / "kivreport", stores, "--format=html", "--output", path,
                                    "--jobs=1"))
            self.assertGreater(path.read_text("utf-8").count("<tr"), count * MANY)
        self.assertLess(most[1], 1.3 * most[0])

    def test_a_student_alone_has_missions_and_keys(self):
        self.browser.open(self.pages["student"])
        self.assertEqual(len(self.texts(".missions li")), 25)
        self.assertEqual(len(self.texts(".missions .done")), 8)
        self.assertEqual(self.texts(".missions .current"), ["9, Current mission"])
        self.assertEqual(len(self.texts(".keys rect + text")), 48)

    def test_all_can_be_read_without_the_script(self):
        self.browser.ask("Emulation.setScriptExecutionDisabled", value=True)
        try:
            self.browser.open(self.pages["teachers"])
            self.assertEqual(self.texts("form, thead button"), [])
            self.assertTrue(self.texts(f"{STUDENTS} th"))
        finally:
            self.browser.ask("Emulation.setScriptExecutionDisabled", value=False)

    def test_assistive_technology_is_told_what_each_table_chart_and_control_is(self):
        for kind, path in self.pages.items():
            self.browser.open(path)
            named = self.browser.named()
            roles = {role for role, _ in named}
            expected = {"image", "main", "banner", "contentinfo", "heading"}
            if kind != "student":
                expected |= {"table", "searchbox", "rowheader", "columnheader"}
            self.assertLessEqual(expected, roles, kind)
            nameless = [role for role, name in named if not name and role in
                        ("table", "image", "button", "searchbox", "combobox", "heading", "link")]
            self.assertEqual(nameless, [], kind)
            levels = [int(level) for level in self.browser.run(
                "[...document.querySelectorAll('h1,h2,h3,h4,h5')].map(e => e.localName[1])")]
            self.assertEqual(levels[0], 1)
            self.assertTrue(all(b <= a + 1 for a, b in zip(levels, levels[1:])), levels)

    def test_text_is_readable_light_and_dark_and_no_page_is_wider_than_a_phone(self):
        for kind in ("teachers", "hostile", "change", "student", "schools"):
            self.browser.open(self.pages[kind])
            for scheme in ("light", "dark"):
                self.browser.ask("Emulation.setEmulatedMedia", features=[
                    {"name": "prefers-color-scheme", "value": scheme}])
                ratio, where = self.browser.run(CONTRAST)
                self.assertGreaterEqual(ratio, 4.5, (scheme, where))
            self.browser.ask("Emulation.setDeviceMetricsOverride", width=320, height=600,
                             deviceScaleFactor=1, mobile=True)
            width = self.browser.run("document.documentElement.scrollWidth")
            self.browser.ask("Emulation.clearDeviceMetricsOverride")
            self.assertLessEqual(width, 320, kind)

    def test_paper_has_one_class_a_page_and_repeats_the_heads(self):
        for kind in ("teachers", "many"):
            self.browser.open(self.pages[kind])
            classes = self.texts("section.group h3 > bdi:first-child")
            paper = self.folder / "paper.pdf"
            paper.write_bytes(base64.b64decode(self.browser.ask("Page.printToPDF")["data"]))
            pages = run("pdftotext", "-layout", paper, "-").split("\f")[:-1]
            begun = [[name for name in classes
                      if re.search(rf"^ *{re.escape(name)}( |$)", page, re.MULTILINE)]
                     for page in pages[1:]]
            self.assertEqual([name for names in begun for name in names], classes, begun)
            self.assertLessEqual(max(map(len, begun)), 1)
            self.assertEqual([page for page in pages[1:] if "mission" not in page], [])

    def test_on_paper_each_school_begins_a_page_and_each_class_names_its_school(self):
        self.browser.open(self.pages["schools"])
        heads = self.texts(".school > h2") + self.texts("section.group h4")
        paper = self.folder / "schools.pdf"
        paper.write_bytes(base64.b64decode(self.browser.ask("Page.printToPDF")["data"]))
        pages = run("pdftotext", "-layout", paper, "-").split("\f")[:-1]
        lines = [" ".join(page.split("\n")[0].split()) for page in pages[1:]]
        self.assertEqual(sorted(lines), sorted(heads))

    def test_it_is_written_in_the_language_of_the_environment_or_of_the_line(self):
        root = self.roots["teachers"]
        for words, locale, title in (([], "de_DE.UTF-8", "Lernstand"),
                                     ([], "fr_FR", "Progress report"),
                                     (["--lang=en"], "de_DE.UTF-8", "Progress report"),
                                     (["--lang=de"], "C", "Lernstand")):
            page = self.report(root, "html", *words, LC_ALL=locale).read_text("utf-8")
            self.assertIn(f": {title}</title>", page)
            self.assertIn(f'<html lang="{"de" if title == "Lernstand" else "en"}">', page)


class Workbooks(unittest.TestCase):
    MAIN = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def sheets(self, root, expect=0):
        """By name: the sheet's tree, and its cells by place, numbers as numbers."""
        path = self.folder / "report.xlsx"
        run(BIN / "kivreport", root, "--format=xlsx", "--output", path, "--force", expect=expect)
        with zipfile.ZipFile(path) as book:
            self.assertIsNone(book.testzip())
            strings = ["".join(item.itertext()) for item in
                       ElementTree.fromstring(book.read("xl/sharedStrings.xml"))]
            names = [sheet.get("name") for sheet in
                     ElementTree.fromstring(book.read("xl/workbook.xml")).iter(f"{self.MAIN}sheet")]
            trees = [ElementTree.fromstring(book.read(f"xl/worksheets/sheet{number}.xml"))
                     for number in range(1, len(names) + 1)]
        return {name: (tree, self.cells(tree, strings)) for name, tree in zip(names, trees)}

    def cells(self, tree, strings):
        cells = {}
        for cell in tree.iter(f"{self.MAIN}c"):
            value = cell.findtext(f"{self.MAIN}v")
            if value is not None:
                cells[cell.get("r")] = strings[int(value)] if cell.get("t") == "s" else float(value)
        return cells

    def test_a_sheet_a_class_with_numbers_dates_filter_and_scale(self):
        root = shutil.copytree(GOLDEN / "teachers" / "store", self.folder / "store")
        told = list(csv.DictReader(run(BIN / "kivreport", root, "--format=csv").splitlines()))
        sheets = self.sheets(root)
        rows = [row for name, (_, cells) in sheets.items() if name != "Summary"
                for row in self.rows_of(cells)]
        self.assertEqual(
            sorted(rows), sorted((row["student"], float(row["current_mission"]),
                                  float(row["previous_mission"]), float(row["vocab_level"]))
                                 for row in told))
        for name, (tree, cells) in sheets.items():
            for part in ("pane", "autoFilter", "cols"):
                self.assertIsNotNone(tree.find(f".//{self.MAIN}{part}"), (name, part))
            if "A2" in cells:
                self.assertIsNotNone(tree.find(f".//{self.MAIN}colorScale"), name)
        ann = next(cells for _, cells in sheets.values() if cells.get("A2") == "Ann Lee")
        self.assertIsInstance(ann["F2"], float)

    @staticmethod
    def rows_of(cells):
        row = 2
        while f"A{row}" in cells:
            yield tuple(cells[f"{column}{row}"] for column in "ABCD")
            row += 1

    def test_of_many_schools_each_row_begins_with_its_school(self):
        root = shutil.copytree(GOLDEN / "teachers" / "store", self.folder / "store")
        schools = {"A school of the longest name": root, "=Hill": root, "Gone": self.folder / "gone"}
        sheets = self.sheets(list_stores(self.folder / "north.csv", schools.items()), expect=3)
        summary = sheets.pop("Summary")[1]
        column = [summary.get(f"A{row}") for row in range(6, 14)]
        self.assertEqual(column, ["School"] + 3 * ["A school of the longest name"] + 3 * ["=Hill"]
                         + ["Gone"])
        self.assertIn("not read: ", summary["B13"])
        self.assertEqual((summary["B8"], summary["D8"]), ("Room 12", 3))
        self.assertEqual(len(sheets), 6)
        self.assertIn("Room 12, =Hill", sheets)
        for name, (_, cells) in sheets.items():
            self.assertLessEqual(len(name), 31)
            self.assertEqual((cells["A1"], cells["B1"]), ("School", "Student"))
            self.assertIn(cells["A2"], schools)
            self.assertIsInstance(cells["C2"], float)

    def test_names_are_texts_and_sheets_have_names_that_may_stand(self):
        sheets = self.sheets(lay_hostile(self.folder))
        self.assertEqual(len({name.lower() for name in sheets}), len(HOSTILE) + 4)
        for name, (tree, _) in sheets.items():
            self.assertRegex(name, r"\A(?!')[^\[\]:*?/\\]{1,31}(?<!')\Z")
            self.assertIsNone(tree.find(f".//{self.MAIN}f"), name)
        texts = {cell for _, cells in sheets.values() for cell in cells.values()}
        self.assertLessEqual({name for name in HOSTILE if name[0] in "=+-@"}, texts)


if __name__ == "__main__":
    BIN = pathlib.Path(sys.argv.pop(1)).resolve()
    missing = [name for name in ("chromium", "tidy", "pdftotext") if not shutil.which(name)]
    if missing:
        print("skipped, not here:", *missing)
        sys.exit(77)
    unittest.main()
