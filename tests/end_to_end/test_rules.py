import concurrent.futures
import json
import subprocess
import unittest

from driver import PROGRAM, ProgramTest

UNREADABLE = """[
  {"action": "shred", "createdAt": "2031-01-01T00:00:00.000Z", "enabled": true,
   "id": "5E7C1A52-0000-4000-8000-00000000000A", "name": "From the future",
   "target": {"path": "/x", "type": "folder"}, "weights": [1e400, 18446744073709551616, 1.0]},
  "not a rule at all"]"""


class RulesTest(ProgramTest):
    def names(self):
        return [rule["name"] for rule in self.document("rule", "list")["rules"]]

    def write_rules(self, text):
        self.data.mkdir(parents=True, exist_ok=True)
        (self.data / "rules.json").write_text(text)

    def test_a_rule_holds_everything_it_was_made_with(self):
        rule = self.add("Old downloads", "--older-than", "30", "--by", "added", "--min-size", "1.5MB",
                        "--include", "*.zip", "[a-c],d", "--exclude", "keep*", "--exclude", "*.key",
                        "--scope", "allFiles", "--delete", "--daily", "09:05", "--weekly", "Monday@7:00", "1@23:59",
                        "--end-of-day", "--below-line", "--when-app-quits", "org.example.App",
                        "--pause-while", "org.example.One", "org.example.Two", "--disabled")
        self.assertEqual(rule["target"], {"type": "folder", "path": str(self.downloads)})
        self.assertEqual(rule["filter"], {
            "minAgeDays": 30, "ageBasis": "added", "minSizeBytes": 1_500_000, "includeGlobs": ["*.zip", "[a-c],d"],
            "excludeGlobs": ["keep*", "*.key"], "scope": "allFiles"})
        self.assertEqual((rule["name"], rule["action"], rule["enabled"]), ("Old downloads", "delete", False))
        self.assertEqual(rule["pauseWhileRunning"], ["org.example.One", "org.example.Two"])
        self.assertCountEqual(rule["triggers"], [
            {"type": "daily", "hour": 9, "minute": 5}, {"type": "weekly", "weekday": 2, "hour": 7, "minute": 0},
            {"type": "weekly", "weekday": 1, "hour": 23, "minute": 59}, {"type": "endOfDay"}, {"type": "belowLine"},
            {"type": "whenAppQuits", "bundleID": "org.example.App"}])
        self.assertNotIn("approval", rule)
        self.assertEqual(self.document("rule", "show", "old DOWNLOADS"), rule)
        self.assertEqual(self.document("rule", "list"), {"rules": [rule], "unreadable": []})
        self.assertEqual(self.rules_file()["rules"], [rule])
        shown = self.succeed("rule", "show", rule["id"]).out
        for words in ("Old downloads", "disabled, not approved", str(self.downloads), "every file in it, at any depth",
                      "added 30 days ago or earlier", "1.5 MB or larger", "named *.zip, [a-c],d",
                      "not named keep*, *.key, nor folders holding such a name", "deletes them for good",
                      "every day at 09:05, every Monday at 07:00, every Sunday at 23:59, at the end of the day",
                      "org.example.One, org.example.Two"):
            self.assertIn(words, shown)

    def test_chosen_files_are_pinned_by_what_they_are(self):
        chosen = self.make("Downloads/film.mkv")
        rule = self.add("One film", "--pin", "film.mkv")
        self.assertEqual(rule["filter"]["scope"], "topLevelFiles")
        (pin,) = rule["filter"]["pinnedFiles"]
        self.assertEqual((pin["name"], pin["inode"]), ("film.mkv", chosen.stat().st_ino))
        self.make("Downloads/sub/deep")
        other = self.make("Downloads/another file")
        (item,) = self.document("preview", "One film", days_ahead=40)["items"]
        self.assertEqual(item["path"], str(chosen))
        other.rename(chosen)
        self.assertEqual(self.document("preview", "One film", days_ahead=40)["items"], [])
        for missing in ("absent", "sub", "sub/deep", "/etc/passwd"):
            self.refuse("rule", "add", "Pin", "--folder", self.downloads, "--pin", missing)

    def test_folders_are_named_as_in_any_shell(self):
        (self.downloads / "deep").mkdir()
        for given in (".", "deep/..", f"{self.downloads}/", "../Downloads"):
            rule = self.document("rule", "add", "Here", "--folder", given, cwd=self.downloads)
            self.assertEqual(rule["target"]["path"], str(self.downloads), given)

    def test_every_problem_is_said_and_nothing_saved(self):
        self.assertEqual(
            self.refuse("rule", "add", " ", "--folder", self.downloads, "--include", "a/b", "--daily", "24:00", "--weekly", "8@09:00"),
            ["Give the rule a name.", "Name patterns match file names only, so they cannot contain \"/\": a/b",
             "A run time is not a time of day.", "A weekly run has a day that does not exist."])
        for folder in (self.home, "/usr/share", "/"):
            self.assertRegex(self.refuse("rule", "add", "A", "--folder", folder)[0], r"\.$")
        self.assertFalse((self.data / "rules.json").exists())

    def test_rules_are_found_by_id_its_beginning_and_name(self):
        ids = {self.add(name)["id"]: name for name in ("First", "Second", "second", "Üben", "evil\x1b[2J\nname")}
        for identifier, name in ids.items():
            for wanted in (identifier, identifier.lower(), identifier[:12]):
                self.assertEqual(self.document("rule", "show", wanted)["name"], name)
        self.assertEqual(self.document("rule", "show", "U\u0308BEN")["name"], "Üben")
        self.assertEqual(len(self.refuse("rule", "show", "SECOND")), 3)
        for nothing in ("", "third", "00000000-0000-4000-8000-000000000000"):
            self.assertEqual(self.refuse("rule", "show", nothing), [f'There is no rule "{nothing}".'])
        self.assertIn(r"evil\x1b[2J\nname", self.succeed("rule", "list").out)

    def test_rules_move_and_go(self):
        for name in "xyz":
            self.add(name)
        for wanted, position, order in (("x", 2, "yxz"), ("z", 1, "zyx"), ("z", 3, "yxz")):
            self.succeed("rule", "move", wanted, str(position))
            self.assertEqual("".join(self.names()), order)
        for position in ("0", "4"):
            self.refuse("rule", "move", "x", position)
        self.assertEqual(self.document("rule", "remove", "x")["name"], "x")
        self.assertEqual(self.names(), ["y", "z"])

    def test_an_enabled_rule_counts_from_now_on(self):
        rule = self.add("Daily", "--daily", "09:05", "--end-of-day", "--disabled")
        self.assertEqual(self.rules_file()["schedule"]["lastRun"], {})
        self.assertTrue(self.document("rule", "enable", "Daily")["enabled"])
        self.assertEqual(set(self.rules_file()["schedule"]["lastRun"]),
                         {rule["id"] + "/daily:09:05", rule["id"] + "/endOfDay"})
        self.assertFalse(self.document("rule", "disable", "Daily")["enabled"])

    def test_a_rule_is_checked_against_the_disk_as_it_is_now(self):
        self.add("Old")
        self.assertEqual(self.document("rule", "check", "Old"), {"problems": []})
        (self.home / "Documents").mkdir()
        self.downloads.rmdir()
        self.downloads.symlink_to(self.home / "Documents")
        result = self.run_program("--json", "rule", "check", "Old")
        self.assertEqual(result.status, 1, result)
        self.assertEqual("\n".join(result.document["problems"]) + "\n", result.err)
        self.downloads.unlink()
        result = self.run_program("--json", "rule", "check", "Old")
        self.assertEqual((result.status, result.document["problems"]),
                         (1, ["The folder does not exist, or the rule has no folder. Edit the rule and choose one."]))

    def test_rules_that_cannot_be_read_are_shown_and_outlive_every_save(self):
        self.write_rules('{"rules": ' + UNREADABLE + ', "schedule": {"lastRun": {}}, "since": 7}')
        self.add("New")
        self.succeed("rule", "disable", "New")
        shown = self.succeed("rule", "list").out
        self.assertIn("2 rules could not be read", shown)
        self.assertIn("From the future", shown)
        stored = (self.data / "rules.json").read_text()
        for verbatim in ("1e400", "18446744073709551616", "1.0", '"since": 7'):
            self.assertIn(verbatim, stored)
        self.assertEqual(self.document("rule", "list")["unreadable"], json.loads(UNREADABLE))
        self.assertEqual(self.document("rule", "discard-unreadable"), {"discarded": 2})
        self.assertEqual((self.document("rule", "list")["unreadable"], self.names()), ([], ["New"]))

    def test_a_damaged_rule_book_is_moved_aside_and_said_so(self):
        self.write_rules('{"rules": [')
        result = self.run_program("--json", "rule", "list")
        self.assertEqual((result.status, result.document), (0, {"rules": [], "unreadable": []}))
        (aside,) = self.data.glob("rules.corrupt-*.json")
        self.assertEqual(aside.read_text(), '{"rules": [')
        (notice,) = result.err.splitlines()
        self.assertIn(aside.name, notice)
        self.succeed("rule", "list")

    @unittest.skipUnless(subprocess.run(["sh", "-c", "unshare -rm true"], check=False, capture_output=True).returncode
                         == 0, "wants mounts of its own")
    def test_reading_wants_nothing_written(self):
        rule = self.add("Old")

        def read_only(*arguments):
            script = 'mount --bind "$0" "$0" && mount -o remount,ro,bind "$0" && exec "$@"'
            command = ["unshare", "-rm", "sh", "-c", script, self.data, PROGRAM, "--home", self.home, *arguments]
            return subprocess.run(command, check=False, capture_output=True, text=True)

        listed = read_only("--json", "rule", "list")
        self.assertEqual((listed.returncode, json.loads(listed.stdout)["rules"]), (0, [rule]), listed)
        self.assertIn("Read-only file system", read_only("rule", "disable", "Old").stderr)
        (self.data / "rules.json").write_text("damaged")
        (self.data / "state.lock").unlink()
        self.assertIn("could not be moved aside", read_only("rule", "list").stderr)
        self.assertEqual([path.name for path in self.data.iterdir()], ["rules.json"])

    def test_programs_at_the_same_time_lose_no_rule(self):
        names = [f"rule {number}" for number in range(12)]
        with concurrent.futures.ThreadPoolExecutor(6) as pool:
            list(pool.map(self.add, names))
        self.assertCountEqual(self.names(), names)


if __name__ == "__main__":
    unittest.main()
