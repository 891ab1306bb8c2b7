import os
import subprocess
import unittest

from driver import PROGRAM, ProgramTest, tree_of


class DemoTest(ProgramTest):
    def test_the_demo_keeps_its_word_and_leaves_nothing_behind(self):
        temporary = self.folder / "temporary"
        temporary.mkdir()
        os.umask(0o002)  # as some systems have it
        before = tree_of(self.home)
        environment = os.environ | {"TMPDIR": str(temporary), "HOME": str(self.home)}
        shown = {}
        for form in ("", "--json"):
            finished = subprocess.run([PROGRAM, *form.split(), "demo"], capture_output=True, text=True, check=False,
                                      env=environment)
            self.assertEqual((finished.returncode, finished.stderr), (0, ""), finished.stdout)
            self.assertEqual(list(temporary.iterdir()), [])
            self.assertEqual(tree_of(self.home), before)
            shown[form] = finished.stdout
        for words in ("Would go to the Trash", "Left alone", "approved", "~/Documents", "hard links counted once"):
            self.assertIn(words, shown[""])
        self.assertNotIn("NO ", shown[""])
        self.assertIn('"holds": true', shown["--json"])


if __name__ == "__main__":
    unittest.main()
