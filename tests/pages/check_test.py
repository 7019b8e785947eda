"""The check of the pages reports links, headings, pages and pictures that are missing, and passes what is whole."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "tools/pages/check.py"
LISTS = "include/kestro/hvl/rng/detail/"
WHOLE = {
    LISTS + "engines.def": "KESTRO_HVL_ENGINE(one)\n",
    LISTS + "distributions.def": "KESTRO_HVL_DISTRIBUTION(family, two<float>)\n",
    "docs/README.md": "# Start\n\n[one](engines/one.md), [two](distributions/two.md#a-head-and-code)\n",
    "docs/engines/one.md": "# one\n\n    [no](link.md)\n\n`[no](link.md)` [back](../README.md#start) and [here](#one)\n",
    "docs/distributions/two.md": "# A head, and `code`\n\n![two](../gallery/two.svg)\n",
    "docs/gallery/two.svg": "",
}


class Pages(unittest.TestCase):
    def check(self, files=()):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in {**WHOLE, **dict(files)}.items():
                if text is not None:
                    path = pathlib.Path(folder, name)
                    path.parent.mkdir(parents=True, exist_ok=True)
                    path.write_text(text)
            done = subprocess.run([sys.executable, SCRIPT, folder], capture_output=True, text=True, check=False)
            return done.returncode, done.stdout

    def test_passes_what_is_whole(self):
        self.assertEqual(self.check(), (0, "3 pages, 5 links\n"))

    def test_reports_faults(self):
        two = "docs/distributions/two.md"
        for name, text, message in (
                ("docs/engines/one.md", "# one\n\n[a file\nthat is not](there.md)\n", "docs/engines/one.md:3: no file there.md"),
                ("docs/engines/one.md", "# one\n\n[x](#two)\n", "one.md:3: no heading #two"),
                ("docs/engines/one.md", "# one\n\n```cpp\n# x\n```\n[x](#x)\n", "one.md:6: no heading #x"),
                ("docs/engines/one.md", None, "docs/engines: no page of one"),
                (two, "# A head and code\n", f"{two}: no picture"),
                (two, "# A head and code\n", "docs/gallery/two.svg: on no page"),
                ("docs/engines/three.md", "# three\n", "docs/engines/three.md: not reached"),
                (LISTS + "engines.def", "KESTRO_HVL_ENGINE(one)\nKESTRO_HVL_ENGINE(ten)\n", "no page of ten")):
            status, output = self.check(files={name: text})
            self.assertNotEqual(status, 0, message)
            self.assertIn(message, output)


if __name__ == "__main__":
    unittest.main()
