"""The layer check reports each kind of breach and accepts what the table allows."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).parents[2] / "tools/check_layers.py"
TABLE = """
<!-- layers -->
| folder | folders of ours | third-party libraries |
|---|---|---|
| `include` | - | - |
| `src/low` | `include`, `platform/one` | - |
| `src/high` | `src/low`, `include` | OpenCL |
| `platform/one` | - | Highway |
<!-- /layers -->
"""
FILES = {
    "docs/architecture.md": TABLE,
    "include/kestro/hvl/api.hpp": "#include <vector>\n",
    "platform/one/include/hvl/one.h": "#include <stdio.h>\n",
    "platform/one/src/one.cpp": "#include <hvl/one.h>\n#include <hwy/highway.h>\n",
    "platform/one/tests/one_test.cpp": "#include <gtest/gtest.h>\n#include <hvl/one.h>\n",
    "src/low/low.hpp": "#include <kestro/hvl/api.hpp>\n#include <hvl/one.h>\n",
    "src/high/high.cpp": '#include "low/low.hpp"\n#include <CL/cl.h>\n',
}


class Layers(unittest.TestCase):
    def check(self, **changed):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in {**FILES, **{key.replace("__", "/"): text for key, text in changed.items()}}.items():
                path = pathlib.Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text)
            done = subprocess.run([sys.executable, SCRIPT, folder], capture_output=True, text=True, check=False)
            return done.returncode, done.stdout + done.stderr

    def assert_fault(self, file, text, message):
        status, output = self.check(**{file.replace("/", "__"): text})
        self.assertNotEqual(status, 0)
        self.assertIn(f"{file}: {message}", output)

    def test_accepts_what_the_table_allows(self):
        status, output = self.check()
        self.assertEqual((status, output), (0, "6 files keep to the layers\n"))

    def test_reports_breaches(self):
        self.assert_fault("src/low/low.hpp", '#include "../high/high.hpp"\n#include "high/high.cpp"\n',
                          "src/low may not include src/high")
        self.assert_fault("platform/one/src/one.cpp", "#include <kestro/hvl/api.hpp>\n",
                          "platform/one may not include include")
        self.assert_fault("platform/one/tests/one_test.cpp", "  #  include <kestro/hvl/api.hpp>\n",
                          "platform/one may not include include")
        self.assert_fault("include/kestro/hvl/api.hpp", "#include <hvl/one.h>\n", "include may not include platform/one")
        self.assert_fault("src/low/low.hpp", "#include <hwy/highway.h>\n", "src/low may not include Highway")

    def test_needs_the_table(self):
        status, output = self.check(**{"docs__architecture.md": "no table"})
        self.assertNotEqual(status, 0)
        self.assertIn("no table", output)


if __name__ == "__main__":
    unittest.main()
