import datetime
import json
import os
import pathlib
import signal
import subprocess
import time

from driver import LATER, PROGRAM, ProgramTest


class AgentTest(ProgramTest):
    """The agent, by a clock that is ahead and, where a day must pass, fast."""

    def setUp(self):
        super().setUp()
        self.tools = self.folder / "bin"
        self.tools.mkdir()
        self.told = self.folder / "told"
        self.tool("notify-send", f'echo "$3. $4" >> {self.told}')
        self.clock = self.folder / "clock"
        self.set_clock(f"+{LATER}d")

    def tool(self, name, script):
        """Stands in for one of the desktop's own."""
        (self.tools / name).write_text(f"#!/bin/sh\n{script}\n")
        (self.tools / name).chmod(0o755)

    def set_clock(self, text):
        fresh = self.clock.with_suffix(".new")
        fresh.write_text(text + "\n")
        fresh.rename(self.clock)

    def environment(self):
        there = self.surroundings(LATER) | {"PATH": f"{self.tools}:{os.environ['PATH']}", "TZ": "UTC"}
        there |= {"FAKETIME_TIMESTAMP_FILE": str(self.clock), "FAKETIME_NO_CACHE": "1",
                  "DONT_FAKE_MONOTONIC": "1"}
        there.pop("FAKETIME")
        return there

    def program(self, *arguments):
        return self.run_program(*arguments, environment=self.environment())

    def approved(self, name, *options):
        self.add(name, *options)
        self.assertEqual(self.program("preview", name, "--approve").status, 0)

    def agent(self):
        agent = self.start("agent", environment=self.environment())
        self.addCleanup(agent.kill)
        return agent

    def stop(self, agent):
        agent.send_signal(signal.SIGTERM)
        out, err = agent.communicate(timeout=60)
        self.assertEqual(agent.returncode, 0, err)
        return out, err

    def runs(self):
        return self.document("log", "--limit", "1000")["runs"]

    def wait(self, condition):
        """Until it holds; a minute is never needed."""
        end = time.monotonic() + 60
        while time.monotonic() < end:
            if condition():
                return
            time.sleep(0.05)
        self.fail("it never came")

    def test_a_due_rule_runs_once(self):
        self.make("Downloads/film.mkv", 2_000_000)
        self.approved("Old", "--daily", "00:00", "--delete")
        self.add("Unapproved", "--daily", "00:00", "--delete")
        other, = self.program("--json", "agent", "--once").document["reports"]
        self.assertEqual((other["ruleName"], other["skipReason"]), ("Unapproved", "notApproved"))
        self.assertEqual(self.program("agent", "--once").out, "No rule is due.\n")
        self.set_clock(f"+{LATER + 3}d")
        once = self.program("--json", "agent", "--once")
        self.assertEqual((once.status, once.err), (0, ""))
        old, _ = sorted(once.document["reports"], key=lambda report: report["ruleName"])
        self.assertEqual((old["trigger"], old["status"], old["deletedBytes"]), ("schedule", "finished", 2_002_944))
        self.assertEqual(list(self.downloads.iterdir()), [])
        self.assertEqual(self.program("--json", "agent", "--once").document, {"reports": []})
        self.assertIn("Freed", self.told.read_text())

    def test_a_week_runs_each_rule_at_its_times(self):
        self.make("Downloads/film.mkv")
        self.approved("Daily", "--daily", "09:05", "--delete")
        self.approved("Evening", "--end-of-day", "--trash")
        self.approved("Weekly", "--weekly", "monday@12:00", "--delete")
        monday = datetime.date.today() + datetime.timedelta(LATER)
        monday += datetime.timedelta(7 - monday.weekday())
        expected = []
        for hour in range(0, 7 * 24, 3):
            now = datetime.datetime.combine(monday, datetime.time(1)) + datetime.timedelta(hours=hour)
            self.set_clock(f"@{now}")
            if now.hour not in (22, 1):  # asleep over midnight
                self.assertEqual(self.program("agent", "--once").status, 0)
            due = {10: ["Daily"], 13: ["Weekly"] if now.weekday() == 0 else [], 19: ["Evening"]}
            expected += [(str(now)[:16], name) for name in due.get(now.hour, [])]
        # Their times of the day before have passed when the week begins.
        first = f"{monday} 04:00"
        expected = [(first, "Daily"), (first, "Evening"), *expected]
        runs = [(run["startedAt"].replace("T", " ")[:16], run["ruleName"]) for run in reversed(self.runs())]
        self.assertEqual(runs, expected)

    def test_nothing_stops_it_or_makes_it_run_twice(self):
        self.approved("Daily", "--daily", "09:05", "--delete")
        day = datetime.date.today() + datetime.timedelta(LATER + 2)
        self.set_clock(f"@{day} 09:00:00 x60")
        agent = self.agent()
        self.wait(lambda: len(self.runs()) == 1)
        time.sleep(2)
        rules = (self.data / "rules.json").read_text()
        # The clock goes back a day, and past the time again.
        self.set_clock(f"@{day - datetime.timedelta(1)} 09:00:00 x60")
        time.sleep(2)
        self.assertEqual(len(self.runs()), 1)
        # Without rules nothing is done; they come back, as does the log.
        (self.data / "rules.json").write_text("{ damaged")
        self.wait(lambda: not (self.data / "rules.json").exists())
        log = self.data / "Log"
        log.rename(self.data / "Log.away")
        log.write_text("no folder")
        (self.data / "rules.json").write_text(rules)
        time.sleep(2)
        log.unlink()
        (self.data / "Log.away").rename(log)
        second = subprocess.run([PROGRAM, "--home", self.home, "agent"], capture_output=True, text=True, check=False,
                                env=self.environment())
        self.assertEqual((second.returncode, second.stderr),
                         (1, f"Another agent already runs rules from {self.data}.\n"))
        self.assertEqual(len(self.runs()), 1)
        # Another data folder in the place of its own has a lock that another agent may hold.
        self.data.rename(self.folder / "away")
        _, err = agent.communicate(timeout=60)
        self.assertEqual((agent.returncode, err.count("was damaged"), err.count("was moved or replaced.")), (1, 1, 1),
                         err)

    def test_low_space_is_answered_up_to_the_line_and_then_not_for_a_day(self):
        if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64m", "none", self.home], check=False,
                          capture_output=True).returncode != 0:
            self.skipTest("a volume of its own cannot be mounted here")
        self.addCleanup(subprocess.run, ["umount", "-l", self.home], check=True)
        for number in range(4):
            self.make(f"Downloads/{number}/film.mkv", 10_000_000)
            self.document("rule", "add", f"Rule {number}", "--folder", self.downloads / str(number), "--delete",
                          "--below-line")
            self.assertEqual(self.program("preview", f"Rule {number}", "--approve").status, 0)
        self.document("settings", "set", "line", "50%")
        self.document("settings", "set", "hysteresis", "0")
        self.set_clock(f"+{LATER}d x60")
        agent = self.agent()
        self.wait(lambda: self.told.exists() and "Freed" in self.told.read_text())
        self.assertEqual([run["trigger"] for run in self.runs()], ["belowLine"])
        self.make("kept", 35_500_000)
        for hours, sessions in ((2, 1), (4, 1), (30, 2)):
            self.set_clock(f"+{LATER * 24 + hours}h x60")
            self.wait(lambda: self.told.read_text().count("till below your line") >= sessions)
            time.sleep(1)
            self.assertEqual(self.told.read_text().count("till below your line"), sessions, hours)
        self.stop(agent)
        self.assertEqual(len({run["ruleName"] for run in self.runs() if run["status"] == "finished"}), 4)

    def test_an_application_that_quits_starts_its_rules(self):
        scope = pathlib.Path("/sys/fs/cgroup/unified/app-gnome-org.example.Player-4711.scope")
        try:
            scope.mkdir()
        except OSError:
            self.skipTest("no scope of an application can be made here")
        application = subprocess.Popen(["sleep", "60"])
        self.addCleanup(lambda: (application.kill(), application.wait(), scope.rmdir()))
        (scope / "cgroup.procs").write_text(str(application.pid))
        self.make("Downloads/film.mkv")
        self.approved("Old", "--when-app-quits", "org.example.Player", "--delete")
        self.set_clock(f"+{LATER}d x60")
        agent = self.agent()
        time.sleep(1)
        self.assertEqual(self.runs(), [])
        application.kill()
        self.assertEqual(application.wait(), -signal.SIGKILL)
        self.wait(lambda: [run["trigger"] for run in self.runs() if run["status"] == "finished"] == ["appQuit"])
        self.stop(agent)

    def test_the_service_is_installed_and_removed(self):
        calls = self.folder / "calls"
        self.tool("systemctl", f'echo "$@" >> {calls}')
        unit = self.folder / "settings/systemd/user/vostrel-agent.service"
        there = {"PATH": f"{self.tools}:{os.environ['PATH']}", "XDG_CONFIG_HOME": str(self.folder / "settings")}
        self.succeed("agent", "--install", environment=there)
        self.assertIn(f'ExecStart=:"{pathlib.Path(PROGRAM).resolve()}" "--home" "{self.home}"', unit.read_text())
        self.assertIn("--user enable --now vostrel-agent.service", calls.read_text())
        self.succeed("agent", "--remove", environment=there)
        self.assertFalse(unit.exists())
        self.assertIn("disable --now", calls.read_text())
        self.assertEqual(self.document("agent", "--remove", environment=there), {"installed": False})
        self.tool("systemctl", "exit 1")
        self.refuse("agent", "--install", environment=there)
