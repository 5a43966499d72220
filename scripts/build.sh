# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash disable=SC2034,SC2154,SC2012
# Configures and builds a preset. Sourced by ./run and ./test.

# configure PRESET [OPTION…]: once, and again when the presets or the media stack changed; the build itself
# notices everything else.
configure() {
    local preset=$1 folder="$lumetwin_root/build/$1" wanted="$stack_prefix ${*:2}"
    shift
    if [ -e "$folder/build.ninja" ] && [ "$folder/build.ninja" -nt "$lumetwin_root/CMakePresets.json" ] &&
        [ "$(cat "$folder/.configured" 2>/dev/null)" = "$wanted" ]; then
        return 0
    fi
    step "configuring $preset" cmake -S "$lumetwin_root" --preset "$preset" "$@"
    # The generator leaves an unchanged file alone; the time stamp says that it was looked at.
    touch "$folder/build.ninja"
    echo "$wanted" >"$folder/.configured" || die "cannot write to $folder"
}

# build PRESET: says nothing when there is nothing to do.
build() {
    local folder="$lumetwin_root/build/$1"
    ninja -C "$folder" -n 2>/dev/null </dev/null | grep 'no work to do' >/dev/null && return 0
    step "building $1" cmake --build "$folder"
}
