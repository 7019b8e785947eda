#!/usr/bin/env python3
"""Distributions from Python: the C++ library's bits, NumPy's parameters, output arrays."""
import unittest

import numpy as np
from scipy import stats

import kestro_hvl_rng
import program

COUNT = 20000
ROOT = 2**0.5
REAL, WHOLE = (np.float32, np.float64), (np.int32, np.uint32)
COVARIANCE = np.array([[4.0, 1.0], [1.0, 0.5]])
FACTOR = np.array([[2.0, 0.0], [0.5, 0.5]])


def same(numbers):
    return numbers


# Method, arguments, value types, the program's arguments, what makes its numbers ours, the law as SciPy has it.
ROWS = [
    ("uniform", (-1, 3), REAL, "uniform --a -1 --b 3", same, stats.uniform(-1, 4)),
    ("integers", (-3, 9), WHOLE[:1], "uniform --a -3 --b 9", same, stats.randint(-3, 9)),
    ("integers", (7,), WHOLE, "uniform --a 0 --b 7", same, stats.randint(0, 7)),
    ("standard_normal", (), REAL, "gaussian", same, stats.norm()),
    ("normal", (1, 2), REAL, "gaussian --mean 1 --stddev 2", same, stats.norm(1, 2)),
    ("lognormal", (0.5, 0.25), REAL, "lognormal --m 0.5 --s 0.25", same, stats.lognorm(0.25, scale=np.exp(0.5))),
    ("standard_exponential", (), REAL, "exponential", same, stats.expon()),
    ("exponential", (3,), REAL, "exponential --beta 3", same, stats.expon(scale=3)),
    ("laplace", (1, 2), REAL, "laplace --a 1 --b 2", same, stats.laplace(1, 2)),
    ("weibull", (1.5,), REAL, "weibull --alpha 1.5", same, stats.weibull_min(1.5)),
    ("rayleigh", (2,), REAL, f"rayleigh --beta {2 * ROOT!r}", same, stats.rayleigh(scale=2)),
    ("gumbel", (1, 2), REAL, "gumbel --a -1 --beta 2", np.negative, stats.gumbel_r(1, 2)),
    ("standard_cauchy", (), REAL, "cauchy", same, stats.cauchy()),
    ("cauchy", (1, 2), REAL, "cauchy --a 1 --b 2", same, stats.cauchy(1, 2)),
    ("standard_gamma", (2.5,), REAL, "gamma --alpha 2.5", same, stats.gamma(2.5)),
    ("gamma", (0.5, 3), REAL, "gamma --alpha 0.5 --beta 3", same, stats.gamma(0.5, scale=3)),
    ("chisquare", (5,), REAL, "chi_square --v 5", same, stats.chi2(5)),
    ("chisquare", (2.5,), REAL, "gamma --alpha 1.25 --beta 2", same, stats.chi2(2.5)),
    ("beta", (2, 3), REAL, "beta --p 2 --q 3", same, stats.beta(2, 3)),
    ("geometric", (0.3,), WHOLE, "geometric --p 0.3", lambda failures: failures + 1, stats.geom(0.3)),
    ("bernoulli", (0.3,), WHOLE, "bernoulli --p 0.3", same, stats.bernoulli(0.3)),
    ("poisson", (4.5,), WHOLE, "poisson --lambda 4.5", same, stats.poisson(4.5)),
    ("binomial", (20, 0.3), WHOLE, "binomial --ntrial 20 --p 0.3", same, stats.binom(20, 0.3)),
    ("negative_binomial", (2.5, 0.3), WHOLE, "negative_binomial --a 2.5 --p 0.3", same, stats.nbinom(2.5, 0.3)),
    ("hypergeometric", (30, 70, 20), WHOLE, "hypergeometric --l 100 --s 20 --m 30", same, stats.hypergeom(100, 30, 20)),
]


