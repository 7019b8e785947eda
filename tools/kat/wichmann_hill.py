#!/usr/bin/env python3
"""Prints the generated lines of tests/kat/wichmann_hill.txt, in whole numbers of any size; its argument is the table of
members, hvl/wichmann_hill_table.h."""

import re
import sys
from fractions import Fraction

TWO64 = 2**64


def members(path):
    """Pairs of moduli and multipliers."""
    with open(path) as file:
        rows = [[int(x) for x in row] for row in re.findall(r"\{(\d+), (\d+), (\d+), (\d+)\}", file.read())]
    return list(zip(rows[:len(rows) // 2], rows[len(rows) // 2:]))


def split_mix64(seed):
    while True:
        seed = (seed + 0x9E3779B97F4A7C15) % TWO64
        z = seed
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9 % TWO64
        z = (z ^ z >> 27) * 0x94D049BB133111EB % TWO64
        yield z ^ z >> 31


def word(x, moduli):
    fixed = sum(xi * (TWO64 // m) for xi, m in zip(x, moduli)) % TWO64
    value = sum(Fraction(xi, m) for xi, m in zip(x, moduli)) % 1
    assert (value - Fraction(fixed, TWO64)) % 1 < Fraction(1, 2**38)
    return fixed >> 32


def print_bits(member, state, skip):
    moduli, multipliers = member
    words = []
    for position in range(skip, skip + 16):
        x = [xi * pow(a, position, m) % m for xi, a, m in zip(state, multipliers, moduli)]
        words.append(word(x, moduli))
    print(f" skip: {skip % TWO64}" + (f" {skip // TWO64}" if skip >= TWO64 else ""),
          "bits:", " ".join(f"{w:08x}" for w in words))


def main():
    table = members(sys.argv[1])

    def with_words(index, words, skip):
        state = [w % m or 1 for w, m in zip(words + [1] * 4, table[index][0])]
        print(f"member: {index} words:", " ".join(f"{w:08x}" for w in words), end="")
        print_bits(table[index], state, skip)

    def with_seed(index, seed, skip):
        state = [z % (m - 1) + 1 for z, m in zip(split_mix64(seed), table[index][0])]
        print(f"member: {index} seed: {seed}", end="")
        print_bits(table[index], state, skip)

    with_words(0, [1, 1, 1, 1], 0)
    with_words(0, [0, 0xFFFFFFFF], 3)  # 0 becomes 1, missing words are 1
    with_words(1, [table[1][0][0] - 1, table[1][0][1], 0x12345678, 0x9ABCDEF0], 5)
    with_words(272, [2, 3, 5, 7], 2**70 + 12345)
    with_seed(0, 0, 0)
    with_seed(0, 1, 0)
    with_seed(0, 0xFEDCBA9876543210, 997)
    for index in range(0, 273, 34):
        with_seed(index, 12345, 10_000_000 + index)


main()
