#!/usr/bin/python3
"""The programs as people meet them: kestrioctl and the agent, each in a private home and in a private desktop.

usage: Tests/Programs/command_line_test.py FOLDER [TEST]...     FOLDER holds the built programs
"""

import json
import os
import pathlib
import select
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import threading
import time
import unittest

DESKTOP = pathlib.Path(__file__).resolve().parents[2] / "Tools" / "virtual-desktop"
if "KESTRIO_VIRTUAL_DESKTOP" not in os.environ:
    os.execv(DESKTOP, [str(DESKTOP), "--", *sys.argv])

BIN = pathlib.Path(sys.argv.pop(1)).resolve()
DEADLINE = 20  # seconds; what is waited for takes less than three

COMMANDS = ["record", "watch", "status", "sessions", "report", "pause", "resume", "settings", "settings list", "settings get",
            "settings set", "settings reset", "doctor", "categories", "categories list", "categories set",
            "categories reset", "projects", "projects list", "projects add", "projects move", "projects remove", "explain",
            "report", "export", "import", "top", "machine", "disk-test", "browsers", "open"]

SESSION_KEYS = ["id", "start", "end", "bundleID", "appName", "title", "url", "domain", "project", "kind"]
STATUS_KEYS = ["state", "pausedUntil", "live", "alongside", "unsaved", "isAccessibilityGranted", "version",
               "processIdentifier", "dataFolder", "startedAt"]
STORE_KEYS = ["running", "loweredPace", "focusedToday", "sessionCount", "fileSize", "earliestStart"]

NOON = 1_700_049_600  # 2023-11-15 12:00 UTC


def until(condition):
    deadline = time.monotonic() + DEADLINE
    while not (found := condition()) and time.monotonic() < deadline:
        time.sleep(0.02)
    return found


def tree(folder):
    """Every file below a folder with its mode and contents."""
    return {
        str(path.relative_to(folder)): (oct(path.lstat().st_mode), path.read_bytes() if path.is_file() else None)
        for path in sorted(folder.rglob("*"))
    }


class Case(unittest.TestCase):
    """A test with a home of its own, and nothing around it."""

    desktop = False  # with the screen and the bus

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kestrio-test-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.person = self.folder / "person"
        self.person.mkdir()
        (self.person / "precious.txt").write_text("mine")
        self.home = self.folder / "home"
        self.environment = {
            "PATH": os.environ["PATH"], "HOME": str(self.person), "KESTRIO_HOME": str(self.home), "TZ": "UTC",
            "LC_ALL": "en_GB.UTF-8", "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={self.folder}/no-bus",
        }
        if self.desktop:
            for name in ("DISPLAY", "XAUTHORITY", "DBUS_SESSION_BUS_ADDRESS"):
                if name in os.environ:
                    self.environment[name] = os.environ[name]

    def environment_with(self, **changes):
        together = self.environment | changes
        return {name: value for name, value in together.items() if value is not None}

    def run_ctl(self, *arguments, **changes):
        return subprocess.run([BIN / "kestrioctl", *arguments], env=self.environment_with(**changes), text=True,
                              capture_output=True, timeout=DEADLINE, stdin=subprocess.DEVNULL)

    def ctl(self, *arguments, status=0, **changes):
        """What a command writes to standard output, when it ends as it should."""
        ran = self.run_ctl(*arguments, **changes)
        self.assertEqual(ran.returncode, status, f"{arguments}: {ran.stdout}{ran.stderr}")
        return ran.stdout

    def start(self, program, *arguments, **changes):
        started = subprocess.Popen([BIN / program if program.startswith("kestrio") else program, *arguments],
                                   env=self.environment_with(**changes), text=True, stdin=subprocess.DEVNULL,
                                   bufsize=1, stdout=subprocess.PIPE, stderr=subprocess.PIPE)

        def end():
            started.kill()
            started.wait()
            started.stdout.close()
            started.stderr.close()

        self.addCleanup(end)
        return started

    @property
    def database(self):
        return self.home / "data" / "Kestrio" / "activity.sqlite"

    def record_nothing(self):
        """Lets the program make its files."""
        recorder = self.start("kestrioctl", "record", DISPLAY=None, DBUS_SESSION_BUS_ADDRESS=None)
        self.assertTrue(until(self.database.exists))
        recorder.send_signal(signal.SIGINT)
        self.assertEqual(recorder.wait(DEADLINE), 0, recorder.stderr.read())

    def rows(self):
        with sqlite3.connect(f"file:{self.database}?mode=ro", uri=True) as connection:
            connection.row_factory = sqlite3.Row
            return [dict(row) for row in connection.execute("SELECT * FROM sessions ORDER BY start")]

    def add(self, start, end, title, app="Editor", url=None, kind=0):
        with sqlite3.connect(self.database) as connection:
            connection.execute(
                "INSERT INTO sessions (start, end, bundle_id, app_name, title, url, kind) VALUES (?, ?, ?, ?, ?, ?, ?)",
                (start, end, "org.example." + app, app, title, url, kind))
        connection.close()

    def assert_one_line(self, text):
        self.assertRegex(text, r"\Akestrio(ctl)?: [^\n]+\n\Z")


