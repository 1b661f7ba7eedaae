#include "disasm/asm_request.h"

#include "base/path.h"

#include <utility>

AsmRequest AsmRequestOf(const BuildRecord& last, std::wstring source, std::wstring listing) {
    const bool ofThis = SamePathText(last.source, source);
    return {.source = std::move(source),
            .staged = ofThis ? last.staged : L"",
            .listing = std::move(listing),
            .program = ofThis ? last.output : L"",
            .caretFile = L""};
}

long long AsmTopLine(const AsmScroll& scroll, long long first) {
    const bool placed = scroll.place >= 0 && static_cast<std::size_t>(scroll.place) < scroll.lines;
    return placed && first == scroll.top ? scroll.place : first;
}
