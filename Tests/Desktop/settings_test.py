#!/usr/bin/python3
"""The real settings window before the real agent, driven as assistive technology does: tabs, a switch, and one window for
whoever asks for it."""

import subprocess

from accessible import Screen
from kestrio_desktop import BIN, DesktopTest, eventually, main


class Settings(DesktopTest):
    def setUp(self):
        super().setUp()
        self.screen = Screen()

    def start_settings(self, *arguments):
        environment = self.home.environment | {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "LC_ALL": "C.UTF-8"}
        window = subprocess.Popen(
            [BIN / "kestrio-window", "settings", *arguments], env=environment, stderr=subprocess.PIPE, text=True
        )
        self.started.append(window)
        return window

    def setting(self, key):
        return self.home.control("settings", "get", key).stdout.strip()

    def test_a_person_finds_their_way_through_the_tabs(self):
        self.start_agent()
        window = self.start_settings()
        self.screen.shown("General", "list item")
        for tab in ("Categories", "Projects", "Optimization", "Permissions", "Data", "About", "General"):
            self.screen.press(tab, "list item")
            eventually(lambda: self.setting("settingsTab") == tab.lower(), f"{tab} is the tab")
        self.screen.press("Show the activity light", "check box")
        eventually(lambda: self.setting("showActivityLight") == "false", "the light is off")
        self.stop(window)
        self.assertEqual(window.stderr.read(), "")

    def test_the_optimizer_is_switched_by_the_agent(self):
        self.start_agent()
        self.start_settings("--tab", "optimization")
        self.screen.press("Optimize my computer", "check box")
        eventually(lambda: self.setting("optimizerEnabled") == "true", "the optimizer is on")

    def test_a_second_request_goes_to_the_window_that_is_there(self):
        first = self.start_settings("--tab", "about")
        self.screen.shown("Copy System Info", "push button")
        second = self.start_settings("--tab", "data")
        self.assertEqual(second.wait(timeout=30), 0)
        self.screen.shown("Recorded sessions")
        self.assertIsNone(first.poll())


if __name__ == "__main__":
    main()
