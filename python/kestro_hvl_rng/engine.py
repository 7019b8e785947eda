"""Engines, with the distributions as methods."""
import operator

import numpy as np

from . import _native

_TYPES = {"float": "float32", "double": "float64"}


def _read_laws():
    """{(distribution, dtype's name): {method: index in the library's list}}; None is the default method. What is called
    uniform there makes integers too."""
    laws = {}
    for index, (name, value, method, is_default) in enumerate(_native.distributions()):
        if name == "uniform" and value not in _TYPES:
            name = "integers"
        methods = laws.setdefault((name, _TYPES.get(value, value)), {})
        methods[method] = index
        if is_default:
            methods[None] = index
    return laws


_LAWS = _read_laws()


def devices():
    """[(kind, name)] of the devices there are; the place in the list is the number that `device` takes."""
    return _native.devices()


def _integer(name, value, bits):
    try:
        number = operator.index(value)
    except TypeError:
        raise ValueError(f"{name} is not an integer: {value!r}") from None
    if not 0 <= number < 2**bits:
        raise ValueError(f"{name} is out of range [0, 2^{bits})")
    return number


def _word_or_words(name, value, bits):
    """One integer of so many bits, or the words of a list, which have 32."""
    if np.ndim(value) == 0:
        return _integer(name, value, bits)
    return [_integer(name, word, 32) for word in np.asarray(value, dtype=object).ravel()]


def _shape_of(size):
    return tuple(size) if np.iterable(size) else () if size is None else (operator.index(size),)


def _output(shape, size, dtype, out):
    """The array to fill, checked as NumPy does it."""
    if out is None:
        return np.empty(shape, dtype)
    if not isinstance(out, np.ndarray):
        raise ValueError("out is not an array")
    if size is not None and out.shape != shape:
        raise ValueError("size does not match the shape of out")
    if out.dtype != dtype:
        raise ValueError(f"out has dtype {out.dtype}, not {dtype}")
    if not (out.flags.c_contiguous and out.flags.writeable):
        raise ValueError("out is not contiguous in C order and writeable")
    return out


def _triangle(cov):
    """A lower triangular T with T T' = cov, which may be singular."""
    values, vectors = np.linalg.eigh(cov)
    if values[0] < -1e-8 * max(values[-1], 0.0):
        raise ValueError("cov is not positive semidefinite")
    upper = np.linalg.qr((vectors * np.sqrt(np.maximum(values, 0.0))).T, mode="r")
    return upper.T * np.where(np.diag(upper) < 0, -1.0, 1.0)