def p_value(numbers, law):
    if numbers.dtype.kind == "f":
        return stats.kstest(numbers.astype(np.float64), law.cdf).pvalue
    least, greatest = (int(law.ppf(q)) for q in (0.001, 0.999))
    places = np.arange(least, greatest + 1)
    counts = [np.count_nonzero(numbers == place) for place in places]
    chances = law.pmf(places)
    pooled = np.append(counts, numbers.size - np.sum(counts)), np.append(chances, 1 - chances.sum()) * numbers.size
    seldom = pooled[1] < 1e-9  # what the law does not allow must not be there either
    if pooled[0][seldom].any():
        return 0.0
    return stats.chisquare(pooled[0][~seldom], pooled[1][~seldom]).pvalue


class Distributions(unittest.TestCase):
    def test_bits_of_the_library_and_laws_of_numpy(self):
        # 42 fixed samples at a level of 1e-5: a false alarm has a probability of 4e-4.
        for method, arguments, types, command, change, law in ROWS:
            for dtype in types:
                with self.subTest(method, arguments=arguments, dtype=dtype):
                    expected = change(program.generate(COUNT, dtype, "-s", 3, "-d", *command.split()))
                    numbers = getattr(kestro_hvl_rng.philox4x32x10(3), method)(*arguments, size=COUNT, dtype=dtype)
                    self.assertEqual(numbers.tobytes(), expected.astype(dtype).tobytes())
                    self.assertGreater(p_value(numbers, law), 1e-5)

    def test_methods(self):
        for method in ("box_muller", "box_muller2", "icdf"):
            expected = program.generate(1000, "float32", "-d", "gaussian", "-m", method)
            numbers = kestro_hvl_rng.philox4x32x10(1).normal(size=1000, dtype="float32", method=method)
            self.assertEqual(numbers.tobytes(), expected.tobytes())

    def test_random_stays_below_one(self):
        def at_the_end():  # of [0, 1), so near that float rounds to 1
            engine = kestro_hvl_rng.sobol(1)
            engine.skip_ahead(0x1555555)
            return engine
        self.assertEqual(at_the_end().uniform(dtype=np.float32), 1)
        for dtype in REAL:
            self.assertLess(at_the_end().random(dtype=dtype), 1)
            self.assertGreater(at_the_end().random(dtype=dtype), 1 - 1e-7)

    def test_geometric_numbers_stay_in_their_type(self):
        for dtype in WHOLE:
            numbers = kestro_hvl_rng.ars5(1).geometric(1e-10, 1000, dtype=dtype)
            self.assertEqual(numbers.max(), 2**31 - 1)
            self.assertGreater(numbers.min(), 0)

    def test_integers_to_an_end_that_belongs(self):
        numbers = kestro_hvl_rng.ars5(1).integers(1, 6, 1000, endpoint=True)
        self.assertEqual(set(numbers), {1, 2, 3, 4, 5, 6})

    def test_vectors(self):
        expected = program.generate(COUNT, "float64", "-d", "gaussian_mv", "--a", "1,2", "--t", "2,0.5,0.5")
        by_factor = kestro_hvl_rng.philox4x32x10(1).multivariate_normal([1, 2], size=COUNT, factor=FACTOR)
        self.assertEqual(by_factor.shape, (COUNT, 2))
        self.assertEqual(by_factor.tobytes(), expected.tobytes())
        by_covariance = kestro_hvl_rng.philox4x32x10(1).multivariate_normal([1, 2], COVARIANCE, COUNT)
        np.testing.assert_allclose(by_covariance, by_factor, rtol=0, atol=1e-13)
        flat = kestro_hvl_rng.philox4x32x10(1).multivariate_normal([0, 0], [[1, 2], [2, 4]], COUNT)
        np.testing.assert_allclose(flat[:, 1], 2 * flat[:, 0], rtol=0, atol=1e-12)
        with self.assertRaisesRegex(ValueError, "semidefinite"):
            kestro_hvl_rng.philox4x32x10(1).multivariate_normal([0, 0], [[1, 2], [2, 1]])

    def test_counts_of_outcomes(self):
        expected = program.generate(COUNT, "int32", "-d", "multinomial", "--ntrial", "9", "--p", "0.25,0.5,0.25")
        numbers = kestro_hvl_rng.philox4x32x10(1).multinomial(9, [0.25, 0.5, 0.25], COUNT)
        self.assertEqual(numbers.shape, (COUNT, 3))
        self.assertEqual(numbers.tobytes(), expected.tobytes())
        self.assertEqual(set(numbers.sum(axis=1)), {9})
        with self.assertRaisesRegex(ValueError, "p does not add up to 1"):
            kestro_hvl_rng.philox4x32x10(1).multinomial(9, [0.25, 0.5])

    def test_means_of_their_own(self):
        means = [0.5, 5.0, 50.0]
        expected = program.generate(3000, "int32", "-d", "poisson_v", "--lambda", "0.5,5,50")
        numbers = kestro_hvl_rng.philox4x32x10(1).poisson(means, (1000, 3))
        self.assertEqual(numbers.tobytes(), expected.tobytes())
        self.assertEqual(kestro_hvl_rng.philox4x32x10(1).poisson(means).shape, (3,))
        with self.assertRaisesRegex(ValueError, "lam"):
            kestro_hvl_rng.philox4x32x10(1).poisson(means, (3, 1000))

    def test_refused_parameters_change_nothing(self):
        engine = kestro_hvl_rng.philox4x32x10(1)
        for text, refused in (
                ("stddev", lambda: engine.normal(0, -1)), ("a >= b", lambda: engine.uniform(1, 0)),
                ("mean is not a number", lambda: engine.normal([1, 2], 1)), ("alpha", lambda: engine.gamma(np.nan)),
                ("b is not an integer", lambda: engine.integers(2**31)), ("p is not in", lambda: engine.geometric(0)),
                ("ntrial is not an integer", lambda: engine.binomial(1.5, 0.5)),
                ("dtype int32 is not one of float32, float64", lambda: engine.random(3, dtype=np.int32)),
                ("dtype float64 is not one of int32, uint32", lambda: engine.integers(3, dtype=float)),
                ("alpha", lambda: engine.chisquare(np.inf)), ("one of cov and factor", lambda: engine.multivariate_normal([0, 0]))):
            with self.subTest(text), self.assertRaisesRegex(ValueError, text):
                refused()
        np.testing.assert_array_equal(engine.bits(9), kestro_hvl_rng.philox4x32x10(1).bits(9))


