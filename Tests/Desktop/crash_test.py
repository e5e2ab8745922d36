#!/usr/bin/python3
"""Killed, starved and locked out: what was flushed stays, nothing hangs, and what went wrong is said."""

import json
import os
import random
import shutil
import signal
import sqlite3
import subprocess
import time

from kestrio_desktop import BIN, DEADLINE, TICK, DesktopTest, eventually, main

FLUSH = 15.0  # seconds between two writes of an open session
SLACK = 2.0  # seconds that a busy machine may need to do what it was told
NOBODY = 65534


def last_end(rows):
    return max((row["end"] for row in rows), default=None)


class Crash(DesktopTest):
    def test_kill_9_at_random_moments_costs_at_most_a_flush_and_a_tick(self):
        self.open_window("work that matters")
        for moment in (random.uniform(0.3, 3), random.uniform(16, 19), random.uniform(3, 8), random.uniform(0.3, 2)):
            known = len(self.home.rows()) if self.home.database.exists() else 0
            agent = self.start_agent()
            answered = time.time()
            time.sleep(moment)
            self.touch()
            self.assertEqual(self.stop(agent, signal.SIGKILL), -signal.SIGKILL)
            killed = time.time()
            self.assertEqual(self.home.integrity(), "ok")
            rows = self.home.rows()
            self.assertGreaterEqual(len(rows), known, "a row of before was lost")
            self.assertEqual([row["title"] for row in rows], ["work that matters"] * len(rows))
            for row in rows:
                self.assertGreaterEqual(row["end"], row["start"])
            kept_until = last_end(rows[known:]) or answered
            self.assertLessEqual(killed - kept_until, FLUSH + TICK + SLACK, f"killed after {moment} s")

    def test_sigterm_keeps_everything(self):
        self.open_window("work")
        agent = self.start_agent()
        time.sleep(4.3)
        ended = time.time()
        self.assertEqual(self.stop(agent), 0)
        (row,) = self.home.rows()
        self.assertAlmostEqual(row["end"], ended, delta=TICK)

    def test_the_end_of_the_screen_or_a_hanging_one_does_not_stop_the_agent(self):
        folder = self.home.path / "screen"
        folder.mkdir()
        reading, writing = os.pipe()
        screen = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", "640x480x24", "-nolisten", "tcp"],
            pass_fds=[writing], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        )
        self.started.append(screen)
        os.close(writing)
        with os.fdopen(reading) as report:
            self.home.environment["DISPLAY"] = ":" + report.readline().strip()
        self.home.environment.pop("XAUTHORITY", None)
        window = subprocess.Popen(["xterm", "-T", "there", "-e", "sleep", "1000"], env=self.home.environment, stderr=subprocess.DEVNULL)
        self.started.append(window)
        agent = self.start_agent()
        eventually(lambda: (self.home.status() or {}).get("live"), "the window is recorded")
        os.kill(screen.pid, signal.SIGSTOP)
        time.sleep(3)
        self.assertIsNotNone(self.home.status(), "it answers while the screen hangs")
        os.kill(screen.pid, signal.SIGCONT)
        eventually(lambda: (self.home.status() or {}).get("live"), "recording goes on")
        screen.kill()
        screen.wait()
        eventually(lambda: (self.home.status() or {}).get("state") == "idle", "nothing is in front")
        self.assertEqual(self.stop(agent), 0)

    def test_the_end_of_the_session_bus_ends_the_agent_with_everything_saved(self):
        folder = self.home.path / "bus"
        folder.mkdir()
        address = f"unix:path={folder}/socket"
        bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--nopidfile", f"--address={address}"])
        self.started.append(bus)
        eventually((folder / "socket").exists, "the bus")
        self.home.environment["DBUS_SESSION_BUS_ADDRESS"] = address
        self.open_window("work")
        agent = self.start_agent()
        time.sleep(3)
        bus.kill()
        self.assertEqual(agent.wait(timeout=DEADLINE), 0)
        self.assertEqual(len(self.home.rows()), 1)

    def test_without_a_bus_and_a_screen_it_still_starts_and_ends(self):
        for name in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"):
            self.home.environment.pop(name, None)
        agent = self.home.agent()
        self.started.append(agent)
        eventually(self.home.database.exists, "the database")
        time.sleep(1)
        self.assertIsNone(agent.poll())
        second = subprocess.run([BIN / "kestrio"], env=self.home.environment, capture_output=True, text=True, timeout=20)
        said = [
            f"kestrio: Kestrio is already running (process {agent.pid}).",
            "kestrio: Kestrio runs without a screen that it could show a window on",
        ]
        self.assertEqual((second.returncode, second.stderr.splitlines()), (0, said))
        self.assertEqual(self.stop(agent), 0)
        self.assertEqual(self.home.rows(), [])


