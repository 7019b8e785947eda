"""The judge of the quality batteries tells expected failures from faults, with programs that say what they are told to."""
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).parents[2] / "tools/quality/quality.py"

# Outcomes from the folder that the program is in; without a file for an engine and view, nothing fails.
PROGRAM = """#!/bin/sh
cd "$(dirname "$0")"
case $1 in
  list) printf 'strong\\twords\\tuniforms\\nweak\\twords\\npoints\\n' ;;
  run) if [ -e "$2.$3" ]; then cat "$2.$3"; else printf 'runs\\t0.5\\nrank\\t0.25\\n'; fi ;;
  pour) while printf "$2"; do :; done ;;
  quasi) cat measures ;;
esac
"""
TESTU01 = """#!/bin/sh
printf 'smallcrush_Gap\\t%s\\n' "$([ "$1" = {0} ] && echo 0 || echo 0.5)"
"""
RNG_TEST = """#!/bin/sh
[ "$*" = "stdin32 -tlmax 256MB" ] || exit 3
case $(head -c 6) in {0}*) verdict=FAIL ;; *) verdict=ok ;; esac
printf 'length= 256 megabytes\\n  BRank %s\\n' "$verdict"
"""
EXPECTED = "# note\n\nweak words rank : it is linear\n"


class Quality(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.write("program", PROGRAM)
        self.write("expected", EXPECTED)
        self.write("measures", "net\t1\t1\n")
        self.write("weak.words", "runs\t0.125\nrank\t1e-40\n")

    def write(self, name, text):
        path = self.folder / name
        path.write_text(text)
        path.chmod(0o755)

    def judged(self, *arguments):
        """The status and what was said of faults; `page` is the page."""
        done = subprocess.run(
            [sys.executable, SCRIPT, self.folder / "program", "--expected", self.folder / "expected", *arguments],
            capture_output=True, text=True, check=False, env=os.environ | {"PATH": f"{self.folder}:/usr/bin:/bin"})
        self.page = done.stdout
        return done.returncode, done.stderr.strip()

    def test_what_is_expected_is_no_fault(self):
        self.assertEqual(self.judged(), (0, "no fault"))
        self.assertIn("| `weak` | words | 2 | rank | 0.12 |", self.page)
        self.assertIn("| `strong` | uniforms | 2 | - | 0.25 |", self.page)
        self.assertIn("| `points` | net | 1 | 1 |", self.page)
        self.assertIn("6 p-values", self.page)
        self.assertIn("- `weak` as words, in rank: it is linear.", self.page)

    def test_an_unexpected_failure_is_a_fault(self):
        self.write("strong.uniforms", "runs\t9e-11\nrank\t1.1e-10\n")
        self.assertEqual(self.judged(), (1, "unexpected: strong uniforms runs, p = 9e-11"))
        self.assertIn("| `strong` | uniforms | 2 | **runs** | 1.1e-10 |", self.page)

    def test_an_expected_failure_that_does_not_appear_is_a_fault_at_full_size(self):
        self.write("weak.words", "runs\t0.5\nrank\t2e-10\n")
        self.assertEqual(self.judged(), (1, "expected, but it did not fail: weak words rank, p = 2e-10"))
        self.assertEqual(self.judged("--size", "16"), (0, "no fault"))
        self.write("expected", EXPECTED + "weak words rnak : a slip\n")
        self.assertEqual(self.judged("--size", "16"), (1, "expected.txt names no test that was run: weak words rnak"))

    def test_points_that_are_not_even_are_a_fault(self):
        self.write("measures", "net\t2\t1\n")
        self.assertEqual(self.judged(), (1, "points: net is 2, at most 1 is good"))
        self.write("measures", "net\tnan\t1\n")
        self.assertEqual(self.judged()[0], 1)

    def test_other_batteries_fault_engines_without_known_weakness(self):
        self.write("testu01", TESTU01.replace("{0}", "weak"))
        self.assertEqual(self.judged(), (0, "no fault"))
        self.assertIn("not TestU01", self.page)
        self.assertEqual(self.judged("--testu01", self.folder / "testu01"), (0, "no fault"))
        self.assertIn("| `weak` | words | 3 | rank, smallcrush_Gap |", self.page)
        self.write("testu01", TESTU01.replace("{0}", "strong"))
        self.write("expected", EXPECTED + "strong uniforms runs : a matter of roundings\n")
        self.write("strong.uniforms", "runs\t0\nrank\t0.5\n")
        self.assertEqual(self.judged("--testu01", self.folder / "testu01"), (1, "unexpected: strong words smallcrush_Gap, p = 0"))
        self.assertIn("| `strong` | words | 3 | **smallcrush_Gap** |", self.page)

    def test_practrand_reads_the_words(self):
        self.write("RNG_test", RNG_TEST.replace("{0}", "weak"))
        self.assertEqual(self.judged(), (0, "no fault"))
        self.assertIn("| `weak` | words | 3 | rank, practrand | 0.12 |", self.page)
        self.write("RNG_test", RNG_TEST.replace("{0}", "strong"))
        self.assertEqual(self.judged(), (1, "unexpected: strong words practrand, p = 0"))
        self.write("RNG_test", "#!/bin/sh\nexit 0\n")
        self.assertNotEqual(self.judged()[0], 0)

    def test_programs_that_fail_are_no_outcome(self):
        for name, text in (("program", "#!/bin/sh\nexit 5\n"), ("strong.words", ""), ("expected", "weak words rank\n")):
            with self.subTest(name):
                self.setUp()
                self.write(name, text)
                self.assertNotEqual(self.judged()[0], 0)
                self.assertEqual(self.page, "")

    def test_some_engines_only(self):
        self.assertEqual(self.judged("--engines", "strong"), (0, "no fault"))
        self.assertNotIn("weak", self.page)
        self.assertNotEqual(self.judged("--engines", "strung")[0], 0)


if __name__ == "__main__":
    unittest.main()
