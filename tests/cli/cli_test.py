"""Drives the command-line program as a person and a shell would."""
import ast
import os
import pathlib
import pty
import re
import select
import struct
import subprocess
import tempfile
import unittest

from program import DEVICE, OUTPUT, PROGRAM, UNSUPPORTED, USAGE, raw, run


class Numbers(unittest.TestCase):
    def test_gives_published_words(self):
        # philox4x32-10 of key 0 and counter 0, as its authors publish it
        expected = struct.pack("<4I", 0x6627E8D5, 0xE169C58D, 0xBC57AC4C, 0x9B00DBD8)
        self.assertEqual(raw("-s", "0", "-d", "uniform_bits", "-n", "4"), expected)
        self.assertEqual(raw("-s", "0x0", "-d", "uniform_bits", "-n", "4"), expected)
        self.assertEqual(raw("-s", "0", "-d", "uniform_bits", "-n", "2", "--skip", "2"), expected[8:])

    def test_is_the_same_on_every_device_across_chunks(self):
        count = str(2**20 + 12345)
        for distribution in (["uniform"], ["uniform", "-t", "double", "--a", "-3", "--b=8.5"]):
            cpu, gpu = (raw("-n", count, "--device", device, "-d", *distribution) for device in ("cpu", "gpu"))
            self.assertEqual(len(cpu), int(count) * (8 if "double" in distribution else 4))
            self.assertEqual(cpu, gpu)

    def test_text_reads_back_to_the_same_values(self):
        for type_name, code in (("float", "f"), ("double", "d"), ("int32", "i"), ("uint32", "I")):
            arguments = ("-n", "9000", "-t", type_name)
            lines = run("generate", *arguments).stdout.decode().splitlines()
            number = float if code in "fd" else int
            self.assertEqual(struct.pack(f"<9000{code}", *map(number, lines)), raw(*arguments))

    def test_parameters_reach_the_distribution(self):
        values = struct.unpack("<1000i", raw("-n", "1k", "-t", "int32", "--a", "-5", "--b", "5"))
        self.assertEqual(set(values), set(range(-5, 5)))
        gaussian = ("-n", "1k", "-d", "gaussian", "--mean", "-7", "--stddev", "1e-3")
        values = struct.unpack("<1000f", raw(*gaussian))
        self.assertTrue(all(abs(value + 7) < 6e-3 for value in values))
        self.assertGreater(len(set(values)), 900)
        self.assertEqual(raw(*gaussian, "--method", "box_muller2"), raw(*gaussian))
        self.assertNotEqual(raw(*gaussian, "--method", "icdf"), raw(*gaussian))

    def test_npy_is_what_numpy_defines(self):
        for type_name, descr, value_bytes in (("float", "<f4", 4), ("double", "<f8", 8), ("int32", "<i4", 4)):
            with tempfile.TemporaryDirectory() as folder:
                file = pathlib.Path(folder, "numbers.npy")
                arguments = ("-n", "1000", "-t", type_name)
                self.assertEqual(run("generate", *arguments, "-f", "npy", "-o", file).returncode, 0)
                data = file.read_bytes()
            self.assertEqual(data[:8], b"\x93NUMPY\x01\x00")
            (length,) = struct.unpack("<H", data[8:10])
            self.assertEqual((10 + length) % 64, 0)
            header = data[10:10 + length]
            self.assertTrue(header.endswith(b"\n"))
            self.assertEqual(ast.literal_eval(header.decode()),
                             {"descr": descr, "fortran_order": False, "shape": (1000,)})
            self.assertEqual(data[10 + length:], raw(*arguments))
            self.assertEqual(len(data) - 10 - length, 1000 * value_bytes)

    def test_counts(self):
        for count, numbers in (("0", 0), ("1", 1), ("2k", 2000), ("5K", 5000), ("1M", 1000000), ("1e6", 1000000)):
            self.assertEqual(len(raw("-n", count)), 4 * numbers)


    def test_seeds_have_64_bits(self):
        largest = str(2**64 - 1)
        self.assertEqual(raw("-n", "4", "-s", largest), raw("-n", "4", "-s", hex(2**64 - 1)))
        self.assertNotEqual(raw("-n", "4", "-s", largest), raw("-n", "4", "-s", str(2**32 - 1)))

    def test_a_list_that_devices_take_differently_is_warned_of(self):
        done = run("generate", "-n", "4", "-f", "raw", "-d", "uniform_bits", "-s", "0,0,0")
        self.assertEqual(done.stdout, raw("-n", "4", "-d", "uniform_bits", "-s", "0"))
        self.assertRegex(done.stderr.decode(), "^hvl-rng: warning: --seed 0,0,0: philox4x32x10 .*\n$")
        self.assertEqual(raw("-n", "4", "-e", "mt19937", "-s", "1,2"),
                         raw("-n", "4", "-e", "mt19937", "-s", "1,2", "--device", "gpu"))

    def test_integers_are_exact_unless_told_otherwise(self):
        wide = ("-n", "1k", "-t", "int32", "--a", "0", "--b", str(2**31 - 1))
        self.assertEqual(raw(*wide), raw(*wide, "-m", "accurate"))
        self.assertTrue(any(value % 2 for value in struct.unpack("<1000i", raw(*wide))))
        self.assertFalse(any(value % 2 for value in struct.unpack("<1000i", raw(*wide, "-m", "standard"))))
        self.assertEqual(raw("-n", "1k"), raw("-n", "1k", "-m", "standard"))