class Refusal(DesktopTest):
    """A store that cannot be opened: one clear line, status 1, and nothing of what was there is touched."""

    def refused(self, *prefix):
        agent = self.home.agent(*prefix)
        self.started.append(agent)
        _, words = agent.communicate(timeout=DEADLINE)
        self.assertEqual(agent.returncode, 1, words)
        self.assertEqual(len(words.splitlines()), 1, words)
        return words.removeprefix("kestrio: ").strip()

    def test_a_file_that_is_no_database(self):
        self.home.database.parent.mkdir(parents=True)
        text = "my diary, which is no database\n" * 200
        self.home.database.write_text(text)
        self.assertEqual(self.refused(), f"{self.home.database}: Database error: file is not a database")
        self.assertEqual(self.home.database.read_text(), text)

    def test_a_database_that_another_program_holds(self):
        self.home.database.parent.mkdir(parents=True)
        holder = sqlite3.connect(self.home.database, isolation_level=None)
        self.addCleanup(holder.close)
        holder.execute("CREATE TABLE notes (t)")
        holder.execute("PRAGMA locking_mode = EXCLUSIVE")
        holder.execute("BEGIN EXCLUSIVE")
        self.assertEqual(self.refused(), f"{self.home.database}: Database error: database is locked")

    def as_nobody(self):
        if os.getuid() != 0:
            return []
        return ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups"]

    def test_a_folder_that_may_not_be_written(self):
        self.home.path.chmod(0o755)
        settings = self.home.path / "config" / "Kestrio"
        settings.mkdir(parents=True, exist_ok=True)
        self.home.database.parent.mkdir(parents=True)
        if os.getuid() == 0:
            programs = self.home.path / "bin"
            programs.mkdir()
            shutil.copy(BIN / "kestrio", programs)
            for path in (settings.parent, settings, *settings.iterdir()):
                os.chown(path, NOBODY, NOBODY)
        self.home.database.parent.chmod(0o555)
        program = self.home.path / "bin" / "kestrio" if os.getuid() == 0 else BIN / "kestrio"
        agent = subprocess.run([*self.as_nobody(), program, "--login"], env=self.home.environment, capture_output=True, text=True, timeout=DEADLINE)
        self.assertEqual(agent.returncode, 1, agent.stderr)
        self.assertRegex(agent.stderr.splitlines()[-1], f"{self.home.database.parent}.*(Permission denied|Operation not permitted)")
        self.assertEqual(list(self.home.database.parent.iterdir()), [])
        self.home.database.parent.chmod(0o755)

    def test_without_any_home(self):
        agent = subprocess.run([BIN / "kestrio"], env={"PATH": os.environ["PATH"]}, capture_output=True, text=True, timeout=DEADLINE)
        self.assertEqual(agent.returncode, 1)
        self.assertIn("neither KESTRIO_HOME nor HOME", agent.stderr)


class FullDisk(DesktopTest):
    """A disk of two megabytes, mounted where the test alone sees it."""

    def setUp(self):
        super().setUp()
        disk = self.home.path / "data"
        disk.mkdir()
        self.private = ["unshare", "--mount"] if os.getuid() == 0 else ["unshare", "--user", "--map-root-user", "--mount"]
        self.mount = f'mount -t tmpfs -o size=2m,mode=0700 disk "{disk}"'
        probe = subprocess.run([*self.private, "sh", "-c", self.mount], capture_output=True)
        if probe.returncode != 0:
            self.skipTest("this machine lets nobody mount a small disk")

    def test_nothing_is_lost_while_the_disk_is_full_and_all_is_saved_afterwards(self):
        ballast = self.home.path / "data" / "ballast"
        copy = self.home.path / "copy.sqlite"
        first = self.open_window("before")
        # Both live in the same private mount; the shell fills and frees the disk when told.
        script = f"""{self.mount} || exit 9
            "{BIN / "kestrio"}" --login & agent=$!
            while read -r order; do case $order in
                fill) dd if=/dev/zero of="{ballast}" bs=1k 2>/dev/null; echo done ;;
                status) "{BIN / "kestrioctl"}" status --json | tr -d '\\n'; echo ;;
                free) rm "{ballast}"; echo done ;;
                stop) kill -TERM $agent; wait $agent; echo $?; cp "{self.home.database}" "{copy}"; exit ;;
            esac; done"""
        shell = subprocess.Popen(
            [*self.private, "sh", "-c", script], env=self.home.environment, text=True,
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
        )
        self.started.append(shell)

        def order(word):
            shell.stdin.write(word + "\n")
            shell.stdin.flush()
            return shell.stdout.readline().strip()

        def unsaved():
            return json.loads(order("status")).get("unsaved")

        eventually(lambda: unsaved() is not None, "the agent answers")
        time.sleep(2.5)
        self.assertEqual(order("fill"), "done")
        second = self.open_window("x" * 200)
        # Enough sessions that the space already taken by the journal cannot hold them.
        for n in range(40):
            self.bring(first if n % 2 == 0 else second)
            time.sleep(1.1)
            if unsaved() >= 2:
                break
        self.assertGreaterEqual(unsaved(), 2, "the disk never became too small")
        self.assertEqual(order("free"), "done")
        eventually(lambda: unsaved() == 0, "everything is saved")
        self.assertEqual(order("stop"), "0")
        shell.wait(timeout=DEADLINE)
        self.home.database = copy
        self.assertEqual(self.home.integrity(), "ok")
        rows = sorted(self.home.rows(), key=lambda row: row["start"])
        self.assertGreaterEqual(len(rows), 3)
        for earlier, later in zip(rows, rows[1:]):
            self.assertAlmostEqual(earlier["end"], later["start"], delta=1.01)  # shorter ones are not worth a row
        words = shell.stderr.read()
        self.assertIn("Kestrio: activity can't be saved and waits in memory", words)
        self.assertIn("Kestrio: activity that waited in memory has been saved", words)
        self.assertNotIn("before", words)  # no title in the log


if __name__ == "__main__":
    main()
