// Where the next statement may be set. Must not know an editor or a process.
#include "debugui/next_statement.h"

#include "base/texts.h"
#include "disasm/renderer.h"

#include <algorithm>

namespace {

constexpr int kMostLinesBetween = 20000;  // that are searched for a heading

using LineText = std::function<std::string(int line)>;

bool IsHeading(const LineText& lineText, int line) { return line > 0 && !DisasmProcedureName(lineText(line)).empty(); }

// True when the heading of a procedure stands between two lines, the higher one included.
bool HeadingBetween(const LineText& lineText, int a, int b) {
    const auto [low, high] = std::minmax(a, b);
    if (high - low > kMostLinesBetween) return true;
    for (int line = low + 1; line <= high; ++line)
        if (IsHeading(lineText, line)) return true;
    return false;
}

}  // namespace

std::wstring NextStatementProblem(const NextStatement& wanted, const LineText& lineText) {
    const std::wstring line = std::to_wstring(wanted.to);
    if (!wanted.hasCode) return TextWith(L"[Debug] No code on line {1}.\n", {line});
    // Going on in another procedure would use the stack of this one.
    if (wanted.otherFile || (wanted.from > 0 && HeadingBetween(lineText, wanted.from, wanted.to)))
        return TextWith(L"[Debug] Line {1} is in another procedure; the next statement stays in this one.\n", {line});
    if (wanted.standsThere) return {};
    // The code of a heading sets up the frame. Without it the procedure would use, and at its end remove, its caller's.
    if (wanted.frameMissing || IsHeading(lineText, wanted.from))
        return Text(
            L"[Debug] The frame of the procedure does not stand here: step to its next statement (F10) first.\n");
    if (IsHeading(lineText, wanted.to))
        return TextWith(L"[Debug] Line {1} sets up the frame of the procedure, which stands already.\n", {line});
    return {};
}
