#!/usr/bin/python3
"""The virtual desktop passes its command's status on, keeps to itself, and leaves nothing behind however it ends."""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

TOOL = pathlib.Path(__file__).resolve().parents[2] / "Tools" / "virtual-desktop"
DEADLINE = 30  # seconds; what is waited for takes less than one

WHERE = 'echo "$DISPLAY $XDG_RUNTIME_DIR"'
WAITING = f"{WHERE}; exec sleep 1000"

# What is hard to get rid of: a daemon, and a stopped process that ignores SIGTERM and says where the desktop is.
STUBBORN = f"""
    (setsid sleep 1000 &)
    sh -c 'trap "" TERM; {WHERE}; kill -STOP $$; exec sleep 1000' &
    read line
"""


def parent_of(pid):
    try:
        fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
    except OSError:
        return None
    return None if fields[0] == "Z" else int(fields[1])


def processes():
    return {int(name): parent_of(name) for name in os.listdir("/proc") if name.isdigit()}


class Desktop:
    """A desktop under test. Its first line of output is `DISPLAY XDG_RUNTIME_DIR`."""

    def __init__(self, script, **more):
        more = {"stdin": subprocess.PIPE, "stderr": subprocess.PIPE} | more
        self.tool = subprocess.Popen([TOOL, "--", "sh", "-c", script], stdout=subprocess.PIPE, text=True, **more)
        display, runtime = self.tool.stdout.readline().split()
        self.number = display.removeprefix(":")
        self.folder = pathlib.Path(runtime).parent

    def keeper(self):
        return next(pid for pid, parent in processes().items() if parent == self.tool.pid)

    def command(self):
        """The command's process, once it has become `sleep`."""
        for pid, parent in processes().items():
            if parent == self.keeper() and b"sleep\x001000" in pathlib.Path(f"/proc/{pid}/cmdline").read_bytes():
                return pid
        return None

    def traces(self):
        """What is still there of it: processes, by the environment that only they have, and files."""
        mark = os.fsencode(self.folder)
        for pid, parent in processes().items():
            try:
                if parent is not None and mark in pathlib.Path(f"/proc/{pid}/environ").read_bytes():
                    yield f"process {pid} {pathlib.Path(f'/proc/{pid}/comm').read_text().strip()}"
            except OSError:
                pass
        if self.folder.exists():
            yield str(self.folder)

    def screen_files(self):
        """What is left of the screen below /tmp, unless another screen has taken its number."""
        lock = pathlib.Path(f"/tmp/.X{self.number}-lock")
        if lock.exists() and parent_of(int(lock.read_text())) is not None:
            return []
        return [str(path) for path in (lock, pathlib.Path(f"/tmp/.X11-unix/X{self.number}")) if path.exists()]

    def close(self):
        self.tool.terminate()
        self.tool.communicate()


def wait_until(condition):
    deadline = time.monotonic() + DEADLINE
    while not condition() and time.monotonic() < deadline:
        time.sleep(0.01)
    return condition()