class Usage(Case):
    def test_every_command_helps(self):
        for command in ["", *COMMANDS]:
            with self.subTest(command):
                ran = self.run_ctl(*command.split(), "--help")
                self.assertEqual((ran.returncode, ran.stderr), (0, ""))
                self.assertIn("Usage: kestrioctl", ran.stdout)
        self.assertFalse(self.home.exists())

    def test_the_version_is_said(self):
        self.assertRegex(self.ctl("--version"), r"\AKestrio \d+\.\d+\.\d+\n\Z")

    def test_wrong_usage_is_one_line_and_status_2(self):
        wrong = [
            "", "bogus", "--bogus", "status extra", "status --bogus", "status status", "status doctor", "watch extra",
            "record extra", "record --json", "resume now", "pause 30m 1h", "pause 5x", "pause -5m", "pause 0s",
            "sessions extra", "sessions --from", "sessions --to", "sessions --from nonsense", "sessions --to 24:00",
            "sessions --from 2026-04-31", "sessions --from now --to yesterday", "sessions --from today --to today",
            "report extra", "report --day", "report --day nonsense", "report --week 2026-04-31", "report --section films",
            "report --day today --month today", "report --from now --to today",
            "settings", "settings bogus", "settings list extra", "settings get", "settings get bogus",
            "settings get idleMinutes more", "settings set", "settings set idleMinutes", "settings set bogus 1",
            "settings set idleMinutes 0", "settings set idleMinutes -5", "settings set idleMinutes 1441",
            "settings set idleMinutes five", "settings set idleMinutes 99999999999999999999",
            "settings set showActivityLight maybe", "settings set appearanceMode pink", "settings set resourceDetail 2",
            "settings set idleMinutes 5 6", "settings reset", "settings reset bogus", "doctor extra",
            "categories", "categories bogus", "categories list extra", "categories set", "categories set work",
            "categories set fun --app a", "categories set work --app a --site b.org", "categories set work --site a/b",
            "categories set work --site file:///a", "categories set work --site", "categories reset",
            "categories reset work --app a", "projects", "projects add", "projects add kest", "projects add kest A B",
            "projects add kest A --ignore", "projects add kest A --at 0", "projects add kest A --at 2",
            "projects add kest A --at x", "projects move 1", "projects move 1 1", "projects remove", "projects remove 1",
            "projects remove x", "projects remove -1", "explain", "explain --app", "explain --title x",
            "export",
            "export --range today", "export -o", "export --range -o x", "export --range bogus -o x", "export extra -o x",
            "import", "import --bogus",
            "browsers extra", "browsers --install --remove",
            "open extra", "open apps more", "open Apps", "open settings", "open --page apps",
        ]
        for line in wrong:
            with self.subTest(line):
                ran = self.run_ctl(*line.split())
                self.assertEqual((ran.returncode, ran.stdout), (2, ""))
                self.assert_one_line(ran.stderr)
        for arguments in (["pause", ""], ["sessions", "--from", ""], ["settings", "get", ""],
                          ["settings", "get", "a\x1b[31m\nb"], ["pause", "x" * 10_000],
                          ["categories", "set", "a\x1b[31m\nb", "--app", "a"], ["categories", "set", "work", "--app", " "],
                          ["categories", "set", "work", "--site", "a\x1b\nb"], ["projects", "add", " ", "A"],
                          ["projects", "add", "kest", " "], ["projects", "add", b"\xff", "A"], ["explain", "--app", ""]):
            with self.subTest(arguments):
                ran = self.run_ctl(*arguments)
                self.assertEqual((ran.returncode, ran.stdout), (2, ""))
                self.assert_one_line(ran.stderr)
        self.assertFalse(self.home.exists())

    def test_wrong_usage_says_where_to_read_on(self):
        self.assertEqual(self.run_ctl("settings").stderr,
                         "kestrioctl: which command? There are several. Try kestrioctl settings --help.\n")
        self.assertEqual(self.run_ctl("sessions", "--from").stderr,
                         "kestrioctl: --from wants a value. Try kestrioctl sessions --help.\n")

    def test_the_agents_own_usage(self):
        for arguments, status in [(["--help"], 0), (["--version"], 0), (["--bogus"], 2), (["extra"], 2)]:
            ran = subprocess.run([BIN / "kestrio", *arguments], env=self.environment, text=True, capture_output=True,
                                 timeout=DEADLINE)
            self.assertEqual(ran.returncode, status, arguments)
            if status:
                self.assert_one_line(ran.stderr)
        self.assertFalse(self.home.exists())

    def test_without_any_home_there_is_a_clear_line(self):
        for command in ("status", "sessions", "settings list", "doctor", "record", "watch", "resume", "export -o -",
                        "import /dev/null", "browsers", "browsers --install"):
            with self.subTest(command):
                ran = self.run_ctl(*command.split(), HOME=None, KESTRIO_HOME=None)
                self.assertEqual((ran.returncode, ran.stdout), (1, ""))
                self.assert_one_line(ran.stderr)


class Browsers(Case):
    def setUp(self):
        super().setUp()
        self.applications = self.folder / "share" / "applications"
        self.applications.mkdir(parents=True)
        self.environment["XDG_DATA_DIRS"] = str(self.folder / "share")
        self.environment["XDG_DATA_HOME"] = str(self.folder / "none")

    def install_browser(self, desktop_id, name):
        (self.applications / f"{desktop_id}.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName={name}\nExec={desktop_id}\n")

    def manifests(self):
        return sorted(str(path.relative_to(self.person)) for path in self.person.rglob("*.json"))

    def test_the_installed_browsers_may_start_the_host_until_they_may_no_more(self):
        self.install_browser("chromium", "Chromium")
        self.install_browser("firefox-esr", "Firefox ESR")
        said = self.ctl("browsers", "--install")
        self.assertIn("Chromium may now start kestrio-tabs. One step is left to you:\n  Open chrome://extensions", said)
        self.assertIn("Firefox may now start kestrio-tabs. One step is left to you:\n  Open about:debugging", said)
        name = "dev.haldorvinter.kestrio.tabs.json"
        self.assertEqual(self.manifests(), [f".config/chromium/NativeMessagingHosts/{name}",
                                            f".config/mozilla/native-messaging-hosts/{name}",
                                            f".mozilla/native-messaging-hosts/{name}"])
        manifest = json.loads((self.person / self.manifests()[0]).read_text())
        self.assertEqual(manifest["path"], str(BIN / "kestrio-tabs"))
        self.assertTrue(os.access(manifest["path"], os.X_OK))
        self.ctl("browsers", "--remove")
        self.assertEqual(self.manifests(), [])
        self.assertFalse(self.home.exists())

    def test_without_a_browser_there_is_nothing_to_install(self):
        ran = self.run_ctl("browsers", "--install")
        self.assertEqual((ran.returncode, ran.stdout), (1, ""))
        self.assert_one_line(ran.stderr)
        self.assertEqual(self.manifests(), [])

    def test_each_browser_that_is_here_is_listed_with_what_is_left_to_do(self):
        self.install_browser("chromium", "Chromium")
        text = self.ctl("browsers")
        self.assertRegex(text, r"(?m)^  Chromium +yes +(yes|no) +unknown +unknown\n    Run: kestrioctl browsers --install$")
        found = {each["bundleID"]: each for each in json.loads(self.ctl("browsers", "--json"))}
        self.assertEqual(len(found), 16)
        self.assertEqual(found["org.chromium.Chromium"]["remedy"], "Run: kestrioctl browsers --install")
        self.assertIsNone(found["org.chromium.Chromium"]["connected"])
        self.assertFalse(found["com.operasoftware.Opera"]["installed"])


