#!/usr/bin/python3
"""The real window when things go wrong around it: the agent, the bus, the disk, the settings, the database, and the
window itself."""

import contextlib
import json
import os
import pathlib
import shutil
import signal
import sqlite3
import subprocess
import time

from accessible import Screen
from kestrio_desktop import BIN, DEADLINE, TICK, DesktopTest, eventually, main

UNREADABLE = "Your history cannot be read"
NOT_RUNNING = "Kestrio is not running"

# How what a page alone shows begins.
MARKS = {
    "Overview": "Active Time, ",
    "Timeline": "Search titles, apps, URLs",
    "Apps": "Select an app",
    "Websites": "Select a website",
    "YouTube": "Time on YouTube, ",
    "Projects": "Select a project",
}


def processor_time(process):
    """Seconds of a core that the process has used."""
    fields = pathlib.Path(f"/proc/{process.pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


class Failures(DesktopTest):
    def setUp(self):
        super().setUp()
        self.screen = Screen()
        # For windows that the programs start, too.
        self.home.environment |= {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "LC_ALL": "C.UTF-8"}

    def shows(self, page):
        """With something in it."""
        return self.screen.find_first(lambda name: name.startswith(MARKS[page]))

    def page_shown(self, page):
        eventually(lambda: self.shows(page), f"the page {page} shows")

    def start_window(self, *arguments, prefix=(), **changes):
        """With these in its environment, or without where absent."""
        environment = {name: value for name, value in (self.home.environment | changes).items() if value is not None}
        window = subprocess.Popen(
            [*prefix, BIN / "kestrio-window", *arguments], env=environment, stderr=subprocess.PIPE, text=True
        )
        self.started.append(window)
        return window

    def make_history(self, days=3):
        self.home.database.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run([BIN / "example-history", self.home.database, str(days)], check=True, capture_output=True)

    def on_screen(self):
        """The dashboard as the window system knows it."""
        return self.xdotool("search", "--onlyvisible", "--name", "^Kestrio$").split()

    def close_dashboard(self, window):
        """As a person does, by the keyboard; what the process said."""
        dashboard = eventually(self.on_screen, "the dashboard is on the screen")[0]
        self.xdotool("windowactivate", "--sync", dashboard)
        self.xdotool("key", "ctrl+w")
        self.assertEqual(window.wait(timeout=DEADLINE), 0)
        return window.stderr.read()

    def section(self):
        return self.home.control("settings", "get", "dashboardSection").stdout.strip()


class TheAgent(Failures):
    def test_its_death_is_said_and_its_return_changes_nothing_on_the_page(self):
        for text in ("chapter one", "chapter two"):
            self.bring(self.open_window(text))
        agent = self.start_agent()
        time.sleep(3 * TICK)
        window = self.start_window("--page", "apps")
        self.screen.press("XTerm", "list item")
        self.screen.shown("Windows & Activity")
        self.screen.press("Previous", "push button")
        self.screen.shown("Yesterday")
        self.screen.press("Next", "push button")
        self.screen.shown("Windows & Activity")
        for _ in range(2):
            self.assertEqual(self.stop(agent, signal.SIGKILL), -signal.SIGKILL)
            self.screen.shown(NOT_RUNNING)
            self.screen.shown("Recording: Not running")
            self.screen.shown("Windows & Activity")
            agent = self.start_agent()
            self.screen.gone(NOT_RUNNING)
            self.screen.shown("Recording: Tracking")
            self.screen.shown("Windows & Activity")
        self.assertEqual(self.section(), "")  # nobody picked another page
        self.assertEqual(self.close_dashboard(window), "")

    def test_a_stopped_one_holds_neither_the_window_nor_the_command_up(self):
        self.make_history()
        self.bring(self.open_window("chapter one"))
        agent = self.start_agent()
        agent.send_signal(signal.SIGSTOP)
        try:
            window = self.start_window()
            self.screen.shown("Overview", "list item")
            self.assertEqual(self.home.control("open", "apps").returncode, 0)
            self.page_shown("Apps")
        finally:
            agent.send_signal(signal.SIGCONT)
        self.screen.shown("Recording: Tracking")
        self.assertIsNone(window.poll())


class TheWindow(Failures):
    def test_killed_it_is_opened_anew_and_the_recording_goes_on(self):
        self.make_history()
        self.bring(self.open_window("chapter one"))
        agent = self.start_agent()
        for _ in range(2):
            self.assertEqual(self.home.control("open", "apps").returncode, 0)
            windows = eventually(self.window_process, "the windows are there")
            self.page_shown("Apps")
            os.kill(windows, signal.SIGKILL)
            eventually(lambda: self.window_process() != windows, "they are gone")
            self.assertIsNone(agent.poll())
            self.assertIn(self.home.status()["state"], ("tracking", "idle"))
        self.assertEqual(self.stop(agent), 0)
        self.assertEqual(agent.stderr.read(), "")

    def test_stopped_it_holds_neither_the_agent_nor_the_command_up(self):
        self.make_history()
        self.bring(self.open_window("chapter one"))
        agent = self.start_agent()
        self.assertEqual(self.home.control("open").returncode, 0)
        windows = eventually(self.window_process, "the windows are there")
        self.screen.shown("Overview", "list item")
        os.kill(windows, signal.SIGSTOP)
        try:
            for _ in range(3):
                refused = self.home.control("open", "apps")
                self.assertEqual(
                    (refused.returncode, refused.stderr), (1, "kestrioctl: the windows of Kestrio do not answer\n")
                )
                self.assertEqual(self.home.status()["state"], "tracking")
        finally:
            os.kill(windows, signal.SIGCONT)
        self.page_shown("Apps")  # what was asked for meanwhile
        self.assertEqual(self.stop(agent), 0)
        self.assertEqual(agent.stderr.read(), "")

    def test_without_an_agent_the_command_line_opens_it_all_the_same(self):
        self.make_history()
        opened = self.home.control("open", "projects")
        self.assertEqual((opened.returncode, opened.stderr), (0, ""))
        windows = eventually(self.window_process, "the windows are there")
        self.screen.shown(NOT_RUNNING)
        self.page_shown("Projects")
        self.assertEqual(self.home.control("open", "apps").returncode, 0)
        self.page_shown("Apps")
        self.assertEqual(self.window_process(), windows)


class TheHistory(Failures):
    def test_whatever_happens_to_the_file_is_said_and_mends_itself(self):
        self.make_history()
        kept = self.home.database.with_suffix(".kept")
        shutil.copy(self.home.database, kept)
        window = self.start_window()
        self.page_shown("Overview")
        self.home.database.unlink()
        self.screen.press("Previous", "push button")
        self.screen.shown(UNREADABLE)
        eventually(lambda: not self.shows("Overview"), "the page goes")
        shutil.copy(kept, self.home.database)
        self.screen.gone(UNREADABLE)
        self.page_shown("Overview")

        self.home.database.write_bytes(b"x" * 100_000)
        self.screen.press("Refresh", "push button")
        self.screen.shown(UNREADABLE)
        self.page_shown("Overview")  # as it was read before
        for page in ("Timeline", "Apps", "Websites", "YouTube", "Projects", "Overview"):
            self.screen.press(page, "list item")
            self.page_shown(page)
            self.screen.shown(UNREADABLE)
        os.replace(kept, self.home.database)
        self.screen.gone(UNREADABLE)
        self.assertRegex(self.close_dashboard(window), "^Kestrio: Could not open database: [^\n]*\n$")

    def test_one_that_another_program_keeps_to_itself_holds_nobody_up(self):
        self.make_history()
        with contextlib.closing(sqlite3.connect(self.home.database)) as other:
            other.execute("PRAGMA locking_mode = EXCLUSIVE")
            other.execute("BEGIN EXCLUSIVE")
            window = self.start_window()
            for page in ("Timeline", "Apps", "Overview"):
                self.screen.press(page, "list item")
                eventually(lambda: self.section() == page.lower(), f"{page} is the page")
            self.screen.shown(UNREADABLE)
            self.assertIsNone(self.screen.find("No activity yet"))
        self.page_shown("Overview")
        self.screen.gone(UNREADABLE)
        self.assertEqual(self.close_dashboard(window), "Kestrio: Database error: database is locked\n")

    def test_one_that_cannot_be_read_from_the_start_does_not_look_empty(self):
        self.home.database.parent.mkdir(parents=True)
        self.home.database.write_bytes(b"x" * 100_000)
        self.start_window()
        self.screen.shown(UNREADABLE)
        self.assertIsNone(self.screen.find("No activity yet"))
        self.home.database.unlink()
        self.make_history()
        self.page_shown("Overview")


class TheDisk(Failures):
    def setUp(self):
        super().setUp()
        self.private = ["unshare", "--mount"]
        if os.getuid() != 0:
            self.private = ["unshare", "--user", "--map-root-user", "--mount"]
        if subprocess.run([*self.private, "mount", "-t", "tmpfs", "disk", "/mnt"], capture_output=True).returncode:
            self.skipTest("this machine lets nobody mount a small disk")

    def in_private(self, script):
        """The beginning of a command line that runs what follows where the script has been."""
        return [*self.private, "sh", "-c", script + ' && exec "$@"', "sh"]

    def test_a_home_that_cannot_be_written_to_shows_what_is_there(self):
        self.make_history()
        home = self.home.path
        window = self.start_window(prefix=self.in_private(f'mount --bind "{home}" "{home}" && mount -o remount,bind,ro "{home}"'))
        self.page_shown("Overview")
        self.screen.press("Apps", "list item")
        self.page_shown("Apps")
        self.close_dashboard(window)

    def test_a_full_one_keeps_nobody_from_looking(self):
        self.make_history()
        copy = self.home.path.with_suffix(".copy")
        shutil.copytree(self.home.path, copy)
        self.addCleanup(shutil.rmtree, copy, True)
        home = self.home.path
        window = self.start_window(
            prefix=self.in_private(
                f'mount -t tmpfs -o size=2m disk "{home}" && cp -r "{copy}/." "{home}" && '
                f'(dd if=/dev/zero of="{home}/ballast" bs=1k 2>/dev/null || true)'
            )
        )
        self.page_shown("Overview")
        for page in ("Timeline", "Apps", "Overview"):
            self.screen.press(page, "list item")
            self.page_shown(page)
        self.close_dashboard(window)


class TheSurroundings(Failures):
    def test_a_window_without_a_bus_and_a_place_for_sockets(self):
        self.make_history()
        window = self.start_window(
            DBUS_SESSION_BUS_ADDRESS=None, XDG_RUNTIME_DIR=None, QT_LINUX_ACCESSIBILITY_ALWAYS_ON=None
        )
        self.close_dashboard(window)

    def test_a_bus_that_goes_away_takes_nothing_along(self):
        self.make_history()
        bus = subprocess.Popen(
            ["dbus-daemon", "--session", "--nofork", "--print-address"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
        )
        self.started.append(bus)
        window = self.start_window(
            DBUS_SESSION_BUS_ADDRESS=bus.stdout.readline().strip(), QT_LINUX_ACCESSIBILITY_ALWAYS_ON=None
        )
        eventually(self.on_screen, "the dashboard is on the screen")
        time.sleep(1)
        self.stop(bus)
        time.sleep(1)
        before = processor_time(window)
        time.sleep(2 * TICK)
        self.assertIsNone(window.poll())
        self.assertLess(processor_time(window) - before, 0.5 * TICK, "it runs in circles")
        self.close_dashboard(window)

    def test_settings_that_make_no_sense_are_as_if_there_were_none(self):
        self.make_history()
        settings = self.home.path / "config" / "Kestrio" / "settings.json"
        size = self.home.path / "cache" / "Kestrio" / "dashboard-size"
        odd = {"dashboardSection": 7, "idleMinutes": "soon", "appearanceMode": ["dark"], "showYouTubeThumbnails": "yes",
               "dismissedBrowserBanner": 3, "customAppCategories": "none", "projectRules": {"a": 1}}
        for name, text, stored_size in (
            ("nonsense", "{ not a setting", "1 2"),
            ("of another kind", json.dumps(odd), "a b"),
            ("a page that is not there", json.dumps({"dashboardSection": "gone"}), "99999999999999999999 1"),
            ("larger than any screen", "{}", "19000 19000"),
        ):
            with self.subTest(name):
                settings.parent.mkdir(parents=True, exist_ok=True)
                settings.write_text(text)
                size.parent.mkdir(parents=True, exist_ok=True)
                size.write_text(stored_size)
                window = self.start_window()
                self.page_shown("Overview")
                self.page_shown("Overview")
                dashboard = eventually(self.on_screen, "the dashboard is on the screen")[0]
                place = dict(line.split("=") for line in self.xdotool("getwindowgeometry", "--shell", dashboard).splitlines())
                screen = [int(number) for number in self.xdotool("getdisplaygeometry").split()]
                self.assertLessEqual(int(place["WIDTH"]), screen[0])
                self.assertLess(int(place["HEIGHT"]), screen[1])
                self.close_dashboard(window)
                self.screen.gone("Overview", "list item")


if __name__ == "__main__":
    main()
