#!/usr/bin/python3
"""A screen reader's side of AT-SPI, as the desktop tests use it.

  screen_reader.py enable        turns assistive technology on for the session bus, as a screen
                                 reader does when it starts (org.a11y.Status)
  screen_reader.py read APP      prints each accessible of the application named APP, one per line,
                                 as "ROLE: NAME" indented by depth
  screen_reader.py press APP NAME
                                 does the Press action of APP's push button NAME; prints its result

Exit status: 0 done, 1 the application or the button was not found, 2 usage.
"""
import sys


def enable():
    from gi.repository import Gio, GLib

    bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
    for name in ("IsEnabled", "ScreenReaderEnabled"):
        bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set",
                      GLib.Variant("(ssv)", ("org.a11y.Status", name, GLib.Variant("b", True))),
                      None, Gio.DBusCallFlags.NONE, 10000, None)
    return 0


def application(name):
    import pyatspi

    for app in pyatspi.Registry.getDesktop(0):
        if app is not None and app.name == name:
            return app
    return None


def walk(accessible, depth=0):
    yield depth, accessible
    for child in accessible:
        if child is not None:
            yield from walk(child, depth + 1)


def read(app_name):
    app = application(app_name)
    if app is None:
        print(f"no application {app_name}", file=sys.stderr)
        return 1
    for depth, accessible in walk(app):
        print(f"{'  ' * depth}{accessible.getRoleName()}: {accessible.name}")
    return 0


def press(app_name, button):
    app = application(app_name)
    found = None
    if app is not None:
        for _, accessible in walk(app):
            if accessible.getRoleName() == "push button" and accessible.name == button:
                found = accessible
                break
    if found is None:
        print(f"no push button {button} in {app_name}", file=sys.stderr)
        return 1
    actions = found.queryAction()
    for index in range(actions.nActions):
        if actions.getName(index) == "Press":
            print(f"Press: {actions.doAction(index)}")
            return 0
    print(f"{button} has no Press action", file=sys.stderr)
    return 1


def main(argv):
    if len(argv) == 2 and argv[1] == "enable":
        return enable()
    if len(argv) == 3 and argv[1] == "read":
        return read(argv[2])
    if len(argv) == 4 and argv[1] == "press":
        return press(argv[2], argv[3])
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv))
