"""Drives the program's plotting: what it tells gnuplot, what gnuplot makes of it, and what is refused."""
import math
import os
import pathlib
import re
import struct
import sys
import tempfile
import unittest
from xml.etree import ElementTree

from program import DEVICE, FAILED, OUTPUT, UNSUPPORTED, USAGE, run

GALLERY = pathlib.Path(sys.argv.pop(1))


def run_with_gnuplot(body, *arguments):
    """With a program named gnuplot of this shell text alone on the search path, or none."""
    with tempfile.TemporaryDirectory() as folder:
        if body:
            program = pathlib.Path(folder, "gnuplot")
            program.write_text(f"#!/bin/sh\n{body}\n")
            program.chmod(0o755)
        return run("plot", *arguments, env={**os.environ, "PATH": folder})


def script(*arguments):
    """What gnuplot is told: the text, the bars (low, high, height) and the law (x, height)."""
    done = run_with_gnuplot("exec /bin/cat", *arguments)
    assert done.returncode == 0 and not done.stderr, done
    text = done.stdout.decode()
    blocks = [[tuple(map(float, line.split())) for line in block.splitlines()]
              for block in re.findall(r"<< END\n(.*?)END\n", text, re.DOTALL)]
    return text, [(x - w / 2, x + w / 2, y) for x, y, w in blocks[0]], blocks[1]


def normal_cdf(z):
    return math.erfc(-z / math.sqrt(2)) / 2


def zero_below(end, cdf):
    return lambda x: cdf(x) if x > end else 0.0


def erlang_cdf(shape, z):
    """Of the sum of so many exponential variables."""
    if z == 0:
        return 0.0
    return 1 - math.fsum(math.exp(k * math.log(z) - z - math.lgamma(k + 1)) for k in range(shape))


# Distribution functions by their textbook definitions; the program knows the densities only.
CONTINUOUS = {
    "uniform --a -2 --b 3": lambda x: min(max((x + 2) / 5, 0), 1),
    "gaussian --mean 1 --stddev 2": lambda x: normal_cdf((x - 1) / 2),
    "lognormal --m 0.5 --s 0.4 --displ -1 --scale 2":
        zero_below(-1, lambda x: normal_cdf((math.log((x + 1) / 2) - 0.5) / 0.4)),
    "exponential --a 1 --beta 0.5": zero_below(1, lambda x: 1 - math.exp(-(x - 1) / 0.5)),
    "laplace --a 1 --b 2": lambda x: math.exp((x - 1) / 2) / 2 if x < 1 else 1 - math.exp((1 - x) / 2) / 2,
    "weibull --alpha 2.5 --a -1 --beta 3": zero_below(-1, lambda x: 1 - math.exp(-(((x + 1) / 3) ** 2.5))),
    "weibull --alpha 0.5": zero_below(0, lambda x: 1 - math.exp(-math.sqrt(x))),
    "rayleigh --a 1 --beta 2": zero_below(1, lambda x: 1 - math.exp(-(((x - 1) / 2) ** 2))),
    "gumbel --a 1 --beta 2": lambda x: 1 - math.exp(-math.exp((x - 1) / 2)),
    "gamma --alpha 3 --a -1 --beta 2": zero_below(-1, lambda x: erlang_cdf(3, (x + 1) / 2)),
    "gamma --alpha 200": zero_below(0, lambda x: erlang_cdf(200, x)),
    "gamma --alpha 1 --beta 3": zero_below(0, lambda x: 1 - math.exp(-x / 3)),
    "gamma --alpha 0.5": zero_below(0, lambda x: math.erf(math.sqrt(x))),
    "chi_square --v 1": zero_below(0, lambda x: math.erf(math.sqrt(x / 2))),
    "chi_square --v 8": zero_below(0, lambda x: erlang_cdf(4, x / 2)),
    "gaussian_mv --a 0,3 --t 1,0.6,0.8": lambda x: (normal_cdf(x) + normal_cdf(x - 3)) / 2,
    "beta": lambda x: min(max(x, 0), 1) ** 2 * (6 - 8 * min(max(x, 0), 1) + 3 * min(max(x, 0), 1) ** 2),
    "beta --p 0.5 --q 0.5 --a -1 --beta 2":
        lambda x: math.asin(math.sqrt(min(max((x + 1) / 2, 0), 1))) * 2 / math.pi,
    "cauchy --a 1 --b 2": lambda x: 0.5 + math.atan((x - 1) / 2) / math.pi,
}
INTEGER = {  # first and last value
    "uniform -t int32 --a -3 --b 9": (-3, 8),
    "uniform -t uint32 --a 7 --b 1010": (7, 1009),
    "uniform -t int32 --a 2147483600 --b 2147483647": (2147483600, 2147483646),
    "uniform_bits": (0, 2**32 - 1),
    "uniform_bits -t uint64": (0, 2**64 - 1),
}


