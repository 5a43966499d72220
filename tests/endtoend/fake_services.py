# SPDX-License-Identifier: GPL-3.0-or-later
"""Fake desktop services on the session bus. Each call and signal is printed as a line of JSON."""
import json
import os

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

REQUEST = "/org/freedesktop/portal/desktop/request/lumetwin"
SERVICES = [
    # name, path, interface, methods: name, arguments, answer
    ("org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
     [("Inhibit", "ssss", "h")]),
    ("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Inhibit",
     [("Inhibit", "sua{sv}", "o")]),
    ("org.freedesktop.portal.Desktop", REQUEST, "org.freedesktop.portal.Request", [("Close", "", "")]),
    ("org.freedesktop.Notifications", "/org/freedesktop/Notifications", "org.freedesktop.Notifications",
     [("Notify", "susssasa{sv}i", "u")]),
    ("org.freedesktop.FileManager1", "/org/freedesktop/FileManager1", "org.freedesktop.FileManager1",
     [("ShowItems", "ass", "")]),
    ("org.freedesktop.portal.Documents", "/org/freedesktop/portal/documents", "org.freedesktop.portal.FileTransfer",
     [("RetrieveFiles", "sa{sv}", "as")]),
]


def arguments(signature, direction):
    types = []
    rest = signature
    while rest:
        length = next(n for n in range(1, len(rest) + 1) if GLib.VariantType.string_is_valid(rest[:n]))
        types.append(f'<arg type="{rest[:length]}" direction="{direction}"/>')
        rest = rest[length:]
    return "".join(types)


def description(interface, methods):
    body = "".join(f'<method name="{name}">{arguments(parameters, "in")}{arguments(results, "out")}</method>'
                   for name, parameters, results in methods)
    return Gio.DBusNodeInfo.new_for_xml(f'<node><interface name="{interface}">{body}</interface></node>').interfaces[0]


def report(*what):
    print(json.dumps(what), flush=True)


def lock(invocation):
    """Returns a lock as logind does: it lasts until the last copy of its descriptor is closed."""
    reading, writing = os.pipe()

    def released(_descriptor, _condition):
        report("org.freedesktop.login1.Manager", "released")
        return False

    GLib.unix_fd_add_full(GLib.PRIORITY_DEFAULT, reading, GLib.IOCondition.HUP, released)
    descriptors = Gio.UnixFDList.new_from_array([writing])  # takes ownership of the descriptor
    invocation.return_value_with_unix_fd_list(GLib.Variant("(h)", (0,)), descriptors)


def handle_call(_bus, _sender, _path, interface, method, values, invocation, *_):
    report(interface, method, values.unpack())
    if interface.endswith("login1.Manager"):
        lock(invocation)
    elif interface.endswith("portal.Inhibit"):
        invocation.return_value(GLib.Variant("(o)", (REQUEST,)))
    elif method == "Notify":
        invocation.return_value(GLib.Variant("(u)", (1,)))
    elif method == "RetrieveFiles":  # here the key of a transfer is the list of its files
        invocation.return_value(GLib.Variant("(as)", (json.loads(values.unpack()[0]),)))
    else:
        invocation.return_value(None)


def main():
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    for name, path, interface, methods in SERVICES:
        bus.register_object(path, description(interface, methods), handle_call, None, None)
    bus.signal_subscribe(None, "com.canonical.Unity.LauncherEntry", "Update", None, None, Gio.DBusSignalFlags.NONE,
                         lambda _bus, _sender, _path, interface, signal, values:
                         report(interface, signal, values.unpack()))
    for name in {service[0] for service in SERVICES}:
        bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
                      GLib.Variant("(su)", (name, 0)), None, Gio.DBusCallFlags.NONE, -1, None)
    report("ready")
    GLib.MainLoop().run()


if __name__ == "__main__":
    main()