class Outputs(unittest.TestCase):
    def test_the_array_is_filled_and_nothing_beside_it(self):
        for device in ("cpu", "gpu"):
            memory = np.full(1200, np.nan, np.float32)
            out = memory[100:1100].reshape(10, 100)
            engine = kestro_hvl_rng.philox4x32x10(1, device=device)
            self.assertIs(engine.normal(out=out, dtype=np.float32), out)
            expected = kestro_hvl_rng.philox4x32x10(1).normal(size=(10, 100), dtype=np.float32)
            self.assertEqual(out.tobytes(), expected.tobytes())
            self.assertTrue(np.isnan(memory[:100]).all() and np.isnan(memory[1100:]).all())

    def test_numbers_without_a_size(self):
        engine = kestro_hvl_rng.philox4x32x10(1)
        self.assertIs(type(engine.normal()), float)
        self.assertIs(type(engine.poisson(3)), int)
        self.assertEqual(engine.normal(size=()).shape if hasattr(engine.normal(size=()), "shape") else (), ())
        self.assertEqual(engine.normal(size=(0, 3)).shape, (0, 3))

    def test_arrays_that_cannot_be_filled(self):
        engine, out = kestro_hvl_rng.philox4x32x10(1), np.zeros((4, 6))
        read_only = np.zeros(4)
        read_only.flags.writeable = False
        for text, options in (("contiguous", {"out": out[:, ::2]}), ("contiguous", {"out": out.T}),
                              ("writeable", {"out": read_only}), ("dtype", {"out": out.astype(np.float32)}),
                              ("dtype", {"out": out.astype(">f8")}), ("shape", {"out": out, "size": (6, 4)}),
                              ("not an array", {"out": [0.0, 0.0]})):
            with self.subTest(text), self.assertRaisesRegex(ValueError, text):
                engine.normal(**options)
        self.assertFalse(out.any())
        np.testing.assert_array_equal(engine.bits(9), kestro_hvl_rng.philox4x32x10(1).bits(9))


if __name__ == "__main__":
    unittest.main()
