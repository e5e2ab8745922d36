#!/usr/bin/python3
"""The agent's optimizer with real applications: what is frozen uses nothing and comes back when it is wanted, and what
must not be touched is left alone."""

import contextlib
import json
import os
import pathlib
import shutil
import signal
import subprocess
import time
import unittest

from held import cpu_ticks, family, is_slowed, is_stopped
from kestrio_desktop import BIN, DEADLINE, DesktopTest, eventually, main
from stage import MUSIC, TOLD, Chromium, Site

BROWSER = Chromium.ID
EDITOR = "org.xfce.mousepad"
TICK = 6  # seconds, at most, between two passes of the optimizer
LAUNCH_GRACE = 120  # seconds for which an application is left alone after its start

BUSY = TOLD + "<script>let turns = 0; setInterval(() => { for (const end = Date.now() + 20; Date.now() < end;) ++turns; }, 40);</script>"


class OptimizerTest(DesktopTest):
    def setUp(self):
        super().setUp()
        self.stage = self.home.path.with_name(self.home.path.name + ".stage")
        self.stage.mkdir()
        self.addCleanup(shutil.rmtree, self.stage, ignore_errors=True)
        self.mains = []
        self.addCleanup(self.end_applications)

    def end_applications(self):
        for process in [one for application in self.mains for one in family(application)]:
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGKILL)

    # The scene.

    def open_browser(self, body):
        if not Chromium.is_installed():
            self.skipTest("no Chromium")
        site = Site(self.stage)
        self.addCleanup(site.close)
        page = site.add("page", "a page", body=body)
        browser = Chromium(self.home, self.stage / "browser", ())
        process = browser.open(page.address)
        self.started.append(process)
        self.mains.append(process.pid)
        eventually(lambda: self.window("chromium"), "the browser's window")
        page.tell("1")  # once it is loaded, it answers
        self.browser = process.pid
        return page

    def open_editor(self, *command):
        if not shutil.which("mousepad"):
            self.skipTest("no Mousepad")
        editor = subprocess.Popen(
            [*command, "mousepad", "--disable-server"], env=self.home.environment | {"HOME": str(self.stage)},
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        )
        self.started.append(editor)
        self.mains.append(editor.pid)
        eventually(lambda: self.window("mousepad"), "the editor's window")
        return editor

    def window(self, window_class):
        return self.xdotool("search", "--onlyvisible", "--class", window_class).split("\n")[0]

    def begin(self):
        """The agent with its optimizer on, and a window in front that is never touched."""
        agent = self.start_agent()
        self.tell("on")
        self.front = self.open_window("in front")
        return agent

    def tell(self, *words):
        answer = self.home.control("optimizer", *words)
        self.assertEqual(answer.returncode, 0, (words, answer.stderr))
        return answer.stdout

    def refused(self, *words):
        answer = self.home.control("optimizer", *words)
        self.assertEqual(answer.returncode, 1, answer.stdout)
        return answer.stderr.strip().removeprefix("kestrioctl: ")

    def hold(self, word, application):
        """Retried: right after the start nobody knows yet who plays."""
        eventually(lambda: self.home.control("optimizer", word, application).returncode == 0, f"{word} {application}")

    def plan(self, application):
        for planned in json.loads(self.tell("plan", "--json")):
            if planned["id"] == application:
                return planned
        return None

    def held(self):
        return {app["id"]: app for app in json.loads(self.tell("status", "--json"))["held"]}

    def all_stopped(self, main):
        return all(map(is_stopped, family(main)))

    def none_stopped(self, main):
        return not any(map(is_stopped, family(main)))

    def log(self):
        return self.home.control("log", "events").stdout


