"""What the tests of the whole program share: a private home, the built programs, real windows, the recorded rows."""

import json
import os
import pathlib
import shutil
import signal
import sqlite3
import subprocess
import tempfile
import time
import unittest

import dbus

ROOT = pathlib.Path(__file__).resolve().parents[2]
BIN = pathlib.Path(os.environ.get("KESTRIO_BIN", ROOT / "build" / "dev" / "bin"))
DEADLINE = 30  # seconds; what is waited for takes a fraction of it

TICK = 2.0  # seconds between two looks of the agent


def eventually(condition, what, deadline=DEADLINE):
    """The first true answer of the condition."""
    end = time.monotonic() + deadline
    while time.monotonic() < end:
        answer = condition()
        if answer:
            return answer
        time.sleep(0.02)
    raise AssertionError(f"never happened: {what}")

WINDOWS = "dev.haldorvinter.Kestrio.Window"


class Home:
    """A KESTRIO_HOME of one test's own."""

    def __init__(self, folder=None):
        self.path = pathlib.Path(folder or tempfile.mkdtemp(prefix="kestrio-home."))
        self.database = self.path / "data" / "Kestrio" / "activity.sqlite"
        self.environment = os.environ | {"KESTRIO_HOME": str(self.path)}
        # One who knows Kestrio: the first run of all would open the dashboard.
        self.control("settings", "set", "hasOnboarded", "true")

    def agent(self, *prefix, **more):
        more = {"stderr": subprocess.PIPE, "text": True, "env": self.environment} | more
        return subprocess.Popen([*prefix, BIN / "kestrio", "--login"], **more)

    def control(self, *arguments):
        return subprocess.run(
            [BIN / "kestrioctl", *arguments], env=self.environment, capture_output=True, text=True, timeout=DEADLINE
        )

    def status(self):
        answer = self.control("status", "--json")
        return json.loads(answer.stdout) if answer.returncode == 0 else None

    def rows(self):
        """The stored rows, oldest first, as dictionaries."""
        connection = sqlite3.connect(f"file:{self.database}?mode=ro", uri=True)
        connection.row_factory = sqlite3.Row
        try:
            return [dict(row) for row in connection.execute("SELECT * FROM sessions ORDER BY id")]
        finally:
            connection.close()

    def integrity(self):
        connection = sqlite3.connect(self.database)
        try:
            return connection.execute("PRAGMA integrity_check").fetchone()[0]
        finally:
            connection.close()

    def remove(self):
        shutil.rmtree(self.path, ignore_errors=True)


class DesktopTest(unittest.TestCase):
    """A test with a home of its own; whatever it started is ended with it."""

    def setUp(self):
        self.home = Home()
        self.addCleanup(self.home.remove)
        self.started = []
        self.addCleanup(self.end_all)

    @staticmethod
    def window_process():
        """The process with the windows, which an agent may have started. None when there is none."""
        try:
            bus = dbus.bus.BusConnection(dbus.bus.BusConnection.TYPE_SESSION)
            keeper = bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus", introspect=False)
            process = int(keeper.GetConnectionUnixProcessID(WINDOWS, dbus_interface="org.freedesktop.DBus"))
            bus.close()
            return process
        except dbus.DBusException:
            return None

    def end_all(self):
        windows = self.window_process()
        if windows:
            os.kill(windows, signal.SIGKILL)
        for process in reversed(self.started):
            if process.poll() is None:
                process.kill()
            process.wait()
            for stream in (process.stdin, process.stdout, process.stderr):
                if stream:
                    stream.close()

    def start_agent(self, *prefix):
        agent = self.home.agent(*prefix)
        self.started.append(agent)
        eventually(lambda: agent.poll() is not None or self.home.status(), "the agent answers")
        self.assertIsNone(agent.poll(), "the agent ended at once")
        return agent

    def stop(self, process, with_signal=signal.SIGTERM):
        process.send_signal(with_signal)
        return process.wait(timeout=DEADLINE)

    def open_window(self, title, name="xterm"):
        """A real window with this title, in front when this returns."""
        window = subprocess.Popen(
            ["xterm", "-name", name, "-T", title, "-e", "sleep", "1000"],
            env=os.environ | {"LC_ALL": "C.UTF-8"},
            stderr=subprocess.DEVNULL,
        )
        self.started.append(window)
        return eventually(lambda: self.window_named(title), f"a window named {title}")

    @staticmethod
    def xdotool(*arguments):
        answer = subprocess.run(["xdotool", *arguments], capture_output=True, timeout=DEADLINE).stdout
        return answer.decode(errors="replace").strip()

    def window_named(self, title):
        active = self.xdotool("getactivewindow")
        return active if active and self.xdotool("getwindowname", active) == title else None

    def bring(self, window):
        """Brings a window to the front and returns the moment."""
        self.xdotool("windowactivate", "--sync", window)
        return time.time()

    def touch(self):
        """Input, so that nobody counts as idle."""
        self.xdotool("mousemove_relative", "1", "0")
        self.xdotool("mousemove_relative", "--", "-1", "0")


def main():
    """Runs the tests of the calling script, inside a private desktop."""
    if not os.environ.get("KESTRIO_VIRTUAL_DESKTOP"):
        tool = ROOT / "Tools" / "virtual-desktop"
        os.execv(tool, [tool, "--", os.path.abspath(os.sys.argv[0]), *os.sys.argv[1:]])
    unittest.main(verbosity=1)
