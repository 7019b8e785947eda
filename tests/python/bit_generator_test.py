#!/usr/bin/env python3
"""NumPy's own Generator on our engines."""
import pickle
import unittest

import numpy as np
from scipy import stats

import kestro_hvl_rng
from kestro_hvl_rng import BitGenerator

WITHOUT_BITS = {"mrg32k3a", "mcg31m1", "wichmann_hill", "r250", "sobol", "niederreiter"}
COUNT = 10007  # some blocks, and a part of one


class BitGenerators(unittest.TestCase):
    def test_words_are_those_of_the_engine(self):
        for name, kind in kestro_hvl_rng.engines.items():
            if name == "nondeterministic":
                continue
            if name in WITHOUT_BITS:
                with self.subTest(name), self.assertRaisesRegex(ValueError, "uniform_bits"):
                    BitGenerator(kind(7))
                continue
            with self.subTest(name):
                engine = kind(7)
                bits = BitGenerator(engine)
                self.assertIsInstance(bits, np.random.BitGenerator)
                np.testing.assert_array_equal(bits.random_raw(COUNT), kind(7).uniform_bits(COUNT, np.uint64))
                np.testing.assert_array_equal(engine.bits(9), kind(7).bits(9))  # a copy was drawn from

    def test_numpy_takes_words_and_doubles(self):
        def new():
            return np.random.Generator(BitGenerator(kestro_hvl_rng.philox4x32x10(7)))
        words = kestro_hvl_rng.philox4x32x10(7).uniform_bits(COUNT, np.uint64)
        np.testing.assert_array_equal(new().random(COUNT), (words >> np.uint64(11)) * 2.0**-53)
        halves = kestro_hvl_rng.philox4x32x10(7).uniform_bits(COUNT)
        np.testing.assert_array_equal(new().integers(2**32, size=COUNT, dtype=np.uint32), halves)
        np.testing.assert_array_equal(new().random(COUNT, np.float32), (halves >> np.uint32(8)) * np.float32(2.0**-24))

    def test_laws(self):
        # Fixed samples at a level of 1e-5.
        generator = np.random.default_rng(BitGenerator(kestro_hvl_rng.sfmt19937(7)))
        self.assertGreater(stats.kstest(generator.normal(size=20000), stats.norm.cdf).pvalue, 1e-5)
        self.assertGreater(stats.chisquare(np.bincount(generator.integers(0, 10, 20000))).pvalue, 1e-5)
        np.testing.assert_array_equal(np.sort(generator.permutation(1000)), np.arange(1000))

    def test_states_and_pickles_in_mid_block(self):
        bits = BitGenerator(kestro_hvl_rng.mt19937(7, device="gpu"))
        generator = np.random.Generator(bits)
        generator.integers(2**32, size=4093, dtype=np.uint32)  # so that a word of 64 bits spans two blocks
        state, pickled = bits.state, pickle.dumps(bits)
        expected = bits.random_raw(COUNT)
        np.testing.assert_array_equal(pickle.loads(pickled).random_raw(COUNT), expected)
        bits.state = state
        np.testing.assert_array_equal(bits.random_raw(COUNT), expected)
        with self.assertRaisesRegex(ValueError, "not of mt19937"):
            bits.state = BitGenerator(kestro_hvl_rng.ars5(7)).state


if __name__ == "__main__":
    unittest.main()
