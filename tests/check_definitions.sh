#!/usr/bin/env bash
# Checks that no function is defined twice: the same name and parameters, visible outside its file, in two files of one
# program. The linker reports two ordinary functions. Of two inline or constexpr functions it silently keeps one, or the
# compiler expands each in its own file.
#
# The debug information is read, not the symbols, because it names the file and line of every definition, also of a
# function that is expanded at every call and has no symbol. -g1 suffices, at any optimisation level. A function that no
# source calls is in no object file and is not checked.
#
#   check_definitions.sh BUILD-FOLDER     one line a fault; the last line counts
set -euo pipefail

build="${1:?the folder of a build}"
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

# The object files of this project. Their path names the target that they belong to.
# An object stays in the build folder when its source is moved or deleted; it is in no program then.
find "$build" \( -name '*.cpp.o' -o -name '*.cpp.obj' \) -path '*.dir/*' ! -path '*/third_party/*' ! -path '*/gtest/*' |
    sort | while read -r object; do
    source="$(sed -E 's#.*/CMakeFiles/[^/]+\.dir/##; s#\.(o|obj)$##' <<<"$object")"
    folder="${object%/CMakeFiles/*}"
    folder="${folder#"$build"}"
    if [ -f "$root/${folder#/}/$source" ]; then echo "$object"; fi
done >"$work/objects"
[ -s "$work/objects" ] || { echo "definitions: no object files in $build" >&2; exit 1; }

# Prints "target symbol place name" for each definition that is visible outside its file and is in this project's
# sources. The folder is left out of the place, because it may be named in several ways; a compiler cache may name the
# folder of another clone.
definitions() {
    llvm-dwarfdump --debug-info "$@" | awk '
        function put() {
            inside = 0
            if (!external || declared || symbol == "" || file ~ /^\/usr\/(include|lib|share|src\/googletest)\//) return
            while (sub(/[^\/]+\/\.\.\//, "", file)) {}
            if (!match(file, /\/(src|tests|bench|samples\/toolchain)\//)) return
            print target, symbol, substr(file, RSTART + 1) ":" line, name
        }
        # The line is "PATH.dir/src/area/file.cpp.obj:  file format ...".
        /:[ \t]+file format / {
            if (inside) put()
            target = $0
            sub(/\.dir\/.*/, "", target); sub(/.*\//, "", target)
            next
        }
        /^0x[0-9a-f]+: / {
            if (inside) put()
            if ($2 == "DW_TAG_subprogram") { inside = 1; external = declared = 0; symbol = file = line = name = "" }
            next
        }
        !inside { next }
        $1 == "DW_AT_external" { external = 1 }
        $1 == "DW_AT_declaration" { declared = 1 }
        $1 == "DW_AT_linkage_name" { symbol = $2; gsub(/[("")]/, "", symbol) }
        $1 == "DW_AT_name" { name = $2; gsub(/[("")]/, "", name) }
        $1 == "DW_AT_decl_line" { line = $2; gsub(/[()]/, "", line) }
        $1 == "DW_AT_decl_file" { file = $0; sub(/.*\("/, "", file); sub(/"\).*/, "", file) }
        END { if (inside) put() }'
}
export -f definitions

xargs -P "$(nproc)" -n 40 bash -c 'definitions "$@" >"'"$work"'/found.$$"' definitions <"$work/objects"
sort -u "$work"/found.* >"$work/all"
[ -s "$work/all" ] || { echo "definitions: the object files have no debug information" >&2; exit 1; }

# A library (kvx_*) may be part of any program, so its definitions are compared with all others. Definitions of two
# programs are not compared.
awk '
    { target[NR] = $1; symbol[NR] = $2; place[NR] = $3; name[NR] = $4; of[$2] = of[$2] " " NR }
    END {
        for (s in of) {
            n = split(of[s], row, " ")
            for (i = 1; i <= n; i++)
                for (j = i + 1; j <= n; j++) {
                    a = row[i]; b = row[j]
                    if (place[a] == place[b] || seen[place[a], place[b]]++) continue
                    if (target[a] != target[b] && target[a] !~ /^kvx_/ && target[b] !~ /^kvx_/) continue
                    print name[a] ": " place[a] " and " place[b]
                }
        }
    }' "$work/all" | sort -u >"$work/faults"

sed 's/^/    /' "$work/faults"
faults="$(wc -l <"$work/faults")"
echo "definitions: $((faults == 0)) passed, $faults failed"
[ "$faults" -eq 0 ]
