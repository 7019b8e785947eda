#!/usr/bin/env python3
"""Prints the generated lines of tests/kat/sfmt19937.txt from the paper's recurrence, its units whole numbers of 128 bits;
far skips by x^n modulo the polynomial of tools/tables."""

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parents[1] / "tables"))
from gf2 import characteristic_polynomial  # noqa: E402

UNITS = 156
DEGREE = 128 * UNITS
FULL = 2**128 - 1
MASK = 0xBFFFFFF6BFFAFFFFDDFECB7FDFFFFFEF
PARITY = 0x13C9E684000000000000000000000001


def each_word(unit, change):
    return sum((change(unit >> 32 * w & 0xFFFFFFFF) & 0xFFFFFFFF) << 32 * w for w in range(4))


def extended(x, count):
    x = list(x)
    while len(x) < count:
        a, b, c, d = x[-156], x[-34], x[-2], x[-1]
        x.append(a ^ (a << 8 & FULL) ^ (each_word(b, lambda w: w >> 11) & MASK) ^ c >> 8 ^
                 each_word(d, lambda w: w << 18))
    return x


def certified(words):
    x = [sum(words[4 * i + w] << 32 * w for w in range(4)) for i in range(UNITS)]
    if (x[0] & PARITY).bit_count() % 2 == 0:
        x[0] ^= 1
    return x


def init_gen_rand(seed):
    words = [seed]
    for i in range(1, 4 * UNITS):
        words.append((1812433253 * (words[-1] ^ words[-1] >> 30) + i) % 2**32)
    return certified(words)


def init_by_array(key):
    size, lag, mid = 624, 11, 306
    p = [0x8B8B8B8B] * size

    def func1(v):
        return (v ^ v >> 27) * 1664525 % 2**32

    def func2(v):
        return (v ^ v >> 27) * 1566083941 % 2**32

    count = max(len(key) + 1, size)
    r = func1(p[0] ^ p[mid] ^ p[size - 1])
    p[mid] = (p[mid] + r) % 2**32
    r += len(key)
    p[mid + lag] = (p[mid + lag] + r) % 2**32
    p[0] = r % 2**32
    i = 1
    for j in range(count - 1):
        r = func1(p[i] ^ p[(i + mid) % size] ^ p[(i + size - 1) % size])
        p[(i + mid) % size] = (p[(i + mid) % size] + r) % 2**32
        r += i + (key[j] if j < len(key) else 0)
        p[(i + mid + lag) % size] = (p[(i + mid + lag) % size] + r) % 2**32
        p[i] = r % 2**32
        i = (i + 1) % size
    for _ in range(size):
        r = func2((p[i] + p[(i + mid) % size] + p[(i + size - 1) % size]) % 2**32)
        p[(i + mid) % size] ^= r
        r = (r - i) % 2**32
        p[(i + mid + lag) % size] ^= r
        p[i] = r
        i = (i + 1) % size
    return certified(p)


def power_of_x(n, modulus):
    p = 1
    for bit in bin(n)[2:]:
        p = int(bin(p)[2:], 4) << int(bit)
        while p.bit_length() > DEGREE:
            p ^= modulus << p.bit_length() - DEGREE - 1
    return p


def line(seeding, x, skip):
    """The first output behind the state x is word 0 of the unit that follows it."""
    units, word = divmod(skip, 4)
    if units > 10**6:
        bits = [unit & 1 for unit in extended(x, 2 * DEGREE + 64)]
        power = power_of_x(units, characteristic_polynomial(bits, DEGREE))
        far = extended(x, DEGREE + UNITS)
        jumped = [0] * UNITS
        for e in range(DEGREE):
            if power >> e & 1:
                jumped = [old ^ new for old, new in zip(jumped, far[e:e + UNITS])]
        x, units = jumped, 0
    outputs = extended(x, UNITS + units + 5)[UNITS + units:]
    words = [unit >> 32 * w & 0xFFFFFFFF for unit in outputs for w in range(4)][word:word + 16]
    print(seeding, f"skip: {skip % 2**64}" + (f" {skip >> 64}" if skip >> 64 else ""), "bits:",
          " ".join(f"{w:08x}" for w in words))


def main():
    def seed(value, skip):
        line(f"seed: {value}", init_gen_rand(value), skip)

    def words(key, skip):
        line("words: " + " ".join(f"{w:08x}" for w in key), init_by_array(key), skip)

    seed(1234, 0)
    seed(0, 621)
    seed(4321, 1_000_003)
    seed(7, 2**40 + 123)
    seed(20211113, 2**62 + 624 * 1000 + 2)
    seed(1, 2**64 + 2**63 + 5)
    line(f"seed: {2**32 + 5}", init_by_array([5, 1]), 0)
    words([0x1234, 0x5678, 0x9ABC, 0xDEF0], 0)
    words([1], 624)
    words([(2654435761 * k) % 2**32 for k in range(700)], 1)


main()
