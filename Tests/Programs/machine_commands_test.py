#!/usr/bin/python3
"""kestrioctl's commands about the machine as people meet them: in a pipe and in a terminal.

usage: Tests/Programs/machine_commands_test.py FOLDER [TEST]...     FOLDER holds the built programs
"""

import fcntl
import json
import os
import pathlib
import pty
import select
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest

BIN = pathlib.Path(sys.argv.pop(1)).resolve() / "kestrioctl"
DEADLINE = 30  # seconds; what is waited for takes less than three

ENTER, LEAVE = b"\x1b[?1049h", b"\x1b[?25h\x1b[?1049l"


class Case(unittest.TestCase):
    def setUp(self):
        # Beside the programs, where a drive is more likely than below /tmp.
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="kestrio-test-", dir=BIN.parent))
        self.addCleanup(shutil.rmtree, self.home)
        self.environment = {"PATH": os.environ["PATH"], "HOME": str(self.home), "KESTRIO_HOME": str(self.home),
                            "TERM": "xterm", "LC_ALL": "C.UTF-8"}

    def run_ctl(self, *arguments):
        return subprocess.run([BIN, *arguments], env=self.environment, text=True, capture_output=True,
                              timeout=DEADLINE, stdin=subprocess.DEVNULL)


class Terminal:
    """A command in a terminal of its own."""

    def __init__(self, case, *arguments, rows=24, columns=80):
        self.case = case
        self.master, slave = pty.openpty()
        self.resize(rows, columns)
        self.before = termios.tcgetattr(slave)
        self.slave = slave
        self.output = b""
        self.process = subprocess.Popen([BIN, *arguments], env=case.environment, stdin=slave, stdout=slave,
                                        stderr=slave, start_new_session=True,
                                        preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        case.addCleanup(self.end)

    def end(self):
        self.process.kill()
        self.process.wait()
        for descriptor in (self.master, self.slave):
            if descriptor is not None:
                os.close(descriptor)

    def resize(self, rows, columns):
        fcntl.ioctl(self.master, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))

    def read_until(self, condition):
        deadline = time.monotonic() + DEADLINE
        while not condition() and time.monotonic() < deadline:
            if select.select([self.master], [], [], 0.1)[0]:
                self.output += os.read(self.master, 65536)
        return condition()

    def shows(self, text):
        return self.read_until(lambda: text in self.output)

    def forget(self):
        self.output = b""

    def type(self, keys):
        os.write(self.master, keys)

    def ends(self):
        """The status that the command ends with; output goes on being read, so that it is never held up."""
        self.read_until(lambda: self.process.poll() is not None)
        while self.slave is not None and select.select([self.master], [], [], 0.1)[0]:  # its last words
            self.output += os.read(self.master, 65536)
        return self.process.wait(DEADLINE)


class Monitor(Case):
    def test_in_a_pipe_it_is_plain_lines(self):
        ran = self.run_ctl("monitor")
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        self.assertNotIn("\x1b", ran.stdout)
        lines = ran.stdout.splitlines()
        self.assertTrue(lines[0].startswith("  System   "), lines[0])
        for name in "CPU", "Memory", "Heat", "Storage", "Top apps by memory":
            self.assertTrue(any(line.startswith("  " + name) for line in lines), name)
        self.assertLessEqual(max(map(len, lines)), 100)

    def test_data_holds_the_snapshot_and_its_insights(self):
        data = json.loads(self.run_ctl("monitor", "--json").stdout)
        self.assertTrue(data["hasAppCPU"])
        self.assertGreater(data["memoryTotal"], data["memoryUsed"])
        self.assertTrue(0 <= data["cpu"] <= 1, data["cpu"])
        self.assertGreater(len(data["insights"]), 0)
        sizes = [app["memory"] for app in data["topMemory"]]
        self.assertEqual(sizes, sorted(sizes, reverse=True))


