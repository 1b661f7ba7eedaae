// The watches view: places of the program and what stands there, edited in the list itself. The list of them lasts for
// the run. UI thread only.
#include "debugui/pane_watches.h"

#include "base/handles.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugger/expressions.h"
#include "debugui/pane_internal.h"

#include <algorithm>
#include <array>
#include <optional>

namespace {

enum Column : int { kExpression, kKind, kValue };
constexpr std::array<ListColumn, 3> kColumns = {
    {{L"Address", 22, 10, true}, {L"Kind", 9, 7, false}, {L"Value", 30, 14, true}}};

enum MenuCommand : UINT { kEditExpression = 1, kEditValue, kRemove, kFirstKind };

constexpr wchar_t kUnreadable[] = L"<unreadable>";
constexpr std::size_t kLongestText = 127;  // bytes that are shown of one

struct WatchList {
    std::vector<Watch> watches;
    std::uint64_t serial = 0;  // of the stop that the values are of
};
WatchList g_list;

Watch* WatchAtRow(int row) {
    return row >= 0 && row < static_cast<int>(g_list.watches.size()) ? &g_list.watches[static_cast<std::size_t>(row)]
                                                                     : nullptr;
}

std::wstring ReadValue(const Watch& watch, std::uint64_t address) {
    const HeapBlock<wchar_t> text(DebugWatchValue(&g_debugger, address, static_cast<int>(watch.kind)));
    return text ? text.get() : L"";
}

// Values as they are now; those of the stop before are what a change is told by.
ListRow WatchRow(Watch& watch, bool newStop) {
    const PaneProgram& program = PaneProgramNow();
    ListRow row;
    std::wstring shown;
    if (program.stopped) {
        const Evaluation address = PaneEvaluate(watch.expression);
        if (newStop) watch.before = watch.value;
        watch.value = address.value ? ReadValue(watch, *address.value) : L"";
        shown = address.value ? watch.value : address.problem;
        if (!address.value || watch.value == kUnreadable) row.tone = ListTone::Problem;
        if (!watch.before.empty() && watch.before != watch.value) row.changed = 1U << kValue;
    } else {
        shown = program.session ? watch.value : L"";
        if (!program.session) watch.value.clear();
        if (!program.session) watch.before.clear();
    }
    row.cells = {watch.expression, WatchKindName(watch.kind), shown};
    return row;
}

void FillWatches(PaneContent& content) {
    const PaneProgram& program = PaneProgramNow();
    const bool newStop = program.stopped && program.serial != g_list.serial;
    if (program.stopped) g_list.serial = program.serial;
    for (Watch& watch : g_list.watches) content.rows.push_back(WatchRow(watch, newStop));
    content.stale = program.session && !program.stopped;
    ListRow empty;
    empty.tone = ListTone::Quiet;
    empty.cells = {L"Type an address here: RSP+8, 0x140002000", L"", L""};
    content.rows.push_back(std::move(empty));
}

void OnWatchesChanged() { DebugPaneInvalidate(); }

void EditWatchExpression(int row, const std::wstring& text, bool append) {
    ListViewEditCell(
        PaneList(), row, kExpression, text, append,
        [row](const std::wstring& typed) {
            if (WatchSetExpression(g_list.watches, static_cast<std::size_t>(row), typed)) OnWatchesChanged();
            return std::wstring{};
        });
}

std::wstring CommitWatchValue(int row, const std::wstring& text) {
    const Watch* watch = WatchAtRow(row);
    if (watch == nullptr || !PaneProgramNow().stopped) return L"The program is not stopped";
    const Evaluation address = PaneEvaluate(watch->expression);
    if (!address.value) return address.problem;
    std::array<char, kLongestText> old = {};
    const std::size_t readable = DebugReadSome(&g_debugger, *address.value, old.data(), old.size());
    const auto length = static_cast<std::size_t>(std::find(old.begin(), old.begin() + readable, '\0') - old.begin());
    const WatchBytes typed = WatchBytesOf(watch->kind, PaneUtf8(text), length);
    if (!typed.problem.empty()) return typed.problem;
    if (!typed.bytes.empty() && !DebugWriteMem(&g_debugger, *address.value, typed.bytes.data(), typed.bytes.size()))
        return L"The memory cannot be written";
    OnWatchesChanged();
    return {};
}

bool HasWatchValue(const Watch* watch) {
    return watch != nullptr && PaneProgramNow().stopped && !watch->value.empty() && watch->value != kUnreadable;
}

void EditWatchValue(int row) {
    const Watch* watch = WatchAtRow(row);
    if (!HasWatchValue(watch)) return;
    ListViewEditCell(PaneList(), row, kValue, WatchEditText(watch->kind, watch->value), false,
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
    RECT cell = ListViewCell(PaneList(), row, kKind);
    POINT at = {cell.left, cell.bottom};
    ClientToScreen(PaneList().window, &at);
    const UINT chosen = PaneShowMenu(items, at);
    if (chosen >= kFirstKind) SetWatchKind(row, static_cast<WatchKind>(chosen - kFirstKind));
}

void OnWatchActivated(int row, int column) {
    if (column == kKind) return ShowKindMenu(row);
    if (WatchAtRow(row) == nullptr) return EditWatchExpression(row, L"", false);
    if (column == kExpression || (column == -1 && !HasWatchValue(WatchAtRow(row))))
        return EditWatchExpression(row, WatchAtRow(row)->expression, false);
    EditWatchValue(row);
}

// One click selects; F2 edits the address.
void OnWatchEdit(int row, int column) {
    if (column == -1) EditWatchExpression(row, WatchAtRow(row) != nullptr ? WatchAtRow(row)->expression : L"", false);
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
