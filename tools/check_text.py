#!/usr/bin/env python3
"""Checks that no file of the repository holds an absolute path of somebody's machine, and no file mixes line ends.
Folders named corpus hold inputs of fuzz targets, which are bytes."""
import pathlib
import re
import subprocess
import sys

MACHINE_PATH = re.compile(r"(?:(?<![\w.}\]])|(?<=-[IL]))/(?:work|home|root|farm|tmp|Users)/[\w.]")
GENERATED = {"build", ".git", "__pycache__", ".cache"}


def files_of(root):
    """The files that git tracks, or every file of an unpacked archive."""
    listed = subprocess.run(["git", "-C", root, "ls-files", "-z"], capture_output=True, check=False)
    if listed.returncode == 0 and listed.stdout:
        return [root / name for name in listed.stdout.decode().split("\0") if name]
    return [path for path in root.rglob("*") if path.is_file() and not GENERATED & set(path.relative_to(root).parts)]


def faults_of(path):
    data = path.read_bytes()
    if b"\0" in data:
        return
    for number, line in enumerate(data.decode(errors="replace").splitlines(), 1):
        if MACHINE_PATH.search(line):
            yield f"{path}:{number}: holds a path of one machine: {line.strip()}"
    if b"\r\n" in data:
        yield f"{path}: has carriage returns"
    if data and not data.endswith(b"\n"):
        yield f"{path}: does not end with a line end"


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent).resolve()
    files = [path for path in files_of(root) if path.is_file() and "corpus" not in path.relative_to(root).parts]
    faults = [fault for path in files for fault in faults_of(path)]
    print("\n".join(faults) or f"{len(files)} files are clean")
    sys.exit(bool(faults) or not files)


if __name__ == "__main__":
    main()
