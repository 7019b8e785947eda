#!/usr/bin/env python3
"""Runs benchmark programs, prints ratios between their results and keeps everything in one JSON file.

Absolute speeds drift from machine to machine and from hour to hour; a ratio of two measurements of one run does not.
Each subject is a folder with programs below --programs, and one of the same name with a file `ratios.txt` below --ratios, which
has a line for each ratio:

    label = NUMERATOR / DENOMINATOR [in items|bytes|runs] [>= AIM]

where both sides are full benchmark names, separated by " / ". A ratio is of items per second where both sides count
items, otherwise of bytes per second, otherwise of the inverse times ("runs"), or of what the line says.

The repetitions of all benchmarks of a program take turns in random order, so that a neighbour's busy minute falls on all
of them, and each benchmark counts with its best repetition: what else a machine does can only slow a run down.
"""
import argparse
import datetime
import json
import os
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile

RATIO = re.compile(r"^(?P<label>[^=]+?)\s*=\s*(?P<top>\S.*?)\s+/\s+(?P<bottom>\S.*?)(?:\s+in\s+(?P<unit>items|bytes|runs))?(?:\s*>=\s*(?P<aim>[\d.]+))?$")
SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}
TAKING_TURNS = ["--benchmark_enable_random_interleaving=true", "--benchmark_repetitions=9", "--benchmark_min_time=0.05"]


def programs_below(folder):
    return [path for path in sorted(folder.rglob("*"))
            if path.is_file() and os.access(path, os.X_OK) and ".so" not in path.name
            and "CMakeFiles" not in path.parts]


def run(program, extra):
    print(f"running {program.name}", flush=True)
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        subprocess.run([program, *TAKING_TURNS, f"--benchmark_out={out.name}", "--benchmark_out_format=json", *extra],
                       check=True, stdout=subprocess.DEVNULL)
        text = pathlib.Path(out.name).read_text()
    # A filter that matches nothing leaves the file empty.
    return json.loads(text) if text.strip() else {"benchmarks": []}


def repetitions(report):
    """{benchmark name: [one {kind of speed: value} for each repetition]}"""
    table = {}
    for result in report["benchmarks"]:
        if result.get("error_occurred") or "aggregate_name" in result:
            continue
        seconds = result["real_time"] * SECONDS[result.get("time_unit", "ns")]
        found = {"items": result.get("items_per_second"), "bytes": result.get("bytes_per_second"),
                 "runs": 1 / seconds}
        table.setdefault(result.get("run_name", result["name"]), []).append({k: v for k, v in found.items() if v})
    return table


def best(runs):
    return {kind: max(one[kind] for one in runs if kind in one) for kind in {kind for one in runs for kind in one}}


def speeds(results):
    """{benchmark name: {kind of speed: its value in the best repetition}}"""
    return {name: best(runs) for report in results.values() for name, runs in repetitions(report).items()}


def show_speeds(report):
    for name, runs in sorted(repetitions(report).items()):
        fastest = best(runs)
        items, volume = (in_units(fastest[kind], unit) if kind in fastest else ""
                         for kind, unit in (("items", "/s"), ("bytes", "B/s")))
        usual = statistics.median(one["runs"] for one in runs) / fastest["runs"]
        print(f"  {name:<52} {in_units(1 / fastest['runs'], 's'):>10} {items:>12} {volume:>12} {usual:6.0%}")


def in_units(value, unit):
    for factor, prefix in ((1e9, "G"), (1e6, "M"), (1e3, "k"), (1, ""), (1e-3, "m"), (1e-6, "u"), (1e-9, "n")):
        if value >= factor:
            return f"{value / factor:.3g} {prefix}{unit}"
    return f"{value:.3g} {unit}"


def ratios_of(subjects, folder):
    for path in (folder / subject / "ratios.txt" for subject in sorted(subjects)):
        for number, line in enumerate(path.read_text().splitlines(), 1):
            line = line.split("#")[0].strip()
            if line:
                match = RATIO.match(line)
                if not match:
                    sys.exit(f"{path}:{number}: not of the form 'label = numerator / denominator [>= aim]'")
                yield match.groupdict()


def evaluate(ratios, table):
    for ratio in ratios:
        top, bottom = table.get(ratio["top"], {}), table.get(ratio["bottom"], {})
        kinds = [ratio["unit"]] if ratio["unit"] else ("items", "bytes", "runs")
        kind = next((kind for kind in kinds if kind in top and kind in bottom), None)
        value = top[kind] / bottom[kind] if kind else None
        yield {"label": ratio["label"], "ratio": value, "of": kind, "aim": ratio["aim"] and float(ratio["aim"])}


def previous_ratios(folder):
    kept = sorted(folder.glob("*.json"), key=lambda path: path.stat().st_mtime)
    if not kept:
        return {}
    return {one["label"]: one["ratio"] for one in json.loads(kept[-1].read_text())["ratios"]}


def show(evaluated, before):
    width = max((len(one["label"]) for one in evaluated), default=0)
    print(f"\n{'ratio':<{width}}  {'now':>8}  {'aim':>6}  {'before':>8}")
    for one in evaluated:
        now = f"{one['ratio']:.3g}" if one["ratio"] else "-"
        aim = f"{one['aim']:g}" if one["aim"] else ""
        last = before.get(one["label"])
        below = " below" if one["ratio"] and one["aim"] and one["ratio"] < one["aim"] else ""
        print(f"{one['label']:<{width}}  {now:>8}  {aim:>6}  {f'{last:.3g}' if last else '':>8}{below}")


def commit_of(root):
    described = subprocess.run(["git", "-C", root, "describe", "--always", "--dirty"], capture_output=True, text=True,
                               check=False)
    return described.stdout.strip() or "unknown"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--programs", type=pathlib.Path, required=True, help="folder to search for benchmark programs")
    parser.add_argument("--ratios", type=pathlib.Path, required=True, help="folder of what is compared in each subject")
    parser.add_argument("--results", type=pathlib.Path, required=True, help="folder that keeps the results")
    parser.add_argument("extra", nargs="*", help="arguments for the benchmark programs")
    options = parser.parse_args()

    programs = programs_below(options.programs)
    if not programs:
        sys.exit(f"no benchmark program below {options.programs}")
    busy = os.getloadavg()[0]
    if busy > 0.5:
        print(f"The machine is busy (load {busy:.1f}): ratios over several threads will come out too low.", flush=True)
    results = {program.name: run(program, options.extra) for program in programs}
    print(f"\n  {'best repetition':<52} {'time':>10} {'items':>12} {'bytes':>12} median")
    for report in results.values():
        show_speeds(report)
    evaluated = list(evaluate(ratios_of({program.parent.relative_to(options.programs) for program in programs}, options.ratios),
                              speeds(results)))
    show(evaluated, previous_ratios(options.results))

    now, commit = datetime.datetime.now(), commit_of(options.ratios)
    options.results.mkdir(parents=True, exist_ok=True)
    kept = options.results / f"{now:%Y-%m-%d-%H%M}-{commit}.json"
    kept.write_text(json.dumps({"date": now.isoformat(timespec="seconds"), "commit": commit, "load": busy, "ratios": evaluated,
                                "programs": results}, indent=1) + "\n")
    print(f"\nkept in {kept}")


if __name__ == "__main__":
    main()
