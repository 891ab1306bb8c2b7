import os
import subprocess
import unittest

from driver import PROGRAM, ProgramTest, tree_of


class DemoTest(ProgramTest):
    def run_demo(self, *options):
        """In a temporary folder that holds nothing else, as a user whose own home it must not touch."""
        temporary = self.folder / "temporary"
        temporary.mkdir(exist_ok=True)
        os.umask(0o002)  # as some systems have it
        before = tree_of(self.home)
        finished = subprocess.run([PROGRAM, *options, "demo"], capture_output=True, text=True, check=False,
                                  env=os.environ | {"TMPDIR": str(temporary), "HOME": str(self.home)})
        self.assertEqual((finished.returncode, finished.stderr), (0, ""), finished.stdout)
        self.assertEqual(list(temporary.iterdir()), [])
        self.assertEqual(tree_of(self.home), before)
        return finished.stdout

    def test_the_demo_keeps_its_word_and_leaves_nothing_behind(self):
        shown = self.run_demo()
        for words in ("Would go to the Trash", "Left alone", "approved", "~/Documents", "hard links counted once"):
            self.assertIn(words, shown)
        self.assertNotIn("NO ", shown)

    def test_the_demo_is_a_document_too(self):
        self.assertIn('"holds": true', self.run_demo("--json"))


if __name__ == "__main__":
    unittest.main()
