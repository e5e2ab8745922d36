#!/usr/bin/python3
"""kestrioctl's commands about the resource log as people meet them, on logs that are made here.

usage: Tests/Programs/resource_log_test.py FOLDER [TEST]...     FOLDER holds the built programs
"""

import contextlib
import csv
import io
import json
import os
import pathlib
import pty
import re
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest

BIN = pathlib.Path(sys.argv.pop(1)).resolve()
DEADLINE = 60  # seconds; what is waited for takes less than three

NOON = 1_700_049_600  # 2023-11-15 12:00 UTC, a Wednesday
MIB = 1 << 20

FILES = ["README.txt", "activity-sessions.csv", "apps-minutes.csv", "data.json", "events.csv",
         "optimization-impact.csv", "report.md", "resources.sqlite", "seconds.csv", "system-minutes.csv"]

# Names as nobody should give them, and as some do.
NAMES = {
    "org.example.plain": "Plain",
    "org.example.comma": "Comma, Inc.",
    "org.example.quote": 'The "great" one',
    "org.example.lines": "Two\nlines\r\nand one",
    "org.example.formula": "=HYPERLINK(1,2)",
    "org.example.sum": "+1-@SUM(A1)",
    "org.example.mixed": 'a,"b"\n=c|d',
    "org.example.accents": "Söndag — 日曜日 🚂",
}

# What must never leave the machine; each is told nowhere else.
SECRETS = ["Sealed-Letter-To-Nobody", "hidden-page-address", "private-window-name", "Confidential-Plan"]


def minute(at, **changes):
    row = {"minute": at, "cpu": 0.25, "cpu_peak": 0.5, "cpu_p": 0.3, "cpu_e": 0.2, "mem_used": 8192 * MIB,
           "mem_total": 16384 * MIB, "compressed": 100 * MIB, "swap_used": 0, "swap_in": 0, "swap_out": 0,
           "pressure": 1, "thermal": 0, "lag_ms": 12, "front": None, "active_s": 60, "apps_open": 5, "procs": 300}
    return row | changes


def second(at, **changes):
    row = {"ts": at, "cpu": 250, "cpu_p": 300, "cpu_e": 200, "mem_mb": 8192, "comp_mb": 100, "swap_mb": 0,
           "pressure": 1, "thermal": 0, "ram_r": 0, "ram_w": 0, "ssd_r": 0, "ssd_w": 0, "swap_in": 0, "swap_out": 0,
           "lag_ms": 5, "idle_s": 1, "state": 0, "front": None}
    return row | changes


def app_minute(at, app, **changes):
    row = {"minute": at, "app": app, "cpu": 0.5, "cpu_peak": 1.0, "pcore": None, "memory": 300 * MIB,
           "mem_peak": 310 * MIB, "resident": 200 * MIB, "pageins": 0, "front": 0, "state": 0, "processes": 2}
    return row | changes


class Case(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="kestrio-test-"))
        self.addCleanup(shutil.rmtree, self.home)
        self.data = self.home / "data" / "Kestrio"
        self.log = self.data / "resources.sqlite"
        self.out = self.home / "out"
        self.out.mkdir()
        self.environment = {"PATH": os.environ["PATH"], "HOME": str(self.home), "KESTRIO_HOME": str(self.home),
                            "TZ": "UTC", "LC_ALL": "en_GB.UTF-8",
                            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.home}/no-bus"}

    def run_ctl(self, *arguments):
        return subprocess.run([BIN / "kestrioctl", *arguments], env=self.environment, text=True, capture_output=True,
                              timeout=DEADLINE, stdin=subprocess.DEVNULL)

    def ctl(self, *arguments, status=0):
        """What a command writes to standard output, when it ends as it should."""
        ran = self.run_ctl(*arguments)
        self.assertEqual(ran.returncode, status, f"{arguments}: {ran.stdout}{ran.stderr}")
        return ran.stdout

    def make_log(self, days=0, seconds=0):
        """An empty log, or an example of so many days that ends on the noon."""
        self.data.mkdir(parents=True, mode=0o700)
        subprocess.run([BIN / "example-resource-log", self.log, str(days), str(seconds), "1", str(NOON)],
                       env=self.environment, check=True, timeout=DEADLINE)

    def insert(self, table, *rows):
        with contextlib.closing(sqlite3.connect(self.log)) as connection, connection:
            for row in rows:
                marks = ", ".join("?" * len(row))
                connection.execute(f"INSERT INTO {table} ({', '.join(row)}) VALUES ({marks})", list(row.values()))

    def export(self, *arguments):
        told = self.ctl("log", "export", str(self.out), *arguments)
        folder = pathlib.Path(told.rstrip("\n"))
        self.assertEqual(folder.parent, self.out)
        return folder

    def rows(self, file):
        with open(file, newline="", encoding="utf-8") as opened:
            return list(csv.DictReader(opened, strict=True))


