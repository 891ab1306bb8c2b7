import fcntl
import json
import os
import pathlib
import select
import shutil
import signal
import stat
import subprocess
import time
import unittest

from driver import LATER, PROGRAM, ProgramTest, tree_of


class PreviewTest(ProgramTest):
    def preview(self, *options, days_ahead=LATER):
        return self.document("preview", "Old", *options, days_ahead=days_ahead)

    def test_a_preview_is_true_and_changes_nothing(self):
        for path, size in (("film.mkv", 3_000_000), ("small.txt", 10), ("project/src/main.c", 5_000),
                           ("project/model.bin", 700_000), ("taxes/2019.pdf", 1_000), ("my.key", 1_000),
                           ("taxes/deep/er/secret.key", 1_000), ("Wedding.photoslibrary/database", 1_000)):
            self.make(f"Downloads/{path}", size)
        os.link(self.downloads / "project/model.bin", self.downloads / "project/again.bin")
        os.link(self.downloads / "project/model.bin", self.home / "outside.bin")
        (self.downloads / "link").symlink_to("/etc")
        (self.downloads / "project/link").symlink_to("/etc/passwd")

        rule = self.add("Old", "--exclude", "*.key")
        before = tree_of(self.downloads)
        plan = self.preview()
        items = {pathlib.Path(each["path"]): each for each in plan["items"]}
        self.assertEqual({path.name for path in items}, {"film.mkv", "project", "small.txt"})
        self.assertEqual({pathlib.Path(each["path"]).name: each["reason"] for each in plan["skipped"]},
                         {"link": "symlink", "taxes": "containsExcluded", "Wedding.photoslibrary": "protected"})
        files = [entry.lstat() for path in items for entry in (path, *path.rglob("*"))]
        on_disk = {each.st_ino: each.st_blocks * 512 for each in files if stat.S_ISREG(each.st_mode)}
        self.assertEqual(plan["totalBytes"], sum(on_disk.values()))
        self.assertEqual(plan["totalBytes"], sum(each["bytes"] for each in plan["items"]))
        self.assertEqual(items[self.downloads / "project"]["fileCount"], 2)  # a second name is no second file
        self.assertEqual((plan["ruleID"], plan["approved"]), (rule["id"], False))
        (root,) = plan["roots"]
        self.assertEqual((root["path"], root["inode"]), (str(self.downloads), self.downloads.stat().st_ino))
        self.assertEqual(tree_of(self.downloads), before)
        self.assertEqual(self.rules_file()["rules"], [rule])
        shown = self.succeed("preview", "Old", days_ahead=LATER).out
        for words in ("Would go to the Trash", "~/Downloads/film.mkv", "3.0 MB", "3.7 MB in all: 3 items",
                      "1 item that is a link", "1 item holding names you excluded",
                      "Vostrel never cleans photo, music or video libraries, disk images or backups."):
            self.assertIn(words, shown)

        plan = self.preview(days_ahead=None)
        self.assertEqual((plan["items"], {each["reason"] for each in plan["skipped"]}),
                         ([], {"tooRecent", "symlink", "containsExcluded", "protected"}))
        self.assertIn("Nothing would go now.", self.succeed("preview", "Old").out)

    def test_an_approval_lasts_as_long_as_rule_and_folder(self):
        self.make("Downloads/film.mkv")
        self.add("Old", "--older-than", "30", "--daily", "09:05")
        self.assertTrue(self.preview("--approve")["approved"])
        self.assertTrue(self.preview()["approved"])
        self.assertIn("approved", self.succeed("rule", "list").out)
        self.downloads.rename(self.home / "moved away")
        shutil.copytree(self.home / "moved away", self.downloads, symlinks=True)
        self.assertFalse(self.preview()["approved"])
        for command in (["rule", "list"], ["rule", "show", "Old"]):
            self.assertIn("its folders changed since it was approved", self.succeed(*command).out)

    def test_only_what_was_shown_is_approved(self):
        self.add("x" * 100_000)  # more than a pipe takes, so that the program waits in the middle of its preview
        ours, theirs = os.pipe()
        command = [PROGRAM, "--home", self.home, "preview", "x" * 100_000, "--approve"]
        with open("/dev/full", "wb") as full:
            self.assertEqual(subprocess.run(command, stdout=full, stderr=subprocess.DEVNULL, check=False).returncode, 1)
        with subprocess.Popen(command, stdout=theirs, stderr=subprocess.PIPE) as program:
            os.close(theirs)
            select.select([ours], [], [])
            program.send_signal(signal.SIGINT)
            with open(ours, "rb") as shown:
                self.assertNotIn(b"Approved", shown.read())
            self.assertEqual(program.stderr.read(), b"Stopped before it finished.\n")
        self.assertEqual(program.returncode, 1)
        self.assertNotIn("approval", self.rules_file()["rules"][0])

    def test_the_command_that_it_advises_acts_in_the_same_places(self):
        for rule, name in enumerate(("Ann's home", "Ann's\nne\\w \u202ehome1", os.fsdecode(b"'\xff'\t0"))):
            self.home = self.home.rename(self.folder / name)
            added = self.succeed("rule", "add", f"Rule {rule}", "--folder", self.home / "Downloads").out
            for shown in (added, self.succeed("preview", f"Rule {rule}").out):
                (advice,) = [line for line in shown.splitlines() if "--approve" in line]
                read = subprocess.run(["bash", "-c", f"printf '%s\\0' {advice}"], check=True, capture_output=True)
                words = os.fsdecode(read.stdout).split("\0")[:-1]
                self.assertEqual(words[-2:], ["--home", str(self.home)])
            self.assertIn("Approved", self.succeed(*words[1:-2]).out)

    def test_only_a_rule_that_runs_by_itself_is_said_to(self):
        for options, words in (([], "has no trigger"), (["--end-of-day", "--disabled"], "disabled"),
                               (["--daily", "09:05"], "may do this by itself")):
            rule = self.add("Old", *options)
            shown = self.succeed("preview", rule["id"], "--approve", days_ahead=LATER).out
            self.assertIn(words, "\n".join(shown.splitlines()[-2:]))

    def test_a_rule_that_got_into_the_file_by_hand_is_held_to_the_guards(self):
        rule = self.add("Old")
        (self.home / "Documents").mkdir()
        (self.home / "way").symlink_to("Documents")
        for folder in ("/", "/usr/share", str(self.home), str(self.home / "Documents"), str(self.home / "way"),
                       f"{self.downloads}/../Documents", "Downloads", ""):
            rule["target"]["path"] = folder
            (self.data / "rules.json").write_text(json.dumps({"rules": [rule], "schedule": {"lastRun": {}}}))
            with self.subTest(folder=folder):
                result = self.run_program("--json", "preview", "Old", "--approve", days_ahead=LATER)
                self.assertEqual(result.status, 1, result)
                self.assertRegex(result.document["error"], r"\.$")
                self.assertNotIn("approval", self.rules_file()["rules"][0])

    def test_a_long_list_is_cut_for_people_only_and_odd_names_steer_nothing(self):
        for number in range(29):
            self.make(f"Downloads/{number:02}", 1_000_000 + number * 10_000)
        with open(os.fsencode(self.downloads) + b"/bad\xff\x1b[31m", "wb") as file:
            file.write(b"x" * 2_000_000)
        self.add("Old")
        shown = self.succeed("preview", "Old", days_ahead=LATER).out
        for words in ("and 10 more", "30 items", "~/Downloads/28", r"~/Downloads/bad\xff\x1b[31m"):
            self.assertIn(words, shown)
        self.assertNotIn("~/Downloads/08", shown)
        paths = [item["path"] for item in self.preview()["items"]]
        self.assertEqual(len(paths), 30)
        self.assertIn(f"{self.downloads}/bad\0ff\x1b[31m", paths)

    @unittest.skipUnless(os.path.isdir("/proc/self/fd"), "tells by /proc when the program listens")
    def test_waiting_for_another_program_can_be_stopped(self):
        self.add("Old")
        with open(self.data / "state.lock", "w", encoding="utf-8") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            for request in (signal.SIGINT, signal.SIGTERM):
                program = subprocess.Popen([PROGRAM, "--home", self.home, "preview", "Old"], stderr=subprocess.PIPE)
                status = pathlib.Path(f"/proc/{program.pid}/status")
                while not int(status.read_text().split("SigCgt:")[1].split()[0], 16) >> (request - 1) & 1:
                    time.sleep(0.01)
                program.send_signal(request)
                _, err = program.communicate(timeout=60)
                self.assertEqual((program.returncode, err), (1, b"Stopped before it finished.\n"))


if __name__ == "__main__":
    unittest.main()
