#!/usr/bin/env bash
# Checks this project's sources with clang for Windows: the editor builds, and every other source compiles, without a
# warning (cmake/options.cmake), and clang-tidy finds none of the faults that .clang-tidy lists in src/.
#
#   check_clang.sh BUILD-FOLDER            all sources, in a folder that CMake has configured for clang; one line a
#                                          fault, the last line counts
#   check_clang.sh BUILD-FOLDER SOURCE...  only these; nothing is linked
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
# One line for each source and command: the path, the object file, the command, parted by tabs. One source of the
# debugger's tests makes several programs.
awk -v root="$root/" '
    index($NF, root) == 1 && substr($NF, length(root) + 1) ~ /^(src|tests|bench|samples)\/.*\.(cpp|c)$/ {
        source = $NF
        object = $(NF - 2)
        sub(/ -o [^ ]+ -c [^ ]+$/, "")
        if (source ~ /\.c$/ || !seen[source]++) print source "\t" object "\t" $0
    }' "$work/commands" | sort >"$work/all"
if [ $# -gt 0 ]; then
    for source in "$@"; do
        awk -F '\t' -v source="$(realpath "$source")" '$1 == source' "$work/all"
    done >"$work/sources"
else
    cp "$work/all" "$work/sources"
fi
[ -s "$work/sources" ] || { echo "clang: none of the sources is in $build/compile_commands.json" >&2; exit 1; }
awk -F '\t' -v root="$root/src/" -v work="$work" \
    '{ print >(work (index($1, root) == 1 ? "/program" : "/others")) }' "$work/sources"
touch "$work/program" "$work/others"

# --- Warnings ------------------------------------------------------------------------------------------------------------

cd "$build"
mapfile -t targets < <([ $# -eq 0 ] && echo KVX-Editor || cut -f 2 "$work/program")
if [ "${#targets[@]}" -gt 0 ] && ! ninja -k 0 -j "$jobs" "${targets[@]}" >"$work/log" 2>&1; then
    # The last line tells of a failure that is no compiler's.
    (grep -E ': (fatal )?(error|warning): ' "$work/log" || tail -n 1 "$work/log") >>"$work/told"
fi

# The others are only read; to make them, the tests' libraries would have to be built.
only_read() {
    # The precompiled headers, as the build makes them.
    sed -nE 's/.* -include-pch -Xclang ([^ ]+) .*/\1/p' "$work/others" | sort -u | while read -r header; do
        grep -F -- "-o ${header#"$build/"} -c" "$work/commands"
    done | xargs -d '\n' -r -P "$jobs" -n 1 sh -c
    awk -F '\t' '{ print $3 " -fsyntax-only " $1 " 2>&1 || true" }' "$work/others" |
        xargs -d '\n' -r -P "$jobs" -n 1 sh -c
}
only_read >"$work/log" 2>&1 || tail -n 1 "$work/log" >>"$work/told"
grep -E ': (fatal )?(error|warning): ' "$work/log" >>"$work/told" || true
sed "s#$root/##" "$work/told" 2>/dev/null | sort -u >"$work/warnings" || true

# --- clang-tidy ------------------------------------------------------------------------------------------------------------

# A file with the headers of Windows takes clang-tidy 4 s, nearly all of it for those headers. So the files that are
# compiled by one command are read in groups. Neighbours are in different groups, because they have more names in common.
mkdir "$work/groups"
awk -F '\t' -v folder="$work/groups" -v size=20 '
    {
        if (!($3 in kind)) { kind[$3] = ++kinds; command[kinds] = $3 " -fsyntax-only -fno-caret-diagnostics" }
        source[kind[$3], ++count[kind[$3]]] = $1
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
    }' "$work/program"

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
tidy_status=0
find "$work/groups" -name '*.cpp' | sort | xargs -r -P "$jobs" -n 1 \
    clang-tidy --quiet -p "$work" --config-file="$root/.clang-tidy" >"$work/log" 2>"$work/tidy_log" || tidy_status=$?
sed "s#$root/##" "$work/log" | { grep -E '^src/.*: warning: |: error: ' || true; } | sort -u >"$work/findings"
# It ends well when it has findings, and badly when it could not read a file.
if [ "$tidy_status" -ne 0 ] && ! [ -s "$work/findings" ]; then tail -n 1 "$work/tidy_log" >"$work/findings"; fi

sed 's/^/    /' "$work/warnings" "$work/findings"
failed=$(($(wc -l <"$work/warnings") + $(wc -l <"$work/findings")))
echo "clang: $(($(wc -l <"$work/sources"))) files; $([ -s "$work/warnings" ] || echo no warning)"
echo "clang: $((failed == 0)) passed, $failed failed"
[ "$failed" -eq 0 ]
