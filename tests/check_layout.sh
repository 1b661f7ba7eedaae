#!/usr/bin/env bash
# Checks rules that no compiler checks: which folder may include which, what a pure file must not use, the length of
# files, and that the texts refer to nothing outside the project. Prints one line for each fault; the last line counts.
# Needs only a shell, awk, grep and find.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "${1:-$root}"

# A folder may include itself and the folders before it. So no folder can reach one to its right through any number of
# headers, and no two folders can include each other. Every folder may include resources/ids.h.
folders="base files settings ui scintilla language editor documents tabs output program compile disasm debugger debugui project session recovery search symbols completion ai commands settingsui selftest app"
longest=600

faults="$(mktemp)"
trap 'rm -f "$faults"' EXIT

# check NAME COMMAND...: runs the command; each line that it prints is a fault.
checks=0
failed=0
check() {
    local name="$1"; shift
    checks=$((checks + 1))
    "$@" >"$faults"
    if [ -s "$faults" ]; then
        failed=$((failed + 1))
        echo "layout: $name:"
        sed 's/^/    /' "$faults"
    fi
}

sources() { find src -type f \( -name '*.cpp' -o -name '*.h' \) | sort; }
pure_sources() { find src -type f -name '*.cpp' ! -name '*_win.cpp' | sort; }

# Lists every text file of this project.
texts() {
    find . -name .git -prune -o -path ./build -prune -o -path ./third_party -prune -o \
        -type f ! -name '*.ico' ! -name '*.png' ! -path './tests/fuzz/corpus/*' -print | sort
}

