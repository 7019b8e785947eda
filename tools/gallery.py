#!/usr/bin/env python3
"""Draws every distribution with `hvl-rng plot` into FOLDER/gallery/ and writes FOLDER/gallery.md, which shows them."""
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
    ("geometric", "Geometric: how many trials fail before the first success", "-d geometric --p 0.2"),
    ("bernoulli", "Bernoulli: whether one trial succeeds", "-d bernoulli --p 0.3"),
    ("poisson", "Poisson: how many of many rare events happen", "-d poisson --lambda 7.5"),
    ("poisson_v", "Poisson numbers of several means, one after the other", "-d poisson_v --lambda 3,25"),
    ("binomial", "Binomial: how many of a number of trials succeed", "-d binomial --ntrial 30 --p 0.3"),
    ("hypergeometric", "Hypergeometric: how many of a sample are marked", "-d hypergeometric --l 100 --s 30 --m 40"),
    ("negative_binomial", "Negative binomial: how many trials fail before the a-th success", "-d negative_binomial --a 3.5 --p 0.3"),
    ("cauchy", "Cauchy; the plot leaves the tails out", "-d cauchy"),
)

INTRODUCTION = """\
# Gallery

A million numbers of each distribution beside the exact density. `./dev gallery` draws the pictures anew; as every
device gives the same numbers, they change only when the library or gnuplot does.
"""


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
    (folder / "gallery.md").write_text(page)


if __name__ == "__main__":
    main()
