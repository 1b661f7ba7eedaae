// The breakpoints as rows of text. Must not know a window or a process.
#include "debugui/pane_breakpoints.h"

#include "base/bounded_text.h"
#include "base/hex_text.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"

#include <utility>

namespace {

std::wstring BreakpointPlaceText(const UserBreakpoint& breakpoint) {
    wchar_t name[kPathCapacity] = {};
    PathGetFile(breakpoint.path.c_str(), name, kPathCapacity);
    return (*name != L'\0' ? std::wstring(name) : L"Untitled") + L":" + std::to_wstring(breakpoint.line);
}

std::wstring BreakpointStateText(const UserBreakpoint& breakpoint) {
    switch (breakpoint.status) {
        case BreakpointStatus::Planted: return Text(L"Active");
        case BreakpointStatus::NoCode:
            return breakpoint.reason.empty() ? Text(L"No code on this line") : breakpoint.reason;
        case BreakpointStatus::Refused: return breakpoint.reason.empty() ? Text(L"Refused") : breakpoint.reason;
        case BreakpointStatus::Disabled: return Text(L"Disabled");
        case BreakpointStatus::Idle: break;
    }
    return breakpoint.enabled ? Text(L"Waits for a program") : Text(L"Disabled");
}

// "3", or "3 of 5" for one that stops from the fifth hit on.
std::wstring HitsText(std::uint32_t hits, std::uint32_t stopFrom) {
    if (stopFrom > 1) return TextWith(L"{1} of {2}", {std::to_wstring(hits), std::to_wstring(stopFrom)});
    return hits != 0 ? std::to_wstring(hits) : std::wstring{};
}

ListRow RowOfLine(const UserBreakpoint& breakpoint) {
    ListRow row;
    row.cells = {BreakpointPlaceText(breakpoint), Utf8ToWideText(breakpoint.condition),
                 HitsText(breakpoint.hits, breakpoint.stopFrom), BreakpointStateText(breakpoint)};
    row.mark = breakpoint.enabled ? ListMark::Checked : ListMark::Unchecked;
    const bool refused =
        breakpoint.status == BreakpointStatus::NoCode || breakpoint.status == BreakpointStatus::Refused;
    row.tone = !breakpoint.enabled ? ListTone::Quiet : refused ? ListTone::Problem : ListTone::Normal;
    return row;
}

ListRow RowOfCode(const CodeBreakpointView& breakpoint) {
    ListRow row;
    row.cells = {L"0x" + HexText(breakpoint.address, 1), L"", HitsText(breakpoint.hits, 0),
                 breakpoint.place.empty() ? Text(L"Instruction") : TextWith(L"Instruction at {1}", {breakpoint.place})};
    row.mark = ListMark::Breakpoint;
    return row;
}

}  // namespace

std::vector<ListRow> BreakpointRows(const UserBreakpoints& list, const std::vector<CodeBreakpointView>& ofCode) {
    std::vector<ListRow> rows;
    for (const UserBreakpoint& breakpoint : list) rows.push_back(RowOfLine(breakpoint));
    for (const CodeBreakpointView& breakpoint : ofCode) rows.push_back(RowOfCode(breakpoint));
    return rows;
}

std::wstring StopFromEditText(const UserBreakpoint& breakpoint) {
    return breakpoint.stopFrom > 1 ? std::to_wstring(breakpoint.stopFrom) : std::wstring{};
}
