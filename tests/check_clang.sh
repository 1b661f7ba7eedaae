#!/usr/bin/env bash
# Checks this project's sources with clang: each compiles for Windows without a warning (cmake/options.cmake), and
# clang-tidy finds none of the faults that .clang-tidy lists in src/. Nothing is linked. The list of commands is that of
# a folder which scripts/build --clang has configured.
#
#   check_clang.sh BUILD-FOLDER            all sources; one line a fault, the last line counts
#   check_clang.sh BUILD-FOLDER SOURCE...  only these
set -euo pipefail

build="$(cd "${1:?the folder of a build with clang}" && pwd)"
shift
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
export jobs="${KVX_JOBS:-$(nproc)}"

work="$(mktemp -d)"
export work
trap 'rm -rf "$work"' EXIT

# --- The commands ------------------------------------------------------------------------------------------------------

sed -n 's/^  "command": "\(.*\)",$/\1/p' "$build/compile_commands.json" | sed 's/\\"/"/g; s/\\\\/\\/g' >"$work/commands"
# One line a source: its path, a tab, the command that only checks a file which is named behind it.
awk -v root="$root/" '
    index($NF, root) == 1 && substr($NF, length(root) + 1) ~ /^(src|tests|bench|samples)\/.*\.cpp$/ && !seen[$NF]++ {
        source = $NF
        sub(/ -o [^ ]+ -c [^ ]+$/, "")
        print source "\t" $0 " -fsyntax-only -fno-caret-diagnostics -fno-color-diagnostics"
    }' "$work/commands" | sort >"$work/all"
if [ $# -gt 0 ]; then
    for source in "$@"; do
        awk -F '\t' -v source="$(realpath "$source")" '$1 == source' "$work/all"
    done >"$work/sources"
else
    cp "$work/all" "$work/sources"
fi
[ -s "$work/sources" ] || { echo "clang: none of the sources is in $build/compile_commands.json" >&2; exit 1; }

cd "$build"
# The precompiled headers, as the build makes them.
grep 'cmake_pch\.hxx\.cxx$' "$work/commands" | xargs -d '\n' -r -P "$jobs" -n 1 sh -c || exit 1

# --- Warnings ------------------------------------------------------------------------------------------------------------

sed 's/^\([^\t]*\)\t\(.*\)$/\2 \1 2>\&1 || true/' "$work/sources" | xargs -d '\n' -P "$jobs" -n 1 sh -c |
    sed "s#$root/##" | grep -E ': (fatal )?(error|warning): ' | sort -u >"$work/warnings" || true

# --- clang-tidy ------------------------------------------------------------------------------------------------------------

# A file with the headers of Windows takes clang-tidy 4 s, nearly all of it for those headers. So the files that are
# compiled by one command are read in groups. Neighbours are in different groups, because they have more names in common.
mkdir "$work/groups"
awk -F '\t' -v root="$root/src/" -v folder="$work/groups" -v size=20 '
    index($1, root) == 1 {
        if (!($2 in kind)) { kind[$2] = ++kinds; command[kinds] = $2 }
        source[kind[$2], ++count[kind[$2]]] = $1
    }
    END {
        for (k = 1; k <= kinds; k++) {
            groups = int((count[k] + size - 1) / size)
            for (i = 1; i <= count[k]; i++) {
                name = folder "/" k "_" (i % groups)
                print "#include \"" source[k, i] "\"" >name ".cpp"
                print command[k] >name ".command"
            }
        }
    }' "$work/sources"

# Takes out of a group the files that give a name of their own to something else than a file before them; each is read
# alone. A clash in a header is told of the first file only that includes it, so what is left is looked at again.
part_group() {
    local group="$1" clash number=0 line
    while :; do
        clash="$(sh -c "$(head -n 1 "$group.command") -w -ferror-limit=0 $group.cpp" 2>&1 |
            sed -nE 's#^(In file included from )?([^:]*/src/[^:]*\.cpp):[0-9]+(:[0-9]+: (fatal )?error: .*|[:,])$#\2#p' |
            sort -u | grep -vxF "$(sed -n '1s/.* "\(.*\)"/\1/p' "$group.cpp")" || true)"
        [ -n "$clash" ] || return 0
        mv "$group.cpp" "$group.whole"
        while read -r line; do
            if grep -qxF "$(sed 's/.* "\(.*\)"/\1/' <<<"$line")" <<<"$clash"; then
                number=$((number + 1))
                echo "$line" >"${group}_$number.cpp"
                cp "$group.command" "${group}_$number.command"
            else
                echo "$line" >>"$group.cpp"
            fi
        done <"$group.whole"
    done
}
export -f part_group
find "$work/groups" -name '*.cpp' | sed 's/\.cpp$//' | xargs -r -P "$jobs" -n 1 bash -c 'part_group "$0"'

shopt -s nullglob
for group in "$work"/groups/*.cpp; do
    command="$(head -n 1 "${group%.cpp}.command" | sed 's/ -Werror / /; s/\\/\\\\/g; s/"/\\"/g')"
    printf '{ "directory": "%s", "file": "%s", "command": "%s" },\n' "$build" "$group" "$command $group"
done | sed '1s/^/[/; $s/,$/]/' >"$work/compile_commands.json"
find "$work/groups" -name '*.cpp' | sort | xargs -r -P "$jobs" -n 1 \
    clang-tidy --quiet -p "$work" --config-file="$root/.clang-tidy" 2>/dev/null |
    sed "s#$root/##" | grep -E '^src/.*: warning: |: error: ' | sort -u >"$work/findings" || true

sed 's/^/    /' "$work/warnings" "$work/findings"
failed=$(($(wc -l <"$work/warnings") + $(wc -l <"$work/findings")))
echo "clang: $(($(wc -l <"$work/sources"))) files; $([ -s "$work/warnings" ] || echo no warning)"
echo "clang: $((failed == 0)) passed, $failed failed"
[ "$failed" -eq 0 ]
