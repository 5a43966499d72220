#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Tries a package in a clean tree of a Debian release, as root: installs it with apt, converts a photo and a film both
# ways, opens the window in an X server, upgrades from an older version, removes it, and compares the files before and
# after.
#
#   scripts/try_package.sh PACKAGE.deb [SUITE]     SUITE: bookworm unless named; needs mmdebstrap
#
# The media are drawn on this machine with its ffmpeg.
set -euo pipefail
package=$(realpath "$1") suite=${2:-bookworm}
work=$(mktemp -d -t lumetwin-package-XXXXXX)
tree=$work/tree
leave() {
    umount -l "$tree/proc" "$tree/dev" 2>/dev/null || true
    rm -rf "$work"
}
trap leave EXIT

inside() { chroot "$tree" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }
as_user() { inside setpriv --reuid=1000 --regid=1000 --clear-groups env HOME=/home/hana QT_QPA_PLATFORM=xcb "$@"; }
say() { printf '%s: %s\n' "$suite" "$*"; }
# The files of the tree but for those that apt and dpkg keep for themselves, and caches of what is installed.
files() {
    (cd "$tree" && find . -xdev \( -path ./proc -o -path ./dev -o -path ./tmp -o -path ./var/lib/dpkg -o -path ./var/lib/apt \
        -o -path ./var/cache -o -path ./var/log -o -path ./home \) -prune -o ! -type d -print | grep -v -E \
        'mime/(mime.cache|globs2?|magic|types|aliases|subclasses|icons|generic-icons|treemagic|XMLnamespaces|version)$|mimeinfo.cache$|icon-theme.cache$' | sort)
}

say "making a clean tree"
mmdebstrap --quiet --variant=apt --skip=cleanup/apt/lists --include=passwd,xvfb,xauth,x11-utils,procps,shared-mime-info,desktop-file-utils "$suite" "$tree"
mount --bind /proc "$tree/proc"
mount --bind /dev "$tree/dev"
cp /etc/resolv.conf "$tree/etc/resolv.conf"
inside useradd --create-home --uid 1000 hana
files >"$work/before"

# An older version: the same package under a lower number.
dpkg-deb -R "$package" "$work/old"
sed -i 's/^Version: .*/Version: 0.0.1-1/' "$work/old/DEBIAN/control"
dpkg-deb --build --root-owner-group "$work/old" "$tree/tmp/old.deb" >/dev/null
cp "$package" "$tree/tmp/new.deb"
inside apt-get install --yes --no-install-recommends /tmp/old.deb >"$work/apt.log" 2>&1 || { cat "$work/apt.log"; exit 1; }
inside apt-get install --yes --no-install-recommends /tmp/new.deb >"$work/apt.log" 2>&1 || { cat "$work/apt.log"; exit 1; }
[ "$(inside dpkg-query -W -f='${Version}' lumetwin)" = "$(dpkg-deb -f "$package" Version)" ]
say "upgraded from 0.0.1-1 to $(dpkg-deb -f "$package" Version)"

media=$tree/home/hana
ffmpeg -v error -y -f lavfi -i testsrc2=size=1280x360:rate=25:duration=2 -f lavfi -i sine=duration=2 -c:v libx264 \
    -pix_fmt yuv420p -c:a aac "$media/trip.mp4"
ffmpeg -v error -y -f lavfi -i testsrc2=size=2560x720:rate=1 -frames:v 1 "$media/house.jpg"
mkdir "$media/there" "$media/back"
chown -R 1000:1000 "$media"
as_user lumetwin-batch --version
as_user lumetwin-batch --direction sbsToSpatial --output /home/hana/there /home/hana/trip.mp4 /home/hana/house.jpg
as_user lumetwin-batch --output /home/hana/back /home/hana/there
[ "$(ls "$media/there" "$media/back" | grep -c '\.\(mov\|heic\|mp4\|jpg\)$')" -eq 4 ]
as_user lumetwin-batch inspect /home/hana/there/trip_spatial.mov /home/hana/there/house_spatial.heic | grep -c 'spatial \(video\|photo\)$' | grep -qx 2
as_user sh -c 'xvfb-run -a sh -c "lumetwin /home/hana/trip.mp4 & sleep 4; xwininfo -root -tree | grep -q Lumetwin; status=\$?; kill %1 2>/dev/null || pkill -u 1000 -x lumetwin; exit \$status"'
say "converted both ways, opened its window"

inside apt-get purge --yes --autoremove lumetwin >"$work/apt.log" 2>&1 || { cat "$work/apt.log"; exit 1; }
files >"$work/after"
if ! diff "$work/before" "$work/after"; then
    say "files were left behind or are missing"
    exit 1
fi
say "removed without a trace"
