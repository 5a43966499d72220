#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs a Python program on a new small desktop: a session bus, and an X server with a window manager or a Wayland
# compositor.
# Usage: desktop.sh x11|wayland PROGRAM [ARGUMENT…]
set -eu
display=$1
shift
case $display in
x11) tools="xvfb-run openbox xdotool xev import" ;;
wayland) tools="sway swaymsg grim wtype convert" ;;
*) echo "unknown display system: $display" >&2 && exit 2 ;;
esac
for tool in dbus-run-session $tools; do
    command -v "$tool" >/dev/null || { echo "skipped: $tool is not installed"; exit 77; }
done
python=/usr/bin/python3 # the distribution's Python, which has the AT-SPI bindings
"$python" -c 'import gi; gi.require_version("Atspi", "2.0")' 2>/dev/null || { echo "skipped: no bindings of AT-SPI"; exit 77; }

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
mkdir -m 700 "$home/runtime"
unset WAYLAND_DISPLAY DISPLAY SWAYSOCK DBUS_SESSION_BUS_ADDRESS
export HOME="$home" XDG_RUNTIME_DIR="$home/runtime" XDG_CONFIG_HOME="$home/config" XDG_CACHE_HOME="$home/cache"
export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1

if [ "$display" = x11 ]; then
    export QT_QPA_PLATFORM=xcb GDK_BACKEND=x11
    xvfb-run -a -s "-screen 0 1280x1024x24" dbus-run-session -- sh -c 'openbox >/dev/null 2>&1 & exec "$@"' sh "$python" "$@"
    exit
fi

# sway refuses to run as root, so it runs as another user. root may still use its display.
compositor=
[ "$(id -u)" != 0 ] || compositor="setpriv --reuid=65534 --regid=65534 --clear-groups"
chmod 711 "$home"
$compositor true || { echo "skipped: no right to run a compositor"; exit 77; }
mkdir -m 700 "$home/compositor"
[ -z "$compositor" ] || chown 65534:65534 "$home/compositor"
cat >"$home/sway" <<TEXT
xwayland disable
output * resolution 1280x1024
default_border none
default_floating_border none
for_window [title="^drag source\$"] floating enable, move absolute position 1100 900
bindsym Mod1+F4 kill
TEXT
export SWAYSOCK="$home/compositor/control"
WLR_BACKENDS=headless WLR_RENDERER=pixman WLR_LIBINPUT_NO_DEVICES=1 XDG_RUNTIME_DIR="$home/compositor" \
    $compositor sway --config "$home/sway" 2>"$home/log" &
sway=$!
trap 'kill $sway 2>/dev/null; wait $sway || true; rm -rf "$home"' EXIT
export QT_QPA_PLATFORM=wayland GDK_BACKEND=wayland WAYLAND_DISPLAY="$home/compositor/wayland-1"
until [ -S "$WAYLAND_DISPLAY" ] && [ -S "$SWAYSOCK" ]; do
    kill -0 $sway 2>/dev/null || { cat "$home/log" >&2 && exit 1; }
    sleep 0.02
done
dbus-run-session -- "$python" "$@"
