// Steps, as the Debug menu offers them. UI thread only.
#include "debugui/step_commands.h"

#include "base/events.h"
#include "base/texts.h"
#include "debugger/at_address.h"
#include "debugger/debug_follow.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/step_rules.h"
#include "debugui/debug_pane.h"
#include "debugui/debug_run.h"
#include "debugui/location.h"
#include "debugui/next_statement.h"
#include "disasm/disasm.h"
#include "documents/document_row.h"
#include "program/debug_say.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr const wchar_t* kTableFull = English(L"All 64 breakpoints are in use: remove one, or continue (Ctrl+F5)");
constexpr const wchar_t* kNoStep = English(L"No step from here: continue (Ctrl+F5) or run to the cursor (Ctrl+F10)");

bool FollowsProgram() { return g_settings.stepsFollowProgram != 0; }

// A step by address may run far: past the end of a loop, or to the end of the program. DebugRunFollow then says which
// menu item avoids that. In a program with traps of its own, steps go from trap to trap anyway.
void AfterStep(bool resumed, const wchar_t* suffix) {
    if (resumed && !FollowsProgram() && g_debugger.map.nativeTrapMap == 0)
        DebugRunFollow(suffix, true);
    else
        DebugFollowResumed(resumed, suffix);
}

void Step(FollowKind kind, bool (*byAddress)(DebuggerState*), const wchar_t* suffix) {
    AfterStep(FollowsProgram() ? DebugFollowStep(&g_debugger, kind) : byAddress(&g_debugger), suffix);
}

// Whether a step into by address goes over a call of a procedure of the program, because arguments are evaluated before
// the call.
bool StepsOverCall() {
    constexpr std::uint64_t kMostBytes = 1024;
    const DebuggerState& state = g_debugger;
    const StepTarget next = StepOverTarget(state.map, state.currentAddress);
    if (next.kind != StepTarget::Kind::Address || next.address <= state.currentAddress) return false;
    std::vector<std::uint8_t> bytes(std::min(next.address - state.currentAddress, kMostBytes));
    bytes.resize(DebugReadSome(&state, state.currentAddress, bytes.data(), bytes.size()));
    const auto calls = [&](const DisasmInstruction& each) {
        std::uint32_t file = 0, line = 0;
        return each.isCall && each.address != state.currentAddress && each.target != 0 &&
               DebugLineAt(&state, each.target, &file, &line) && line > 0;
    };
    return std::ranges::any_of(DisasmRange(bytes, state.currentAddress, state.isX64 != 0, {}, bytes.size()), calls);
}

// Once for each program that is debugged.
void SayStepsFollow() {
    static DWORD toldOf = 0;
    if (!FlowIsStopped(DebugFlowNow()) || std::exchange(toldOf, g_debugger.processId) == g_debugger.processId) return;
    DebugSay(kDebugOrange, Text(L"[Debug] The step went over a call. To go into calls: Debug > Steps Follow the "
                                L"Program.\n"));
    g_events.statusText(Text(L"The step went over a call; Debug > Steps Follow the Program goes into it"));
}

std::string LineOfEditor(int line) {
    const auto index = static_cast<WPARAM>(line - 1);
    std::string text(static_cast<std::size_t>(SciSend(g_documents.hEditor, SCI_LINELENGTH, index)), '\0');
    SciSend(g_documents.hEditor, SCI_GETLINE, index, reinterpret_cast<LPARAM>(text.data()));
    return text;
}

}  // namespace

bool IsBreakpointTableFull() { return g_debugger.breakpointCount >= kMaxBreakpoints; }

void DebugFollowResumed(bool resumed, const wchar_t* suffix) {
    if (resumed) {
        DebugRunFollow(suffix, false);
        return;
    }
    if (DebugRunEndOutside()) return;
    DebugRunShowUnseen();
    g_events.statusText(Text(IsBreakpointTableFull() ? kTableFull : kNoStep));
}

// In the disassembly the keys of the two steps go from instruction to instruction, as the rows do.
void CommandStepOver(int command) {
    if (DebugPaneStepsInstructions()) return CommandStepOverInstruction(command);
    Step(FollowKind::Over, DebugStepOver, L"");
}

void CommandStepInto(int command) {
    if (DebugPaneStepsInstructions()) return CommandStepInstruction(command);
    const bool goesOver = !FollowsProgram() && g_debugger.map.nativeTrapMap == 0 && StepsOverCall();
    Step(FollowKind::Into, DebugStepInto, Text(L" (step into)"));
    if (goesOver) SayStepsFollow();
}

void CommandStepOut(int) { Step(FollowKind::Out, DebugStepOut, Text(L" (step out)")); }

void CommandStepInstruction(int) {
    DebugFollowResumed(DebugFollowStep(&g_debugger, FollowKind::Instruction), Text(L" (instruction)"));
}

void CommandStepOverInstruction(int) {
    DebugFollowResumed(DebugFollowStep(&g_debugger, FollowKind::InstructionOver), Text(L" (instruction)"));
}

bool DebugRunToCaret(unsigned fileId, int line) {
    if (!FollowsProgram()) return DebugRunToLineIn(&g_debugger, fileId, line);
    const std::uint32_t rva = SdbgFileLineToRva(&g_debugger.map, fileId, line);
    return rva != 0 && DebugRunToAddress(&g_debugger, g_debugger.map.imageBase + rva);
}

void DebugMoveNextStatement(unsigned long long address) {
    if (!DebugSetNextStatement(&g_debugger, address)) {
        DebugSay(kDebugOrange,
                 Text(L"[Debug] The next statement cannot be set there: the program must stand on a line of "
                      L"its own, and so must the place.\n"));
        return;
    }
    DebugRunShowAgain(Text(L" (next statement set)"));
}

void CommandSetNextStatement(int) {
    if (!IsTabIndex(g_documents.activeTab)) return;
    const DocumentTab& document = TabAt(g_documents.activeTab);
    const std::uint32_t fileId = DebugFileIdOfPath(&g_debugger, document.path);
    const LRESULT caret = SciSend(g_documents.hEditor, SCI_GETCURRENTPOS);
    const int line =
        static_cast<int>(SciSend(g_documents.hEditor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(caret))) + 1;
    const std::uint32_t rva = fileId != 0 ? SdbgFileLineToRva(&g_debugger.map, fileId, line) : 0;
    const std::uint64_t address = g_debugger.map.imageBase + rva;
    const std::wstring problem = NextStatementProblem({.from = g_debugger.currentLine,
                                                       .to = line,
                                                       .otherFile = fileId != g_debugger.currentFileId,
                                                       .hasCode = rva != 0,
                                                       .standsThere = DebugNextIsAt(&g_debugger, address),
                                                       .frameMissing = DebugFrameIsMissing(&g_debugger)},
                                                      LineOfEditor);
    if (problem.empty())
        DebugMoveNextStatement(address);
    else
        DebugSay(kDebugOrange, L"%s", problem.c_str());
}

void CommandStepsFollowProgram(int) {
    SettingsChange([](Settings& settings) { settings.stepsFollowProgram = settings.stepsFollowProgram != 0 ? 0 : 1; });
    SettingsSave(nullptr);
    g_events.statusText(FollowsProgram() ? Text(L"Steps follow the program")
                                         : Text(L"Steps go to the next line by address"));
}
