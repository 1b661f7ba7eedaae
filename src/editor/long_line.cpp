#include "editor/long_line.h"

#include <algorithm>

namespace {

bool IsBreak(char c) { return c == '\n' || c == '\r'; }

}  // namespace

void LongestLine::Look(std::string_view piece) {
    while (!piece.empty()) {
        // The last break before the line would become long: what comes before it needs no look.
        const std::size_t room = std::min(piece.size(), kLongLine - std::min(line_, kLongLine));
        std::size_t last = room;
        while (last > 0 && !IsBreak(piece[last - 1])) --last;
        if (last > 0) {
            line_ = 0;
            piece.remove_prefix(last);
            continue;
        }
        std::size_t end = room;
        while (end < piece.size() && !IsBreak(piece[end])) ++end;
        line_ += end;
        longest_ = std::max(longest_, line_);
        if (end < piece.size()) {  // a break
            line_ = 0;
            ++end;
        }
        piece.remove_prefix(end);
    }
}
