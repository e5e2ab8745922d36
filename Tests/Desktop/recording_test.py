#!/usr/bin/python3
"""The built agent before real windows: the rows must be what the script did."""

import os
import signal
import stat
import subprocess
import time

from kestrio_desktop import BIN, TICK, DesktopTest, eventually, main

SLACK = TICK  # seconds; a switch is heard of at once, but a busy machine may be late by a tick


class Recording(DesktopTest):
    def test_records_the_application_in_front_with_its_title_to_the_tick(self):
        first = self.open_window("chapter one")
        second = self.open_window("chapter two")
        self.xdotool("set_window", "--name", "Schön: 第二章 🙂", second)
        agent = self.start_agent()
        started = self.bring(first)
        time.sleep(5)
        self.touch()
        switched = self.bring(second)
        time.sleep(4)
        back = self.bring(first)
        time.sleep(3)
        ended = time.time()
        self.assertEqual(self.stop(agent), 0)

        rows = [row for row in self.home.rows() if row["end"] > started + SLACK]
        self.assertEqual([row["title"] for row in rows], ["chapter one", "Schön: 第二章 🙂", "chapter one"])
        for row in rows:
            self.assertEqual(row["kind"], 0)
            self.assertIn("xterm", row["bundle_id"].lower())
            self.assertIsNone(row["url"])
        # A switch is heard of at once, by its notice.
        for row, begin, end in zip(rows, (None, switched, back), (switched, back, ended)):
            if begin:
                self.assertAlmostEqual(row["start"], begin, delta=SLACK)
            self.assertAlmostEqual(row["end"], end, delta=SLACK)
        # And there is no gap.
        for earlier, later in zip(rows, rows[1:]):
            self.assertEqual(earlier["end"], later["start"])

    def test_a_change_of_title_is_seen_within_one_tick(self):
        pipe = self.home.path / "titles"
        os.mkfifo(pipe)
        terminal = subprocess.Popen(
            ["xterm", "-T", "before", "-e", "sh", "-c", 'while read -r t; do printf "\\033]0;%s\\007" "$t"; done <>"$1"', "sh", pipe],
            stderr=subprocess.DEVNULL,
        )
        self.started.append(terminal)
        eventually(lambda: self.window_named("before"), "the terminal")
        agent = self.start_agent()
        time.sleep(3)
        pipe.write_text("after\n")
        changed = time.time()
        time.sleep(2 * TICK)
        self.assertEqual(self.stop(agent), 0)
        rows = {row["title"]: row for row in self.home.rows()}
        self.assertGreaterEqual(rows["after"]["start"], changed - SLACK)
        self.assertLessEqual(rows["after"]["start"], changed + TICK + SLACK)
        self.assertEqual(rows["before"]["end"], rows["after"]["start"])

    def test_titles_are_recorded_clean(self):
        window = self.open_window("notes")
        self.xdotool("set_window", "--name", "● (3) notes.md - XTerm", window)
        agent = self.start_agent()
        time.sleep(3)
        self.assertEqual(self.stop(agent), 0)
        self.assertEqual([row["title"] for row in self.home.rows()], ["notes.md"])

    def test_a_pause_leaves_a_gap_and_resuming_ends_it(self):
        self.open_window("work")
        agent = self.start_agent()
        time.sleep(2.5)
        paused = time.time()
        self.assertEqual(self.home.control("pause", "1h").returncode, 0)
        self.assertEqual(self.home.status()["state"], "paused")
        time.sleep(3)
        resumed = time.time()
        self.assertEqual(self.home.control("resume").returncode, 0)
        time.sleep(2.5)
        self.assertEqual(self.stop(agent), 0)
        before, after = self.home.rows()
        self.assertAlmostEqual(before["end"], paused, delta=SLACK)
        self.assertAlmostEqual(after["start"], resumed, delta=SLACK)

    def test_one_who_touches_nothing_goes_idle_at_the_last_input(self):
        self.assertEqual(self.home.control("settings", "set", "idleMinutes", "1").returncode, 0)
        self.open_window("reading")
        self.touch()
        last_input = time.time()
        agent = self.start_agent()
        eventually_idle = time.monotonic() + 75
        while self.home.status()["state"] != "idle":
            self.assertLess(time.monotonic(), eventually_idle)
            time.sleep(0.5)
        self.assertGreater(time.time() - last_input, 59)
        (row,) = self.home.rows()
        # Written on to the minute by the flushes, and taken back to the last touch.
        self.assertLess(row["end"] - row["start"], 3)
        self.touch()
        eventually(lambda: self.home.status()["state"] == "tracking", "recording goes on")
        self.assertEqual(self.stop(agent), 0)

    def test_the_last_window_closing_reads_as_idle_and_the_vanished_process_does_no_harm(self):
        self.open_window("brief")
        agent = self.start_agent()
        time.sleep(2.5)
        window = self.started[0]
        window.kill()
        window.wait()
        eventually(lambda: self.home.status()["state"] == "idle", "nothing is in front")
        self.assertEqual(self.stop(agent), 0)
        self.assertEqual([row["title"] for row in self.home.rows()], ["brief"])

    def test_a_hung_application_holds_nothing_up(self):
        self.open_window("fine")
        self.open_window("hung")
        hung = self.started[-1]
        os.kill(hung.pid, signal.SIGSTOP)
        agent = self.start_agent()
        time.sleep(5)
        (row,) = self.home.rows()
        self.assertEqual(row["title"], "hung")
        os.kill(hung.pid, signal.SIGCONT)
        self.assertEqual(self.stop(agent), 0)
        (row,) = self.home.rows()
        self.assertGreater(row["end"] - row["start"], 4)

    def test_a_second_copy_ends_at_once_and_leaves_the_first_alone(self):
        self.open_window("work")
        agent = self.start_agent()
        second = subprocess.run([BIN / "kestrio"], env=self.home.environment, capture_output=True, text=True, timeout=20)
        self.assertEqual(second.returncode, 0)
        self.assertEqual(second.stderr.splitlines()[0], f"kestrio: Kestrio is already running (process {agent.pid}).")
        eventually(self.window_process, "the person sees the dashboard of the first")
        self.assertIsNotNone(self.home.status())
        self.assertEqual(self.stop(agent), 0)

    def test_everything_lies_below_the_home_for_its_owner_alone(self):
        before = {path for path in os.scandir(os.environ["HOME"])}
        self.open_window("work")
        agent = self.start_agent()
        time.sleep(3)
        for path in self.home.path.rglob("*"):
            mode = stat.S_IMODE(path.stat().st_mode)
            self.assertEqual(mode, 0o700 if path.is_dir() else 0o600, path)
        self.assertEqual(self.stop(agent), 0)
        self.assertEqual({path.name for path in before}, {path.name for path in os.scandir(os.environ["HOME"])})


if __name__ == "__main__":
    main()
