import datetime
import json
import os
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

    def test_pruning_removes_old_days_with_their_lists(self):
        self.a_whole_run()
        self.record(SECOND, days_ago=92)
        self.details(SECOND, {"plannedPaths": []})
        removed = self.document("log", "prune")
        self.assertEqual(removed["removedFiles"], 2)
        self.assertGreater(removed["removedBytes"], 500)
        self.assertEqual([run["id"] for run in self.document("log")["runs"]], [FIRST])
        self.assertEqual(os.listdir(self.log / "runs"), [f"{FIRST}.jsonl"])
        self.assertEqual(self.document("log", "prune"), {"removedFiles": 0, "removedBytes": 0})


if __name__ == "__main__":
    unittest.main()
