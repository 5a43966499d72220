# SPDX-License-Identifier: GPL-3.0-or-later
"""A window of another program to drag from. It offers the given types and data, and prints how each drag ends."""
import sys

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk  # noqa: E402


def main(title, *offers):
    """title: of the window. offers: TYPE=DATA each."""
    data = [offer.split("=", 1) for offer in offers]
    window = Gtk.Window(title=title, type_hint=Gdk.WindowTypeHint.UTILITY)
    window.set_default_size(120, 80)
    window.set_keep_above(True)
    surface = Gtk.EventBox()
    window.add(surface)
    targets = [Gtk.TargetEntry.new(mime, 0, place) for place, (mime, _) in enumerate(data)]
    surface.drag_source_set(Gdk.ModifierType.BUTTON1_MASK, targets, Gdk.DragAction.COPY)
    failures = []
    in_x = "X11" in type(window.get_display()).__name__

    def data_get(_surface, _context, selection, place, _time):
        selection.set(Gdk.Atom.intern(data[place][0], False), 8, data[place][1].encode())

    def failed(*_):
        failures.append(True)
        return True  # no animation of the picture flying back

    def end(_surface, context):
        # Only X reports it here; a Wayland compositor cancels a drag whose drop was refused.
        refused = failures or (in_x and not Gdk.drag_drop_succeeded(context))
        print("refused" if refused else "accepted", flush=True)

    surface.add_events(Gdk.EventMask.ENTER_NOTIFY_MASK)
    surface.connect("enter-notify-event", lambda *_: print("entered", flush=True))
    surface.connect("drag-begin", lambda *_: print("began", flush=True))
    surface.connect("drag-data-get", data_get)
    surface.connect("drag-failed", failed)
    surface.connect("drag-end", end)
    window.connect("destroy", Gtk.main_quit)
    window.show_all()
    Gtk.main()


if __name__ == "__main__":
    main(*sys.argv[1:])
