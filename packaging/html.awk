# Makes a page of HTML from one of docs/*.md: headings, paragraphs, lists, tables, pictures, links, code and emphasis, which
# is all that these pages use.  awk -f html.awk page.md >page.html

function escape(text) {
    gsub(/&/, "\\&amp;", text)
    gsub(/</, "\\&lt;", text)
    gsub(/>/, "\\&gt;", text)
    return text
}

# Replaces each `mark`text`mark` by an element.
function pairs(text, mark, element,    at, rest, end, out) {
    while ((at = index(text, mark)) > 0) {
        rest = substr(text, at + length(mark))
        if ((end = index(rest, mark)) == 0) break
        out = out substr(text, 1, at - 1) "<" element ">" substr(rest, 1, end - 1) "</" element ">"
        text = substr(rest, end + length(mark))
    }
    return out text
}

# [words](address) and ![words](address); pages of this documentation are found as HTML.
function links(text,    out, picture, words, address, whole) {
    while (match(text, /!?\[[^]]*\]\([^)]*\)/)) {
        whole = substr(text, RSTART, RLENGTH)
        picture = substr(whole, 1, 1) == "!"
        words = substr(whole, picture ? 3 : 2)
        address = substr(words, index(words, "](") + 2)
        sub(/\)$/, "", address)
        words = substr(words, 1, index(words, "](") - 1)
        sub(/\.md$/, ".html", address)
        out = out substr(text, 1, RSTART - 1)
        out = out (picture ? "<img src=\"" address "\" alt=\"" words "\">" : "<a href=\"" address "\">" words "</a>")
        text = substr(text, RSTART + RLENGTH)
    }
    return out text
}

# What stands in `code` is left as it is.
function inline(text,    parts, count, i, out) {
    count = split(text, parts, "`")
    for (i = 1; i <= count; ++i) {
        if (i % 2 == 0 && i < count) out = out "<code>" escape(parts[i]) "</code>"
        else out = out (i % 2 == 0 ? "`" : "") escape(parts[i])
    }
    return links(pairs(pairs(out, "**", "b"), "*", "i"))
}

function flush_block() {
    if (text != "") print open_mark inline(text) close_mark
    text = ""
}

function close_all() {
    flush_block()
    if (list != "") print "</" list ">"
    if (table) print "</table>"
    list = ""
    table = 0
}

function begin_item(kind, words) {
    flush_block()
    if (list != kind) {
        close_all()
        print "<" kind ">"
        list = kind
    }
    open_mark = "<li>"
    close_mark = "</li>"
    text = words
}

function table_row(line,    cells, count, i, cell, element) {
    element = table ? "td" : "th"
    if (!table) {
        close_all()
        print "<table>"
        table = 1
    }
    gsub(/\\\|/, "\001", line)
    sub(/^\| */, "", line)
    sub(/ *\|$/, "", line)
    count = split(line, cells, / *\| */)
    printf "<tr>"
    for (i = 1; i <= count; ++i) {
        cell = cells[i]
        gsub(/\001/, "|", cell)
        printf "<%s>%s</%s>", element, inline(cell), element
    }
    print "</tr>"
}

BEGIN {
    print "<!DOCTYPE html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">"
    print "<meta name=\"viewport\" content=\"width=device-width\">"
    print "<style>body{font:16px/1.5 'Segoe UI',sans-serif;max-width:56em;margin:2em auto;padding:0 1em;color:#1f1f1f}"
    print "img{max-width:100%;border:1px solid #c8c8c8}code{font:14px Consolas,monospace;background:#f0f0f0;padding:0 .2em}"
    print "table{border-collapse:collapse}td,th{border:1px solid #c8c8c8;padding:.2em .6em;text-align:left;vertical-align:top}"
    print "pre{background:#f0f0f0;padding:.6em}pre code{padding:0}"
    print "@media(prefers-color-scheme:dark){body{background:#1e1e1e;color:#dcdcdc}code,pre{background:#2d2d2d}a{color:#6cb6ff}"
    print "td,th,img{border-color:#4a4a4a}}</style>"
}

{ sub(/\r$/, "") }
/^```/ {
    if (!code) close_all()
    print code ? "</code></pre>" : "<pre><code>"
    code = !code
    next
}
code { print escape($0); next }
/^<!--.*-->$/ { next }
/^#+ / {
    close_all()
    match($0, /^#+/)
    level = RLENGTH
    words = inline(substr($0, level + 2))
    if (level == 1) print "<title>" words "</title>"
    print "<h" level ">" words "</h" level ">"
    next
}
/^\|[-| :]+\|$/ { next }
/^\|/ { table_row($0); next }
/^- / { begin_item("ul", substr($0, 3)); next }
/^[0-9]+\. / { begin_item("ol", substr($0, index($0, " ") + 1)); next }
/^ *$/ { if (list == "") close_all(); else flush_block(); next }
/^ / && text != "" { sub(/^ +/, ""); text = text " " $0; next }
{
    if (table || (list != "" && text == "")) close_all()
    if (text != "") text = text " " $0
    else {
        open_mark = "<p>"
        close_mark = "</p>"
        text = $0
    }
}
END { close_all() }
