#!/usr/bin/python3
"""The icons in a real panel (Xfce's): seen, clicked, and back after the panel was gone. In place of `kestrio-window`
stands a script that notes how it was started."""

import os
import pathlib
import re
import shutil
import subprocess
import unittest

from kestrio_desktop import BIN, DesktopTest, eventually, main

# A row of icons at the top left, and nothing else.
PANEL = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="28"/>
      <property name="icon-size" type="uint" value="22"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
    </property>
  </property>
</channel>
"""
PLACES = ((15, 14), (43, 14))  # the middles of the first two icons


@unittest.skipUnless(shutil.which("xfce4-panel"), "there is no panel here")
class IconsInAPanel(DesktopTest):
    def setUp(self):
        super().setUp()
        channels = pathlib.Path(os.environ["HOME"], ".config/xfce4/xfconf/xfce-perchannel-xml")
        channels.mkdir(parents=True, exist_ok=True)
        (channels / "xfce4-panel.xml").write_text(PANEL)
        programs = self.home.path / "bin"
        programs.mkdir()
        self.agent_program = shutil.copy(BIN / "kestrio", programs)
        self.starts = self.home.path / "starts"
        self.starts.touch()
        window = programs / "kestrio-window"
        window.write_text(f'#!/bin/sh\necho "$@" >> {self.starts}\n')
        window.chmod(0o700)

    def start(self, *command):
        process = subprocess.Popen(command, env=self.home.environment, stderr=subprocess.DEVNULL)
        self.started.append(process)
        return process

    def start_panel(self):
        return self.start("xfce4-panel", "--disable-wm-check")

    def start_agent(self):
        agent = self.start(self.agent_program, "--login")
        eventually(self.home.status, "the agent answers")
        return agent

    def icons(self):
        """How many the panel has taken."""
        answer = subprocess.run(
            ["dbus-send", "--session", "--print-reply", "--dest=org.kde.StatusNotifierWatcher",
             "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties.Get",
             "string:org.kde.StatusNotifierWatcher", "string:RegisteredStatusNotifierItems"],
            capture_output=True, text=True, check=False,
        )
        return answer.stdout.count("org.kde.StatusNotifierItem-")

    def asked_for(self):
        return self.starts.read_text().splitlines()

    def click(self, place, button=1):
        """Clicks until that has asked for something: the panel draws an icon some moments after it took it."""
        before = len(self.asked_for())

        def asked():
            self.xdotool("mousemove", str(place[0]), str(place[1]), "click", str(button))
            return len(self.asked_for()) > before or self.waited(before)

        eventually(asked, f"a click at {place} asks for something")
        return self.asked_for()[-1]

    def waited(self, before):
        try:
            return eventually(lambda: len(self.asked_for()) > before, "soon", deadline=2)
        except AssertionError:
            return False

    def test_both_icons_are_there_and_a_click_asks_for_the_panel_beside_it(self):
        self.start_panel()
        agent = self.start_agent()
        eventually(lambda: self.icons() == 2, "two icons")
        asked = {}
        for place in PLACES:
            kind, at = self.click(place).split()
            asked[kind] = tuple(int(number) for number in re.fullmatch(r"--at=(-?\d+),(-?\d+)", at).groups())
            self.assertLess(abs(asked[kind][0] - place[0]), 40)
            self.assertLess(abs(asked[kind][1] - place[1]), 40)
        self.assertEqual(sorted(asked), ["system", "today"])
        self.stop(agent)
        eventually(lambda: self.icons() == 0, "the icons go with the agent")

    def test_the_second_icon_is_there_only_while_it_is_wanted(self):
        self.home.control("settings", "set", "showSystemMonitor", "false")
        self.start_panel()
        agent = self.start_agent()
        eventually(lambda: self.icons() == 1, "one icon")
        self.home.control("settings", "set", "showSystemMonitor", "true")
        eventually(lambda: self.icons() == 2, "two icons")
        self.home.control("settings", "set", "systemMenuStyle", "hidden")
        eventually(lambda: self.icons() == 1, "one icon")
        self.stop(agent)

    def test_the_icons_come_to_a_panel_that_starts_later_and_to_one_that_restarts(self):
        agent = self.start_agent()
        panel = self.start_panel()
        eventually(lambda: self.icons() == 2, "two icons in a panel that came later")
        self.stop(panel)
        eventually(lambda: self.icons() == 0, "no panel")
        self.start_panel()
        eventually(lambda: self.icons() == 2, "two icons in the panel that came back")
        self.assertIn(self.click(PLACES[0]).split()[0], ("today", "system"))
        self.stop(agent)

    def choose(self, *keys):
        """Opens the menu of the first icon and presses keys, then Return."""
        self.xdotool("mousemove", str(PLACES[0][0]), str(PLACES[0][1]), "click", "3")
        self.xdotool("sleep", "0.5", "key", *keys, "sleep", "0.1", "key", "Return")

    def choose_window(self, window, *keys):
        """Until the entry at the end of these keys has asked for this window."""

        def is_chosen():
            before = len(self.asked_for())
            self.choose(*keys)
            return self.waited(before)

        eventually(is_chosen, f"{keys} choose an entry")
        self.assertEqual(self.asked_for()[-1], window)

    def test_the_menu_opens_windows_and_ends_the_program(self):
        self.home.control("settings", "set", "showSystemMonitor", "false")
        self.start_panel()
        agent = self.start_agent()
        eventually(lambda: self.icons() == 1, "one icon")
        self.click(PLACES[0])  # it is drawn
        self.choose_window("today", "Down")
        self.choose_window("dashboard", "Down", "Down")

        def is_quit_chosen():
            self.choose("Up")
            try:
                return agent.wait(timeout=2) is not None
            except subprocess.TimeoutExpired:
                return False

        eventually(is_quit_chosen, "the last entry is chosen")
        self.assertEqual(agent.returncode, 0)


if __name__ == "__main__":
    main()
