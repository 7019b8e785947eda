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

    def test_every_word_of_a_list_counts_on_every_device(self):
        # the authors' answer for philox4x32-10 of all bits set, and for mt19937 by array; one seed more or less is another
        for engine, seed, words in (
                ("philox4x32x10", ",".join(["0xffffffff"] * 6), (0x408F276D, 0x41C83B0E, 0xA20BC7C6, 0x6D5451FD)),
                ("mt19937", "0x123,0x234,0x345,0x456", (1067595299, 955945823, 477289528, 4107218783))):
            for device in ("cpu", "gpu"):
                self.assertEqual(struct.unpack("<4I", raw("-n", "4", "-d", "uniform_bits", "-e", engine, "-s", seed,
                                                          "--device", device)), words, (engine, device))
        for engine, words in (("ars5", 8), ("mrg32k3a", 6), ("mcg31m1", 2), ("mcg59", 2), ("wichmann_hill", 4)):
            seeds = [",".join("3" if at == changed else "2" for at in range(words)) for changed in range(words + 1)]
            cpu, gpu = ([raw("-n", "64", "-e", engine, "-s", seed, "--device", device) for seed in seeds]
                        for device in ("cpu", "gpu"))
            self.assertEqual(cpu, gpu, engine)
            self.assertEqual(len(set(cpu)), words + 1, engine)

    def test_members_are_sequences_of_their_own(self):
        of = ("-n", "1000", "-e", "wichmann_hill", "-s", "7")
        first, last = raw(*of), raw(*of, "--member", "272")
        self.assertEqual(raw(*of, "--member", "0"), first)
        self.assertNotEqual(last, first)
        self.assertEqual(raw(*of, "--member", "272", "--device", "gpu", "--skip", "3")[:-12], last[12:])
        # A member alone decides, for equal states.
        self.assertNotEqual(raw(*of[:4], "-s", "5,6,7,8", "--member", "1"), raw(*of[:4], "-s", "5,6,7,8"))

    def test_modes_take_substreams_in_turn(self):
        of = ("-e", "mrg32k3a", "-s", "1,2,3,4,5,6")
        sequence = struct.unpack("<100f", raw("-n", "100", *of))
        self.assertEqual(struct.unpack("<100f", raw("-n", "100", *of, "--mode", "standard")), sequence)
        for device in ("cpu", "gpu"):
            row = struct.unpack("<300f", raw("-n", "300", *of, "--mode", "custom:3", "--device", device))
            self.assertEqual(row[::3], sequence, device)
            self.assertNotEqual(row[1::3], sequence, device)
        count = str(2**20 + 12345) # across chunks
        self.assertEqual(raw("-n", count, *of, "--mode", "optimal"),
                         raw("-n", count, *of, "--mode", "custom:81920", "--device", "gpu"))

    def test_parameters_have_their_own_types(self):
        values = struct.unpack("<10000i", raw("-n", "10k", "-d", "geometric", "--p", "0.25"))
        self.assertEqual(min(values), 0)
        self.assertAlmostEqual(sum(values) / 10000, 3, delta=0.2) # six standard errors
        self.assertEqual(values, struct.unpack("<10000I", raw("-n", "10k", "-d", "geometric", "--p", "0.25", "-t",
                                                              "uint32")))
        means = struct.unpack("<10000i", raw("-n", "10k", "-d", "poisson_v", "--lambda", "0,1000000"))
        self.assertEqual(set(means[::2]), {0})
        self.assertGreater(min(means[1::2]), 990000)
        self.assertEqual(set(raw("-n", "1k", "-d", "bernoulli", "--p", "1")), {0, 1})
        gamma = ("-n", "10k", "-d", "gamma", "--alpha", "3", "--a", "-1", "--beta", "2")
        values = struct.unpack("<10000f", raw(*gamma))
        self.assertGreater(min(values), -1)
        self.assertAlmostEqual(sum(values) / 10000, 5, delta=0.21)
        self.assertEqual(raw(*gamma, "--method", "marsaglia"), raw(*gamma))

    def test_vectors_are_counted_and_their_elements_written(self):
        pairs = ("-d", "gaussian_mv", "--a", "1,-2", "--t", "1,-1,0")
        values = struct.unpack("<20000f", raw("-n", "10k", *pairs))
        self.assertEqual(raw("-n", "9", *pairs), raw("-n", "10k", *pairs)[:72])
        for first, second in zip(values[::2], values[1::2]):
            self.assertAlmostEqual(second, -1 - first, delta=1e-5)
        self.assertAlmostEqual(sum(values[::2]) / 10000, 1, delta=0.06)
        counts = struct.unpack("<30000i", raw("-n", "10k", "-d", "multinomial", "--ntrial", "9", "--p", "0.5,0,0.5"))
        for first, second, third in zip(counts[::3], counts[1::3], counts[2::3]):
            self.assertEqual((first + third, second), (9, 0))
        self.assertAlmostEqual(sum(counts[::3]) / 10000, 4.5, delta=0.09)

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
                ("--skip 2: r250 cannot skip", "-n", "1", "-e", "r250", "--skip", "2"),
                ("--seed 4294967296: the words of a list have 32 bits", "-n", "1", "-s", "1,4294967296"),
                ("--seed 4294967296: the seed of mcg31m1 has 32 bits", "-n", "1", "-e", "mcg31m1", "-s", "4294967296"),
                *((f"--member {member}: kestro::hvl::rng::wichmann_hill: invalid argument: engine_idx is out of range [0, 273)", "-n", "1",
                   "-e", "wichmann_hill", "--member", member) for member in ("273", str(2**32), str(2**64 - 1))),
                *((f"--member {member}: not a whole", "-n", "1", "-e", "wichmann_hill", "--member", member)
                  for member in ("-1", "one", "1.5")),
                ("--member", "-n", "1", "-e", "wichmann_hill", "--member", ""),
                ("--member 0: philox4x32x10 has no members", "-n", "1", "--member", "0"),
                ("--mode optimal: mt19937 has no modes", "-n", "1", "-e", "mt19937", "--mode", "optimal"),
                *(("--mode " + mode[:6], "-n", "1", "-e", "mrg32k3a", "--mode", mode)
                  for mode in ("fast", "custom", "custom:", "custom:-1", "custom:4294967296", "optimal:3")),
                ("--p 1.5: kestro::hvl::rng::geometric: invalid argument: p is not in (0, 1]", "-n", "1", "-d", "geometric", "--p", "1.5"),
                ("--lambda -1: kestro::hvl::rng::poisson: invalid argument: lambda < 0", "-n", "1", "-d", "poisson", "--lambda", "-1"),
                ("--lambda : not a number", "-n", "1", "-d", "poisson_v", "--lambda", "1,,2"),
                ("--alpha 0: kestro::hvl::rng::gamma: invalid argument: alpha <= 0", "-n", "1", "-d", "gamma", "--alpha", "0"),
                ("--method icdf: geometric has no choice", "-n", "1", "-d", "geometric", "-m", "icdf"),
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
        self.assertIn(b"generate, plot, bench, devices, list, trace-summary", run("frobnicate").stderr)

    def test_devices_outputs_and_pairs_have_their_own_status(self):
        self.assert_refused(DEVICE, "--device", "-n", "1", "--device", "fpga")
        self.assert_refused(DEVICE, "--device", "-n", "1", "--device", "99")
        self.assert_refused(OUTPUT, "--output", "-n", "1", "-o", "/no/such/folder/file")
        self.assert_refused(OUTPUT, "--output", "-n", "1", "-o", "/dev/full")
        self.assert_refused(UNSUPPORTED, "uniform_bits distribution and mrg32k3a engine combination", "-n", "1",
                            "-e", "mrg32k3a", "-d", "uniform_bits")
        self.assert_refused(UNSUPPORTED, "mrg32k3a", "-n", "1", "-e", "mrg32k3a", "--mode", "optimal", "-d", "gamma")

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
        self.assertRegex(engines, r"\n  wichmann_hill +leapfrog +--member 0 \.\.\. 272(\n|$)")
        self.assertRegex(engines, r"\n  sobol +--seed DIMENSIONS\n")
        self.assertRegex(engines, r"\n  mrg32k3a +--mode standard\|optimal\|custom:N\n")
        has_bits = {words[0]: "uniform_bits" in words for words in map(str.split, engines.splitlines()[1:])}
        engines = list(has_bits)
        self.assertGreaterEqual(len(engines), 7)
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
        self.assertEqual(len({raw("-n", "4", "-e", "nondeterministic", "--device", device)
                              for device in ("cpu", "gpu", "cpu", "gpu")}), 4)
        for engine in engines:
            for name in names:
                done = run("generate", "-n", "2", "-e", engine, "-d", name)
                is_offered = name != "uniform_bits" or has_bits[engine]
                self.assertEqual(done.returncode, 0 if is_offered else UNSUPPORTED, (engine, name))


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
