"""The benchmark report reads ratios as written and compares like with like."""
import importlib.util
import pathlib
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).parents[2] / "tools/bench_report.py"
spec = importlib.util.spec_from_file_location("bench_report", SCRIPT)
bench_report = importlib.util.module_from_spec(spec)
spec.loader.exec_module(bench_report)


def result(name, **fields):
    return {"name": name, "run_name": name, "real_time": 100.0, "time_unit": "ns", **fields}


class Report(unittest.TestCase):
    def evaluate(self, text, benchmarks):
        with tempfile.TemporaryDirectory() as folder:
            pathlib.Path(folder, "ratios.txt").write_text(text)
            table = bench_report.speeds({"program": {"benchmarks": benchmarks}})
            return list(bench_report.evaluate(bench_report.ratios_of(["."], pathlib.Path(folder)), table))

    def test_prefers_items_then_bytes_then_time(self):
        benchmarks = [result("a/1", items_per_second=6.0, bytes_per_second=1.0), result("b/1", items_per_second=2.0),
                      result("c", bytes_per_second=4.0), result("d", real_time=0.4, time_unit="us")]
        ratios = self.evaluate("# note\nx = a/1 / b/1 >= 2.5\ny = a/1  /  c\nz = c / d\nw = a/1 / absent\n", benchmarks)
        self.assertEqual([(one["label"], one["ratio"], one["of"], one["aim"]) for one in ratios[:2]],
                         [("x", 3.0, "items", 2.5), ("y", 0.25, "bytes", None)])
        self.assertAlmostEqual(ratios[2]["ratio"], 4.0)
        self.assertIsNone(ratios[3]["ratio"])

    def test_a_line_may_say_what_it_compares(self):
        benchmarks = [result("a", items_per_second=6.0, bytes_per_second=8.0),
                      result("b", items_per_second=2.0, bytes_per_second=16.0)]
        ratios = self.evaluate("x = a / b in bytes >= 0.4\ny = a / b\n", benchmarks)
        self.assertEqual([(one["ratio"], one["of"], one["aim"]) for one in ratios],
                         [(0.5, "bytes", 0.4), (3.0, "items", None)])

    def test_the_best_repetition_counts_and_failures_are_left_out(self):
        benchmarks = [result("a", items_per_second=4.0), result("a", items_per_second=9.0), result("a", items_per_second=6.0),
                      result("b", items_per_second=1.0), result("b", items_per_second=3.0),
                      result("a_max", items_per_second=99.0) | {"run_name": "a", "aggregate_name": "max"},
                      result("e", items_per_second=9.0, error_occurred=True)]
        ratios = self.evaluate("x = a / b\ny = e / b\n", benchmarks)
        self.assertEqual([one["ratio"] for one in ratios], [3.0, None])

    def test_subjects_that_were_not_measured_are_left_out(self):
        with tempfile.TemporaryDirectory() as folder:
            for subject in ("gpu", "streams"):
                pathlib.Path(folder, subject).mkdir()
                pathlib.Path(folder, subject, "ratios.txt").write_text(f"{subject} = a / b\n")
            found = bench_report.ratios_of([pathlib.Path("streams")], pathlib.Path(folder))
            self.assertEqual([one["label"] for one in found], ["streams"])

    def test_a_malformed_line_stops(self):
        with self.assertRaises(SystemExit):
            self.evaluate("a over b\n", [])


if __name__ == "__main__":
    unittest.main()
