"""Maps folders, and moves what the map shows to the Trash."""

import json
import os
import signal
import subprocess
import unittest

from driver import PROGRAM, ProgramTest, tree_of


def sum_of(folder):
    """Bytes and files below a folder, by the standard library's own walk: blocks, hard links once."""
    found, total = set(), 0
    for path, _, names in os.walk(os.fsencode(folder)):
        for name in names:
            facts = os.lstat(os.path.join(path, name))
            if not os.path.islink(os.path.join(path, name)) and facts.st_ino not in found:
                found.add(facts.st_ino)
                total += facts.st_blocks * 512
    return total, len(found)


class MapTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.make("Films/film", 3_000_000)
        self.make("Films/trip", 1_000_000)
        for number in range(60):
            self.make(f"Notes/{number}", 5_000)
        os.link(self.home / "Films/film", self.home / "Notes/film again")
        os.symlink(self.home / "Notes", self.home / "Films/link")
        for name in (b"two\nlines", b"\xff\xfe", "Café".encode(), b"\x1b[31m", b"<script>"):
            folder = os.path.join(os.fsencode(self.home), b"odd", name)
            os.makedirs(folder)
            with open(os.path.join(folder, name), "wb") as file:
                file.write(b"x" * 9_000)

    def test_a_map_agrees_with_an_independent_sum(self):
        for folder in (self.home, "/usr/include", "/etc"):
            document = self.run_program("--json", "map", folder).document
            root = document["nodes"][0]
            self.assertEqual((root["bytes"], root["files"]), sum_of(folder), folder)
            self.assertEqual(document["ending"], "complete")
            self.assertNotIn("problem", document)
        names = [node["name"] for node in self.document("map", self.home / "odd")["nodes"]]
        self.assertIn("\0ff\0fe", names, "a byte that is not text is written as in paths")

    def test_a_map_shows_the_largest_and_writes_odd_names_so_that_they_cannot_steer_a_terminal(self):
        lines = self.succeed("map", self.home, "--depth", "2").out.splitlines()
        self.assertRegex(lines[0], r"^~  4\.\d MB in 67 files$")
        self.assertRegex(lines[1], r"^ +4\.\d MB +█+ +\d\d% +Films/$")
        self.assertRegex(lines[2], r"^ +3\.\d MB +█+ +\d\d% +  film$")
        text = "\n".join(lines)
        for name in ("two\\nlines/", "\\xff\\xfe/", "Café/", "\\x1b[31m/"):
            self.assertIn(name, text)
        self.assertEqual(len(self.succeed("map", self.home, "--top", "1").out.splitlines()), 3, "it, and the rest")

    def test_a_root_that_cannot_be_mapped_is_told(self):
        cases = {"Films/link": ("link", "~/Films/link is a link. Name the folder that it leads to."),
                 "none": ("missing", "There is nothing at ~/none."),
                 "Films/film": ("notAFolder", "~/Films/film is not a folder.")}
        for path, (problem, sentence) in cases.items():
            result = self.run_program("--json", "map", self.home / path)
            self.assertEqual((result.status, result.err), (1, sentence + "\n"))
            self.assertEqual((result.document["problem"], len(result.document["nodes"])), (problem, 1))

    def test_a_page_takes_the_place_of_nothing_but_a_page(self):
        page = self.home / "map.html"
        for _ in ("new", "again"):
            said = self.succeed("map", self.home / "odd", "--html", page).out.splitlines()
            self.assertEqual(said[-1], "The page is in ~/map.html.")
        text = page.read_text()
        for name in (r'"\u003cscript>"', r'"\\xff\\xfe"', '"Café"'):
            self.assertIn(name, text)
        self.assertEqual(text.count("<script"), 2, "its own")

        os.symlink(page, self.home / "link.html")
        self.make("letter", text="Dear")
        before = tree_of(self.home)
        for file in ("letter", "link.html", "Films", "none/map.html"):
            said = self.refuse("map", self.home / "odd", "--html", self.home / file)
            self.assertRegex(said[0], "^~/.* is there already|^There is no folder ~/none", file)
        self.run_program("map", self.home / "letter", "--html", self.home / "other.html")
        self.assertEqual(tree_of(self.home), before)

    def test_ctrl_c_leaves_the_map_of_what_was_seen(self):
        running = subprocess.Popen([PROGRAM, "--home", self.home, "--json", "map", "/"], stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE)
        try:
            running.wait(0.3)
        except subprocess.TimeoutExpired:
            running.send_signal(signal.SIGINT)
        out, _ = running.communicate(timeout=60)
        document = json.loads(out)
        stopped = document["ending"] == "cancelled"
        self.assertEqual((running.returncode, document["nodes"][0]["stopped"]), (1, True) if stopped else (0, False))
        self.assertEqual(document["hidden"]["measured"], document["nodes"][0]["bytes"])

    def test_chosen_items_go_to_the_trash_after_every_check_of_a_rule(self):
        self.make("Documents/letter", 5_000)
        before = tree_of(self.home)
        refusals = {
            self.home / "Films/film": "changed in the last 10 minutes",
            self.home / "Films/none": "There is nothing at ~/Films/none.",
            self.home / "Documents": "Vostrel",
            self.home / "Films/link": "a link",
            self.home / "Films": "nothing that lies directly in ~. Move it to the Trash yourself.",
            "/etc/hostname": "does not lie in ~.",
        }
        for item, words in refusals.items():
            # One that may go does not go alone.
            said = self.refuse("map", self.home, "--trash", item, self.home / "Notes/1", "--yes")
            self.assertTrue(any(words in line for line in said), (item, said))
        asked = self.run_program("map", self.home, "--trash", self.home / "Films/film", days_ahead=2)
        self.assertEqual((asked.status, asked.err.splitlines()[-1][:20]), (1, "Nothing was removed:"))
        self.assertEqual(tree_of(self.home), before)

        document = self.document("map", self.home, "--trash", self.home / "Films/film", self.home / "odd/Café",
                                 "--yes", days_ahead=2)
        self.assertEqual([report["itemsCleaned"] for report in document["reports"]], [1, 1])
        self.assertFalse((self.home / "Films/film").exists() or (self.home / "odd/Café").exists())
        self.assertTrue((self.home / "Films/trip").exists())
        self.assertEqual(len(list((self.home / ".local/share/Trash/files").iterdir())), 2)


if __name__ == "__main__":
    unittest.main()
