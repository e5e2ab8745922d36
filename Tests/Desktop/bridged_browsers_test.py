#!/usr/bin/python3
"""Real browsers with the extension: what the reader answers must be what is on the screen, and never a wrong pair."""

import functools
import http.server
import json
import os
import pathlib
import shutil
import subprocess
import threading
import time

from kestrio_desktop import BIN, DEADLINE, DesktopTest, eventually, main

PROBE = pathlib.Path(os.environ.get("KESTRIO_PROBE", BIN / "TabBridgeProbe"))
EXTENSION = BIN.parent / "extension"
PRIVATE = ["about:private", "", "incognito"]

PAGE = "<!doctype html><html><head><meta charset=utf-8>{head}<title>{title}</title></head><body>{title}</body></html>"


class Pages(http.server.BaseHTTPRequestHandler):
    """/NAME is a page of that title. The title of a slow one comes late, the body of a heavy one never ends soon."""

    def do_GET(self):
        name = self.path.strip("/").partition("?")[0]
        self.send_response(200 if name != "favicon.ico" else 404)
        self.send_header("Content-Type", "text/html; charset=utf-8")
        self.end_headers()
        if name == "favicon.ico":
            return
        head = "<script>setTimeout(() => document.title = 'Later', 600)</script>" if name == "changing" else ""
        if name == "slow":
            self.wfile.write(b"<!doctype html><html><head><meta charset=utf-8>" + b"<!-- -->" * 500)
            self.wfile.flush()
            time.sleep(1)
        self.wfile.write(PAGE.format(head=head, title=name.capitalize()).encode())

    def log_message(self, *_):
        pass


