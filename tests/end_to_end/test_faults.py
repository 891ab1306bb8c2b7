"""The real program under attack, killed, and on disks that fail: what no preview showed is whole afterwards, and the log
tells the truth."""

import collections
import contextlib
import ctypes
import fcntl
import json
import os
import random
import shutil
import signal
import sys
import threading
import time
import unittest

from driver import CALLS, LATER, ROUNDS, ProgramTest, tree_of

INTERRUPTED = "Did not finish. Vostrel stopped during this run. Check the folder and the Trash."
RENAME_EXCHANGE = 2
libc = ctypes.CDLL(None, use_errno=True)


class FaultsTest(ProgramTest):
    is_sentence_seen = False

    def setUp(self):
        super().setUp()
        self.trash = self.home / ".local/share/Trash/files"
        self.make("beside/precious")
        self.victim = self.make("Documents/victim/precious").parent

    def clean(self, rule="Old", **options):
        return self.run_program("--json", "clean", rule, "--yes", days_ahead=LATER, **options)

    def start_cleaning(self, rule="Old"):
        self.runs = len(list(self.data.glob("Log/runs/*")))
        return self.start("--json", "clean", rule, "--yes", days_ahead=LATER)

    def wait_for_record(self, program):
        """Until the program has recorded that it begins to remove."""
        while len(list(self.data.glob("Log/runs/*"))) == self.runs and program.poll() is None:
            time.sleep(0.001)

    def untouched(self):
        return tree_of(self.home / "beside") | tree_of(self.victim)

    def empty_downloads(self):
        for path in (self.downloads, self.home / ".local/share/Trash"):
            if path.is_symlink():
                path.unlink()
            shutil.rmtree(path, ignore_errors=True)
        self.downloads.mkdir()

    @unittest.skipUnless(hasattr(libc, "renameat2"), "wants to exchange two names in one step")
    def test_an_attacker_who_swaps_folders_for_links_gains_nothing(self):
        # Wherever a link to it is put, the victim has the names that the program is about to remove.
        for place in ("many/7", "7", "."):
            for number in range(57, 250, 50):
                self.make(f"Documents/victim/{place}/{number}")
        before = self.untouched()
        for scope in ("topLevelItems", "allFiles"):
            for action in ("delete", "trash"):
                self.add(f"{scope} {action}", f"--{action}", "--scope", scope)
        cases = [(f"{scope} {action}", self.downloads / swapped, since)
                 for scope, places in (("topLevelItems", (".", "many", "many/7")),
                                       ("allFiles", (".", "many/7", "many/7/57")))
                 for swapped in places for action in ("delete", "trash") for since in ("the start", "the removal")]
        seen = collections.Counter()
        for rule, swapped, since in cases * ROUNDS:
            self.make_many(250)
            with Attacker(swapped, self.victim, self.folder / "lure") as attacker:
                with self.start_cleaning(rule) as program:
                    if since == "the removal":
                        self.wait_for_record(program)
                    attacker.begin()
                    out, err = program.communicate(timeout=120)
            self.assertEqual(self.untouched(), before, (rule, swapped, out, err))
            report = json.loads(out)
            seen.update(each["status"] for each in report.get("outcomes", []))
            seen[report.get("status", "not planned")] += 1
            seen["swaps"] += attacker.swaps
            self.empty_downloads()
        if ROUNDS > 1:
            print(len(cases) * ROUNDS, "attacks:", dict(seen), file=sys.stderr)
        self.assertGreater(seen["swaps"], len(cases))
        for proof in ("deleted", "trashed", "finished"):
            self.assertGreater(seen[proof], 0, "nothing was removed at all, so nothing was proven")

    @unittest.skipUnless(CALLS, "wants what stands before the system's calls")
    def test_a_kill_at_each_durable_step_leaves_a_true_log_and_loses_nothing(self):
        for action in ("--delete", "--trash"):
            shutil.rmtree(self.data, ignore_errors=True)
            self.add("Old", action, "--exclude", "*.key")
            step = 0
            while True:
                step += 1
                self.empty_downloads()
                planned = [self.make(f"Downloads/{path}") for path in ("file", "folder/a", "folder/sub/b", "last")]
                kept = self.make("Downloads/kept.key")
                before = self.untouched() | {kept: kept.lstat()}
                result = self.clean(environment={"VOSTREL_TEST_FAULT": f"durable {step} -1 once"})
                if result.status != -signal.SIGKILL:
                    self.assertEqual(result.document["status"], "finished", result)
                    break
                self.assertEqual(self.untouched() | {kept: kept.lstat()}, before)
                gone = [path for path in planned if not path.exists()]
                self.check_interrupted_log(gone)
                names = {path.name for path in self.trash.rglob("*")} if action == "--trash" else set()
                self.assertEqual([path for path in gone if path.name not in names],
                                 [] if action == "--trash" else gone)
                is_done = os.listdir(self.downloads) == ["kept.key"]
                report = self.clean().document
                self.assertEqual(report.get("skipReason", report["status"]),
                                 "nothingToClean" if is_done else "finished")
                self.assertEqual(os.listdir(self.downloads), ["kept.key"])
            self.assertGreater(step, 15)

    def check_interrupted_log(self, gone):
        """What is gone was announced before, and a run that was cut off is not told as one that ended."""
        runs = self.document("log", days_ahead=LATER)["runs"]
        if not runs or runs[0]["status"] != "started":
            self.assertTrue(not gone or runs[0]["status"] == "finished", runs)
            return
        if not self.is_sentence_seen:
            self.assertIn(INTERRUPTED, self.succeed("log", days_ahead=LATER).out)
        self.is_sentence_seen = True
        announced = self.document("log", "show", runs[0]["id"], days_ahead=LATER)["plannedPaths"]
        for path in gone:
            self.assertTrue(any(path.is_relative_to(each) for each in announced), (path, announced))

    def test_kills_at_random_moments_of_a_wide_deletion_lose_nothing_else(self):
        chance = random.Random(7)
        self.add("Old", "--delete", "--exclude", "*.key")
        self.make_many(50_000 if ROUNDS > 1 else 10_000)
        self.make("Downloads/kept.key")
        before = self.untouched()
        kills = 0
        while (self.downloads / "many").exists():
            with self.start_cleaning() as program:
                self.wait_for_record(program)
                time.sleep(chance.random() * 0.05 * (kills + 1))  # so that it ends on a busy machine too
                program.kill()
                program.communicate()
            kills += program.returncode == -signal.SIGKILL
            self.assertEqual(self.untouched(), before)
            self.check_interrupted_log([])
        self.assertGreater(kills, 1)
        self.assertEqual(os.listdir(self.downloads), ["kept.key"])
        self.assertEqual(self.clean().document["skipReason"], "nothingToClean")

    @unittest.skipUnless(CALLS, "wants what stands before the system's calls")
    def test_whoever_removes_outside_the_folder_of_a_test_is_ended(self):
        self.add("Old", "--delete")
        file = self.make("Downloads/file")
        result = self.clean(environment={"VOSTREL_TEST_FOLDER": str(self.folder / "another")})
        self.assertEqual((result.status, file.exists()), (-signal.SIGABRT, True), result)
        self.assertIn(f"A test would have removed or renamed {file}", result.err)

    def test_a_run_that_cannot_be_recorded_or_is_not_alone_removes_nothing(self):
        self.make("Downloads/folder/file")
        self.add("Old", "--delete")
        before = tree_of(self.downloads)
        log, lock = self.data / "Log", self.data / "run.lock"

        @contextlib.contextmanager
        def standing_as(path, kind):
            path.unlink(missing_ok=True)
            path.mkdir() if kind == "folder" else path.write_text("")
            try:
                yield
            finally:
                path.rmdir() if kind == "folder" else path.unlink()

        @contextlib.contextmanager
        def held(path):
            with path.open("w") as file:
                fcntl.flock(file, fcntl.LOCK_EX)
                yield

        cannot_record = "Vostrel could not record this run, so it did not remove anything."
        cases = [
            ("logUnavailable", cannot_record, standing_as(log, "file"), {}),
            ("lockUnavailable", "Vostrel could not open its run lock (Is a directory)", standing_as(lock, "folder"), {}),
            ("anotherRunActive", "Not run. Another clean was running.", held(lock), {}),
        ] + [("logUnavailable", cannot_record, contextlib.nullcontext(), {"VOSTREL_TEST_FAULT": fault})
             for fault in ("write 2 28 forever", "fsync 1 5 forever", "mkdirat 1 13 forever") if CALLS]
        for reason, sentence, fault, environment in cases:
            shutil.rmtree(log, ignore_errors=True)
            with self.subTest(reason=reason, environment=environment), fault:
                result = self.clean(environment=environment)
                self.assertEqual((result.status, result.document["skipReason"]), (1, reason), result)
                self.assertEqual(result.err, sentence + "\n")
                self.assertEqual(tree_of(self.downloads), before)
        if CALLS:
            # A disk on which not even a lock can be made.
            result = self.clean(environment={"VOSTREL_TEST_FAULT": "growing 1 28 forever"})
            self.assertIn("No space left on device", result.err)
            self.assertEqual(tree_of(self.downloads), before)
        self.assertEqual(self.clean().document["status"], "finished")

    def test_a_rule_that_changes_in_mid_run_stops_it(self):
        self.add("Old", "--delete")
        for change, stops in ((("settings", "set", "paused", "true"), False), (("rule", "disable", "Old"), True),
                              (("rule", "enable", "Old"), False), (("rule", "remove", "Old"), True)):
            self.succeed("rule", "enable", "Old")
            with self.subTest(change=change):
                self.make_many(5_000)
                with self.start_cleaning() as program:
                    while len(os.listdir(self.downloads / "many")) == 50 and program.poll() is None:
                        time.sleep(0.001)
                    program.send_signal(signal.SIGSTOP)
                    self.run_program(*change)
                    time.sleep(0.6)
                    program.send_signal(signal.SIGCONT)
                    out, err = program.communicate(timeout=120)
                report = json.loads(out)
                self.assertEqual(report["status"], "stopped" if stops else "finished", err)
                if stops:
                    self.assertEqual(report["messages"], ["Stopped because the rule changed."])
                    self.assertTrue((self.downloads / "many").exists())
                self.empty_downloads()


class Attacker:
    """Exchanges a file or folder with a link to a victim, over and over, so that at each moment one of them is there."""

    def __init__(self, place, victim, lure):
        self.place, self.lure = place, lure
        self.swaps = 0
        self.is_over = threading.Event()
        self.thread = threading.Thread(target=self.swap)
        lure.symlink_to(victim)

    def swap(self):
        while not self.is_over.is_set():
            failed = libc.renameat2(-100, bytes(self.place), -100, bytes(self.lure), RENAME_EXCHANGE)
            self.swaps += failed == 0
            time.sleep(random.random() * 0.002)

    def begin(self):
        self.thread.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.is_over.set()
        self.thread.join()
        # What was exchanged last lies here or there, or in the Trash with the folder around it.
        for path in (self.lure, self.place):
            if path.is_dir() and not path.is_symlink():
                shutil.rmtree(path)
            else:
                path.unlink(missing_ok=True)


if __name__ == "__main__":
    unittest.main()
