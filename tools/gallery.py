#!/usr/bin/env python3
"""Draws every distribution with `hvl-rng plot` into FOLDER/gallery/, points of the quasi-random engines and what they do for
an integral, and writes FOLDER/gallery.md, which shows them."""
import array
import math
import pathlib
import subprocess
import sys

# Picture, what it is of, options.
PICTURES = (
    ("uniform", "Uniform on [a, b)", "-d uniform"),
    ("uniform_int32", "Uniform integers a ... b - 1", "-d uniform -t int32 --a -5 --b 15"),
    ("uniform_bits", "Uniform bits, as integers", "-d uniform_bits"),
    ("gaussian", "Normal", "-d gaussian"),
    ("lognormal", "Lognormal", "-d lognormal --s 0.5"),
    ("exponential", "Exponential", "-d exponential"),
    ("laplace", "Laplace", "-d laplace"),
    ("weibull", "Weibull", "-d weibull --alpha 2.5"),
    ("rayleigh", "Rayleigh: a + beta sqrt(-ln u), no factor 2 under the root", "-d rayleigh"),
    ("gumbel", "Gumbel: a + beta ln(-ln u), so the long tail is the left one", "-d gumbel"),
    ("gamma", "Gamma", "-d gamma --alpha 2.5"),
    ("gaussian_mv", "Multivariate normal: the elements of pairs", "-d gaussian_mv --a 0,3 --t 1,1,0.5"),
    ("beta", "Beta", "-d beta"),
    ("chi_square", "Chi square", "-d chi_square"),
    ("geometric", "Geometric: how many trials fail before the first success", "-d geometric --p 0.2"),
    ("bernoulli", "Bernoulli: whether one trial succeeds", "-d bernoulli --p 0.3"),
    ("poisson", "Poisson: how many of many rare events happen", "-d poisson --lambda 7.5"),
    ("poisson_v", "Poisson numbers of several means, one after the other", "-d poisson_v --lambda 3,25"),
    ("binomial", "Binomial: how many of a number of trials succeed", "-d binomial --ntrial 30 --p 0.3"),
    ("multinomial", "Multinomial: how often each outcome comes; the counts of all", "-d multinomial --ntrial 40 --p 0.1,0.3,0.6"),
    ("hypergeometric", "Hypergeometric: how many of a sample are marked", "-d hypergeometric --l 100 --s 30 --m 40"),
    ("negative_binomial", "Negative binomial: how many trials fail before the a-th success", "-d negative_binomial --a 3.5 --p 0.3"),
    ("cauchy", "Cauchy; the plot leaves the tails out", "-d cauchy"),
)

INTRODUCTION = """\
# Gallery

A million numbers of each distribution beside the exact density. `./dev gallery` draws the pictures anew; as every
device gives the same numbers, they change only when the library or gnuplot does.
"""

# Points in the square: picture, options.
SCATTERED = (
    ("points_philox4x32x10", "-e philox4x32x10"),
    ("points_sobol", "-e sobol -s 2"),
    ("points_niederreiter", "-e niederreiter -s 2,7,11"),
)

POINTS = """
## Quasi-random points

256 points of the square, by pairs of numbers: philox4x32x10 leaves gaps and clusters, as chance does. Those of sobol, and
of niederreiter, whose first two dimensions are the same, lie one in each of the 256 rectangles of any one shape whose sides
are powers of 1/2. In later dimensions the least even rectangles are larger, as those of niederreiter's polynomials
x^2 + x + 1 and x^3 + x + 1 (7 and 11) show: 8 points in 32 rectangles.
"""

# The integrand is the product of (pi / 2) sin(pi x) over so many dimensions.
DIMENSIONS = 5
ENGINES = (("philox4x32x10", 16), ("sobol", 1), ("niederreiter", 1))  # the error of so many seeds, root mean square
SIZES = [2**m for m in range(4, 17)]

INTEGRAL = """
## The error of an integral

The mean of the product of (pi / 2) sin(pi x) over %d dimensions, whose integral is 1, from ever more points: with
philox4x32x10 (16 seeds, root mean square) it errs as 1 / sqrt(n), with sobol and niederreiter nearly as 1 / n.

![integral](gallery/integral.svg)
""" % DIMENSIONS


def errors(program, engine, seed):
    """Of the mean over the first points, for all sizes."""
    text = subprocess.run([program, "generate", "-n", str(SIZES[-1] * DIMENSIONS), "-t", "double", "-e", engine,
                           "-s", str(seed), "-f", "raw"], check=True, capture_output=True).stdout
    x = array.array("d", text)
    total, found = 0.0, []
    for point in range(SIZES[-1]):
        total += math.prod(math.sin(math.pi * c) for c in x[point * DIMENSIONS:(point + 1) * DIMENSIONS])
        if point + 1 in SIZES:
            found.append(abs((math.pi / 2) ** DIMENSIONS * total / (point + 1) - 1))
    return found


def draw_integral(program, file):
    blocks, curves = "", []
    for engine, seeds in ENGINES:
        # Of a quasi-random engine the seed is the number of dimensions.
        runs = [errors(program, engine, DIMENSIONS if seeds == 1 else seed) for seed in range(1, seeds + 1)]
        blocks += f"${engine} << END\n"
        for n, of_n in zip(SIZES, zip(*runs)):
            blocks += f"{n} {math.sqrt(sum(e * e for e in of_n) / seeds):.4g}\n"
        blocks += "END\n"
        curves.append(f"${engine} using 1:2 with linespoints pointtype 7 pointsize 0.4 linewidth 2 title \"{engine}\"")
    script = (
        "set terminal svg size 720,440 dynamic noenhanced font 'sans-serif,13' background '#ffffff'\n" + blocks +
        "set logscale xy\nset format xy \"%g\"\nset border 3\nset tics nomirror out\nset xlabel \"points\"\n"
        "set ylabel \"error\"\nset key bottom left\nplot " + ", ".join(curves) + "\n")
    file.write_bytes(subprocess.run(["gnuplot"], input=script.encode(), check=True, capture_output=True).stdout)


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: gallery.py HVL_RNG FOLDER")
    program, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    (folder / "gallery").mkdir(parents=True, exist_ok=True)
    page = INTRODUCTION
    for name, title, options in PICTURES:
        file = f"gallery/{name}.svg"
        subprocess.run([program, "plot", *options.split(), "-o", folder / file], check=True)
        page += f"\n## {title}\n\n    hvl-rng plot {options}\n\n![{name}]({file})\n"
    page += POINTS
    for name, options in SCATTERED:
        file = f"gallery/{name}.svg"
        arguments = f"--scatter -n 512 {options}"
        subprocess.run([program, "plot", *arguments.split(), "-o", folder / file], check=True)
        page += f"\n    hvl-rng plot {arguments}\n\n![{name}]({file})\n"
    draw_integral(program, folder / "gallery" / "integral.svg")
    page += INTEGRAL
    (folder / "gallery.md").write_text(page)


if __name__ == "__main__":
    main()
