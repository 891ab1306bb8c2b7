import json
import os
import resource
import unittest

from driver import ProgramTest

DEFAULTS = {
    "readoutStyle": "gigabytes", "line": {"unit": "gigabytes", "value": 20},
    "alertLevels": [{"unit": "percent", "value": value} for value in (20, 10, 5)], "notificationsEnabled": True,
    "hysteresisGigabytes": 2, "automaticCleaningPaused": False, "suggestionCadence": "monthly"}


def fill_the_disk():
    resource.setrlimit(resource.RLIMIT_FSIZE, (0, 0))


class SettingsTest(ProgramTest):
    def stored(self):
        return json.loads((self.data / "settings.json").read_text())

    def write(self, text):
        self.data.mkdir(parents=True, exist_ok=True)
        (self.data / "settings.json").write_text(text)

    def test_each_setting_is_changed_alone(self):
        self.assertEqual(self.document("settings"), DEFAULTS)
        self.assertFalse(self.data.exists())
        expected = dict(DEFAULTS)
        for key, value, field, stored in (
                ("line", "2,5 gb", "line", {"unit": "gigabytes", "value": 2.5}),
                ("alertLevels", "12.5%, 50GB", "alertLevels",
                 [{"unit": "percent", "value": 12.5}, {"unit": "gigabytes", "value": 50}]),
                ("alertLevels", "none", "alertLevels", []),
                ("notifications", "off", "notificationsEnabled", False),
                ("paused", "true", "automaticCleaningPaused", True),
                ("hysteresis", "0", "hysteresisGigabytes", 0),
                ("cadence", "weekly", "suggestionCadence", "weekly"),
                ("readout", "iconOnly", "readoutStyle", "iconOnly")):
            expected[field] = stored
            self.assertEqual(self.document("settings", "set", key, value), expected)
            self.assertEqual(self.stored(), expected)
        self.assertEqual(self.document("settings"), expected)
        self.assertEqual(self.succeed("settings", "set", "line", "10%").out,
                         'The setting "line" is 10% now. It was 2.5 GB.\n')
        self.assertEqual(self.succeed("settings", "set", "line", "10%").out,
                         'The setting "line" is 10% already; nothing was changed.\n')

    def test_what_is_beyond_the_limits_is_taken_as_the_limit_and_said_so(self):
        for key, value, taken in (("line", "5000GB", "4000 GB"), ("line", "90%", "50%"), ("line", "0GB", "1 GB"),
                                  ("alertLevels", "20%,0.5%", "1%"), ("hysteresis", "2000", "1000 GB"),
                                  ("line", "2.55GB", "2.6 GB")):
            result = self.run_program("settings", "set", key, value)
            self.assertEqual(result.status, 0, result)
            self.assertIn(f'is taken as {taken}: ', result.err)
            self.assertIn(f"{taken} now", result.out)

    def test_a_value_that_makes_no_sense_is_refused_with_what_is_accepted(self):
        for key, value, accepted in (("line", "20", "20GB"), ("line", "", "20GB"), ("line", "nanGB", "20GB"),
                                     ("alertLevels", "20%,", "20%,10%,50GB, or none"), ("alertLevels", "2,5GB", "none"),
                                     ("hysteresis", "much", "2.5GB"), ("paused", "maybe", "yes or no"),
                                     ("notifications", "1", "on or off"), ("cadence", "daily", "weekly, monthly, off"),
                                     ("readout", "Bar", "iconOnly"), ("colour", "red", "line, alertLevels")):
            (sentence,) = self.refuse("settings", "set", key, value, status=2)
            self.assertIn(accepted, sentence)
        self.assertFalse(self.data.exists())

    def test_a_damaged_file_pauses_automatic_cleaning_until_the_user_says_otherwise(self):
        for reading in ("settings", "space"):
            self.write('{"line": ')
            result = self.run_program(reading)
            self.assertEqual((result.status, len(result.err.splitlines())), (0, 1), result)
            self.assertEqual(self.stored(), DEFAULTS | {"automaticCleaningPaused": True})
        self.assertEqual(len(list(self.data.glob("settings.corrupt-*.json"))), 2)
        self.succeed("settings", "set", "paused", "no")
        self.write("[]")
        result = self.run_program("--json", "settings", "set", "paused", "no")
        self.assertEqual((result.status, result.document, self.stored()), (0, DEFAULTS, DEFAULTS), result)

    def test_an_unreadable_pause_is_a_pause(self):
        self.write('{"automaticCleaningPaused": "no", "readoutStyle": "bar"}')
        paused = DEFAULTS | {"automaticCleaningPaused": True, "readoutStyle": "bar"}
        for arguments in (("settings",), ("settings", "set", "paused", "yes")):
            result = self.run_program("--json", *arguments)
            self.assertEqual((result.status, result.document), (0, paused), result)
            self.assertIn("cannot be read, so automatic cleaning is paused", result.err)
        self.assertEqual(self.run_program("settings", "set", "cadence", "off").status, 0)
        self.assertEqual(self.document("settings"), paused | {"suggestionCadence": "off"})

    def test_what_cannot_be_saved_is_not_changed(self):
        self.succeed("settings", "set", "paused", "yes")
        before = self.stored()
        sentences = self.refuse("settings", "set", "paused", "no", preexec_fn=fill_the_disk)
        self.assertIn("The settings were not saved: ", sentences[0])
        self.assertEqual(sentences[1:], ["Automatic cleaning stays paused."])
        self.assertEqual(len(self.refuse("settings", "set", "line", "5%", preexec_fn=fill_the_disk)), 1)
        self.assertEqual(self.stored(), before)
        self.write("damaged")
        for arguments in (("settings",), ("space",), ("settings", "set", "paused", "no")):
            self.refuse(*arguments, preexec_fn=fill_the_disk)
            self.assertEqual([path.name for path in self.data.glob("*.json")], ["settings.json"])
            self.assertEqual((self.data / "settings.json").read_text(), "damaged")

    def test_space_is_measured_by_the_users_settings(self):
        self.succeed("settings", "set", "alertLevels", "50%,4000GB,1%")
        self.succeed("settings", "set", "line", "4000GB")
        reading = self.document("space")
        facts = os.statvfs(self.home)
        self.assertEqual(reading["total"], facts.f_blocks * facts.f_frsize)
        self.assertAlmostEqual(reading["availableNow"], facts.f_bavail * facts.f_frsize, delta=2e9)
        free = reading["displayedFree"]
        self.assertEqual(reading["level"], "critical" if free < 4e12 else "low" if free < 6e12 else "normal")
        shown = self.succeed("space").out
        self.assertIn("4.0 TB  your line", shown)
        self.assertEqual(shown.count("\nFree space is below 4000 GB: "), int(free < 4e12))


if __name__ == "__main__":
    unittest.main()