class Pictures(unittest.TestCase):
    COUNT = 200000

    def assert_bars_follow(self, bars, share_of):
        self.assertGreaterEqual(len(bars), 10)
        for low, high, height in bars:
            share = share_of(low, high)
            # Six standard deviations: false alarms below 1e-6 over all bars, and the seed is fixed.
            slack = 6 * math.sqrt(share / self.COUNT) + 1e-5
            self.assertLess(abs(height * (high - low) - share), slack, (low, high))

    def test_real_numbers_lie_under_the_exact_density(self):
        for of, cdf in CONTINUOUS.items():
            for type_name in ("float", "double"):
                with self.subTest(of, type=type_name):
                    text, bars, law = script("-n", str(self.COUNT), "-t", type_name, "-d", *of.split())
                    self.assert_bars_follow(bars, lambda low, high, cdf=cdf: cdf(high) - cdf(low))
                    self.assertIn(f"\\n{self.COUNT} numbers ({type_name}", text)
                    step = 1e-6 * (law[-1][0] - law[0][0])
                    left, right = law[0][0], law[-1][0]
                    self.assertGreater(cdf(right) - cdf(left), 0.8)
                    compared = 0
                    for x, height in law:
                        before, at, after = cdf(x - step), cdf(x), cdf(x + step)
                        # Where the two sides differ the density jumps, bends or is infinite.
                        if abs(before - 2 * at + after) < 1e-3 * (after - before):
                            compared += 1
                            self.assertAlmostEqual(height, (after - before) / (2 * step),
                                                   delta=2e-4 * height + 1e-7, msg=x)
                        elif before == at == after:
                            self.assertEqual(height, 0, x)
                    self.assertGreater(compared, 350)

    def test_integers_lie_under_their_probability(self):
        for of, (first, last) in INTEGER.items():
            with self.subTest(of):
                _, bars, law = script("-n", str(self.COUNT), "-d", *of.split())
                values = last - first + 1
                self.assertAlmostEqual(bars[0][0], first - 0.5, delta=1e-8 * values)
                self.assertAlmostEqual(bars[-1][1], last + 0.5, delta=1e-8 * values)
                self.assert_bars_follow(bars, lambda low, high, values=values: (high - low) / values)
                self.assertEqual(len(law), len(bars))
                for _, height in law:
                    self.assertAlmostEqual(height * values, 1, delta=1e-5)
                if values < 80:
                    self.assertEqual(len(bars), values)

    def test_geometric_numbers_lie_under_their_probability(self):
        # Few integers, a bar for each, bars of several, and values that would exceed the largest integer.
        for p, fewest_bars in ((1, 1), (0.9, 3), (0.5, 6), (0.05, 20), (1e-4, 50), (1e-9, 50), (1e-10, 7)):
            with self.subTest(p=p):
                _, bars, law = script("-n", str(self.COUNT), "-d", "geometric", "--p", str(p))
                largest = 2**31 - 1
                cdf = lambda k, p=p: 1 - (1 - p) ** (k + 1) if k < largest else 1
                self.assertEqual(bars[0][0], -0.5 if p > 1e-10 else largest - 6.5)
                self.assertGreaterEqual(len(bars), fewest_bars)
                for low, high, height in bars:
                    first, last = math.ceil(low), math.ceil(high) - 1
                    share = cdf(last) - cdf(first - 1)
                    slack = 6 * math.sqrt(share / self.COUNT) + 1e-5
                    self.assertLess(abs(height * (high - low) - share), slack, (low, high))
                for (low, high, _), (k, height) in zip(bars, law, strict=True):
                    if high - low == 1:
                        self.assertAlmostEqual(height, cdf(k) - cdf(k - 1), delta=1e-5)
                    elif high < largest:
                        self.assertAlmostEqual(height, p * (1 - p) ** k, delta=1e-5 * p)

    def test_poisson_numbers_lie_under_their_probability(self):
        def cdf(means, k):
            return sum(math.fsum(math.exp(i * math.log(mean) - mean - math.lgamma(i + 1)) for i in range(k + 1))
                       for mean in means) / len(means)
        for name, means in (("poisson", (0.5,)), ("poisson", (40.0,)), ("poisson_v", (3.0, 25.0))):
            with self.subTest(means=means):
                _, bars, law = script("-n", str(self.COUNT), "-d", name, "--lambda", ",".join(map(str, means)))
                for (low, high, height), (_, exact) in zip(bars, law, strict=True):
                    share = cdf(means, math.ceil(high) - 1) - cdf(means, math.ceil(low) - 1)
                    slack = 6 * math.sqrt(share / self.COUNT) + 1e-5
                    self.assertLess(abs(height * (high - low) - share), slack, (low, high))
                    if high - low == 1:
                        self.assertAlmostEqual(exact, share, delta=1e-5)

    def test_counts_lie_under_the_mean_of_their_probabilities(self):
        _, bars, law = script("-n", str(self.COUNT), "-d", "multinomial", "--ntrial", "12", "--p", "0.25,0.6,0.15")
        for (low, _, height), (k, exact) in zip(bars, law, strict=True):
            k = round(k)
            share = sum(math.comb(12, k) * p**k * (1 - p) ** (12 - k) for p in (0.25, 0.6, 0.15)) / 3
            self.assertAlmostEqual(exact, share, delta=1e-5)
            self.assertAlmostEqual(height, share, delta=6 * math.sqrt(share / self.COUNT) + 1e-5, msg=low)

    def test_bernoulli_has_two_bars(self):
        _, bars, law = script("-n", str(self.COUNT), "-d", "bernoulli", "--p", "0.25")
        self.assertEqual([(low, high) for low, high, _ in bars], [(-0.5, 0.5), (0.5, 1.5)])
        self.assertEqual([height for _, height in law], [0.75, 0.25])
        self.assertAlmostEqual(bars[1][2], 0.25, delta=6 * math.sqrt(0.1875 / self.COUNT))

    def test_points_are_consecutive_pairs(self):
        for named, *options in (("philox4x32x10, seed 7", "-s", "7"), ("sobol, dimensions 2", "-e", "sobol", "-s", "2")):
            numbers = run("generate", "-n", "600", *options).stdout.split()
            text = run_with_gnuplot("exec /bin/cat", "--scatter", "-n", "600", *options).stdout.decode()
            self.assertIn(f'of {named}"', text)
            drawn = re.search(r"<< END\n(.*?)END\n", text, re.DOTALL)[1].split()
            self.assertEqual(len(drawn), 600)
            for actual, expected in zip(drawn, numbers):
                self.assertAlmostEqual(float(actual), float(expected), delta=1e-7)
        unasked = run_with_gnuplot("exec /bin/cat", "--scatter").stdout.decode()
        self.assertEqual(unasked.count("\n"), text.count("\n") + 200)
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder, "points.svg")
            self.assertEqual(run("plot", "--scatter", "-n", "512", "-e", "sobol", "-s", "2", "-o", file).returncode, 0)
            self.assertEqual(file.read_text().count("<use xlink:href='#gpPt6'"), 256)

    def test_a_heavy_tail_does_not_squeeze_the_rest(self):
        _, bars, _ = script("-d", "cauchy", "-n", "1M")
        self.assertTrue(8 < bars[-1][1] < 20 and -20 < bars[0][0] < -8, bars)

    def test_every_device_draws_the_same(self):
        self.assertEqual(*(script("-d", "gaussian", "-n", "50k", "--device", device) for device in ("cpu", "gpu")))

    def test_the_suffix_chooses_the_kind_of_picture(self):
        with tempfile.TemporaryDirectory() as folder:
            svg, png = pathlib.Path(folder, "it's a \"picture\".svg"), pathlib.Path(folder, "picture.png")
            for file in (svg, png):
                done = run("plot", "-d", "exponential", "-n", "10k", "-o", file)
                self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"", b""))
            root = ElementTree.parse(svg).getroot()
            self.assertEqual(root.tag, "{http://www.w3.org/2000/svg}svg")
            words = " ".join(root.itertext())
            for word in ("exponential  a=0  beta=1", "philox4x32x10, seed 1", "sample", "exact", "density"):
                self.assertIn(word, words.replace("\u00a0", " "))
            data = png.read_bytes()
            self.assertEqual((data[:8], data[12:16]), (b"\x89PNG\r\n\x1a\n", b"IHDR"))
            self.assertEqual(struct.unpack(">2I", data[16:24]), (960, 600))
            self.assertEqual(data[-8:-4], b"IEND")

    def test_the_title_tells_which_engine(self):
        for named, *arguments in (("wichmann_hill, member 9, seed 1", "-e", "wichmann_hill", "--member", "9"),
                                  ("mrg32k3a, mode custom:7, seed 1,2", "-e", "mrg32k3a", "--mode", "custom:7", "-s",
                                   "1,2")):
            self.assertIn(f"of {named}\"", script("-n", "1k", *arguments)[0])

    def test_without_a_file_it_draws_text(self):
        done = run("plot", "-d", "gaussian", "-n", "20k")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        lines = done.stdout.decode("ascii").splitlines()
        self.assertLessEqual(max(map(len, lines)), 79)
        self.assertIn("gaussian  mean=0  stddev=1", done.stdout.decode())
        self.assertGreater(done.stdout.count(b"*"), 100)
        # The bell is widest at its foot.
        filled = [line.count("*") + line.count("#") for line in lines if "|" in line and "e" not in line]
        self.assertGreater(filled[-2], 2 * max(filled[:3]))


