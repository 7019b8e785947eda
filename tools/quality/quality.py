#!/usr/bin/env python3
"""Runs batteries of statistical tests over every engine, judges the outcomes, and prints a page of Markdown about them.

The project's own tests always run; TestU01's SmallCrush where its program was built; PractRand where `RNG_test` is on PATH.
A p-value below ALARM is a failure. expected.txt lists those of the own tests that the literature predicts: one that is not
listed, and one that is listed and does not appear, are faults, and the script then ends with status 1. What the other
batteries find is a fault in engines without a listed weakness.
"""
import argparse
import collections
import concurrent.futures
import itertools
import os
import pathlib
import shutil
import subprocess
import sys

ALARM = 1e-10
FULL_SIZE = 24  # what expected.txt speaks of; smaller runs need not show every weakness
COARSE_VIEWS = {"uniforms", "doubles"}  # not 32 bits as they come: of no use to other batteries
OTHERS = ("smallcrush", "practrand")  # what tests of the other batteries begin with

Outcome = collections.namedtuple("Outcome", "engine view test p")
Expectation = collections.namedtuple("Expectation", "engines views tests why")


class Failure(Exception):
    pass


def read_expected(text):
    """Lines of `engines views tests : why`, the first three lists with commas."""
    expectations = []
    for line in text.splitlines():
        if not line.strip() or line.startswith("#"):
            continue
        what, colon, why = line.partition(" : ")
        fields = what.split()
        if not colon or len(fields) != 3:
            raise Failure(f"expected.txt: not 'engines views tests : why': {line}")
        expectations.append(Expectation(*(field.split(",") for field in fields), why.strip()))
    return expectations


def cells_of(expectations):
    return {cell for e in expectations for cell in itertools.product(e.engines, e.views, e.tests)}


def run(command):
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise Failure(f"{' '.join(map(str, command))}: status {done.returncode}\n{done.stderr}")
    return [line.split("\t") for line in done.stdout.splitlines()]


def p_values(command, engine, view):
    outcomes = [Outcome(engine, view, test, float(p)) for test, p in run(command)]
    if not outcomes:
        raise Failure(f"{' '.join(map(str, command))}: no outcome")
    return outcomes


def practrand(tester, pour, length, engine, view):
    """One outcome for the whole battery: its verdicts are words, of which FAIL is the last."""
    with subprocess.Popen(pour, stdout=subprocess.PIPE) as source:
        done = subprocess.run([tester, "stdin32", "-tlmax", length], stdin=source.stdout, capture_output=True, text=True,
                              check=False)
        source.stdout.close()
        source.terminate()
    if done.returncode != 0 or "length=" not in done.stdout:
        raise Failure(f"{tester}: status {done.returncode}, without a report of {engine}, {view}\n{done.stdout}{done.stderr}")
    return [Outcome(engine, view, "practrand", 0.0 if "FAIL" in done.stdout else 1.0)]


def jobs_of(arguments, views, tester):
    seed = str(arguments.seed)
    for engine, of_engine in views.items():
        for view in of_engine:
            yield p_values, ([arguments.program, "run", engine, view, seed, str(arguments.size)], engine, view)
            if view in COARSE_VIEWS:
                continue
            if arguments.testu01:
                yield p_values, ([arguments.testu01, engine, view, seed], engine, view)
            if tester:
                pour = [arguments.program, "pour", engine, view, seed]
                yield practrand, (tester, pour, arguments.practrand_length, engine, view)


def run_all(jobs, parallel):
    with concurrent.futures.ThreadPoolExecutor(parallel) as pool:
        running = [pool.submit(function, *parameters) for function, parameters in jobs]
        try:
            for number, done in enumerate(concurrent.futures.as_completed(running), 1):
                done.result()
                if sys.stderr.isatty():
                    print(f"{number} of {len(running)}", end="\r", file=sys.stderr)
        finally:
            pool.shutdown(cancel_futures=True)
    return [outcome for done in running for outcome in done.result()]


def is_known(cell, expected):
    """A float's last bit is no weakness of an engine, so the views that have it do not count for other batteries."""
    engine, _, test = cell
    of_others = test.startswith(OTHERS)
    return cell in expected or of_others and any(e == engine and v not in COARSE_VIEWS for e, v, _ in expected)


def judge(outcomes, expectations, size):
    """What is wrong, a line each."""
    expected = cells_of(expectations)
    seen = {outcome[:3]: outcome.p for outcome in outcomes}
    faults = [f"unexpected: {' '.join(cell)}, p = {p:.3g}" for cell, p in seen.items()
              if p < ALARM and not is_known(cell, expected)]
    for cell in sorted(expected):
        if cell not in seen:
            faults.append(f"expected.txt names no test that was run: {' '.join(cell)}")
        elif size >= FULL_SIZE and seen[cell] >= ALARM:
            faults.append(f"expected, but it did not fail: {' '.join(cell)}, p = {seen[cell]:.3g}")
    return faults


def table(outcomes, expectations):
    expected = cells_of(expectations)
    rows = collections.defaultdict(list)
    for outcome in outcomes:
        rows[outcome.engine, outcome.view].append(outcome)
    yield "| engine | read as | tests | fail | least p of the others |"
    yield "|---|---|---|---|---|"
    for (engine, view), of_row in rows.items():
        failed = [o for o in of_row if o.p < ALARM]
        others = [o.p for o in of_row if o.p >= ALARM]
        names = ", ".join(o.test if is_known(o[:3], expected) else f"**{o.test}**" for o in failed)
        least = f"{min(others):.2g}" if others else ""
        yield f"| `{engine}` | {view} | {len(of_row)} | {names or '-'} | {least} |"


