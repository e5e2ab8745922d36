"""What the X server says is in front, moment by moment; and how recorded rows compare with that.

Nothing here asks Kestrio. The witness hears of the active window and of its name from the X server itself; what a
window with that name shows, the script that opened it has told.
"""

import collections
import dataclasses
import os
import re
import subprocess
import threading
import time

TICK = 2.0  # seconds between two looks of the agent
SOON = 0.2  # seconds that the X server and a browser's own account of itself may differ

PRIVATE_TITLE = "Private Browsing"


@dataclasses.dataclass(frozen=True)
class Front:
    """What somebody sees, in the words in which it should be recorded. Nobody is there where there is no application."""

    application: str | None = None
    title: str | None = None
    address: str | None = None

    def __str__(self):
        if self.application is None:
            return "nothing"
        return " | ".join([self.application, self.title or "no title", self.address or "no address"])


NOBODY = Front()


class Timeline:
    """What was in front, and since when. None stands for moments of which nobody can tell."""

    def __init__(self):
        self.changes = []  # (moment, Front or None), in order
        self.absences = []  # (from, to)

    def now(self, front, moment=None):
        moment = time.time() if moment is None else moment
        if not self.changes or self.changes[-1][1] != front:
            self.changes.append((moment, front))

    def nobody_between(self, start, end):
        """Nothing was touched for so long that it does not count as being there."""
        self.absences.append((start, end))

    def at(self, moment):
        if any(start <= moment < end for start, end in self.absences):
            return NOBODY
        found = None
        for since, front in self.changes:
            if since > moment:
                break
            found = front
        return found

    def between(self, start, end):
        """Everything that was in front at some time of this."""
        borders = [moment for moment, _ in self.changes] + [border for absence in self.absences for border in absence]
        moments = [start] + [border for border in borders if start < border <= end]
        return {self.at(moment) for moment in moments} - {None}


def recorded_at(rows, moment):
    """What the rows of the main line say of a moment."""
    for row in rows:
        if row["kind"] == 0 and row["start"] <= moment < row["end"]:
            return Front(row["bundle_id"], row["title"], row["url"])
    return NOBODY


FIELDS = ("application", "title", "address")


class Score:
    """How many seconds were recorded right, each field for itself and all of them together."""

    def __init__(self):
        self.seconds = 0
        self.unknown = 0
        self.raw = collections.Counter()
        self.fair = collections.Counter()
        self.wrong = collections.Counter()  # seconds by (what it was, what was recorded), beyond a tick's delay
        self.first_wrong = {}

    def judge(self, moment, truth, lately, recorded):
        """`lately`: what was true within the tick before. What is recorded of it is late, and not wrong."""
        self.seconds += 1
        for field in FIELDS:
            said = getattr(recorded, field)
            self.raw[field] += said == getattr(truth, field)
            self.fair[field] += any(said == getattr(each, field) for each in lately)
        self.raw["all"] += recorded == truth
        self.fair["all"] += recorded in lately
        if recorded not in lately:
            self.wrong[(truth, recorded)] += 1
            self.first_wrong.setdefault((truth, recorded), moment)

    def share(self, counter, field):
        return 100.0 * counter[field] / self.seconds if self.seconds else 100.0


def compare(timeline, rows, start, end, counts=lambda truth: True):
    """Judges every second between two moments in which something known was in front."""
    score = Score()
    for second in range(int(end - start)):
        moment = start + second + 0.5
        truth = timeline.at(moment)
        if truth is None:
            score.unknown += 1
        elif counts(truth):
            lately = timeline.between(moment - TICK - SOON, moment + SOON)
            score.judge(moment, truth, lately, recorded_at(rows, moment))
    return score


class Witness:
    """Hears from the X server which window is active and what it is called, and writes the timeline."""

    def __init__(self, meaning):
        """`meaning(window, name)` says what a window of that name shows; None when it does not know."""
        self.meaning = meaning
        self.timeline = Timeline()
        self.changed = threading.Condition()
        self.window, self.name, self.front = None, None, None
        self.naming = None
        self.is_over = False
        self.activity = self.spy("-root", "_NET_ACTIVE_WINDOW")
        threading.Thread(target=self.follow_activity, daemon=True).start()

    @staticmethod
    def spy(*arguments):
        command = ["xprop", "-spy", *arguments]
        return subprocess.Popen(
            command,
            env=os.environ | {"LC_ALL": "C.UTF-8"},
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            text=True,
            errors="replace",
        )

    def follow_activity(self):
        for line in self.activity.stdout:
            found = re.search(r"# (0x[0-9a-f]+)", line)
            window = int(found[1], 16) if found else 0
            with self.changed:
                if self.is_over:
                    return
                if window == self.window:
                    continue
                self.end_naming()
                self.window, self.name = window, None
                if window:
                    self.naming = self.spy("-id", hex(window), "_NET_WM_NAME", "WM_NAME")
                    threading.Thread(target=self.follow_name, args=(window, self.naming), daemon=True).start()
                self.note()

    def follow_name(self, window, naming):
        names = {}
        for line in naming.stdout:
            found = re.match(r'(\w+)\(\w+\) = "(.*)"$', line)
            if found:
                names[found[1]] = found[2]
            with self.changed:
                if self.window != window or self.is_over:
                    break
                self.name = names.get("_NET_WM_NAME", names.get("WM_NAME"))
                self.note()
        naming.wait()
        naming.stdout.close()

    def note(self):
        self.front = self.meaning(self.window, self.name) if self.window and self.name is not None else None
        # Focus passes through nothing at each switch; the window before it counts until there is another.
        if self.window:
            self.timeline.now(self.front)
        self.changed.notify_all()

    def end_naming(self):
        if self.naming:
            self.naming.kill()
            self.naming = None

    def expect(self, condition, within=20):
        """The window in front once `condition(window, name, front)` holds; None when that never came."""
        with self.changed:
            holds = self.changed.wait_for(lambda: condition(self.window, self.name, self.front), within)
            return self.window if holds else None

    def close(self):
        with self.changed:
            self.is_over = True
            self.end_naming()
        self.activity.kill()
        self.activity.wait()
