#!/usr/bin/python3
"""The real window before the real agent, driven as assistive technology does: pages, dates, pause and resume; and what
happens to the recording when the window dies."""

import signal
import subprocess
import time

from accessible import Screen
from kestrio_desktop import BIN, TICK, DesktopTest, eventually, main


class Window(DesktopTest):
    def setUp(self):
        super().setUp()
        self.screen = Screen()

    def start_window(self, *arguments):
        environment = self.home.environment | {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "LC_ALL": "C.UTF-8"}
        window = subprocess.Popen(
            [BIN / "kestrio-window", *arguments], env=environment, stderr=subprocess.PIPE, text=True
        )
        self.started.append(window)
        return window

    def state(self):
        return self.home.status()["state"]

    def test_a_person_finds_their_way_through_the_dashboard(self):
        self.bring(self.open_window("chapter one"))
        self.start_agent()
        time.sleep(3 * TICK)
        window = self.start_window()
        self.screen.shown("Overview", "list item")
        self.screen.shown("Recording: Tracking")
        for page in ("Timeline", "Apps", "Websites", "YouTube", "Projects", "Overview"):
            self.screen.press(page, "list item")
            section = {"YouTube": "youtube"}.get(page, page.lower())
            eventually(
                lambda: self.home.control("settings", "get", "dashboardSection").stdout.strip() == section,
                f"{page} is the page",
            )
        self.screen.press("Previous", "push button")
        self.screen.shown("Yesterday")
        self.screen.press("Today", "push button")
        self.screen.gone("Yesterday")

        self.home.control("pause")
        self.screen.shown("Recording: Paused")
        self.screen.press("Resume Tracking", "push button")
        eventually(lambda: self.state() != "paused", "the recording goes on")
        self.screen.shown("Pause Tracking")

        self.assertIsNone(window.poll())
        self.stop(window)
        self.assertEqual(window.stderr.read(), "")

    def test_the_dashboard_is_no_larger_than_the_screen(self):
        self.start_window()
        self.screen.shown("Overview", "list item")
        screen = [int(number) for number in self.xdotool("getdisplaygeometry").split()]
        window = self.xdotool("search", "--onlyvisible", "--name", "^Kestrio$").split()[0]
        geometry = dict(line.split("=") for line in self.xdotool("getwindowgeometry", "--shell", window).splitlines())
        self.assertLessEqual(int(geometry["WIDTH"]), screen[0])
        self.assertLess(int(geometry["HEIGHT"]), screen[1])

    def test_the_first_run_of_all_brings_the_dashboard_to_the_front(self):
        self.home.control("settings", "set", "hasOnboarded", "false")
        self.start_agent()
        eventually(lambda: self.window_named("Kestrio"), "the dashboard is in front")

    def test_however_it_is_asked_for_a_dashboard_comes_back_from_the_taskbar(self):
        self.start_agent()
        self.start_window()
        ways = {
            "the command line": [BIN / "kestrioctl", "open"],
            "a start by hand": [BIN / "kestrio"],
            "the desktop entry of the windows": [BIN / "kestrio-window"],
        }
        for way, command in ways.items():
            dashboard = eventually(lambda: self.window_named("Kestrio"), "the dashboard is in front")
            self.xdotool("windowminimize", dashboard)
            eventually(lambda: not self.window_named("Kestrio"), "it is put away")
            self.bring(self.open_window(f"before {way}"))
            subprocess.run(command, env=self.home.environment, capture_output=True, timeout=30, check=True)
            self.assertEqual(eventually(lambda: self.window_named("Kestrio"), f"{way} brings it back"), dashboard)

    def test_a_second_window_hands_its_request_over_and_ends(self):
        self.bring(self.open_window("chapter one"))
        self.start_agent()
        time.sleep(3 * TICK)  # a day with nothing in it cannot be searched
        first = self.start_window()
        self.screen.shown("Overview", "list item")
        second = self.start_window("--page", "timeline")
        self.assertEqual(second.wait(timeout=30), 0)
        self.screen.shown("Search titles, apps, URLs")
        self.assertIsNone(first.poll())

    def test_the_death_of_the_window_changes_nothing_in_the_recording(self):
        first = self.open_window("chapter one")
        agent = self.start_agent()
        self.bring(first)
        window = self.start_window()
        self.screen.shown("Overview", "list item")
        self.bring(first)
        time.sleep(2 * TICK)
        window.send_signal(signal.SIGKILL)
        window.wait()
        self.touch()
        time.sleep(3 * TICK)
        self.assertIsNone(agent.poll())
        self.assertEqual(self.stop(agent), 0)
        rows = [row for row in self.home.rows() if row["title"] == "chapter one"]
        self.assertTrue(rows)
        self.assertGreater(rows[-1]["end"] - rows[-1]["start"], 3 * TICK)

    def test_the_band_that_tells_of_a_missing_agent_stands_below_the_head_of_the_page(self):
        self.start_window()
        band = self.screen.shown("Kestrio is not running")
        head = self.screen.shown("Today", "heading")

        def is_below():
            _, top, _, height = head.place()
            return band.place()[1] >= top + height

        eventually(is_below, "the band stands below the head")

    def test_without_an_agent_the_window_starts_one(self):
        window = self.start_window()
        self.screen.shown("Kestrio is not running")
        self.screen.press("Start Kestrio", "push button")
        self.screen.shown("Recording: Tracking")
        status = self.home.status()
        self.assertIsNone(window.poll())
        subprocess.run(["kill", str(status["processIdentifier"])], check=True)
        self.screen.shown("Kestrio is not running")


if __name__ == "__main__":
    main()
