#!/usr/bin/python3
"""The real windows before the real agent on a screen of Wayland: what the compositor knows of them, how they close, and
that they draw."""

import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

from accessible import Screen
from kestrio_desktop import BIN, DEADLINE, DesktopTest, eventually, main

CONFIGURATION = """\
xwayland disable
output HEADLESS-1 resolution 1366x768 position 0 0
"""
NEEDED = ("grim", "setpriv", "sway", "swaymsg", "wtype")
NOBODY = 65534
MISSING = [program for program in NEEDED if not shutil.which(program)]


@unittest.skipIf(MISSING, f"not installed: {', '.join(MISSING)}")
class Wayland(DesktopTest):
    def setUp(self):
        super().setUp()
        self.screen = Screen()
        self.start_compositor()
        self.start_agent()

    def start_compositor(self):
        # Not in the test's own folder, which another user does not get into.
        folder = pathlib.Path(tempfile.mkdtemp(prefix="kestrio-wayland.", dir="/tmp"))
        self.addCleanup(shutil.rmtree, folder, ignore_errors=True)
        configuration, socket = folder / "configuration", folder / "sway"
        configuration.write_text(CONFIGURATION)
        headless = {"WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"}
        environment = os.environ | headless | {"XDG_RUNTIME_DIR": str(folder), "SWAYSOCK": str(socket)}
        environment.pop("DISPLAY")
        command = ["sway", "-c", configuration]
        if os.getuid() == 0:  # as which it refuses to run
            for path in (folder, configuration):
                os.chown(path, NOBODY, NOBODY)
            command = ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups", *command]
        compositor = subprocess.Popen(command, env=environment, stderr=subprocess.DEVNULL)
        self.started.append(compositor)
        screens = lambda: [path for path in folder.glob("wayland-*") if path.is_socket()]
        eventually(lambda: compositor.poll() is not None or (screens() and socket.exists()), "the compositor is there")
        if compositor.poll() is not None:
            self.skipTest("the compositor does not run here")
        [screen] = screens()
        self.compositor = environment | {"WAYLAND_DISPLAY": str(screen)}

    def start_window(self, *arguments, **more):
        """Without a screen of X11 that it could take instead."""
        environment = self.home.environment | {
            "WAYLAND_DISPLAY": self.compositor["WAYLAND_DISPLAY"],
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            "LC_ALL": "C.UTF-8",
        }
        environment.pop("DISPLAY")
        window = subprocess.Popen(
            [BIN / "kestrio-window", *arguments], env=environment | more, stderr=subprocess.PIPE, text=True
        )
        self.started.append(window)
        return window

    def sway(self, *arguments):
        answer = subprocess.run(
            ["swaymsg", "--raw", *arguments], env=self.compositor, capture_output=True, text=True, timeout=DEADLINE
        )
        self.assertEqual(answer.returncode, 0, answer.stderr)
        return json.loads(answer.stdout)

    def windows(self):
        """What the compositor shows, as it tells of it."""

        def leaves(node):
            inner = node["nodes"] + node["floating_nodes"]
            return [leaf for each in inner for leaf in leaves(each)] if inner else [node]

        return [leaf for leaf in leaves(self.sway("-t", "get_tree")) if leaf.get("pid")]

    def window(self, title):
        return eventually(
            lambda: next((one for one in self.windows() if one["name"] == title), None), f"a window named {title}"
        )

    def colours(self):
        """How many the screen shows: an empty one has a single one."""
        picture = self.home.path / "screen.ppm"
        subprocess.run(["grim", "-t", "ppm", picture], env=self.compositor, check=True, timeout=DEADLINE)
        pixels = picture.read_bytes()[-1366 * 768 * 3 :]
        return len({pixels[at : at + 3] for at in range(0, len(pixels), 3)})

    def right_edge(self, name, role):
        left, _, width, _ = self.screen.shown(name, role).place()
        return left + width

    def ended_well(self, window):
        self.assertEqual(window.wait(timeout=DEADLINE), 0)
        self.assertEqual(window.stderr.read(), "")

    def escape(self, title):
        eventually(lambda: self.window(title)["focused"], f"{title} has the keyboard")
        subprocess.run(["wtype", "-k", "Escape"], env=self.compositor, check=True, timeout=DEADLINE)

    def test_the_dashboard_has_its_name_and_application_and_draws(self):
        window = self.start_window()
        shown = self.window("Kestrio")
        self.assertEqual(shown["app_id"], "kestrio")
        self.screen.shown("Overview", "list item")
        eventually(lambda: self.colours() > 50, "the dashboard is drawn")
        self.sway(f"[con_id={shown['id']}]", "kill")
        self.ended_well(window)

    def test_in_half_a_screen_the_dashboard_is_whole(self):
        window = self.start_window()
        self.screen.shown("Overview", "list item")
        self.sway("output", "HEADLESS-1", "resolution", "683x768")
        # What a window insists on having beyond its place is cut off.
        eventually(lambda: self.right_edge("Refresh", "push button") <= 683, "its end is in sight")
        self.sway("[app_id=kestrio]", "kill")
        self.ended_well(window)

    def test_where_people_read_from_right_to_left_the_dashboard_is_mirrored(self):
        window = self.start_window(LC_ALL="ar_EG.UTF-8")
        eventually(lambda: self.right_edge("Overview", "list item") > 1000, "the sidebar is on the right")
        self.sway("[app_id=kestrio]", "kill")
        self.ended_well(window)

    def test_a_panel_keeps_its_size_and_closes_on_escape(self):
        for kind, title in (("today", "Today"), ("system", "System")):
            with self.subTest(kind):
                window = self.start_window(kind, "--at", "1200,10")
                self.screen.shown(title, "dialog")
                shown = self.window(title)
                self.assertEqual((shown["type"], shown["app_id"]), ("floating_con", "kestrio"))
                self.assertEqual(shown["geometry"]["width"], 348)
                self.escape(title)
                self.ended_well(window)

    def test_a_panel_goes_when_another_window_is_brought_forward(self):
        window = self.start_window()
        dashboard = self.window("Kestrio")
        self.screen.shown("Overview", "list item")
        self.start_window("today", "--at", "1200,10")
        self.window("Today")
        eventually(lambda: self.window("Today")["focused"], "the panel is in front")
        self.sway(f"[con_id={dashboard['id']}]", "focus")
        eventually(lambda: [one["name"] for one in self.windows()] == ["Kestrio"], "the panel is gone")
        self.assertIsNone(window.poll())
        self.sway(f"[con_id={dashboard['id']}]", "kill")
        self.ended_well(window)

    def test_a_finer_screen_is_drawn_in_its_own_pixels(self):
        self.sway("output", "HEADLESS-1", "scale", "2")
        window = self.start_window("today")
        shown = self.window("Today")
        self.assertEqual(shown["geometry"]["width"], 348)
        eventually(lambda: self.colours() > 50, "the panel is drawn")
        self.escape("Today")
        self.ended_well(window)


if __name__ == "__main__":
    main()
