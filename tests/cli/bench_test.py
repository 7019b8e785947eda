"""Drives the program's measurements: what they print and draw, and what is refused. No figure is judged."""
import math
import os
import pathlib
import re
import tempfile
import unittest
from xml.etree import ElementTree

from program import DEVICE, OUTPUT, UNSUPPORTED, USAGE, run

SHORT = ("--seconds", "0")  # every size once
ROW = re.compile(r"^ *(\S+(?: [kMG])?)  +(\S+(?: [kMGT])?)  +(\S+)  +(\S+)  +(\d+) %  (#+)$")


def bench(*arguments, **options):
    done = run("bench", *arguments, **options)
    assert done.returncode == 0 and not done.stderr, done
    return done.stdout.decode()


def value(text):
    number, _, prefix = text.partition(" ")
    return float(number) * {"": 1, "k": 1e3, "M": 1e6, "G": 1e9, "T": 1e12}[prefix]


def tables(text):
    """The title's lines, and of each device its name, its rows (a call, a second, GB/s, memory GB/s, per cent, bar) and whether
    sizes were left out."""
    title, *devices = text.split("\n\n")
    read = []
    for device in devices:
        name, head, *rows = device.splitlines()
        assert re.sub(" +", " ", head) == " a call a second GB/s memory GB/s part", head
        is_cut = rows[-1] == "       ...  larger calls want more --seconds"
        read.append((name, [(value(row[1]), value(row[2]), float(row[3]), float(row[4]), int(row[5]), len(row[6]))
                            for row in map(ROW.match, rows[:-1] if is_cut else rows)], is_cut))
    return title.splitlines(), read


class Figures(unittest.TestCase):
    def assert_consistent(self, rows, value_bytes):
        for _, numbers, gigabytes, memory, part, bar in rows:
            for figure in (numbers, gigabytes, memory):
                self.assertTrue(0 < figure < math.inf)
            self.assertAlmostEqual(numbers * value_bytes / 1e9 / gigabytes, 1, delta=0.011)  # of three digits
            self.assertAlmostEqual(gigabytes / memory * 100, part, delta=0.5 + 0.011 * part)
            self.assertAlmostEqual(min(0.3 * part, 40) + 0.5, bar, delta=0.7)

    def test_every_device_is_measured_in_calls_of_several_sizes(self):
        title, devices = tables(bench(*SHORT))
        self.assertEqual(title, ["uniform  a=0  b=1", "numbers (float, standard) of philox4x32x10, seed 1"])
        listed = [line.split() for line in run("devices").stdout.decode().splitlines()[1:]]
        self.assertEqual([name.split(":")[0].split() for name, *_ in devices],
                         [line[:2] for line in listed if line[1] in ("cpu", "gpu")])
        for _, rows, is_cut in devices:
            sizes = [row[0] for row in rows]
            self.assertEqual(sizes, [1e3, 1e5, 1e6, 5e7][:len(sizes)])
            self.assertEqual(is_cut, len(sizes) < 4)
            self.assert_consistent(rows, 4)

    def test_options_say_what_is_measured(self):
        for device in ("cpu", "gpu"):
            for value_bytes, of, *arguments in (
                    (8, "(double, box_muller2) of mt19937, seed 3,4", "-d", "gaussian", "-t", "double", "-e", "mt19937",
                     "-s", "3,4"),
                    (4, "(float) of wichmann_hill, member 9, seed 1", "-d", "gaussian_mv", "-e", "wichmann_hill", "--member",
                     "9", "--skip", "10")):
                title, devices = tables(bench("--device", device, "-n", "5k", *SHORT, *arguments))
                self.assertEqual(title[1], f"numbers {of}")
                ((name, rows, is_cut),) = devices
                self.assertFalse(is_cut)
                self.assertIn(f" {device}: ", name)
                self.assertEqual([row[0] for row in rows], [1e4 if "gaussian_mv" in arguments else 5e3])  # vectors of two
                self.assert_consistent(rows, value_bytes)

    def test_output_holds_figures_only(self):
        traced = run("bench", "-n", "1k", *SHORT, env={**os.environ, "HVL_VERBOSE": "1"})
        self.assertEqual(traced.returncode, 0)
        self.assertEqual(len(tables(traced.stdout.decode())[1]), 2)
        self.assertIn(b"philox4x32x10", traced.stderr)

    def test_draws_a_picture_of_every_device(self):
        with tempfile.TemporaryDirectory() as folder:
            svg, png = pathlib.Path(folder, "bench.svg"), pathlib.Path(folder, "bench.png")
            for file in (svg, png):
                self.assertEqual(bench("-n", "20k", "-d", "exponential", *SHORT, "-o", file), "")
            root = ElementTree.parse(svg).getroot()
            words = " ".join(root.itertext()).replace("\u00a0", " ")
            for word in ("exponential  a=0  beta=1", "20 k", "0 cpu:", "1 gpu:", "what memory takes", "G numbers a second"):
                self.assertIn(word, words)
            self.assertEqual(png.read_bytes()[:8], b"\x89PNG\r\n\x1a\n")


class Refusals(unittest.TestCase):
    def test_what_cannot_be_measured_is_told(self):
        for status, named, *arguments in (
                (USAGE, "--count 0: a call of no numbers", "-n", "0"),
                (USAGE, "--count 1073741825: at most 1073741824", "-n", "1073741825"),
                (USAGE, "--count 18000000000000000000: at most", "-n", "18000000T", "-t", "double"),
                (USAGE, "--seconds soon", "--seconds", "soon"), (USAGE, "--seconds 1.5", "--seconds", "1.5"),
                (USAGE, "--output speed.txt", "-o", "speed.txt"), (USAGE, "--engine nothing", "-e", "nothing"),
                (USAGE, "--stddev 0", "-d", "gaussian", "--stddev", "0"),
                (USAGE, "--skip 1: r250 cannot skip", "-e", "r250", "--skip", "1"),
                (DEVICE, "--device 99: no such device", "--device", "99"),
                (UNSUPPORTED, "mrg32k3a", "-e", "mrg32k3a", "-d", "uniform_bits"),
                (OUTPUT, "--output", "-o", "/no/such/folder/speed.svg")):
            done = run("bench", *arguments)
            self.assertEqual((done.returncode, done.stdout), (status, b""), (named, done.stderr))
            self.assertIn(named, done.stderr.decode())


if __name__ == "__main__":
    unittest.main()