include_direction() {
    sources | xargs -r awk -v folders="$folders" '
        BEGIN { n = split(folders, name, " "); for (i = 1; i <= n; i++) rank[name[i]] = i }
        FNR == 1 {
            split(FILENAME, part, "/"); own = part[2]
            if (own != "resources" && !(own in rank)) print FILENAME ": the folder " own " has no place in the order"
        }
        /^[ \t]*#[ \t]*include[ \t]*"/ {
            header = $0; sub(/^[^"]*"/, "", header); sub(/".*/, "", header)
            if (header == "resources/ids.h") next
            if (index(header, "/") == 0) { print FILENAME ":" FNR ": name the folder: \"" header "\""; next }
            split(header, part, "/")
            if (!(part[1] in rank)) print FILENAME ":" FNR ": no such folder: \"" header "\""
            else if (rank[part[1]] > rank[own]) print FILENAME ":" FNR ": " own "/ must not include \"" header "\""
        }'
}

# Each area declares its part of the global record in its own header; only app/ and selftest/ use the whole record. A
# global that is declared in no header could be used from anywhere.
global_record() {
    sources | grep -vE '^src/(app|selftest)/' | xargs -r grep -nH '\bg_app\.' || true
    find src -type f -name '*.cpp' | sort | xargs -r grep -nHE '^[ \t]*extern [^"]' | sed 's/$/  (declare it in a header)/' || true
}

# Only _win files may use Windows and the global record.
pure_files() {
    pure_sources | xargs -r grep -nHiE \
        '#[ \t]*include[ \t]*<(windows|windowsx|winuser|wingdi|winbase|commctrl|commdlg|richedit|shellapi|shlwapi|shlobj|shobjidl|winhttp|wincrypt|dpapi|uxtheme|dwmapi|tlhelp32|psapi|unistd|sys/[a-z]+)\.h>|(^|[^_[:alnum:]])g_(app|[a-z]+[A-Z]?[a-z]*)\.|_state\.h"' ||
        true
}

file_length() {
    texts | grep -E '\.(cpp|h|hpp|c|s|rc|sh|cmake)$|/scripts/|CMakeLists' |
        xargs -r awk -v longest="$longest" '
            FNR == 1 && file != "" && lines > longest { print file ": " lines " lines, " longest " are the limit" }
            { file = FILENAME; lines = FNR }
            END { if (lines > longest) print file ": " lines " lines, " longest " are the limit" }'
}

# A header that some file includes first is known to compile alone. A _win file without a header of its own name starts
# with a header of its folder, because the pure part and the window part of a feature may share one.
own_header_first() {
    local source base header first
    while read -r source; do
        base="${source%.cpp}"
        first="$(sed -n 's/^[ \t]*#[ \t]*include[ \t]*[<"]\([^">]*\)[">].*/\1/p' "$source" | head -n 1)"
        if [ -f "$base.h" ]; then
            header="${base#src/}.h"
            [ "$first" = "$header" ] || echo "$source: include \"$header\" first, not \"$first\""
        elif [ -f "${base%_win}.h" ]; then
            case "src/$first" in
                "${source%/*}"/*) ;;
                *) echo "$source: include a header of its folder first, not \"$first\"" ;;
            esac
        fi
    done < <(find src -type f -name '*.cpp' | sort)
}

# The system's subclassing costs two system calls at each message (ui/subclass.h).
one_subclassing() { sources | xargs -r grep -nHE '\b(Set|Remove)WindowSubclass *\(|\bDefSubclassProc *\(' || true; }

pragma_once() {
    find src -type f -name '*.h' | sort | xargs -r grep -L '^#pragma once' | sed 's/$/: no #pragma once/' || true
}

# A reader has only this repository, so no text may refer to a document outside it.
outside_references() {
    texts | xargs -r grep -nHIE '\b[Ss][p]ec(ification)?s?\b|\bPart [0-9]+\.[0-9]+|\.\./s[h]ared' || true
}

# Prints the words of the sources, one a line.
words() {
    find src tests bench samples scripts cmake -type f \( -name '*.cpp' -o -name '*.h' -o -name '*.c' -o -name '*.rc' -o \
        -name '*.txt' -o -name '*.cmake' -o -name '*.sh' -o -path 'scripts/*' \) -exec cat {} + |
        cat - CMakeLists.txt CMakePresets.json | grep -oE '[A-Za-z_][A-Za-z0-9_]*' | sort -u
}

# Each name in ARCHITECTURE.md is that of a file, with or without its ending, or a word of the sources. Patterns such as
# name.cpp and <area>_test.cpp stand for many files.
architecture_names() {
    local name word path found known
    [ -f ARCHITECTURE.md ] || return 0
    known="$(words)"
    { grep -oE '`[^`]+`' ARCHITECTURE.md || true; } | tr -d '`' | sort -u | while read -r name; do
        case "$name" in
            name.cpp | name_win.cpp | *'<'*) continue ;;
            */* | *.h | *.cpp | *.md)
                path="${name%/}"
                found=""
                for word in "" src/ src/*/ docs/; do
                    if compgen -G "$word$path" >/dev/null || compgen -G "$word$path.*" >/dev/null ||
                        compgen -G "$word${path}_win.*" >/dev/null; then found=yes; fi
                done
                [ -n "$found" ] || echo "ARCHITECTURE.md: no file $name"
                ;;
            *)
                for word in $(grep -oE '[A-Za-z_][A-Za-z0-9_]{3,}' <<<"$name"); do
                    grep -qx "$word" <<<"$known" || compgen -G "*/$word*" >/dev/null || compgen -G "*/*/$word*" >/dev/null ||
                        echo "ARCHITECTURE.md: nothing is called $word in \`$name\`"
                done
                ;;
        esac
    done
}

# What the documents show and refer to is there, and each page and picture of docs/ is referred to.
document_links() {
    local target page
    for page in README.md ARCHITECTURE.md docs/*.md; do
        [ -f "$page" ] || continue
        { grep -oE '\]\([^)#: ]+\)' "$page" || true; } | sed 's/^](//; s/)$//' | while read -r target; do
            [ -e "$target" ] || [ -e "$(dirname "$page")/$target" ] || echo "$page: no file $target"
        done
    done
    for page in docs/*; do
        [ ! -f "$page" ] || grep -qF "$(basename "$page")" README.md ARCHITECTURE.md docs/*.md || echo "$page: nothing refers to it"
    done
}

# The numbers of src/resources/ids.h: each is used, and of one kind no two are the same; each dialog and menu has its
# resource. A number that is the first of a range may be the same as the one inside it that has a name.
resource_numbers() {
    local ids=src/resources/ids.h used name
    [ -f "$ids" ] || return 0
    used="$(find src tests bench -type f \( -name '*.cpp' -o -name '*.h' -o -name '*.rc' \) ! -path "$ids" \
        -exec grep -ohE '\b(ID[A-Z]|MSG|TIMER)_[A-Z0-9_]+' {} + | sort -u)"
    awk '$1 == "#define" && $3 != "" { print $2 }' "$ids" | grep -E '^(ID[A-Z]|MSG|TIMER)_' | while read -r name; do
        grep -qx "$name" <<<"$used" || grep -qE "^#define [A-Z_0-9]+ .*\b$name\b" "$ids" || echo "$ids: nothing uses $name"
    done
    awk '
        $1 == "#define" && $3 != "" {
            kind = $2; sub(/_.*/, "", kind)
            number = ""
            for (i = 3; i <= NF && $i !~ /^\/\//; i++) number = number " " $i
            if ($2 ~ /_FIRST$/) next
            if ((kind number) in owner) print FILENAME ":" FNR ": " $2 " has the number of " owner[kind number]
            owner[kind number] = $2
        }' "$ids"
    awk '$1 == "#define" && $2 ~ /^IDD_/ { print $2 }' "$ids" | while read -r name; do
        grep -qE "^$name (DIALOG|DIALOGEX)\b" src/resources/*.rc || echo "$ids: $name has no dialog in src/resources/"
    done
}

# Two records of one name, each visible outside its file, are one record to the linker: it keeps one of two
# std::vector<NAME>::push_back. Types inside "namespace {" are their file's own.
type_names() {
    sources | xargs -r awk '
        FNR == 1 { own = 0 }
        /^namespace \{/ { own = 1 }
        /^\}  \/\/ namespace/ { own = 0 }
        !own && /^(struct|class|enum|union) [^;]*\{/ {
            name = $2 == "class" ? $3 : $2
            if (name ~ /::/) next
            sub(/[:{].*/, "", name)
            if (name in place) print FILENAME ":" FNR ": " name " is also in " place[name]
            else place[name] = FILENAME ":" FNR
        }'
}

