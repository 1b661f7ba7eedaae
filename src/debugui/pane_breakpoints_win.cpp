// The breakpoints view: the user's list, whether a program runs or not. UI thread only.
#include "debugui/pane_breakpoints.h"
#include "base/texts.h"
#include "debugui/breakpoint_list.h"
#include "debugui/code_breakpoints.h"
#include "debugui/pane_internal.h"

#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugui/breakpoint_rules.h"
#include "files/file_io.h"

#include <array>

namespace {

constexpr std::array<ListColumn, 4> kColumns = {{{English(L"Line"), 16, 13, true},
                                                 {English(L"Condition"), 12, 7, true},
                                                 {English(L"Hits"), 8, 6, true},
                                                 {English(L"State"), 34, 8, true}}};

enum MenuCommand : UINT { kGo = 1, kToggle, kEditCondition, kEditHits, kRemove, kRemoveAll };

// Rows after those of the list show breakpoints of instructions. 0: the row is none of them.
std::uint64_t CodeAddressAtRow(int row) {
    const auto index = static_cast<std::size_t>(row) - BreakpointList().size();
    return row >= 0 && index < CodeBreakpoints().size() ? CodeBreakpoints()[index] : 0;
}

const UserBreakpoint* BreakpointAtRow(int row) {
    const std::vector<UserBreakpoint>& list = BreakpointList();
    return row >= 0 && row < static_cast<int>(list.size()) ? &list[static_cast<std::size_t>(row)] : nullptr;
}

std::vector<CodeBreakpointView> CodeBreakpointViews() {
    std::vector<CodeBreakpointView> views;
    for (const std::uint64_t address : CodeBreakpoints()) {
        const int index = DebugFindBp(&g_debugger, address);
        const std::uint32_t hits = index < 0 ? 0 : g_debugger.breakpoints[static_cast<std::size_t>(index)].hits;
        views.push_back({.address = address, .hits = hits, .place = PanePlaceText(address)});
    }
    return views;
}

void FillBreakpoints(PaneContent& content) {
    BreakpointsUpdate();
    content.rows = BreakpointRows(BreakpointList(), CodeBreakpointViews());
    content.hint = content.rows.empty() ? Text(L"No breakpoints. F9 sets one on the caret's line.") : L"";
}

std::wstring CommitBreakpointCondition(int row, const std::wstring& text) {
    const std::string condition = PaneUtf8(text);
    std::wstring problem = ConditionProblem(condition);
    if (!problem.empty()) return problem;
    if (BreakpointAtRow(row) == nullptr) return {};
    const UserBreakpoint& breakpoint = *BreakpointAtRow(row);
    const std::wstring notice = ConditionNotice(condition, NamesAtLine(breakpoint.document, breakpoint.line));
    BreakpointSetCondition(static_cast<std::size_t>(row), condition);
    if (!notice.empty()) g_events.statusText(notice.c_str());
    DebugPaneInvalidate();
    return {};
}

std::wstring CommitStopFrom(int row, const std::wstring& text) {
    std::uint32_t count = 0;
    std::wstring problem = StopFromProblem(PaneUtf8(text), &count);
    if (!problem.empty() || BreakpointAtRow(row) == nullptr) return problem;
    BreakpointSetStopFrom(static_cast<std::size_t>(row), count);
    DebugPaneInvalidate();
    return {};
}

void EditStopFrom(int row) {
    const UserBreakpoint* breakpoint = BreakpointAtRow(row);
    if (breakpoint == nullptr) return;
    ListViewEditCell(PaneList(), row, kBreakpointHits, StopFromEditText(*breakpoint), false,
                     [row](const std::wstring& text) { return CommitStopFrom(row, text); });
}

void EditBreakpoint(int row, int column) {
    if (column == kBreakpointHits) return EditStopFrom(row);
    const UserBreakpoint* breakpoint = BreakpointAtRow(row);
    if (breakpoint == nullptr || (column != -1 && column != kBreakpointCondition)) return;
    ListViewEditCell(PaneList(), row, kBreakpointCondition, Utf8ToWideText(breakpoint->condition), false,
                     [row](const std::wstring& text) { return CommitBreakpointCondition(row, text); });
}

void GoToBreakpoint(int row, int column) {
    if (BreakpointAtRow(row) != nullptr && column != kBreakpointCondition && column != kBreakpointHits)
        BreakpointJump(static_cast<std::size_t>(row));
    std::uint32_t fileId = 0;
    std::uint32_t line = 0;
    const std::uint64_t address = CodeAddressAtRow(row);
    if (address != 0 && DebugLineAt(&g_debugger, address, &fileId, &line)) PaneGoTo(fileId, line);
}

void SwitchBreakpointOfRow(int row) {
    const UserBreakpoint* breakpoint = BreakpointAtRow(row);
    if (breakpoint != nullptr) BreakpointEnable(static_cast<std::size_t>(row), !breakpoint->enabled);
    DebugPaneInvalidate();
}

void RemoveBreakpointOfRow(int row) {
    // Both are read first, because a removed breakpoint moves the rows after it up.
    const bool ofLine = BreakpointAtRow(row) != nullptr;
    const std::uint64_t address = CodeAddressAtRow(row);
    if (ofLine) BreakpointRemove(static_cast<std::size_t>(row));
    if (address != 0) CodeBreakpointToggle(address);
    DebugPaneInvalidate();
}

bool OnBreakpointKey(int row, int key) {
    if (key != VK_DELETE) return false;
    RemoveBreakpointOfRow(row);
    return true;
}

void ShowBreakpointMenu(int row, POINT screen) {
    const UserBreakpoint* breakpoint = BreakpointAtRow(row);
    if (breakpoint == nullptr && CodeAddressAtRow(row) == 0) return;
    const bool ofLine = breakpoint != nullptr;
    const bool enabled = !ofLine || breakpoint->enabled;
    const std::array<MenuItem, 10> items = {
        {{kGo, Text(L"&Go to Source\tEnter")},
         {kToggle, enabled ? Text(L"&Disable\tSpace") : Text(L"&Enable\tSpace"), ofLine},
         {kEditCondition, Text(L"&Condition...\tF2"), ofLine},
         {kEditHits, Text(L"&Hit Count..."), ofLine},
         {0, nullptr},
         {kPaneCopyRow, Text(L"Co&py\tCtrl+C")},
         {kPaneCopyAll, Text(L"Copy A&ll")},
         {0, nullptr},
         {kRemove, Text(L"&Remove\tDel")},
         {kRemoveAll, Text(L"Remove &All")}}};
    switch (const UINT chosen = PaneShowMenu(items, screen); chosen) {
        case kGo: GoToBreakpoint(row, -1); break;
        case kToggle: SwitchBreakpointOfRow(row); break;
        case kEditCondition: EditBreakpoint(row, -1); break;
        case kEditHits: EditStopFrom(row); break;
        case kRemove: RemoveBreakpointOfRow(row); break;
        case kRemoveAll:
            BreakpointRemoveAll();
            DebugPaneInvalidate();
            break;
        default: PaneCopyRows(chosen); break;
    }
}

constexpr ListKind kList = {.columns = kColumns,
                            .hasMarks = true,
                            .activate = GoToBreakpoint,
                            .edit = EditBreakpoint,
                            .key = OnBreakpointKey,
                            .check = SwitchBreakpointOfRow,
                            .menu = ShowBreakpointMenu};

}  // namespace

const PaneView kBreakpointsView = {
    .title = English(L"Breakpoints"), .list = &kList, .ofStop = false, .fill = FillBreakpoints};