class Pipes(unittest.TestCase):
    def test_ends_quietly_when_the_reader_closes(self):
        for how_much in (["--forever"], ["-n", "3G"]):
            for output_format in ("raw", "text"):
                with subprocess.Popen([PROGRAM, "generate", "-f", output_format, *how_much], stdout=subprocess.PIPE,
                                      stderr=subprocess.PIPE) as program:
                    self.assertEqual(len(program.stdout.read(100000)), 100000)
                    program.stdout.close()
                    self.assertEqual(program.stderr.read(), b"")
                    self.assertEqual(program.wait(300), 0)

    def test_shows_progress_on_a_terminal_only(self):
        terminal, program_side = pty.openpty()
        with subprocess.Popen([PROGRAM, "generate", "-f", "raw", "-n", "900G"], stdout=subprocess.PIPE,
                              stderr=program_side) as program:
            read = 0
            while not select.select([terminal], [], [], 0)[0]:
                read += len(program.stdout.read(1 << 20))
                # No pipe is fast enough to carry so much before the bar is due.
                self.assertLess(read, 20 << 30, "no bar")
            self.assertRegex(os.read(terminal, 1000).decode(), r"\r\[[#.]{40}\] +\d+ %, \d+ million/s")
            program.stdout.close()
            self.assertEqual(program.wait(300), 0)
        os.close(program_side)
        os.close(terminal)

    def test_keeps_binary_away_from_a_terminal(self):
        terminal, program_side = pty.openpty()
        done = subprocess.run([PROGRAM, "generate", "-f", "raw", "-n", "10"], stdout=program_side,
                              stderr=subprocess.PIPE, check=False, timeout=300)
        self.assertEqual(done.returncode, USAGE)
        self.assertIn(b"--format", done.stderr)
        os.close(program_side)
        os.close(terminal)