class Engine:
    """An engine of the library on a device; the classes in `engines` are made, this one is not.

    seed: an integer of 64 or, of engines that have no more, 32 bits; or a list of 32-bit words.
    member: which member of an engine that has several; of mt2203 also a list of several, dealt in turn.
    mode: of mrg32k3a "standard", "optimal" or a number of substreams.
    device: "cpu", "gpu" or a place in devices().

    Every method that draws takes
    size: the shape of the result; None for one number, or for all of `out`.
    dtype: float64 (the default) or float32, int32 (the default) or uint32.
    out: an array to fill, contiguous and of that dtype, instead of a new one.
    method: the library's method where it has several, such as "icdf".

    Numbers are those that the C++ library makes of the same seed with parameters of the same type. Threads may share an
    engine; their calls then take turns, and Python runs meanwhile. Refused arguments are a ValueError.
    """

    _index = None  # in the library's list

    def __init__(self, seed, *, member=None, mode=None, device="cpu"):
        if self._index is None:
            raise TypeError("make an engine of one of the classes in kestro_hvl_rng.engines")
        substreams = None
        if mode not in (None, "standard"):
            if isinstance(mode, str) and mode != "optimal":
                raise ValueError(f'mode is none of "standard", "optimal" or a number of substreams: {mode!r}')
            substreams = 0 if mode == "optimal" else _integer("mode", mode, 32)
        if member is not None:
            member = _word_or_words("member", member, 32)
        self._device = str(device)
        self._native = _native.Engine(self._index, self._device, _word_or_words("seed", seed, 64), member, substreams)

    # ---- The state

    def skip_ahead(self, count):
        """Advances by `count` words, steps or coordinates, as the engine counts."""
        count = _integer("count", count, 192)
        words = [count >> shift & 2**64 - 1 for shift in (0, 64, 128)]
        while len(words) > 1 and words[-1] == 0:
            words.pop()
        self._native.skip_ahead(words)

    def leapfrog(self, idx, stride):
        """From now on yields elements idx, idx + stride, idx + 2 stride, ... of the sequence."""
        idx, stride = _integer("idx", idx, 64), _integer("stride", stride, 64)
        if stride == 0:
            raise ValueError("stride is 0")
        self._native.leapfrog(idx, stride)

    def to_bytes(self):
        """The state, as the library saves it: the same bytes on every machine."""
        return self._native.save()

    @classmethod
    def from_bytes(cls, state, device="cpu"):
        """An engine of this class that goes on where the saved one stood."""
        return cls._around(_native.Engine.load(cls._index, str(device), bytes(state)), str(device))

    @classmethod
    def _around(cls, native, device):
        self = cls.__new__(cls)
        self._native, self._device = native, device
        return self

    def __copy__(self):
        return self._around(self._native.copy(), self._device)

    def __deepcopy__(self, memo):
        return self.__copy__()

    def __reduce__(self):
        return type(self).from_bytes, (self.to_bytes(), self._device)

    def __repr__(self):
        return f"<kestro_hvl_rng.{type(self).__name__} on device {self._device}>"

    # ---- Drawing

    def _draw(self, name, parameters, size, dtype, out, method=None, finish=None, vector=()):
        dtype = np.dtype(dtype)
        methods = _LAWS.get((name, dtype.name))
        if methods is None:
            offered = ", ".join(value for law, value in _LAWS if law == name)
            raise ValueError(f"dtype {dtype} is not one of {offered}")
        if method not in methods:
            raise ValueError(f"method {method!r} is not one of {', '.join(m for m in methods if m) or 'any'}")
        shape = _shape_of(size)
        if any(length < 0 for length in shape):
            raise ValueError("size is negative")
        numbers = _output((*shape, *vector), size, dtype, out)
        self._native.generate(methods[method], parameters, numbers)
        if finish is not None:
            finish(numbers)
        return numbers.item() if numbers.ndim == 0 and out is None else numbers

    def uniform_bits(self, size=None, dtype=np.uint32, out=None):
        """Integers of 32 or 64 bits, uniform in all of them; not every engine has them."""
        return self._draw("uniform_bits", {}, size, dtype, out)

    def bits(self, size=None, out=None):
        """The engine's words as they are."""
        return self._draw("bits", {}, size, np.uint32, out)

    def random(self, size=None, dtype=np.float64, out=None):
        """On [0, 1), below 1 in either type; 32 bits a number, of which float32 holds 24."""
        below_one = 1 - 2.0**-24 if np.dtype(dtype) == np.float32 else 1 - 2.0**-53
        return self._draw("uniform", {"a": 0, "b": below_one}, size, dtype, out, "accurate")

    def uniform(self, low=0.0, high=1.0, size=None, *, dtype=np.float64, out=None, method=None):
        """On [low, high); rounding may give high."""
        return self._draw("uniform", {"a": low, "b": high}, size, dtype, out, method)

    def integers(self, low, high=None, size=None, dtype=np.int32, endpoint=False, *, out=None, method=None):
        """From low to high - 1, or to high where `endpoint` is true; from 0 where only one bound is given."""
        low, high = (0, low) if high is None else (low, high)
        return self._draw("integers", {"a": low, "b": high + 1 if endpoint else high}, size, dtype, out, method)

    def standard_normal(self, size=None, dtype=np.float64, out=None, *, method=None):
        return self._draw("gaussian", {}, size, dtype, out, method)

    def normal(self, loc=0.0, scale=1.0, size=None, *, dtype=np.float64, out=None, method=None):
        return self._draw("gaussian", {"mean": loc, "stddev": scale}, size, dtype, out, method)

    def lognormal(self, mean=0.0, sigma=1.0, size=None, *, dtype=np.float64, out=None, method=None):
        return self._draw("lognormal", {"m": mean, "s": sigma}, size, dtype, out, method)

    def multivariate_normal(self, mean, cov=None, size=None, *, factor=None, dtype=np.float64, out=None):
        """Vectors in the last dimension. `factor` is a lower triangular T with T T' = cov, in place of cov, whose own
        factor NumPy's linear algebra makes, which may differ between machines in its last bits."""
        mean = np.asarray(mean, dtype=np.float64)
        if (cov is None) == (factor is None):
            raise ValueError("one of cov and factor is needed")
        square = np.asarray(cov if factor is None else factor, dtype=np.float64)
        if mean.ndim != 1 or square.shape != (mean.size, mean.size):
            raise ValueError("mean is not a vector, or cov or factor not a square matrix of its length")
        rows = square if cov is None else _triangle(square)
        parameters = {"a": mean, "t": rows[np.tril_indices(mean.size)]}
        return self._draw("gaussian_mv", parameters, size, dtype, out, vector=mean.shape)

    def standard_exponential(self, size=None, dtype=np.float64, method=None, out=None):
        return self._draw("exponential", {}, size, dtype, out, method)

    def exponential(self, scale=1.0, size=None, *, dtype=np.float64, out=None, method=None):
        return self._draw("exponential", {"beta": scale}, size, dtype, out, method)

    def laplace(self, loc=0.0, scale=1.0, size=None, *, dtype=np.float64, out=None):
        return self._draw("laplace", {"a": loc, "b": scale}, size, dtype, out)

    def weibull(self, a, size=None, *, scale=1.0, dtype=np.float64, out=None, method=None):
        """Shape a."""
        return self._draw("weibull", {"alpha": a, "beta": scale}, size, dtype, out, method)

    def rayleigh(self, scale=1.0, size=None, *, dtype=np.float64, out=None, method=None):
        """As NumPy's, where the mode is `scale`; the C++ class has another scale, greater by the root of 2."""
        return self._draw("rayleigh", {"beta": scale * 2**0.5}, size, dtype, out, method)

    def gumbel(self, loc=0.0, scale=1.0, size=None, *, dtype=np.float64, out=None):
        """Of greatest values, as NumPy's; the C++ class has that of least ones, of which this is the mirror image."""
        return self._draw("gumbel", {"a": -loc, "beta": scale}, size, dtype, out,
                          finish=lambda numbers: np.negative(numbers, out=numbers))

    def standard_cauchy(self, size=None, *, dtype=np.float64, out=None):
        return self._draw("cauchy", {}, size, dtype, out)

    def cauchy(self, loc=0.0, scale=1.0, size=None, *, dtype=np.float64, out=None):
        return self._draw("cauchy", {"a": loc, "b": scale}, size, dtype, out)

    def standard_gamma(self, shape, size=None, dtype=np.float64, out=None, *, method=None):
        return self._draw("gamma", {"alpha": shape}, size, dtype, out, method)

    def gamma(self, shape, scale=1.0, size=None, *, dtype=np.float64, out=None, method=None):
        return self._draw("gamma", {"alpha": shape, "beta": scale}, size, dtype, out, method)

    def chisquare(self, df, size=None, *, dtype=np.float64, out=None):
        if float(df).is_integer():
            return self._draw("chi_square", {"v": int(df)}, size, dtype, out)
        return self._draw("gamma", {"alpha": df / 2, "beta": 2}, size, dtype, out)

    def beta(self, a, b, size=None, *, dtype=np.float64, out=None):
        return self._draw("beta", {"p": a, "q": b}, size, dtype, out)

    def geometric(self, p, size=None, *, dtype=np.int32, out=None):
        """Trials up to the first success, as NumPy counts; the C++ class counts the failures, one less."""
        def count_success(numbers):
            np.minimum(numbers, 2**31 - 2, out=numbers)
            numbers += 1
        return self._draw("geometric", {"p": p}, size, dtype, out, finish=count_success)

    def bernoulli(self, p=0.5, size=None, *, dtype=np.int32, out=None):
        """1 with probability p, else 0."""
        return self._draw("bernoulli", {"p": p}, size, dtype, out)

    def poisson(self, lam=1.0, size=None, *, dtype=np.int32, out=None):
        """A mean for all numbers, or an array of means, which is repeated over the leading dimensions of `size`."""
        if np.ndim(lam) == 0:
            return self._draw("poisson", {"lambda": lam}, size, dtype, out)
        lam = np.asarray(lam, dtype=np.float64)
        shape = lam.shape if size is None and out is None else out.shape if size is None else _shape_of(size)
        if shape[len(shape) - lam.ndim:] != lam.shape:
            raise ValueError("size does not end with the shape of lam")
        return self._draw("poisson_v", {"lambda": lam}, shape, dtype, out)

    def binomial(self, n, p, size=None, *, dtype=np.int32, out=None):
        return self._draw("binomial", {"ntrial": n, "p": p}, size, dtype, out)

    def negative_binomial(self, n, p, size=None, *, dtype=np.int32, out=None):
        """Failures before success number n."""
        return self._draw("negative_binomial", {"a": n, "p": p}, size, dtype, out)

    def hypergeometric(self, ngood, nbad, nsample, size=None, *, dtype=np.int32, out=None):
        """Good ones in a sample of ngood + nbad."""
        return self._draw("hypergeometric", {"l": ngood + nbad, "s": nsample, "m": ngood}, size, dtype, out)

    def multinomial(self, n, pvals, size=None, *, dtype=np.int32, out=None):
        """Counts of each outcome, in the last dimension; pvals add up to 1."""
        pvals = np.asarray(pvals, dtype=np.float64)
        if pvals.ndim != 1:
            raise ValueError("pvals is not a vector")
        return self._draw("multinomial", {"ntrial": n, "p": pvals}, size, dtype, out, vector=pvals.shape)


class QuasiEngine(Engine):
    """dimensions: their number, or a list of it and the engine's own parameters; all else as of `Engine`."""

    def __init__(self, dimensions, *, device="cpu"):
        super().__init__(dimensions, device=device)


class UnseededEngine(Engine):
    """Words that cannot be had again; all else as of `Engine`."""

    def __init__(self, *, device="cpu"):
        super().__init__(0, device=device)


def _make_classes():
    for index, (name, is_quasi_random) in enumerate(_native.engines()):
        base = QuasiEngine if is_quasi_random else UnseededEngine if name == "nondeterministic" else Engine
        yield name, type(name, (base,), {"_index": index, "__module__": __package__, "__doc__": base.__doc__})


engines = dict(_make_classes())