class Refusals(unittest.TestCase):
    def assert_refused(self, status, named, done):
        self.assertEqual((done.returncode, done.stdout), (status, b""), (named, done.stderr))
        self.assertIn(named, done.stderr.decode())

    def test_usage_errors_name_the_option(self):
        for named, *arguments in (
                ("--output picture.pdf", "-o", "picture.pdf"), ("--output picture", "-o", "picture"),
                ("--count 99", "-n", "99"), ("--count 18446744073000000000", "-n", "18446744073G"),
                ("--count", "-n", "many"), ("--distribution", "-d", "nothing"),
                ("--distribution bits", "-d", "bits"), ("--stddev 0", "-d", "gaussian", "--stddev", "0"),
                ("--beta 2: gaussian has --mean, --stddev", "-d", "gaussian", "--beta", "2"),
                ("--count 1: points are drawn of 2", "--scatter", "-n", "1"),
                ("--seed 0: kestro::hvl::rng::sobol: invalid argument: dimensions is out of range [1, 21201]", "-e",
                 "sobol", "-s", "0"),
                ("--engine", "-e", "nothing"), ("--format", "--format", "raw")):
            self.assert_refused(USAGE, named, run("plot", *arguments))

    def test_other_failures_have_their_status(self):
        self.assert_refused(DEVICE, "--device", run("plot", "--device", "99"))
        self.assert_refused(OUTPUT, "--output", run("plot", "-o", "/no/such/folder/picture.svg"))
        self.assert_refused(UNSUPPORTED, "mrg32k3a", run("plot", "-e", "mrg32k3a", "-d", "uniform_bits"))
        self.assert_refused(FAILED, "too close together",
                            run("plot", "-d", "gaussian", "--mean", "1e9", "--stddev", "1e-3"))
        self.assert_refused(FAILED, "too far apart", run("plot", "-d", "lognormal", "--m", "1e4"))

    def test_tells_that_gnuplot_is_missing_or_failed_and_keeps_the_old_picture(self):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder, "picture.svg")
            file.write_text("precious")
            for named, body in (("gnuplot is missing", ""), ("gnuplot failed", "/bin/cat > /dev/null; exit 3"),
                                ("gnuplot failed", "echo half; kill -9 $$"), ("gnuplot failed", "exit 0")):
                self.assert_refused(FAILED, named, run_with_gnuplot(body, "-n", "1k", "-o", file))
            self.assertEqual(file.read_text(), "precious")


class Gallery(unittest.TestCase):
    def test_shows_every_distribution_that_can_be_drawn(self):
        listed = re.findall(r"^  (\w+)", run("list").stdout.decode().split("\n\n")[1], re.MULTILINE)
        page = (GALLERY.parent / "gallery.md").read_text()
        shown = re.findall(r"\]\(gallery/(\w+)\.svg\)", page)
        self.assertEqual(sorted(shown), sorted(path.stem for path in GALLERY.glob("*.svg")))
        drawn = {re.sub(r"_int32$", "", name) for name in shown}
        for name in listed:
            can = run_with_gnuplot("exec /bin/cat", "-d", name, "-n", "1k").returncode == 0
            self.assertEqual(name in drawn, can, name)
        for name in shown:
            picture = GALLERY / f"{name}.svg"
            self.assertLess(picture.stat().st_size, 60000)
            ElementTree.parse(picture)


if __name__ == "__main__":
    unittest.main()
