#!/usr/bin/env python3
"""Prints the generated lines of tests/kat/mt2203.txt; its argument is the table of members, mt2203_table.hpp. The sequence is
formed bit by bit: a word is a list of 32 bits, the least first, and a twist the product with the matrix of the paper."""

import re
import sys

N, M, R = 69, 34, 5


def members(path):
    with open(path) as file:
        return [[int(x, 16) for x in row]
                for row in re.findall(r"\{(0x\w+), (0x\w+), (0x\w+)\}", file.read())]


def bits_of(word):
    return [word >> i & 1 for i in range(32)]


def word_of(bits):
    return sum(bit << i for i, bit in enumerate(bits))


def sum_of(x, y):
    return [a ^ b for a, b in zip(x, y)]


def shifted(x, left):
    """To greater significance by `left` places."""
    return [x[i - left] if 0 <= i - left < 32 else 0 for i in range(32)]


def both(x, y):
    return [a & b for a, b in zip(x, y)]


def times_matrix(x, a):
    """Row i of the matrix is unit vector i - 1; row 0 is a."""
    return sum_of(shifted(x, -1), a if x[0] else [0] * 32)


def tempered(x, b, c):
    x = sum_of(x, shifted(x, -12))
    x = sum_of(x, both(shifted(x, 7), b))
    x = sum_of(x, both(shifted(x, 15), c))
    return sum_of(x, shifted(x, -18))


def init_by_array(key):
    """Matsumoto and Nishimura's of 2002, for N words."""
    x = [19650218]
    for i in range(1, N):
        x.append((1812433253 * (x[-1] ^ x[-1] >> 30) + i) % 2**32)
    i = 1

    def mix(factor, addend):
        nonlocal i
        x[i] = ((x[i] ^ (x[i - 1] ^ x[i - 1] >> 30) * factor) + addend) % 2**32
        i += 1
        if i == N:
            x[0], i = x[N - 1], 1

    for k in range(max(N, len(key))):
        mix(1664525, key[k % len(key)] + k % len(key))
    for _ in range(N - 1):
        mix(1566083941, -i)
    return [2**31] + x[1:]


def print_bits(member, index, words, skip):
    a, b, c = (bits_of(x) for x in member)
    x = [bits_of(word) for word in init_by_array(words + [index])]
    out = []
    for position in range(skip + 16):
        joined = x[1][:R] + x[0][R:]
        x = x[1:] + [sum_of(x[M], times_matrix(joined, a))]
        if position >= skip:
            out.append(word_of(tempered(x[-1], b, c)))
    print(f" skip: {skip} bits:", " ".join(f"{word:08x}" for word in out))


def main():
    table = members(sys.argv[1])

    def with_words(index, words, skip):
        print(f"member: {index} words:", " ".join(f"{w:08x}" for w in words), end="")
        print_bits(table[index], index, words, skip)

    def with_seed(index, seed, skip):
        print(f"member: {index} seed: {seed}", end="")
        print_bits(table[index], index, [seed % 2**32, seed >> 32], skip)

    with_words(0, [1], 0)
    with_words(0, [0x123, 0x234, 0x345, 0x456], 0)
    with_words(1, list(range(100)), 68)  # longer than the state
    with_words(6023, [0xFFFFFFFF] * 3, 69)
    with_seed(0, 0, 0)
    with_seed(0, 1, 0)
    with_seed(0, 0xFEDCBA9876543210, 997)
    for index in range(6023, 0, -1104):
        with_seed(index, 12345, 70_000 + index)


main()
