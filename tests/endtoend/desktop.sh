#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs a Python program on a small desktop of its own: X server, window manager, session bus.
set -eu
for tool in xvfb-run dbus-run-session openbox xdotool xev; do
    command -v "$tool" >/dev/null || { echo "skipped: $tool is not installed"; exit 77; }
done
python=/usr/bin/python3 # the distribution's, which has its bindings
"$python" -c 'import gi; gi.require_version("Atspi", "2.0")' 2>/dev/null || { echo "skipped: no bindings of AT-SPI"; exit 77; }

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
mkdir -m 700 "$home/runtime"
unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS
export HOME="$home" XDG_RUNTIME_DIR="$home/runtime" XDG_CONFIG_HOME="$home/config" XDG_CACHE_HOME="$home/cache"
export QT_QPA_PLATFORM=xcb QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
xvfb-run -a -s "-screen 0 1280x1024x24" dbus-run-session -- sh -c 'openbox >/dev/null 2>&1 & exec "$@"' sh "$python" "$@"
