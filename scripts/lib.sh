# shellcheck shell=bash
# Shared by the scripts beside it: places, messages, privileges, the Wine prefix and the private X display.
# Sourced, never run. Sets ROOT and friends; starts nothing by itself.

set -euo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
BUILD="$ROOT/build"
DIST="$BUILD/dist"
THIRD="$ROOT/third_party"
# Where setup keeps what it knows about this machine (KEY=value lines, e.g. WINE32=yes).
STATE="$BUILD/setup.state"
export ROOT BUILD DIST THIRD STATE

SELF="$(basename "${0:-script}")"

say()  { printf '[%s] %s\n' "$SELF" "$*"; }
warn() { printf '[%s] warning: %s\n' "$SELF" "$*" >&2; }
die()  { printf '[%s] FAILED: %s\n' "$SELF" "$*" >&2; exit 1; }

have() { command -v "$1" >/dev/null 2>&1; }

# Runs a command as root: directly, or through sudo.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif have sudo; then
        sudo -- "$@"
    else
        die "'$*' needs root and there is no sudo; run scripts/setup as root once"
    fi
}

# quietly LOGFILE COMMAND...: output to the log; on failure its last lines are shown.
quietly() {
    local log="$1"; shift
    mkdir -p "$(dirname "$log")"
    local status=0
    "$@" >"$log" 2>&1 || status=$?
    if [ "$status" -ne 0 ]; then
        warn "'$*' ended with status $status; the end of $log:"
        tail -n 30 "$log" >&2 || true
    fi
    return "$status"
}

state_get() { [ -f "$STATE" ] && sed -n "s/^$1=//p" "$STATE" | tail -n 1 || true; }

state_set() {
    mkdir -p "$(dirname "$STATE")"
    local rest=""
    [ -f "$STATE" ] && rest="$(grep -v "^$1=" "$STATE" || true)"
    { [ -n "$rest" ] && printf '%s\n' "$rest"; printf '%s=%s\n' "$1" "$2"; } >"$STATE.new"
    mv "$STATE.new" "$STATE"
}
