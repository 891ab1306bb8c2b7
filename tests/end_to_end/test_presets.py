import os
import unittest

from driver import ProgramTest

LATER = 400

# For each preset a file in one of its folders, and how deep below that folder the item lies that goes with it.
SAMPLES = {
    "xcode-derived-data": "Library/Developer/Xcode/DerivedData|/App-" + "q" * 28 + "|/info.plist",
    "xcode-device-support": "Library/Developer/Xcode/tvOS DeviceSupport|/17.2 (21K364)|/Symbols/a",
    "xcode-archives": "Library/Developer/Xcode/Archives|/2024-01-31|/App.xcarchive/Info.plist",
    "swiftpm-cache": "Library/Caches/org.swift.swiftpm|/repositories|/a",
    "cocoapods-cache": "Library/Caches/CocoaPods|/Pods|/a",
    "carthage-cache": "Library/Caches/org.carthage.CarthageKit|/dependencies|/a",
    "npm-cache": ".npm/_cacache|/content-v2|/sha512/aa",
    "yarn-cache": "Library/Caches/Yarn|/v6|/a",
    "pnpm-cache": "Library/Caches/pnpm|/metadata-v1.3|/a",
    "pip-cache": "Library/Caches/pip|/http-v2|/a",
    "uv-cache": ".cache/uv|/wheels-v5|/a",
    "homebrew-downloads": "Library/Caches/Homebrew|/downloads|/a.dmg",
    "cargo-registry": ".cargo/registry/cache|/index-6f17d22bba15001f|/a.crate",
    "go-build-cache": "Library/Caches/go-build|/0a|/0a11-d",
    "gradle-caches": ".gradle/caches|/modules-2|/a",
    "playwright-browsers": "Library/Caches/ms-playwright|/firefox-1466|/a",
    "puppeteer-browsers": ".cache/puppeteer|/chrome|/linux-123.0.1/a",
    "jetbrains-caches": "Library/Caches/JetBrains|/GoLand2022.3|/a",
    "vscode-caches": "Library/Application Support/Code/CachedData|/1a2b|/a",
    "agent-temp": f"../temporary/claude-{os.getuid()}|/-home-ann-code|/a",
    "chrome-cache": "Library/Caches/Google/Chrome|/Default|/a",
    "edge-cache": "Library/Caches/Microsoft Edge|/Default|/a",
    "firefox-cache": "Library/Caches/Firefox|/Profiles|/a",
    "brave-cache": "Library/Caches/BraveSoftware/Brave-Browser|/Default|/a",
    "claude-updates": "Library/Caches/com.anthropic.claudefordesktop.ShipIt|/update.1a2b3c4|/a",
    "claude-web-cache": "Library/Application Support/Claude/GPUCache|/data_0|",
    "google-updater-downloads": "Library/Application Support/Google/GoogleUpdater/crx_cache|/1a2b|",
    "ollama-updates": "Library/Caches/ollama|/updates|/a",
    "zoom-cache": "Library/Caches/us.zoom.xos|/a|",
    "logs": "Library/Logs|/App/a.log|",
    "old-downloads": "Downloads|/film.mkv|",
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
        self.assertEqual([preset["id"] for preset in presets], list(SAMPLES))
        for preset in presets:
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
        self.assertEqual([preset["id"] for preset in there if len(preset["folders"]) != 1], [])

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
