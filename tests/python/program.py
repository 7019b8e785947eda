"""The command-line program, named by HVL_RNG, whose numbers are the C++ library's."""
import os
import subprocess

import numpy as np

PROGRAM = os.environ["HVL_RNG"]
TYPES = {"float32": "float", "float64": "double"}


def generate(count, dtype, *arguments):
    name = TYPES.get(np.dtype(dtype).name, np.dtype(dtype).name)
    command = [PROGRAM, "generate", "-f", "raw", "-n", str(count), "-t", name, *map(str, arguments)]
    done = subprocess.run(command, check=True, stdout=subprocess.PIPE, timeout=300)
    return np.frombuffer(done.stdout, dtype)