class ByHand(OptimizerTest):
    def test_a_frozen_browser_uses_nothing_and_comes_back_when_it_is_activated(self):
        page = self.open_browser(BUSY)
        self.begin()
        turns = page.tell("turns")
        self.hold("freeze", BROWSER)
        self.assertTrue(self.all_stopped(self.browser))
        self.assertGreaterEqual(len(family(self.browser)), 5)
        used = cpu_ticks(family(self.browser))
        time.sleep(2)
        self.assertEqual(cpu_ticks(family(self.browser)), used)
        since = time.monotonic()
        self.xdotool("windowactivate", self.window("chromium"))
        eventually(lambda: self.none_stopped(self.browser), "it goes on")
        print(f"\n    a browser of {len(family(self.browser))} goes on {1000 * (time.monotonic() - since):.0f} ms after a click")
        self.assertGreater(page.tell("turns"), turns)
        self.assertNotIn(BROWSER, [id for id, app in self.held().items() if app["frozen"]])
        events = self.log()
        self.assertIn("Frozen by hand; it wakes up when", events)
        self.assertIn("Resumed: you opened it.", events)

    def test_its_media_goes_on_where_it_stopped(self):
        page = self.open_browser(MUSIC)
        eventually(lambda: page.tell("media.currentTime") > 0.5, "it plays")
        self.begin()
        self.hold("freeze", BROWSER)
        time.sleep(1)
        self.tell("resume", BROWSER)
        position = page.tell("media.currentTime")
        eventually(lambda: page.tell("media.currentTime") > position + 0.5 or page.tell("media.currentTime") < position, "it plays on")
        self.assertIs(page.tell("media.paused"), False)

    def test_helpers_that_start_later_are_slowed_too_and_all_get_their_speed_back(self):
        page = self.open_browser(TOLD)
        self.begin()
        self.hold("slow", BROWSER)
        before = set(family(self.browser))
        self.assertTrue(all(map(is_slowed, before)))
        # A page of another site within the page has a process of its own.
        frame = f"http://other.example:{page.site.port}/page/"
        page.tell(f"void document.body.append(Object.assign(document.createElement('iframe'), {{src: '{frame}'}}))")
        eventually(lambda: set(family(self.browser)) - before, "a new helper")
        eventually(lambda: self.held()[BROWSER]["slowed"] >= len(family(self.browser)), "the new ones are held too")
        self.assertTrue(all(map(is_slowed, family(self.browser))))
        self.tell("resume", BROWSER)
        eventually(lambda: not any(map(is_slowed, family(self.browser))), "all have their speed back")

    def test_an_application_that_is_opened_anew_starts_over(self):
        editor = self.open_editor()
        self.begin()
        self.hold("freeze", EDITOR)
        self.assertIn(EDITOR, self.held())
        editor.kill()
        editor.wait()
        eventually(lambda: EDITOR not in self.held(), "nothing is held of what has ended")
        again = self.open_editor()
        self.xdotool("windowactivate", "--sync", self.front)
        time.sleep(TICK)
        self.assertNotIn(EDITOR, self.held())
        self.assertFalse(is_stopped(again.pid))

    def test_what_is_refused_says_why(self):
        editor = self.open_editor()
        self.assertIn("the optimizer is off", (self.start_agent(), self.refused("freeze", EDITOR))[1])
        self.tell("on")
        self.assertEqual(self.refused("freeze", EDITOR), "Mousepad is in front")
        self.open_window("in front")
        self.assertEqual(self.refused("freeze", "org.example.none"), "org.example.none does not run, or has no window")
        self.assertIn("is never frozen: the desktop or a long job may need it", self.refused("freeze", "xterm"))
        self.assertEqual(self.refused("resume", EDITOR), f"{EDITOR} is neither frozen nor slowed")
        self.hold("freeze", EDITOR)
        self.assertTrue(is_stopped(editor.pid))
        self.tell("resume-all")
        self.assertFalse(is_stopped(editor.pid))

    def test_quitting_wakes_it_first(self):
        editor = self.open_editor()
        self.begin()
        self.hold("freeze", EDITOR)
        self.tell("quit", EDITOR)
        self.assertEqual(editor.wait(timeout=DEADLINE), 0)
        eventually(lambda: "Quit from Kestrio." in self.log(), "the log tells")


