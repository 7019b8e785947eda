#!/usr/bin/env python3
"""Random numbers in NumPy arrays: new ones and old, parts of one sequence, saved states, NumPy's own distributions."""
import pickle

import kestro_hvl_rng
import numpy

engine = kestro_hvl_rng.philox4x32x10(42)
normal = engine.normal(10.0, 2.0, size=(1000, 1000))
print(f"mean {normal.mean():.3f}, deviation {normal.std():.3f}")

# The same memory again, in float32, by another method.
numbers = numpy.empty(1_000_000, numpy.float32)
engine.standard_normal(dtype=numpy.float32, out=numbers, method="icdf")

# Four workers share one sequence: each skips to its part.
parts = []
for worker in range(4):
    own = kestro_hvl_rng.philox4x32x10(7)
    own.skip_ahead(worker * 250)
    parts.append(own.uniform(size=250))
whole = kestro_hvl_rng.philox4x32x10(7).uniform(size=1000)
print("parts are the whole:", numpy.array_equal(numpy.concatenate(parts), whole))

resumed = pickle.loads(pickle.dumps(engine))
print("a pickled engine goes on:", resumed.random() == engine.random())

generator = numpy.random.Generator(kestro_hvl_rng.BitGenerator(engine))
print("NumPy shuffles on our words:", generator.permutation(8))
