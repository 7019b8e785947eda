"""Where the program's output goes, and what is left when it cannot get there or is interrupted."""
import os
import pathlib
import pty
import resource
import signal
import stat
import subprocess
import tempfile
import threading
import unittest

from program import OUTPUT, PROGRAM, USAGE, raw, run

FILE_LIMIT_BYTES = 1 << 30


def limit_files(file_bytes=FILE_LIMIT_BYTES):
    resource.setrlimit(resource.RLIMIT_FSIZE, (file_bytes, file_bytes))


class Files(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.file = self.folder / "numbers"
        self.file.write_text("precious")

    def assert_untouched(self):
        self.assertEqual(self.file.read_text(), "precious")
        self.assertEqual(os.listdir(self.folder), ["numbers"])

    def test_an_old_file_survives_a_full_disk(self):
        done = run("generate", "-n", "1M", "-f", "raw", "-o", self.file, preexec_fn=lambda: limit_files(1 << 20))
        self.assertEqual((done.returncode, done.stderr.decode()),
                         (OUTPUT, f"hvl-rng: --output {self.file}: File too large\n"))
        self.assert_untouched()

    def interrupt(self, *signals, ignored=()):
        def prepare():
            limit_files()
            for one in ignored:
                signal.signal(one, signal.SIG_IGN)

        with subprocess.Popen([PROGRAM, "generate", "-n", "900G", "-f", "raw", "-o", self.file],
                              stderr=subprocess.PIPE, preexec_fn=prepare) as program:
            while len(os.listdir(self.folder)) == 1 and program.poll() is None:
                pass
            for one in signals:
                program.send_signal(one)
            return program.wait(300)

    def test_an_old_file_survives_a_signal(self):
        for one in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            self.assertEqual(self.interrupt(one), -one)
            self.assert_untouched()
        # Under nohup the first one is ignored.
        self.assertEqual(self.interrupt(signal.SIGHUP, signal.SIGTERM, ignored=[signal.SIGHUP]), -signal.SIGTERM)
        self.assert_untouched()

    def test_a_new_file_takes_place_and_permissions_of_the_old_one(self):
        self.file.chmod(0o640)
        link, dangling, long = self.folder / "link", self.folder / "dangling", self.folder / ("n" * 250)
        link.symlink_to("numbers")
        dangling.symlink_to("new")
        expected = raw("-n", "9")
        for name in (self.file, link, dangling, long):
            self.assertEqual(raw("-n", "9", "-o", name), b"")
            self.assertEqual(name.read_bytes(), expected)
        self.assertEqual(stat.S_IMODE(self.file.stat().st_mode), 0o640)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir() if path.is_symlink()),
                         ["dangling", "link"])
        self.assertEqual(sorted(os.listdir(self.folder)), ["dangling", "link", "new", "n" * 250, "numbers"])

    def test_what_is_no_file_is_written_as_it_stands(self):
        pipe = self.folder / "pipe"
        os.mkfifo(pipe)
        read = []
        reader = threading.Thread(target=lambda: read.append(pipe.read_bytes()), daemon=True)
        reader.start()
        self.assertEqual(raw("-n", "9", "-o", pipe), b"")
        reader.join(300)
        self.assertEqual(read, [raw("-n", "9")])
        self.assertTrue(stat.S_ISFIFO(pipe.stat().st_mode))
        done = run("generate", "-n", "1", "-o", self.folder)
        self.assertEqual((done.returncode, done.stderr.decode()),
                         (OUTPUT, f"hvl-rng: --output {self.folder}: Is a directory\n"))

    def test_a_file_that_is_open_already_is_written_on(self):
        for name, stream in (("/dev/stdout", "stdout"), ("/dev/fd/1", "stdout"), ("/dev/stderr", "stderr")):
            self.file.write_text("precious")
            with open(self.file, "ab") as open_file:
                done = run("generate", "-n", "9", "-f", "raw", "-o", name, **{stream: open_file})
            self.assertEqual(done.returncode, 0)
            self.assertEqual(self.file.read_bytes(), b"precious" + raw("-n", "9"), name)

    def test_no_file_for_numbers_without_end(self):
        done = run("generate", "--forever", "-o", self.file, preexec_fn=limit_files)
        self.assertEqual(done.returncode, USAGE)
        self.assertIn(b"--forever", done.stderr)
        self.assert_untouched()


class StandardOutput(unittest.TestCase):
    def test_traces_stay_out_of_it(self):
        traced = {**os.environ, "HVL_VERBOSE": "1"}
        traced.pop("HVL_VERBOSE_OUTPUT_FILE", None)
        for output in ([], ["-o", "-"], ["-o", "/dev/stdout"]):
            for output_format in ("raw", "npy", "text"):
                arguments = ("generate", "-n", "9", "-f", output_format, *output)
                done = run(*arguments, env=traced)
                self.assertEqual(done.stdout, run(*arguments).stdout)
                self.assertIn(b"HVL_VERBOSE kestro::hvl::rng::generate USM call", done.stderr)

    VERBS = ("list", "devices", "--help", "generate --help", "--version", "generate -n 1", "bench -n 1 --seconds 0",
             "trace-summary -")
    CALL = (b"HVL_VERBOSE kestro::hvl::rng::generate USM call with parameters distribution = d, engine = e, n = 1, "
            b"r = 0 host:nan device:nan\n")

    def test_a_full_device_is_told(self):
        for verb in self.VERBS:
            with open("/dev/full", "wb") as full:
                done = run(*verb.split(), input=self.CALL, stdout=full)
            self.assertEqual((done.returncode, done.stderr.decode()),
                             (OUTPUT, "hvl-rng: standard output: No space left on device\n"), verb)

    def test_a_reader_that_left_is_no_failure(self):
        for verb in self.VERBS:
            reader, writer = os.pipe()
            os.close(reader)
            done = run(*verb.split(), input=self.CALL, stdout=writer)
            os.close(writer)
            self.assertEqual((done.returncode, done.stderr), (0, b""), verb)


class Progress(unittest.TestCase):
    def test_an_interrupt_ends_its_line(self):
        terminal, program_side = pty.openpty()
        with subprocess.Popen([PROGRAM, "generate", "-n", "900G", "-f", "raw", "-o", "/dev/null"],
                              stderr=program_side) as program:
            shown = os.read(terminal, 1000)
            self.assertIn(b"million/s", shown)
            program.send_signal(signal.SIGINT)
            self.assertEqual(program.wait(300), -signal.SIGINT)
        os.close(program_side)
        try:
            while piece := os.read(terminal, 1000):
                shown += piece
        except OSError:
            pass  # how a terminal says that nobody writes any more
        self.assertTrue(shown.endswith(b"\r\n"), shown)
        os.close(terminal)


if __name__ == "__main__":
    unittest.main()
