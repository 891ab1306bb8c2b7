import json
import os
import pathlib
import signal
import time
import unittest

from driver import LATER, ProgramTest, tree_of


class CleanTest(ProgramTest):
    def clean(self, name="Old", *options, **more):
        return self.run_program("--json", "clean", name, "--yes", *options, days_ahead=LATER, **more)

    def test_what_the_preview_shows_goes_and_nothing_else(self):
        for path in ("film.mkv", "project/src/main.c", "kept.key", "holds/a.key"):
            self.make(f"Downloads/{path}", 5_000)
        self.make("victim/precious")
        (self.downloads / "link").symlink_to(self.home / "victim")
        for action, status in (("--trash", "trashed"), ("--delete", "deleted")):
            self.add(f"Old {status}", action, "--exclude", "*.key")
            preview = self.document("preview", f"Old {status}", days_ahead=LATER)
            result = self.clean(f"Old {status}")
            self.assertEqual((result.status, result.err), (0, ""), result)
            report = result.document
            self.assertEqual(report["plannedPaths"], [each["path"] for each in preview["items"]])
            self.assertEqual({(each["path"], each["status"]) for each in report["outcomes"]},
                             {(each["path"], status) for each in preview["items"]})
            self.assertEqual(report["deletedBytes"] + report["movedToTrashBytes"], preview["totalBytes"])
            self.assertEqual({path.name for path in self.downloads.iterdir()}, {"kept.key", "holds", "link"})
            shown = self.succeed("log", "show", report["id"][:8], days_ahead=LATER).out
            for each in report["outcomes"]:
                self.assertIn("~/Downloads/" + pathlib.Path(each["path"]).name, shown)
                if action == "--trash":
                    self.assertTrue(pathlib.Path(each["trashPath"]).exists())
                    self.assertIn(pathlib.Path(each["trashPath"]).name, shown)
            for path in ("film.mkv", "project/src/main.c"):
                self.make(f"Downloads/{path}", 5_000)
        self.assertTrue((self.home / "victim/precious").exists())

    def test_nothing_is_removed_unasked(self):
        self.make("Downloads/film.mkv")
        rule = self.add("Old", "--delete")
        before = tree_of(self.downloads)
        self.assertEqual(self.run_program("clean", "Old", days_ahead=LATER).status, 1)
        self.assertEqual(self.run_program("clean-now", "--yes", days_ahead=LATER).err,
                         "No rule is approved. Preview a rule and approve it first.\n")
        self.assertEqual(self.clean().document["status"], "finished")
        self.make("Downloads/film.mkv")
        before = tree_of(self.downloads)
        self.succeed("rule", "disable", "Old")
        self.assertEqual(self.clean().err, "Not run. The rule is off.\n")
        self.assertEqual(tree_of(self.downloads), before)
        self.succeed("rule", "enable", "Old")
        self.succeed("preview", "Old", "--approve", days_ahead=LATER)
        reports = self.document("clean-now", "--yes", days_ahead=LATER)["reports"]
        self.assertEqual([(each["ruleID"], each["trigger"], each["itemsCleaned"]) for each in reports],
                         [(rule["id"], "cleanNow", 1)])
        self.make("Downloads/film.mkv")
        self.assertIn("Old  less than 1 MB, deleted for good", self.succeed("clean-now", "--yes", days_ahead=LATER).out)
        self.assertIn("Nothing matched.", self.succeed("clean-now", days_ahead=LATER).out)
        self.downloads.rename(self.home / "elsewhere")
        result = self.run_program("--json", "clean-now", "--yes", days_ahead=LATER)
        self.assertEqual((result.status, result.document["reports"]), (1, []))
        self.assertIn("Old: The folder does not exist", result.err)

    def test_ctrl_c_stops_between_entries_and_is_recorded(self):
        self.make_many(20_000)
        self.add("Old", "--delete")
        with self.start("--json", "clean", "Old", "--yes", days_ahead=LATER) as program:
            while len(os.listdir(self.downloads / "many")) == 50 and program.poll() is None:
                time.sleep(0.001)
            program.send_signal(signal.SIGINT)
            out, err = program.communicate(timeout=120)
        report = json.loads(out)
        self.assertEqual((program.returncode, report["status"]), (1, "stopped"), err)
        self.assertIn("Stopped before it finished.", report["messages"])
        left = sum(1 for path in (self.downloads / "many").rglob("*") if path.is_file())
        (outcome,) = report["outcomes"]
        self.assertEqual((outcome["status"], outcome["removedFiles"] + left), ("partlyDeleted", 20_000))
        self.assertEqual(self.clean().document["itemsCleaned"], 1)


if __name__ == "__main__":
    unittest.main()
