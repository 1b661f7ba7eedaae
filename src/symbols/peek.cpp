// Pages and places of a peek. Pure.
#include "symbols/peek.h"

#include <algorithm>

namespace {

constexpr std::size_t kMostPages = 50;
constexpr std::size_t kWhole = 2 << 20;     // bytes; a longer text is not copied whole
constexpr std::size_t kAround = 256 << 10;  // bytes on each side of the place

}  // namespace

void PeekPush(PeekPages& pages, PeekPage page) {
    if (!pages.pages.empty()) pages.pages.resize(pages.at + 1);
    if (pages.pages.size() == kMostPages) pages.pages.erase(pages.pages.begin());
    pages.pages.push_back(std::move(page));
    pages.at = pages.pages.size() - 1;
}

bool PeekStep(PeekPages& pages, int step) {
    const bool there = step < 0 ? pages.at > 0 : pages.at + 1 < pages.pages.size();
    if (there) step < 0 ? --pages.at : ++pages.at;
    return there;
}

PeekSpan PeekSpanOf(int editorHeight, int rowTop, int rowBottom, int wanted) {
    const int above = std::clamp(rowTop, 0, std::max(editorHeight, 0));
    const int below = std::clamp(editorHeight - rowBottom, 0, std::max(editorHeight, 0));
    if (below >= wanted || below >= above) return {editorHeight - below, std::min(wanted, below)};
    const int height = std::min(wanted, above);
    return {above - height, height};
}

std::string PeekText(std::string_view text, std::uint32_t line) {
    if (text.size() <= kWhole) return std::string(text);
    std::size_t start = 0;
    for (std::uint32_t at = 0; at < line; ++at) {
        const std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) break;
        start = end + 1;
    }
    const std::size_t from = start <= kAround ? 0 : text.rfind('\n', start - kAround) + 1;
    const std::size_t to = std::min(text.find('\n', std::min(start + kAround, text.size())), text.size());
    std::string part(static_cast<std::size_t>(std::ranges::count(text.substr(0, from), '\n')), '\n');
    return part.append(text.substr(from, to - from));
}
