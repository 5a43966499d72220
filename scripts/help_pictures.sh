#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Draws the pictures of the help pages again: scripts/help_pictures.sh [BUILD-FOLDER]
set -eu
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build="${1:-$root/build/dev}"
pictures="$root/resources/help/mac/lumetw/pictures"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

mkdir -p "$pictures"
for language in en ja; do
    "$build/tests/app/screenshots" "$scratch/$language" --language "$language"
    for picture in form:form form-to-spatial:form-to-spatial form-resize-odd:resize filled:filled \
        alert-overwrite:overwrite alert-check-spatial:check sheet-running:progress sheet-finished-problems:finished files-list:files; do
        # 256 colours are enough for a window, and make the file a third as large.
        convert "$scratch/$language/${picture%%:*}.png" -strip -define png:compression-level=9 +dither -colors 256 \
            "PNG8:$pictures/${picture##*:}-$language.png"
    done
done
large=$(find "$pictures" -name '*.png' -size +150k)
[ -z "$large" ] || { echo "larger than 150 KiB: $large" >&2; exit 1; }
