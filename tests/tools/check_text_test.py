"""The text check reports paths of one machine and broken line ends, and lets ordinary paths pass."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).parents[2] / "tools/check_text.py"


class Text(unittest.TestCase):
    def check(self, text):
        with tempfile.TemporaryDirectory() as folder:
            pathlib.Path(folder, "file.txt").write_bytes(text.encode())
            done = subprocess.run([sys.executable, SCRIPT, folder], capture_output=True, text=True, check=False)
            return done.returncode, done.stdout

    def test_accepts_ordinary_text(self):
        for text in ("", "see /usr/include and /dev/full\n", "bench/work/one, ${dir}/tmp/x\n"):
            self.assertEqual(self.check(text)[0], 0, text)

    def test_reports_faults(self):
        for text, message in ((f"built in /{'home'}/me/project\n", "path of one machine"),
                              (f"-I/{'tmp'}/x\n", "path of one machine"),
                              ("one\r\n", "carriage returns"), ("no end", "line end")):
            status, output = self.check(text)
            self.assertNotEqual(status, 0, text)
            self.assertIn(message, output)


if __name__ == "__main__":
    unittest.main()
