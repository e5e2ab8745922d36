#!/usr/bin/python3
"""Who opens windows, and when: a person's start, the first run of all, a second start, the command line. In place of
`kestrio-window` stands a script that notes how it was started and opens nothing."""

import shutil
import subprocess
import time

from kestrio_desktop import BIN, DEADLINE, DesktopTest, eventually, main


class OpeningWindows(DesktopTest):
    def setUp(self):
        super().setUp()
        # The agent looks for the windows beside itself.
        self.programs = self.home.path / "bin"
        self.programs.mkdir(parents=True, exist_ok=True)
        shutil.copy(BIN / "kestrio", self.programs)
        self.starts = self.home.path / "starts"
        self.starts.touch()
        self.window = self.programs / "kestrio-window"
        self.window.write_text(f'#!/bin/sh\necho "$@" >> {self.starts}\n')
        self.window.chmod(0o700)

    def onboarded(self, value=None):
        if value is not None:
            self.home.control("settings", "set", "hasOnboarded", value)
        return self.home.control("settings", "get", "hasOnboarded").stdout.strip()

    def run_agent(self, *arguments):
        agent = subprocess.Popen(
            [self.programs / "kestrio", *arguments], env=self.home.environment, stderr=subprocess.PIPE, text=True
        )
        self.started.append(agent)
        eventually(lambda: agent.poll() is not None or self.home.status(), "the agent answers")
        return agent

    def opened(self):
        return self.starts.read_text().splitlines()

    def test_the_first_run_of_all_opens_the_dashboard_and_later_logins_stay_quiet(self):
        self.onboarded("false")
        agent = self.run_agent("--login")
        eventually(lambda: self.opened() == ["dashboard"], "the dashboard opens")
        self.assertEqual(self.onboarded(), "true")
        self.stop(agent)
        agent = self.run_agent("--login")
        time.sleep(1)
        self.stop(agent)
        self.assertEqual(self.opened(), ["dashboard"])

    def test_a_first_run_that_cannot_open_it_does_not_count(self):
        self.onboarded("false")
        self.window.unlink()
        agent = self.run_agent("--login")
        self.stop(agent)
        self.assertEqual(self.onboarded(), "false")
        self.assertEqual(agent.stderr.read(), "")

    def test_a_person_who_starts_it_sees_the_dashboard(self):
        agent = self.run_agent()
        eventually(lambda: self.opened() == ["dashboard"], "the dashboard opens")
        self.stop(agent)

    def test_a_person_who_starts_it_without_the_windows_is_told(self):
        self.window.unlink()
        agent = self.run_agent()
        self.stop(agent)
        self.assertEqual(
            agent.stderr.read(), f"kestrio: the windows of Kestrio are not installed: there is no {self.window}\n"
        )

    def test_a_second_start_passes_on_the_desktops_leave_to_take_the_front(self):
        self.window.write_text(f'#!/bin/sh\necho "$@ $XDG_ACTIVATION_TOKEN" >> {self.starts}\n')
        agent = self.run_agent("--login")
        subprocess.run(
            [self.programs / "kestrio"], env=self.home.environment | {"XDG_ACTIVATION_TOKEN": "leave"},
            capture_output=True, timeout=DEADLINE, check=True,
        )
        eventually(lambda: self.opened() == ["dashboard leave"], "the dashboard opens")
        self.stop(agent)

    def test_a_second_start_opens_it(self):
        agent = self.run_agent("--login")
        subprocess.run(
            [self.programs / "kestrio"], env=self.home.environment, capture_output=True, timeout=DEADLINE, check=True
        )
        eventually(lambda: self.opened() == ["dashboard"], "the dashboard opens")
        subprocess.run(
            [self.programs / "kestrio", "--login"],
            env=self.home.environment, capture_output=True, timeout=DEADLINE, check=True,
        )
        self.assertEqual(self.opened(), ["dashboard"], "a second login start")
        self.stop(agent)

    def test_the_command_line_opens_a_page(self):
        agent = self.run_agent("--login")
        self.assertEqual(self.home.control("open", "timeline").returncode, 0)
        eventually(lambda: self.opened() == ["dashboard --page timeline"], "the page opens")
        self.stop(agent)

    def test_the_command_line_says_what_is_missing(self):
        self.window.unlink()
        agent = self.run_agent("--login")
        refused = self.home.control("open")
        self.stop(agent)
        self.assertEqual(refused.returncode, 1)
        self.assertEqual(
            refused.stderr, f"kestrioctl: the windows of Kestrio are not installed: there is no {self.window}\n"
        )


if __name__ == "__main__":
    main()
