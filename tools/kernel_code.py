#!/usr/bin/env python3
"""What an AdaptiveCpp makes of the library's kernels for an NVIDIA GPU; none is needed.

    kernel_code.py PREFIX INSTANCES [UNIT...] [--arch 90] [--ptxas PROGRAM]

PREFIX is where AdaptiveCpp is installed, with its compiler for PTX. INSTANCES is the folder of instantiation units that a
configured tree has (build/release/src/instances); a UNIT is one of them, like philox4x32x10_uniform, else all are taken.
Prints a row for each kernel: registers (by ptxas, where there is one), bytes of arrays in local memory, stores of vectors
and of single values, and operations that are not correctly rounded.

Exits with 1 if a kernel keeps arrays in local memory, or has an inexact operation. Only the members of mt2203 that are dealt in
turn may: a work-item has all words of a member's recurrence.
"""
import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[1]
INCLUDES = ["include", "src", "platform/core/include", "platform/omp/include", "platform/streams/include",
            "platform/math/include"]
ENTRY = re.compile(r"\.entry (\w+)\((.*?)\n}\n", re.DOTALL)
LOCAL = re.compile(r"\.local \.align \d+ \.b8\s+\w+\[(\d+)\]")
VECTOR = re.compile(r"\bst\.global\.v[24]\.")
SINGLE = re.compile(r"\bst\.global\.[ufbs]\d")
INEXACT = re.compile(r"\b(?:sqrt|rsqrt|div|rcp|sin|cos|tanh|lg2|ex2)\.(?:approx|full)\S*")
REGISTERS = re.compile(r"Compiling entry function '(\w+)'.*?Used (\d+) registers", re.DOTALL)
NOISE = re.compile(r"kestro::hvl::rng::(?:detail::)?(?:gpu::)?|hipsycl::sycl::")


def kernels_of(ptx):
    """{name: what its code has}, without the twins that take an offset, which no call of ours has."""
    return {name: {"local": sum(map(int, LOCAL.findall(body))), "vectors": len(VECTOR.findall(body)),
                   "singles": len(SINGLE.findall(body)), "inexact": sorted(set(INEXACT.findall(body)))}
            for name, body in ENTRY.findall(ptx) if "parallel_for_offset" not in name}


def faults_of(name, code):
    if code["inexact"]:
        yield f"{name}: {', '.join(code['inexact'])}"
    if code["local"] and not name.startswith("generate_in_turn"):
        yield f"{name}: {code['local']} bytes in local memory"


def readable(names):
    """The kernels' own names within their launchers', demangled where there is a c++filt."""
    if not shutil.which("c++filt"):
        return dict(zip(names, names))
    text = subprocess.run(["c++filt"], input="\n".join(names), capture_output=True, text=True, check=True).stdout
    return {name: NOISE.sub("", re.sub(r"^.*?parallel_for<|, \d+>(?: >)?(?:\(.*| const&.*)$", "", line))
            for name, line in zip(names, text.splitlines())}


def compiled(prefix, unit, arch, folder):
    """The PTX of a unit's kernels."""
    shutil.copy(unit, folder)  # the kernels' code is written beside the source
    done = subprocess.run([prefix / "bin/acpp", "-std=c++20", "-O1", "-ffp-contract=off", "-fPIC", "-w",
                           *(f"-I{ROOT / path}" for path in INCLUDES), "-mllvm", "-acpp-sscp-emit-hcf", "-c", unit.name,
                           "-o", folder / "unit.o"], cwd=folder, capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"{unit}: {done.stderr}")
    # The tool looks for its library of device code beside the folder that it is in.
    tools = folder / "tools"
    if not tools.exists():
        shutil.copytree(prefix / "lib/hipSYCL/llvm-to-backend", tools)
        (folder / "lib").symlink_to(prefix / "lib")
    ptx = folder / "unit.ptx"
    ptx.unlink(missing_ok=True)
    done = subprocess.run([tools / "llvm-to-ptx-tool", "--build-opt", f"ptx-target-device={arch}",
                           folder / f"{unit.name}.hcf", ptx, "llvm-ir.global"],
                          env={**os.environ, "LD_LIBRARY_PATH": str(prefix / "lib")}, capture_output=True, text=True)
    if not ptx.exists():
        sys.exit(f"{unit}: {done.stdout}{done.stderr}")
    return ptx


def registers_of(ptxas, ptx, arch):
    done = subprocess.run([ptxas, "-v", f"-arch=sm_{arch}", ptx, "-o", ptx.with_suffix(".cubin")],
                          capture_output=True, text=True)
    return dict(REGISTERS.findall(done.stderr))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("prefix", type=pathlib.Path)
    parser.add_argument("instances", type=pathlib.Path)
    parser.add_argument("units", nargs="*")
    parser.add_argument("--arch", default="90")
    parser.add_argument("--ptxas", default="ptxas")
    options = parser.parse_args()
    prefix, ptxas = options.prefix.resolve(), shutil.which(options.ptxas)
    if not (prefix / "lib/hipSYCL/llvm-to-backend/llvm-to-ptx-tool").exists():
        sys.exit(f"{prefix} has no AdaptiveCpp with a compiler for PTX")
    units = sorted(options.instances.resolve().glob("*_*.cpp"))
    if options.units:
        units = [unit for unit in units if unit.stem in options.units]
    if not units:
        sys.exit(f"{options.instances} has no such units")

    faults = []
    print("| kernel | registers | local bytes | vector stores | single stores | inexact |\n|---|---|---|---|---|---|")
    for unit in units:
        with tempfile.TemporaryDirectory() as folder:
            ptx = compiled(prefix, unit, options.arch, pathlib.Path(folder))
            code = kernels_of(ptx.read_text())
            registers = registers_of(ptxas, ptx, options.arch) if ptxas else {}
        names = readable(list(code))
        for name, found in code.items():
            print(f"| `{names[name]}` | {registers.get(name, '?')} | {found['local']} | {found['vectors']} "
                  f"| {found['singles']} | {', '.join(found['inexact'])} |", flush=True)
            faults += faults_of(names[name], found)
    if faults:
        sys.exit("\n".join(["faults:", *faults]))


if __name__ == "__main__":
    main()
