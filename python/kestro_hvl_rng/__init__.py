"""Random numbers on any device reached through SYCL, the same bits on every one.

    import kestro_hvl_rng
    numbers = kestro_hvl_rng.philox4x32x10(42).normal(size=1000)

Every engine of the library is a class here; `engines` has them by name. Distributions are methods of engines, with the
arguments of `numpy.random.Generator` where that has them. `BitGenerator` lets NumPy's own `Generator` draw from an engine.
"""
from .bit_generator import BitGenerator
from .engine import Engine, devices, engines

globals().update(engines)
__all__ = ["BitGenerator", "Engine", "devices", "engines", *engines]
