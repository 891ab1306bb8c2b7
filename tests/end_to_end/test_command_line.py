import os
import subprocess
import unittest

from driver import PROGRAM, ProgramTest


class CommandLineTest(ProgramTest):
    def test_a_wrong_command_line_names_what_is_wrong_and_does_nothing(self):
        add = ("rule", "add", "Old", "--folder", self.home / "Downloads")
        wrong = [
            ((), "A command is missing"),
            (("rule",), "A command is missing"),
            (("tidy",), "tidy"),
            (("rule", "list", "--sideways"), "--sideways"),
            (("rule", "show"), "RULE"),
            (("rule", "move", "Old", "first"), "POSITION"),
            (("rule", "add"), "NAME"),
            (("rule", "add", "Old"), "--folder, --preset and --projects"),
            ((*add, "--preset", "logs"), "--folder, --preset and --projects"),
            ((*add, "--kinds", "target"), "--kinds"),
            ((*add, "--untouched-days", "30"), "--untouched-days"),
            ((*add, "--trash", "--delete"), "--delete"),
            ((*add, "--older-than", "soon"), "--older-than"),
            ((*add, "--older-than", "0x10"), "--older-than"),
            ((*add, "--older-than=-3"), "--older-than"),
            ((*add, "--older-than", "99999999999"), "--older-than"),
            ((*add, "--min-size=-1"), "--min-size"),
            ((*add, "--min-size", "large"), "--min-size"),
            ((*add, "--min-size", "10 elephants"), "--min-size"),
            ((*add, "--min-size", "9223372036854775808"), "--min-size"),
            ((*add, "--min-size", "9300PB"), "--min-size"),
            ((*add, "--min-size", "1.5"), "--min-size"),
            ((*add, "--min-size", "1..5MB"), "--min-size"),
            ((*add, "--min-size"), "--min-size"),
            ((*add, "--by", "birthday"), "--by"),
            ((*add, "--scope", "everything"), "--scope"),
            ((*add, "--daily", "noon"), "--daily"),
            ((*add, "--weekly", "someday@09:05"), "--weekly"),
            (("rule", "add", "Old", "--preset", "logs", "--pin", "a"), "--pin"),
        ]
        for arguments, named in wrong:
            with self.subTest(arguments=arguments):
                (sentence, *rest) = self.refuse(*arguments, status=2)
                self.assertIn(named, sentence)
                self.assertEqual(rest, [])
        self.assertFalse(self.data.exists())

    def test_sizes_are_read_exactly(self):
        sizes = {
            "4096": 4096,
            "500MB": 500_000_000,
            "1.5 GB": 1_500_000_000,
            "0.3gb": 300_000_000,
            "2 kB": 2000,
            "7b": 7,
            "9.223372036854775807PB": 9_223_372_036_854_775,
            "9223372036854775807": 9_223_372_036_854_775_807,
            "0": 0,
        }
        for text, size in sizes.items():
            rule = self.document("rule", "add", "Sized", "--folder", self.home / "Downloads", "--min-size", text)
            self.assertEqual(rule["filter"]["minSizeBytes"], size, text)

    def test_only_a_home_of_the_users_own_is_acted_in(self):
        file = self.make("file")
        strange = self.folder / "strange"
        strange.mkdir()
        if os.geteuid() == 0:
            os.chown(strange, 12345, -1)
        else:
            strange = "/"
        for home in (self.home / "missing", file, strange):
            result = self.run_program("--home", home, "rule", "list")
            self.assertEqual((result.status, result.out), (2, ""), result)

    def test_help_is_an_answer_and_no_mistake(self):
        for arguments in (["--help"], ["rule", "add", "--help"], ["--version"]):
            result = subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, check=False)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertNotEqual(result.stdout, "")

    def test_data_lies_where_the_command_line_or_the_home_says(self):
        elsewhere = self.folder / "elsewhere"
        self.succeed("rule", "add", "Old", "--folder", self.home / "Downloads",
                     environment={"XDG_DATA_HOME": str(self.folder / "xdg")})
        self.succeed("--data", elsewhere, "rule", "add", "Other", "--folder", self.home / "Downloads")
        self.assertEqual([rule["name"] for rule in self.rules_file()["rules"]], ["Old"])
        self.assertTrue((elsewhere / "rules.json").exists())
        self.assertFalse((self.folder / "xdg").exists())

    def test_colour_is_for_terminals_that_want_it(self):
        self.succeed("rule", "add", "Old", "--folder", self.home / "Downloads")
        self.assertIn("\x1b[", self.on_terminal("rule", "list"))
        self.assertNotIn("\x1b", self.on_terminal("rule", "list", environment={"NO_COLOR": "1"}))
        self.assertNotIn("\x1b", self.succeed("rule", "list").out)

    def test_a_result_that_cannot_be_written_is_a_failure(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = subprocess.run([PROGRAM, "--home", self.home, "rule", "list"], stdout=full,
                                    stderr=subprocess.PIPE, check=False)
        self.assertEqual(result.returncode, 1)
        self.assertIn(b"could not be written", result.stderr)


if __name__ == "__main__":
    unittest.main()
