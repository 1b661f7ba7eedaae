// The watches view: places of the program and what stands there, edited in the list itself. The list of them lasts for
// the run. UI thread only.
#include "debugui/pane_watches.h"

#include "base/texts.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugui/pane_internal.h"
#include "resources/ids.h"
#include "ui/ui_state.h"

#include <array>
#include <vector>

namespace {

constexpr std::array<ListColumn, 3> kColumns = {
    {{English(L"Address"), 22, 10, true}, {English(L"Kind"), 9, 7, true}, {English(L"Value"), 30, 14, true}}};

enum MenuCommand : UINT { kEditExpression = 1, kEditValue, kRemove, kRemoveAll, kName, kMemory, kFirstKind };

WatchList g_list;

Watch* WatchAtRow(int row) { return WatchAt(g_list.watches, row); }

std::wstring ReadValue(const Watch& watch, std::uint64_t address) {
    return DebugShownValue(&g_debugger, address, KindOfWatch(watch));
}

void FillWatches(PaneContent& content) {
    const PaneProgram& program = PaneProgramNow();
    content.rows = WatchRows(g_list, {.session = program.session,
                                      .stopped = program.stopped,
                                      .x64 = !program.session || g_debugger.isX64 != 0,
                                      .serial = program.serial,
                                      .evaluate = PaneEvaluatePlace,
                                      .kindOf = PaneKindOf,
                                      .read = ReadValue});
    content.stale = program.session && !program.stopped;
}

void OnWatchesChanged() { DebugPaneInvalidate(); }

// A definition, "i = RBP-4, LONG", gives the name and watches it.
std::wstring CommitWatchExpression(int row, std::wstring typed) {
    if (IsNamedDefinition(PaneUtf8(typed))) {
        std::wstring problem = PaneNamePlace(typed, {}, WatchKind::Long);
        if (!problem.empty()) return problem;
        typed = typed.substr(0, typed.find(L'='));
    }
    if (WatchSetExpression(g_list.watches, static_cast<std::size_t>(row), typed)) OnWatchesChanged();
    return {};
}

void EditWatchExpression(int row, const std::wstring& text, bool append) {
    ListViewEditCell(
        PaneList(), row, kWatchExpression, text, append,
        [row](const std::wstring& typed) { return CommitWatchExpression(row, typed); });
}

std::wstring CommitWatchValue(int row, const std::wstring& text) {
    const Watch* watch = WatchAtRow(row);
    if (watch == nullptr) return Text(L"The watch is gone");
    std::wstring problem = PaneWriteValue(KindOfWatch(*watch), PaneEvaluatePlace(watch->expression), text);
    if (problem.empty()) OnWatchesChanged();
    return problem;
}

bool HasWatchValue(const Watch* watch) { return WatchHasValue(watch, PaneProgramNow().stopped); }

void EditWatchValue(int row) {
    const Watch* watch = WatchAtRow(row);
    if (!HasWatchValue(watch)) return;
    ListViewEditCell(PaneList(), row, kWatchValue, WatchEditText(KindOfWatch(*watch), watch->value), false,
                     [row](const std::wstring& text) { return CommitWatchValue(row, text); });
}

void SetWatchKind(int row, WatchKind kind) {
    Watch* watch = WatchAtRow(row);
    if (watch == nullptr || KindOfWatch(*watch) == kind) return;
    *watch = {.expression = watch->expression, .kind = kind, .value = {}, .before = {}, .chosen = true};
    OnWatchesChanged();
}

void RemoveWatch(int row) {
    if (WatchSetExpression(g_list.watches, static_cast<std::size_t>(row), L"")) OnWatchesChanged();
}

void ShowKindMenu(int row) {
    const Watch* watch = WatchAtRow(row);
    if (watch == nullptr) return;
    if (const auto kind = PaneAskKind(row, kWatchKind, KindOfWatch(*watch))) SetWatchKind(row, *kind);
}

// One click selects; F2 edits the address.
void OnWatchEdit(int row, int column) {
    if (column == -1) EditWatchExpression(row, WatchAtRow(row) != nullptr ? WatchAtRow(row)->expression : L"", false);
}

void OnWatchActivated(int row, int column) {
    switch (WatchActionOf(column, WatchAtRow(row), PaneProgramNow().stopped)) {
        case WatchAction::ChooseKind: ShowKindMenu(row); break;
        case WatchAction::EditExpression: OnWatchEdit(row, -1); break;
        case WatchAction::EditValue: EditWatchValue(row); break;
    }
}

// The row of the watch before this one may not be there yet, and its coming would close the field.
void AddWatchAtEnd(const std::wstring& text, bool typed) {
    PaneCatchUp();
    const auto last = static_cast<int>(g_list.watches.size());
    ListViewSelect(PaneList(), last);
    EditWatchExpression(last, text, typed);
}

// Begins another watch in whichever row: after Enter the new one is selected, and the next name is typed.
void OnWatchTyped(int, wchar_t character) { AddWatchAtEnd(std::wstring(1, character), true); }

bool OnWatchKey(int row, int key) {
    if (key == VK_DELETE) {
        RemoveWatch(row);
        return true;
    }
    if (key == VK_INSERT) {
        AddWatchAtEnd(L"", false);
        return true;
    }
    return false;
}

void DoWithWatch(UINT chosen, int row) {
    switch (chosen) {
        case kEditExpression: OnWatchEdit(row, -1); break;
        case kEditValue: EditWatchValue(row); break;
        case kMemory:
            if (const Watch* watch = WatchAtRow(row); watch != nullptr) PaneShowMemory(watch->expression);
            break;
        case kName: PostMessageW(g_ui.hMainWnd, WM_COMMAND, IDM_DEBUG_NAME_PLACE, 0); break;
        case kRemove: RemoveWatch(row); break;
        case kRemoveAll:
            g_list.watches.clear();
            OnWatchesChanged();
            break;
        default: PaneCopyRows(chosen); break;
    }
}

void ShowWatchMenu(int row, POINT screen) {
    const Watch* watch = WatchAtRow(row);
    const bool there = watch != nullptr;
    const bool hasPlace = there && PaneProgramNow().stopped && PaneEvaluatePlace(watch->expression).value.has_value();
    std::vector<MenuItem> items = {{kEditExpression, there ? Text(L"&Edit Address\tF2") : Text(L"&Add\tF2")},
                                   {kEditValue, Text(L"Set &Value\tEnter"), HasWatchValue(watch)},
                                   {0, nullptr}};
    for (int i = 0; i < kWatchKinds; ++i) {
        const auto kind = static_cast<WatchKind>(i);
        items.push_back(
            {static_cast<UINT>(kFirstKind + i), WatchKindName(kind), there, there && KindOfWatch(*watch) == kind});
    }
    items.insert(items.end(), {{0, nullptr},
                               {kName, Text(L"&Name a Place...")},
                               {kMemory, Text(L"Show &Memory There"), hasPlace},
                               {0, nullptr},
                               {kPaneCopyRow, Text(L"&Copy\tCtrl+C")},
                               {kPaneCopyAll, Text(L"Copy A&ll")},
                               {0, nullptr},
                               {kRemove, Text(L"&Remove\tDel"), there},
                               {kRemoveAll, Text(L"Rem&ove All"), !g_list.watches.empty()}});
    const UINT chosen = PaneShowMenu(items, screen);
    if (chosen >= kFirstKind && chosen < kFirstKind + kWatchKinds)
        SetWatchKind(row, static_cast<WatchKind>(chosen - kFirstKind));
    else if (chosen != 0)
        DoWithWatch(chosen, row);
}

constexpr ListKind kList = {.columns = kColumns,
                            .activate = OnWatchActivated,
                            .edit = OnWatchEdit,
                            .key = OnWatchKey,
                            .typed = OnWatchTyped,
                            .menu = ShowWatchMenu};

}  // namespace

void PaneAddWatch(const std::wstring& expression, std::optional<WatchKind> kind) {
    WatchSetExpression(g_list.watches, g_list.watches.size(), expression);
    if (kind) SetWatchKind(static_cast<int>(g_list.watches.size()) - 1, *kind);
    DebugPaneSelect(DebugTab::Watches);
}

const PaneView kWatchesView = {.title = English(L"Watches"), .list = &kList, .ofStop = false, .fill = FillWatches};