class Sessions(Case):
    def test_an_empty_home_has_none(self):
        ran = self.run_ctl("sessions")
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                         (0, "", "kestrioctl: nothing was recorded in that time\n"))
        self.assertEqual(json.loads(self.ctl("sessions", "--json")), [])

    def test_a_range_is_shown_as_a_table(self):
        self.record_nothing()
        self.add(NOON, NOON + 3600, "Letter")
        self.add(NOON + 3600, NOON + 5400, "Song", app="Player", kind=2)
        self.add(NOON + 86400, NOON + 86430, "Tomorrow's")
        text = self.ctl("sessions", "--from", "2023-11-15", "--to", "2023-11-16")
        self.assertEqual(text, "Wednesday, 15 November 2023\n\n".join(["  ", ""]) +
                         "  12:00:00  ████████       1h  Editor  Letter\n"
                         "  13:00:00  ████          30m  Player  Listening: Song\n"
                         "\n  1h focused in 2 sessions, 2 applications, 30m alongside\n")
        self.assertIn("Tomorrow's", self.ctl("sessions", "--from", "2023-11-15"))

    def test_the_width_follows_the_terminals(self):
        self.record_nothing()
        self.add(NOON, NOON + 3600, "x" * 300)
        for columns in (50, 80, 120):
            text = self.ctl("sessions", "--from", "2023-11-15", COLUMNS=str(columns))
            self.assertEqual(max(map(len, text.splitlines())), columns)

    def test_json_has_the_fields_of_the_records(self):
        self.record_nothing()
        self.add(NOON, NOON + 60.5, "Letter – “ü”", url="https://example.org/")
        self.add(NOON + 100, NOON + 160, "", kind=1)
        found = json.loads(self.ctl("sessions", "--from", f"@{NOON}", "--json"))
        self.assertEqual([list(session) for session in found], [SESSION_KEYS] * 2)
        self.assertEqual(found[0], {
            "id": 1, "start": NOON, "end": NOON + 60.5, "bundleID": "org.example.Editor", "appName": "Editor",
            "title": "Letter – “ü”", "url": "https://example.org/", "domain": None, "project": None, "kind": 0})
        self.assertEqual((found[1]["title"], found[1]["url"], found[1]["kind"]), ("", None, 1))

    def test_bytes_that_are_no_text_do_no_harm(self):
        self.record_nothing()
        with sqlite3.connect(self.database) as connection:
            connection.execute("INSERT INTO sessions (start, end, bundle_id, app_name, title) VALUES (?, ?, 'a', 'A', "
                               "CAST(x'41ff1b5b324a' AS TEXT))", (NOON, NOON + 60))
        connection.close()
        table = self.ctl("sessions", "--from", f"@{NOON}")
        self.assertIn("A\N{REPLACEMENT CHARACTER} [2J", table)
        self.assertEqual(len(json.loads(self.ctl("sessions", "--from", f"@{NOON}", "--json"))), 1)

    def test_a_damaged_database_is_said_and_left_alone(self):
        self.database.parent.mkdir(parents=True)
        for content in (b"This is no database, however you look at it. " * 100, b"SQLite format 3\0" + b"\xff" * 5000):
            self.database.write_bytes(content)
            for command in ("sessions", "sessions --json", "report", "report --json", "status", "status --json"):
                with self.subTest(command):
                    ran = self.run_ctl(*command.split())
                    self.assertEqual((ran.returncode, ran.stdout), (1, ""))
                    self.assert_one_line(ran.stderr)
                    self.assertIn(str(self.database), ran.stderr)
            findings = {each["name"]: each for each in json.loads(self.ctl("doctor", "--json", status=1))}
            self.assertEqual(findings["Sessions"]["state"], "broken")
            self.assertEqual(self.database.read_bytes(), content)


class Report(Case):
    def test_an_empty_home_has_an_empty_one(self):
        ran = self.run_ctl("report", "--day", "2023-11-15")
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                         (0, "", "kestrioctl: nothing was recorded in that time\n"))
        report = json.loads(self.ctl("report", "--day", "2023-11-15", "--json"))
        self.assertEqual(report["interval"], {"start": NOON - 43200, "end": NOON + 43200})
        self.assertEqual((report["sessions"], report["total"], report["firstActivity"]), ([], 0, None))

    def test_the_settings_decide_categories_and_projects(self):
        self.record_nothing()
        self.add(NOON, NOON + 3600, "Letter")
        self.ctl("categories", "set", "work", "--app", "org.example.Editor")
        self.ctl("projects", "add", "letter", "Post")
        report = json.loads(self.ctl("report", "--week", "2023-11-15", "--json"))
        self.assertEqual(report["granularity"], "day")
        self.assertEqual(report["categories"], [{"category": "work", "duration": 3600}])
        self.assertEqual([project["name"] for project in report["projects"]], ["Post"])

    def test_the_words_are_those_of_a_section(self):
        self.record_nothing()
        self.add(NOON, NOON + 3600, "Letter")
        self.assertEqual(self.ctl("report", "--day", "2023-11-15", "--section", "timeline"), """\
  Wednesday, 15 November 2023

  Wednesday, 15 Nov  1h

  12:00–13:00       1h  Editor            Letter
""")
        self.assertIn("Active time        1h   12:00 – 13:00", self.ctl("report", "--day", "2023-11-15"))


class Settings(Case):
    def test_are_set_read_and_put_back(self):
        self.assertEqual(self.ctl("settings", "get", "idleMinutes"), "3\n")
        self.assertEqual(self.ctl("settings", "set", "idleMinutes", "5"), "")
        self.assertEqual(self.ctl("settings", "get", "idleMinutes"), "5\n")
        self.assertEqual(json.loads(self.ctl("settings", "list", "--json"))["idleMinutes"], 5)
        self.assertRegex(self.ctl("settings", "list"), r"(?m)^  • idleMinutes +5 ")
        self.assertEqual(self.ctl("settings", "reset", "idleMinutes"), "")
        self.assertEqual(self.ctl("settings", "get", "idleMinutes"), "3\n")
        self.assertEqual(self.ctl("settings", "set", "showActivityLight", "off"), "")
        self.assertEqual(self.ctl("settings", "get", "showActivityLight"), "false\n")
        self.assertEqual(self.ctl("settings", "set", "appearanceMode", "dark"), "")
        self.assertEqual(json.loads(self.ctl("settings", "list", "--json"))["appearanceMode"], "dark")

    def test_one_that_is_not_set_is_nothing(self):
        ran = self.run_ctl("settings", "get", "dashboardSection")
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (1, "", "kestrioctl: dashboardSection is not set\n"))
        self.assertIsNone(json.loads(self.ctl("settings", "list", "--json"))["dashboardSection"])

    def test_a_refused_value_changes_nothing(self):
        self.ctl("settings", "set", "idleMinutes", "5")
        before = tree(self.home)
        for value in ("0", "1441", "five", ""):
            self.ctl("settings", "set", "idleMinutes", value, status=2)
        self.assertEqual(tree(self.home), before)


