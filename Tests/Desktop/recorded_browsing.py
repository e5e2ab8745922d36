"""What the tests of recorded browsing share: a stage with a browser, the agent, and the rows against the truth."""

import time
import unittest

from kestrio_desktop import DesktopTest
from stage import BROWSERS, Stage, stored_bytes
from witness import TICK, Front, compare

SLACK = 2  # seconds in which rows may be later than a tick, on a busy machine
HOLD = 1.5 * TICK  # seconds that something stays in front so that it must be recorded
KINDS = {"focus": 0, "watching": 1, "listening": 2}


class RecordedBrowsing(DesktopTest):
    """`BROWSER` and `SOURCES` say which browser, and how it tells of itself."""

    BROWSER, SOURCES = None, ()

    def setUp(self):
        super().setUp()
        if not BROWSERS[self.BROWSER].is_installed():
            raise unittest.SkipTest(f"{self.BROWSER} is not installed")
        self.stage = Stage(self.home, self.BROWSER, self.SOURCES)
        self.addCleanup(self.stage.close)
        self.agent = self.start_agent()
        self.began = time.time()

    def page(self, name, **more):
        return self.stage.site.add(name, f"The {name} page", **more)

    def hold(self, seconds=HOLD):
        self.stage.spend(seconds)

    def end_agent(self):
        self.assertEqual(self.stop(self.agent), 0)
        self.assertEqual(self.agent.stderr.read(), "", "nothing was wrong, and nothing is said")

    def rows_of(self, kind):
        return [row for row in self.home.rows() if row["kind"] == KINDS[kind]]

    def assert_the_rows_are_the_truth(self, since):
        """Ends the agent. What was held in front is recorded, in order, in time, and nothing that never was."""
        ended = time.time()
        self.end_agent()
        rows = self.rows_of("focus")
        timeline = self.stage.witness.timeline
        truths = timeline.between(self.began - TICK, ended)
        for row in rows:
            told = Front(row["bundle_id"], row["title"], row["url"])
            if row["end"] > since:
                self.assertIn(told, truths, "recorded, and never in front")
        wrong = compare(timeline, rows, since, ended).wrong
        self.assertLessEqual(sum(wrong.values()), SLACK, [f"{a} recorded as {b}: {n} s" for (a, b), n in wrong.items()])

    def assert_no_trace(self, mark):
        for path, content in stored_bytes(self.home).items():
            self.assertNotIn(mark.encode(), content, path)
