#!/usr/bin/python3
"""What is recorded of real browsers: the tab in front and no other, and of private windows that they are private."""

import os
import secrets
import signal
import time

from kestrio_desktop import eventually, main
from recorded_browsing import HOLD, SLACK, RecordedBrowsing
from witness import PRIVATE_TITLE, TICK

READ_DEADLINE = 2  # seconds that a browser may take to say what its tab is


class Tabs:
    """The tab in front, however the browser tells of itself."""

    def test_tabs_navigation_and_background_tabs(self):
        stage = self.stage
        text, _ = stage.terminal("notes")
        first = self.page("first")
        window = stage.open_browser(first)
        self.hold(2 * HOLD)  # a browser that starts tells of itself a moment later
        since = time.time()
        second, quiet = self.page("second"), self.page("quiet")
        link = f'<a id=link href="{quiet.address}">there</a><script>onload = () => link.focus()</script>'
        stage.open_browser(second)
        self.hold()
        stage.key("ctrl+Tab")
        stage.sees_page(first)
        self.hold()
        links = self.page("links", body=link)
        stage.go(links)
        self.hold()
        stage.key("ctrl+Return")  # into the background, where it stays
        self.hold()
        stage.key("alt+Left")
        stage.sees_page(first)
        self.hold()
        stage.bring(text)
        self.hold()
        stage.bring(window)
        self.hold()
        self.assert_the_rows_are_the_truth(since)
        recorded = {row["url"] for row in self.rows_of("focus")}
        self.assertEqual(recorded, {None, first.address, second.address, links.address})


class PrivateWindows:
    """Nothing of them but that they are private, however the browser tells of itself."""

    def test_of_a_private_window_only_that_it_is_private(self):
        stage, mark = self.stage, "privy" + secrets.token_hex(8)
        first = self.page("first")
        ordinary = stage.open_browser(first)
        self.hold(2 * HOLD)
        since = time.time()
        private = stage.open_private(stage.site.add(f"a-{mark}", f"Secret {mark}"))
        self.hold()
        stage.go(stage.site.add(f"b-{mark}", f"Another {mark}"), private=True)
        self.hold()
        stage.go(first, private=True)  # the same page as in the other window
        self.hold()
        stage.bring(ordinary)
        self.hold()
        stage.bring(private)
        self.hold()
        self.assert_no_trace(mark)
        self.assert_the_rows_are_the_truth(since)
        self.assert_no_trace(mark)
        private_rows = [row for row in self.rows_of("focus") if row["title"] == PRIVATE_TITLE]
        self.assertEqual({(row["url"], row["domain"]) for row in private_rows}, {(None, None)})


class Stopping:
    """A browser that hangs holds nothing up but the one look that finds it so."""

    def test_a_stopped_browser_makes_one_tick_late_and_recording_goes_on(self):
        stage = self.stage
        text, _ = stage.terminal("notes")
        first = self.page("first")
        window = stage.open_browser(first)
        self.hold(2 * HOLD)
        process = int(stage.xdotool("getwindowpid", str(window)))
        self.addCleanup(self.revive, process)
        os.kill(process, signal.SIGSTOP)
        self.hold(2 * HOLD)
        switched = time.time()
        stage.bring(text)
        self.hold(2 * HOLD)
        revived = time.time()
        self.revive(process)
        stage.bring(window)
        self.hold(2 * HOLD)
        self.end_agent()
        rows = self.rows_of("focus")
        (notes,) = [row for row in rows if row["title"] == "notes" and row["end"] > switched]
        self.assertLess(notes["start"] - switched, READ_DEADLINE + SLACK)
        self.assertLess(abs(notes["end"] - revived), TICK + SLACK)
        self.assertEqual(rows[-1]["url"], first.address)
        for earlier, later in zip(rows, rows[1:]):
            self.assertLess(later["start"] - earlier["end"], READ_DEADLINE + SLACK, "a gap")

    @staticmethod
    def revive(process):
        try:
            os.kill(process, signal.SIGCONT)
        except ProcessLookupError:
            pass


class Killing:
    """A browser that dies takes nothing with it."""

    def test_a_killed_browser_ends_its_row_and_the_next_one_is_read(self):
        stage = self.stage
        stage.terminal("notes")
        first, second = self.page("first"), self.page("second")
        window = stage.open_browser(first)
        self.hold(2 * HOLD)
        os.kill(int(stage.xdotool("getwindowpid", str(window))), signal.SIGKILL)
        killed = time.time()
        stage.sees(stage.shows_text("xterm")("notes"), "the terminal below")
        self.hold()
        for process in stage.started:
            eventually(lambda p=process: p.poll() is not None or p.args[0] == "xterm", "the browser is gone")
        stage.open_browser(second)
        self.hold(2 * HOLD)
        self.end_agent()
        rows = self.rows_of("focus")
        (ended,) = [row for row in rows if row["url"] == first.address]
        self.assertLess(ended["end"] - killed, TICK + SLACK)
        self.assertEqual(rows[-1]["url"], second.address)


class ChromiumByBridge(Tabs, PrivateWindows, Stopping, RecordedBrowsing):
    BROWSER, SOURCES = "chromium", ("bridge",)


class ChromiumByAccessibility(Tabs, PrivateWindows, Stopping, RecordedBrowsing):
    BROWSER, SOURCES = "chromium", ("accessibility",)


class ChromiumByBoth(Tabs, RecordedBrowsing):
    BROWSER, SOURCES = "chromium", ("bridge", "accessibility")


class FirefoxByBridge(Tabs, PrivateWindows, Killing, RecordedBrowsing):
    BROWSER, SOURCES = "firefox", ("bridge",)


class FirefoxByAccessibility(Tabs, PrivateWindows, Killing, RecordedBrowsing):
    BROWSER, SOURCES = "firefox", ("accessibility",)


class FirefoxByBoth(Tabs, RecordedBrowsing):
    BROWSER, SOURCES = "firefox", ("bridge", "accessibility")


if __name__ == "__main__":
    main()
