"""Finds large, old and duplicate files, and moves some of them to the Trash."""

import os
import threading
import time

from driver import LATER, ROUNDS, ProgramTest

CONTENT = b"film" * 500_000


class FindTest(ProgramTest):
    def setUp(self):
        super().setUp()
        for path in ("Downloads/a/film", "Downloads/b/two\nlines", "Downloads/c/film"):
            self.make(path).write_bytes(CONTENT)
        self.make("Downloads/other", len(CONTENT))
        os.link(self.downloads / "a/film", self.downloads / "a/again")

    def find(self, *arguments):
        return self.run_program("find", *arguments, days_ahead=LATER)

    def left(self):
        return sorted(str(path.relative_to(self.downloads)) for path in self.downloads.rglob("*") if path.is_file())

    def test_it_lists_what_it_finds_and_tells_what_is_missing(self):
        document = self.run_program("--json", "find", "--large", "1MB", "--duplicates", "1MB").document
        copies, = [group["copies"] for group in document["groups"]]
        self.assertEqual([os.path.dirname(copy) for copy in copies], [str(self.downloads / name) for name in "abc"])
        self.assertEqual((document["largeCount"], document["old"], document["ending"]), (4, [], "complete"))
        text = self.succeed("find", "--duplicates", "1MB").out
        self.assertIn("3 copies of 2.0 MB each", text)
        self.assertIn("two\\nlines", text)
        for place, problem in {"none": "missing", "Downloads/other": "notAFolder"}.items():
            refused = self.run_program("--json", "find", self.home / place)
            self.assertEqual((refused.status, refused.document["roots"][0]["problem"]), (1, problem))

    def test_surplus_copies_go_and_one_of_each_stays(self):
        self.assertIn("by hand", self.find("--trash-duplicates", "--yes").out)
        self.assertEqual(self.left(), ["a/again", "a/film", "other"])
        self.assertEqual(self.find("--trash-duplicates", "--yes").err, "There are no copies to move to the Trash.\n")

    def test_only_what_the_search_lists_goes_and_never_every_copy(self):
        (self.downloads / "a/again").unlink()
        self.make("Downloads/ spaced ").write_bytes(b"other " * 300_000)
        everything = [self.downloads / path for path in ("a/film", "b/two\nlines", "c/film")]
        unlisted = self.make("Downloads/small")
        before = self.left()
        for chosen, sentence in ((everything, "No copy of it on the same disk is known to stay."),
                                 ([everything[2], unlisted], "This search did not find it."),
                                 ([self.home / "nothing"], "This search did not find it.")):
            refused = self.find("--trash", *chosen, "--yes")
            self.assertEqual((refused.status, refused.out), (1, ""), refused)
            self.assertIn(sentence, refused.err)
            self.assertEqual(self.left(), before)
        self.assertEqual(self.find("--trash", everything[1], "--large", "1MB", "--yes").status, 0)
        self.assertEqual(self.find("--trash", self.downloads / " spaced ", "--large", "1MB", "--yes").status, 0)
        self.assertEqual(self.left(), ["a/film", "c/film", "other", "small"])

    def test_whatever_somebody_does_meanwhile_a_whole_copy_stays(self):
        files = [self.downloads / path for path in ("a/film", "b/two\nlines", "c/film")]
        (self.downloads / "a/again").unlink()
        for number in range(4 * ROUNDS):
            for file in files:
                file.parent.mkdir(exist_ok=True)
                file.write_bytes(CONTENT)
            over = threading.Event()

            def disturb():
                """Swaps names, and writes where a copy is to stay."""
                while not over.is_set():
                    for one, other in ((files[0], files[2]), (files[1], files[0])):
                        try:
                            os.rename(one, self.downloads / "t")
                            os.rename(other, one)
                            os.rename(self.downloads / "t", other)
                        except OSError:
                            pass
                    time.sleep(0.0005 * (number + 1))

            attacker = threading.Thread(target=disturb)
            attacker.start()
            self.find("--trash-duplicates", "--yes")
            over.set()
            attacker.join()
            there = [file for file in self.downloads.rglob("*") if file.is_file() and file.name != "other"]
            self.assertTrue(any(file.read_bytes() == CONTENT for file in there), number)