class Browser:
    """How one browser is started and driven."""

    def __init__(self, test, folder):
        self.test, self.folder = test, folder
        self.environment = test.home.environment | {"XDG_CONFIG_HOME": str(folder / "config"), "HOME": str(folder)}

    def install_host(self):
        answer = subprocess.run([BIN / "kestrioctl", "browsers", "--install"], env=self.environment,
                                capture_output=True, text=True, timeout=DEADLINE)
        self.test.assertEqual(answer.returncode, 0, answer.stderr)

    def open(self, *arguments):
        process = subprocess.Popen([*self.command(), *arguments], env=self.environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
        self.test.started.append(process)
        return process

    def window(self, title):
        return eventually(lambda: self.test.xdotool("search", "--onlyvisible", "--name", title).split("\n")[-1],
                          f"a window with {title} in its name")


class Chromium(Browser):
    bundle = "org.chromium.Chromium"
    program = "chromium"
    private = "--incognito"

    def command(self):
        return [self.program, "--no-sandbox", "--no-first-run", "--no-default-browser-check", "--disable-gpu",
                "--disable-component-update", "--disable-background-networking", "--password-store=basic",
                "--disable-features=DisableLoadExtensionCommandLineSwitch", f"--load-extension={EXTENSION}/chromium"]


class Firefox(Browser):
    bundle = "org.mozilla.firefox"
    program = "firefox-esr"
    private = "--private-window"

    def __init__(self, test, folder):
        super().__init__(test, folder)
        profile = folder / "profile"
        (profile / "extensions").mkdir(parents=True)
        shutil.copy(EXTENSION / "firefox.xpi", profile / "extensions" / "tabs@kestrio.haldorvinter.dev.xpi")
        settings = {
            "xpinstall.signatures.required": False, "extensions.autoDisableScopes": 0,
            "extensions.startupScanScopes": 15, "browser.shell.checkDefaultBrowser": False,
            "browser.aboutwelcome.enabled": False, "datareporting.policy.dataSubmissionEnabled": False,
            "datareporting.policy.firstRunURL": "", "browser.startup.homepage_override.mstone": "ignore",
            "toolkit.telemetry.reportingpolicy.firstRun": False, "browser.tabs.warnOnClose": False,
            "browser.warnOnQuit": False, "app.normandy.enabled": False, "browser.startup.page": 0,
            "termsofuse.bypassNotification": True, "app.update.enabled": False,
        }
        lines = [f"user_pref({json.dumps(name)}, {json.dumps(value)});\n" for name, value in settings.items()]
        (profile / "user.js").write_text("".join(lines))
        self.profile = profile

    def command(self):
        return [self.program, "--profile", str(self.profile)]


class WithBrowser:
    """The tests, for each browser."""

    def setUp(self):
        super().setUp()
        if not shutil.which(self.kind.program):
            self.skipTest("it is not installed")
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Pages)
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        self.addCleanup(self.server.server_close)
        self.addCleanup(self.server.shutdown)
        self.base = f"http://127.0.0.1:{self.server.server_port}/"
        self.browser = self.kind(self, self.home.path)
        self.browser.install_host()
        self.start_probe()

    def start_probe(self):
        self.probe = subprocess.Popen([PROBE], env=self.browser.environment, text=True, bufsize=1,
                                      stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.started.append(self.probe)

    def stop_probe(self):
        self.probe.stdin.close()
        self.assertEqual(self.probe.wait(timeout=DEADLINE), 0)
        self.assertEqual(self.probe.stderr.read(), "")

    def ask(self, question):
        self.probe.stdin.write(f"{question} {self.browser.bundle}\n")
        return json.loads(self.probe.stdout.readline())

    def front(self):
        text = self.ask("front")
        return text.split("\x1f") if text else None

    def windows(self):
        text = self.ask("windows")
        return [window.split("\x1f") for window in text.split("\x1e")] if text else []

    def page(self, name):
        return [self.base + name, name.capitalize(), "normal"]

    def shows(self, name):
        eventually(lambda: self.front() == self.page(name), f"{name} is in front, not {self.front()}")

    def key(self, keys):
        self.xdotool("key", "--clearmodifiers", keys)

    def go(self, name):
        self.key("ctrl+l")
        time.sleep(0.3)  # until the field takes keys; nothing tells
        self.xdotool("type", "--delay", "15", self.base + name)
        time.sleep(0.1)
        self.key("Return")

    def start_browser(self, name="first"):
        process = self.browser.open(self.base + name)
        self.shows(name)
        return process

    def test_the_front_tab_is_what_is_in_front(self):
        self.start_browser()
        self.browser.open(self.base + "second")
        self.shows("second")
        self.key("ctrl+Tab")
        self.shows("first")
        self.key("ctrl+Tab")
        self.shows("second")
        self.go("third")
        self.shows("third")
        # A tab in the background that changes its own title is told too.
        self.go("changing")
        eventually(lambda: self.front() == [self.base + "changing", "Later", "normal"], "its title changed")
        self.key("ctrl+Tab")
        self.shows("first")
        (window,) = self.windows()
        self.assertEqual(len(window), 9)
        self.assertEqual(window[4:7], ["normal", *self.page("first")[:2]])
        self.assertEqual(window[7].split("\x1d")[-2:], [self.base + "first", self.base + "changing"])
        self.assertEqual(window[8].split("\x1d")[-2:], ["First", "Later"])
        left, top, right, bottom = map(float, window[:4])
        self.assertGreater(right - left, 300)
        self.assertGreater(bottom - top, 300)

    def test_an_address_and_a_title_always_belong_together(self):
        self.start_browser()
        seen, over = set(), threading.Event()

        def drive():
            for name in ("slow", "second", "slow", "third"):
                self.go(name)
                time.sleep(2.5)
            over.set()

        threading.Thread(target=drive, daemon=True).start()
        while not over.is_set():
            seen.add(tuple(self.front() or ()))
        self.shows("third")
        allowed = {tuple(self.page(name)) for name in ("first", "second", "third", "slow")}
        allowed |= {(url, "", mode) for url, _, mode in allowed}
        self.assertLessEqual(seen, allowed)
        self.assertIn(tuple(self.page("slow")), seen)

    def test_of_two_windows_the_one_in_front_counts(self):
        self.start_browser()
        first = self.browser.window("First")
        self.browser.open("--new-window", self.base + "second")
        self.shows("second")
        second = self.browser.window("Second")
        self.assertEqual([window[6] for window in self.windows()], ["Second", "First"])
        self.bring(first)
        self.shows("first")
        self.assertEqual([window[6] for window in self.windows()], ["First", "Second"])
        self.bring(second)
        self.shows("second")

    def test_a_browser_that_comes_to_the_front_is_not_taken_for_private(self):
        self.start_browser()
        browser, other = self.browser.window("First"), self.open_window("terminal")
        right = 0
        for _ in range(20):
            self.bring(other)
            self.bring(browser)
            right += self.front() == self.page("first")
            self.shows("first")
        self.assertGreaterEqual(right, 18)  # a very busy machine may be too slow once

    def test_of_a_private_window_nothing_is_known(self):
        self.start_browser()
        first = self.browser.window("First")
        self.browser.open(self.browser.private, self.base + "secret")
        private = self.browser.window("Secret")
        self.bring(private)
        eventually(lambda: self.front() == PRIVATE, "the private window is in front")
        self.go("hidden")
        self.browser.window("Hidden")
        self.assertEqual(self.front(), PRIVATE)
        self.assertNotRegex(self.ask("windows").lower(), "secret|hidden")
        self.bring(first)
        self.shows("first")

    def test_a_browser_that_was_closed_says_nothing(self):
        process = self.start_browser()
        self.assertEqual(self.ask("connected"), [self.browser.bundle])
        process.terminate()
        process.wait(timeout=DEADLINE)
        eventually(lambda: self.ask("connected") == [], "it is gone")
        self.assertIsNone(self.front())
        self.assertEqual(self.windows(), [])

    def test_an_agent_that_starts_anew_is_told_at_once(self):
        self.start_browser()
        self.stop_probe()
        self.go("second")
        self.browser.window("Second")
        self.start_probe()
        self.shows("second")

    def test_the_bridge_holds_while_nothing_happens(self):
        self.start_browser()
        time.sleep(45)  # browsers end the scripts of extensions that are idle for half a minute
        self.assertEqual(self.front(), self.page("first"))

    def test_kestrioctl_says_that_it_is_connected(self):
        self.stop_probe()
        agent = self.start_agent()
        self.browser.open(self.base + "first")
        browsers = functools.partial(self.home.control, "browsers", "--json")

        def found():
            answer = json.loads(browsers().stdout)
            return next(each for each in answer if each["bundleID"] == self.browser.bundle)

        eventually(lambda: found()["connected"], "the browser is connected")
        self.assertTrue(found()["installed"])
        self.assertTrue(found()["running"])
        self.assertIsNone(found()["remedy"])
        self.stop(agent)
        self.assertIsNone(found()["connected"])


class InChromium(WithBrowser, DesktopTest):
    kind = Chromium

    def test_the_developers_tools_in_a_window_of_their_own_are_neither_a_page_nor_private(self):
        preferences = self.home.path / "config" / "chromium" / "Default" / "Preferences"
        preferences.parent.mkdir(parents=True)
        undocked = {"currentDockState": '"undocked"'}
        devtools = {"preferences": undocked, "synced_preferences_sync_disabled": undocked}
        preferences.write_text(json.dumps({"devtools": devtools}))
        self.start_browser()
        page = self.browser.window("First")
        self.key("F12")
        self.bring(self.browser.window("DevTools"))
        eventually(lambda: self.front() is None, "the tools are in front")
        self.assertEqual([window[6] for window in self.windows()], ["First"])
        self.bring(page)
        self.shows("first")


class InFirefox(WithBrowser, DesktopTest):
    kind = Firefox


if __name__ == "__main__":
    main()
