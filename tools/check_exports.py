#!/usr/bin/env python3
"""Checks what shared libraries export against a list of rules.

A rule is a line `LIBRARY REGEX`: a demangled symbol that LIBRARY exports must match one of its rules whole, and every
rule must match a symbol, so that neither an accidental export nor a lost one goes unseen. Every symbol must have the
version KESTRO_n, where the library's soname ends in .so.n.
"""
import argparse
import pathlib
import re
import subprocess
import sys


def exports_of(library):
    listed = subprocess.run(["nm", "-D", "-C", "--defined-only", library], capture_output=True, text=True, check=True)
    # address, type, demangled name, which may hold blanks; version symbols of the linker are absolute
    entries = [line.split(maxsplit=2) for line in listed.stdout.splitlines()]
    return sorted(entry[2] for entry in entries if entry[1] != "A")


def version_of(library):
    """What the symbols of a library with this soname have behind their names."""
    header = subprocess.run(["objdump", "-p", library], capture_output=True, text=True, check=True).stdout
    return "@@KESTRO_" + re.search(r"SONAME\s+\S+\.so\.(\d+)$", header, re.MULTILINE).group(1)


def rules_for(name, text):
    lines = (line.split(maxsplit=1) for line in text.splitlines() if line.strip() and not line.startswith("#"))
    return [rule for library, rule in lines if library == name]


def faults_of(library, rules):
    version = version_of(library)
    versioned = exports_of(library)
    yield from (f"{library.name} exports {symbol} without {version}" for symbol in versioned if not symbol.endswith(version))
    exports = [symbol.removesuffix(version) for symbol in versioned]
    patterns = [re.compile(rule) for rule in rules]
    for symbol in exports:
        if not any(pattern.fullmatch(symbol) for pattern in patterns):
            yield f"{library.name} exports {symbol}, which no rule allows"
    for rule, pattern in zip(rules, patterns):
        if not any(pattern.fullmatch(symbol) for symbol in exports):
            yield f"{library.name} exports nothing that matches {rule}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("rules", type=pathlib.Path)
    parser.add_argument("libraries", type=pathlib.Path, nargs="+")
    options = parser.parse_args()
    text, faults = options.rules.read_text(), []
    for library in options.libraries:
        rules = rules_for(library.name.removeprefix("lib").split(".so")[0], text)
        faults += list(faults_of(library, rules)) if rules else [f"{library.name} has no rules"]
    print("\n".join(faults) or f"{len(options.libraries)} libraries export what they should")
    sys.exit(bool(faults))


if __name__ == "__main__":
    main()
