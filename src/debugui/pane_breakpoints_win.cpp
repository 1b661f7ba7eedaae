// The breakpoints view: the user's list, whether a program runs or not. UI thread only.
#include "debugui/breakpoint_list.h"
#include "debugui/pane_internal.h"

#include "base/path.h"
#include "debugui/breakpoint_rules.h"
#include "files/file_io.h"
#include "settings/settings.h"

#include <array>

namespace {

enum Column : int { kPlace, kCondition, kHits, kState };
constexpr std::array<ListColumn, 4> kColumns = {
    {{L"Line", 16, 13, false}, {L"Condition", 12, 7, true}, {L"Hits", 5, 4, true}, {L"State", 34, 8, false}}};

enum MenuCommand : UINT { kGo = 1, kToggle, kEditCondition, kRemove, kRemoveAll };

const UserBreakpoint* BreakpointAtRow(int row) {
    const std::vector<UserBreakpoint>& list = BreakpointList();
    return row >= 0 && row < static_cast<int>(list.size()) ? &list[static_cast<std::size_t>(row)] : nullptr;
}

std::wstring BreakpointPlaceText(const UserBreakpoint& breakpoint) {
    wchar_t name[kPathCapacity] = {};
    PathGetFile(breakpoint.path.c_str(), name, kPathCapacity);
    return (*name != L'\0' ? std::wstring(name) : L"Untitled") + L":" + std::to_wstring(breakpoint.line);
}

std::wstring BreakpointStateText(const UserBreakpoint& breakpoint) {
    switch (breakpoint.status) {
        case BreakpointStatus::Planted: return L"Active";
        case BreakpointStatus::NoCode: return breakpoint.reason.empty() ? L"No code on this line" : breakpoint.reason;
        case BreakpointStatus::Refused: return breakpoint.reason.empty() ? L"Refused" : breakpoint.reason;
        case BreakpointStatus::Disabled: return L"Disabled";
        case BreakpointStatus::Idle: break;
    }
    return breakpoint.enabled ? L"Waits for a program" : L"Disabled";
}

void FillBreakpoints(PaneContent& content) {
    BreakpointsUpdate();
    for (const UserBreakpoint& breakpoint : BreakpointList()) {
        ListRow row;
        row.cells = {BreakpointPlaceText(breakpoint), Utf8ToWideText(breakpoint.condition),
                     breakpoint.hits != 0 ? std::to_wstring(breakpoint.hits) : std::wstring{},
                     BreakpointStateText(breakpoint)};
        row.mark = breakpoint.enabled ? ListMark::Checked : ListMark::Unchecked;
        const bool refused =
            breakpoint.status == BreakpointStatus::NoCode || breakpoint.status == BreakpointStatus::Refused;
        row.tone = !breakpoint.enabled ? ListTone::Quiet : refused ? ListTone::Problem : ListTone::Normal;
        content.rows.push_back(std::move(row));
    }
    content.hint = content.rows.empty() ? L"No breakpoints. F9 sets one on the caret's line." : L"";
}

std::wstring CommitBreakpointCondition(int row, const std::wstring& text) {
    const std::string condition = PaneUtf8(text);
    std::wstring problem = ConditionProblem(condition);
    if (!problem.empty()) return problem;
    if (BreakpointAtRow(row) == nullptr) return {};
    BreakpointSetCondition(static_cast<std::size_t>(row), condition);
    DebugPaneInvalidate();
    return {};
}

void EditBreakpoint(int row, int column) {
    const UserBreakpoint* breakpoint = BreakpointAtRow(row);
    if (breakpoint == nullptr || (column != -1 && column != kCondition)) return;
    ListViewEditCell(PaneList(), row, kCondition, Utf8ToWideText(breakpoint->condition), false,
                     [row](const std::wstring& text) { return CommitBreakpointCondition(row, text); });
}

void GoToBreakpoint(int row, int column) {
    if (BreakpointAtRow(row) != nullptr && column != kCondition) BreakpointJump(static_cast<std::size_t>(row));
}

void SwitchBreakpointOfRow(int row) {
    const UserBreakpoint* breakpoint = BreakpointAtRow(row);
    if (breakpoint != nullptr) BreakpointEnable(static_cast<std::size_t>(row), !breakpoint->enabled);
    DebugPaneInvalidate();
}

void RemoveBreakpointOfRow(int row) {
    if (BreakpointAtRow(row) != nullptr) BreakpointRemove(static_cast<std::size_t>(row));
    DebugPaneInvalidate();
}

bool OnBreakpointKey(int row, int key) {
    if (key != VK_DELETE) return false;
    RemoveBreakpointOfRow(row);
    return true;
}

void ShowBreakpointMenu(int row, POINT screen) {
    const UserBreakpoint* breakpoint = BreakpointAtRow(row);
    if (breakpoint == nullptr) return;
    const std::array<MenuItem, 6> items = {{{kGo, L"&Go to Source\tEnter"},
                                            {kToggle, breakpoint->enabled ? L"&Disable\tSpace" : L"&Enable\tSpace"},
                                            {kEditCondition, L"&Condition...\tF2"},
                                            {0, nullptr},
                                            {kRemove, L"&Remove\tDel"},
                                            {kRemoveAll, L"Remove &All"}}};
    switch (PaneShowMenu(items, screen)) {
        case kGo: GoToBreakpoint(row, -1); break;
        case kToggle: SwitchBreakpointOfRow(row); break;
        case kEditCondition: EditBreakpoint(row, -1); break;
        case kRemove: RemoveBreakpointOfRow(row); break;
        case kRemoveAll:
            BreakpointRemoveAll();
            DebugPaneInvalidate();
            break;
        default: break;
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

const PaneView kBreakpointsView = {.title = L"Breakpoints", .list = &kList, .ofStop = false, .fill = FillBreakpoints};
