"""Pages of the program in a browser: report_test.py QUORLIN SCRATCH PICTURES [PART].

SCRATCH has axe-core and images. PART 0 is every second test, PART 1 the others.
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import time
import unittest

import checks
import page
import tables
from browser import Browser

QUORLIN, GIVEN, PICTURES = (pathlib.Path(each) for each in sys.argv[1:4])
PART = sys.argv[4:5]
SCRATCH = GIVEN / "".join(["part", *PART])
SCRATCH.mkdir()
REAL = sorted((pathlib.Path(__file__).parents[3] / "shared/tables").glob("*.bin"))
GENERATED = sorted((GIVEN / "images").glob("*.bin"))
NEWEST, OLD, ODD = (GIVEN / "images" / name for name in ("newest.bin", "old-laptop.bin", "odd-strings.bin"))
MOST_BYTES = 1_500_000


def quorlin(*arguments, command=()):
    return subprocess.run([*command, QUORLIN, *arguments], check=True, capture_output=True).stdout


def make(name, *arguments, command=()):
    path = SCRATCH / f"{name}.html"
    path.unlink(missing_ok=True)
    quorlin("report", path, *arguments, command=command)
    return path


def facts_of(*source):
    return json.loads(quorlin("facts", *source, "--full", "--format", "json"))


def table_of(*source):
    path = SCRATCH / "table.bin"
    path.unlink(missing_ok=True)
    quorlin("dump", path, *source)
    return path.read_bytes()[0x20:]


def write(name, data):
    path = SCRATCH / name
    path.write_bytes(data)
    return path


class Report(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = Browser(SCRATCH / "profile")
        cls.axe = (GIVEN / "node_modules/axe-core/axe.min.js").read_text()
        cls.sample = table_of("--sample")
        cls.record = tables.write_record(SCRATCH / "record", table_of("--image", OLD))
        cls.pages = {
            "sample": make("sample", "--sample"),
            "old-laptop": make("old-laptop", OLD),
            "odd-strings": make("odd-strings", ODD),
            "comparison": make("comparison", NEWEST, OLD),
            "record": make("record", "--replay", cls.record),
        }

    @classmethod
    def tearDownClass(cls):
        cls.browser.quit()

    def setUp(self):
        self.began = time.monotonic()

    def tearDown(self):
        print(f"{time.monotonic() - self.began:.0f} s ", end="", file=sys.stderr)

    def open(self, path, fragment=""):
        self.browser.open(path, fragment)
        return self.browser.run(page.READ)

    def good(self, problems, what=""):
        self.assertEqual(list(problems)[:5], [], what)

    def test_shows_all_facts_at_all_widths(self):
        sources = [("--sample",)] + [("--image", path) for path in GENERATED + REAL]
        for source in sources:
            with self.subTest(source[-1]):
                path = make("page", *source)
                self.assertLess(path.stat().st_size, MOST_BYTES)
                shown = self.open(path)
                self.good(page.differences(shown, facts_of(*source), table_of(*source)))
                self.good(checks.widths(self.browser))
                self.good(checks.quiet(self.browser))

    def test_searches_and_unfolds_without_requests(self):
        self.good(checks.search(self.browser, self.open(self.pages["sample"])))
        self.good(checks.quiet(self.browser))
        # From another page.
        shown = self.open(self.pages["sample"], "#s-0400-11")
        self.assertIn("s-0400-11", [each["id"] for each in shown["structures"]])
        self.assertTrue(checks.unfolds(self.browser, "s-0400-11"))

    def test_texts_stay_texts(self):
        for name, table in (("sample", tables.hostile_sample(self.sample)), ("all", tables.all_texts())):
            with self.subTest(name):
                path = write(f"hostile-{name}.bin", tables.dump(table))
                shown = self.open(make("hostile", path))
                self.good(page.differences(shown, facts_of("--image", path), table))
                self.good(checks.inert(self.browser, shown))
                for payload in tables.PAYLOADS:
                    self.assertIn(page.clean(payload), shown["text"])
                self.browser.run(checks.OPEN, True)
                # The events of payloads.
                self.browser.run("for (const each of document.querySelectorAll('*')) for (const type of ['load', "
                                 "'error', 'mouseover', 'focus']) each.dispatchEvent(new Event(type));")
                self.good(checks.widths(self.browser))
                self.good(checks.inert(self.browser, shown))
                self.good(checks.quiet(self.browser))

    def test_names_of_files_stay_texts(self):
        names = [payload.replace("/", "").encode() + b"\xFF.bin" for payload in tables.PAYLOADS]
        files = [write(os.fsdecode(name), NEWEST.read_bytes()) for name in names]
        for a, b in zip(files, files[1:] + files[:1]):
            with self.subTest(a.name):
                shown = self.open(make("hostile", a, b))
                for name in (a, b):
                    wanted = page.clean(os.fsencode(name.name).decode(errors="replace"))
                    self.assertIn(wanted, shown["header"] if name == b else shown["differences"])
                self.good(checks.inert(self.browser, shown))
                self.good(checks.quiet(self.browser))

    def test_texts_of_machines_stay_texts(self):
        reason = " ".join(tables.PAYLOADS)
        record = tables.write_record(SCRATCH / "hostile-record", tables.all_texts(), reason, reason)
        names = write("pci.ids", "".join(f"{start}  {tables.payload(number)}\n" for number, start in enumerate(
            ("8086", "\t1533", "C 02", "\t00"))).replace("\n ", " ").encode())
        # In a namespace of its own, where another list of names is in the place of the system's.
        place = ["unshare", "-Urm", "sh", "-c", f"mount --bind {names} /usr/share/misc/pci.ids && exec \"$@\"", "sh"]
        shown = self.open(make("hostile", "--replay", record, command=place))
        self.assertIn(page.clean(reason), shown["findings"])
        # The name of the subclass takes the place of the class's.
        for number in (0, 1, 3):
            self.assertIn(tables.payload(number), shown["slots"])
        self.good(page.differences(shown, facts_of("--replay", record), tables.all_texts()))
        self.good(checks.inert(self.browser, shown))
        self.good(checks.widths(self.browser))
        self.good(checks.quiet(self.browser))

    def test_is_accessible(self):
        for name, path in self.pages.items():
            with self.subTest(name):
                self.open(path)
                self.good(checks.accessibility(self.browser, self.axe))
                # axe comes from here and not from a server.
                self.good(checks.quiet(self.browser))

    def test_needs_no_script(self):
        browser = Browser(SCRATCH / "profile-without-script", has_script=False)
        try:
            browser.open(self.pages["sample"])
            shown = browser.run(page.READ)
            differences = page.differences(shown, facts_of("--sample"), self.sample)
            self.good(checks.without_script(browser, shown, differences))
            self.good(checks.quiet(browser))
        finally:
            browser.quit()

    def test_prints_everything(self):
        for paper, width, height in (("a4", 8.27, 11.69), ("letter", 8.5, 11)):
            for name in ("sample", "comparison", "record"):
                with self.subTest(f"{name} {paper}"):
                    shown = self.open(self.pages[name])
                    pdf = SCRATCH / "page.pdf"
                    self.browser.pdf(pdf, width, height)
                    self.good(checks.printed(pdf, shown))
                    subprocess.run(["pdftoppm", "-png", "-r", "60", "-l", "4", pdf, PICTURES / f"{name}-{paper}"],
                                   check=True)

    # For people to look at.
    def test_draws_pictures(self):
        pages = {name: self.pages[name] for name in ("sample", "comparison", "record")}
        for path in REAL:
            if path.stem in ("supermicro-x10ddw-i", "vmware-workstation-17"):
                pages[path.stem] = make(path.stem, path)
        for name, path in pages.items():
            self.browser.open(path)
            for width in (360, 1280, 2560):
                self.browser.set_width(width)
                for scheme in ("light", "dark"):
                    self.browser.set_scheme(scheme)
                    self.browser.picture(PICTURES / f"{name}-{width}-{scheme}.png", most=width + 2500)
        self.browser.set_width(1280)
        self.browser.set_scheme("light")

    def broken(self, *replacements, name="old-laptop", keeps_policy=False):
        """A page with faults in it. Without its policy, which would stop other scripts and styles."""
        text = self.pages[name].read_text()
        for before, after in replacements:
            self.assertIn(before, text)
            text = text.replace(before, after)
        if not keeps_policy:
            text = re.sub('<meta http-equiv="Content-Security-Policy"[^>]*>', "", text)
        path = SCRATCH / "broken.html"
        path.write_text(text)
        return self.open(path)

    def test_each_check_can_fail(self):
        table, facts = table_of("--image", OLD), facts_of("--image", OLD)
        self.good(page.differences(self.broken(), facts, table))
        self.good(checks.search(self.browser, self.broken()))
        remote = "<img src=http://127.0.0.1:9/>"
        for before, after in (
            ("<td>Halvorsen Systems<", "<td>Halvorsen systems<"), ("<td>byte", "<td>"), ("data-state=none", ""),
            ("<td>0Ah<td>", "<td>0Bh<td>"), ("<td>02485642322E31342E30333038<", "<td>02485642322E31342E30333039<"),
            ("data-key=vendor", "data-key=maker"), (" data-record=1 ", " data-record=2 "),
            ("id=s-0200-1 ", "id=s-0200-2 "), ("class=structure id=s-0200-1", "class=other id=s-0200-1"),
            ("data-offset=32", "data-offset=3"),
            ("<tr data-offset=32", "<p data-offset=32"), ("<h1>", "<h1>\u202E"), ("<h1>", "<h1><hostile>"),
            ("<h1>", "<h1 onclick=a>"), ("href=#b-0000>", "href=//b>"), ("id=b-0000", "id=b"),
        ):
            with self.subTest(after):
                self.assertTrue(list(page.differences(self.broken((before, after)), facts, table)))
        for check, *fault in (
            (checks.quiet, "<h1>", "<h1>" + remote),
            (checks.quiet, "</main>", "<script>console.log(1)</script></main>"),
            (checks.widths, ".wide { overflow-x: auto;", ".wide {"),
            (checks.widths, "<h1>", "<h1><pre>" + "M" * 400 + "</pre>"),
            (checks.search, "words.every", "words.some"), (checks.search, "toLowerCase()", "trim()"),
            (checks.search, "type !== type.value", "type === type.value"),
            (checks.search, "if (!each.hidden) each.open", "each.open"),
            (checks.search, "target.open = true", ""), (checks.search, "target.hidden = false", ""),
            (checks.search, "=== location.hash", "=== 1"),
            (checks.search, "html:not(.script) details.structure:target", "details.structure:target"),
            (checks.search, 'addEventListener("hashchange", goToTarget)', ""),
            (checks.inert, "<h1>", "<h1>" + tables.PAYLOADS[1]), (checks.inert, "<h1>", "<h1>" + tables.PAYLOADS[2]),
            (checks.inert, "<h1>", "<h1>" + tables.PAYLOADS[0].replace("hostile", "hostile=document.title")),
        ):
            with self.subTest(f"{check.__name__}: {fault[1]}"):
                shown = self.broken(fault)
                self.assertTrue(check(self.browser, shown) if check in (checks.search, checks.inert)
                                else check(self.browser))
        for scheme, *fault in (
            ("light", ' lang="en"', ""), ("light", "--quiet: #566069", "--quiet: #999"),
            ("light", "><title>CPU", "><p>CPU"),
            ("dark", "--quiet: #a3adb7", "--quiet: #555"), ("dark", "--part: #1f3a54", "--part: #ccc"),
        ):
            with self.subTest(f"accessibility: {fault[1]}"):
                self.broken(fault)
                self.assertTrue(checks.accessibility(self.browser, self.axe, (scheme,)))
        for fault in (remote, "<p style=color:red>", "<script>1</script>"):
            with self.subTest(f"the policy: {fault}"):
                self.broken(("<h1>", "<h1>" + fault), keeps_policy=True)
                self.assertTrue(checks.quiet(self.browser))
        for fault in (("details::details-content", "x"), ("body {", "body { width: 70rem;")):
            with self.subTest(f"print: {fault[1]}"):
                shown = self.broken(fault)
                self.browser.pdf(SCRATCH / "broken.pdf", 8.27, 11.69)
                self.assertTrue(checks.printed(SCRATCH / "broken.pdf", shown))


def load_tests(loader, tests, pattern):
    names = loader.getTestCaseNames(Report)
    return unittest.TestSuite(Report(each) for each in (names[int(PART[0])::2] if PART else names))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
