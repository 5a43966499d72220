# SPDX-License-Identifier: GPL-3.0-or-later
# Shared by the set-up scripts: messages, logged steps and the cache's place. Sourced, never run.

lumetwin_cache="${LUMETWIN_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/lumetwin}"
lumetwin_logs="$lumetwin_cache/logs"

say() { printf 'lumetwin: %s\n' "$*"; }

# One clear line, then the end.
die() {
    printf 'lumetwin: error: %s\n' "$*" >&2
    exit 1
}

# explain LOG: what a failed step's log says, in one line.
explain() {
    if grep -qiE 'no space left on device|not enough free space|disk quota' "$1"; then
        echo "the disk is full"
    elif grep -qiE 'temporary failure resolving|could not resolve|could not connect|failed to fetch|network is unreachable|connection (timed out|refused)' "$1"; then
        echo "the package mirror cannot be reached (is the network up?)"
    elif grep -qiE 'unable to locate package|has no installation candidate|unable to find a source package' "$1"; then
        grep -iE 'unable to locate package|has no installation candidate|unable to find a source package' "$1" |
            head -n 1 | sed 's/^E: //'
    else
        grep -iE 'error|fatal' "$1" | tail -n 1 | cut -c1-200
    fi
}

# step NAME COMMAND…: runs the command with its output in a log, says how long it took.
step() {
    local name=$1 log began code=0
    shift
    mkdir -p "$lumetwin_logs" || die "cannot write to $lumetwin_cache"
    log="$lumetwin_logs/${name//[^A-Za-z0-9.]/-}.log"
    began=$SECONDS
    printf 'lumetwin: %s … (log: %s)\n' "$name" "$log"
    ("$@") >"$log" 2>&1 </dev/null || code=$?
    if [ $code -ne 0 ]; then
        die "$name failed after $((SECONDS - began)) s: $(explain "$log"); see $log"
    fi
    say "$name: done in $((SECONDS - began)) s"
}

# as_root COMMAND…: apt needs it; everything else runs as the user.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        die "installing packages needs root; run as root or install sudo"
    fi
}
