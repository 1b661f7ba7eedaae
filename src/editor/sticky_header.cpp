// The rule of the sticky header and the cache of what is known about the lines above the caret. Pure.
#include "editor/sticky_header.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array<std::string_view, 6> kOpeningWords = {"SUB", "FUNCTION", "TYPE", "MACRO", "CLASS", "INTERFACE"};

}  // namespace

bool StickyIsHeader(std::string_view line) {
    if (line.empty() || line.size() > kStickyMaximumLine) return false;
    return std::any_of(kOpeningWords.begin(), kOpeningWords.end(),
                       [line](std::string_view word) { return line.starts_with(word); });
}

StickyRange StickyWanted(const StickyCache& cache, std::int64_t line) {
    if (cache.anchor < 0) return {0, line};
    if (line > cache.anchor) return {cache.anchor + 1, line};
    if (cache.header != kStickyNone) return cache.header <= line ? StickyRange{} : StickyRange{0, line};
    if (cache.pendingBelow == 0) return {};
    return {0, std::min(line, cache.pendingBelow - 1)};
}

StickyScan StickyScanUp(std::string_view text, std::int64_t last) {
    StickyScan scan{kStickyNone, last};
    std::size_t end = text.size();  // end of the current line, without its line break
    for (;;) {
        std::size_t start = end;
        while (start > 0 && text[start - 1] != '\n' && text[start - 1] != '\r') --start;
        if (StickyIsHeader(text.substr(start, end - start))) {
            scan.header = scan.reached;
            return scan;
        }
        if (start == 0) return scan;
        end = start - 1;
        if (text[end] == '\n' && end > 0 && text[end - 1] == '\r') --end;
        --scan.reached;
    }
}

void StickyLearn(StickyCache& cache, std::int64_t line, const StickyScan& scan) {
    const StickyCache before = cache;
    if (scan.header != kStickyNone) {
        // When this scan continued an earlier one further up, what is known about the lines below stays known.
        const bool continued = before.anchor >= line && before.header == kStickyNone && before.pendingBelow > 0 &&
                               before.pendingBelow <= line + 1;
        cache = {continued ? before.anchor : line, scan.header, 0};
        return;
    }
    if (before.anchor >= 0 && line > before.anchor && scan.reached == before.anchor + 1) {
        cache.anchor = line;  // the new lines have no header, so the older answer holds for them too
        return;
    }
    const bool continued = before.anchor >= line && before.header == kStickyNone && before.pendingBelow > 0 &&
                           before.pendingBelow <= line + 1;
    cache = {continued ? before.anchor : line, kStickyNone, scan.reached};
}

bool StickyLookUp(StickyCache& cache, std::int64_t line, std::ptrdiff_t budget, const StickySource& source) {
    const StickyRange wanted = StickyWanted(cache, line);
    if (wanted.first > wanted.last) return true;
    const std::ptrdiff_t end = source.lineEnd(wanted.last);
    std::ptrdiff_t start = source.lineStart(wanted.first);
    if (end - start > budget)
        start = source.lineStart(std::clamp(source.lineAt(end - budget) + 1, wanted.first, wanted.last));
    const std::optional<std::string_view> text = source.text(start, end - start);
    if (!text) return true;
    StickyLearn(cache, line, StickyScanUp(*text, wanted.last));
    const StickyRange left = StickyWanted(cache, line);
    return left.first > left.last;
}

void StickyForget(StickyCache& cache, std::int64_t line, std::int64_t linesAdded) {
    if (cache.anchor < 0 || line > cache.anchor) return;

    const std::int64_t lastTouched = linesAdded < 0 ? line - linesAdded : line;
    if (cache.header != kStickyNone && lastTouched < cache.header) {
        // The whole change is above the header, so the known lines move together.
        cache.header += linesAdded;
        cache.anchor += linesAdded;
        return;
    }
    const std::int64_t knownFrom = cache.header != kStickyNone ? cache.header : cache.pendingBelow;
    if (line <= knownFrom) {
        cache = {};
        return;
    }
    cache.anchor = line - 1;
}

bool StickyIsWanted(std::int64_t header, std::int64_t top, bool shown) {
    return header != kStickyNone && header < (shown ? top - 1 : top);
}

std::int64_t StickyTopAfter(std::int64_t top, std::int64_t caret, bool shown) {
    if (!shown) return std::max<std::int64_t>(top - 1, 0);
    return caret == top ? top : top + 1;
}
