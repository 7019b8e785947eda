#!/usr/bin/env python3
"""Checks every #include of the repository against the layer table of docs/architecture.md.

The table is the one between the markers `<!-- layers -->`: folder, the folders of ours that it may include, and the
third-party libraries that it may include. A folder may always include itself and the standard library. Tests and
benches of a folder may use what it may, and any third-party library.
"""
import argparse
import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^">]+)[">]', re.MULTILINE)
SOURCES = {".c", ".h", ".cpp", ".hpp", ".inc", ".def"}
THIRD_PARTY = {  # first path element or whole name of a header, and the library that it belongs to
    "hwy": "Highway", "tbb": "oneTBB", "oneapi": "oneTBB", "boost": "Boost", "CL": "OpenCL", "zlib.h": "zlib",
    "CLI": "CLI11", "fmt": "{fmt}", "gtest": "GoogleTest", "gmock": "GoogleTest", "benchmark": "Google Benchmark",
    "mpfr.h": "MPFR", "gmp.h": "MPFR", "gsl": "GSL", "Random123": "Random123", "dSFMT.h": "dSFMT",
    "mpi.h": "MPI",
}
PUBLIC_ROOTS = {"kestro": "include", "sycl": "platform/qorin", "qorin": "platform/qorin"}


def read_table(text):
    """{folder: (allowed folders, allowed libraries)}; the marked table is the only source of both."""
    marked = re.search(r"<!-- layers -->(.*?)<!-- /layers -->", text, re.DOTALL)
    if not marked:
        sys.exit("docs/architecture.md has no table between the markers <!-- layers --> and <!-- /layers -->")
    table = {}
    for line in marked.group(1).splitlines():
        cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
        folders = re.findall(r"`([^`]+)`", cells[0])
        if len(cells) == 3 and folders:
            allowed = set(re.findall(r"`([^`]+)`", cells[1]))
            libraries = {name.strip() for name in cells[2].split(",")} - {"-", ""}
            for folder in folders:
                table[folder] = (allowed, libraries)
    return table


class Checker:
    def __init__(self, root, table):
        self.root, self.table, self.faults = root, table, []
        self.products = [folder for folder in table if folder.startswith("platform/")]

    def layer_of(self, path):
        """The table's folder that holds a path of the repository, the most specific first."""
        name = path.as_posix()
        holders = [folder for folder in self.table if name == folder or name.startswith(folder + "/")]
        return max(holders, key=len, default=None)

    def target_of(self, source, quoted, header):
        """('ours', folder), ('library', name) or None for the standard library and the system."""
        if quoted:
            for base in (source.parent, self.root / "src", self.root):
                candidate = (base / header).resolve()
                if candidate.is_file() and candidate.is_relative_to(self.root):
                    return "ours", self.layer_of(candidate.relative_to(self.root))
        for folder in self.products:
            if (self.root / folder / "include" / header).is_file():
                return "ours", folder
        first = header.split("/")[0]
        if first in PUBLIC_ROOTS:
            return "ours", PUBLIC_ROOTS[first]
        if first in THIRD_PARTY:
            return "library", THIRD_PARTY[first]
        return ("ours", None) if quoted or first in ("hvl", "src", "platform") else None

    def check(self, path):
        relative = path.relative_to(self.root)
        layer = self.layer_of(relative)
        if layer is None:
            return
        allowed, libraries = self.table[layer]
        is_test = "tests" in relative.parts or "bench" in relative.parts
        for mark, header in INCLUDE.findall(path.read_text(errors="replace")):
            target = self.target_of(path, mark == '"', header)
            if target is None:
                continue
            kind, name = target
            if kind == "ours" and name is None:
                # Generated headers and headers beside a test are nobody's layer; a missing one fails to compile.
                continue
            if kind == "ours" and name != layer and name not in allowed:
                self.faults.append(f"{relative}: {layer} may not include {name} ({header})")
            if kind == "library" and not is_test and name not in libraries:
                self.faults.append(f"{relative}: {layer} may not include {name} ({header})")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("root", type=pathlib.Path, nargs="?", default=pathlib.Path(__file__).parent.parent)
    root = parser.parse_args().root.resolve()
    table = read_table((root / "docs/architecture.md").read_text())
    checker = Checker(root, table)
    files = [path for folder in table for path in sorted((root / folder).rglob("*")) if path.suffix in SOURCES]
    for path in sorted(set(files)):
        checker.check(path)
    print("\n".join(checker.faults) or f"{len(set(files))} files keep to the layers")
    if not files:
        sys.exit("no source file found: the table names folders that are not there")
    sys.exit(bool(checker.faults))


if __name__ == "__main__":
    main()