class Classification(Case):
    def record(self):
        self.record_nothing()
        with sqlite3.connect(self.database) as connection:
            for start, length, app, title, domain, project in [
                    (0, 3600, "com.microsoft.VSCode", "main.cpp — kestrio", None, "kestrio"),
                    (4000, 1800, "org.mozilla.firefox", "Café", "docs.example.org", None),
                    (90 * 86400, 600, "org.mozilla.firefox", "News", "example.org", None),
                    (91 * 86400, 60, "org.mozilla.firefox", "Search", "google.com", None)]:
                connection.execute(
                    "INSERT INTO sessions (start, end, bundle_id, app_name, title, domain, project) "
                    "VALUES (?, ?, ?, 'A', ?, ?, ?)",
                    (NOON + start, NOON + start + length, app, title, domain, project))
        connection.close()

    def categories(self):
        rows = json.loads(self.ctl("categories", "list", "--json"))
        return {row["name"]: row["category"] for row in rows}

    def projects(self):
        return [(rule["keyword"], rule["project"]) for rule in json.loads(self.ctl("projects", "list", "--json"))]

    def test_categories_are_set_listed_and_put_back(self):
        ran = self.run_ctl("categories", "list")
        self.assertEqual((ran.returncode, ran.stdout), (0, ""))
        self.assert_one_line(ran.stderr)
        self.assertEqual(self.ctl("categories", "set", "work", "--site", " https://www.Example.org/page "),
                         "example.org counts as Work & Docs now; before, it was Other.\n")
        self.assertEqual(self.ctl("categories", "set", "Social media", "--app", "code"),
                         "com.microsoft.VSCode counts as Social Media now; before, it was Development.\n")
        self.assertEqual(self.categories(), {"com.microsoft.VSCode": "social", "example.org": "work"})
        self.assertRegex(self.ctl("categories", "list"),
                         r"(?m)^  • com\.microsoft\.VSCode  Social Media  otherwise Development$")
        self.assertEqual(self.ctl("categories", "reset", "--app", "com.microsoft.VSCode"),
                         "com.microsoft.VSCode counts as Development now; before, it was Social Media.\n")
        self.assertEqual(self.categories(), {"example.org": "work"})
        self.ctl("categories", "reset", "--app", "nobody.knows")
        self.assertEqual(len(json.loads(self.ctl("categories", "list", "--all", "--json"))), 103 + 251 + 1)

    def test_a_preview_counts_and_stores_nothing(self):
        self.record()
        self.ctl("categories", "set", "social", "--app", "a")
        settings = self.home / "config" / "Kestrio" / "settings.json"
        before = settings.read_bytes()
        rest = "\n  Nothing was changed; without --preview it will be.\n"
        self.assertEqual(self.ctl("categories", "set", "work", "--site", "example.org", "--preview"),
                         "  2 sessions would change: 40m\n\n"
                         "  Other → Work & Docs  2 sessions  40m\n" + rest)
        self.assertEqual(self.ctl("categories", "set", "development", "--app", "code", "--preview"),
                         "  No recorded session would change.\n" + rest)
        self.assertEqual(self.ctl("categories", "reset", "--app", "a", "--preview"),
                         "  No recorded session would change.\n" + rest)
        self.assertEqual(self.ctl("projects", "add", "cafe", "Reading", "--preview"),
                         "  1 session would change: 30m\n\n"
                         "  no project → Reading  1 session  30m\n" + rest)
        self.assertEqual(self.ctl("projects", "add", "kest", "--ignore", "--preview"),
                         "  1 session would change: 1h\n\n"
                         "  kestrio → no project  1 session  1h\n" + rest)
        self.assertEqual(settings.read_bytes(), before)

    def test_a_preview_without_recordings_makes_no_files(self):
        self.assertIn("No recorded session", self.ctl("categories", "set", "work", "--app", "a", "--preview"))
        self.assertFalse(self.home.exists())

    def test_rules_keep_their_order(self):
        self.ctl("projects", "add", "one", "A")
        self.ctl("projects", "add", "two", "B")
        self.ctl("projects", "add", "three", "--ignore", "--at", "1")
        self.assertEqual(self.projects(), [("three", ""), ("one", "A"), ("two", "B")])
        self.ctl("projects", "move", "3", "1")
        self.assertEqual(self.projects(), [("two", "B"), ("three", ""), ("one", "A")])
        self.ctl("projects", "move", "1", "3")
        self.assertEqual(self.projects(), [("three", ""), ("one", "A"), ("two", "B")])
        self.ctl("projects", "remove", "2")
        self.assertEqual(self.projects(), [("three", ""), ("two", "B")])
        for number in ("0", "3", "-1"):
            ran = self.run_ctl("projects", "remove", "--", number)
            self.assertEqual((ran.returncode, ran.stdout), (2, ""))
            self.assert_one_line(ran.stderr)
        ran = self.run_ctl("projects", "move", "1", "3")
        self.assertEqual((ran.returncode, ran.stderr),
                         (2, "kestrioctl: there is no rule 3; they go from 1 to 2. See: kestrioctl projects list\n"))

    def test_a_rule_that_is_never_asked_is_said(self):
        self.ctl("projects", "add", "Kest", "A")
        ran = self.run_ctl("projects", "add", "kestrel", "B")
        self.assertEqual(ran.returncode, 0)
        self.assert_one_line(ran.stderr)
        self.assertIn('rule 1 ("Kest") comes first', ran.stderr)
        self.assertEqual(self.run_ctl("projects", "add", "kestrel", "B", "--at", "1").stderr, "")

    def test_rules_that_cannot_be_read_are_left_alone(self):
        self.ctl("settings", "set", "projectRules", '[{"keyword": "a"}]')
        before = tree(self.home)
        for command in ("projects list", "projects add a B", "projects move 1 1", "projects remove 1"):
            with self.subTest(command):
                ran = self.run_ctl(*command.split())
                self.assertEqual(ran.returncode, 1)
                self.assert_one_line(ran.stderr)
                self.assertEqual(tree(self.home), before)
        self.assertEqual(json.loads(self.ctl("projects", "list", "--json", status=1)), [])

    def test_an_explanation_follows_the_choices(self):
        self.ctl("projects", "add", "kest", "Tindra")
        text = self.ctl("explain", "--app", "code", "--name", "Visual Studio Code", "--title",
                        "main.cpp - kestrio - Visual Studio Code")
        self.assertIn("  Category     Development\n    your choice for the application → –\n", text)
        self.assertIn('  Project      Tindra\n    the title read with the file before the project → kestrio\n'
                      '    your rule 1, "kest" in the title → Tindra\n', text)
        found = json.loads(self.ctl("explain", "--app", "firefox", "--url", "https://docs.google.com/kest", "--json"))
        self.assertEqual((found["bundleID"], found["domain"], found["category"], found["project"]),
                         ("org.mozilla.firefox", "docs.google.com", "work", "Tindra"))
        self.assertEqual(found["rule"], {"number": 1, "keyword": "kest", "project": "Tindra", "where": "url"})

    def test_a_damaged_database_is_said(self):
        self.database.parent.mkdir(parents=True)
        self.database.write_bytes(b"This is no database, however you look at it. " * 100)
        ran = self.run_ctl("categories", "set", "work", "--app", "a", "--preview")
        self.assertEqual((ran.returncode, ran.stdout), (1, ""))
        self.assert_one_line(ran.stderr)

    def test_what_cannot_be_stored_is_a_failure(self):
        self.ctl("settings", "set", "idleMinutes", "5")
        folder = self.home / "config" / "Kestrio"
        shutil.rmtree(folder)
        folder.write_text("in the way")
        for command in ("categories set work --app a", "projects add kest A"):
            with self.subTest(command):
                ran = self.run_ctl(*command.split())
                self.assertEqual((ran.returncode, ran.stdout), (1, ""))
                self.assertNotEqual(ran.stderr, "")


