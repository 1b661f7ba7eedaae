// The disassembly view: instructions around where the thread stands, or around an address, below the source lines that
// they come from. UI thread only.
#include "debugui/pane_disassembly.h"

#include "debugger/at_address.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugger/expressions.h"
#include "debugui/code_breakpoints.h"
#include "debugui/pane_internal.h"
#include "debugui/pane_symbols.h"
#include "debugui/step_commands.h"
#include "resources/ids.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array<ListColumn, 3> kColumns = {
    {{L"Address", 13, 12, true}, {L"Bytes", 20, 12, true}, {L"Instruction", 30, 18, true}}};
constexpr std::uint64_t kBytesBefore = 400;
constexpr std::size_t kBytesRead = kBytesBefore + kInstructionsShown * kLongestInstruction;

struct Place {
    std::uint32_t fileId = 0, line = 0;
    bool operator==(const Place&) const = default;
};
struct CodeRow {
    Place place;
    std::uint64_t address = 0;  // of the instruction; 0: a row of source
};
std::vector<CodeRow> g_rows;

struct Code {
    std::uint64_t address = 0;
    std::vector<std::uint8_t> bytes;
};

// Reads memory around an address. When a part before it is unreadable, starts at the address's page, or at the address
// itself.
Code ReadAround(std::uint64_t target) {
    const std::uint64_t wanted = target - std::min(target, kBytesBefore);
    const std::uint64_t page = target & ~std::uint64_t{0xFFF};
    for (const std::uint64_t start : {wanted, std::max(wanted, page), target}) {
        Code code{start, std::vector<std::uint8_t>(kBytesRead)};
        code.bytes.resize(DebugReadSome(&g_debugger, start, code.bytes.data(), code.bytes.size()));
        if (code.bytes.size() > target - start) return code;
    }
    return {};
}

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

Place PlaceAt(std::uint64_t address) {
    Place place;
    if (!DebugLineAt(&g_debugger, address, &place.fileId, &place.line)) return {};
    return place;
}

void AddSourceRow(PaneContent& content, const Place& place) {
    ListRow row;
    row.tone = ListTone::Source;
    row.cells = {std::to_wstring(place.line) + L": " + PaneSourceLine(place.fileId, place.line), L"", L""};
    content.rows.push_back(std::move(row));
    g_rows.push_back({.place = place});
}

std::wstring InstructionText(const DisasmInstruction& instruction) {
    std::wstring text(instruction.text.begin(), instruction.text.end());
    if (!instruction.isBranch) return text;
    const std::wstring target = PanePlaceText(instruction.target);
    return target.empty() ? text : text + L"  ; " + target;
}

void AddRows(PaneContent& content, const Code& code, const std::vector<DisasmInstruction>& list, std::uint64_t target) {
    const bool x64 = g_debugger.isX64 != 0;
    const std::uint64_t current = PaneProgramNow().registers ? PaneProgramNow().registers->ip : 0;
    Place last;
    for (const DisasmInstruction& instruction : list) {
        const Place place = PlaceAt(instruction.address);
        if (place.line != 0 && place != last) AddSourceRow(content, place);
        last = place;
        const auto offset = static_cast<std::size_t>(instruction.address - code.address);
        const auto bytes = std::span(code.bytes).subspan(offset);
        ListRow row;
        row.cells = {HexText(instruction.address, PaneAddressDigits(x64, instruction.address)),
                     CodeBytesText(bytes.first(std::min<std::size_t>(instruction.length, bytes.size()))),
                     InstructionText(instruction)};
        if (CodeBreakpointIsSet(instruction.address)) row.mark = ListMark::Breakpoint;
        if (instruction.address == current) row.mark = ListMark::Current;
        if (instruction.address == target) content.reveal = static_cast<int>(content.rows.size());
        content.rows.push_back(std::move(row));
        g_rows.push_back({.place = place, .address = instruction.address});
    }
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
        content.hint = L"The registers of this thread cannot be read.";
        return;
    }
    std::uint64_t target = program.registers->ip;
    const std::wstring expression = PaneAddressText();
    if (!expression.empty()) {
        const Evaluation address = PaneEvaluate(expression);
        content.problem = address.problem;
        target = address.value.value_or(target);
    }
    const Code code = ReadAround(target);
    const auto list = DisasmAround(code.bytes, code.address, target, g_debugger.isX64 != 0,
                                   LineStarts(code.address, target), PaneSymbolAt);
    AddRows(content, code, list, target);
    if (content.rows.empty()) content.hint = L"No memory can be read at " + HexText(target, 1);
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

enum MenuCommand : UINT { kGo = 1, kRun, kSetNext, kBreakpoint, kStep, kStepOver };

void DoWithInstruction(UINT command, std::uint64_t address) {
    switch (command) {
        case kRun: DebugFollowResumed(DebugRunToAddress(&g_debugger, address), L" (run to instruction)"); break;
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
    const std::array<MenuItem, 7> items = {
        {{kGo, L"&Go to Source\tEnter", code->place.line != 0},
         {kRun, L"&Run to Here", here},
         {kSetNext, L"Set &Next Statement Here", here},
         {kBreakpoint, CodeBreakpointIsSet(address) ? L"Remove &Breakpoint\tF9" : L"Set &Breakpoint\tF9", here},
         {0, nullptr},
         {kStep, L"&Step Instruction\tCtrl+F11", stopped},
         {kStepOver, L"Step &Over Instruction\tCtrl+Shift+F11", stopped}}};
    const UINT chosen = PaneShowMenu(items, screen);
    if (chosen == kGo)
        GoToInstruction(row, -1);
    else if (PaneProgramNow().stopped)
        DoWithInstruction(chosen, address);
}

constexpr ListKind kList = {
    .columns = kColumns, .hasMarks = true, .activate = GoToInstruction, .menu = ShowInstructionMenu};

}  // namespace

const PaneView kDisassemblyView = {.title = L"Disassembly",
                                   .list = &kList,
                                   .ofStop = true,
                                   .fill = FillDisassembly,
                                   .addressCue = L"The current instruction"};

bool DebugPaneStepsInstructions() {
    return &PaneCurrentView() == &kDisassemblyView && PaneList().window != nullptr && GetFocus() == PaneList().window;
}

bool DebugPaneToggleBreakpoint() {
    if (!DebugPaneStepsInstructions()) return false;
    const CodeRow* code = CodeRowAt(ListViewSelected(PaneList()));
    if (code != nullptr && code->address != 0 && PaneProgramNow().stopped) CodeBreakpointToggle(code->address);
    return true;
}
