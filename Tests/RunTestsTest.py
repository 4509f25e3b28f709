"""Checks that run_tests.py finds skipped tests in the result files, and which of them it reports as unexpected."""

import contextlib
import io
import pathlib
import sys
import tempfile
import unittest

import run_tests

RESULTS = """<?xml version="1.0" encoding="UTF-8"?>
<testsuites tests="3" name="AllTests"><testsuite name="S">
  <testcase name="Runs" status="run" result="completed" classname="S" />
  <testcase name="{name}" status="run" result="skipped" classname="{suite}">
    <skipped message="/tree/Test.cpp:1&#x0A;not &lt;here&gt;&#x0A;"><![CDATA[text]]></skipped>
  </testcase>
</testsuite></testsuites>"""


class Report(unittest.TestCase):
    def report(self, program, suite, name, preset):
        with tempfile.TemporaryDirectory() as folder, contextlib.redirect_stdout(io.StringIO()) as output:
            (pathlib.Path(folder) / f"{program}.xml").write_text(RESULTS.format(suite=suite, name=name))
            unexpected = run_tests.report(pathlib.Path(folder), preset)
        return unexpected, output.getvalue()

    def test_tells_expected_skips_from_others(self):
        self.assertEqual(
            self.report("Machine", "Machine", "WritesReach", "release"),
            ([], "Skipped tests: 1, of them unexpected: 0\n  Machine/Machine.WritesReach: not <here>\n"))
        for program, suite, name, preset in [
                ("Sources", "Machine", "WritesReach", "release"),
                ("Container", "List", "Pops", "release"),
                ("OS", "Library", "IsGone", "release"),
                ("quorlin", "OnLinux", "Output", "asan")]:
            test = f"{program}/{suite}.{name}"
            unexpected, output = self.report(program, suite, name, preset)
            self.assertEqual(unexpected, [test])
            self.assertIn(f"unexpected: 1\n  UNEXPECTED: {test}: not <here>\n", output)


if __name__ == "__main__":
    unittest.main()
