"""Runs the MPI examples: the same result on every number of ranks, the known ones, and after a rank was killed."""
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor

MPIRUN, ASIAN_BASKET, SLAB_TRANSPORT = sys.argv[1:4]
del sys.argv[1:4]
PATHS = ("--paths", "20000")  # 20 batches, the last one smaller
PARTICLES = ("--particles", "100001")  # 4 batches


def mpirun(ranks, program, *arguments):
    words = [MPIRUN, "--oversubscribe", "--allow-run-as-root", "-n", str(ranks), program, *arguments]
    with tempfile.TemporaryDirectory() as own:  # jobs at once would tidy up each other's files
        return subprocess.run(words, capture_output=True, text=True, check=False, timeout=120,
                              env={**os.environ, "TMPDIR": own})


def result(ranks, program, *arguments):
    done = mpirun(ranks, program, *arguments)
    assert done.returncode == 0, done
    return done.stdout


def at_once(function, arguments):
    """A job's start and end are mostly waiting."""
    with ThreadPoolExecutor(4) as threads:
        return list(threads.map(lambda words: function(*words), arguments))


class Results(unittest.TestCase):
    def result_of_all(self, ranks, program, *arguments):
        """What every number of ranks gives."""
        first, *others = at_once(result, [(number, program, *arguments) for number in ranks])
        for number, other in zip(ranks[1:], others):
            self.assertEqual(other, first, (number, arguments))
        return first

    def assert_price(self, text, slack):
        """The geometric mean's price is near its exact one. Returns the arithmetic mean's, with its control."""
        plain, exact, _, controlled = (float(re.search(r"  (\d\S+)", line)[1]) for line in text.splitlines())
        self.assertLess(abs(plain - exact), slack)
        return controlled

    def test_price_by_blocks(self):
        pseudo = self.result_of_all((1, 2, 3, 7), ASIAN_BASKET, *PATHS)
        controlled = self.assert_price(pseudo, 5 * 0.06)  # five standard errors
        sobol = self.result_of_all((1, 7), ASIAN_BASKET, *PATHS, "--engine", "sobol")
        # Points are even: a thirtieth of that error. The other price is right to five of its own standard errors.
        self.assertLess(abs(self.assert_price(sobol, 0.01) - controlled), 5 * 0.0075)

    def test_slab_by_leapfrog_and_by_blocks(self):
        tallies = self.result_of_all((1, 2, 3, 7), SLAB_TRANSPORT, *PARTICLES)
        self.assertEqual(result(3, SLAB_TRANSPORT, *PARTICLES, "--cut", "blocks"), tallies)
        errors = [float(error) for error in re.findall(r"\((\S+) standard errors\)", tallies)]
        self.assertEqual(len(errors), 3)
        self.assertLess(max(map(abs, errors)), 4.5)
        self.assertEqual(sum(map(int, re.findall(r"^\w+ed +(\d+)", tallies, re.MULTILINE))), int(PARTICLES[1]))


class Interruptions(unittest.TestCase):
    def resumed(self, rank, batch, kept, program, *arguments):
        """The output of a run of 3 ranks whose one was killed, and then began again in a folder of saved states."""
        with tempfile.TemporaryDirectory() as folder:
            arguments = (*arguments, "--save", folder)
            killed = mpirun(3, program, *arguments, "--kill", f"{rank},{batch}")
            self.assertNotEqual(killed.returncode, 0)
            self.assertEqual(killed.stdout, "")
            state = pathlib.Path(folder, f"{pathlib.Path(program).name}.{rank}.state")
            saved = state.read_bytes()

            state.write_bytes(saved[:-9] + bytes([saved[-9] ^ 1]) + saved[-8:])
            self.assertIn("state", mpirun(3, program, *arguments).stderr)
            state.write_bytes(saved[:-9])
            self.assertIn(f"{state} is damaged", mpirun(3, program, *arguments).stderr)
            state.write_bytes(saved)
            self.assertIn("was saved by another run", mpirun(2, program, *arguments).stderr)

            again = mpirun(3, program, *arguments)
            self.assertEqual(again.returncode, 0, again.stderr)
            self.assertIn(f"rank {rank} goes on after {kept} batches\n", again.stderr)
            self.assertEqual(os.listdir(folder), [])
        return again.stdout

    def test_a_killed_rank_goes_on_from_its_state(self):
        # Rank 1 of 3 has batches 13 to 26 of 40, and saves after its eighth.
        arguments = ("--paths", "40000", "--engine", "mt19937")
        jobs = [(1, 11, 21, ASIAN_BASKET, *arguments), (2, 2, 2, SLAB_TRANSPORT, *PARTICLES)]
        for again, (_, _, _, *job) in zip(at_once(self.resumed, jobs), jobs):
            self.assertEqual(again, result(2, *job))


class Refusals(unittest.TestCase):
    def test_every_option_is_checked_before_work_begins(self):
        refused = {"--engine r250: not one of": (ASIAN_BASKET, "--engine", "r250"),
                   "--paths 0: not a whole number": (ASIAN_BASKET, "--paths", "0"),
                   "--cut cards: not one of": (SLAB_TRANSPORT, "--cut", "cards"),
                   "--rank: not one of": (SLAB_TRANSPORT, "--rank", "1"),
                   "--save: a value is needed": (SLAB_TRANSPORT, "--save")}
        for named, done in zip(refused, at_once(mpirun, [(1, *words) for words in refused.values()])):
            self.assertNotEqual(done.returncode, 0)
            self.assertIn(named, done.stderr)


if __name__ == "__main__":
    unittest.main()