# The list for translators is what scripts/texts makes of the sources.
list_of_texts() { [ ! -x "$root/scripts/texts" ] || "$root/scripts/texts" --check "$PWD"; }

# The formatter keeps line breaks, braces and the order of includes. Other versions of it decide differently.
formatting() {
    git ls-files 'src/*.cpp' 'src/*.h' 'tests/*.cpp' 'tests/*.h' 'bench/*.cpp' 'bench/*.h' 'samples/*.cpp' 'samples/*.h' |
        xargs -r -P 2 -n 40 clang-format --dry-run 2>&1 | sed -n 's/: warning: code should be clang-formatted.*/: not formatted/p' || true
}

check "direction of includes" include_direction
check "the global record" global_record
check "pure files" pure_files
check "files too long" file_length
check "own header first" own_header_first
check "one kind of subclassing" one_subclassing
check "names of types" type_names
check "#pragma once" pragma_once
check "references to documents outside the repository" outside_references
check "names in ARCHITECTURE.md" architecture_names
check "links of the documents" document_links
check "numbers of the resources" resource_numbers
check "the list of texts" list_of_texts
case "$(clang-format --version 2>/dev/null)" in
    *"version 14."*) check "formatting" formatting ;;
    *) echo "layout: formatting is not checked, because there is no clang-format 14 here" ;;
esac

echo "layout: $((checks - failed)) passed, $failed failed"
[ "$failed" -eq 0 ]