class Nothing(Case):
    COMMANDS = [("log", "status"), ("log", "export", "."), ("log", "report"), ("log", "events"),
                ("log", "seconds", "--from", "today"), ("why",)]

    def test_without_a_log_every_command_says_so(self):
        for command in self.COMMANDS:
            with self.subTest(command):
                ran = self.run_ctl(*command)
                self.assertEqual((ran.returncode, ran.stdout), (1, ""))
                self.assertEqual(ran.stderr, f"kestrioctl: there is no resource log yet: {self.log} does not exist\n")
        self.assertFalse(self.data.exists())

    def test_a_file_that_is_no_log_is_a_clear_line(self):
        self.data.mkdir(parents=True)
        for content in (b"this is no database, whatever its name says " * 50, b""):
            self.log.write_bytes(content)
            for command in self.COMMANDS:
                with self.subTest(command):
                    ran = self.run_ctl(*command)
                    self.assertEqual((ran.returncode, ran.stdout), (1, ""))
                    self.assertRegex(ran.stderr, rf"\Akestrioctl: {re.escape(str(self.log))}: [^\n]+\n\Z")
            self.assertEqual(self.log.read_bytes(), content)

    def test_an_empty_log_is_no_mistake(self):
        self.make_log()
        self.assertIn("  Covers   nothing yet\n", self.ctl("log", "status"))
        self.assertEqual(self.run_ctl("log", "events").stderr,
                         "kestrioctl: nothing happened in that time, as far as the log knows\n")
        self.assertEqual(self.run_ctl("log", "seconds", "--from", "today").stderr,
                         "kestrioctl: no seconds were logged in that time\n")
        self.assertEqual(self.ctl("log", "seconds", "--from", "today", "--json"), "[]\n")
        self.assertEqual(self.ctl("why", "--at", "2023-11-15 12:00"), "Nothing is logged of 15 Nov 2023, 12:00.\n")
        folder = self.export()
        self.assertEqual(sorted(path.name for path in folder.iterdir()), FILES)
        for name in FILES:
            if name.endswith(".csv"):
                self.assertEqual(self.rows(folder / name), [])
                self.assertEqual((folder / name).read_text().count("\n"), 1)
        self.assertTrue((folder / "report.md").read_text().endswith("Nothing was logged in this range.\n"))


class Usage(Case):
    def test_what_is_wrong_is_said(self):
        self.make_log()
        forms = ("is no moment that I understand; try now, today, yesterday, 14:30, 2026-11-21, "
                 "\"2026-11-21 14:30\", 2h ago or @SECONDS")
        late = "--to must be later than --from"
        here = str(self.out)
        for command, message in [
            (["log", "export", here, "--all", "--from", "today"],
             "one range at a time: --all, or --from with --to"),
            (["log", "export", here, "--all", "--to", "today"], "one range at a time: --all, or --from with --to"),
            (["log", "export", here, "--from", "someday"], f'--from "someday" {forms}'),
            (["log", "export", here, "--from", "today", "--to", "yesterday"], late),
            (["log", "report", "--day", "someday"], f'--day "someday" {forms}'),
            (["log", "report", "--day", "today", "--week", "today"],
             "one range at a time: --day, --week, --month, or --from with --to"),
            (["log", "events", "--to", "someday"], f'--to "someday" {forms}'),
            (["log", "events", "--limit", "0"], "--limit must be at least 1"),
            (["log", "events", "--limit", "-3"], "--limit must be at least 1"),
            (["log", "seconds", "--from", "now", "--to", "now"], late),
            (["log", "seconds", "--from", "today", "--csv", "--json"], "one form at a time: --csv or --json"),
            (["log", "seconds"], "--from is required. Try kestrioctl log seconds --help."),
            (["log", "export"], "folder is required. Try kestrioctl log export --help."),
            (["log"], "which command? There are several. Try kestrioctl log --help."),
            (["why", "--at", "someday"], f'--at "someday" {forms}'),
        ]:
            with self.subTest(command):
                ran = self.run_ctl(*command)
                self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (2, "", f"kestrioctl: {message}\n"))
        self.assertEqual(list(self.out.iterdir()), [])

    def test_every_command_helps(self):
        for command in ("log", "log status", "log export", "log report", "log events", "log seconds", "why"):
            with self.subTest(command):
                self.assertIn("Usage: kestrioctl " + command, self.ctl(*command.split(), "--help"))

    def test_an_export_needs_a_folder(self):
        self.make_log()
        file = self.home / "file"
        file.write_text("precious")
        for place in (file, self.home / "nowhere", pathlib.Path("")):
            ran = self.run_ctl("log", "export", str(place) if place.parts else "")
            self.assertEqual((ran.returncode, ran.stdout), (1, ""), ran.stderr)
            self.assertIn("kestrioctl: there is no folder ", ran.stderr)
        self.assertEqual(file.read_text(), "precious")

    def test_a_report_that_cannot_be_written_is_a_clear_line(self):
        self.make_log()
        ran = self.run_ctl("log", "report", "-o", str(self.home / "nowhere" / "report.md"))
        self.assertEqual((ran.returncode, ran.stdout), (1, ""))
        self.assertRegex(ran.stderr, r"\Akestrioctl: [^\n]*nowhere/report.md: No such file or directory\n\Z")

    def test_reading_changes_nothing(self):
        self.make_log(days=1, seconds=1)
        before = self.log.read_bytes()
        for command in (["log", "status"], ["log", "report"], ["log", "events"], ["why"],
                        ["log", "export", str(self.out)], ["log", "seconds", "--from", "2023-11-15"]):
            self.ctl(*command)
        self.assertEqual(self.log.read_bytes(), before)