class Refusals(unittest.TestCase):
    def assert_refused(self, status, named, *arguments):
        done = run("generate", *arguments)
        self.assertEqual((done.returncode, done.stdout), (status, b""), (arguments, done.stderr))
        self.assertIn(named, done.stderr.decode(), arguments)

    def test_usage_errors_name_the_option(self):
        for named, *arguments in (
                ("--count",), ("--count", "-n", "ten"), ("--count", "-n", "-1"), ("--count", "-n", "1x"),
                ("--count", "-n", "99999999999999999999"), ("--count", "-n", "1", "--forever"),
                ("--engine", "-n", "1", "-e", "nothing"), ("--distribution", "-n", "1", "-d", "nothing"),
                ("--type", "-n", "1", "-t", "half"), ("--method", "-n", "1", "-m", "fast"),
                ("--format", "-n", "1", "-f", "csv"), ("--format npy", "--forever", "-f", "npy"),
                *(("--seed " + (seed or "''"), "-n", "1", "-s", seed)
                  for seed in ("x", "-1", "", "010", " 1", "+1", "1,", "1,,2", "1e6", "0x", str(2**64))),
                ("--seed", "-n", "1", "-s", "1", "--seed", "2"), ("--count", "-n", "1", "-n", "2"),
                *(("--count " + (count or "''"), "-n", count)
                  for count in ("", "010", "0x10", " 1", "1e", "1e06", "1e20", "5kk", "k", "1.5", str(2**64))),
                ("--output", "-n", "1", "-o", ""), ("--skip -1", "-n", "1", "--skip", "-1"), ("--skip 010", "-n", "1", "--skip", "010"),
                ("--seed", "-n", "1", "-e", "mcg59", "-s", "1,2"),
                ("--seed", "-n", "1", "-e", "mcg31m1", "-s", "4294967296"),
                ("--beta", "-n", "1", "--beta", "2"), ("--a one", "-n", "1", "--a", "one"),
                ("--a 1.5", "-n", "1", "-t", "int32", "--a", "1.5"), ("--b 1e99", "-n", "1", "--b", "1e99"),
                ("--beta 2: gaussian has --mean, --stddev", "-n", "1", "-d", "gaussian", "--beta", "2"),
                ("--stddev 0", "-n", "1", "-d", "gaussian", "--stddev", "0"),
                ("--mean nan", "-n", "1", "-d", "gaussian", "--mean", "nan"),
                ("--a 2 --b 1", "-n", "1", "--a", "2", "--b", "1"), ("--nothing", "-n", "1", "--nothing")):
            self.assert_refused(USAGE, named.replace("--format npy", "npy"), *arguments)

    def test_an_unknown_verb_is_named(self):
        for arguments in (["frobnicate"], ["frobnicate", "-n", "1"], ["--frobnicate"], ["list", "frobnicate"]):
            done = run(*arguments)
            self.assertEqual((done.returncode, done.stdout), (USAGE, b""), arguments)
            self.assertIn(b"frobnicate", done.stderr, arguments)
        self.assertIn(b"generate, plot, devices, list, trace-summary", run("frobnicate").stderr)

    def test_devices_outputs_and_pairs_have_their_own_status(self):
        self.assert_refused(DEVICE, "--device", "-n", "1", "--device", "fpga")
        self.assert_refused(DEVICE, "--device", "-n", "1", "--device", "99")
        self.assert_refused(OUTPUT, "--output", "-n", "1", "-o", "/no/such/folder/file")
        self.assert_refused(OUTPUT, "--output", "-n", "1", "-o", "/dev/full")
        self.assert_refused(UNSUPPORTED, "uniform_bits distribution and mrg32k3a engine combination", "-n", "1",
                            "-e", "mrg32k3a", "-d", "uniform_bits")

    def test_a_refused_pair_leaves_an_old_file_alone(self):
        with tempfile.NamedTemporaryFile() as file:
            pathlib.Path(file.name).write_text("precious")
            self.assert_refused(UNSUPPORTED, "mrg32k3a", "-n", "1", "-e", "mrg32k3a", "-d", "uniform_bits", "-o",
                                file.name)
            self.assertEqual(pathlib.Path(file.name).read_text(), "precious")


