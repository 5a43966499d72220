# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash disable=SC2034,SC2154,SC2012
# Configures and builds a preset. ./run and ./test source this file.

# configure PRESET [OPTION…]: configures the first time, and when the presets or the media stack changed. The build
# itself notices other changes.
configure() {
    local preset=$1 folder="$lumetwin_root/build/$1" wanted="$stack_prefix ${*:2}"
    shift
    if [ -e "$folder/build.ninja" ] && [ "$folder/build.ninja" -nt "$lumetwin_root/CMakePresets.json" ] &&
        [ "$(cat "$folder/.configured" 2>/dev/null)" = "$wanted" ]; then
        return 0
    fi
    step "configuring $preset" cmake -S "$lumetwin_root" --preset "$preset" "$@"
    # CMake does not rewrite an unchanged build.ninja, so set its time stamp to mark it as up to date.
    touch "$folder/build.ninja"
    echo "$wanted" >"$folder/.configured" || die "cannot write to $folder"
}

# build PRESET: prints nothing when there is nothing to do.
build() {
    local folder="$lumetwin_root/build/$1"
    ninja -C "$folder" -n 2>/dev/null </dev/null | grep 'no work to do' >/dev/null && return 0
    step "building $1" cmake --build "$folder"
}
