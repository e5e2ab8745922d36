#!/usr/bin/python3
"""Real browsers, read through accessibility and by their titles: their pages, their windows, and nothing of the private."""

import http.server
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import threading
import time
import unittest

from kestrio_desktop import BIN, DEADLINE, eventually, main

PROBE = pathlib.Path(os.environ.get("KESTRIO_BROWSER_PROBE", BIN / "BrowserProbe"))
PRIVATE = ["about:private", "", "incognito"]
SLACK = 1.5  # seconds that a busy machine may need beyond a deadline
AT_ONCE = 0.5  # seconds; no deadline of anything is shorter than this and was waited for
SETTINGS = {"LC_ALL": "C.UTF-8", "MOZ_CRASHREPORTER_DISABLE": "1"}


class Pages(http.server.BaseHTTPRequestHandler):
    """Page N at /N, called "Page N"."""

    def do_GET(self):
        number = int(re.search(r"\d*$", self.path).group() or 0)
        body = f"<!doctype html><meta charset=utf-8><title>Page {number}</title><h1>Page {number}</h1>"
        self.send_response(200)
        self.send_header("Content-Type", "text/html")
        self.end_headers()
        self.wfile.write(body.encode())

    def log_message(self, *_):
        pass


class Probe:
    """The readers, as the agent has them."""

    def __init__(self):
        self.process = subprocess.Popen([PROBE], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def ask(self, *question):
        self.process.stdin.write(" ".join(question) + "\n")
        self.process.stdin.flush()
        return json.loads(self.process.stdout.readline())

    def close(self):
        self.process.stdin.close()
        self.process.wait(timeout=DEADLINE)
        self.process.stdout.close()


class Browser:
    """One browser with a profile of its own."""

    def __init__(self):
        self.profile = pathlib.Path(tempfile.mkdtemp(prefix="profile."))
        self.started = []

    def open(self, *arguments):
        command = [*self.command(), *arguments]
        environment = os.environ | SETTINGS | self.ENVIRONMENT
        self.started.append(
            subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        )

    def close(self):
        for process in reversed(self.started):
            if process.poll() is None:
                process.kill()
            process.wait()
        shutil.rmtree(self.profile, ignore_errors=True)


class Chromium(Browser):
    ID = "org.chromium.Chromium"
    PROGRAM = "chromium"
    ENVIRONMENT = {"ACCESSIBILITY_ENABLED": "1"}
    PRIVATELY = "--incognito"
    NEW_WINDOW = "--new-window"
    TITLE = "Page {} - Chromium"
    PRIVATE_TITLE = "Page {} - Chromium"  # which is the trouble
    TITLED_PRIVATE, TITLED_ORDINARY = PRIVATE, [""]

    def command(self):
        sandbox = ["--no-sandbox"] if os.getuid() == 0 else []
        return [
            "chromium", *sandbox, f"--user-data-dir={self.profile}", "--no-first-run", "--no-default-browser-check",
            "--disable-gpu", "--password-store=basic", "--disable-component-update",
        ]


class Firefox(Browser):
    ID = "org.mozilla.firefox"
    PROGRAM = "firefox-esr"
    ENVIRONMENT = {"GNOME_ACCESSIBILITY": "1"}
    PRIVATELY = "--private-window"
    NEW_WINDOW = "--new-window"
    TITLE = "Page {} — Mozilla Firefox"
    PRIVATE_TITLE = "Page {} — Mozilla Firefox Private Browsing"

    def __init__(self):
        super().__init__()
        quiet = {
            "browser.aboutwelcome.enabled": False,
            "browser.shell.checkDefaultBrowser": False,
            "browser.startup.homepage_override.mstone": "ignore",
            "datareporting.policy.dataSubmissionPolicyBypassNotification": True,
            "termsofuse.bypassNotification": True,
            "app.update.enabled": False,
        }
        lines = [f"user_pref({json.dumps(key)}, {json.dumps(value)});\n" for key, value in quiet.items()]
        (self.profile / "user.js").write_text("".join(lines))

    def command(self):
        return ["firefox-esr", "--profile", str(self.profile)]


class ReadingABrowser:
    """What holds for every browser."""

    def setUp(self):
        if not shutil.which(self.BROWSER.PROGRAM):
            self.skipTest(f"{self.BROWSER.PROGRAM} is not installed")
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Pages)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        self.site = f"http://127.0.0.1:{server.server_port}/"
        self.probe = Probe()
        self.addCleanup(self.probe.close)
        self.browser = self.BROWSER()
        self.addCleanup(self.browser.close)

    # Hands and eyes.

    @staticmethod
    def xdotool(*arguments):
        return subprocess.run(["xdotool", *arguments], capture_output=True, text=True, timeout=DEADLINE).stdout.strip()

    def title(self):
        return self.xdotool("getwindowname", self.xdotool("getactivewindow"))

    def wait_for_title(self, title):
        eventually(lambda: self.title() == title, f"a window named {title}")

    def open_page(self, number, *arguments):
        """Opens a page and waits until its window is in front."""
        self.browser.open(*arguments, f"{self.site}{number}")
        private = self.BROWSER.PRIVATELY in arguments
        self.wait_for_title((self.BROWSER.PRIVATE_TITLE if private else self.BROWSER.TITLE).format(number))
        return self.xdotool("getactivewindow")

    def go_to(self, number):
        self.xdotool("key", "ctrl+l")
        time.sleep(0.3)  # nothing outside the browser tells that its address bar has the focus
        self.xdotool("type", "--delay", "5", f"{self.site}{number}")
        self.xdotool("key", "Return")

    def process(self):
        return int(self.xdotool("getwindowpid", self.xdotool("getactivewindow")))

    # What the readers say.

    def fields(self, question="front"):
        return self.probe.ask(question, self.BROWSER.ID)["text"].split("\x1f")

    def windows(self):
        text = self.probe.ask("windows", self.BROWSER.ID)["text"]
        return [piece.split("\x1f") for piece in text.split("\x1e")] if text else []

    def page(self, number):
        return [f"{self.site}{number}", f"Page {number}", "normal"]

    def wait_for_page(self, number, question="front"):
        """Every answer on the way must be of one page."""

        def answered():
            fields = self.fields(question)
            self.assert_belongs_together(fields)
            return fields == self.page(number)

        eventually(answered, f"page {number} is answered")

    def assert_belongs_together(self, fields):
        if fields[0].startswith(self.site) and re.search(r"\d$", fields[0]):
            self.assertEqual(fields[1], "Page " + fields[0].removeprefix(self.site))
        elif len(fields) > 1:
            self.assertNotRegex(fields[1], r"^Page \d")

    def assert_nothing_private(self, text, number):
        self.assertNotIn(f"Page {number}", text)
        self.assertNotIn(f"{self.site}{number}", text)

    # The tests.

    def test_the_front_tab_follows_switches_and_navigation(self):
        self.open_page(1)
        self.wait_for_page(1)
        self.open_page(2)  # a tab of the same window
        self.wait_for_page(2)
        for number in (1, 2, 1):
            self.xdotool("key", "ctrl+Tab")
            self.wait_for_page(number)
        for number in (3, 4, 5):
            self.go_to(number)
            self.wait_for_page(number)
        self.xdotool("key", "alt+Left")
        self.wait_for_page(4)
        self.assertEqual(self.probe.ask("chain", self.BROWSER.ID)["text"].split("\x1f"), self.page(4))

    def test_all_windows_front_to_back_with_their_tabs(self):
        first = self.open_page(1)
        self.wait_for_page(1)
        self.open_page(2)
        self.wait_for_page(2)
        self.open_page(3, self.BROWSER.NEW_WINDOW)
        self.wait_for_page(3)
        self.xdotool("windowsize", "--sync", self.xdotool("getactivewindow"), "640", "480")

        def listed():
            found = [(fields[5:7], sorted(fields[7].split("\x1d"))) for fields in self.windows()]
            return found == [
                (self.page(3)[:2], [self.page(3)[0]]),
                (self.page(2)[:2], [self.page(1)[0], self.page(2)[0]]),
            ]

        eventually(listed, "both windows with their tabs")
        for fields in self.windows():
            self.assertEqual(fields[4], "normal")
            left, top, right, bottom = map(float, fields[:4])
            self.assertGreater(right - left, 300)
            self.assertGreater(bottom - top, 300)
        self.xdotool("windowactivate", "--sync", first)
        self.wait_for_page(2)
        eventually(lambda: [fields[6] for fields in self.windows()][:1] == ["Page 2"], "the other one is in front")

    def test_a_private_window_is_private_and_nothing_else(self):
        ordinary = self.open_page(1)
        self.wait_for_page(1)
        private = self.open_page(7, self.BROWSER.PRIVATELY)
        for question in ("front", "chain", "titled"):
            eventually(lambda q=question: self.fields(q) == PRIVATE, f"{question} says private")
        self.go_to(8)
        self.wait_for_title(self.BROWSER.PRIVATE_TITLE.format(8))
        until = time.monotonic() + 1
        while time.monotonic() < until:
            self.assertEqual(self.fields(), PRIVATE)
        text = self.probe.ask("windows", self.BROWSER.ID)["text"]
        modes = [piece.split("\x1f")[4] for piece in text.split("\x1e")]
        self.assertEqual(modes[0], "incognito")
        for number in (7, 8):
            self.assert_nothing_private(text, number)
        self.xdotool("windowactivate", "--sync", ordinary)
        self.wait_for_page(1)
        eventually(lambda: [fields[4] for fields in self.windows()] == ["normal", "incognito"], "both windows")
        # The same page in both: their titles may not tell them apart.
        self.go_to(8)
        self.wait_for_page(8)
        self.xdotool("windowactivate", "--sync", private)
        for _ in range(20):
            self.assertEqual(self.fields(), PRIVATE)
        # A reader that has never seen them before.
        late = Probe()
        self.addCleanup(late.close)
        self.assertEqual(late.ask("front", self.BROWSER.ID)["text"].split("\x1f"), PRIVATE)

    def test_a_stopped_browser_costs_its_deadline_once(self):
        self.open_page(1)
        self.wait_for_page(1)
        process = self.process()
        os.kill(process, signal.SIGSTOP)
        self.addCleanup(self.revive, process)
        first = self.probe.ask("front", self.BROWSER.ID)
        self.assertLess(first["seconds"], 2 + SLACK)
        for question in ("front", "front", "windows", "chain"):
            later = self.probe.ask(question, self.BROWSER.ID)
            self.assertLess(later["seconds"], AT_ONCE, question)
        os.kill(process, signal.SIGCONT)
        self.wait_for_page(1)

    @staticmethod
    def revive(process):
        try:
            os.kill(process, signal.SIGCONT)
        except ProcessLookupError:
            pass

    def test_a_browser_that_was_killed_says_nothing_and_is_read_when_it_is_back(self):
        self.open_page(1)
        self.wait_for_page(1)
        os.kill(self.process(), signal.SIGKILL)
        eventually(lambda: self.fields() == [""], "nothing is said")
        self.assertLess(self.probe.ask("windows", self.BROWSER.ID)["seconds"], AT_ONCE)
        self.browser.close()
        self.browser = self.BROWSER()
        self.addCleanup(self.browser.close)
        self.open_page(2)
        self.wait_for_page(2)


