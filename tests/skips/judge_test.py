"""Runs made-up tests with ctest and has their skips judged: judge_test.py CTEST."""
import contextlib
import io
import pathlib
import subprocess
import sys
import tempfile
import unittest

import judge

TESTS = '''\
add_test(passes true)
add_test(leaves sh -c "echo 'skipped: no pen'; exit 77")
set_tests_properties(leaves PROPERTIES SKIP_RETURN_CODE 77)
add_test(says sh -c "echo '[  SKIPPED ] paper.is_white'")
set_tests_properties(says PROPERTIES SKIP_REGULAR_EXPRESSION "SKIPPED")
add_test(rests true)
set_tests_properties(rests PROPERTIES DISABLED TRUE)
'''
HEADER = "preset\ttest\tmissing ability\n"


class Judging(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "CTestTestfile.cmake").write_text(TESTS)

    def run_tests(self, pattern):
        results = self.folder / "results.xml"
        subprocess.run([ctest, "-R", f"^({pattern})$", "--output-junit", results], cwd=self.folder, check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return results

    def judged(self, known, *runs):
        """The exit status, and what was printed."""
        table = self.folder / "known.tsv"
        table.write_text(HEADER + known)
        with contextlib.redirect_stdout(io.StringIO()) as printed, contextlib.redirect_stderr(printed):
            status = judge.main([str(table), *runs])
        return status, printed.getvalue()

    def test_a_known_skip_is_listed_with_what_is_missing(self):
        results = self.run_tests("passes|leaves|says")
        status, printed = self.judged("dev\tleaves\tpens\ndev\tsays\tpaper\n", f"dev={results}")
        self.assertEqual(printed, "dev: leaves: pens\ndev: says: paper\n")
        self.assertEqual(status, 0)

    def test_an_unknown_skip_fails_and_shows_what_the_test_said(self):
        for test, said in ("leaves", "skipped: no pen"), ("says", "[  SKIPPED ] paper.is_white"), ("rests", "Disabled"):
            status, printed = self.judged("dev\tother\tpens\n", f"dev={self.run_tests(test)}")
            self.assertIn(f"dev: {test}: NOT KNOWN, and said:\n    {said}\n", printed)
            self.assertEqual(status, 1)

    def test_a_skip_is_known_in_its_preset_only(self):
        results = self.run_tests("leaves")
        status, printed = self.judged("device\tleaves\tpens\n", f"device={results}", f"dev={results}")
        self.assertIn("device: leaves: pens\ndev: leaves: NOT KNOWN", printed)
        self.assertEqual(status, 1)

    def test_a_known_skip_that_did_not_occur_is_no_fault(self):
        known = "dev\tpasses\tpens\ndev\tnever\tpaper\n"
        self.assertEqual(self.judged(known, f"dev={self.run_tests('passes')}"), (0, "no test\n"))

    def test_a_run_without_tests_skips_none(self):
        results = self.run_tests("none")
        self.assertEqual(self.judged("", f"dev={results}", f"fuzz={self.folder / 'absent.xml'}"), (0, "no test\n"))

    def test_every_known_skip_of_the_project_has_its_reason(self):
        known = judge.known_skips(pathlib.Path(__file__).parent / "known.tsv")
        self.assertGreater(len(known), 0)
        for (preset, test), missing in known.items():
            self.assertTrue(preset and test and missing, (preset, test))


if __name__ == "__main__":
    ctest = sys.argv.pop(1)
    unittest.main()
