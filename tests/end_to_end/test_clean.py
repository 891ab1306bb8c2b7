import json
import os
import pathlib
import random
import signal
import subprocess
import threading
import time
import unittest

from driver import PROGRAM, ProgramTest, clock_ahead, tree_of

LATER = 40
ROUNDS = int(os.environ.get("VOSTREL_ROUNDS", "1"))


class CleanTest(ProgramTest):
    def clean(self, name="Old", *options, **more):
        return self.run_program("--json", "clean", name, "--yes", *options, days_ahead=LATER, **more)

    def started(self, name="Old", *options):
        """The program at work, to be disturbed."""
        environment = {key: value for key, value in os.environ.items() if not key.startswith("XDG_")}
        environment |= clock_ahead(LATER)
        return subprocess.Popen([PROGRAM, "--home", self.home, "--json", "clean", name, "--yes", *options],
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=environment, text=True)

    def wait_for_a_run(self, program, number):
        """Until the program has recorded that it begins its run."""
        while len(list(self.data.glob("Log/runs/*"))) < number and program.poll() is None:
            time.sleep(0.001)

    def wide_folder(self, files):
        for number in range(files):
            (self.downloads / f"many/{number % 50}").mkdir(parents=True, exist_ok=True)
            (self.downloads / f"many/{number % 50}/{number}").write_bytes(b"x")

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

    def test_nothing_is_removed_unasked_or_without_its_record(self):
        self.make("Downloads/film.mkv")
        rule = self.add("Old", "--delete")
        before = tree_of(self.downloads)
        self.assertEqual(self.run_program("clean", "Old", days_ahead=LATER).status, 1)
        self.assertEqual(self.run_program("clean-now", "--yes", days_ahead=LATER).err,
                         "No rule is approved. Preview a rule and approve it first.\n")
        self.assertEqual(self.clean().document["status"], "finished")
        self.make("Downloads/film.mkv")
        before = tree_of(self.downloads)
        (self.data / "Log").rename(self.data / "Log.before")
        (self.data / "Log").write_text("no folder")
        result = self.clean()
        self.assertEqual((result.status, result.document["skipReason"]), (1, "logUnavailable"))
        self.assertEqual(result.err, "Vostrel could not record this run, so it did not remove anything.\n")
        (self.data / "Log").unlink()
        self.succeed("rule", "disable", "Old")
        self.assertEqual(self.clean().err, "Not run. The rule is off.\n")
        self.assertEqual(tree_of(self.downloads), before)
        self.succeed("rule", "enable", "Old")
        self.succeed("preview", "Old", "--approve", days_ahead=LATER)
        reports = self.document("clean-now", "--yes", days_ahead=LATER)["reports"]
        self.assertEqual([(each["ruleID"], each["trigger"], each["itemsCleaned"]) for each in reports],
                         [(rule["id"], "cleanNow", 1)])

    def test_ctrl_c_stops_between_entries_and_is_recorded(self):
        self.wide_folder(20_000)
        self.add("Old", "--delete")
        with self.started() as program:
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

    def test_a_killed_run_shows_as_not_finished_and_the_next_one_works(self):
        chance = random.Random(7)
        self.add("Old", "--delete")
        interrupted = 0
        for _ in range(4 * ROUNDS):
            self.wide_folder(3_000)
            self.make("beside/precious")
            before = tree_of(self.home / "beside")
            with self.started() as program:
                self.wait_for_a_run(program, len(list(self.data.glob("Log/runs/*"))) + 1)
                time.sleep(chance.random() * 0.05)
                program.kill()
                program.communicate()
            interrupted += program.returncode == -signal.SIGKILL
            runs = self.document("log", "--limit", "1", days_ahead=LATER)["runs"]
            if runs and runs[0]["status"] == "started":
                self.assertIn("Did not finish. Vostrel stopped during this run. Check the folder and the Trash.",
                              self.succeed("log", days_ahead=LATER).out)
            self.assertEqual(tree_of(self.home / "beside"), before)
            report = self.clean().document
            self.assertIn(report.get("skipReason", "finished") if report["status"] == "skipped" else report["status"],
                          ("finished", "nothingToClean"))
            self.assertEqual(list(self.downloads.iterdir()), [])
        self.assertGreater(interrupted, 0)

    def test_an_attacker_who_swaps_folders_for_links_gains_nothing(self):
        victim = self.home / "victim"
        for number in range(20):
            self.make(f"victim/deep/{number}")
        before = tree_of(victim)
        self.add("Old", "--delete")
        places = ("Downloads", "Downloads/many", "Downloads/many/7")
        for each in range(6 * ROUNDS):
            self.wide_folder(2_000)
            place = self.home / places[each % len(places)]
            away = self.home / "away"
            is_over = threading.Event()

            def swap(place=place, away=away, is_over=is_over):
                while not is_over.is_set():
                    try:
                        place.rename(away)
                        place.symlink_to(victim)
                        place.unlink()
                        away.rename(place)
                    except OSError:
                        pass

            attacker = threading.Thread(target=swap)
            attacker.start()
            try:
                self.clean()
            finally:
                is_over.set()
                attacker.join()
            self.assertEqual(tree_of(victim), before)
            if away.exists():
                subprocess.run(["rm", "-rf", away], check=True)
            if place.is_symlink():
                place.unlink()
            self.downloads.mkdir(exist_ok=True)


if __name__ == "__main__":
    unittest.main()
