#!/usr/bin/env bash
# Makes the packages twice and compares them, then installs, starts, checks and removes the editor under Wine. Prints a
# line for each fault; the last line counts. Takes about two minutes.
# shellcheck source=scripts/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/../scripts/lib.sh"

passed=0
failed=0
check() {
    local name="$1"; shift
    if "$@"; then passed=$((passed + 1)); else failed=$((failed + 1)); echo "package: $name"; fi
}

no_file_of() { [ -z "$(find "$1" -type f ! -name Editor.ini 2>/dev/null)" ]; }
registered() { wine reg query 'HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\KVX-Editor' >/dev/null 2>&1; }
not_registered() { ! registered; }
in_shell() { wine reg query 'HKCU\Software\Classes' /s 2>/dev/null | grep -qi 'Programs.KVX-Editor.KVX-Editor\.exe'; }
not_in_shell() { ! in_shell; }

# self_test FOLDER: the installed editor checks itself.
self_test() {
    local out="$BUILD/logs/package-selftest.log"
    (cd "$1" && timeout -k 10 400 wine KVX-Editor.exe --test-all </dev/null >"$out" 2>/dev/null) && grep -q ' 0 failed, ' "$out" && return 0
    grep -v '^ok' "$out" | sed 's/^/    /'
    return 1
}

main() {
    local out="$BUILD/package" work="$BUILD/package-check" first="$BUILD/package-first.sums" setup user installed
    "$ROOT/scripts/package" >"$BUILD/logs/package.log" 2>&1 || { echo "package: it is not made"; echo "package: 0 passed, 1 failed"; return 1; }
    cp "$out/SHA256SUMS" "$first"
    sleep 1.1
    "$ROOT/scripts/package" >"$BUILD/logs/package.log" 2>&1
    check "the second time gives other bytes" cmp -s "$first" "$out/SHA256SUMS"
    setup="$(echo "$out"/*-setup.exe)"

    start_xvfb
    rm -rf "$work"
    use_wine "${KVX_WINEPREFIX:-$BUILD/wineprefix-test}"
    mkdir -p "$work"
    (cd "$work" && cmake -E tar xf "$(echo "$out"/*-portable.zip)")
    check "the portable editor fails its own test" self_test "$(echo "$work"/KVX-Editor-*)"

    user="$(wine cmd /c 'echo %LOCALAPPDATA%' 2>/dev/null | tr -d '\r')"
    installed="$(winepath -u "$user" 2>/dev/null)/Programs/KVX-Editor"
    rm -rf "$installed"
    check "the installer ends with an error" timeout -k 10 120 wine "$(windows_path "$setup")" /S
    check "the editor is not installed" test -f "$installed/KVX-Editor.exe"
    check "the installation is not listed" registered
    check "the editor is not offered for source files" in_shell
    check "the installed editor fails its own test" self_test "$installed"
    # The uninstaller copies itself and goes on there, unless it is told its folder.
    check "the uninstaller ends with an error" timeout -k 10 120 wine "$(windows_path "$installed/Uninstall.exe")" /S "_?=$(winepath -w "$installed" 2>/dev/null)"
    rm -f "$installed/Uninstall.exe"
    check "something is left of the program" no_file_of "$installed"
    check "the settings are gone" test -f "$installed/Editor.ini"
    check "the installation is still listed" not_registered
    check "the editor is still offered for source files" not_in_shell
    rm -rf "$installed" "$work"
    echo "package: $passed passed, $failed failed"
    [ "$failed" -eq 0 ]
}

main "$@"
