#!/usr/bin/python3
"""The real panels before the real agent: opened as the tray icons open them, read and pressed as assistive technology
does."""

import subprocess

import dbus

from accessible import Screen
from kestrio_desktop import BIN, DEADLINE, DesktopTest, eventually, main

NAME = "dev.haldorvinter.Kestrio.Window"
CLICKED = (1200, 10)  # where a tray icon would be


class Panels(DesktopTest):
    def setUp(self):
        super().setUp()
        self.screen = Screen()
        self.bus = dbus.bus.BusConnection(dbus.bus.BusConnection.TYPE_SESSION)
        self.addCleanup(self.bus.close)
        self.front = self.open_window("chapter one")
        self.start_agent()

    def start_window(self, *arguments):
        environment = self.home.environment | {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "LC_ALL": "C.UTF-8"}
        window = subprocess.Popen(
            [BIN / "kestrio-window", *arguments], env=environment, stderr=subprocess.PIPE, text=True
        )
        self.started.append(window)
        return window

    def start_panel(self, kind):
        return self.start_window(kind, "--at", f"{CLICKED[0]},{CLICKED[1]}")

    def ask_for(self, kind):
        """Asks the process with the windows, as the agent does when an icon is clicked."""
        windows = self.bus.get_object(NAME, "/dev/haldorvinter/Kestrio/Window", introspect=False)
        windows.ShowPanel(kind, True, *CLICKED, dbus_interface=NAME, signature="sbii")

    def ended_well(self, window):
        self.assertEqual(window.wait(timeout=DEADLINE), 0)
        self.assertEqual(window.stderr.read(), "")

    def test_the_panel_of_today_says_what_is_recorded_and_pauses_it(self):
        window = self.start_panel("today")
        self.screen.shown("Today", "heading")
        self.screen.shown("Active", "label")
        self.screen.press("Pause tracking", "push button")
        eventually(lambda: self.home.status()["state"] == "paused", "the recording pauses")
        self.screen.shown("Paused", "label")
        self.screen.press("Resume tracking", "push button")
        eventually(lambda: self.home.status()["state"] == "tracking", "the recording goes on")
        self.screen.shown("Active", "label")
        self.xdotool("key", "Escape")
        self.ended_well(window)

    def test_the_panel_of_the_system_says_how_the_machine_is(self):
        window = self.start_panel("system")
        self.screen.shown("System", "heading")
        self.screen.shown("Top apps", "heading")
        eventually(lambda: self.screen.find_first(lambda name: name.startswith("Memory, ")), "how full the memory is")
        self.screen.shown("Optimization is off", "push button")
        self.xdotool("key", "Escape")
        self.ended_well(window)

    def test_asked_for_again_a_panel_closes_and_for_the_other_one_it_makes_room(self):
        window = self.start_window()
        self.screen.shown("Overview", "list item")
        self.ask_for("today")
        self.screen.shown("Today", "dialog")
        self.ask_for("system")
        self.screen.shown("System", "dialog")
        self.screen.gone("Today", "dialog")
        self.ask_for("system")
        self.screen.gone("System", "dialog")
        self.assertIsNone(window.poll())
        self.stop(window)
        self.assertEqual(window.stderr.read(), "")

    def test_a_panel_stands_beside_its_icon_and_goes_when_another_window_is_brought_forward(self):
        window = self.start_panel("today")
        self.screen.shown("Today", "dialog")
        panel = eventually(lambda: self.window_named("Today"), "the panel is in front")
        place = dict(line.split("=") for line in self.xdotool("getwindowgeometry", "--shell", panel).splitlines())
        self.assertGreaterEqual(int(place["Y"]), CLICKED[1])
        self.assertLess(int(place["Y"]) - CLICKED[1], 60)
        self.assertLessEqual(int(place["X"]), CLICKED[0])
        self.assertGreaterEqual(int(place["X"]) + int(place["WIDTH"]), CLICKED[0])
        self.bring(self.front)
        self.ended_well(window)


if __name__ == "__main__":
    main()
