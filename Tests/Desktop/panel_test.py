#!/usr/bin/python3
"""The real panels before the real agent: opened as the tray icons open them, read and pressed as assistive technology
does; what they do to the agent; and that the agent tells nobody anything who does not look."""

import pathlib
import subprocess
import threading
import time

import dbus

from accessible import Screen
from held import is_stopped
from kestrio_desktop import BIN, DEADLINE, TICK, DesktopTest, eventually, main
from optimizer_test import EDITOR, OptimizerTest

NAME = "dev.haldorvinter.Kestrio.Window"
CLICKED = (1200, 10)  # where a tray icon would be


class PanelTest(DesktopTest):
    def setUp(self):
        super().setUp()
        self.screen = Screen()
        self.bus = dbus.bus.BusConnection(dbus.bus.BusConnection.TYPE_SESSION)
        self.addCleanup(self.bus.close)

    def start_window(self, *arguments, **variables):
        environment = self.home.environment | {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "LC_ALL": "C.UTF-8"}
        window = subprocess.Popen(
            [BIN / "kestrio-window", *arguments], env=environment | variables, stderr=subprocess.PIPE, text=True
        )
        self.started.append(window)
        return window

    def start_panel(self, kind, **variables):
        return self.start_window(kind, "--at", f"{CLICKED[0]},{CLICKED[1]}", **variables)

    def ask_for(self, kind):
        """Asks the process with the windows, as the agent does when an icon is clicked."""
        windows = self.bus.get_object(NAME, "/dev/haldorvinter/Kestrio/Window", introspect=False)
        windows.ShowPanel(kind, True, *CLICKED, dbus_interface=NAME, signature="sbii")

    def ended_well(self, window):
        self.assertEqual(window.wait(timeout=DEADLINE), 0)
        self.assertEqual(window.stderr.read(), "")


class Panels(PanelTest):
    def setUp(self):
        super().setUp()
        self.front = self.open_window("chapter one")
        self.agent = self.start_agent()

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

    def test_who_glances_at_a_panel_still_uses_what_was_in_front(self):
        window = self.start_panel("today")
        eventually(lambda: self.window_named("Today"), "the panel is in front")
        self.screen.shown("XTerm", "label")
        time.sleep(2 * TICK)
        self.assertEqual(self.home.status()["live"]["sample"]["title"], "chapter one")
        self.xdotool("key", "Escape")
        self.ended_well(window)
        self.assertNotIn("Today", {row["title"] for row in self.home.rows()})

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

    def test_the_other_icon_brings_up_its_panel_where_nothing_else_is_open(self):
        window = self.start_panel("today")
        self.screen.shown("Today", "dialog")
        for kind, title in (("system", "System"), ("today", "Today"), ("system", "System")):
            self.ask_for(kind)
            self.screen.shown(title, "dialog")
        self.xdotool("key", "Escape")
        self.ended_well(window)

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

    def test_left_by_the_panel_the_program_ends_with_all_its_windows(self):
        window = self.start_window()
        self.screen.shown("Overview", "list item")
        self.ask_for("today")
        self.screen.press("Quit", "push button")
        self.assertEqual(self.agent.wait(timeout=DEADLINE), 0)
        self.ended_well(window)
        self.assertEqual(self.agent.stderr.read(), "")

    def applications(self, **programs):
        """A folder for XDG_DATA_DIRS with these applications in it, each of which leaves a file when it starts."""
        folder = self.home.path / "share"
        (folder / "applications").mkdir(parents=True)
        for name, left in programs.items():
            program = folder / name
            program.write_text(f"#!/bin/sh\ntouch {left}\n")
            program.chmod(0o700)
            (folder / "applications" / f"{name.replace('_', '-')}.desktop").write_text(
                f"[Desktop Entry]\nType=Application\nName={name}\nExec={program}\n"
            )
        return str(folder)

    def test_the_panel_of_the_system_starts_the_desktops_own_monitor(self):
        left = pathlib.Path(self.home.path, "left")
        window = self.start_panel("system", XDG_DATA_DIRS=self.applications(gnome_system_monitor=left))
        self.screen.press("System Monitor", "push button")
        eventually(left.exists, "it is started")
        self.ended_well(window)

    def test_without_a_monitor_of_the_desktop_there_is_nothing_to_start_it(self):
        window = self.start_panel("system", XDG_DATA_DIRS=self.applications())
        self.screen.shown("Performance", "push button")
        self.assertIsNone(self.screen.find("System Monitor", "push button"))
        self.xdotool("key", "Escape")
        self.ended_well(window)


class Overheard:
    """What the agent tells on the bus, to whomever."""

    def __init__(self):
        rule = "type='signal',interface='dev.haldorvinter.Kestrio'"
        self.monitor = subprocess.Popen(["dbus-monitor", "--session", rule], stdout=subprocess.PIPE, text=True)
        self.signals = []
        self.reader = threading.Thread(target=self.read, daemon=True)
        self.reader.start()

    def read(self):
        for line in self.monitor.stdout:
            if line.startswith("signal") and "interface=dev.haldorvinter.Kestrio;" in line:
                self.signals.append(line.rpartition("member=")[2].strip())

    def count(self, signal):
        return self.signals.count(signal)

    def next(self, signal):
        before = self.count(signal)
        eventually(lambda: self.count(signal) > before, f"{signal} is told")

    def is_silent(self, signal, for_seconds):
        before = self.count(signal)
        time.sleep(for_seconds)
        return self.count(signal) == before

    def close(self):
        self.monitor.kill()
        self.monitor.wait()
        self.reader.join()
        self.monitor.stdout.close()


class Silence(PanelTest):
    def setUp(self):
        super().setUp()
        self.open_window("chapter one")
        self.start_agent()
        self.told = Overheard()
        self.addCleanup(self.told.close)

    def test_readings_of_the_machine_are_told_only_while_their_panel_is_open(self):
        self.start_window()
        self.screen.shown("Overview", "list item")
        self.assertTrue(self.told.is_silent("MonitorReading", 2 * TICK))
        self.ask_for("system")
        self.told.next("MonitorReading")
        self.told.next("MonitorReading")
        self.ask_for("system")
        self.screen.gone("System", "dialog")
        self.assertTrue(self.told.is_silent("MonitorReading", 2 * TICK))

    def test_with_the_last_panel_everything_falls_silent(self):
        window = self.start_panel("today")
        self.told.next("Changed")
        self.xdotool("key", "Escape")
        self.ended_well(window)
        self.assertTrue(self.told.is_silent("Changed", 3 * TICK))


class WhatIsHeldBack(PanelTest, OptimizerTest):
    def test_all_of_it_goes_on_by_the_panel_of_the_system_and_when_the_program_is_left(self):
        editor = self.open_editor()
        agent = self.begin()
        self.hold("freeze", EDITOR)
        self.start_panel("system")
        self.screen.press("Resume All", "push button")
        eventually(lambda: not is_stopped(editor.pid), "it goes on")
        self.hold("freeze", EDITOR)
        self.ask_for("today")
        self.screen.press("Quit", "push button")
        self.assertEqual(agent.wait(timeout=DEADLINE), 0)
        self.assertFalse(is_stopped(editor.pid))


if __name__ == "__main__":
    main()
