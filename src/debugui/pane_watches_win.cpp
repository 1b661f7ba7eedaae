// The watches view: places of the program and what stands there, edited in the list itself. The list of them lasts for
// the run. UI thread only.
#include "debugui/pane_watches.h"

#include "base/handles.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugui/pane_internal.h"

#include <array>

namespace {

constexpr std::array<ListColumn, 3> kColumns = {
    {{L"Address", 22, 10, true}, {L"Kind", 9, 7, false}, {L"Value", 30, 14, true}}};

enum MenuCommand : UINT { kEditExpression = 1, kEditValue, kRemove, kFirstKind };

WatchList g_list;

Watch* WatchAtRow(int row) { return WatchAt(g_list.watches, row); }

std::wstring ReadValue(const Watch& watch, std::uint64_t address) {
    const HeapBlock<wchar_t> text(DebugWatchValue(&g_debugger, address, static_cast<int>(watch.kind)));
    return text ? text.get() : L"";
}

void FillWatches(PaneContent& content) {
    const PaneProgram& program = PaneProgramNow();
    content.rows = WatchRows(g_list, {.session = program.session,
                                      .stopped = program.stopped,
                                      .serial = program.serial,
                                      .evaluate = PaneEvaluate,
                                      .read = ReadValue});
    content.stale = program.session && !program.stopped;
}

void OnWatchesChanged() { DebugPaneInvalidate(); }

void EditWatchExpression(int row, const std::wstring& text, bool append) {
    ListViewEditCell(
        PaneList(), row, kWatchExpression, text, append,
        [row](const std::wstring& typed) {
            if (WatchSetExpression(g_list.watches, static_cast<std::size_t>(row), typed)) OnWatchesChanged();
            return std::wstring{};
        });
}

std::wstring CommitWatchValue(int row, const std::wstring& text) {
    const Watch* watch = WatchAtRow(row);
    if (watch == nullptr || !PaneProgramNow().stopped) return L"The program is not stopped";
    const Evaluation address = PaneEvaluate(watch->expression);
    const WatchBytes typed = WatchInput(watch->kind, address, PaneUtf8(text),
                                        {.read = {}, .readSome = [](std::uint64_t from, void* out, std::size_t count) {
                                             return DebugReadSome(&g_debugger, from, out, count);
                                         }});
    if (!typed.problem.empty()) return typed.problem;
    if (!typed.bytes.empty() && !DebugWriteMem(&g_debugger, *address.value, typed.bytes.data(), typed.bytes.size()))
        return L"The memory cannot be written";
    OnWatchesChanged();
    return {};
}

bool HasWatchValue(const Watch* watch) { return WatchHasValue(watch, PaneProgramNow().stopped); }

void EditWatchValue(int row) {
    const Watch* watch = WatchAtRow(row);
    if (!HasWatchValue(watch)) return;
    ListViewEditCell(PaneList(), row, kWatchValue, WatchEditText(watch->kind, watch->value), false,
                     [row](const std::wstring& text) { return CommitWatchValue(row, text); });
}

void SetWatchKind(int row, WatchKind kind) {
    Watch* watch = WatchAtRow(row);
    if (watch == nullptr || watch->kind == kind) return;
    *watch = {watch->expression, kind, {}, {}};
    OnWatchesChanged();
}

void RemoveWatch(int row) {
    if (WatchSetExpression(g_list.watches, static_cast<std::size_t>(row), L"")) OnWatchesChanged();
}

void ShowKindMenu(int row) {
    const Watch* watch = WatchAtRow(row);
    if (watch == nullptr) return;
    std::array<MenuItem, kWatchKinds> items;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto kind = static_cast<WatchKind>(i);
        items[i] = {
            .id = static_cast<UINT>(kFirstKind + i), .text = WatchKindName(kind), .checked = kind == watch->kind};
    }
    RECT cell = ListViewCell(PaneList(), row, kWatchKind);
    POINT at = {cell.left, cell.bottom};
    ClientToScreen(PaneList().window, &at);
    const UINT chosen = PaneShowMenu(items, at);
    if (chosen >= kFirstKind) SetWatchKind(row, static_cast<WatchKind>(chosen - kFirstKind));
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

void OnWatchTyped(int row, wchar_t character) {
    if (WatchAtRow(row) == nullptr) EditWatchExpression(row, std::wstring(1, character), true);
}

bool OnWatchKey(int row, int key) {
    if (key == VK_DELETE) {
        RemoveWatch(row);
        return true;
    }
    if (key == VK_INSERT) {
        const auto last = static_cast<int>(g_list.watches.size());
        ListViewSelect(PaneList(), last);
        EditWatchExpression(last, L"", false);
        return true;
    }
    return false;
}

void ShowWatchMenu(int row, POINT screen) {
    const Watch* watch = WatchAtRow(row);
    std::vector<MenuItem> items = {{kEditExpression, watch != nullptr ? L"&Edit Address\tF2" : L"&Add\tF2"},
                                   {kEditValue, L"Set &Value\tEnter", HasWatchValue(watch)},
                                   {0, nullptr}};
    for (int i = 0; i < kWatchKinds; ++i) {
        const auto kind = static_cast<WatchKind>(i);
        items.push_back({static_cast<UINT>(kFirstKind + i), WatchKindName(kind), watch != nullptr,
                         watch != nullptr && watch->kind == kind});
    }
    items.push_back({0, nullptr});
    items.push_back({kRemove, L"&Remove\tDel", watch != nullptr});
    const UINT chosen = PaneShowMenu(items, screen);
    if (chosen >= kFirstKind) return SetWatchKind(row, static_cast<WatchKind>(chosen - kFirstKind));
    switch (chosen) {
        case kEditExpression: OnWatchEdit(row, -1); break;
        case kEditValue: EditWatchValue(row); break;
        case kRemove: RemoveWatch(row); break;
        default: break;
    }
}

constexpr ListKind kList = {.columns = kColumns,
                            .activate = OnWatchActivated,
                            .edit = OnWatchEdit,
                            .key = OnWatchKey,
                            .typed = OnWatchTyped,
                            .menu = ShowWatchMenu};

}  // namespace

const PaneView kWatchesView = {.title = L"Watches", .list = &kList, .ofStop = false, .fill = FillWatches};
