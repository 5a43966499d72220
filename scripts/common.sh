# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash disable=SC2034,SC2154,SC2012
# Shared by the set-up scripts: messages, logged steps and the cache folder. To be sourced, not run.

lumetwin_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
lumetwin_cache="${LUMETWIN_CACHE:-${XDG_CACHE_HOME:-${HOME:?}/.cache}/lumetwin}"
lumetwin_logs="$lumetwin_cache/logs"
lumetwin_ticker=

say() { printf 'lumetwin: %s\n' "$*"; }

# die MESSAGE…: prints the error and ends the script.
die() {
    printf 'lumetwin: error: %s\n' "$*" >&2
    exit 1
}

# disk_full: whether a folder that set-up writes to has less than one megabyte free.
disk_full() {
    local place
    for place in "$lumetwin_cache" "$lumetwin_root" "${TMPDIR:-/tmp}" /var/cache /usr; do
        df -Pk "$place" 2>/dev/null | awk 'NR == 2 && $4 < 1024 {found = 1} END {exit !found}' && return 0
    done
    return 1
}

# explain LOG: prints in one line why a step failed.
explain() {
    local unknown='unable to locate package|has no installation candidate|unable to find a source package'
    local unreachable='temporary failure resolving|could not resolve|could not connect|failed to fetch|network is unreachable|connection (timed out|refused)'
    if grep -qiE 'no space left on device|not enough free space|enough space in|disk quota' "$1" || disk_full; then
        echo "the disk is full"
    elif grep -qiE 'could not get lock|unable to acquire the dpkg|unable to lock' "$1"; then
        echo "apt is in use by another program$(grep -oiE 'process [0-9]+( \([^)]*\))?' "$1" | tail -n 1 | sed 's/^/, /'): try again when it has finished"
    elif grep -qiE "$unreachable" "$1"; then
        echo "the package mirror cannot be reached (is the network up?)"
    elif grep -qiE "$unknown" "$1"; then
        grep -iE "$unknown" "$1" | head -n 1 | sed 's/^E: //'
    else
        grep -iE 'error|fatal|^E: ' "$1" | grep -v '^ninja: ' | tail -n 1 | cut -c1-200
    fi
}

# start_ticker NAME START: prints a line every 30 seconds while a step runs. It ends with the script, even when the
# script is killed.
start_ticker() {
    (
        trap - EXIT INT TERM
        while sleep 30 >/dev/null 2>&1 && kill -0 $$ 2>/dev/null; do
            printf 'lumetwin: %s … %d s\n' "$1" "$((SECONDS - $2))"
        done
    ) 9>&- &
    lumetwin_ticker=$!
}

stop_ticker() {
    [ -n "$lumetwin_ticker" ] || return 0
    kill "$lumetwin_ticker" 2>/dev/null || true
    wait "$lumetwin_ticker" 2>/dev/null || true
    lumetwin_ticker=
}

trap stop_ticker EXIT
trap 'printf "\n"; say "interrupted; the next call continues where this one stopped" >&2; exit 130' INT
trap 'exit 143' TERM

# logged NAME COMMAND…: runs the command with its output in a log ($step_log), prints how long it took, and returns the
# command's status.
logged() {
    local name=$1 began=$SECONDS code=0
    shift
    step_log="$lumetwin_logs/${name//[^A-Za-z0-9.]/-}.log"
    mkdir -p "$lumetwin_logs" 2>/dev/null && : 2>/dev/null >"$step_log" ||
        die "cannot write to $lumetwin_cache$(disk_full && echo ': the disk is full')"
    printf 'lumetwin: %s … (log: %s)\n' "$name" "$step_log"
    start_ticker "$name" "$began"
    # Force English messages, because explain searches them.
    (
        export LC_ALL=C.UTF-8
        "$@"
    ) >"$step_log" 2>&1 </dev/null || code=$?
    stop_ticker
    step_seconds=$((SECONDS - began))
    [ $code -ne 0 ] || say "$name: done in $step_seconds s"
    return $code
}

# step_failed NAME [REASON]: ends the script with the given reason, or with the one found in the last step's log.
step_failed() {
    # In CI nobody can open the log later, so print its end.
    [ -z "${CI:-}" ] || tail -n 60 "$step_log" >&2
    die "$1 failed after $step_seconds s: ${2:-$(explain "$step_log")}; see $step_log"
}

# step NAME COMMAND…: runs a logged command. Ends the script when it fails.
step() {
    logged "$@" || step_failed "$1"
}

# need_root WHAT: ends the script with a message when this user cannot become root. Asks for sudo's password now, while
# its prompt can be seen.
need_root() {
    [ "$(id -u)" -ne 0 ] || return 0
    command -v sudo >/dev/null || die "$1 needs root: run it as root, or install sudo"
    sudo -n true 2>/dev/null && return 0
    { : >/dev/tty; } 2>/dev/null || die "$1 needs root, and sudo cannot ask for a password without a terminal"
    sudo -v || die "$1 needs root, and sudo refused"
}

# as_root COMMAND…: runs a command as root. Only apt needs this.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}