class Files(Case):
    READING = ["status", "status --json", "sessions", "sessions --json", "settings list", "settings list --json",
               "report", "report --json", "report --day 2023-11-15 --section apps",
               "settings get idleMinutes", "doctor", "doctor --json", "watch", "resume", "pause", "open",
               "categories list", "categories list --all --json", "projects list", "projects list --json",
               "explain --app code --title x", "categories set work --app code --preview",
               "projects add kest A --preview"]

    def test_reading_makes_no_files(self):
        for command in self.READING:
            self.run_ctl(*command.split())
            self.assertFalse(self.home.exists(), command)

    def test_reading_what_was_recorded_leaves_it_as_it_is(self):
        self.record_nothing()
        self.add(NOON, NOON + 60, "Letter")
        before = tree(self.home)
        for command in self.READING:
            self.run_ctl(*command.split())
            after = tree(self.home)
            for sidecar in ("-shm", "-wal"):  # the library's own, which a reader of such a file needs
                after.pop(f"data/Kestrio/activity.sqlite{sidecar}", None)
            self.assertEqual(after, before, command)

    def test_nothing_outside_the_home_is_touched(self):
        before = tree(self.person)
        self.record_nothing()
        self.ctl("settings", "set", "idleMinutes", "5")
        self.ctl("settings", "reset", "idleMinutes")
        for command in self.READING:
            self.run_ctl(*command.split())
        self.assertEqual(tree(self.person), before)

    def test_everything_is_the_owners_alone(self):
        self.record_nothing()
        self.ctl("settings", "set", "idleMinutes", "5")
        for path in self.home.rglob("*"):
            mode = path.stat().st_mode & 0o777
            self.assertEqual(oct(mode), oct(0o700 if path.is_dir() else 0o600), path)


HEADER = "start,end,duration_seconds,kind,app,bundle_id,category,project,title,url,domain\n"


def csv_rows(count, length=50, first=0):
    """An export of sessions of a minute each, from noon on."""
    def moment(seconds):
        return time.strftime("%Y-%m-%dT%H:%M:%S.000Z", time.gmtime(seconds))

    return HEADER + "".join(
        f"{moment(NOON + n * 60)},{moment(NOON + n * 60 + length)},{length},focused,Editor,org.example.Editor,"
        f"Development,,Title {n},,\n" for n in range(first, first + count))


class SessionFiles(Case):
    def file(self, name, content):
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path

    def shrink_sidecar(self):
        """What an import that was killed wrote there counts for nothing."""
        with sqlite3.connect(self.database) as connection:
            connection.execute("PRAGMA wal_checkpoint(TRUNCATE)")
        connection.close()

    def titles(self):
        return [row["title"] for row in self.rows()]

    def test_what_was_exported_is_already_there(self):
        self.record_nothing()
        self.add(NOON, NOON + 3600.5, 'A "Letter", of\ntwo lines', url="https://example.org/")
        self.add(NOON + 3600, NOON + 5400, "Song", app="Player", kind=2)
        file = self.folder / "out.csv"
        self.assertEqual(self.ctl("export", "-o", str(file), TZ="Europe/Berlin"), "Exported 2 sessions to out.csv.\n")
        self.assertEqual(file.read_text(), HEADER +
            '2023-11-15T13:00:00.000+01:00,2023-11-15T14:00:00.500+01:00,3601,focused,Editor,org.example.Editor,Other,,'
            '"A ""Letter"", of\ntwo lines",https://example.org/,\n'
            '2023-11-15T14:00:00.000+01:00,2023-11-15T14:30:00.000+01:00,1800,listening,Player,org.example.Player,'
            'Other,,Song,,\n')
        self.assertEqual(oct(file.stat().st_mode & 0o777), oct(0o600))
        self.assertEqual(self.ctl("import", str(file)), "Added 0 sessions, ignored 2 already in your history.\n")
        self.assertEqual(len(self.rows()), 2)

    def test_an_export_has_the_categories_and_projects_that_count(self):
        self.record_nothing()
        self.add(NOON, NOON + 60, "Letter")
        settings = self.home / "config" / "Kestrio" / "settings.json"
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text(json.dumps({"appCategoryOverrides": {"org.example.Editor": "learning"}}))
        self.assertIn(",org.example.Editor,Learning & AI,", self.ctl("export", "-o", "-"))

    def test_ranges(self):
        self.record_nothing()
        now = time.time()
        for days, title in [(0, "now"), (3, "week"), (20, "month"), (400, "old")]:
            self.add(now - days * 86400 - 2, now - days * 86400 - 1, title)
        for name, count in [("week", 2), ("month", 3), ("all", 4)]:
            self.assertEqual(self.ctl("export", "--range", name, "-o", "-").count("\n"), count + 1, name)
        self.assertEqual(self.ctl("export", "-o", "-").count("\n"), 5)

    def test_without_anything_recorded_an_export_is_a_header(self):
        self.assertEqual(self.ctl("export", "-o", "-"), HEADER)
        self.assertFalse(self.home.exists())

    def test_an_export_that_fails_leaves_what_was_there(self):
        self.record_nothing()
        for place in ("/nonexistent/out.csv", str(self.folder), "/dev/full"):
            with self.subTest(place):
                self.add(NOON, NOON + 60, "Letter")
                before = tree(self.folder)
                ran = self.run_ctl("export", "-o", place)
                self.assertEqual((ran.returncode, ran.stdout), (1, ""))
                self.assertRegex(ran.stderr, r"\Akestrioctl: Export failed: [A-Z][^\n]+\n\Z")
                after = tree(self.folder)
                for sidecar in ("-shm", "-wal"):
                    for each in (before, after):
                        each.pop(f"home/data/Kestrio/activity.sqlite{sidecar}", None)
                self.assertEqual(after, before)

    def test_an_export_through_a_link_keeps_the_link(self):
        self.record_nothing()
        target = self.file("target.csv", "old")
        link = self.folder / "link.csv"
        link.symlink_to(target)
        self.ctl("export", "-o", str(link))
        self.assertTrue(link.is_symlink())
        self.assertEqual(target.read_text(), HEADER)

    def test_several_files_are_one_import(self):
        first, second = self.file("a.csv", csv_rows(10)), self.file("b.csv", csv_rows(10, length=55, first=5))
        self.assertEqual(self.ctl("import", str(first), str(second)), "Added 15 sessions, extended 5.\n")
        self.assertEqual(self.titles(), [f"Title {n}" for n in range(15)])

    def test_standard_input_is_a_file_too(self):
        ran = subprocess.run([BIN / "kestrioctl", "import", "-"], env=self.environment, text=True, capture_output=True,
                             input=csv_rows(3), timeout=DEADLINE)
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (0, "Added 3 sessions.\n", ""))

    def test_a_bad_file_is_said_and_nothing_written(self):
        good = self.file("good.csv", csv_rows(10))
        self.ctl("import", str(good))
        before = self.rows()
        foreign = "This doesn't look like a Kestrio export (missing column: start, end, bundle_id)."
        table = [
            (self.file("foreign.csv", "date,amount\n2023-11-15,3.50\n"), foreign),
            (self.file("bytes.csv", csv_rows(5).encode() + b"\xff"), 'The file "bytes.csv" isn\'t UTF-8 text.'),
            (self.file("rubbish.csv", bytes(range(256)) * 4000), 'The file "rubbish.csv" isn\'t UTF-8 text.'),
            (self.folder / "missing.csv", 'The file "missing.csv" couldn\'t be read: No such file or directory.'),
            (self.folder, f'The file "{self.folder.name}" couldn\'t be read: Is a directory.'),
        ]
        more = self.file("more.csv", csv_rows(20))
        for path, message in table:
            with self.subTest(path.name):
                ran = self.run_ctl("import", str(more), str(path))
                self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                                 (1, "", f"kestrioctl: Import failed: {message}\n"))
                self.assertEqual(self.rows(), before)

    def test_killed_or_interrupted_it_leaves_the_database_as_it_was(self):
        self.ctl("import", str(self.file("first.csv", csv_rows(100))))
        before = self.rows()
        many = self.file("many.csv", csv_rows(120_000, length=55))
        wal = self.database.with_name(self.database.name + "-wal")
        for how, status in [(signal.SIGKILL, -signal.SIGKILL), (signal.SIGINT, 130), (signal.SIGTERM, 130)]:
            with self.subTest(how):
                importing = self.start("kestrioctl", "import", str(many))
                # It writes: the sidecar grows with what is not yet kept.
                self.assertTrue(until(lambda: wal.exists() and wal.stat().st_size > 1_000_000))
                importing.send_signal(how)
                self.assertEqual(importing.wait(DEADLINE), status)
                if how != signal.SIGKILL:
                    self.assertEqual(importing.stderr.read(), "kestrioctl: Import stopped.\n")
                self.assertEqual(self.rows(), before)
                self.shrink_sidecar()
        self.assertEqual(self.ctl("import", str(many)), "Added 119,900 sessions, extended 100.\n")

    def test_a_pipe_without_an_end_can_be_interrupted(self):
        importing = subprocess.Popen([BIN / "kestrioctl", "import", "-"], env=self.environment, text=True,
                                     stdin=subprocess.PIPE, stderr=subprocess.PIPE)
        self.addCleanup(importing.communicate)
        importing.stdin.write(csv_rows(10))
        importing.stdin.flush()
        self.assertTrue(until(self.database.exists))
        importing.send_signal(signal.SIGINT)
        self.assertEqual(importing.wait(DEADLINE), 130)
        self.assertEqual(self.rows(), [])

    def test_progress_shows_on_a_terminal_alone(self):
        many = self.file("many.csv", csv_rows(20_000))
        self.assertEqual(self.run_ctl("import", str(many)).stderr, "")
        main, side = os.openpty()
        ran = subprocess.run([BIN / "kestrioctl", "import", str(many)], env=self.environment, stdout=subprocess.PIPE,
                             stderr=side, timeout=DEADLINE)
        os.close(side)
        shown = os.read(main, 65536).decode()
        os.close(main)
        self.assertIn("\rImporting… ", shown)
        self.assertTrue(shown.endswith("\r\x1b[K"), repr(shown[-40:]))
        self.assertIn(b"ignored 20,000", ran.stdout)

    def test_it_does_not_write_beside_another_writer(self):
        recorder = self.start("kestrioctl", "record", DISPLAY=None, DBUS_SESSION_BUS_ADDRESS=None)
        self.assertTrue(until(self.database.exists))
        ran = self.run_ctl("import", str(self.file("a.csv", csv_rows(3))))
        self.assertEqual((ran.returncode, ran.stdout), (1, ""))
        self.assertEqual(ran.stderr, "kestrioctl: Kestrio is running, but does not answer here. End it, or import where "
                                     "it runs.\n")
        recorder.send_signal(signal.SIGINT)
        self.assertEqual(recorder.wait(DEADLINE), 0)
        self.assertEqual(self.rows(), [])


