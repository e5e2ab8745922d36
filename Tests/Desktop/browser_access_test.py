#!/usr/bin/python3
"""The band about a browser's tabs in the real window, before the real agent and real browsers: it shows for a browser that
cannot be read, lets it in at a word, and goes when the browser tells of itself."""

import json
import shutil
import subprocess
import unittest

import dbus

from accessible import Screen
from kestrio_desktop import BIN, DesktopTest, eventually, main
from stage import BROWSERS, Site

MANIFEST = "dev.haldorvinter.kestrio.tabs.json"
RETRY = 90  # seconds; the extension looks for its host less and less often, every minute at last


class BrowserAccess:
    """What holds for every browser. `BROWSER` says which, `FOLDER` where it looks for manifests."""

    def setUp(self):
        super().setUp()
        kind = BROWSERS[self.BROWSER]
        if not kind.is_installed():
            raise unittest.SkipTest(f"{self.BROWSER} is not installed")
        self.person = self.home.path / "person"
        # With its extension in it, and no leave yet to start the host.
        self.browser = kind(self.home, self.person, ("bridge",))
        self.control("browsers", "--remove")
        self.manifest = self.person / self.FOLDER / MANIFEST
        self.assertFalse(self.manifest.exists())
        self.site = Site(self.home.path)
        self.addCleanup(self.site.close)
        self.page = self.site.add("first", "The first page")
        self.install()
        self.home.environment |= {
            "XDG_DATA_DIRS": str(self.home.path / "share"),
            "XDG_DATA_HOME": str(self.home.path / "none"),
        }
        self.title = f"Track {self.NAME} tabs"
        self.screen = Screen()

    def install(self):
        """Of all browsers of this machine only this one, in the way that it is started here."""
        program = self.home.path / "programs" / self.browser.PROGRAM
        program.parent.mkdir()
        words = " ".join(f"'{word}'" for word in self.browser.command())
        program.write_text(f'#!/bin/sh\nexec {words} "$@"\n')
        program.chmod(0o700)
        applications = self.home.path / "share" / "applications"
        applications.mkdir(parents=True)
        (applications / f"{self.browser.PROGRAM}.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName={self.NAME}\nExec={program} %U\n"
            f"StartupWMClass={self.WINDOW_CLASS}\n"
        )

    def control(self, *arguments):
        answer = subprocess.run(
            [BIN / "kestrioctl", *arguments], env=self.browser.environment, capture_output=True, text=True, timeout=30
        )
        self.assertEqual(answer.returncode, 0, answer.stderr)
        return answer.stdout

    def found(self):
        return next(each for each in json.loads(self.control("browsers", "--json")) if each["bundleID"] == self.browser.ID)

    def start_browser(self, *arguments):
        process = self.browser.open(*arguments, self.page.address)
        self.started.append(process)
        eventually(lambda: self.xdotool("search", "--onlyvisible", "--name", self.page.title), "the browser shows")
        return process

    def start_window(self):
        environment = self.home.environment | {
            "HOME": self.browser.environment["HOME"],
            "XDG_CONFIG_HOME": self.browser.environment["XDG_CONFIG_HOME"],
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            "LC_ALL": "C.UTF-8",
            "PATH": f"{self.home.path / 'stand-ins'}:{self.home.environment['PATH']}",
        }
        window = subprocess.Popen([BIN / "kestrio-window"], env=environment, stderr=subprocess.PIPE, text=True)
        self.started.append(window)
        self.screen.shown("Recording: Tracking")
        return window

    def ended_well(self, window):
        self.stop(window)
        self.assertEqual(window.stderr.read(), "")

    def said(self):
        """What the band says below its title."""
        return str(self.screen.shown(self.title).ask("Description"))

    def stands_below_the_range(self):
        left, top, width, _ = self.screen.shown(self.title, "alert").place()
        range_left, range_top, range_width, range_height = self.screen.shown("Month").place()
        return top >= range_top + range_height - 1 and left < range_left and left + width > range_left + range_width

    def goes(self):
        eventually(lambda: self.screen.find(self.title) is None, "the band goes", RETRY)

    def test_the_band_lets_the_browser_in_and_goes_when_it_tells_of_itself(self):
        agent = self.start_agent()
        browser = self.start_browser()
        window = self.start_window()
        eventually(self.stands_below_the_range, "the band has its place")
        self.screen.press("Allow", "push button")
        eventually(self.manifest.exists, "the manifest is there")
        self.assertEqual(json.loads(self.manifest.read_text())["path"], str(BIN / "kestrio-tabs"))
        self.screen.gone("Allow", "push button")
        self.screen.shown("Dismiss", "push button")
        self.goes()
        self.assertTrue(self.found()["connected"])

        # An agent that comes back learns it all again.
        self.stop(agent)
        self.screen.shown("Kestrio is not running")
        self.assertIsNone(self.screen.find(self.title))
        self.start_agent()
        self.screen.gone("Kestrio is not running")
        eventually(lambda: self.found()["connected"], "the browser tells the new agent", RETRY)
        self.goes()

        # A browser that has ended is not taken for one that is read.
        browser.terminate()
        browser.wait(timeout=30)
        self.screen.shown(self.title)
        self.screen.press("Dismiss", "push button")
        self.screen.gone(self.title)
        self.assertEqual(self.home.control("settings", "get", "dismissedBrowserBanner").stdout.strip(), "true")
        self.ended_well(window)

    def test_a_browser_that_does_not_run_is_let_in_and_started(self):
        self.start_agent()
        window = self.start_window()
        self.screen.shown(self.title)
        self.assertFalse(self.manifest.exists())
        self.screen.press("Allow", "push button")
        eventually(self.manifest.exists, "the manifest is there")
        eventually(lambda: self.found()["connected"], "the browser was started, and tells of itself", RETRY)
        self.goes()
        self.ended_well(window)

    def test_a_browser_that_shows_its_pages_to_assistive_programs_needs_nothing(self):
        self.browser.environment |= self.browser.ACCESSIBLE
        self.start_browser()
        self.start_agent()
        window = self.start_window()
        # It was never in front of this agent, and is looked at because the window asks.
        eventually(lambda: self.found()["accessible"], "its pages are read")
        self.goes()
        self.assertFalse(self.found()["connected"])
        self.ended_well(window)

    def test_what_is_left_to_the_person_is_said_and_led_to(self):
        self.browser.sources = ()
        self.forget_extension()
        opener = self.home.path / "stand-ins" / "xdg-open"
        opener.parent.mkdir()
        opener.write_text(f'#!/bin/sh\necho "$@" > "{self.opened}"\n')
        opener.chmod(0o700)
        self.start_agent()
        self.start_browser()
        window = self.start_window()
        self.screen.press("Allow", "push button")
        self.screen.shown(self.STEP_BUTTON, "push button")
        self.assertTrue(self.said().startswith(f"{self.NAME} may now tell of its tabs, and one step is left to you. Open "))
        self.assertIn(str(BIN.parent / "extension"), self.said())
        self.screen.press(self.STEP_BUTTON, "push button")
        eventually(self.is_led_there, "the place for it opens")
        self.ended_well(window)

    def forget_extension(self):
        pass

    @property
    def opened(self):
        return self.home.path / "opened"

    def test_without_a_window_system_the_running_browser_is_known_by_its_process(self):
        self.home.environment.pop("DISPLAY")
        self.start_agent()
        bus = dbus.bus.BusConnection(dbus.bus.BusConnection.TYPE_SESSION)
        self.addCleanup(bus.close)
        agent = bus.get_object("dev.haldorvinter.Kestrio", "/dev/haldorvinter/Kestrio", introspect=False)

        def told():
            return [str(each[0]) for each in agent.Browsers(dbus_interface="dev.haldorvinter.Kestrio")]

        self.start_browser()
        eventually(lambda: self.browser.ID in told(), "it runs")

    def test_where_the_manifest_cannot_be_written_the_band_says_so_and_goes_on_by_itself(self):
        shutil.rmtree(self.manifest.parent, ignore_errors=True)
        self.manifest.parent.parent.mkdir(parents=True, exist_ok=True)
        self.manifest.parent.write_text("in the way")
        self.start_agent()
        self.start_browser()
        window = self.start_window()
        self.screen.press("Allow", "push button")
        self.screen.shown("Show Folder", "push button")
        self.assertIn(f"{self.NAME} could not be let in: in {self.manifest.parent}", self.said())
        self.manifest.parent.unlink()
        self.home.control("pause")  # any news of the agent's
        self.ended_well(window)


class AccessToChromium(BrowserAccess, DesktopTest):
    BROWSER, NAME, WINDOW_CLASS = "chromium", "Chromium", "Chromium"
    FOLDER = "config/chromium/NativeMessagingHosts"
    STEP_BUTTON = "Show Folder"

    def is_led_there(self):
        return self.opened.exists() and self.opened.read_text() == f"{BIN.parent / 'extension'}\n"


class AccessToFirefox(BrowserAccess, DesktopTest):
    BROWSER, NAME, WINDOW_CLASS = "firefox", "Firefox", "firefox-esr"
    FOLDER = "config/mozilla/native-messaging-hosts"
    STEP_BUTTON = "Open Settings"

    def forget_extension(self):
        shutil.rmtree(self.browser.profile / "extensions")

    def is_led_there(self):
        return self.xdotool("search", "--onlyvisible", "--name", "Debugging")


if __name__ == "__main__":
    main()