class Export(Case):
    def make_hostile_log(self):
        self.make_log()
        self.insert("apps", *({"id": number, "key": key, "name": name}
                              for number, (key, name) in enumerate(NAMES.items(), 1)))
        self.insert("system_minutes", minute(NOON, front=3, config=None, battery=80, on_ac=0, temp=51.25),
                    minute(NOON + 60, front=1, pressure=4, lag_ms=900, swap_in=300 * MIB))
        for number in range(1, len(NAMES) + 1):
            self.insert("app_minutes", app_minute(NOON, number, memory=(100 + number) * MIB, state=number % 3))
        self.insert("events", {"at": NOON + 5.5, "kind": "slowdown", "app": 4,
                               "detail": 'the Mac stalled, "badly",\n=for 2 s', "bytes": 3 * MIB},
                    {"at": NOON + 6, "kind": "from-a-later-version", "detail": "?"},
                    {"at": NOON + 7, "kind": "macSlept", "detail": ""})
        self.insert("system_seconds", *(second(NOON + i, front=1 + i % 8) for i in range(20)))

    def make_sessions(self):
        # The program's own file, from the program that makes examples, with sessions put into it by hand.
        file = self.data / "activity.sqlite"
        subprocess.run([BIN / "example-history", file, "0"], env=self.environment, check=True, timeout=DEADLINE,
                       stdout=subprocess.DEVNULL)
        rows = [
            (NOON + 1, NOON + 61, "com.microsoft.VSCode", "Code", f"{SECRETS[0]} — report", None, None, None, 0),
            (NOON + 61, NOON + 91, "com.google.Chrome", "Google Chrome", SECRETS[2],
             f"https://docs.example.com/{SECRETS[1]}?q=1", "docs.example.com", None, 0),
            (NOON + 70, NOON + 80, "com.spotify.client", 'Music, "loud"', SECRETS[3],
             f"https://music.example.com/{SECRETS[1]}", "music.example.com", None, 2),
        ]
        with contextlib.closing(sqlite3.connect(file)) as connection, connection:
            connection.executemany("INSERT INTO sessions (start, end, bundle_id, app_name, title, url, domain, project,"
                                   " kind) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)", rows)

    def test_everything_can_be_read_again(self):
        self.make_hostile_log()
        folder = self.export()
        self.assertEqual(sorted(path.name for path in folder.iterdir()), FILES)
        self.assertEqual(folder.stat().st_mode & 0o777, 0o700)
        for path in folder.iterdir():
            self.assertEqual(path.stat().st_mode & 0o777, 0o600, path)

        apps = self.rows(folder / "apps-minutes.csv")
        self.assertEqual({row["bundle_id"]: row["app"] for row in apps}, NAMES)
        self.assertEqual(len(apps), len(NAMES))
        for row in apps:
            self.assertEqual((row["minute"], row["cpu_percent_of_core"]), ("2023-11-15T12:00:00Z", "50.0"))

        minutes = self.rows(folder / "system-minutes.csv")
        self.assertEqual([row["front_app"] for row in minutes], ["org.example.quote", "org.example.plain"])
        self.assertEqual([row["pressure"] for row in minutes], ["normal", "critical"])
        self.assertEqual([row["battery_percent"] for row in minutes], ["80", ""])
        self.assertEqual([row["on_ac_power"] for row in minutes], ["no", ""])

        events = self.rows(folder / "events.csv")
        self.assertEqual([(row["kind"], row["app"], row["detail"], row["bytes_mb"]) for row in events],
                         [("slowdown", "Two\nlines\r\nand one", 'the computer stalled, "badly",\n=for 2 s', "3.0"),
                          ("macSlept", "", "", "")])

        seconds = self.rows(folder / "seconds.csv")
        self.assertEqual([row["time"][11:19] for row in seconds], [f"12:00:{i:02}" for i in range(20)])
        self.assertEqual(seconds[1]["front_app"], "org.example.comma")

        for name in FILES:
            if name.endswith(".csv"):
                for row in self.rows(folder / name):
                    self.assertNotIn(None, row, name)  # no row is longer than its heading
                    self.assertNotIn(None, row.values(), name)  # nor shorter

        data = json.loads((folder / "data.json").read_text(encoding="utf-8"))
        self.assertEqual(list(data), ["range", "mac", "settings", "note", "optimizer_setups", "system_minutes",
                                      "app_minutes", "events"])
        self.assertEqual({row["bundle_id"]: row["app"] for row in data["app_minutes"]}, NAMES)
        self.assertEqual(data["note"], "Second-by-second readings (20 in this range) are in seconds.csv, not here.")
        self.assertEqual(data["settings"], {
            "optimization_on": False, "tuning": None, "rules": None, "memory_alerts": True, "runaway_alerts": True,
            "log_days": 90, "detail_every_seconds": 1, "detail_days": 7})
        self.assertGreaterEqual(data["mac"]["performance_cores"], 1)
        self.assertGreaterEqual(data["mac"]["memory_gb"], 1)

        with contextlib.closing(sqlite3.connect(folder / "resources.sqlite")) as copy:
            self.assertEqual(copy.execute("PRAGMA integrity_check").fetchall(), [("ok",)])
            self.assertEqual(dict(copy.execute("SELECT key, name FROM apps")), NAMES)
            self.assertEqual(copy.execute("SELECT COUNT(*) FROM system_seconds").fetchone(), (20,))

        readme = (folder / "README.txt").read_text(encoding="utf-8")
        for words in ("for the whole computer (2 rows)", "per minute it mattered (8 rows)", "readings (20 rows,",
                      "log_days: 90\n", "rules: null\n"):
            self.assertIn(words, readme)
        self.assertIn("The \"great\" one", (folder / "report.md").read_text(encoding="utf-8"))

    def test_no_title_and_no_address_leaves_the_machine(self):
        self.make_hostile_log()
        self.make_sessions()
        folder = self.export()
        sessions = self.rows(folder / "activity-sessions.csv")
        self.assertEqual([(row["start"], row["duration_seconds"], row["kind"], row["app"], row["category"], row["site"])
                          for row in sessions],
                         [("2023-11-15T12:00:01Z", "60", "focused", "Code", "Development", ""),
                          ("2023-11-15T12:01:01Z", "30", "focused", "Google Chrome", sessions[1]["category"],
                           "docs.example.com"),
                          ("2023-11-15T12:01:10Z", "10", "listening", 'Music, "loud"', "Entertainment",
                           "music.example.com")])
        self.assertIn("What you used and when (3 rows)", (folder / "README.txt").read_text())
        for path in folder.iterdir():
            content = path.read_bytes()
            for secret in SECRETS:
                self.assertNotIn(secret.encode(), content, path)
                self.assertNotIn(secret.encode("utf-16-le"), content, path)
            self.assertNotIn(b"https://", content, path)

    def test_a_range_holds_what_lies_in_it(self):
        self.make_hostile_log()
        self.make_sessions()
        folder = self.export("--from", "2023-11-15 12:01", "--to", "2023-11-15 12:02")
        self.assertEqual([row["minute"] for row in self.rows(folder / "system-minutes.csv")], ["2023-11-15T12:01:00Z"])
        for name in ("apps-minutes.csv", "events.csv", "seconds.csv"):
            self.assertEqual(self.rows(folder / name), [], name)
        # Sessions are cut to the range.
        self.assertEqual([(row["start"][11:19], row["end"][11:19])
                          for row in self.rows(folder / "activity-sessions.csv")],
                         [("12:01:00", "12:01:01"), ("12:01:01", "12:01:31"), ("12:01:10", "12:01:20")])
        self.assertEqual(json.loads((folder / "data.json").read_text())["range"],
                         {"start": "2023-11-15T12:01:00Z", "end": "2023-11-15T12:02:00Z"})

    def test_two_exports_of_a_day_stand_side_by_side(self):
        self.make_hostile_log()
        first, then = self.export("--all"), self.export("--all")
        self.assertEqual(then.name, first.name + "-2")
        self.assertEqual((first / "apps-minutes.csv").read_bytes(), (then / "apps-minutes.csv").read_bytes())

    def test_the_settings_and_the_drives_test_are_told(self):
        self.make_hostile_log()
        tuning = {"mode": "focus", "idleMinutes": 5}
        self.ctl("settings", "set", "optimizerTuning", json.dumps(tuning))
        self.ctl("settings", "set", "resourceLogDays", "30")
        self.ctl("settings", "set", "ssdSpeedTest",
                 json.dumps({"readBytesPerSecond": 3e9, "writeBytesPerSecond": 2.5e9, "date": NOON - 978307200}))
        folder = self.export()
        settings = json.loads((folder / "data.json").read_text())["settings"]
        self.assertEqual((settings["tuning"], settings["log_days"]), (tuning, 30))
        self.assertIn("- SSD tested at 3 GB/s read and 2.5 GB/s write (15 Nov 2023).\n",
                      (folder / "report.md").read_text())

    def test_a_terminal_sees_how_far_it_is_and_a_pipe_does_not(self):
        self.make_log(days=2, seconds=2)
        ran = self.run_ctl("log", "export", str(self.out))
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        master, slave = pty.openpty()
        try:
            subprocess.run([BIN / "kestrioctl", "log", "export", str(self.out)], env=self.environment, check=True,
                           stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=slave, timeout=DEADLINE)
            shown = os.read(master, 100_000).decode()
        finally:
            os.close(master)
            os.close(slave)
        shares = [int(share) for share in re.findall(r"Exporting… (\d+)%", shown)]
        self.assertEqual(shares, sorted(shares))
        self.assertEqual(shares[-1], 100)
        self.assertTrue(shown.endswith("\r\x1b[K"))

    def test_an_export_that_is_interrupted_leaves_nothing(self):
        self.make_log(days=3, seconds=3)
        precious = self.out / "precious.txt"
        precious.write_text("mine")
        for how in (signal.SIGINT, signal.SIGTERM):
            with self.subTest(how):
                exporting = subprocess.Popen([BIN / "kestrioctl", "log", "export", self.out], env=self.environment,
                                             text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                self.addCleanup(exporting.kill)
                deadline = time.monotonic() + DEADLINE
                while not list(self.out.glob("kestrio-*/seconds.csv")) and time.monotonic() < deadline:
                    time.sleep(0.002)
                exporting.send_signal(how)
                self.assertEqual(exporting.communicate(timeout=DEADLINE), ("", ""))
                self.assertEqual(exporting.returncode, 130)
                self.assertEqual(list(self.out.iterdir()), [precious])

    def test_a_week_is_whole(self):
        self.make_log(days=7, seconds=7)
        folder = self.export()
        with contextlib.closing(sqlite3.connect(self.log)) as log:
            counts = [log.execute(f"SELECT COUNT(*) FROM {table}").fetchone()[0]
                      for table in ("system_minutes", "app_minutes", "system_seconds", "events")]
        self.assertEqual([len(self.rows(folder / name))
                          for name in ("system-minutes.csv", "apps-minutes.csv", "seconds.csv", "events.csv")], counts)
        self.assertGreater(counts[2], 200_000)


class Report(Case):
    HEADING = "# Kestrio resource report — "

    def report(self, *arguments):
        """Without the line about this machine, which differs."""
        text = self.ctl("log", "report", *arguments)
        lines = text.split("\n")
        self.assertRegex(lines[2], r", \d+ GB RAM, \d+ performance \+ \d+ efficiency cores, ")
        lines[2] = "MACHINE"
        return re.sub(r"Generated by Kestrio [0-9.]+", "Generated by Kestrio VERSION", "\n".join(lines))

    def test_an_empty_range_says_so(self):
        self.make_log()
        self.assertEqual(self.report("--day", "2023-11-15"),
                         "# Kestrio resource report — Wednesday, 15 November 2023\n\nMACHINE\n\n"
                         "Nothing was logged in this range.\n")
        self.assertEqual(self.report("--week", "2023-11-15").split("\n")[0], self.HEADING + "13 Nov – 19 Nov 2023")
        self.assertEqual(self.report("--month", "2023-11-15").split("\n")[0], self.HEADING + "1 Nov – 30 Nov 2023")
        self.assertEqual(self.report("--from", "2023-11-15 12:00", "--to", "2023-11-15 13:00").split("\n")[0],
                         self.HEADING + "15 Nov 2023, 12:00 – 15 Nov 2023, 13:00")

    SETTINGS = ("\n## Settings when this was exported\n\n```json\n{\n"
                '  "optimization_on": false,\n  "tuning": null,\n  "rules": null,\n  "memory_alerts": true,\n'
                '  "runaway_alerts": true,\n  "log_days": 90,\n  "detail_every_seconds": 1,\n  "detail_days": 7\n'
                "}\n```\n\nGenerated by Kestrio VERSION\n")

    def test_a_minute_is_told_whole(self):
        self.make_log()
        self.insert("system_minutes", minute(NOON))
        self.assertEqual(self.report("--day", "2023-11-15"), """\
# Kestrio resource report — Wednesday, 15 November 2023

MACHINE

Logged: 1m between 15 Nov 2023, 12:00 and 15 Nov 2023, 12:00

## Memory pressure and slowdowns

- Under pressure: 0s (0%), critical 0s
- 0 bytes written out to the SSD, 0 bytes read back.
- Slowdown moments: 0 (0.0 per hour)

## How you used the computer

- At the computer (active): 1m. Idle: 0s. Away (locked or asleep): 0s.
- App switches: 0
- Apps open at once: 5 on average, 5 at most. Processes running: up to 300.
- Busiest hours: 12:00

## By hour of day

| Hour | At the computer | Idle or away | Switches | Minutes logged | Memory used | Swap read back | Under pressure | CPU | Stall peak |
|---|---|---|---|---|---|---|---|---|---|
| 12:00 | 1m | 0s | 0 | 1 | 8 GB | 0 bytes | 0% | 25% | 0.0 s |

## What the optimizer did

Nothing in this range
""" + self.SETTINGS)

    def test_an_hour_with_slow_moments_is_told_whole(self):
        self.make_log()
        self.insert("apps", {"id": 1, "key": "org.example.editor", "name": "Editor | one"},
                    {"id": 2, "key": "org.example.browser", "name": "Browser"})
        off = {"id": 11, "key": "off-there", "label": "Optimization off", "first_seen": NOON}
        with contextlib.closing(sqlite3.connect(self.log)) as connection, connection:
            connection.execute("DELETE FROM configs")
        off["key"] = "off"
        self.insert("configs", off, {"id": 12, "key": "on", "label": "Balanced", "first_seen": NOON})
        self.insert("system_minutes", *(
            minute(NOON + 60 * i, front=1, config=11 if i < 30 else 12, switches=2, on_ac=i % 2, battery=70,
                   temp=50 + i / 2, thermal=2 if i == 59 else 0, pressure=4 if i == 3 else 1,
                   swap_in=300 * MIB if i in (3, 4) else 0, lag_ms=800 if i == 3 else 12,
                   ram_r=2_000_000_000, ram_w=1_000_000_000, ram_peak=9_000_000_000, ssd_r=1_000_000,
                   ssd_w=2_000_000, ssd_peak=80_000_000, ssd_wait_us=350)
            for i in range(60)))
        self.insert("app_minutes", *(app_minute(NOON + 60 * i, 1, front=60, energy_mj=60_000) for i in range(60)),
                    app_minute(NOON, 2, memory=2048 * MIB, mem_peak=3072 * MIB, state=2))
        self.insert("events", {"at": NOON + 200, "kind": "slowdown", "app": 1, "detail": "x"},
                    {"at": NOON + 300, "kind": "macSlept", "detail": ""},
                    {"at": NOON + 310, "kind": "macWoke", "detail": ""})
        self.insert("system_seconds", second(NOON + 190, front=1, lag_ms=800, pressure=4, swap_in=50_000_000,
                                             ssd_r=60_000_000), second(NOON + 191, lag_ms=0))
        self.assertEqual(self.report("--from", "2023-11-15 12:00", "--to", "2023-11-15 13:00"), """\
# Kestrio resource report — 15 Nov 2023, 12:00 – 15 Nov 2023, 13:00

MACHINE

Logged: 1h between 15 Nov 2023, 12:00 and 15 Nov 2023, 12:59

## Optimization: off versus on

Only minutes you were at the computer are counted; under 30 minutes is too little to judge. Each combination of mode, freeze time, efficiency cores and app rules is its own setup.

| Setup | Counted | Under pressure | Read back / hr | Slowdowns / hr | Freezes / hr | Avg CPU | Avg memory | Apps frozen (avg) |
|---|---|---|---|---|---|---|---|---|
| Optimization off | 30m | 3% | 1.17 GB | 4.0 | 2.0 | 25% | 8 GB | 0.0 |
| Balanced | 30m | 0% | 0 bytes | 0.0 | 0.0 | 25% | 8 GB | 0.0 |

Compared with optimization off, **Balanced**:

- Time under memory pressure: 0.0%, 100% less than 3.3%
- Memory read back from the SSD: 0 bytes per hour, 100% less than 1.17 GB per hour
- Slowdowns per hour: 0.0, 100% less than 4.0
- Freezes of half a second or more per hour: 0.0, 100% less than 2.0

## Memory pressure and slowdowns

- Under pressure: 1m (2%), critical 1m
- 0 bytes written out to the SSD, 600 MB read back.
- Slowdown moments: 2 (2.0 per hour)

## How you used the computer

- At the computer (active): 1h. Idle: 0s. Away (locked or asleep): 0s.
- App switches: 120 (about 120 per active hour)
- Apps open at once: 5 on average, 5 at most. Processes running: up to 300.
- Busiest hours: 12:00
- On battery for 30m of the 1h logged
- Chip temperature: 65°C on average, 80°C at most; throttling for 1m

## RAM and SSD speed

- RAM traffic: 3 GB/s on average, 9 GB/s at the fastest moment
- SSD: 1 MB/s read and 2 MB/s written on average, 80 MB/s at the fastest moment; an average request waited 350 µs

## By hour of day

| Hour | At the computer | Idle or away | Switches | Minutes logged | Memory used | Swap read back | Under pressure | CPU | Stall peak |
|---|---|---|---|---|---|---|---|---|---|
| 12:00 | 1h | 0s | 120 | 60 | 8 GB | 600 MB | 2% | 25% | 0.8 s |

## Apps (by average memory)

| App | Avg memory | Peak | Out of RAM (avg) | Avg CPU | Peak CPU | In front | Frozen | Efficiency cores | Page-ins | Disk read | Disk written | Avg power |
|---|---|---|---|---|---|---|---|---|---|---|---|---|
| Browser | 2 GB | 3 GB | 1.8 GB | 50% of a core | 1.0 cores | 0s | 1m | 0s | 0 | 0 bytes | 0 bytes |  |
| Editor \\| one | 300 MB | 310 MB | 100 MB | 50% of a core | 1.0 cores | 1h | 0s | 0s | 0 | 0 bytes | 0 bytes | 1.0 W |

## Worst moments, second by second (2 seconds logged)

Longest stalls:

- **15 Nov, 12:03:10** CPU 25%, RAM 0 bytes/s, SSD 60 MB/s, swap back in 50 MB/s, stall 800 ms, memory pressure critical, in front: Editor | one

Fastest SSD traffic:

- **15 Nov, 12:03:10** CPU 25%, RAM 0 bytes/s, SSD 60 MB/s, swap back in 50 MB/s, stall 800 ms, memory pressure critical, in front: Editor | one

## What the optimizer did

- Slowdown: 1
- Computer went to sleep: 1
- Computer woke up: 1
""" + self.SETTINGS)

    def test_a_report_goes_into_a_file_whole(self):
        self.make_log()
        self.insert("system_minutes", minute(NOON))
        file = self.home / "report.md"
        file.write_text("older")
        self.assertEqual(self.ctl("log", "report", "--day", "2023-11-15", "-o", str(file)), "")
        self.assertEqual(file.read_text(), self.ctl("log", "report", "--day", "2023-11-15"))


class Looking(Case):
    def make_small_log(self):
        self.make_log()
        self.insert("apps", {"id": 1, "key": "org.example.editor", "name": "Editor"},
                    {"id": 2, "key": "org.example.browser", "name": "Browser"})
        self.insert("system_minutes", minute(NOON, front=1),
                    minute(NOON + 60, front=1, lag_ms=2500, pressure=4, swap_in=512 * MIB))
        self.insert("app_minutes", app_minute(NOON + 60, 1, cpu=2.5, memory=900 * MIB),
                    app_minute(NOON + 60, 2, memory=3072 * MIB))
        self.insert("system_seconds", second(NOON + 79, front=1),
                    second(NOON + 80, front=1, lag_ms=2500, pressure=4, swap_in=40_000_000, ssd_r=50_000_000),
                    second(NOON + 81, front=None))
        self.insert("events", {"at": NOON + 1, "kind": "appOpened", "app": 2, "detail": ""},
                    {"at": NOON + 80, "kind": "slowdown", "app": 1, "detail": "the Mac stalled for 2.5 s",
                     "bytes": 512 * MIB},
                    {"at": NOON + 120, "kind": "macSlept", "detail": ""})

    def test_the_status_is_told_whole(self):
        self.make_small_log()
        text = self.ctl("log", "status")
        self.assertRegex(text.split("\n")[-2], rf"\A  File     \d+(\.\d+)? [KM]B, {re.escape(str(self.log))}\Z")
        self.assertEqual("\n".join(text.split("\n")[:-2]), """\
  Log      on, a detailed reading every second
  Covers   15 Nov 2023, 12:00 to 15 Nov 2023, 12:01: 2m logged in 1 day
  Minutes  2 rows
  Apps     2 rows of 2 apps
  Seconds  3 rows, since 15 Nov 2023, 12:01
  Events   3 rows
  Setups   2 rows
  Kept     minutes and events for 90 days, seconds for 7 days""")
        data = json.loads(self.ctl("log", "status", "--json"))
        self.assertGreaterEqual(data.pop("fileSize"), self.log.stat().st_size)  # what stands beside it counts too
        self.assertEqual(data, {
            "isOn": True, "pace": 1, "days": 90, "detailDays": 7, "file": str(self.log),
            "minutes": 2, "appMinutes": 2, "seconds": 3, "events": 3, "apps": 2, "setups": 2,
            "firstMinute": NOON, "lastMinute": NOON + 60, "firstSecond": NOON + 79, "agent": None})

    def test_the_status_tells_the_settings(self):
        self.make_small_log()
        for value, words in (("5", "on, a detailed reading every 5 seconds"), ("0", "on, minute summaries only")):
            self.ctl("settings", "set", "resourceDetail", value)
            self.assertIn(f"  Log      {words}\n", self.ctl("log", "status"))
        self.ctl("settings", "set", "resourceLogEnabled", "false")
        self.assertIn("  Log      off\n", self.ctl("log", "status"))

    def test_events_are_told_in_order(self):
        self.make_small_log()
        day = ["--from", "2023-11-15", "--to", "2023-11-16"]
        self.assertEqual(self.ctl("log", "events", *day), """\
  15 Nov, 12:00:01  App opened              Browser
  15 Nov, 12:01:20  Slowdown                Editor, the computer stalled for 2.5 s, 512 MB
  15 Nov, 12:02:00  Computer went to sleep
""")
        events = json.loads(self.ctl("log", "events", *day, "--json"))
        self.assertEqual(events[1], {"id": 2, "at": NOON + 80, "kind": "slowdown", "appID": "org.example.editor",
                                     "appName": "Editor", "detail": "the Mac stalled for 2.5 s", "bytes": 512 * MIB})
        self.assertEqual([event["kind"] for event in events], ["appOpened", "slowdown", "macSlept"])
        ran = self.run_ctl("log", "events", *day, "--limit", "1")
        self.assertEqual(ran.stdout, "  15 Nov, 12:02:00  Computer went to sleep\n")
        self.assertEqual(ran.stderr, "kestrioctl: these are the latest 1; --limit tells more\n")

    def test_an_event_obeys_no_terminal(self):
        self.make_small_log()
        self.insert("apps", {"id": 3, "key": "x", "name": "\x1b[31mred\nline"})
        self.insert("events", {"at": NOON + 200, "kind": "quit", "app": 3, "detail": ""})
        told = self.ctl("log", "events", "--from", "2023-11-15", "--to", "2023-11-16")
        self.assertNotIn("\x1b", told)
        self.assertEqual(told.count("\n"), 4)

    def test_seconds_come_in_three_forms(self):
        self.make_small_log()
        part = ["log", "seconds", "--from", "2023-11-15 12:01:20", "--to", "2023-11-15 12:01:22"]
        self.assertEqual(self.ctl(*part), """\
  Time                     CPU    Memory      Swap Read back       SSD     Stall  Pressure  In front
  15 Nov, 12:01:20         25%      8 GB   0 bytes   40 MB/s   50 MB/s   2500 ms  critical  org.example.editor
  15 Nov, 12:01:21         25%      8 GB   0 bytes 0 bytes/s 0 bytes/s      5 ms  normal
""")
        table = list(csv.DictReader(io.StringIO(self.ctl(*part, "--csv"))))
        self.assertEqual([(row["time"], row["stall_ms"], row["front_app"]) for row in table],
                         [("2023-11-15T12:01:20Z", "2500", "org.example.editor"),
                          ("2023-11-15T12:01:21Z", "5", "")])
        data = json.loads(self.ctl(*part, "--json"))
        self.assertEqual([(row["at"], row["lagMilliseconds"], row["frontApp"]) for row in data],
                         [(NOON + 80, 2500, "org.example.editor"), (NOON + 81, 5, None)])

    def test_many_seconds_come_whole(self):
        self.make_log()
        self.insert("system_seconds", *(second(NOON + i) for i in range(12_001)))
        part = ["log", "seconds", "--from", "2023-11-15", "--to", "2023-11-16"]
        self.assertEqual(self.ctl(*part).count("\n"), 12_002)
        self.assertEqual([row["at"] for row in json.loads(self.ctl(*part, "--json"))],
                         [NOON + i for i in range(12_001)])

    def test_why_says_what_was_wrong(self):
        self.make_small_log()
        for at, told in [
            ("2023-11-15 12:01:25",
             "The computer was slow at 12:01: it stood still for 2.5 s at 12:01:20, its memory was full (critical "
             "pressure) and 512 MB had to be read back from the SSD within a minute.\n"
             "Browser held the most memory (3 GB), Editor was the busiest (2.5 cores) and you were at the computer.\n"),
            ("2023-11-15 12:00:10",
             "The computer was not slow at 12:00: memory was under no pressure, nothing had to be read back from the "
             "SSD and the cores were 25% busy.\nYou were using Editor.\n"),
            ("2023-11-15 13:00", "Nothing is logged of 15 Nov 2023, 13:00: the computer was asleep.\n"),
            ("2023-11-15 11:00", "Nothing is logged of 15 Nov 2023, 11:00.\n"),
            ("2031-01-01", "Nothing is logged of 1 Jan 2031, 00:00.\n"),
        ]:
            with self.subTest(at):
                self.assertEqual(self.ctl("why", "--at", at), told)

    def test_why_takes_from_the_sessions_what_an_application_without_minutes_is_called(self):
        self.make_small_log()
        self.insert("apps", {"id": 3, "key": "org.example.seen", "name": "org.example.seen"})
        self.insert("system_minutes", minute(NOON + 3600, front=3))
        told = "You were using {}.\n"
        self.assertIn(told.format("org.example.seen"), self.ctl("why", "--at", "2023-11-15 13:00:10"))
        file = self.data / "activity.sqlite"
        subprocess.run([BIN / "example-history", file, "0"], env=self.environment, check=True, timeout=DEADLINE,
                       stdout=subprocess.DEVNULL)
        with contextlib.closing(sqlite3.connect(file)) as connection, connection:
            connection.execute("INSERT INTO sessions (start, end, bundle_id, app_name) VALUES (?, ?, ?, ?)",
                               (NOON, NOON + 60, "org.example.seen", "Finder of Things"))
        self.assertIn(told.format("Finder of Things"), self.ctl("why", "--at", "2023-11-15 13:00:10"))
        file.write_text("in the way")
        self.assertIn(told.format("org.example.seen"), self.ctl("why", "--at", "2023-11-15 13:00:10"))


unittest.main(verbosity=1)