class Top(Case):
    def test_in_a_pipe_it_is_one_table(self):
        for arguments in ([], ["--once"], ["--by", "memory"]):
            ran = self.run_ctl("top", *arguments)
            self.assertEqual((ran.returncode, ran.stderr), (0, ""))
            self.assertNotIn("\x1b", ran.stdout)
            lines = ran.stdout.splitlines()
            self.assertTrue(lines[0].startswith("  CPU "), lines[0])
            self.assertIn("Application", lines[3])
            self.assertGreater(len(lines), 5)
            self.assertLessEqual(max(map(len, lines)), 100)

    def test_data_holds_every_process_of_ours(self):
        child = subprocess.Popen(["sleep", "100"])
        self.addCleanup(child.wait)
        self.addCleanup(child.kill)
        data = json.loads(self.run_ctl("top", "--json", "--by", "memory").stdout)
        self.assertTrue(data["hasCPU"])
        found = {process["pid"]: app["id"] for app in data["apps"] for process in app["processes"]}
        self.assertEqual(found[child.pid], found[os.getpid()], "a helper is charged to the same application")
        self.assertGreaterEqual(data["processCount"], len(found))
        sizes = [app["footprint"] for app in data["apps"]]
        self.assertEqual(sizes, sorted(sizes, reverse=True))

    def test_an_unknown_order_is_wrong_usage(self):
        ran = self.run_ctl("top", "--by", "colour")
        self.assertEqual((ran.returncode, ran.stdout), (2, ""))
        self.assertEqual(ran.stderr, 'kestrioctl: --by "colour" is no order that I know; it is memory or cpu\n')

    def assert_restored(self, terminal):
        self.assertTrue(terminal.output.endswith(LEAVE), terminal.output[-80:])
        self.assertEqual(termios.tcgetattr(terminal.slave), terminal.before)

    def test_in_a_terminal_it_lives_until_q(self):
        terminal = Terminal(self, "top")
        self.assertTrue(terminal.shows(b"q quits"), terminal.output)
        self.assertIn(ENTER, terminal.output)
        self.assertFalse(termios.tcgetattr(terminal.slave)[3] & termios.ECHO)
        terminal.forget()
        self.assertTrue(terminal.shows(b"q quits"), "it shows what has changed by itself")
        self.assertNotIn(b"\x1b[2J", terminal.output, "without clearing the screen, which would flicker")
        terminal.type(b"q")
        self.assertEqual(terminal.ends(), 0)
        self.assert_restored(terminal)

    def test_keys_change_the_order_at_once(self):
        terminal = Terminal(self, "top", "--by", "memory")
        terminal.shows(b"q quits")
        for key in b"c", b"m", b"x":
            terminal.forget()
            terminal.type(key)
            self.assertTrue(terminal.shows(b"q quits"), key)
        terminal.type(b"Q")
        self.assertEqual(terminal.ends(), 0)

    def test_it_follows_the_size_of_the_terminal(self):
        terminal = Terminal(self, "top", rows=40, columns=120)
        self.assertTrue(terminal.shows(b"Wake-ups"))
        terminal.shows(b"q quits")
        terminal.forget()
        terminal.resize(12, 60)
        self.assertTrue(terminal.shows(b"q quits"))
        frame = terminal.output.decode().split("\x1b[H")[-1]
        self.assertNotIn("Wake-ups", frame)
        self.assertLessEqual(frame.count("\n"), 11)

    def test_the_terminal_is_given_back_however_it_ends(self):
        for about, end in {"Ctrl-C": lambda t: t.type(b"\x03"), "Ctrl-\\": lambda t: t.type(b"\x1c"),
                           "SIGTERM": lambda t: t.process.send_signal(signal.SIGTERM),
                           "SIGHUP": lambda t: t.process.send_signal(signal.SIGHUP)}.items():
            with self.subTest(about):
                terminal = Terminal(self, "top")
                terminal.shows(b"q quits")
                end(terminal)
                self.assertEqual(terminal.ends(), 0)
                self.assert_restored(terminal)

    def test_the_terminal_is_given_back_while_it_is_stopped(self):
        terminal = Terminal(self, "top")
        terminal.shows(b"q quits")
        terminal.forget()
        terminal.process.send_signal(signal.SIGTSTP)
        self.assertTrue(terminal.shows(LEAVE))
        stat = pathlib.Path(f"/proc/{terminal.process.pid}/stat")
        self.assertTrue(terminal.read_until(lambda: stat.read_text().rsplit(")", 1)[1].split()[0] == "T"))
        self.assertEqual(termios.tcgetattr(terminal.slave), terminal.before)
        terminal.forget()
        terminal.process.send_signal(signal.SIGCONT)
        self.assertTrue(terminal.shows(b"q quits"))
        self.assertIn(ENTER, terminal.output)
        terminal.type(b"q")
        self.assertEqual(terminal.ends(), 0)

    def test_it_ends_with_its_terminal(self):
        terminal = Terminal(self, "top")
        terminal.shows(b"q quits")
        os.close(terminal.slave)
        terminal.slave = None
        os.close(terminal.master)
        terminal.master = None
        terminal.process.wait(DEADLINE)

    def test_a_dumb_terminal_gets_one_table(self):
        self.environment["TERM"] = "dumb"
        terminal = Terminal(self, "top")
        self.assertEqual(terminal.ends(), 0)
        self.assertIn(b"Application", terminal.output)
        self.assertNotIn(b"\x1b", terminal.output)


class Machine(Case):
    def test_it_tells_how_the_machine_stands(self):
        ran = self.run_ctl("machine")
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        for word in ("Processor", "Cores", "Memory", "Pressure", "Swap"):
            self.assertIn(f"  {word}", ran.stdout)
        self.assertNotIn("\x1b", ran.stdout)

    def test_data_adds_up(self):
        data = json.loads(self.run_ctl("machine", "--json").stdout)
        memory = data["memory"]
        parts = sum(memory[part] for part in ("apps", "wired", "compressed", "cached", "free"))
        self.assertEqual(parts, memory["total"])
        self.assertIn(data["pressure"], ("normal", "warning", "critical"))
        self.assertGreaterEqual(data["performanceCores"], 1)
        self.assertTrue(all(absence["why"] for absence in data["absent"]))


class DiskTest(Case):
    def files(self):
        return [path for path in self.home.rglob("*") if path.is_file()]

    def test_its_result_is_shown_and_kept_and_nothing_else(self):
        ran = self.run_ctl("disk-test")
        if ran.returncode == 1 and "lie in memory" in ran.stderr:
            self.skipTest("there is no drive here")
        self.assertEqual(ran.returncode, 0, ran.stderr)
        self.assertRegex(ran.stdout, r"^  The drive reads .*/s, writes .*/s\.\n$")
        self.assertEqual({path.name for path in self.files()}, {"settings.json", "settings.lock"})
        kept = json.loads(self.run_ctl("machine", "--json").stdout)["driveTest"]
        self.assertGreater(kept["readBytesPerSecond"], 0)
        self.assertGreater(kept["date"], 700_000_000)

    def test_killed_in_the_middle_it_leaves_nothing(self):
        running = subprocess.Popen([BIN, "disk-test"], env=self.environment, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        time.sleep(0.05)  # wherever it is then
        running.kill()
        running.wait()
        self.assertEqual(self.files(), [])
        for folder in ("/tmp", "/var/tmp"):
            self.assertEqual(list(pathlib.Path(folder).glob("kestrio-speedtest-*")), [])


unittest.main(verbosity=1)
