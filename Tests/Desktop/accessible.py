"""Drives a window as assistive technology does: finds what shows by name and role, and presses it. Over D-Bus alone."""

import dbus

from kestrio_desktop import eventually

ROLES = {
    "alert": 2, "check box": 7, "dialog": 16, "heading": 83, "label": 29, "list": 31, "list item": 32, "menu item": 35,
    "panel": 39, "push button": 43, "radio button": 44,
}
FOCUSABLE, FOCUSED, VISIBLE = 11, 12, 30  # among the states
WINDOW = 1  # among the origins of places
NOTHING = "/org/a11y/atspi/null"


class Thing:
    """Something that shows."""

    def __init__(self, bus, name, path):
        self.bus, self.owner, self.path = bus, name, path
        self.object = bus.get_object(name, path, introspect=False)

    def ask(self, property_name, interface="org.a11y.atspi.Accessible"):
        return self.object.Get(interface, property_name, dbus_interface="org.freedesktop.DBus.Properties")

    @property
    def name(self):
        return str(self.ask("Name"))

    def role(self):
        return int(self.object.GetRole(dbus_interface="org.a11y.atspi.Accessible"))

    def role_name(self):
        return str(self.object.GetRoleName(dbus_interface="org.a11y.atspi.Accessible"))

    def has(self, state):
        low, _ = self.object.GetState(dbus_interface="org.a11y.atspi.Accessible")
        return bool(low & 1 << state)

    def is_visible(self):
        """Whether it is in sight; hidden things are named as well."""
        return self.has(VISIBLE)

    def is_focusable(self):
        return self.has(FOCUSABLE)

    def actions(self):
        try:
            return [str(name) for name, _, _ in self.object.GetActions(dbus_interface="org.a11y.atspi.Action")]
        except dbus.DBusException:
            return []  # it has none of that kind

    def children(self):
        found = self.object.GetChildren(dbus_interface="org.a11y.atspi.Accessible")
        return [Thing(self.bus, owner, path) for owner, path in found if str(path) != NOTHING]

    def all(self):
        yield self
        for child in self.children():
            try:
                yield from child.all()
            except dbus.DBusException:
                continue  # it went meanwhile

    def place(self):
        """Left and upper edge in the window, width and height."""
        sides = self.object.GetExtents(WINDOW, dbus_interface="org.a11y.atspi.Component", signature="u")
        return [int(side) for side in sides]

    def press(self):
        actions = self.object.GetActions(dbus_interface="org.a11y.atspi.Action")
        names = [str(name) for name, _, _ in actions]
        assert "Press" in names, f"{self.name} offers {names}"
        self.object.DoAction(names.index("Press"), dbus_interface="org.a11y.atspi.Action", signature="i")


class Screen:
    """What the applications of this desktop show."""

    def __init__(self):
        session = dbus.bus.BusConnection(dbus.bus.BusConnection.TYPE_SESSION)
        address = session.get_object("org.a11y.Bus", "/org/a11y/bus").GetAddress(dbus_interface="org.a11y.Bus")
        self.bus = dbus.bus.BusConnection(str(address))

    def everything(self):
        root = Thing(self.bus, "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")
        for application in root.children():
            try:
                if application.name == "Kestrio":
                    yield from application.all()
            except dbus.DBusException:
                continue

    def find(self, name, role=None):
        return self.find_first(lambda other: other == name, role)

    def find_first(self, fits, role=None):
        """The first thing whose name fits."""
        for thing in self.everything():
            try:
                if fits(thing.name) and (role is None or thing.role() == ROLES[role]) and thing.is_visible():
                    return thing
            except dbus.DBusException:
                continue
        return None

    def visible(self):
        """Everything that shows, each with what it stands in."""
        for thing in self.everything():
            if thing.role_name() == "frame":
                yield from self.visible_in(thing)

    def visible_in(self, parent):
        for thing in parent.children():
            try:
                if thing.is_visible():
                    yield thing, parent
                yield from self.visible_in(thing)
            except dbus.DBusException:
                continue  # it went meanwhile

    def rows_of(self, name):
        """The names of the rows in sight of a list."""
        found = self.find(name, "list")
        return [row.name for row in found.children() if row.is_visible()] if found else []

    def focus(self):
        """What has the keyboard, the innermost. None when nothing has it."""
        innermost = None
        for thing, _ in self.visible():
            if thing.has(FOCUSED):
                innermost = thing
        return innermost

    def focused(self):
        """Its role and name, None when nothing has the keyboard."""
        try:
            thing = self.focus()
            return thing and (thing.role_name(), thing.name)
        except dbus.DBusException:
            return None

    def focused_path(self):
        thing = self.focus()
        return thing and str(thing.path)

    def focused_description(self):
        thing = self.focus()
        return thing and str(thing.ask("Description"))

    def shown(self, name, role=None):
        return eventually(lambda: self.find(name, role), f"{name} shows")

    def gone(self, name, role=None):
        eventually(lambda: self.find(name, role) is None, f"{name} goes")

    def press(self, name, role=None):
        self.shown(name, role).press()
