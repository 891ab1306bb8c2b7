import datetime
import json
import unittest

from driver import ProgramTest

NOW = datetime.datetime.now(datetime.timezone.utc)
FIRST = "0F1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0"
SECOND = "0F1E77AA-4B5A-6978-8796-A5B4C3D2E1F0"
THIRD = "AA1E2D3C-4B5A-6978-8796-A5B4C3D2E1F0"


class LogTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.log = self.data / "Log"
        (self.log / "runs").mkdir(parents=True)

    def record(self, run, days_ago=0, **fields):
        """Appends a record to the day of its start and returns it."""
        at = NOW - datetime.timedelta(days=days_ago)
        record = {
            "action": "trash", "deletedBytes": 0, "id": run, "itemsCleaned": 0, "itemsFailed": 0, "itemsLeftAlone": 0,
            "itemsNotAttempted": 0, "itemsPartlyDeleted": 0, "messages": [], "movedToTrashBytes": 0, "outcomes": [],
            "outcomesNotLogged": False, "outcomesOmitted": 0, "plannedBytes": 0, "plannedItems": 0, "plannedPaths": [],
            "plannedPathsNotLogged": False, "plannedPathsOmitted": 0, "rootPaths": [str(self.downloads)],
            "ruleID": THIRD, "ruleName": "Old downloads", "startedAt": at.strftime("%Y-%m-%dT%H:%M:%S.500Z"),
            "status": "started", "trigger": "schedule", "version": 1,
        } | fields
        with open(self.log / f"{at.astimezone():%Y-%m-%d}.jsonl", "a", encoding="utf-8") as day:
            day.write(json.dumps(record) + "\n")
        return record

    def details(self, run, *lines):
        text = "".join(json.dumps({"id": run, "version": 1} | line) + "\n" for line in lines)
        (self.log / "runs" / f"{run}.jsonl").write_text(text)

    def a_whole_run(self):
        film, letter = str(self.downloads / "film.mkv"), str(self.downloads / "letter")
        planned = {"plannedItems": 2, "plannedBytes": 7_000_000, "plannedPaths": [film, letter]}
        self.record(FIRST, days_ago=1, **planned)
        outcomes = [{"bytes": 5_000_000, "path": film, "status": "trashed", "trashPath": "/trash/film.mkv"},
                    {"bytes": 2_000_000, "path": letter, "status": "changed",
                     "message": "It changed after the preview, so Vostrel left it alone."}]
        ended = self.record(FIRST, days_ago=1, status="finished", finishedAt="2031-01-01T10:00:00.500Z", itemsCleaned=1,
                            itemsLeftAlone=1, movedToTrashBytes=5_000_000, outcomes=outcomes, **planned)
        self.details(FIRST, {"plannedPaths": planned["plannedPaths"]}, {"outcomes": outcomes})
        return ended

    def test_the_log_lists_what_became_of_each_run(self):
        self.assertEqual(self.succeed("log").out, "No rule has run yet.\n")
        ended = self.a_whole_run()
        self.record(SECOND, days_ago=3)
        skipped = self.record(THIRD, status="skipped", skipReason="rootProblem", messages=["The folder is gone."])
        runs = self.document("log")["runs"]
        self.assertEqual([run["id"] for run in runs], [THIRD, FIRST, SECOND])
        without_lists = {key: value for key, value in ended.items() if key not in ("plannedPaths", "outcomes")}
        self.assertEqual(runs[1], without_lists)
        self.assertEqual(self.document("log", "--limit", "1")["runs"][0]["id"], skipped["id"])
        shown = self.succeed("log").out.splitlines()
        self.assertEqual(len(shown), 3)
        for line, words in zip(shown, ("There is a problem with the folder.", "Moved 5.0 MB to the Trash.",
                                       "Did not finish. Vostrel stopped during this run. Check the folder and the "
                                       "Trash.")):
            self.assertIn(words, line)
        self.assertIn("The folder is gone.", self.succeed("log", "show", "aa").out)

    def test_one_run_tells_where_everything_is_now(self):
        ended = self.a_whole_run()
        self.record(SECOND, plannedItems=1, plannedBytes=4, plannedPaths=[str(self.downloads / "half.iso")])
        self.assertEqual(self.document("log", "show", FIRST.lower()[:6]), ended)
        shown = self.succeed("log", "show", FIRST).out
        for words in ("~/Downloads/film.mkv", "moved to /trash/film.mkv", "~/Downloads/letter", "1 left alone",
                      "It changed after the preview, so Vostrel left it alone."):
            self.assertIn(words, shown)
        self.assertLess(shown.index("Moved to the Trash:"), shown.index("Left alone, because it changed:"))

        (self.log / "runs" / f"{FIRST}.jsonl").unlink()
        self.assertEqual(self.document("log", "show", FIRST), ended, "the record has the lists as well")
        self.assertIn("It was to remove:\n  ~/Downloads/half.iso\n", self.succeed("log", "show", SECOND).out)
        self.assertEqual(self.refuse("log", "show", "bb"), ['The log has no run "bb".'])
        self.assertEqual(len(self.refuse("log", "show", "0f1e")), 3)


if __name__ == "__main__":
    unittest.main()

    def test_what_vostrel_keeps_is_nobodys_prey(self):
        self.record(FIRST, days_ago=1)
        refusal, = self.refuse("rule", "add", "Own", "--folder", self.log, "--delete")
        self.assertIn("Vostrel never cleans inside ~/.local/share/vostrel", refusal)
        data = self.downloads / "junk/data"
        self.add("Junk", "--scope", "allFiles", "--delete")
        self.make("Downloads/junk/old")
        arguments = ("--data", data, "rule", "add", "Junk", "--folder", self.downloads, "--delete")
        self.succeed(*arguments, "--scope", "allFiles")
        result = self.run_program("--data", data, "clean", "Junk", "--yes", days_ahead=40)
        self.assertEqual(result.status, 0, result)
        self.assertTrue((data / "rules.json").exists() and not (self.downloads / "junk/old").exists())
        # The lock is a file of its own, and no other file is written for it.
        for stand_in, error in ((lambda lock: os.link(self.make("precious", text="kept"), lock), "Too many links"),
                                (os.mkfifo, "Invalid argument")):
            self.make("Downloads/film.mkv")
            (self.data / "run.lock").unlink(missing_ok=True)
            stand_in(self.data / "run.lock")
            result = self.run_program("clean", "Junk", "--yes", days_ahead=40)
            self.assertEqual((result.status, result.err),
                             (1, f"Vostrel could not open its run lock ({error})\n"))
            self.run_program("log")
        self.assertEqual((self.home / "precious").read_text(), "kept")

    def test_a_log_that_cannot_be_read_is_not_an_empty_one(self):
        self.record(FIRST)
        day, = self.log.glob("*.jsonl")
        os.truncate(day, (1 << 30) + 1)
        self.assertEqual(self.run_program("log").err, f"The log cannot be read: ~/{day.relative_to(self.home)}\n")
        self.refuse("log", "--limit", "0", status=2)
