// The call stack view: that of the shown thread. UI thread only.
#include "debugui/pane_internal.h"

#include "base/texts.h"
#include "debugger/at_address.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_state.h"
#include "debugui/step_commands.h"

#include <array>

namespace {

constexpr std::array<ListColumn, 3> kColumns = {
    {{L"#", 3, 3, true}, {English(L"Address"), 13, 12, true}, {English(L"Place"), 30, 12, true}}};

std::vector<DebugFrame> g_frames;

void FillCallStack(PaneContent& content) {
    const PaneProgram& program = PaneProgramNow();
    g_frames = DebugFrames(&g_debugger, program.thread);
    const bool x64 = g_debugger.isX64 != 0;
    for (std::size_t i = 0; i < g_frames.size(); ++i) {
        const DebugFrame& frame = g_frames[i];
        ListRow row;
        row.mark = i == 0 ? ListMark::Current : i == program.chosenFrame ? ListMark::Chosen : ListMark::None;
        // A return address can be the first instruction of the next line. Its call ends one byte before it.
        const std::uint64_t back = i > 0 && frame.line != 0 ? 1 : 0;
        std::wstring place = PanePlaceText(frame.address - back);
        const std::wstring source = PaneSourceLine(frame.fileId, frame.line);
        if (!source.empty()) place.append(L"  ").append(source);
        row.cells = {std::to_wstring(i), HexText(frame.address, PaneAddressDigits(x64, frame.address)),
                     std::move(place)};
        content.rows.push_back(std::move(row));
    }
    if (content.rows.empty()) content.hint = Text(L"The stack of this thread cannot be read.");
}

enum MenuCommand : UINT { kGo = 1, kCode, kRun };

// Shows the frame's source, and its names in the other views.
void GoToFrame(int row, int) {
    if (row < 0 || row >= static_cast<int>(g_frames.size())) return;
    const DebugFrame frame = g_frames[static_cast<std::size_t>(row)];
    if (PaneProgramNow().stopped) PaneChooseFrame(static_cast<std::size_t>(row));
    PaneGoTo(frame.fileId, frame.line);
}

// What is called from the frame has its frame pointer below the frame's stack pointer.
void RunToFrame(std::size_t row) {
    const std::uint64_t called = row > 0 ? g_frames[row - 1].framePointer : 0;
    DebugFollowResumed(DebugRunToFrame(&g_debugger, g_frames[row].address, PaneProgramNow().thread, called),
                       Text(L" (run to frame)"));
}

void ShowFrameMenu(int row, POINT screen) {
    if (row < 0 || row >= static_cast<int>(g_frames.size())) return;
    const DebugFrame frame = g_frames[static_cast<std::size_t>(row)];
    const bool stopped = PaneProgramNow().stopped;
    const std::array<MenuItem, 6> items = {{{kGo, Text(L"&Go to Source\tEnter"), frame.line != 0},
                                            {kCode, Text(L"Go to &Disassembly"), stopped},
                                            {kRun, Text(L"&Run to This Frame"), stopped && row > 0},
                                            {0, nullptr},
                                            {kPaneCopyRow, Text(L"&Copy\tCtrl+C")},
                                            {kPaneCopyAll, Text(L"Copy A&ll")}}};
    const UINT chosen = PaneShowMenu(items, screen);
    if (chosen == kGo) GoToFrame(row, -1);
    if (chosen == kCode && PaneProgramNow().stopped) PaneShowCode(L"0x" + HexText(frame.address, 1));
    if (chosen == kRun && PaneProgramNow().stopped) RunToFrame(static_cast<std::size_t>(row));
    PaneCopyRows(chosen);
}

constexpr ListKind kList = {.columns = kColumns, .hasMarks = true, .activate = GoToFrame, .menu = ShowFrameMenu};

}  // namespace

const PaneView kStackView = {.title = English(L"Call Stack"), .list = &kList, .ofStop = true, .fill = FillCallStack};
