#!/usr/bin/env python3
"""Prints the generated lines of tests/kat/sobol.txt, by SciPy (Debian's python3-scipy)."""

from scipy.stats import qmc

BITS = 32


def sequence(dimensions):
    return qmc.Sobol(dimensions, scramble=False, bits=BITS)


def words(sobol, points):
    """Point after point. Its fractions of 32 bits are exact in double."""
    return [int(x * 2**BITS) for point in sobol.random(points) for x in point]


def print_bits(values, skip):
    print(f" skip: {skip} bits:", " ".join(f"{w:08x}" for w in values))


def with_seed(dimensions, point, coordinate=0, count=16):
    sobol = sequence(dimensions)
    if point:
        sobol.fast_forward(point)
    print(f"seed: {dimensions}", end="")
    values = words(sobol, -(-(coordinate + count) // dimensions))
    print_bits(values[coordinate:coordinate + count], point * dimensions + coordinate)


def with_words(dimensions, point, points):
    """The direction numbers of some dimensions, spelled out."""
    sobol = sequence(max(dimensions) + 1)
    numbers = [int(v) for d in dimensions for v in sobol._sv[d]]
    if point:
        sobol.fast_forward(point)
    print(f"words: {len(dimensions):08x}", " ".join(f"{v:08x}" for v in numbers), end="")
    values = sobol.random(points)
    print_bits([int(row[d] * 2**BITS) for row in values for d in dimensions], point * len(dimensions))


def main():
    for dimensions in (1, 2, 3, 7, 10, 64):
        with_seed(dimensions, 0)
    for dimensions in (1, 2, 5, 10, 200):
        with_seed(dimensions, 12345, count=64)
    with_seed(1, 10_000_000)
    with_seed(2, 33_554_430, coordinate=1)
    with_seed(300, 255, coordinate=290, count=64)
    with_seed(1000, 1_000_003, coordinate=993, count=32)
    with_seed(21201, 7, coordinate=0)
    with_seed(21201, 77_777, coordinate=21_177, count=48)
    with_words([4], 0, 16)
    with_words([5, 0, 20_000], 1000, 8)


main()
