#!/usr/bin/python3
"""The real window before the real agent, by keyboard alone, and read as assistive technology reads it: everything on
every page has a name and says what it is, nothing is said twice, and a huge history is no more to walk through."""

import subprocess

from accessible import Screen
from kestrio_desktop import BIN, DEADLINE, DesktopTest, eventually, main

PAGES = ["Overview", "Timeline", "Apps", "Websites", "YouTube", "Projects"]
LEADS_NOWHERE = {"filler", "unknown", "invalid"}
STATIC = {"label", "heading"}
FEW = 1500  # things, where a list has thousands of rows


class Keyboard(DesktopTest):
    def setUp(self):
        super().setUp()
        self.screen = Screen()

    def live(self, days=0, sessions_per_day=0):
        """A history of somebody who worked so many days."""
        data = self.home.database.parent
        data.mkdir(parents=True, exist_ok=True)
        command = [BIN / "example-history", self.home.database, str(days), str(sessions_per_day)]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, timeout=2 * DEADLINE)

    def start_window(self, *arguments):
        environment = self.home.environment | {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "LC_ALL": "C.UTF-8"}
        self.window = subprocess.Popen(
            [BIN / "kestrio-window", *arguments], env=environment, stderr=subprocess.PIPE, text=True
        )
        self.started.append(self.window)
        self.screen.shown("Pages", "list")
        eventually(lambda: self.window_named("Kestrio"), "the dashboard is in front")

    def key(self, *keys):
        self.xdotool("key", "--clearmodifiers", *keys)

    def type(self, text):
        self.xdotool("type", "--delay", "5", text)

    def setting(self, name):
        return self.home.control("settings", "get", name).stdout.strip()

    # Where the keyboard is.

    def is_at(self, name, role=None):
        focused = self.screen.focused()
        return focused is not None and focused[1] == name and role in (None, focused[0])

    def arrives(self, name, role=None):
        eventually(lambda: self.is_at(name, role), f"the keyboard is at {name}, not {self.screen.focused()}")

    def tab_to(self, name, role=None, key="Tab"):
        """Presses the tabulator until the keyboard is there."""
        way = []
        for _ in range(60):
            if self.is_at(name, role):
                return
            before = self.screen.focused_path()
            self.key(key)
            eventually(lambda: self.screen.focused_path() != before, f"the keyboard leaves {self.screen.focused()}")
            way.append(self.screen.focused())
        self.fail(f"{name} is not on the way {way}")

    def show(self, page):
        self.key(f"ctrl+{PAGES.index(page) + 1}")
        self.screen.shown(page, "panel")

    # What assistive technology reads.

    def check_names(self, page):
        """Every visible thing that can be acted on or reached has a name and a role; nothing is said twice."""
        count = 0
        for thing, parent in self.screen.visible():
            count += 1
            role, name = thing.role_name(), thing.name
            place = f"{page}: {role} “{name}” in {parent.role_name()} “{parent.name}”"
            if thing.is_focusable() or thing.actions():
                self.assertTrue(name, place)
                self.assertNotIn(role, LEADS_NOWHERE, place)
            if role in STATIC:
                self.assertTrue(name, place)
            if role == "label" and parent.role_name() in {"push button", "list item", "label", "check box"}:
                self.assertNotIn(name, parent.name, place)
        return count

    def check_pages(self):
        self.start_window()
        counts = {}
        for page in PAGES:
            self.show(page)
            counts[page] = self.check_names(page)
        return counts

    def ended_well(self):
        self.assertEqual(self.window.wait(timeout=DEADLINE), 0)
        self.assertEqual(self.window.stderr.read(), "")

    def test_everything_has_a_name_where_nothing_was_recorded(self):
        self.check_pages()
        self.key("ctrl+w")
        self.ended_well()

    def test_everything_has_a_name_with_what_is_selected_and_what_pops_up(self):
        self.live(3, 60)
        self.start_agent()
        self.check_pages()
        for page in ("Apps", "Websites", "Projects"):
            self.show(page)
            self.tab_to(page, "list")
            first = self.settled_rows(page)[0]
            self.key("Down")
            self.screen.shown(first, "heading")
            self.check_names(page + ", selected")
        self.show("Apps")
        self.tab_to("Date")
        self.key("Return")
        self.screen.shown("Previous month")
        self.check_names("the picker of days")
        self.key("Escape")
        self.screen.gone("Previous month")
        self.tab_to("Pause Tracking")
        self.key("Return")
        self.screen.shown("Until I resume")
        self.check_names("the menu of pauses")
        self.key("Escape")
        self.screen.gone("Until I resume")
        self.arrives("Pause Tracking")

    def test_a_huge_history_is_no_more_to_walk_through(self):
        self.live(30, 2700)
        self.start_window()
        self.tab_to("Day", "radio button")
        self.key("Right", "Right")
        self.screen.shown("This Month", "heading")
        for page in PAGES:
            self.show(page)
            self.assertLess(self.check_names(page), FEW, page)

    def test_a_range_with_fewer_rows_does_not_end_the_window(self):
        self.live(3, 60)
        self.start_window()
        self.tab_to("Day", "radio button")
        for _ in range(3):
            for key, title in (("Right", "This Week"), ("Right", "This Month"), ("Left", "This Week"), ("Left", None)):
                self.key(key)
                if title:
                    self.screen.shown(title, "heading")
                else:
                    self.arrives("Day", "radio button")
        self.assertIsNone(self.window.poll())

    def test_the_whole_dashboard_by_keyboard(self):
        self.live(3, 60)
        self.start_agent()
        self.start_window()
        self.change_the_range()
        self.search()
        self.change_a_category()
        self.add_a_rule()
        self.pause_and_resume()
        self.tab_to("About Kestrio")
        self.key("Return")
        eventually(lambda: self.setting("settingsTab") == "about", "the settings are asked for")

    def change_the_range(self):
        self.show("Overview")
        self.tab_to("Day", "radio button")
        self.key("Right")
        self.screen.shown("This Week", "heading")
        self.arrives("Week", "radio button")
        self.key("Left")
        self.arrives("Day", "radio button")
        self.key("ctrl+t")
        self.screen.shown("Today", "heading")
        self.tab_to("Previous")
        self.key("space")
        self.screen.shown("Yesterday", "heading")
        self.arrives("Previous")
        self.key("ctrl+bracketleft")
        self.screen.gone("Yesterday", "heading")
        self.key("ctrl+t")
        self.screen.shown("Today", "heading")
        self.tab_to("Date")
        self.key("Return")
        self.screen.shown("Previous month")
        self.key("Left", "Return")
        self.screen.shown("Yesterday", "heading")
        self.screen.gone("Previous month")
        self.arrives("Date")
        self.key("ctrl+t", "F5")
        self.screen.shown("Today", "heading")

    def settled_rows(self, name):
        """The rows of a list once the report that was asked for shows."""
        seen = []

        def is_settled():
            seen.append(self.screen.rows_of(name))
            return len(seen) > 20 and all(rows == seen[-1] for rows in seen[-20:])

        eventually(is_settled, f"{name} stays as it is")
        return seen[-1]

    def search(self):
        self.show("Websites")
        rows = self.settled_rows("Websites")
        self.assertGreater(len(rows), 1)
        self.key("ctrl+f")
        self.arrives("Filter")
        self.type(rows[-1])
        left = lambda: self.screen.rows_of("Websites")
        eventually(lambda: rows[-1] in left() and len(left()) < len(rows), "what was found is left")
        self.key("Escape")
        eventually(lambda: sorted(left()) == sorted(rows), "all sites are back")
        self.tab_to("Websites", "list")
        self.key("End")
        self.arrives(rows[-1], "list item")
        self.key("Home")
        self.arrives(rows[0], "list item")
        self.type(rows[1][:3])
        self.arrives(rows[1], "list item")

    def change_a_category(self):
        self.show("Apps")
        self.tab_to("Apps", "list")
        first = self.settled_rows("Apps")[0]
        self.key("Down")
        self.screen.shown(first, "heading")
        self.key("Tab")
        while self.screen.focused_description() != "Change category":
            self.key("Tab")
        self.key("Return")
        self.screen.shown("Social Media", "menu item")
        self.key("Home", "Return")
        self.screen.gone("Social Media", "menu item")
        self.arrives("Development")
        self.assertEqual(self.screen.focused_description(), "Change category")

    def add_a_rule(self):
        self.show("Projects")
        self.tab_to("Group activity into projects by keyword")
        self.key("Return")
        self.screen.shown("Project Rules", "heading")
        self.check_names("the sheet of rules")
        self.type("lighthouse")
        self.key("Tab")
        self.type("Coast")
        self.key("Return")
        self.screen.shown("lighthouse", "list item")
        self.assertIn("lighthouse", self.home.control("projects", "list").stdout)
        self.check_names("the sheet with a rule")
        self.key("Escape")
        self.screen.gone("Project Rules", "heading")
        self.arrives("Group activity into projects by keyword")

    def pause_and_resume(self):
        self.tab_to("Pause Tracking")
        self.key("Return")
        self.screen.shown("Until I resume")
        self.key("End", "Return")
        eventually(lambda: self.home.status()["state"] == "paused", "the recording pauses")
        self.arrives("Resume Tracking")
        self.key("space")
        eventually(lambda: self.home.status()["state"] != "paused", "the recording goes on")
        self.arrives("Pause Tracking")


if __name__ == "__main__":
    main()
