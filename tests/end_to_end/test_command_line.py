import os
import subprocess
import sys
import unittest

from driver import PROGRAM, ProgramTest


class CommandLineTest(ProgramTest):
    def test_a_wrong_command_line_names_what_is_wrong_and_does_nothing(self):
        wrong = [
            ("", "A command is missing"),
            ("rule", "A command is missing"),
            ("tidy", "tidy"),
            ("rule list --sideways", "--sideways"),
            ("rule show", "RULE"),
            ("rule move Old first", "POSITION"),
            ("rule add", "NAME"),
            ("rule add Old", "--folder, --preset and --projects"),
            ("rule add Old --preset logs --folder /a", "--folder, --preset and --projects"),
            ("rule add Old --preset logs --pin a", "--pin"),
            ("rule add Old --folder /a --trash --delete", "--delete"),
            ("rule add Old --projects /a --kinds target --untouched-days 30 --by added", "--by"),
            ("rule add Old --projects /a --kinds target --untouched-days 30 --scope allFiles", "--scope"),
        ]
        for options in ("--kinds target", "--untouched-days 30", "--older-than soon", "--older-than 0x10",
                        "--older-than=-3", "--older-than 99999999999", "--min-size large", "--min-size=-1",
                        "--min-size 9223372036854775808", "--min-size 9300PB", "--min-size 1.5", "--min-size 1..5MB",
                        "--min-size", "--by birthday", "--scope everything", "--daily noon", "--weekly x@09:05"):
            wrong.append(("rule add Old --folder /a " + options, options.replace("=", " ").split()[0]))
        for line, named in wrong:
            with self.subTest(line):
                (sentence,) = self.refuse(*line.split(), status=2)
                self.assertIn(named, sentence)
        self.assertFalse(self.data.exists())

    def test_sizes_are_read_exactly(self):
        sizes = {"4096": 4096, "1.5 GB": 1_500_000_000, "0.3gb": 300_000_000, "2 kB": 2000, "7b": 7, "0": 0,
                 "9.223372036854775807PB": 9_223_372_036_854_775, "9223372036854775807": 9_223_372_036_854_775_807}
        for text, size in sizes.items():
            rule = self.add("Sized", "--min-size", text)
            self.assertEqual(rule["filter"]["minSizeBytes"], size, text)

    def test_only_a_home_of_the_users_own_is_acted_in(self):
        strange = self.folder / "strange"
        strange.mkdir()
        if os.geteuid() == 0:
            os.chown(strange, 12345, -1)
        else:
            strange = "/"
        for home in (self.home / "missing", self.make("file"), strange):
            result = self.run_program("--home", home, "rule", "list")
            self.assertEqual((result.status, result.out), (2, ""), result)

    @unittest.skipIf(sys.platform == "darwin", "a Mac answers")
    def test_what_only_a_mac_can_say_is_unknown_with_its_reason(self):
        answers = self.document("probes")
        self.assertEqual(sorted(answers), ["localSnapshots", "memory", "simulatorImages", "swap", "updatePlist"])
        for name, answer in answers.items():
            self.assertIn(answer["unknown"], ("failed", "unrecognized", "unreadable"), name)
        self.assertEqual(self.succeed("probes").out.count("not known: the system"), len(answers))

    def test_help_is_an_answer_and_no_mistake(self):
        for arguments in (["--help"], ["rule", "add", "--help"], ["--version"]):
            result = subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, check=False)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertNotEqual(result.stdout, "")

    @unittest.skipIf(sys.platform == "darwin", "there it depends on what the user granted")
    def test_a_system_without_the_gate_grants_everything(self):
        self.assertEqual(self.document("access"), {"granted": True, "state": "on", "steps": []})
        self.assertIn("no Full Disk Access to grant", self.succeed("access").out)

    def test_data_lies_where_the_command_line_or_the_home_says(self):
        elsewhere = self.folder / "elsewhere"
        self.succeed("rule", "add", "Old", "--folder", self.downloads,
                     environment={"XDG_DATA_HOME": str(self.folder / "xdg")})
        self.succeed("--data", elsewhere, "rule", "add", "Other", "--folder", self.downloads)
        self.assertEqual([rule["name"] for rule in self.rules_file()["rules"]], ["Old"])
        self.assertTrue((elsewhere / "rules.json").exists())
        self.assertEqual(self.refuse("--data", elsewhere / "rules.json/x", "rule", "list"),
                         [f"Could not open {elsewhere}/rules.json/x/state.lock: Not a directory."])
        self.assertFalse((self.folder / "xdg").exists())

    def test_colour_is_for_terminals_that_want_it(self):
        self.add("Old")
        self.assertIn("\x1b[", self.on_terminal("rule", "list"))
        self.assertNotIn("\x1b", self.on_terminal("rule", "list", environment={"NO_COLOR": "1"}))
        self.assertNotIn("\x1b", self.succeed("rule", "list").out)

    def test_a_result_that_cannot_be_written_is_a_failure(self):
        for arguments in (["--home", self.home, "rule", "list"], ["--help"], ["--version"]):
            for options in ({"stdout": "/dev/full"}, {"preexec_fn": lambda: os.close(1)}):
                with self.subTest(arguments=arguments, options=options), open("/dev/full", "wb") as full:
                    options |= {"stdout": full} if "stdout" in options else {}
                    result = subprocess.run([PROGRAM, *arguments], stderr=subprocess.PIPE, check=False, **options)
                    self.assertEqual((result.returncode, result.stderr), (1, b"The result could not be written.\n"))

    def test_no_file_gets_the_number_of_a_closed_standard_descriptor(self):
        self.add("Old")
        (self.data / "rules.json").write_text("damaged")  # which is said on standard error
        subprocess.run([PROGRAM, "--home", self.home, "rule", "list"], check=True, stdout=subprocess.DEVNULL,
                       preexec_fn=lambda: os.close(2))
        self.assertEqual((self.data / "state.lock").read_bytes(), b"")
        self.assertEqual([path.read_text() for path in self.data.glob("*.json")], ["damaged"])


if __name__ == "__main__":
    unittest.main()
