// The disassembly view: instructions around where the thread stands, or around an address, below the source lines that
// they come from. UI thread only.
#include "debugui/pane_disassembly.h"

#include "base/texts.h"
#include "base/utf8.h"
#include "debugger/at_address.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugger/expressions.h"
#include "debugui/code_breakpoints.h"
#include "debugui/name_place_dialog.h"
#include "debugui/pane_internal.h"
#include "debugui/pane_symbols.h"
#include "debugui/step_commands.h"
#include "resources/ids.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr std::array<ListColumn, 3> kColumns = {
    {{English(L"Address"), 13, 12, true}, {English(L"Bytes"), 20, 12, true}, {English(L"Instruction"), 30, 18, true}}};
std::vector<CodeRow> g_rows;

std::vector<std::uint64_t> LineStarts(std::uint64_t from, std::uint64_t to) {
    const SdbgMap& map = g_debugger.map;
    std::vector<std::uint64_t> starts;
    for (std::int32_t i = 0; i < map.lineCount; ++i) {
        const std::uint64_t address = map.imageBase + map.lines[i].rva;
        if (address >= from && address < to) starts.push_back(address);
    }
    std::ranges::sort(starts);
    return starts;
}

CodeView::Place CodePlaceAt(std::uint64_t address) {
    CodeView::Place place;
    if (!DebugLineAt(&g_debugger, address, &place.fileId, &place.line)) return {};
    return place;
}

std::size_t ReadCode(std::uint64_t address, void* out, std::size_t count) {
    return DebugReadSome(&g_debugger, address, out, count);
}

struct Shown {
    std::uint64_t serial = 0, target = 0;
    std::uint32_t thread = 0;
    bool operator==(const Shown&) const = default;
};
Shown g_shown;

void FillDisassembly(PaneContent& content) {
    const PaneProgram& program = PaneProgramNow();
    g_rows.clear();
    if (!program.registers) {
        content.hint = Text(L"The registers of this thread cannot be read.");
        return;
    }
    std::uint64_t target = program.registers->ip;
    const std::wstring expression = PaneAddressText();
    if (!expression.empty()) {
        const Evaluation address = PaneEvaluatePlace(expression);
        content.problem = address.problem;
        target = address.value.value_or(target);
    }
    const CodeBytes code = ReadCodeAround(target, ReadCode);
    const auto list = DisasmAround(code.bytes, code.address, target, g_debugger.isX64 != 0,
                                   LineStarts(code.address, target), PaneSymbolAt);
    CodeRows made = RowsOfCode(code, list, target,
                               {.x64 = g_debugger.isX64 != 0,
                                .current = program.registers->ip,
                                .placeAt = CodePlaceAt,
                                .sourceLine = PaneSourceLine,
                                .placeText = PanePlaceText,
                                .hasBreakpoint = CodeBreakpointIsSet});
    content.rows = std::move(made.rows);
    content.reveal = made.target;
    g_rows = std::move(made.meanings);
    if (content.rows.empty()) content.hint = TextWith(L"No memory can be read at {1}", {HexText(target, 1)});
    // A refresh with nothing new does not scroll the list, because the user may have scrolled it.
    const Shown shown = {program.serial, target, program.thread};
    if (shown == g_shown) content.reveal = -1;
    g_shown = shown;
}

const CodeRow* CodeRowAt(int row) {
    return row >= 0 && row < static_cast<int>(g_rows.size()) ? &g_rows[static_cast<std::size_t>(row)] : nullptr;
}

void GoToInstruction(int row, int) {
    if (const CodeRow* code = CodeRowAt(row); code != nullptr) PaneGoTo(code->place.fileId, code->place.line);
}

enum MenuCommand : UINT { kGo = 1, kRun, kSetNext, kBreakpoint, kStep, kStepOver, kName };

void DoWithInstruction(UINT command, std::uint64_t address) {
    switch (command) {
        case kRun: DebugFollowResumed(DebugRunToAddress(&g_debugger, address), Text(L" (run to instruction)")); break;
        case kSetNext: DebugMoveNextStatement(address); break;
        case kBreakpoint: CodeBreakpointToggle(address); break;
        case kStep: PostMessageW(g_ui.hMainWnd, WM_COMMAND, IDM_DEBUG_STEP_INSTRUCTION, 0); break;
        case kStepOver: PostMessageW(g_ui.hMainWnd, WM_COMMAND, IDM_DEBUG_STEP_OVER_INSTRUCTION, 0); break;
        default: break;
    }
}

void ShowInstructionMenu(int row, POINT screen) {
    const CodeRow* code = CodeRowAt(row);
    if (code == nullptr) return;
    const bool stopped = PaneProgramNow().stopped;
    const bool here = stopped && code->address != 0;
    const std::uint64_t address = code->address;  // the rows may change while the menu is open
    const CodeView::Place place = code->place;
    const std::string variable = code->variable;
    const std::wstring name =
        variable.empty() ? Text(L"Na&me a Place...") : TextWith(L"Na&me {1}...", {Utf8ToWideText(variable)});
    const std::array<MenuItem, 12> items = {
        {{kGo, Text(L"&Go to Source\tEnter"), code->place.line != 0},
         {kRun, Text(L"&Run to Here"), here},
         {kSetNext, Text(L"Set &Next Statement Here"), here},
         {kBreakpoint, CodeBreakpointIsSet(address) ? Text(L"Remove &Breakpoint\tF9") : Text(L"Set &Breakpoint\tF9"),
          here},
         {0, nullptr},
         {kStep, Text(L"&Step Instruction\tCtrl+F11"), stopped},
         {kStepOver, Text(L"Step &Over Instruction\tCtrl+Shift+F11"), stopped},
         {0, nullptr},
         {kName, name.c_str(), stopped && !variable.empty()},
         {0, nullptr},
         {kPaneCopyRow, Text(L"&Copy\tCtrl+C")},
         {kPaneCopyAll, Text(L"Copy A&ll")}}};
    const UINT chosen = PaneShowMenu(items, screen);
    PaneCopyRows(chosen);
    if (chosen == kName) AskNameOfPlaceAt(g_ui.hMainWnd, place.fileId, place.line, variable);
    if (chosen == kGo)
        GoToInstruction(row, -1);
    else if (PaneProgramNow().stopped)
        DoWithInstruction(chosen, address);
}

constexpr ListKind kList = {
    .columns = kColumns, .hasMarks = true, .activate = GoToInstruction, .menu = ShowInstructionMenu};

}  // namespace

const PaneView kDisassemblyView = {.title = English(L"Disassembly"),
                                   .list = &kList,
                                   .ofStop = true,
                                   .fill = FillDisassembly,
                                   .addressCue = English(L"The current instruction")};

bool DebugPaneStepsInstructions() {
    return &PaneCurrentView() == &kDisassemblyView && PaneList().window != nullptr && GetFocus() == PaneList().window;
}

bool DebugPaneToggleBreakpoint() {
    if (!DebugPaneStepsInstructions()) return false;
    const CodeRow* code = CodeRowAt(ListViewSelected(PaneList()));
    if (code != nullptr && code->address != 0 && PaneProgramNow().stopped) CodeBreakpointToggle(code->address);
    return true;
}
