// What the notifications of an editor mean to the rest of the editor. Pure.
#include "app/notify_rules.h"

#include "editor/margins.h"

namespace {

constexpr std::ptrdiff_t kLongestRegisterName = 8;

}  // namespace

bool CouldNameRegister(std::ptrdiff_t length) { return length <= kLongestRegisterName; }

bool IsWithinMargin(int x, int left, int width) { return x >= left && x < left + width; }

int LineBeforeMoved(int line, std::ptrdiff_t linesAdded, bool atLineStart) {
    return linesAdded > 0 && atLineStart ? line - 1 : line;
}

DwellPlace DwellPlaceOf(int margin, std::ptrdiff_t position) {
    if (margin == kMarginSymbols) return DwellPlace::SymbolMargin;
    if (margin == kMarginProblems) return DwellPlace::ProblemMargin;
    return position >= 0 ? DwellPlace::Text : DwellPlace::Nothing;
}
