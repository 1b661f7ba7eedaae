#!/usr/bin/env bash
# Makes the packages twice and compares them, then installs, starts, checks and removes the editor under Wine. Prints a
# line for each fault; the last line counts. Takes about three minutes.
# shellcheck source=scripts/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/../scripts/lib.sh"

passed=0
failed=0
check() {
    local name="$1"; shift
    if "$@"; then passed=$((passed + 1)); else failed=$((failed + 1)); echo "package: $name"; fi
}

# Settings, the session and the changed sample stay.
no_file_of() { [ -z "$(find "$1" -type f ! -name 'Editor.ini*' ! -path '*/samples/hello.bas' 2>/dev/null)" ]; }
registered() { wine reg query 'HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\KVX-Editor' >/dev/null 2>&1; }
not_registered() { ! registered; }
in_shell() { wine reg query 'HKCU\Software\Classes' /s 2>/dev/null | grep -qi 'Programs.KVX-Editor.KVX-Editor\.exe'; }
not_in_shell() { ! in_shell; }

install() { timeout -k 10 120 wine "$(windows_path "$1")" /S; }
refuses() { local status=0; "$@" || status=$?; [ "$status" -eq 2 ]; }

# Every page and picture that a page of the documentation names is in the folder.
pages_are_whole() {
    local name
    for name in $(grep -ohE '(src|href)="[^"]*"' "$1"/docs/*.html | cut -d '"' -f 2 | grep -v '^https*:' | sort -u); do
        [ -f "$1/docs/$name" ] || { echo "    docs/$name is missing"; return 1; }
    done
    [ -f "$1/docs/tour.html" ]
}

# Installing over a running editor and removing it are refused, and harm nothing.
running_is_kept() {
    local program="$1/KVX-Editor.exe" setup="$2" before status=0
    before="$(cksum <"$program")"
    rm -f "$1/Editor.ini"
    (cd "$1" && exec wine KVX-Editor.exe --new) >/dev/null 2>&1 &
    for _ in $(seq 1 100); do [ ! -f "$1/Editor.ini" ] || break; sleep 0.2; done  # it is written at a first start
    refuses install "$setup" || { echo "    the installer does not refuse"; status=1; }
    refuses uninstall "$1" || { echo "    the uninstaller does not refuse"; status=1; }
    wineserver -k  # taskkill does not find it
    wait $!
    registered && [ "$before" = "$(cksum <"$program")" ] && [ "$status" -eq 0 ]
}
# The uninstaller copies itself and goes on there, unless it is told its folder.
uninstall() { timeout -k 10 120 wine "$(windows_path "$1/Uninstall.exe")" /S "_?=$(winepath -w "$1" 2>/dev/null)"; }

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
    check "the documentation is not whole" pages_are_whole "$(echo "$work"/KVX-Editor-*)"

    user="$(wine cmd /c 'echo %LOCALAPPDATA%' 2>/dev/null | tr -d '\r')"
    installed="$(winepath -u "$user" 2>/dev/null)/Programs/KVX-Editor"
    rm -rf "$installed"
    check "the installer ends with an error" install "$setup"
    check "the editor is not installed" test -f "$installed/KVX-Editor.exe"
    check "the installation is not listed" registered
    check "the editor is not offered for source files" in_shell
    check "the installed editor fails its own test" self_test "$installed"
    check "an editor that runs is not kept as it is" running_is_kept "$installed" "$setup"
    echo "' mine" >>"$installed/samples/hello.bas"
    printf '[Editor]\r\nFontSize=17\r\n' >"$installed/Editor.ini"
    check "the installer ends with an error over an installation" install "$setup"
    check "a newer version takes the settings away" grep -q FontSize=17 "$installed/Editor.ini"
    check "a newer version takes a changed sample away" grep -q "^' mine" "$installed/samples/hello.bas"
    check "the uninstaller ends with an error" uninstall "$installed"
    rm -f "$installed/Uninstall.exe"
    check "something is left of the program" no_file_of "$installed"
    check "the settings are gone" test -f "$installed/Editor.ini"
    check "a changed sample is gone" grep -q "^' mine" "$installed/samples/hello.bas"
    check "the installation is still listed" not_registered
    check "the editor is still offered for source files" not_in_shell
    rm -rf "$installed" "$work"
    echo "package: $passed passed, $failed failed"
    [ "$failed" -eq 0 ]
}

main "$@"
