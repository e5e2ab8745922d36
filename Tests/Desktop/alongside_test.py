#!/usr/bin/python3
"""What plays alongside, recorded of real browsers that make real sound: which tab is heard, and which video watched."""

import secrets
import subprocess
import time

from kestrio_desktop import main
from recorded_browsing import RecordedBrowsing
from stage import MUSIC, VIDEO

MUSIC_SITE = "www.mixcloud.com"  # by name only: the browsers find it on this machine
LONG_ENOUGH = 15  # seconds: a check is due every 4, and what lasts less than 10 leaves no row
LATE = 12  # seconds until a start or an end is noticed at most: five of silence, and then the next check


class Alongside(RecordedBrowsing):
    def music(self, name, **more):
        return self.page(name, body=MUSIC, host=MUSIC_SITE, **more)

    def play(self, seconds=LONG_ENOUGH):
        self.stage.spend(seconds)
        return time.time()

    def assert_row(self, row, page, start, end):
        recorded = (row["bundle_id"], row["title"], row["url"])
        self.assertEqual(recorded, (self.stage.browser.ID, page.title, page.address))
        self.assertAlmostEqual(row["start"], start, delta=LATE)
        self.assertAlmostEqual(row["end"], end, delta=LATE)
        self.assertIsNone(row["project"])


class Music:
    """A tab in the background of the browser in front is heard, whatever is in front of it."""

    def test_music_in_a_background_tab_until_it_is_muted_and_until_it_is_paused(self):
        stage = self.stage
        song, reading, more = self.music("song"), self.page("reading"), self.page("more")
        stage.open_browser(song)
        self.hold()
        stage.open_browser(reading)
        started = time.time()
        self.play(LONG_ENOUGH / 2)
        stage.go(more)  # what is in front does not disturb it
        self.play(LONG_ENOUGH / 2)
        song.tell("media.muted = true")
        muted = self.play(0)
        self.play(LATE)
        song.tell("media.muted = false")
        heard = self.play(0)
        self.play()
        song.tell("media.pause()")
        paused = self.play(0)
        self.play(LATE)
        self.end_agent()
        listened = self.rows_of("listening")
        self.assertEqual(len(listened), 2, listened)
        self.assert_row(listened[0], song, started, muted)
        self.assert_row(listened[1], song, heard, paused)
        self.assertEqual({row["domain"] for row in listened}, {"mixcloud.com"})
        self.assertEqual(self.rows_of("watching"), [])
        self.assertLess({reading.address, more.address}, {row["url"] for row in self.rows_of("focus")})


class PrivateMusic:
    def test_of_what_sounds_in_a_private_window_nothing_is_recorded(self):
        stage, mark = self.stage, "privy" + secrets.token_hex(8)
        stage.open_browser(self.page("reading"))
        text, _ = stage.terminal("notes")
        stage.open_private(stage.site.add(mark, f"Song {mark}", body=MUSIC, host=MUSIC_SITE))
        stage.bring(text)
        self.play(LONG_ENOUGH + 2)
        self.assert_no_trace(mark)
        self.end_agent()
        self.assert_no_trace(mark)
        self.assertNotIn(MUSIC_SITE, str(self.home.rows()))


class Video:
    def two_monitors(self):
        """The screen, cut in two."""
        width, height = 640, 800
        for name, left, output in (("left", 0, "screen"), ("right", width, "none")):
            area = f"{width}/{width}x{height}/{height}+{left}+0"
            subprocess.run(["xrandr", "--setmonitor", name, area, output], check=True, capture_output=True)
            self.addCleanup(subprocess.run, ["xrandr", "--delmonitor", name], check=True)

    def test_a_video_on_the_second_monitor_is_watched_while_something_else_is_in_front(self):
        stage = self.stage
        self.two_monitors()
        text, _ = stage.terminal("notes")
        film = self.page("film", body=VIDEO)
        window = stage.open_browser(film)
        stage.xdotool("windowsize", "--sync", str(window), "600", "600")
        stage.xdotool("windowmove", "--sync", str(window), "660", "60")
        self.play(4)  # it makes its film
        stage.bring(text)
        started = self.play(0)
        self.play(LONG_ENOUGH)
        film.tell("media.pause()")
        paused = self.play(0)
        self.play(LATE)
        self.end_agent()
        watched = self.rows_of("watching")
        self.assertEqual(len(watched), 1, watched)
        self.assert_row(watched[0], film, started, paused)
        focused = [row for row in self.rows_of("focus") if row["title"] == "notes"]
        self.assertGreater(max(row["end"] - row["start"] for row in focused), LONG_ENOUGH)

    def test_a_video_in_front_is_the_main_line_alone(self):
        stage = self.stage
        film = self.page("film", body=VIDEO)
        stage.open_browser(film)
        self.play(LONG_ENOUGH + 4)
        self.end_agent()
        self.assertEqual(self.rows_of("watching") + self.rows_of("listening"), [])
        self.assertEqual(self.rows_of("focus")[-1]["url"], film.address)


class ChromiumByBridge(Music, PrivateMusic, Video, Alongside):
    BROWSER, SOURCES = "chromium", ("bridge",)


class ChromiumByAccessibility(PrivateMusic, Alongside):
    # Music in the background is not told from a video in front without the bridge: Chromium keeps the display awake
    # for either.
    BROWSER, SOURCES = "chromium", ("accessibility",)


class FirefoxByBridge(Music, PrivateMusic, Alongside):
    BROWSER, SOURCES = "firefox", ("bridge",)


if __name__ == "__main__":
    main()
