#!/usr/bin/env python3
"""Prints, as a page of Markdown, where the time of a build went: reads the log that Ninja keeps in a build tree.

Only the last run of a step counts, so the tree should have been built once, from nothing.
"""
import argparse
import collections
import os
import pathlib
import re

HEAD = """\
# Where build time goes

Made by `./dev build-times`, which builds what `./dev demo` needs from nothing: {minutes}:{seconds:02} minutes on {cores} cores.
Steps that run side by side count their seconds each.
"""

# The first pattern that a step's output matches names its part.
PARTS = [
    (r"^src/.*/unity_", "library: engines with distributions"),
    (r"^src/.*/instances/", "library: distributions for all engines"),
    (r"^src/.*/offload/", "library: offload bridge"),
    (r"^src/", "library: all else"),
    (r"^platform/(\w+)/(?:.*/)?tests/", r"platform/\1: tests"),
    (r"^platform/streams/.*_(scalar|avx2|avx512)\.dir/", r"platform/streams: \1"),
    (r"^platform/(\w+)/", r"platform/\1"),
    (r"^(tests|tools|examples|bench)/", r"\1"),
    (r"", "all else"),
]


def part_of(output):
    for pattern, name in PARTS:
        match = re.search(pattern, output)
        if match:
            return match.expand(name)
    raise AssertionError("the last pattern matches everything")


def steps_of(log):
    """The seconds of every step, by its first output (a step with several outputs counts once), and those of the build."""
    last, seen = {}, set()
    for line in log.read_text().splitlines():
        if line.startswith("#"):
            continue
        start, end, _, output, command = line.split("\t")
        last[output] = ((int(end) - int(start)) / 1000, (start, end, command))
    build = max((int(end) for _, (_, end, _) in last.values()), default=0) / 1000
    steps = {}
    for output, (seconds, identity) in last.items():
        if identity not in seen and not pathlib.PurePath(output).is_absolute():
            seen.add(identity)
            steps[output] = seconds
    return steps, build


def table(steps):
    parts = collections.defaultdict(list)
    for output, seconds in steps.items():
        parts[part_of(output)].append((seconds, pathlib.PurePath(output).name.removesuffix(".o")))
    total = sum(steps.values())
    yield "| part | steps | seconds | share | longest |"
    yield "|---|---|---|---|---|"
    for name, members in sorted(parts.items(), key=lambda part: -sum(s for s, _ in part[1])):
        seconds = sum(s for s, _ in members)
        longest, step = max(members)
        yield f"| {name} | {len(members)} | {seconds:.0f} | {100 * seconds / total:.0f} % | `{step}`, {longest:.1f} s |"
    yield f"| all | {len(steps)} | {total:.0f} | | |"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("tree", type=pathlib.Path, help="a build tree of Ninja's")
    log = parser.parse_args().tree / ".ninja_log"
    if not log.is_file():
        parser.error(f"{log} does not exist: the tree has not been built")
    steps, build = steps_of(log)
    print(HEAD.format(minutes=int(build) // 60, seconds=int(build) % 60, cores=os.cpu_count()))
    print(*table(steps), sep="\n")


if __name__ == "__main__":
    main()
