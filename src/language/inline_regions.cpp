// Finds blocks of inline assembly that begin above. Pure.
#include "language/inline_regions.h"

#include "language/scanner.h"

#include <algorithm>

namespace {

struct AssemblyEdge {
    std::size_t start;  // of its line
    bool opens;
};

// The last line of the text that begins or ends a block. Whether a block is open there makes no difference, because a
// lone ASM inside a block leaves it open, and an END ASM outside leaves nothing open.
std::optional<AssemblyEdge> LastAssemblyEdge(std::string_view text) {
    for (std::size_t end = text.size(); end > 0;) {
        std::size_t start = end;
        while (start > 0 && text[start - 1] != '\r' && text[start - 1] != '\n') --start;
        const AssemblyKind kind = AssemblyOfLine(text.substr(start, end - start), false).kind;
        if (kind == AssemblyKind::BlockStart || kind == AssemblyKind::BlockEnd)
            return AssemblyEdge{start, kind == AssemblyKind::BlockStart};
        end = start > 0 ? start - 1 : 0;
    }
    return std::nullopt;
}

// Searches one stretch and adds what is found. `start` is where it begins.
void SearchStretch(AssemblyAbove& above, std::ptrdiff_t start, std::string_view text) {
    const std::optional<AssemblyEdge> edge = LastAssemblyEdge(text);
    above.from = start;
    if (!edge) return;
    above.edge = start + static_cast<std::ptrdiff_t>(edge->start);
    above.opens = edge->opens;
}

}  // namespace

std::optional<bool> AssemblySearch(AssemblyAbove& above, std::ptrdiff_t position, const AssemblySource& source,
                                   int stretches) {
    if (position > above.to && position - above.to <= kAssemblyStretch) {
        AssemblyAbove nearer{.from = above.to, .to = position};
        SearchStretch(nearer, above.to, source.text(above.to, position));
        if (nearer.edge >= 0) above = nearer;
        above.to = position;
    } else if (position > above.to || position < above.from || position <= above.edge) {
        above = {.from = position, .to = position};
    }
    for (; above.edge < 0 && above.from > 0; --stretches) {
        if (stretches == 0) return std::nullopt;
        const std::ptrdiff_t start = source.stretchBefore(above.from);
        SearchStretch(above, start, source.text(start, above.from));
    }
    return above.edge >= 0 && above.opens;
}

void AssemblyForget(AssemblyAbove& above, std::ptrdiff_t lineStart) {
    if (lineStart >= above.to) return;
    above.to = lineStart;
    if (above.edge >= lineStart || above.from > lineStart) above = {};
}
