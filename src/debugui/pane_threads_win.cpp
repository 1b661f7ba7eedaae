// The threads view. The call stack, registers and disassembly views show the thread that is chosen here. UI thread
// only.
#include "debugui/pane_internal.h"

#include "base/texts.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_state.h"

#include <array>

namespace {

constexpr std::array<ListColumn, 4> kColumns = {{{English(L"Thread"), 7, 5, true},
                                                 {English(L"Kind"), 14, 9, true},
                                                 {English(L"Address"), 13, 12, true},
                                                 {English(L"Place"), 26, 16, true}}};

std::vector<std::uint32_t> g_ids;

void FillThreads(PaneContent& content) {
    const DebuggerState& state = g_debugger;
    const PaneProgram& program = PaneProgramNow();
    g_ids.clear();
    for (const DebugThread& thread : state.threads) {
        RegisterSet registers;
        const bool readable = DebugGetRegisters(&state, thread.id, &registers);
        ListRow row;
        row.cells = {std::to_wstring(thread.id), thread.id == state.mainThreadId ? Text(L"Main") : Text(L"Worker"),
                     readable ? HexText(registers.ip, PaneAddressDigits(state.isX64 != 0, registers.ip)) : L"",
                     readable ? PanePlaceText(registers.ip) : L"<unreadable>"};
        if (thread.id == state.stopThreadId) row.mark = ListMark::Current;
        if (thread.id == program.thread) {
            if (row.mark == ListMark::None) row.mark = ListMark::Chosen;
            row.cells[1] += Text(L", shown");
        }
        g_ids.push_back(thread.id);
        content.rows.push_back(std::move(row));
    }
    if (content.rows.empty()) content.hint = Text(L"No threads.");
}

void ChooseThreadOfRow(int row, int) {
    if (row >= 0 && row < static_cast<int>(g_ids.size())) PaneChooseThread(g_ids[static_cast<std::size_t>(row)]);
}

enum MenuCommand : UINT { kShow = 1, kGo, kCode };

void ShowThreadMenu(int row, POINT screen) {
    if (row < 0 || row >= static_cast<int>(g_ids.size())) return;
    const std::uint32_t id = g_ids[static_cast<std::size_t>(row)];
    const bool stopped = PaneProgramNow().stopped;
    std::uint64_t place = 0;
    std::uint32_t fileId = 0;
    std::uint32_t line = 0;
    const bool known = stopped && DebugPlaceInProgram(&g_debugger, id, &place);
    const bool source = known && DebugLineAt(&g_debugger, place, &fileId, &line);
    const std::array<MenuItem, 6> items = {{{kShow, Text(L"&Show This Thread\tEnter"), stopped},
                                            {kGo, Text(L"&Go to Source"), source},
                                            {kCode, Text(L"Go to &Disassembly"), stopped},
                                            {0, nullptr},
                                            {kPaneCopyRow, Text(L"&Copy\tCtrl+C")},
                                            {kPaneCopyAll, Text(L"Copy A&ll")}}};
    const UINT chosen = PaneShowMenu(items, screen);
    PaneCopyRows(chosen);
    if (!PaneProgramNow().stopped) return;
    if (chosen == kShow || chosen == kCode) PaneChooseThread(id);
    if (chosen == kGo) PaneGoTo(fileId, line);
    if (chosen == kCode) PaneShowCode({});
}

constexpr ListKind kList = {
    .columns = kColumns, .hasMarks = true, .activate = ChooseThreadOfRow, .menu = ShowThreadMenu};

}  // namespace

const PaneView kThreadsView = {.title = English(L"Threads"), .list = &kList, .ofStop = true, .fill = FillThreads};