def page(arguments, outcomes, expectations, measures, batteries, faults):
    count = sum(o.test != "practrand" for o in outcomes)
    yield "# Quality"
    yield ""
    yield f"Made by `./dev quality` at size {arguments.size}, where most tests read about 2^{arguments.size} words, from the seed {arguments.seed}."
    yield f"Batteries: {', '.join(batteries)}."
    yield ""
    yield f"{count} p-values, two-sided; one below {ALARM:g} is a failure. Perfect engines would raise a false alarm with"
    yield f"probability {count * ALARM:.1g}. Failures in bold are faults: the others are expected, for the reasons below the table, and"
    yield "one of those that does not appear is a fault as well."
    for fault in faults:
        yield f"- **{fault}**"
    yield ""
    yield from table(outcomes, expectations)
    yield ""
    yield "How the words are read: `words` as they are; `reversed`, the lowest bit first; `uniforms`, `float` numbers on [0, 1), to"
    yield "24 bits; `doubles`, the last 32 of the 53 bits of `double` numbers, the lowest first, of the engine that has so many;"
    yield "in turn from 16 streams: `blocks`, one sequence skipped to places 2^40 apart (mcg31m1: 2^27); `members`, of one seed;"
    yield "`seeds`, 16 neighbouring ones. `nondeterministic` gives other words in every run."
    yield ""
    yield "## Expected failures"
    yield ""
    yield "Of the project's own tests; what other batteries find counts as expected in the engines that are listed for more than"
    yield "their `uniforms` and `doubles`."
    yield ""
    for e in expectations:
        yield f"- {', '.join(f'`{name}`' for name in e.engines)} as {', '.join(e.views)}, in {', '.join(e.tests)}: {e.why}."
    yield ""
    yield "## Quasi-random engines"
    yield ""
    yield "Their points are not random and would fail most tests. What they promise instead, the worst of three stretches of the"
    yield "sequence: the t with which 2^m points are a (t, m, s)-net in base 2, and as parts of what random points would have on"
    yield "average, the L2 star discrepancy and the error of the mean of a product of sines."
    yield ""
    yield "| engine | measure | value | at most |"
    yield "|---|---|---|---|"
    for engine, name, value, limit in measures:
        yield f"| `{engine}` | {name} | {value:g} | {limit:g} |"
    yield ""
    yield "## The project's own tests"
    yield ""
    yield "`tools/quality/tests.hpp` says what each counts, and where it comes from; `battery.cpp` has their sizes. `serial_N`: cells of"
    yield "N words. `gaps_N`: between words in the lowest Nth of the range. `runs`: ascending ones. `birthdays_N`: equal spacings of"
    yield "points in N dimensions. `rank_bit`, `rank_word`: of matrices filled with first bits, or with all bits. `complexity`,"
    yield "`complexity_512`: linear complexity of the first bits, of a long sequence and over blocks. `hamming_pairs`, `hamming_lags`,"
    yield "`hamming_triples`: numbers of set bits of neighbours, of words at any distance, and of three words at any two."


def main():
    here = pathlib.Path(__file__).parent
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("program", help="the program of main.cpp")
    parser.add_argument("--testu01", help="the program of testu01.cpp")
    parser.add_argument("--expected", type=pathlib.Path, default=here / "expected.txt")
    parser.add_argument("--engines", help="only these, a list with commas")
    parser.add_argument("--size", type=int, default=FULL_SIZE, help="tests read about 2^SIZE words (%(default)s)")
    parser.add_argument("--seed", type=int, default=42)
    parser.add_argument("--practrand-length", default="256MB", help="bytes for PractRand (%(default)s)")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    arguments = parser.parse_args()

    expectations = read_expected(arguments.expected.read_text())
    views = {engine: of_engine for engine, *of_engine in run([arguments.program, "list"])}
    if arguments.engines:
        chosen = arguments.engines.split(",")
        if unknown := set(chosen) - set(views):
            raise Failure(f"no engine '{', '.join(sorted(unknown))}'")
        views = {engine: views[engine] for engine in chosen}
        expectations = [e._replace(engines=[n for n in e.engines if n in chosen]) for e in expectations]
        expectations = [e for e in expectations if e.engines]
    tester = shutil.which("RNG_test")
    batteries = ["the project's own tests"]
    batteries.append("TestU01's SmallCrush" if arguments.testu01 else "not TestU01, which was not found")
    batteries.append(f"PractRand on {arguments.practrand_length}" if tester else "not PractRand, whose RNG_test is not on PATH")

    measures = [(engine, name, float(value), float(limit)) for engine, of_engine in views.items() if not of_engine
                for name, value, limit in run([arguments.program, "quasi", engine])]
    outcomes = run_all(jobs_of(arguments, views, tester), arguments.jobs)
    faults = judge(outcomes, expectations, arguments.size)
    faults += [f"{engine}: {name} is {value:g}, at most {limit:g} is good" for engine, name, value, limit in measures
               if not value <= limit]
    print("\n".join(page(arguments, outcomes, expectations, measures, batteries, faults)))
    print("\n".join(faults) or "no fault", file=sys.stderr)
    sys.exit(bool(faults))


if __name__ == "__main__":
    try:
        main()
    except (Failure, OSError) as failure:
        sys.exit(f"quality: {failure}")
