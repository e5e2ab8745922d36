"""What the X server says is in front, moment by moment; and how recorded rows compare with that.

Nothing here asks Kestrio. The witness hears of the active window and of its name from the X server itself; what a
window with that name shows, the script that opened it has told.
"""

import collections
import ctypes
import dataclasses
import select
import threading
import time

TICK = 2.0  # seconds between two looks of the agent
SOON = 0.2  # seconds that the X server and a browser's own account of itself may differ
SHORTEST_ROW = 1.0  # seconds; what was in front for less leaves no row, which is so by design

PRIVATE_TITLE = "Private Browsing"


@dataclasses.dataclass(frozen=True)
class Front:
    """What somebody sees, in the words in which it should be recorded. Without an application nobody is there."""

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

    def changes_within(self, start, end):
        return any(start <= moment <= end for moment, _ in self.changes)


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
        self.short = 0  # of what was in front too shortly for a row
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
            recorded = recorded_at(rows, moment)
            reach = SHORTEST_ROW + SOON
            if recorded == NOBODY != truth and timeline.changes_within(moment - reach, moment + reach):
                score.short += 1
            else:
                score.judge(moment, truth, lately, recorded)
    return score


class Display:
    """The few questions to the X server that the witness has. Belongs to one thread."""

    PROPERTY_CHANGE = 1 << 22
    ANY_TYPE = 0

    def __init__(self):
        self.x = ctypes.CDLL("libX11.so.6")
        self.x.XOpenDisplay.restype = ctypes.c_void_p
        self.x.XInternAtom.restype = ctypes.c_ulong
        self.x.XDefaultRootWindow.restype = ctypes.c_ulong
        handler = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)
        self.ignoring = handler(lambda *_: 0)  # windows vanish at any moment
        self.x.XSetErrorHandler(self.ignoring)
        opened = self.x.XOpenDisplay(None)
        if not opened:
            raise RuntimeError("there is no display")
        self.display = ctypes.c_void_p(opened)
        self.root = self.x.XDefaultRootWindow(self.display)
        self.descriptor = self.x.XConnectionNumber(self.display)
        self.event = ctypes.create_string_buffer(24 * ctypes.sizeof(ctypes.c_long))

    def listen(self, window):
        self.x.XSelectInput(self.display, ctypes.c_ulong(window), ctypes.c_long(self.PROPERTY_CHANGE))

    def wait(self, seconds):
        """Returns when some property changed, or after so many seconds."""
        if not self.x.XPending(self.display):
            select.select([self.descriptor], [], [], seconds)
        while self.x.XPending(self.display):
            self.x.XNextEvent(self.display, self.event)

    def property(self, window, name):
        """The property's values: bytes, or an array of numbers; None when there is none."""
        kind, form = ctypes.c_ulong(), ctypes.c_int()
        count, left, data = ctypes.c_ulong(), ctypes.c_ulong(), ctypes.POINTER(ctypes.c_char)()
        atom = self.x.XInternAtom(self.display, name.encode(), 0)
        status = self.x.XGetWindowProperty(
            self.display, ctypes.c_ulong(window), ctypes.c_ulong(atom), ctypes.c_long(0), ctypes.c_long(1024), 0,
            ctypes.c_ulong(self.ANY_TYPE), ctypes.byref(kind), ctypes.byref(form), ctypes.byref(count),
            ctypes.byref(left), ctypes.byref(data),
        )
        if status or not data:
            return None
        try:
            if form.value == 32:
                numbers = ctypes.cast(data, ctypes.POINTER(ctypes.c_ulong))
                return numbers[: count.value] or None
            return data[: count.value] if kind.value else None
        finally:
            self.x.XFree(data)

    def active_window(self):
        return (self.property(self.root, "_NET_ACTIVE_WINDOW") or [0])[0]

    def name(self, window):
        found = self.property(window, "_NET_WM_NAME") or self.property(window, "WM_NAME")
        return None if found is None else found.decode(errors="replace")

    def close(self):
        self.x.XCloseDisplay(self.display)


class Witness:
    """Hears from the X server which window is active and what it is called, and writes the timeline."""

    def __init__(self, meaning):
        """`meaning(window, name)` says what a window of that name shows; None when it does not know."""
        self.meaning = meaning
        self.timeline = Timeline()
        self.changed = threading.Condition()
        self.window, self.name, self.front = 0, None, None
        self.is_over = False
        self.thread = threading.Thread(target=self.watch, daemon=True)
        self.thread.start()

    def watch(self):
        display = Display()
        display.listen(display.root)
        listening = 0
        while not self.is_over:
            window = display.active_window()
            if window and window != listening:
                display.listen(window)  # before its name is asked, so that no change is lost
                listening = window
            self.note(window, display.name(window) if window else None)
            display.wait(0.2)
        display.close()

    def note(self, window, name):
        with self.changed:
            self.window, self.name = window, name
            self.front = self.meaning(window, name) if window and name is not None else None
            # Focus passes through nothing at each switch; the window before it counts until there is another.
            if window:
                self.timeline.now(self.front)
            self.changed.notify_all()

    def expect(self, condition, within=20):
        """The window in front once `condition(window, name, front)` holds; None when that never came."""
        with self.changed:
            holds = self.changed.wait_for(lambda: condition(self.window, self.name, self.front), within)
            return self.window if holds else None

    def close(self):
        self.is_over = True
        self.thread.join()
