"""Drives the program from outside, in a home folder made up for each test.

The program has no option that sets its clock: a test that needs old files runs it under faketime, so many days ahead.
"""

import contextlib
import dataclasses
import json
import os
import pathlib
import pty
import shutil
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["VOSTREL_PROGRAM"]
ROUNDS = int(os.environ.get("VOSTREL_ROUNDS", "1"))
LATER = 40
# Stands before the system's calls and ends the program when it removes or renames anything outside the test's folder.
CALLS = os.environ.get("VOSTREL_TEST_CALLS", "")


@dataclasses.dataclass
class Result:
    status: int
    out: str
    err: str

    @property
    def document(self):
        return json.loads(self.out)


class ProgramTest(unittest.TestCase):
    """A test with a home of its own; everything it makes is removed at its end."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="vostrel-test-")).resolve()
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.home = self.folder / "home"
        self.downloads = self.home / "Downloads"
        self.data = self.home / ".local/share/vostrel"
        # A folder that others may write to is never cleaned.
        self.addCleanup(os.umask, os.umask(0o022))
        self.downloads.mkdir(parents=True)

    def make(self, path, size=10, text=None):
        """A file in the home, and the folders above it."""
        file = self.home / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(text.encode() if text is not None else b"x" * size)
        return file

    def run_program(self, *arguments, days_ahead=None, **options):
        command = [PROGRAM, "--home", self.home, *arguments]
        environment = self.surroundings(days_ahead) | options.pop("environment", {})
        finished = subprocess.run(command, capture_output=True, text=True, env=environment, check=False, **options)
        return Result(finished.returncode, finished.stdout, finished.stderr)

    def start(self, *arguments, days_ahead=None, environment=None, **options):
        """The program at work, to be disturbed."""
        return subprocess.Popen([PROGRAM, "--home", self.home, *arguments], text=True,
                                env=self.surroundings(days_ahead) | (environment or {}),
                                **{"stdout": subprocess.PIPE, "stderr": subprocess.PIPE} | options)

    def surroundings(self, days_ahead=None):
        """What the program is started in: a guarded one, and perhaps one with its clock so many days ahead. Without
        faketime's own wrapper, which would get the signals meant for the program, and shares memory under names that a
        killed one leaves behind."""
        environment = {key: value for key, value in os.environ.items() if not key.startswith("XDG_")}
        preloaded = [CALLS] if CALLS else []
        if days_ahead is not None:
            preloaded.append("/usr/$LIB/faketime/libfaketime.so.1")
            environment |= {"FAKETIME": f"+{days_ahead}d", "NO_FAKE_STAT": "1"}
        # The sanitizer wants to come first of what is preloaded, and nothing it checks depends on that here.
        options = os.environ.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0"
        return environment | {"LD_PRELOAD": " ".join(preloaded), "ASAN_OPTIONS": options,
                              "VOSTREL_TEST_FOLDER": str(self.folder)}

    def succeed(self, *arguments, **options):
        result = self.run_program(*arguments, **options)
        self.assertEqual((result.status, result.err), (0, ""), result)
        return result

    def document(self, *arguments, **options):
        return self.succeed("--json", *arguments, **options).document

    def refuse(self, *arguments, status=1, **options):
        """Runs what must fail, for people and as JSON, and returns the lines of standard error."""
        spoken = self.run_program(*arguments, **options)
        self.assertEqual((spoken.status, spoken.out), (status, ""), spoken)
        written = self.run_program("--json", *arguments, **options)
        self.assertEqual((written.status, written.err), (status, spoken.err), written)
        self.assertEqual(written.document["error"] + "\n", spoken.err, written)
        return spoken.err.splitlines()

    def on_terminal(self, *arguments, environment=None):
        """What the program writes when standard output and standard error are one terminal."""
        ours, theirs = pty.openpty()
        subprocess.run([PROGRAM, "--home", self.home, *arguments], stdout=theirs, stderr=theirs, check=False,
                       env=self.surroundings() | {"TERM": "xterm"} | (environment or {}))
        os.close(theirs)
        written = b""
        with contextlib.suppress(OSError):  # as Linux says that nobody writes any more
            while piece := os.read(ours, 65536):
                written += piece
        os.close(ours)
        return written.decode()

    def add(self, name, *options):
        return self.document("rule", "add", name, "--folder", self.downloads, *options)

    def make_many(self, files):
        """A wide folder in the downloads, of fifty folders with these files."""
        for number in range(files):
            if number < 50:
                (self.downloads / f"many/{number}").mkdir(parents=True, exist_ok=True)
            (self.downloads / f"many/{number % 50}/{number}").write_bytes(b"x")

    def rules_file(self):
        return json.loads((self.data / "rules.json").read_text())


def tree_of(folder):
    """Every entry below the folder with what tells whether it was touched: to be compared before and after."""
    entries = {path: path.lstat() for path in pathlib.Path(folder).rglob("*")}
    return {path: (facts.st_ino, facts.st_mode, facts.st_size, facts.st_mtime_ns, facts.st_ctime_ns)
            for path, facts in entries.items()}