class Output(Case):
    def shell(self, script):
        return subprocess.run(["sh", "-c", script], env=self.environment | {"CTL": str(BIN / "kestrioctl")},
                              text=True, capture_output=True, timeout=DEADLINE)

    def test_a_reader_who_leaves_does_no_harm(self):
        self.record_nothing()
        for n in range(2000):
            self.add(NOON + n * 60, NOON + n * 60 + 60, f"Title {n}") if n % 100 == 0 else None
        for command in ("sessions --from @0", "sessions --from @0 --json", "settings list", "doctor", "status"):
            with self.subTest(command):
                ran = self.shell(f'"$CTL" {command} | head -0')
                self.assertEqual((ran.returncode, ran.stderr), (0, ""))

    def test_closed_streams_do_no_harm(self):
        self.ctl("settings", "set", "idleMinutes", "5")
        before = tree(self.home)
        for command in ("settings list", "settings get idleMinutes", "settings set idleMinutes 5", "settings get bogus"):
            self.shell(f'"$CTL" {command} <&- >&- 2>&-')
            self.assertEqual(tree(self.home), before, command)

    def test_there_is_no_colour_but_on_a_terminal(self):
        self.record_nothing()
        self.add(NOON, NOON + 60, "Letter")
        for command in ("sessions --from @0", "report --day 2023-11-15", "doctor", "settings list"):
            self.assertNotIn("\x1b", self.ctl(*command.split()))


