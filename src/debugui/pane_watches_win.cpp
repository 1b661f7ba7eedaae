// The watches view: places of the program and what stands there, edited in the list itself. The list of them lasts for
// the run. UI thread only.
#include "debugui/pane_watches.h"

#include "base/handles.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugger/expressions.h"
#include "debugui/debugui_state.h"
#include "debugui/pane_internal.h"
#include "resources/ids.h"

#include <algorithm>
#include <array>
#include <optional>

namespace {

enum Column : int { kExpression, kKind, kValue };
constexpr std::array<PaneColumn, 3> kColumns = {
    {{L"Address", 22, 10, true}, {L"Kind", 9, 7, false}, {L"Value", 30, 14, true}}};

enum MenuCommand : UINT { kEditExpression = 1, kEditValue, kRemove, kFirstKind };

constexpr wchar_t kUnreadable[] = L"<unreadable>";
constexpr std::size_t kLongestText = 127;  // bytes that are shown of one

struct WatchList {
    std::vector<Watch> watches;
    std::uint64_t serial = 0;  // of the stop that the values are of
};
WatchList g_list;

Watch* At(int row) {
    return row >= 0 && row < static_cast<int>(g_list.watches.size()) ? &g_list.watches[static_cast<std::size_t>(row)]
                                                                     : nullptr;
}

std::wstring ReadValue(const Watch& watch, std::uint64_t address) {
    const HeapBlock<wchar_t> text(DebugWatchValue(&g_debugger, address, static_cast<int>(watch.kind)));
    return text ? text.get() : L"";
}

// Values as they are now; those of the stop before are what a change is told by.
PaneRow RowOf(Watch& watch, bool newStop) {
    const PaneProgram& program = PaneProgramNow();
    PaneRow row;
    std::wstring shown;
    if (program.stopped) {
        const Evaluation address = PaneEvaluate(watch.expression);
        if (newStop) watch.before = watch.value;
        watch.value = address.value ? ReadValue(watch, *address.value) : L"";
        shown = address.value ? watch.value : address.problem;
        if (!address.value || watch.value == kUnreadable) row.tone = PaneTone::Problem;
        if (!watch.before.empty() && watch.before != watch.value) row.changed = 1U << kValue;
    } else {
        shown = program.session ? watch.value : L"";
        if (!program.session) watch.value.clear();
        if (!program.session) watch.before.clear();
    }
    row.cells = {watch.expression, WatchKindName(watch.kind), shown};
    return row;
}

void Fill(PaneContent& content) {
    const PaneProgram& program = PaneProgramNow();
    const bool newStop = program.stopped && program.serial != g_list.serial;
    if (program.stopped) g_list.serial = program.serial;
    for (Watch& watch : g_list.watches) content.rows.push_back(RowOf(watch, newStop));
    content.stale = program.session && !program.stopped;
    PaneRow empty;
    empty.tone = PaneTone::Quiet;
    empty.cells = {L"Type an address here: RSP+8, 0x140002000", L"", L""};
    content.rows.push_back(std::move(empty));
}

void Changed() { DebugPaneInvalidate(); }

void EditExpression(int row, const std::wstring& text, bool append) {
    PaneEditBegin(
        row, kExpression, text, append,
        [row](const std::wstring& typed) {
            if (WatchSetExpression(g_list.watches, static_cast<std::size_t>(row), typed)) Changed();
            return std::wstring{};
        });
}

std::wstring CommitValue(int row, const std::wstring& text) {
    const Watch* watch = At(row);
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
    Changed();
    return {};
}

bool HasValue(const Watch* watch) {
    return watch != nullptr && PaneProgramNow().stopped && !watch->value.empty() && watch->value != kUnreadable;
}

void EditValue(int row) {
    const Watch* watch = At(row);
    if (!HasValue(watch)) return;
    PaneEditBegin(row, kValue, WatchEditText(watch->kind, watch->value), false,
                  [row](const std::wstring& text) { return CommitValue(row, text); });
}

void SetKind(int row, WatchKind kind) {
    Watch* watch = At(row);
    if (watch == nullptr || watch->kind == kind) return;
    *watch = {watch->expression, kind, {}, {}};
    Changed();
}

void Remove(int row) {
    if (WatchSetExpression(g_list.watches, static_cast<std::size_t>(row), L"")) Changed();
}

void ShowKindMenu(int row) {
    const Watch* watch = At(row);
    if (watch == nullptr) return;
    std::array<PaneMenuItem, kWatchKinds> items;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto kind = static_cast<WatchKind>(i);
        items[i] = {static_cast<UINT>(kFirstKind + i), WatchKindName(kind), true, kind == watch->kind};
    }
    RECT cell = PaneListCell(row, kKind);
    POINT at = {cell.left, cell.bottom};
    ClientToScreen(GetDlgItem(g_debugUi.hDebugPane, IDC_DEBUG_LIST), &at);
    const UINT chosen = PaneShowMenu(items, at);
    if (chosen >= kFirstKind) SetKind(row, static_cast<WatchKind>(chosen - kFirstKind));
}

void Activate(int row, int column) {
    if (column == kKind) return ShowKindMenu(row);
    if (At(row) == nullptr) return EditExpression(row, L"", false);
    if (column == kExpression || (column == -1 && !HasValue(At(row))))
        return EditExpression(row, At(row)->expression, false);
    EditValue(row);
}

// One click selects; F2 edits the address.
void Edit(int row, int column) {
    if (column == -1) EditExpression(row, At(row) != nullptr ? At(row)->expression : L"", false);
}

void Typed(int row, wchar_t character) {
    if (At(row) == nullptr) EditExpression(row, std::wstring(1, character), true);
}

bool Key(int row, int key) {
    if (key == VK_DELETE) {
        Remove(row);
        return true;
    }
    if (key == VK_INSERT) {
        const auto last = static_cast<int>(g_list.watches.size());
        PaneListSelect(last);
        EditExpression(last, L"", false);
        return true;
    }
    return false;
}

void Menu(int row, POINT screen) {
    const Watch* watch = At(row);
    std::vector<PaneMenuItem> items = {{kEditExpression, watch != nullptr ? L"&Edit Address\tF2" : L"&Add\tF2"},
                                       {kEditValue, L"Set &Value\tEnter", HasValue(watch)},
                                       {0, nullptr}};
    for (int i = 0; i < kWatchKinds; ++i) {
        const auto kind = static_cast<WatchKind>(i);
        items.push_back({static_cast<UINT>(kFirstKind + i), WatchKindName(kind), watch != nullptr,
                         watch != nullptr && watch->kind == kind});
    }
    items.push_back({0, nullptr});
    items.push_back({kRemove, L"&Remove\tDel", watch != nullptr});
    const UINT chosen = PaneShowMenu(items, screen);
    if (chosen >= kFirstKind) return SetKind(row, static_cast<WatchKind>(chosen - kFirstKind));
    switch (chosen) {
        case kEditExpression: Edit(row, -1); break;
        case kEditValue: EditValue(row); break;
        case kRemove: Remove(row); break;
        default: break;
    }
}

}  // namespace

const PaneView kWatchesView = {.title = L"Watches",
                               .columns = kColumns,
                               .ofStop = false,
                               .hasMarks = false,
                               .fill = Fill,
                               .activate = Activate,
                               .edit = Edit,
                               .key = Key,
                               .typed = Typed,
                               .menu = Menu};
