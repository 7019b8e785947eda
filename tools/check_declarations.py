#!/usr/bin/env python3
"""Checks that what shared libraries export as plain functions is what their installed headers declare.

Every exported plain function is named in a program that includes the headers, which must compile: all of them in C++,
those with C names, of headers *.h, in C as well. Every function that the C headers declare must be exported.
"""
import argparse
import pathlib
import re
import subprocess
import sys
import tempfile

PREFIXES = r"(?:hvl_|vqs|v[sdi]Rng|omp_)"
DECLARED = re.compile(rf"\b({PREFIXES}\w+)\s*\(")
PLAIN = re.compile(rf"({PREFIXES}\w+)(\(.*\))?")


def exports_of(libraries):
    """(names exported for C, names exported for C++ only) of the functions outside every namespace."""
    names = {True: set(), False: set()}
    for library in libraries:
        listed = subprocess.run(["nm", "-D", "-C", "--defined-only", "--without-symbol-versions", library], capture_output=True, text=True, check=True)
        for line in listed.stdout.splitlines():
            plain = PLAIN.fullmatch(line.split(maxsplit=2)[2])
            if plain:
                names[plain[2] is None].add(plain[1])
    return names[True], names[False]


def program(headers, names):
    includes = "".join(f"#include <{header}>\n" for header in headers)
    # The cast takes the one function of the name; an undeclared name does not compile.
    uses = "".join(f"  count += (void (*)(void))&{name} != 0;\n" for name in sorted(names))
    return f"{includes}int used(void);\nint used(void) {{\n  int count = 0;\n{uses}  return count;\n}}\n"


def run(command, text):
    with tempfile.TemporaryDirectory() as folder:
        source = pathlib.Path(folder) / ("source.c" if "c" in command else "source.cpp")
        source.write_text(text)
        return subprocess.run([*command, source], capture_output=True, text=True, check=False)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--compiler", required=True, help="a C++ compiler that compiles C too")
    parser.add_argument("--include", action="append", default=[], help="a folder of headers")
    parser.add_argument("--header", action="append", default=[], help="an installed header, *.h (C) or *.hpp")
    parser.add_argument("libraries", nargs="+")
    options = parser.parse_args()
    folders = [f"-I{folder}" for folder in options.include]
    c_headers = [header for header in options.header if header.endswith(".h")]
    c_names, cpp_names = exports_of(options.libraries)
    warnings = ["-fsyntax-only", "-Wall", "-Wextra", "-Werror", "-Wno-address", *folders]
    faults = []
    for language, text in (("c", program(c_headers, c_names)), ("c++", program(options.header, c_names | cpp_names))):
        standard = "c11" if language == "c" else "c++17"
        done = run([options.compiler, f"-std={standard}", *warnings, "-x", language], text)
        if done.returncode:
            faults.append(f"headers as {standard}:\n{done.stderr}")
    expanded = run([options.compiler, "-std=c11", *folders, "-E", "-P", "-x", "c"], program(c_headers, []))
    faults += [f"{name} is declared and not exported" for name in sorted(set(DECLARED.findall(expanded.stdout)) - c_names)]
    if not c_names or not cpp_names:
        faults.append("nothing is exported")
    print("\n".join(faults) or f"{len(c_names | cpp_names)} functions are declared and exported")
    sys.exit(bool(faults))


if __name__ == "__main__":
    main()
