#!/usr/bin/env python3
"""Tries the Debian packages of a folder in a throw-away root: installs them all, builds and runs a consumer against what
they hold, runs the program and the Python package from there, and removes them again, which must leave nothing.

The root's list of packages is the machine's, so that dependencies on the system's libraries are checked; its files are
the packages' alone.
"""
import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

CONSUMER = pathlib.Path(__file__).resolve().parent.parent / "tests/consumer/project"


def run(*command, **options):
    done = subprocess.run([str(word) for word in command], check=False, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, **options)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}: {done.returncode}\n{done.stdout}")
    return done.stdout


class Root:
    def __init__(self, path):
        self.path, self.lists = path / "root", path / "dpkg"
        for folder in (self.path, self.lists / "info", self.lists / "updates", self.lists / "triggers"):
            folder.mkdir(parents=True)
        shutil.copy("/var/lib/dpkg/status", self.lists)
        for file_list in pathlib.Path("/var/lib/dpkg/info").glob("*.list"):
            shutil.copy(file_list, self.lists / "info")
        # The packages' scripts call ldconfig.
        scripts = path / "bin"
        scripts.mkdir()
        self.cache = path / "ld.so.cache"
        script = scripts / "ldconfig"
        script.write_text(f'#!/bin/sh\nexec {shutil.which("ldconfig", path="/sbin:/usr/sbin")} -X -f /dev/null '
                          f'-C "{self.cache}" "{self.path}/usr/lib"\n')
        script.chmod(0o755)
        self.environment = {**os.environ, "PATH": f"{scripts}:{os.environ['PATH']}:/usr/sbin:/sbin"}

    def dpkg(self, *arguments, check=True):
        command = ["dpkg", f"--instdir={self.path}", f"--admindir={self.lists}", "--force-not-root", "--log=/dev/null",
                   "--force-script-chrootless", "--no-triggers", *map(str, arguments)]
        if check:
            return run(*command, env=self.environment)
        return subprocess.run(command, env=self.environment, check=False, capture_output=True).returncode

    def cached(self):
        listed = run("/sbin/ldconfig", "-p", "-C", self.cache) if self.cache.exists() else ""
        return {name for name, path in re.findall(r"^\s+(lib\S+) .* => (\S+)$", listed, re.MULTILINE)
                if path.startswith(str(self.path))}  # the system's folders are in it too

    def files(self):
        return sorted(path for path in self.path.rglob("*") if not path.is_dir())


def name_of(package):
    return run("dpkg-deb", "--field", package, "Package").strip()


def headers_of_others(root, scratch):
    """The packages whose headers a program that includes ours needs."""
    flags = run("pkg-config", "--cflags", "kestro_hvl_rng", env=pkg_config(root)).split()
    rule = run("g++", "-std=c++17", "-M", *flags, CONSUMER / "main.cpp", cwd=scratch)
    headers = {os.path.realpath(word) for word in rule.replace("\\\n", " ").split()[1:]}
    foreign = [header for header in headers
               if not header.startswith((str(root.path), str(CONSUMER)))]
    return {line.split(":")[0] for line in run("dpkg", "-S", *foreign).splitlines()}


def pkg_config(root):
    return {**os.environ, "PKG_CONFIG_PATH": str(root.path / "usr/lib/pkgconfig")}


def check_installed(root, scratch):
    usr = root.path / "usr"
    libraries = {path.name for path in (usr / "lib").glob("*.so.?")}
    if not libraries or not libraries <= root.cached():
        sys.exit(f"of the libraries {libraries} the loader's cache has {root.cached()}")
    strangers = headers_of_others(root, scratch) - {"libc6-dev", "linux-libc-dev"}
    strangers = {name for name in strangers if not re.fullmatch(r"lib(stdc\+\+|gcc)-\d+-dev", name)}
    if strangers:
        sys.exit(f"the headers include those of {strangers}, on which no package depends")

    run("cmake", "-S", CONSUMER, "-B", scratch / "consumer", f"-DCMAKE_PREFIX_PATH={usr}", "-DCMAKE_BUILD_TYPE=Release")
    if f"kestro_hvl_rng_DIR:PATH={usr}" not in (scratch / "consumer/CMakeCache.txt").read_text():
        sys.exit("CMake found another installation")
    run("cmake", "--build", scratch / "consumer")
    run(scratch / "consumer/consumer")
    flags = run("pkg-config", "--cflags", "--libs", "kestro_hvl_rng", env=pkg_config(root)).split()
    run("g++", "-std=c++17", CONSUMER / "main.cpp", "-o", scratch / "with_pkg_config", *flags)
    run(scratch / "with_pkg_config", env={**os.environ, "LD_LIBRARY_PATH": str(usr / "lib")})
    numbers = run(usr / "bin/hvl-rng", "generate", "-n", 3, "-t", "double", "-s", 42)
    if (usr / "lib/python3").exists():
        program = "import kestro_hvl_rng as k; print(*k.philox4x32x10(42).uniform(size=3), sep='\\n')"
        same = run("/usr/bin/python3", "-B", "-c", program,
                   env={**os.environ, "PYTHONPATH": str(usr / "lib/python3/dist-packages")})
        if [float(line) for line in same.splitlines()] != [float(line) for line in numbers.splitlines()]:
            sys.exit(f"the Python package gives {same}, the program {numbers}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path)
    packages = sorted(parser.parse_args().folder.glob("*.deb"))
    names = [name_of(package) for package in packages]
    if not packages:
        sys.exit("no package found")
    runtime = next(name for name in names if re.fullmatch(r"lib.*\d", name))
    with tempfile.TemporaryDirectory() as name:
        scratch = pathlib.Path(name)
        root = Root(scratch)
        for one, package in zip(names, packages):
            # Alone, only what needs no other goes in.
            goes = root.dpkg("--install", package, check=False) == 0
            root.dpkg("--purge", one)
            if goes != (one == runtime or one.endswith("-doc")):
                sys.exit(f"{one} {'installs' if goes else 'does not install'} alone")
        root.dpkg("--install", *packages)
        count = len(root.files())
        check_installed(root, scratch)
        if root.dpkg("--remove", runtime, check=False) == 0:
            sys.exit(f"{runtime} can be removed while others need it")
        root.dpkg("--purge", *names)
        left = root.files()
        if left or root.cached():
            sys.exit(f"removing left {left}, {root.cached()}")
    print(f"{len(packages)} packages with {count} files install, work and go: {', '.join(names)}")


if __name__ == "__main__":
    main()
