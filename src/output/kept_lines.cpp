#include "output/kept_lines.h"

#include <utility>

namespace {

void DropOldest(KeptLines& kept) {
    kept.heldCharacters -= kept.held.front().text.size();
    kept.held.pop_front();
    ++kept.leftOut;
}

}  // namespace

bool KeepLine(KeptLines& kept, PaneLine& line, bool stream) {
    const bool full = kept.shown >= kFirstLinesKept || kept.shownCharacters >= kFirstCharactersKept;
    const bool holding = !kept.held.empty() || kept.leftOut > 0;
    if (!holding && (!full || !stream)) {
        ++kept.shown;
        kept.shownCharacters += line.text.size();
        return true;
    }
    kept.heldCharacters += line.text.size();
    kept.held.push_back(std::move(line));
    while (kept.held.size() > kLastLinesKept || (kept.heldCharacters > kLastCharactersKept && kept.held.size() > 1))
        DropOldest(kept);
    return false;
}

std::deque<PaneLine> TakeHeldLines(KeptLines& kept) {
    std::deque<PaneLine> lines = std::exchange(kept.held, {});
    if (kept.leftOut > 0) {
        lines.push_front(
            {.text = L"... " + std::to_wstring(kept.leftOut) + L" lines left out ...", .colour = 0x808000});
    }
    kept.shown += lines.size();
    kept.shownCharacters += kept.heldCharacters;
    kept.heldCharacters = 0;
    kept.leftOut = 0;
    return lines;
}
