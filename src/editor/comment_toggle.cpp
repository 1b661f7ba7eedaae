// Makes lines comments, and comments lines again. Pure.
#include "editor/comment_toggle.h"

#include "base/scan_text.h"
#include "base/whole_lines.h"

#include <algorithm>
#include <limits>

namespace {

std::size_t IndentOf(std::string_view line) { return line.size() - WithoutLeadingBlanks(line).size(); }

bool IsBlankLine(std::string_view line) { return line.find_first_not_of(" \t\r\n") == std::string_view::npos; }

struct CommentLook {
    bool allComments = true;
    std::size_t indent = std::numeric_limits<std::size_t>::max();  // the least, in bytes
};

CommentLook LookAt(std::string_view lines, std::string_view mark) {
    CommentLook look;
    while (!lines.empty()) {
        const std::string_view line = TakeWholeLine(lines).whole();
        if (IsBlankLine(line)) continue;
        look.indent = std::min(look.indent, IndentOf(line));
        look.allComments = look.allComments && line.substr(IndentOf(line)).starts_with(mark);
    }
    return look;
}

}  // namespace

std::string_view LineCommentMark(Language language) {
    switch (language) {
        case Language::Basic: return "'";
        case Language::C: return "//";
        case Language::Assembly: return ";";
        case Language::GnuAssembly: return "#";
        default: return {};
    }
}

std::string ToggleLineComments(std::string_view lines, std::string_view mark) {
    const CommentLook look = LookAt(lines, mark);
    std::string out;
    std::string_view below = lines;
    if (IsBlankLine(TakeWholeLine(below).whole()) && below.empty()) {  // one line: a comment is about to be written
        const std::size_t at = std::min(lines.find_first_of("\r\n"), lines.size());
        return out.append(lines.substr(0, at)).append(mark).append(" ").append(lines.substr(at));
    }
    while (!lines.empty()) {
        const std::string_view line = TakeWholeLine(lines).whole();
        if (IsBlankLine(line)) {
            out.append(line);
            continue;
        }
        const std::size_t at = look.allComments ? IndentOf(line) : look.indent;
        out.append(line.substr(0, at));
        std::string_view rest = line.substr(at);
        if (look.allComments) {
            rest.remove_prefix(mark.size());
            if (rest.starts_with(' ')) rest.remove_prefix(1);
        } else {
            out.append(mark).append(" ");
        }
        out.append(rest);
    }
    return out;
}