class WithoutAgent(Case):
    def test_status_says_so(self):
        ran = self.run_ctl("status")
        self.assertEqual((ran.returncode, ran.stderr), (1, ""))
        self.assertEqual(ran.stdout, "  Kestrio is not running.\n  Today      0s focused\n")
        found = json.loads(self.ctl("status", "--json", status=1))
        self.assertEqual(list(found), STATUS_KEYS + STORE_KEYS)
        self.assertEqual([found[key] for key in STATUS_KEYS], [None] * len(STATUS_KEYS))
        self.assertEqual([found[key] for key in STORE_KEYS], [False, None, 0, 0, 0, None])

    def test_actions_say_so(self):
        for command in ("pause", "pause 30m", "pause until-tomorrow", "resume", "watch", "watch --json"):
            with self.subTest(command):
                ran = self.run_ctl(*command.split())
                self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                                 (1, "", "kestrioctl: Kestrio is not running here. Start it with: kestrio\n"))

    def test_windows_need_a_screen(self):
        for command in ("open", "open apps"):
            with self.subTest(command):
                ran = self.run_ctl(*command.split())
                self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                                 (1, "", "kestrioctl: Kestrio runs without a screen that it could show a window on\n"))

    def test_a_page_that_is_not_there_yet_is_said(self):
        for page, yet in (("performance", " yet"), ("resourceLog", " yet"), ("Apps", "")):
            ran = self.run_ctl("open", page)
            self.assertEqual((ran.returncode, ran.stdout), (2, ""))
            self.assertEqual(ran.stderr, f'kestrioctl: there is no page "{page}"{yet}; there are overview, timeline, '
                             "apps, websites, youtube, projects\n")

    def test_the_doctor_has_remedies(self):
        text = self.ctl("doctor")
        for words in ("there is no X display here", "Start Kestrio from your desktop", "not running",
                      "Start it with: kestrio", "0 broken, "):
            self.assertIn(words, text)
        findings = json.loads(self.ctl("doctor", "--json"))
        for finding in findings:
            self.assertEqual(list(finding), ["name", "state", "answer", "remedy"])
            self.assertIn(finding["state"], ("fine", "missing"))
            self.assertEqual(finding["state"] == "missing", finding["remedy"] is not None, finding)
        self.assertEqual([finding["name"] for finding in findings],
                         ["This machine", "Screen", "Sleep and lock", "Session bus", "Agent", "Data folder", "Sessions",
                          "Settings", "Start at login"])

    def test_the_doctor_says_what_a_wayland_session_hides(self):
        findings = json.loads(self.ctl("doctor", "--json", WAYLAND_DISPLAY="wayland-0"))
        (wayland,) = (each for each in findings if each["name"] == "Wayland")
        self.assertEqual(wayland["state"], "missing")
        self.assertIn("X11 session", wayland["remedy"])

    def test_what_does_not_answer_holds_nobody_up(self):
        changes = {"DISPLAY": ":32000", "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.folder}/no-bus"}
        self.assertIn("does not answer", self.ctl("doctor", **changes))
        self.ctl("status", status=1, **changes)
        self.ctl("sessions", **changes)

    def test_a_folder_that_others_can_read_is_a_finding(self):
        self.record_nothing()
        self.database.parent.chmod(0o755)
        self.assertIn(f"chmod 700 {self.database.parent}", self.ctl("doctor", status=1))

    def test_recording_needs_neither_screen_nor_bus(self):
        self.record_nothing()
        self.assertEqual(self.rows(), [])
        self.ctl("sessions")