class LeftAlone(OptimizerTest):
    def test_what_holds_the_clipboard(self):
        editor = self.open_editor()
        self.xdotool("windowactivate", "--sync", self.window("mousepad"))
        self.xdotool("type", "words")
        self.xdotool("key", "ctrl+a", "ctrl+c")
        self.begin()
        eventually(lambda: "copied or selected" in self.refused("freeze", EDITOR), "it is let alone")
        self.assertEqual(self.refused("freeze", EDITOR), "Mousepad is left alone: it holds what you copied or selected.")
        self.assertFalse(is_stopped(editor.pid))

    def test_what_a_debugger_is_attached_to(self):
        if not shutil.which("gdb"):
            self.skipTest("no gdb")
        editor = self.open_editor()
        self.begin()
        debugger = subprocess.Popen(
            ["gdb", "-q", "-nx", "-p", str(editor.pid), "-ex", "continue"],
            stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        )
        self.started.append(debugger)
        eventually(lambda: self.tracer(editor.pid) == debugger.pid, "gdb is attached")
        eventually(lambda: "debugger" in self.refused("freeze", EDITOR), "it is let alone")
        self.assertFalse("T" == self.state(editor.pid))
        debugger.kill()
        debugger.wait()
        self.hold("freeze", EDITOR)

    def test_the_job_that_a_terminal_waits_for(self):
        if not shutil.which("mousepad"):
            self.skipTest("no Mousepad")
        terminal = subprocess.Popen(
            ["xterm", "-e", "sh", "-c", "set -m; mousepad --disable-server"],
            env=self.home.environment | {"HOME": str(self.stage)}, stderr=subprocess.DEVNULL,
        )
        self.started.append(terminal)
        eventually(lambda: self.window("mousepad"), "the editor's window")
        self.begin()
        eventually(lambda: "terminal" in self.refused("freeze", EDITOR), "it is let alone")
        self.assertEqual(self.refused("freeze", EDITOR), "Mousepad is left alone: a terminal waits for it.")

    @staticmethod
    def tracer(process):
        for line in pathlib.Path(f"/proc/{process}/status").read_text().splitlines():
            if line.startswith("TracerPid:"):
                return int(line.split()[1])
        return 0

    @staticmethod
    def state(process):
        return pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0]


class ByItself(OptimizerTest):
    def test_it_follows_the_settings_whoever_changes_them(self):
        editor = self.open_editor()
        self.begin()
        self.hold("freeze", EDITOR)
        self.assertEqual(self.home.control("settings", "set", "optimizerEnabled", "false").returncode, 0)
        eventually(lambda: not is_stopped(editor.pid), "switched off, it gives everything back")
        self.assertEqual(self.refused("freeze", EDITOR), "the optimizer is off")
        self.assertEqual(self.home.control("settings", "set", "optimizerEnabled", "true").returncode, 0)
        self.hold("freeze", EDITOR)

    def test_it_freezes_what_can_wait_but_not_while_it_plays(self):
        page = self.open_browser(MUSIC)
        eventually(lambda: page.tell("media.currentTime") > 0, "it plays")
        editor = self.open_editor()
        opened = time.monotonic()
        self.begin()
        self.tell("tune", "--idle", "0.05", "--efficiency-cores", "false")
        self.tell("tiers", "set", BROWSER, "can-wait")
        self.tell("tiers", "set", EDITOR, "check")
        self.tell("tune", "--check-every", "0.1", "--wake", "8")
        self.assertEqual(self.plan(EDITOR)["protection"], "recentlyLaunched")
        self.assertTrue(self.none_stopped(editor.pid))
        time.sleep(max(0, LAUNCH_GRACE - (time.monotonic() - opened)))
        eventually(lambda: is_stopped(editor.pid), "the editor is frozen")
        self.assertEqual(self.plan(BROWSER)["protection"], "playingAudio")
        self.assertTrue(self.none_stopped(self.browser))
        eventually(lambda: not is_stopped(editor.pid), "it is woken for a moment")
        eventually(lambda: is_stopped(editor.pid), "and frozen again")
        page.tell("media.pause()")
        eventually(lambda: self.all_stopped(self.browser), "silent, the browser is frozen")
        self.xdotool("windowactivate", self.window("chromium"))
        eventually(lambda: self.none_stopped(self.browser), "opened, it goes on")
        events = self.log()
        for words in ("Idle for", "Checking for new messages for 8 s.", "Resumed: you opened it."):
            self.assertIn(words, events)


if __name__ == "__main__":
    main()
