"""Engines below NumPy's own distributions."""
import numpy as np

from . import _native
from .engine import engines


class BitGenerator(np.random.BitGenerator):
    """A NumPy bit generator of a copy of the engine: `numpy.random.Generator(BitGenerator(engine))`.

    Its words are the engine's `uniform_bits`, one for 32 bits, two for 64 bits and for a double, the low one first.
    Engines whose words are not uniform in all bits are refused.
    """

    def __init__(self, engine):
        super().__init__(0)  # seeds nothing here
        self._kind, self._device = type(engine), engine._device
        self._words = _native.WordSource(engine._native)
        self._words.connect(self.capsule)

    @property
    def state(self):
        with self.lock:
            state, unread = self._words.state()
        return {"bit_generator": self._kind.__name__, "state": {"engine": state, "unread": unread}}

    @state.setter
    def state(self, value):
        if value.get("bit_generator") != self._kind.__name__:
            raise ValueError(f"state is not of {self._kind.__name__}")
        state = value["state"]
        engine = self._kind.from_bytes(state["engine"], self._device)
        with self.lock:
            self._words.set_state(engine._native, state["unread"])

    def __reduce__(self):
        return _restore, (self._kind.__name__, self._device, self.state)


def _restore(name, device, state):
    restored = BitGenerator(engines[name].from_bytes(state["state"]["engine"], device))
    restored.state = state
    return restored
