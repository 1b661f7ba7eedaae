#include "output/kept_lines.h"

#include "base/decimal.h"
#include "base/texts.h"
#include "output/line_colours.h"

#include <utility>

namespace {

constexpr std::wstring_view kInLog = English(L" lines left out here; a double-click opens them: ");
constexpr std::wstring_view kLogEnd = L") ...";

void DropOldest(KeptLines& kept) {
    const HeldLine& oldest = kept.held.front();
    if (kept.leftOutAt == 0) kept.leftOutAt = oldest.logLine;
    kept.heldCharacters -= oldest.line.text.size();
    kept.held.pop_front();
    ++kept.leftOut;
}

PaneLine LeftOutLine(const KeptLines& kept, const std::wstring& log) {
    const std::wstring count = L"... " + std::to_wstring(kept.leftOut);
    if (log.empty() || kept.leftOutAt == 0)
        return {.text = TextWith(L"{1} lines left out ...", {count}), .colour = kLineTeal};
    return {.text = count + Text(kInLog.data()) + log + L"(" + std::to_wstring(kept.leftOutAt) + std::wstring(kLogEnd),
            .colour = kLineTeal};
}

}  // namespace

bool LinesAreHeld(const KeptLines& kept) { return !kept.held.empty() || kept.leftOut > 0; }

bool KeepLine(KeptLines& kept, PaneLine& line, std::uint64_t logLine) {
    const bool full = kept.shown >= kFirstLinesKept || kept.shownCharacters >= kFirstCharactersKept;
    if (!LinesAreHeld(kept) && (!full || logLine == 0)) {
        ++kept.shown;
        kept.shownCharacters += line.text.size();
        return true;
    }
    kept.heldCharacters += line.text.size();
    kept.held.push_back({.line = std::move(line), .logLine = logLine});
    while (kept.held.size() > kLastLinesKept || (kept.heldCharacters > kLastCharactersKept && kept.held.size() > 1))
        DropOldest(kept);
    return false;
}

std::wstring HeldLinesText(const KeptLines& kept) {
    return TextWith(L"... {1} more lines so far; the last {2} come at the end ...",
                    {std::to_wstring(kept.leftOut + kept.held.size()), std::to_wstring(kLastLinesKept)});
}

std::deque<PaneLine> TakeHeldLines(KeptLines& kept, const std::wstring& log) {
    std::deque<PaneLine> lines;
    if (kept.leftOut > 0) lines.push_back(LeftOutLine(kept, log));
    for (HeldLine& each : kept.held) lines.push_back(std::move(each.line));
    kept = {.shown = kept.shown + lines.size(), .shownCharacters = kept.shownCharacters + kept.heldCharacters};
    return lines;
}

LogPlace LogPlaceOf(std::wstring_view paneLine) {
    const std::wstring_view inLog = Text(kInLog.data());
    const std::size_t start = paneLine.find(inLog);
    const std::size_t open = paneLine.rfind(L'(');
    if (start == std::wstring_view::npos || open == std::wstring_view::npos || !paneLine.ends_with(kLogEnd)) return {};
    const std::size_t path = start + inLog.size();
    if (open <= path) return {};
    return {.path = std::wstring(paneLine.substr(path, open - path)), .line = DecimalNumber(paneLine.substr(open + 1))};
}

bool TrimPaneLines(std::deque<PaneLine>& shown) {
    if (shown.size() <= kMostPaneLines) return false;
    shown.erase(shown.begin(), shown.end() - static_cast<std::ptrdiff_t>(kPaneLinesKept));
    shown.push_front({.text = Text(L"... earlier lines were removed ..."), .colour = kLineTeal});
    return true;
}