class VirtualDesktop(unittest.TestCase):
    def desktop(self, script, **more):
        desktop = Desktop(script, **more)
        self.addCleanup(desktop.close)
        return desktop

    def run_tool(self, *arguments, **more):
        return subprocess.run([TOOL, *arguments], capture_output=True, text=True, timeout=DEADLINE, **more)

    def assert_nothing_is_left(self, desktop):
        self.assertEqual(list(desktop.traces()), [])
        wait_until(lambda: not desktop.screen_files())  # another screen with that number may be on its way out
        self.assertEqual(desktop.screen_files(), [])

    def test_the_status_of_the_command_is_passed_on(self):
        for script, status in [("exit 0", 0), ("exit 7", 7), ("kill -KILL $$", 137), ("kill -TERM $$", 143)]:
            with self.subTest(script):
                self.assertEqual(self.run_tool("--", "sh", "-c", script).returncode, status)

    def test_a_command_that_cannot_be_run_says_so(self):
        ran = self.run_tool("--", "/there/is/no/such/program")
        self.assertEqual(ran.returncode, 127)
        self.assertEqual(ran.stderr, "virtual-desktop: /there/is/no/such/program: No such file or directory\n")

    def test_input_and_output_are_the_commands(self):
        self.assertEqual(self.run_tool("tr", "a-z", "A-Z", input="hello").stdout, "HELLO")

    def test_the_command_starts_with_the_signals_as_they_are_outside(self):
        look = ["grep", "Sig[BI]", "/proc/self/status"]
        outside = subprocess.run(look, capture_output=True, text=True).stdout
        self.assertEqual(self.run_tool(*look).stdout, outside)

    def test_a_long_tmpdir_does_not_matter(self):
        with tempfile.TemporaryDirectory(suffix="x" * 120) as folder:
            self.assertEqual(self.run_tool("true", env=os.environ | {"TMPDIR": folder}).returncode, 0)

    def test_every_service_answers_when_the_command_starts(self):
        script = """
            xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id' && echo window manager
            xwininfo -root | grep -o -e '-geometry [0-9x]*'
            pactl get-default-sink
            dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus org.a11y.Bus.GetAddress | grep -c unix:
        """
        ran = self.run_tool("--size", "800x600", "--", "sh", "-c", script)
        self.assertEqual(ran.stdout.splitlines(), ["window manager", "-geometry 800x600", "silence", "1"], ran.stderr)

    def test_the_persons_own_desktop_cannot_be_reached(self):
        outside = {
            "DISPLAY": ":outside", "WAYLAND_DISPLAY": "outside", "XAUTHORITY": "/outside", "SESSION_MANAGER": "outside",
            "DBUS_SESSION_BUS_ADDRESS": "unix:path=/outside", "PULSE_SERVER": "/outside", "XDG_RUNTIME_DIR": "/outside",
            "HOME": "/outside", "XDG_CONFIG_HOME": "/outside", "AT_SPI_BUS_ADDRESS": "unix:path=/outside",
        }
        ran = self.run_tool("env", env=os.environ | outside)
        self.assertNotRegex(ran.stdout, "outside")

    def test_nobody_without_the_cookie_gets_onto_the_screen(self):
        self.assertEqual(self.run_tool("sh", "-c", "XAUTHORITY=/dev/null xprop -root >/dev/null 2>&1").returncode, 1)

    def test_everything_is_gone_when_the_command_ends(self):
        desktop = self.desktop(STUBBORN + "exit 5")
        desktop.tool.stdin.write("go\n")
        desktop.tool.stdin.flush()
        self.assertEqual(desktop.tool.wait(DEADLINE), 5)
        self.assert_nothing_is_left(desktop)

    def test_everything_is_gone_when_the_command_is_killed(self):
        desktop = self.desktop(WAITING)
        wait_until(desktop.command)
        os.kill(desktop.command(), signal.SIGKILL)
        self.assertEqual(desktop.tool.wait(DEADLINE), 137)
        self.assert_nothing_is_left(desktop)

    def test_everything_is_gone_when_the_tool_is_told_to_end(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(number.name):
                desktop = self.desktop(WAITING)
                desktop.tool.send_signal(number)
                self.assertEqual(desktop.tool.wait(DEADLINE), 128 + number)
                self.assert_nothing_is_left(desktop)

    def test_everything_is_gone_after_ctrl_c(self):
        desktop = self.desktop(WAITING, start_new_session=True)
        os.killpg(desktop.tool.pid, signal.SIGINT)
        self.assertEqual(desktop.tool.wait(DEADLINE), 130)
        self.assert_nothing_is_left(desktop)

    def test_everything_is_gone_when_the_tool_is_killed(self):
        desktop = self.desktop(STUBBORN)
        desktop.tool.kill()
        self.assertEqual(desktop.tool.wait(DEADLINE), -signal.SIGKILL)
        wait_until(lambda: not list(desktop.traces()))  # nobody is left who could say when
        self.assert_nothing_is_left(desktop)

    def test_everything_is_gone_when_its_keeper_is_killed(self):
        desktop = self.desktop(STUBBORN)
        os.kill(desktop.keeper(), signal.SIGKILL)
        self.assertEqual(desktop.tool.wait(DEADLINE), 137)
        self.assert_nothing_is_left(desktop)

    def test_two_at_once_do_not_disturb_each_other(self):
        script = f"{WHERE}; read go; xprop -root _NET_SUPPORTING_WM_CHECK; pactl get-default-sink"
        desktops = [self.desktop(script) for _ in range(2)]
        self.assertEqual(len({desktop.number for desktop in desktops}), 2)
        for desktop in desktops:  # the second answers after the first has gone
            out, _ = desktop.tool.communicate("go\n", timeout=DEADLINE)
            self.assertRegex(out, "window id # 0x.*\nsilence\n")
            self.assert_nothing_is_left(desktop)

    def test_a_service_that_is_not_installed_is_left_out(self):
        with tempfile.TemporaryDirectory() as folder:
            for program in ("sh", "env", "Xvfb", "dbus-daemon"):
                os.symlink(shutil.which(program), pathlib.Path(folder) / program)
            ran = self.run_tool("sh", "-c", 'echo "${DISPLAY:+a display}"', env={"PATH": folder})
        self.assertEqual((ran.returncode, ran.stdout), (0, "a display\n"))
        for program in ("openbox", "pulseaudio"):
            self.assertIn(f"virtual-desktop: {program} is not installed; going on without it.\n", ran.stderr)

    def test_a_service_that_fails_ends_the_attempt_with_its_last_words(self):
        with tempfile.TemporaryDirectory() as folder:
            broken = pathlib.Path(folder) / "Xvfb"
            broken.write_text("#!/bin/sh\necho the screen is broken; exit 1\n")
            broken.chmod(0o755)
            ran = self.run_tool("true", env=os.environ | {"PATH": f"{folder}:{os.environ['PATH']}"})
        self.assertEqual(ran.returncode, 125)
        self.assertIn("virtual-desktop: Xvfb did not start.\n  Xvfb.log: the screen is broken\n", ran.stderr)

    def test_the_services_log_is_kept_where_asked(self):
        with tempfile.TemporaryDirectory() as folder:
            self.run_tool("--keep-log", folder, "--", "true")
            self.assertLessEqual({"Xvfb.log", "dbus-daemon.log"}, set(os.listdir(folder)))


if __name__ == "__main__":
    unittest.main()