class Lists(unittest.TestCase):
    def test_devices(self):
        lines = run("devices").stdout.decode().splitlines()
        kinds = [line.split()[1] for line in lines[1:]]
        self.assertIn("cpu", kinds)
        self.assertIn("gpu", kinds)
        for number, kind in enumerate(kinds):
            self.assertEqual(raw("-n", "4", "--device", str(number)), raw("-n", "4", "--device", kind))

    def test_everything_listed_is_understood_and_the_same_on_both_devices(self):
        engines, distributions = run("list").stdout.decode().split("\n\n")
        engines = re.findall(r"^  (\w+)", engines, re.MULTILINE)
        self.assertGreaterEqual(len(engines), 5)
        lines = distributions.splitlines()[1:]
        names, variants = [line.split()[0] for line in lines if line[2] != " "], []
        for line in lines:
            if line[2] != " ":
                name = line.split()[0]
            else:
                variants.append(["-d", name, *re.split("[*+]", line)[-1].split()])
        self.assertEqual(len(set(names)), len(names))
        self.assertEqual(sum("*" in line for line in lines), len(names), "one default each")
        self.assertIn(["-d", "uniform", "--type", "int32", "--method", "accurate", "--a", "0", "--b", str(2**31 - 1)],
                      variants)
        for variant in variants:
            self.assertEqual(raw("-n", "101", *variant), raw("-n", "101", *variant, "--device", "gpu"), variant)
        for engine in engines:
            for name in names:
                self.assertIn(run("generate", "-n", "2", "-e", engine, "-d", name).returncode, (0, UNSUPPORTED),
                              (engine, name))


class TraceSummary(unittest.TestCase):
    CALL = ("HVL_VERBOSE kestro::hvl::rng::generate {form} call with parameters distribution = "
            "kestro::hvl::rng::gaussian<float, kestro::hvl::rng::gaussian_method::icdf>, "
            "engine = kestro::hvl::rng::mcg59, n = {n}{r} host:{host} device:{device}{gpu}\n")

    def summarise(self, text):
        return run("trace-summary", "-", input=text.encode())

    def test_sums_calls_numbers_and_times(self):
        lines = ["HVL_VERBOSE Detected GPU0 any text\n", "output of the program\n",
                 self.CALL.format(form="USM", n=1000, r=", r = 0x7f00", host="1.50ms", device="250.00us", gpu=" GPU0"),
                 self.CALL.format(form="Buffer", n=24, r="", host="500.00us", device="nan", gpu=""),
                 self.CALL.format(form="USM", n=1, r=", r = 0", host="7ns", device="2.00s", gpu="")
                     .replace("mcg59", "mt19937")]
        done = self.summarise("".join(lines))
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        rows = [re.split(r"\s{2,}", line.strip()) for line in done.stdout.decode().splitlines()]
        name = "gaussian<float, gaussian_method::icdf>"
        self.assertEqual(rows, [["engine", "distribution", "calls", "numbers", "host s", "device s"],
                                ["mcg59", name, "2", "1024", "0.002000", "0.000250"],
                                ["mt19937", name, "1", "1", "0.000000", "2.000000"]])

    def test_tells_what_it_cannot_read(self):
        call = self.CALL.format(form="USM", n=5, r="", host="nan", device="nan", gpu="")
        wrong = (("n = 5", "n = five"), ("n = 5", "n = -5"), ("n = 5", "n = 12345678901234567890123"),
                 ("n = 5", f"n = {2**64 - 1}"), ("kestro::hvl::rng::mcg59", ""), ("gaussian", "g" * 200_000),
                 ("USM call", "USM"), ("host:nan", "host:10,71ms"), ("host:nan", "host:1.5"), ("host:nan", "host:inf"),
                 ("host:nan", "host:" + "9" * 400 + "s"), ("device:nan", ""), ("nan\n", "nan GPU\n"),
                 ("nan\n", "nan more\n"), ("HVL", "text before it HVL"), (" host:nan device:nan", ""))
        for found, put in wrong:
            done = self.summarise(call + call.replace(found, put))
            self.assertEqual(done.returncode, 0, put[:50])
            self.assertIn(b"1 trace lines were not understood", done.stderr, put[:50])
            self.assertRegex(done.stdout.decode(), r"1 +5 +- +-\n$")
        self.assertEqual(self.summarise("nothing here\n").returncode, 1)
        for name, reason in (("/no/such/file", "No such file or directory"), ("/", "Is a directory")):
            done = run("trace-summary", name)
            self.assertEqual((done.returncode, done.stderr.decode()), (USAGE, f"hvl-rng: {name}: {reason}\n"))


if __name__ == "__main__":
    unittest.main()
