"""Drives a window as assistive technology does: finds what shows by name and role, and presses it. Over D-Bus alone."""

import dbus

from kestrio_desktop import eventually

ROLES = {"alert": 2, "dialog": 16, "heading": 83, "label": 29, "list item": 32, "push button": 43, "radio button": 44}
VISIBLE = 30  # among the states
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

    def is_visible(self):
        """Whether it is meant to be seen, be it scrolled out of sight; hidden things are named as well."""
        low, _ = self.object.GetState(dbus_interface="org.a11y.atspi.Accessible")
        return bool(low & 1 << VISIBLE)

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
        """Left, top, width and height on the screen."""
        sides = self.object.GetExtents(0, dbus_interface="org.a11y.atspi.Component", signature="u")
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

    def shown(self, name, role=None):
        return eventually(lambda: self.find(name, role), f"{name} shows")

    def gone(self, name, role=None):
        eventually(lambda: self.find(name, role) is None, f"{name} goes")

    def press(self, name, role=None):
        self.shown(name, role).press()