class ReadingChromium(ReadingABrowser, unittest.TestCase):
    BROWSER = Chromium

    def test_a_title_alone_never_tells_that_a_window_is_not_private(self):
        self.BROWSER.ENVIRONMENT, kept = {}, self.BROWSER.ENVIRONMENT
        self.addCleanup(setattr, self.BROWSER, "ENVIRONMENT", kept)
        self.open_page(1)
        for question in ("titled", "chain"):
            self.assertEqual(self.fields(question), PRIVATE)
        self.assertEqual(self.fields("front"), [""])


class ReadingFirefox(ReadingABrowser, unittest.TestCase):
    BROWSER = Firefox

    def test_titles_alone_tell_a_private_window(self):
        self.BROWSER.ENVIRONMENT, kept = {}, self.BROWSER.ENVIRONMENT
        self.addCleanup(setattr, self.BROWSER, "ENVIRONMENT", kept)
        self.open_page(1)
        for question in ("front", "titled", "chain"):
            self.assertEqual(self.fields(question), [""], question)
        self.open_page(7, self.BROWSER.PRIVATELY)
        for question in ("titled", "chain"):
            self.assertEqual(self.fields(question), PRIVATE, question)
        self.assertEqual(self.fields("front"), [""])


if __name__ == "__main__":
    main()
