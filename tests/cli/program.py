"""The program under test, named by the first argument, and its exit statuses."""
import subprocess
import sys

PROGRAM = sys.argv.pop(1)
FAILED, USAGE, DEVICE, OUTPUT, UNSUPPORTED = 1, 2, 3, 4, 5


def run(*arguments, **options):
    streams = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options}
    return subprocess.run([PROGRAM, *arguments], check=False, timeout=300, **streams)


def raw(*arguments):
    done = run("generate", "-f", "raw", *arguments)
    assert done.returncode == 0 and not done.stderr, done
    return done.stdout
