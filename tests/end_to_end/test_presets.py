import os
import unittest

from driver import ProgramTest

LATER = 400

# For presets of each sort a file in one of its folders, and how deep below that the item lies that goes with it.
SAMPLES = {
    "xcode-device-support": "Library/Developer/Xcode/tvOS DeviceSupport|/17.2 (21K364)|/Symbols/a",
    "npm-cache": ".npm/_cacache|/content-v2|/sha512/aa",
    "puppeteer-browsers": ".cache/puppeteer|/chrome|/linux-123.0.1/a",
    "agent-temp": f"../temporary/claude-{os.getuid()}|/-home-ann-code|/a",
    "logs": "Library/Logs|/App/a.log|",
    "old-trash": ".local/share/Trash/files|/letter|",
    "screenshots": "Desktop|/Screenshot 2024-01-31 at 9.05.07\u202fPM.png|",
}


class PresetsTest(ProgramTest):
    def environment(self):
        temporary = self.folder / "temporary"
        temporary.mkdir(exist_ok=True)
        return {"TMPDIR": str(temporary)}

    def preview(self, rule, **options):
        return self.document("preview", rule, days_ahead=LATER, environment=self.environment(), **options)

    def test_every_preset_becomes_a_rule_that_cleans_what_it_is_about(self):
        self.downloads.rmdir()
        presets = self.document("presets")["presets"]
        for preset in [each for each in presets if each["id"] in SAMPLES]:
            with self.subTest(preset=preset["id"]):
                self.assertEqual(preset["folders"], [])
                rule = self.document("rule", "add", preset["name"], "--preset", preset["id"])
                self.assertEqual((rule["action"], rule["triggers"]), (preset["action"], []))
                self.assertEqual(rule["filter"].get("minAgeDays"), preset.get("minAgeDays"))
                self.assertEqual(self.document("rule", "check", rule["id"]), {"problems": []})
                self.assertEqual(self.refuse("preview", rule["id"], environment=self.environment()),
                                 ["None of the folders this preset cleans exist on this Mac."])

                root, item, inside = SAMPLES[preset["id"]].split("|")
                self.make(root + item + inside)
                if preset["id"] == "old-trash":
                    self.make(".local/share/Trash/info/letter.trashinfo",
                              text="[Trash Info]\nDeletionDate=2025-03-03T09:05:07\n")
                self.make(root + "/my own folder/.DS_Store")
                plan = self.preview(rule["id"])
                found = {each["path"]: each["bytes"] for each in plan["items"]}
                planned = str((self.home / root).resolve()) + item
                self.assertIn(planned, found)
                self.assertEqual(plan["roots"][0]["path"], str((self.home / root).resolve()))
                if preset["namePatterns"] or preset["id"] == "screenshots":
                    self.assertEqual(list(found), [planned])
        there = self.document("presets", environment=self.environment())["presets"]
        self.assertEqual({preset["id"] for preset in there if preset["folders"]}, set(SAMPLES))

    def test_presets_are_listed_for_people(self):
        self.make("Downloads/a")
        shown = self.succeed("presets").out
        for words in ("Developer tools", "npm-cache", "Packages npm downloaded.", "~/Downloads",
                      "added 30 days ago or earlier; only to the Trash", "deletes for good",
                      "Vostrel never touches the pnpm store, which your projects link to."):
            self.assertIn(words, shown)

    def test_a_rule_may_say_more_than_its_preset_but_not_less(self):
        rule = self.document("rule", "add", "Chrome", "--preset", "chrome-cache", "--older-than", "3", "--by", "added",
                             "--min-size", "1MB", "--exclude", "*.keep", "--delete", "--below-line",
                             "--pause-while", "org.example.Editor", "com.google.Chrome")
        self.assertEqual(rule["filter"], {"ageBasis": "added", "excludeGlobs": ["*.keep"], "includeGlobs": [],
                                          "minAgeDays": 3, "minSizeBytes": 1_000_000, "scope": "topLevelItems"})
        self.assertEqual((rule["action"], rule["triggers"]), ("delete", [{"type": "belowLine"}]))
        self.assertEqual(rule["pauseWhileRunning"].count("com.google.Chrome"), 1)
        self.assertIn("org.example.Editor", rule["pauseWhileRunning"])
        self.assertEqual(self.refuse("rule", "add", "No", "--preset", "gone"),
                         ["This preset is not available in this version of Vostrel."])

    def test_the_shown_rule_tells_what_its_preset_holds_it_to(self):
        shown = self.succeed("rule", "add", "Soon", "--preset", "old-downloads", "--older-than", "3").out
        for words in ("preset old-downloads", "Items in your Downloads folder.", "added 30 days ago or earlier",
                      "added 3 days ago or earlier", "The preset suggests to run it at the end of the day."):
            self.assertIn(words, shown)
        for preset, present, absent in (
                ("screenshots", ("only files named like macOS screenshots", "files directly in it"), "each folder"),
                ("npm-cache", ("only folders with names that its tool gives", "each folder directly in it"), "each file"),
                ("logs", ("only files named like log files", "every file in it, at any depth"), "its tool"),
                ("jetbrains-caches", ("none that holds \"LocalHistory\"",), "each file"),
                ("old-trash", ("moves them to the Trash", "each file and each folder directly in it"), "for good,")):
            shown = self.succeed("rule", "add", preset, "--preset", preset, "--trash").out
            for words in present:
                self.assertIn(words, shown)
            self.assertNotIn(absent, shown)


if __name__ == "__main__":
    unittest.main()
