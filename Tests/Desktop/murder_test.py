#!/usr/bin/python3
"""The agent is murdered while it holds a real browser frozen and slowed. Whatever the moment, everything runs on soon
after, with the priority that it had before."""

import contextlib
import importlib.util
import os
import pathlib
import shutil
import signal
import subprocess
import time
import unittest.mock

from held import family, is_as_before, is_slowed, is_stopped, priorities
from kestrio_desktop import BIN, DEADLINE, DesktopTest, eventually, main
from stage import Chromium

WITHIN = 2.0  # seconds, for all to be as before
ID = Chromium.ID


class MurderTest(DesktopTest):
    @classmethod
    def setUpClass(cls):
        cls.figures = []

    @classmethod
    def tearDownClass(cls):
        print("\n  after which everything was as before, in milliseconds:")
        for name, seconds in cls.figures:
            print(f"    {seconds * 1000:7.1f}  {name}")

    def setUp(self):
        super().setUp()
        if not Chromium.is_installed():
            self.skipTest("no Chromium")
        self.home.path.mkdir(exist_ok=True)
        self.notes = self.home.path / "notes"
        self.notes.mkdir()
        browser = Chromium(self.home, self.home.path / "browser", ())
        self.browser = browser.open("about:blank")
        self.started.append(self.browser)
        self.addCleanup(self.end_browser)
        self.browser_window = eventually(lambda: self.window_of("chromium"), "the browser's window")
        eventually(lambda: len(family(self.browser.pid)) >= 5, "the browser's helpers")
        self.open_window("in front")
        time.sleep(2)  # for the browser to have started what it starts
        self.before = {process: priorities(process) for process in family(self.browser.pid)}

    def end_browser(self):
        for process in family(self.browser.pid):
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGKILL)

    def window_of(self, window_class):
        return self.xdotool("search", "--onlyvisible", "--class", window_class).split("\n")[0]

    # The murderer's tools.

    def agent(self, step="", program="SteppedAgent", **more):
        """The agent with the optimizer on, which stands still at the step."""
        environment = self.home.environment | {"KESTRIO_STEP": step, "KESTRIO_NOTES": str(self.notes)}
        shutil.rmtree(self.notes)
        self.notes.mkdir()
        agent = subprocess.Popen([BIN / program], env=environment, stderr=subprocess.PIPE, text=True, **more)
        self.started.append(agent)
        eventually(lambda: agent.poll() is not None or self.home.status(), "the agent answers")
        self.assertIsNone(agent.poll(), "the agent ended at once")
        self.told("on")
        return agent

    def told(self, *words):
        answer = self.home.control("optimizer", *words)
        self.assertEqual(answer.returncode, 0, answer.stderr)

    def ask(self, *words):
        """The same without waiting for the answer, which an agent that stands still never gives."""
        command = [BIN / "kestrioctl", "optimizer", *words]
        asking = subprocess.Popen(command, env=self.home.environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.started.append(asking)

    def hold(self):
        eventually(lambda: self.home.control("optimizer", "slow", ID).returncode == 0, "the browser is slowed")
        eventually(lambda: self.home.control("optimizer", "freeze", ID).returncode == 0, "the browser is frozen")
        self.assertTrue(all(is_stopped(process) for process in self.before if process in family(self.browser.pid)))
        self.assertTrue(is_slowed(self.browser.pid))
        self.assertFalse(is_as_before(self.before))

    def watchdog(self, agent):
        """The shell that waits for the agent's end."""
        for entry in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
            with contextlib.suppress(OSError):
                words = entry.read_bytes().split(b"\0")
                if words[0] == b"/bin/sh" and f"optimizer-held-{agent.pid}.txt".encode() in b" ".join(words):
                    return int(entry.parent.name)
        return None

    def journals(self):
        return list(self.home.database.parent.glob("optimizer-held-*.txt"))

    def becomes_as_before(self, name, since):
        while not is_as_before(self.before):
            self.assertLess(time.monotonic() - since, DEADLINE, f"{name}: never put right")
            time.sleep(0.001)
        took = time.monotonic() - since
        self.figures.append((name, took))
        self.assertLess(took, WITHIN, name)

    def kill(self, agent, name):
        since = time.monotonic()
        agent.kill()
        agent.wait()
        self.becomes_as_before(name, since)
        eventually(lambda: not self.journals(), "no journal is left")
        self.assertTrue(is_as_before(self.before))


class Murder(MurderTest):
    def test_at_each_step_of_slowing_and_freezing_and_of_giving_back(self):
        for step in ("slow 1", "slow 4", "stop 1", "stop 2", "stop 6", "resume 1", "resume 6", "restore 1", "restore 4"):
            with self.subTest(step):
                agent = self.agent(step)
                for words in (("slow", ID), ("freeze", ID), ("resume", ID)):
                    if (self.notes / "there").exists():
                        break
                    self.ask(*words)
                    eventually(lambda: (self.notes / "there").exists() or self.has_done(words[0]), f"{words} is done")
                eventually((self.notes / "there").exists, f"the agent stands still before {step}")
                self.kill(agent, f"kill -9 before {step}")

    def has_done(self, word):
        held = is_stopped(self.browser.pid)
        return {"slow": is_slowed(self.browser.pid) and self.answers(), "freeze": held and self.answers()}.get(word, False)

    def answers(self):
        return self.home.control("optimizer", "status").returncode == 0

    def test_while_it_holds_everything(self):
        agent = self.agent()
        self.hold()
        self.kill(agent, "kill -9 of the agent")

    def test_together_with_the_watchdog_and_then_a_new_start(self):
        agent = self.agent()
        self.hold()
        watchdog = eventually(lambda: self.watchdog(agent), "the watchdog")
        os.kill(watchdog, signal.SIGKILL)
        agent.kill()
        agent.wait()
        time.sleep(0.3)
        self.assertFalse(is_as_before(self.before), "nobody was left to put it right")
        since = time.monotonic()
        self.agent(program="kestrio")
        self.becomes_as_before("a new start, after kill -9 of agent and watchdog", since)
        eventually(lambda: "an earlier run had left" in self.home.control("log", "events").stdout, "the log tells")

    def test_sigterm(self):
        agent = self.agent()
        self.hold()
        since = time.monotonic()
        agent.terminate()
        self.becomes_as_before("SIGTERM", since)
        self.assertEqual(agent.wait(timeout=DEADLINE), 0)
        self.assertEqual(self.journals(), [])

    def start_bus(self):
        folder = self.home.path / "bus"
        folder.mkdir()
        address = f"unix:path={folder}/socket"
        bus = subprocess.Popen(
            ["dbus-daemon", "--session", "--nofork", "--nopidfile", f"--address={address}"], stderr=subprocess.DEVNULL
        )
        self.started.append(bus)
        eventually((folder / "socket").exists, "the bus")
        return bus, address

    def test_the_end_of_the_session_bus_as_at_logout(self):
        bus, self.home.environment["DBUS_SESSION_BUS_ADDRESS"] = self.start_bus()
        agent = self.agent()
        self.hold()
        since = time.monotonic()
        bus.kill()
        self.becomes_as_before("the end of the session bus", since)
        self.assertEqual(agent.wait(timeout=DEADLINE), 0)

    def test_a_machine_that_is_about_to_be_switched_off(self):
        if importlib.util.find_spec("dbusmock") is None or shutil.which("gdbus") is None:
            self.skipTest("no stand-in for logind")
        _, address = self.start_bus()
        self.home.environment["DBUS_SYSTEM_BUS_ADDRESS"] = address
        environment = os.environ | {"DBUS_SYSTEM_BUS_ADDRESS": address}
        logind = subprocess.Popen(
            ["/usr/bin/python3", "-m", "dbusmock", "--template", "logind"], env=environment, stdout=subprocess.DEVNULL
        )
        self.started.append(logind)

        def announce(is_near):
            command = [
                "gdbus", "call", "--address", address, "-d", "org.freedesktop.login1", "-o", "/org/freedesktop/login1",
                "-m", "org.freedesktop.DBus.Mock.EmitSignal", "org.freedesktop.login1.Manager", "PrepareForShutdown",
                "b", f"[<{is_near}>]",
            ]
            return subprocess.run(command, capture_output=True).returncode == 0

        eventually(lambda: announce("false"), "logind")
        self.agent()
        self.hold()
        since = time.monotonic()
        self.assertTrue(announce("true"))
        self.becomes_as_before("the notice that the machine is switched off", since)
        self.assertEqual(self.home.control("optimizer", "freeze", ID).returncode, 1, "nothing stands in the way")
        self.assertTrue(announce("false"))
        self.hold()

    def test_a_disk_that_is_full_lets_nothing_be_held_and_everything_go(self):
        data = self.home.database.parent
        data.mkdir(parents=True)
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=4m", "none", data], capture_output=True)
        if mounted.returncode != 0:
            self.skipTest("mounting is not permitted here")
        self.addCleanup(subprocess.run, ["umount", "-l", data], check=True)
        agent = self.agent()
        self.fill(data)
        refused = self.home.control("optimizer", "freeze", ID)
        self.assertEqual((refused.returncode, is_as_before(self.before)), (1, True), refused.stderr)
        (data / "ballast").unlink()
        self.hold()
        self.fill(data)
        self.kill(agent, "kill -9 on a full disk")

    @staticmethod
    def fill(folder):
        with contextlib.suppress(OSError), open(folder / "ballast", "ab", buffering=0) as ballast:
            while True:
                ballast.write(bytes(1024))

    def test_a_journal_cut_short_saves_what_it_names(self):
        agent = self.agent()
        eventually(lambda: self.home.control("optimizer", "freeze", ID).returncode == 0, "the browser is frozen")
        (journal,) = self.journals()
        os.kill(eventually(lambda: self.watchdog(agent), "the watchdog"), signal.SIGKILL)
        agent.kill()
        agent.wait()
        lines = journal.read_text().splitlines(keepends=True)
        named = [int(line.split()[1]) for line in lines if line.startswith("stop ")]
        journal.write_text("".join(lines[:-2]) + lines[-2][:-3])
        since = time.monotonic()
        self.agent(program="kestrio")
        eventually(lambda: not any(map(is_stopped, named[:-2])), "what is named runs")
        self.figures.append(("a new start with a journal cut short", time.monotonic() - since))
        self.assertTrue(is_stopped(named[-1]), "the one that nobody named any more")
        for process in named[-2:]:
            os.kill(process, signal.SIGCONT)

    def test_a_process_number_that_was_used_again_is_left_alone(self):
        other = subprocess.Popen(["sleep", "1000"])
        self.started.append(other)
        os.kill(other.pid, signal.SIGSTOP)
        self.home.database.parent.mkdir(parents=True)
        journal = self.home.database.parent / "optimizer-held-1.txt"
        journal.write_text(f"owner 1 1\nstop {other.pid} 1\nslow {other.pid} 1 0/0/0\n")
        self.agent(program="kestrio")
        self.assertTrue(is_stopped(other.pid))
        self.assertFalse(journal.exists())

    def test_the_loss_of_its_window_as_at_the_end_of_the_screen(self):
        self.agent()
        self.hold()
        since = time.monotonic()
        self.xdotool("windowunmap", self.window_of("chromium"))
        self.becomes_as_before("the loss of its window", since)


class EndOfTheScreen(MurderTest):
    """On a screen of its own, which is taken away."""

    def setUp(self):
        reading, writing = os.pipe()
        self.screen = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", "800x600x24", "-nolisten", "tcp"],
            pass_fds=[writing], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        )
        self.addCleanup(self.screen.wait)
        self.addCleanup(self.screen.kill)
        os.close(writing)
        with os.fdopen(reading) as report:
            there = unittest.mock.patch.dict(os.environ, {"DISPLAY": ":" + report.readline().strip()})
        there.start()
        self.addCleanup(there.stop)
        os.environ.pop("XAUTHORITY", None)  # comes back with the rest
        manager = subprocess.Popen(["openbox"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(manager.wait)
        self.addCleanup(manager.kill)
        super().setUp()

    def test_leaves_nothing_stopped(self):
        agent = self.agent()
        self.hold()
        helpers = list(self.before)
        since = time.monotonic()
        self.screen.kill()
        eventually(lambda: not any(map(is_stopped, helpers)), "nothing is stopped")
        took = time.monotonic() - since
        self.figures.append(("the end of the screen", took))
        self.assertLess(took, WITHIN)
        self.assertIsNone(agent.poll())
        eventually(lambda: not self.journals(), "no journal is left")


main()
