#!/usr/bin/env python3
"""Engines from Python: same bits as the C++ library, states, skips, threads, refusals."""
import copy
import pickle
import sys
import threading
import unittest

import numpy as np

import kestro_hvl_rng
import program

engines = kestro_hvl_rng.engines
REPRODUCIBLE = [name for name in engines if name != "nondeterministic"]


def make(name, seed=5, **options):
    return engines[name](**options) if name == "nondeterministic" else engines[name](seed, **options)


def words(engine, count=1001):
    return engine.bits(count)


class SameBits(unittest.TestCase):
    def test_every_engine_on_every_device_gives_the_numbers_of_the_program(self):
        for name in REPRODUCIBLE:
            expected = program.generate(5000, "float32", "-e", name, "-s", 5)
            for device in ("cpu", "gpu", 0):
                with self.subTest(name, device=device):
                    numbers = make(name, device=device).uniform(size=(50, 100), dtype=np.float32)
                    self.assertEqual(numbers.tobytes(), expected.tobytes())

    def test_what_else_constructors_take(self):
        for name, seed, options, arguments in (
                ("philox4x32x10", [1, 2, 3], {}, ["-s", "1,2,3"]),
                ("philox4x32x10", 2**64 - 1, {}, ["-s", 2**64 - 1]),
                ("mt19937", np.array([7, 2**32 - 1], np.uint32), {}, ["-s", f"7,{2**32 - 1}"]),
                ("wichmann_hill", 9, {"member": 272}, ["-s", 9, "--member", 272]),
                ("mt2203", [9, 8], {"member": np.int64(6023)}, ["-s", "9,8", "--member", 6023]),
                ("mrg32k3a", 9, {"mode": "optimal"}, ["-s", 9, "--mode", "optimal"]),
                ("mrg32k3a", [9, 8], {"mode": 17}, ["-s", "9,8", "--mode", "custom:17"]),
                ("sobol", 7, {}, ["-s", 7])):
            with self.subTest(name, seed=seed, **options):
                expected = program.generate(5000, "float64", "-e", name, *arguments)
                self.assertEqual(engines[name](seed, **options).uniform(size=5000).tobytes(), expected.tobytes())

    def test_several_members_are_dealt_in_turn(self):
        dealt = kestro_hvl_rng.mt2203(3, member=[4, 1000]).bits(600)
        for place, member in enumerate((4, 1000)):
            alone = kestro_hvl_rng.mt2203(3, member=member).bits(300)
            np.testing.assert_array_equal(dealt[place::2], alone)

    def test_what_is_nondeterministic_differs(self):
        engine = make("nondeterministic")
        self.assertNotEqual(words(engine).tobytes(), words(copy.copy(engine)).tobytes())


class Positions(unittest.TestCase):
    def test_skips(self):
        for name in set(REPRODUCIBLE) - {"mt2203", "r250"}:
            with self.subTest(name):
                skipped, whole = make(name), make(name)
                skipped.skip_ahead(1234)
                np.testing.assert_array_equal(words(skipped), words(whole, 2235)[1234:])

    def test_skips_beyond_64_bits(self):
        for name, bits in (("philox4x32x10", 100), ("ars5", 65), ("mrg32k3a", 150)):
            with self.subTest(name):
                at_once, halves = make(name), make(name)
                at_once.skip_ahead(2**bits + 7)
                for distance in (2**(bits - 1), 2**(bits - 1), 7):
                    halves.skip_ahead(distance)
                self.assertFalse((words(copy.copy(at_once)) == words(make(name))).all())
                np.testing.assert_array_equal(words(at_once), words(halves))

    def test_leapfrog(self):
        for name in ("mcg31m1", "mcg59", "wichmann_hill"):
            leaping = make(name)
            leaping.leapfrog(2, 5)
            np.testing.assert_array_equal(words(leaping, 200), words(make(name), 1000)[2::5])


