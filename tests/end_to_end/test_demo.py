import os
import pty
import signal
import subprocess
import termios
import time
import unittest

from driver import PROGRAM, ProgramTest, tree_of


class DemoTest(ProgramTest):
    def test_the_demo_keeps_its_word_and_leaves_nothing_behind(self):
        temporary = self.folder / "temporary"
        temporary.mkdir()
        os.umask(0o002)  # as some systems have it
        before = tree_of(self.home)
        for form, expected in (
                ([], ("Would go to the Trash", "Left alone", "approved", "~/Documents", "hard links counted once",
                      "Screen Recording 2026-09-20", "that does not look like a tool made it",
                      "~/Code/shop untouched since")),
                (["--json"], ('"holds": true',))):
            finished = subprocess.run([PROGRAM, *form, "demo"], capture_output=True, text=True, check=False,
                                      env=self.surroundings() | {"TMPDIR": str(temporary), "HOME": str(self.home)})
            self.assertEqual((finished.returncode, finished.stderr), (0, ""), finished.stdout)
            for words in expected:
                self.assertIn(words, finished.stdout)
            self.assertNotIn("NO ", finished.stdout)
            self.assertEqual(list(temporary.iterdir()), [])
            self.assertEqual(tree_of(self.home), before)

    def test_a_terminal_that_goes_away_leaves_no_sample_home(self):
        temporary = self.folder / "temporary"
        temporary.mkdir()
        ours, theirs = pty.openpty()
        self.addCleanup(os.close, ours)
        termios.tcflow(theirs, termios.TCOOFF)
        with subprocess.Popen([PROGRAM, "demo"], stdout=theirs, stderr=theirs,
                              env=self.surroundings() | {"TMPDIR": str(temporary), "HOME": str(self.home)}) as program:
            while program.poll() is None and not list(temporary.iterdir()):
                time.sleep(0.01)
            for _ in range(2):
                program.send_signal(signal.SIGHUP)
            termios.tcflow(theirs, termios.TCOON)
            self.assertEqual(program.wait(60), 1)
        os.close(theirs)
        self.assertEqual(list(temporary.iterdir()), [])


if __name__ == "__main__":
    unittest.main()
