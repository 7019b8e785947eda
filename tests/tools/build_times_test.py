"""The table of build times counts each step once, by its last run, under the part that it belongs to."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).parents[2] / "tools/build_times.py"


class BuildTimes(unittest.TestCase):
    def rows(self, *steps):
        """The cells of each row, by its part; `page` is what is above the table."""
        with tempfile.TemporaryDirectory() as tree:
            lines = ["# ninja log v5", *("\t".join(map(str, step)) for step in steps)]
            pathlib.Path(tree, ".ninja_log").write_text("\n".join(lines) + "\n")
            done = subprocess.run([sys.executable, SCRIPT, tree], capture_output=True, text=True, check=True)
        self.page, _, table = done.stdout.partition("|---|---|---|---|---|\n")
        cells = [[cell.strip() for cell in line.strip("|").split("|")] for line in table.splitlines()]
        return {row[0]: row[1:] for row in cells}

    def test_steps_fall_into_parts(self):
        rows = self.rows((0, 6000, 1, "src/CMakeFiles/hvl_rng.dir/Unity/unity_philox4x32x10_0_cxx.cxx.o", "a"),
                         (0, 1000, 1, "src/CMakeFiles/hvl_rng.dir/offload/interop.cpp.o", "b"),
                         (1000, 3000, 1, "platform/streams/CMakeFiles/hvl_streams_avx2.dir/src/simd/mcg.cpp.o", "c"),
                         (3000, 4000, 1, "platform/streams/tests/CMakeFiles/one.dir/one_test.cpp.o", "d"),
                         (6000, 71000, 1, "platform/qorin/CMakeFiles/qorin.dir/src/queue.cpp.o", "e"),
                         (71000, 73000, 1, "platform/qorin/CMakeFiles/qorin.dir/src/event.cpp.o", "f"))
        self.assertEqual(rows, {
            "platform/qorin": ["2", "67", "87 %", "`queue.cpp`, 65.0 s"],
            "library: engines with distributions": ["1", "6", "8 %", "`unity_philox4x32x10_0_cxx.cxx`, 6.0 s"],
            "platform/streams: avx2": ["1", "2", "3 %", "`mcg.cpp`, 2.0 s"],
            "library: offload bridge": ["1", "1", "1 %", "`interop.cpp`, 1.0 s"],
            "platform/streams: tests": ["1", "1", "1 %", "`one_test.cpp`, 1.0 s"],
            "all": ["6", "77", "", ""]})
        self.assertEqual(list(rows)[0], "platform/qorin")
        self.assertIn(" 1:13 minutes on ", self.page)

    def test_a_step_counts_once(self):
        rows = self.rows((0, 9000, 1, "src/a.o", "a"), (0, 2000, 2, "src/a.o", "b"),
                         (2000, 5000, 1, "src/libx.so.0", "link"), (2000, 5000, 1, "src/libx.so", "link"))
        self.assertEqual(rows["all"], ["2", "5", "", ""])

    def test_needs_a_built_tree(self):
        with tempfile.TemporaryDirectory() as tree:
            done = subprocess.run([sys.executable, SCRIPT, tree], capture_output=True, text=True, check=False)
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("has not been built", done.stderr)


if __name__ == "__main__":
    unittest.main()