class States(unittest.TestCase):
    def test_pickles_copies_and_bytes_go_on_with_the_sequence(self):
        for name in REPRODUCIBLE:
            engine = make(name)
            words(engine, 77)
            state = engine.to_bytes()
            others = {"pickle": pickle.loads(pickle.dumps(engine)), "copy": copy.copy(engine),
                      "deepcopy": copy.deepcopy(engine), "gpu": engines[name].from_bytes(state, device="gpu")}
            expected = words(engine)
            for way, other in others.items():
                with self.subTest(name, way=way):
                    self.assertIs(type(other), engines[name])
                    np.testing.assert_array_equal(words(other), expected)

    def test_damaged_states_are_refused(self):
        for name in ("philox4x32x10", "sobol"):
            state = make(name).to_bytes()
            changed = bytearray(state)
            changed[20] ^= 1
            for damaged in (changed, state + b"\0", *(state[:length] for length in range(len(state)))):
                with self.assertRaisesRegex(ValueError, "state"):
                    engines[name].from_bytes(damaged)
        with self.assertRaisesRegex(ValueError, "another engine"):
            kestro_hvl_rng.mt19937.from_bytes(kestro_hvl_rng.ars5(1).to_bytes())


class Threads(unittest.TestCase):
    def test_threads_that_share_an_engine_take_turns(self):
        expected = sorted(part.tobytes() for part in words(make("philox4x32x10"), 240000).reshape(2400, 100))
        for device in ("cpu", *["gpu"] * 6):  # calls that meet do harm seldom
            engine, parts = make("philox4x32x10", device=device), []
            threads = [threading.Thread(target=lambda: [parts.append(words(engine, 100).tobytes()) for _ in range(300)])
                       for _ in range(8)]
            for thread in threads:
                thread.start()
            for thread in threads:
                thread.join()
            self.assertTrue(sorted(parts) == expected)

    def test_python_runs_while_numbers_are_made(self):
        # A thread that keeps Python's lock keeps it for good: this one is let in only where a call gives it away.
        interval, seen, turns = sys.getswitchinterval(), [], []

        def draw():
            engine, out = make("philox4x32x10"), np.empty(100000)
            while not seen and len(turns) < 5000:
                engine.normal(out=out)
                turns.append(1)
        sys.setswitchinterval(1000)
        try:
            thread = threading.Thread(target=draw)
            thread.start()
            seen.append(len(turns))
            thread.join()
        finally:
            sys.setswitchinterval(interval)
        self.assertLess(seen[0], 5000)


class Refusals(unittest.TestCase):
    def test_each_names_what_is_wrong(self):
        philox, mrg, mt19937 = (engines[name] for name in ("philox4x32x10", "mrg32k3a", "mt19937"))
        engine = philox(1)
        for text, refused in (
                ("seed is out of range", lambda: philox(-1)), ("seed is out of range", lambda: philox(2**64)),
                ("seed is out of range", lambda: mt19937(2**32)), ("seed is not an integer", lambda: philox(1.5)),
                ("seed is out of range", lambda: philox([1, 2**32])),
                ("device: there is no tpu", lambda: philox(1, device="tpu")),
                ("device: there is no 99", lambda: philox(1, device=99)),
                ("no members", lambda: philox(1, member=0)), ("engine_idx", lambda: engines["mt2203"](1, member=6024)),
                ("several members", lambda: engines["mt2203"]([1, 2], member=[1, 2])),
                ("mode is none of", lambda: mrg(1, mode="fast")), ("no modes", lambda: mt19937(1, mode=3)),
                ("dimensions", lambda: engines["sobol"](21202)), ("cannot skip", lambda: engines["r250"](1).skip_ahead(1)),
                ("count is out of range", lambda: engine.skip_ahead(-1)),
                ("cannot leap", lambda: engine.leapfrog(0, 2)), ("stride", lambda: engines["mcg59"](1).leapfrog(0, 0)),
                ("distance is too long", lambda: mt19937(1).skip_ahead(2**64)),
                ("uniform_bits", lambda: mrg(1).uniform_bits(3)), ("size is negative", lambda: engine.random(-3)),
                ("dtype int8 is not one of", lambda: engine.normal(size=3, dtype=np.int8)),
                ("method 'fast' is not one of", lambda: engine.normal(size=3, method="fast"))):
            with self.subTest(text), self.assertRaisesRegex(ValueError, text):
                refused()
        np.testing.assert_array_equal(words(engine), words(philox(1)))

    def test_memory_that_cannot_be_had(self):
        with self.assertRaises(MemoryError):
            make("philox4x32x10").random(2**55)

    def test_several_members_cannot_be_saved(self):
        with self.assertRaisesRegex(RuntimeError, "multi-state"):
            kestro_hvl_rng.mt2203(3, member=[4, 1000]).to_bytes()


if __name__ == "__main__":
    unittest.main()
