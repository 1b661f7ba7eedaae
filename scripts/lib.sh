# shellcheck shell=bash
# Shared by the scripts in this folder: paths, messages, root rights, the Wine prefix and the private X display. This
# file is sourced, never run. It sets ROOT and other variables and starts nothing by itself.

set -euo pipefail

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
BUILD="$ROOT/build"
DIST="$BUILD/dist"
THIRD="$ROOT/third_party"
# The file where setup stores facts about this machine (KEY=value lines, e.g. WINE32=yes).
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

# quietly LOGFILE COMMAND...: runs the command with its output in the log; on failure prints the last lines of the log.
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

state_get() {
    if [ -f "$STATE" ]; then sed -n "s/^$1=//p" "$STATE" | tail -n 1; fi
}

state_set() {
    mkdir -p "$(dirname "$STATE")"
    local rest=""
    if [ -f "$STATE" ]; then rest="$(grep -v "^$1=" "$STATE" || true)"; fi
    { [ -z "$rest" ] || printf '%s\n' "$rest"; printf '%s=%s\n' "$1" "$2"; } >"$STATE.new"
    mv "$STATE.new" "$STATE"
}

# --- Paths of Linux and of Windows --------------------------------------------------------------------------------

# windows_path UNIXPATH: prints the path that Wine has for this file (drive Z: is the root of this machine).
windows_path() {
    local path="$1"
    case "$path" in
        /*) ;;
        *) path="$PWD/$path" ;;
    esac
    printf 'Z:%s' "${path//\//\\}"
}

# --- Cleaning up ---------------------------------------------------------------------------------------------------

XVFB_PID=""
WINE_STARTED=""

# Ends the X server and the Wine processes that this script started.
cleanup() {
    if [ -n "$WINE_STARTED" ]; then
        wineserver -k >/dev/null 2>&1 || true
        WINE_STARTED=""
    fi
    if [ -n "$XVFB_PID" ]; then
        kill "$XVFB_PID" 2>/dev/null || true
        wait "$XVFB_PID" 2>/dev/null || true
        XVFB_PID=""
    fi
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# --- X display ------------------------------------------------------------------------------------------------------

# Starts a private X server on a free number and sets DISPLAY.
start_xvfb() {
    local number_file number=""
    number_file="$(mktemp)"
    Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 3>"$number_file" >/dev/null 2>&1 &
    XVFB_PID=$!
    for _ in $(seq 1 100); do
        number="$(cat "$number_file")"
        [ -n "$number" ] && break
        kill -0 "$XVFB_PID" 2>/dev/null || break
        sleep 0.1
    done
    rm -f "$number_file"
    [ -n "$number" ] || die "the X server (Xvfb) did not start"
    export DISPLAY=":$number"
    # A desktop has X resources. Where there are none, libX11 looks for their files at each font that Wine selects,
    # which took a quarter of the editor's time.
    mkdir -p "$BUILD"
    printf '*kvx: none\n' >"$BUILD/x-resources"
    export XENVIRONMENT="$BUILD/x-resources"
}

# --- Wine -----------------------------------------------------------------------------------------------------------

# use_wine FOLDER: makes the folder the Wine prefix of this script and creates it once. The tests use another folder
# than the default, so that they do not affect a program in use: each prefix has its own processes, registry and
# desktop.
use_wine() {
    export WINEPREFIX="$1"
    # The .NET and HTML engines are turned off, because Wine would ask to download them.
    export WINEDLLOVERRIDES="mscoree,mshtml="
    export WINEDEBUG="${WINEDEBUG:--all}"
    # File names outside ASCII need a UTF-8 locale. A fixed locale also gives the same regional settings on every
    # machine.
    export LC_ALL=C.UTF-8
    unset LANG LANGUAGE
    have wine || die "Wine is not installed; run scripts/setup"
    WINE_STARTED=yes
    local made="$WINEPREFIX/kvx-prefix-7"
    [ -f "$made" ] && return 0
    say "making the Wine prefix $WINEPREFIX (once, up to a minute)"
    rm -rf "$WINEPREFIX"
    mkdir -p "$(dirname "$WINEPREFIX")"
    quietly "$BUILD/logs/wineboot.log" timeout -k 10 240 wine wineboot -i || die "wineboot failed"
    quietly "$BUILD/logs/winecfg.log" timeout -k 10 60 wine winecfg -v win10 || die "winecfg failed"
    # The caption buttons and other signs are letters of these fonts, which Debian's Wine does not find by itself.
    local font
    for font in marlett symbol webdings wingding; do
        if [ -f "/usr/share/wine/fonts/$font.ttf" ]; then
            mkdir -p "$WINEPREFIX/drive_c/windows/Fonts"
            cp "/usr/share/wine/fonts/$font.ttf" "$WINEPREFIX/drive_c/windows/Fonts/"
        fi
    done
    local settings="$WINEPREFIX/kvx.reg"
    # Wine gets one desktop of a known size inside the X screen, so that captions and focus work without a window
    # manager. Fonts of Windows that Wine lacks are replaced by similar ones that may be smoothed at small sizes; the
    # Liberation fonts may not. A crash ends the program instead of opening a dialog.
    cat >"$settings" <<'REG'
REGEDIT4

[HKEY_CURRENT_USER\Software\Wine\Explorer]
"Desktop"="kvx"

[HKEY_CURRENT_USER\Software\Wine\Explorer\Desktops]
"kvx"="1280x900"

[HKEY_CURRENT_USER\Software\Wine\Fonts\Replacements]
"Segoe UI"="Open Sans"
"Consolas"="Hack"
"Courier New"="Hack"
"Lucida Console"="Hack"

[HKEY_CURRENT_USER\Control Panel\Desktop]
"FontSmoothing"="2"
"FontSmoothingType"=dword:00000001
"FontSmoothingGamma"=dword:00000578
"FontSmoothingOrientation"=dword:00000001

[HKEY_CURRENT_USER\Software\Wine\WineDbg]
"ShowCrashDialog"=dword:00000000
REG
    quietly "$BUILD/logs/wine-settings.log" timeout -k 10 60 wine regedit /S "$(windows_path "$settings")" ||
        die "could not write the settings of the Wine prefix"
    timeout -k 10 60 wineserver -w || true
    touch "$made"
}

# --- CMake ------------------------------------------------------------------------------------------------------------

# configure PRESET FOLDER TESTS: runs CMake the first time, and again when tests are wanted that were left out then. A
# build without tests needs neither GoogleTest nor a 32-bit compiler.
configure() {
    local preset="$1" folder="$2" tests="$3"
    if [ -f "$folder/build.ninja" ]; then
        if [ "$tests" = OFF ] || ! grep -qx 'KVX_TESTS:BOOL=OFF' "$folder/CMakeCache.txt"; then return 0; fi
    fi
    say "configuring ($preset)"
    (cd "$ROOT" && quietly "$BUILD/logs/configure-$preset.log" cmake --preset "$preset" -DKVX_TESTS="$tests") ||
        die "configuring '$preset' failed"
}

# Configures the build with clang, also again, because the list of commands must have every source of today.
configure_clang() {
    quietly "$BUILD/logs/configure-windows-clang.log" cmake -S "$ROOT" --preset windows-clang
}

# --- One at a time ----------------------------------------------------------------------------------------------------

# locked NAME COMMAND...: runs the command while no other script holds the lock. Two builds in one folder at the same
# time would damage each other, so the second one waits. The command does not get the lock's file: a process that it
# leaves behind would hold the lock for as long as it lives.
locked() {
    local name="$1" status=0; shift
    mkdir -p "$BUILD"
    exec 9>"$BUILD/.$name.lock"
    if ! flock -n 9; then
        say "waiting for another '$name' in this folder to end"
        flock -w 3600 9 || die "another '$name' has not ended within an hour"
    fi
    "$@" 9>&- || status=$?
    exec 9>&-
    return "$status"
}