class OnADesktop(Case):
    desktop = True

    def setUp(self):
        super().setUp()
        self.ctl("settings", "set", "idleMinutes", "1440")  # nobody ever touches this desktop

    def open_window(self, title):
        return self.start("xterm", "-T", title, "-e", "sleep 1000")

    def start_agent(self):
        agent = self.start("kestrio", "--login")
        self.assertTrue(until(lambda: self.run_ctl("status").returncode == 0), "the agent did not appear")
        return agent

    def status(self):
        return json.loads(self.ctl("status", "--json"))

    def until_front(self, title):
        def is_front():
            live = self.status()["live"]
            return live and live["sample"]["title"] == title

        self.assertTrue(until(is_front), f"{title} did not come to the front: {self.ctl('status', '--json')}")

    def is_worth_a_row(self):
        live = self.status()["live"]
        return live and live["lastSeen"] - live["start"] >= 1

    def line_with(self, program, text):
        """The first line of a program's output that holds the text."""
        deadline = time.monotonic() + DEADLINE
        while select.select([program.stdout], [], [], max(0, deadline - time.monotonic()))[0]:
            line = program.stdout.readline()
            if text in line:
                return line
            if not line:
                break
        self.fail(f"the program did not tell of {text}")

    def test_the_agent_tells_what_it_does(self):
        agent = self.start_agent()
        self.open_window("First")
        self.until_front("First")
        self.assertTrue(until(self.is_worth_a_row))
        found = self.status()
        self.assertEqual(list(found), STATUS_KEYS + STORE_KEYS)
        self.assertEqual((found["state"], found["running"], found["processIdentifier"]), ("tracking", True, agent.pid))
        self.assertEqual(found["dataFolder"], str(self.database.parent))
        self.assertIn("  Cost     measured in the program's first minute\n", self.ctl("log", "status"))
        text = self.ctl("status")
        self.assertRegex(text, rf"\A  Kestrio \d[\d.]*, process {agent.pid}, since .*\n  Now        recording XTerm: First\n")
        open_session = json.loads(self.ctl("sessions", "--json"))[-1]
        self.assertEqual(list(open_session), SESSION_KEYS)
        self.assertEqual(open_session["title"], "First")
        self.assertIn("First", self.ctl("sessions"))

    def test_pausing_and_resuming(self):
        self.start_agent()
        self.open_window("First")
        self.until_front("First")
        before = time.time()
        self.assertRegex(self.ctl("pause", "30m"), r"\APaused until (\w{3}, \d+ \w+, )?\d\d:\d\d\.\n\Z")
        found = self.status()
        self.assertEqual((found["state"], found["live"]), ("paused", None))
        self.assertTrue(before + 1800 <= found["pausedUntil"] <= time.time() + 1800)
        self.assertRegex(self.ctl("status"), r"Now        paused until ")

        self.assertRegex(self.ctl("pause", "until-tomorrow"), r"\APaused until \w{3}, \d+ \w+( \d{4})?, 00:00\.\n\Z")
        self.assertAlmostEqual(self.status()["pausedUntil"] % 86400 % 86399.999, 0, delta=0.01)

        self.assertEqual(self.ctl("pause"), "Paused until you resume.\n")
        self.assertEqual(self.status()["pausedUntil"], 64092211200)
        self.assertEqual(self.ctl("resume"), "Recording.\n")
        self.until_front("First")
        self.assertEqual((self.status()["state"], self.status()["pausedUntil"]), ("tracking", None))

    def test_watching_tells_each_change(self):
        agent = self.start_agent()
        self.open_window("First")
        self.until_front("First")
        watch = self.start("kestrioctl", "watch")
        data = self.start("kestrioctl", "watch", "--json")
        self.assertRegex(self.line_with(watch, "First"), r"\A\d\d:\d\d:\d\d  tracking  XTerm: First\n\Z")
        self.line_with(data, "First")
        self.open_window("Second")
        self.assertRegex(self.line_with(watch, "Second"), r"\A\d\d:\d\d:\d\d  tracking  XTerm: Second\n\Z")
        self.assertEqual(list(json.loads(self.line_with(data, "Second"))), STATUS_KEYS)
        self.ctl("pause")
        self.assertRegex(self.line_with(watch, "paused"), r"  paused    until you resume\n\Z")
        agent.terminate()
        self.assertEqual(watch.wait(DEADLINE), 0)
        self.assertEqual(watch.stderr.read(), "kestrioctl: Kestrio has ended.\n")

    def test_a_second_copy_is_refused(self):
        agent = self.start_agent()
        for program, *arguments in (["kestrio"], ["kestrio", "--login"], ["kestrioctl", "record"]):
            second = self.start(program, *arguments)
            self.assertEqual(second.wait(DEADLINE), 0)
            self.assertEqual(second.stderr.readline(), f"kestrio: Kestrio is already running (process {agent.pid}).\n")
            self.assertEqual(second.stdout.read(), "")
        self.assertIsNone(agent.poll())

    def test_a_copy_with_its_data_elsewhere_is_refused_by_the_session(self):
        agent = self.start_agent()
        other = self.start("kestrio", KESTRIO_HOME=str(self.folder / "other"))
        self.assertEqual(other.wait(DEADLINE), 0)
        self.assert_one_line(other.stderr.read())
        self.assertIsNone(agent.poll())
        self.ctl("status", status=1, KESTRIO_HOME=str(self.folder / "other"))

    def test_terminating_the_agent_writes_the_sessions_end(self):
        agent = self.start_agent()
        self.open_window("First")
        self.until_front("First")
        self.assertTrue(until(self.is_worth_a_row))
        before = time.time()
        agent.terminate()
        self.assertEqual(agent.wait(DEADLINE), 0)
        last = self.rows()[-1]
        self.assertEqual(last["title"], "First")
        self.assertTrue(before <= last["end"] <= time.time())
        self.ctl("status", status=1)

    def test_a_session_carries_the_project_that_its_title_names(self):
        self.start_agent()
        self.start("xterm", "-T", "alice@walrus: ~/work/kestrio", "-e", "sleep 1000")
        self.until_front("alice@walrus: ~/work/kestrio")
        self.assertEqual(self.status()["live"]["sample"]["project"], "kestrio")

    def test_recording_in_the_foreground_needs_no_bus(self):
        self.open_window("First")
        recorder = self.start("kestrioctl", "record", DBUS_SESSION_BUS_ADDRESS=None)
        self.line_with(recorder, "First")
        self.assertTrue(until(lambda: self.database.exists() and self.rows()))  # written at the first flush
        before = time.time()
        recorder.send_signal(signal.SIGINT)
        self.assertEqual(recorder.wait(DEADLINE), 0)
        self.assertEqual(self.rows()[-1]["title"], "First")
        self.assertGreaterEqual(self.rows()[-1]["end"], before)

    def test_recording_ends_in_order_when_nobody_reads(self):
        self.open_window("First")
        recorder = self.start("kestrioctl", "record")
        self.line_with(recorder, "First")
        self.assertTrue(until(self.rows))
        recorder.stdout.close()
        self.open_window("Second")
        self.assertEqual(recorder.wait(DEADLINE), 0)
        self.assertIn("First", [row["title"] for row in self.rows()])

    def test_an_import_goes_through_the_agent(self):
        agent = self.start_agent()
        self.open_window("First")
        self.until_front("First")
        file = self.folder / "a.csv"
        file.write_text(csv_rows(1000))
        monitor = self.start("dbus-monitor", "--session", "type='signal',member='ActivityDataDidChange'")
        heard = []
        threading.Thread(target=lambda: heard.extend(iter(monitor.stdout.readline, "")), daemon=True).start()
        self.assertTrue(until(lambda: heard))  # it listens
        self.assertEqual(self.ctl("import", str(file)), "Added 1,000 sessions.\n")
        self.assertTrue(until(lambda: any("ActivityDataDidChange" in line for line in heard)))
        self.assertEqual(self.ctl("import", str(file)), "Added 0 sessions, ignored 1,000 already in your history.\n")
        file.write_text("date,amount\n")
        ran = self.run_ctl("import", str(file))
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr),
                         (1, "", "kestrioctl: Import failed: This doesn't look like a Kestrio export (missing column: "
                                 "start, end, bundle_id).\n"))
        self.assertIsNone(agent.poll())
        self.assertTrue(until(self.is_worth_a_row))
        self.assertIn(",XTerm,", self.ctl("export", "--range", "today", "-o", "-"))  # still open

    def test_the_monitor_is_asked_of_the_agent_where_one_runs(self):
        agent = self.start_agent()
        calls = self.start("dbus-monitor", "--session", "type='method_call',interface='dev.haldorvinter.Kestrio'")
        heard = []
        threading.Thread(target=lambda: heard.extend(iter(calls.stdout.readline, "")), daemon=True).start()
        self.assertTrue(until(lambda: heard))  # it listens
        for _ in range(2):
            data = json.loads(self.ctl("monitor", "--json"))
            self.assertTrue(data["hasAppCPU"])
            self.assertGreater(data["uptime"], 0)
            self.assertGreater(len(data["topMemory"]), 0)
        self.assertTrue(until(lambda: sum("member=WatchMonitor" in line for line in heard) == 2))
        self.assertTrue(self.ctl("monitor").startswith("  System   "))
        agent.kill()
        agent.wait()
        self.assertTrue(json.loads(self.ctl("monitor", "--json"))["hasAppCPU"])

    def test_an_import_through_the_agent_can_be_interrupted(self):
        agent = self.start_agent()
        file = self.folder / "many.csv"
        file.write_text(csv_rows(120_000))
        wal = self.database.with_name(self.database.name + "-wal")

        def is_writing():
            return wal.exists() and wal.stat().st_size > 1_000_000

        for how, status in [(signal.SIGINT, 130), (signal.SIGKILL, -signal.SIGKILL)]:
            with self.subTest(how):
                importing = self.start("kestrioctl", "import", str(file))
                self.assertTrue(until(is_writing))
                importing.send_signal(how)
                self.assertEqual(importing.wait(DEADLINE), status)
                # The next one is not refused once the agent has noticed.
                self.assertTrue(until(lambda: self.run_ctl("import", "/dev/null").returncode == 0))
                self.assertEqual([row for row in self.rows() if row["title"].startswith("Title")], [])
                with sqlite3.connect(self.database) as connection:
                    connection.execute("PRAGMA wal_checkpoint(TRUNCATE)")
                connection.close()
        importing = self.start("kestrioctl", "import", str(file))
        self.assertTrue(until(is_writing))
        agent.terminate()  # in the middle
        self.assertEqual(agent.wait(DEADLINE), 0)
        self.assertEqual(importing.wait(DEADLINE), 1)
        self.assertEqual([row for row in self.rows() if row["title"].startswith("Title")], [])

    def test_the_doctor_finds_everything_that_is_there(self):
        self.start_agent()
        self.open_window("First")
        self.until_front("First")
        findings = {each["name"]: each for each in json.loads(self.ctl("doctor", "--json"))}
        for name in ("Screen", "Applications", "Window titles", "Idle time", "Session bus", "Agent", "Data folder",
                     "Sessions", "Settings"):
            self.assertEqual(findings[name]["state"], "fine", findings[name])
        self.assertIn("XTerm in front", findings["Applications"]["answer"])
        self.assertNotIn("First", json.dumps(findings), "no title belongs in a report that people pass on")


if __name__ == "__main__":
    unittest.main()
