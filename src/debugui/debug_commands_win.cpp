// The commands of the Debug menu. The command table decides whether each is possible at the moment. UI thread only.
#include "debugui/debug_commands.h"

#include "base/events.h"
#include "base/handles.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "compile/build.h"
#include "compile/build_runner.h"
#include "debugger/debug_exit_trap.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugui/breakpoint_list.h"
#include "debugui/condition_dialog.h"
#include "debugui/debug_pane.h"
#include "debugui/debug_run.h"
#include "debugui/exceptions_dialog.h"
#include "debugui/kept_names.h"
#include "debugui/last_output.h"
#include "debugui/location.h"
#include "debugui/name_place_dialog.h"
#include "debugui/program_dialog.h"
#include "debugui/restart.h"
#include "debugui/step_commands.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/ui_state.h"

namespace {

constexpr int kDumpBytes = 64;

int CaretLineFromOne() {
    const LRESULT caret = SciSend(g_documents.hEditor, SCI_GETCURRENTPOS);
    return static_cast<int>(SciSend(g_documents.hEditor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(caret))) + 1;
}

bool HasSession() { return DebugFlowNow().phase != DebugPhase::None; }

}  // namespace

void DebugBuildAndStart() {
    if (HasSession()) return;
    if (const BuildRefusal refusal = BuildRefusalOfCommand(BuildSituationNow()); refusal != BuildRefusal::None) {
        BuildApplyStep(BuildRefused(refusal));
        return;
    }
    g_debug.debugAfterBuild = true;
    // Set again, because StartCompilerBuild may have completed an earlier build, whose end clears the flag.
    g_debug.debugAfterBuild = StartCompilerBuild(false, true) != 0;
}

namespace {

void RunToCursor() {
    if (!IsTabIndex(g_documents.activeTab)) return;
    const DocumentTab& document = TabAt(g_documents.activeTab);
    const std::uint32_t fileId = DebugFileIdOfPath(&g_debugger, document.path);
    if (fileId == 0) {
        DebugSay(kDebugOrange, Text(L"[Debug] %s is not part of the program.\n"), document.label);
        DebugRunShowUnseen();
        return;
    }
    const int line = CaretLineFromOne();
    const bool resumed = DebugRunToCaret(fileId, line);
    if (!resumed && IsBreakpointTableFull())
        DebugSay(kDebugOrange, Text(L"[Debug] All 64 breakpoints are in use: the way to line %d needs one more.\n"),
                 line);
    else if (!resumed && !SdbgCoversLine(&g_debugger.map, line))
        DebugSay(kDebugOrange,
                 Text(L"[Debug] KeldorBasic tells the debugger the lines of PBMAIN only; line %d is outside.\n"), line);
    else if (!resumed)
        DebugSay(kDebugOrange, Text(L"[Debug] No code on line %d.\n"), line);
    DebugFollowResumed(resumed, Text(L" (run to cursor)"));
    if (!resumed && g_debugger.active != 0 && !IsBreakpointTableFull())
        g_events.statusText(TextWith(L"No code on line {1}", {std::to_wstring(line)}).c_str());
}

void PauseProgram() {
    if (DebugBreakIn(&g_debugger))
        DebugRunPaused();
    else
        DebugSay(kDebugOrange, Text(L"[Debug] The program cannot be paused.\n"));
}

// Writes a heading and a heap text of debug_inspect.h to the output pane, and frees the text.
void SayText(const wchar_t* heading, wchar_t* heapText) {
    const HeapBlock<wchar_t> text(heapText);
    if (!text) return;
    std::wstring shown = heading;
    shown += text.get();
    if (!shown.ends_with(L'\n')) shown += L'\n';
    DebugSay(0, L"%s", shown.c_str());
}

void SayInstruction() {
    const HeapBlock<wchar_t> text(DebugDisassembleAt(&g_debugger, g_debugger.currentAddress));
    if (!text) return;
    DebugSay(0, Text(L"=== Disassembly ===\n"));
    DebugSay(0, L"0x%I64X: %s\n", g_debugger.currentAddress, text.get());
}

void AskForCondition() {
    const DocumentId document = ActiveDocumentId();
    if (document == 0) return;
    const int line = CaretLineFromOne();
    const std::wstring place = FormatW(L"%s:%d", TabAt(g_documents.activeTab).label, line);
    const int existing = BreakpointAt(document, line, false);
    std::string condition =
        existing >= 0 ? BreakpointList()[static_cast<std::size_t>(existing)].condition : std::string();
    const NamedPlaces names = NamesAtLine(document, line);
    if (!AskCondition(g_ui.hMainWnd, place.c_str(), names, &condition)) return;
    const int index = BreakpointAt(document, line, true);
    if (index >= 0) BreakpointSetCondition(static_cast<std::size_t>(index), condition);
}

void ToggleBreakpoint() {
    if (!DebugPaneToggleBreakpoint()) BreakpointToggle(ActiveDocumentId(), CaretLineFromOne());
}

void SwitchBreakpoint() {
    const int index = BreakpointAt(ActiveDocumentId(), CaretLineFromOne(), false);
    if (index < 0) {
        g_events.documentStatus(ActiveDocumentId(), Text(L"No breakpoint on this line (F9 sets one)"));
        return;
    }
    BreakpointEnable(static_cast<std::size_t>(index), !BreakpointList()[static_cast<std::size_t>(index)].enabled);
}

void CommandBuildAndDebug(int) { DebugBuildAndStart(); }
void CommandEndDebugging(int) { DebugRunStop(); }

constexpr CommandHandler kDebugHandlers[] = {
    {IDM_DEBUG_BUILD_START, CommandBuildAndDebug},
    {IDM_DEBUG_START, [](int) { HasSession() ? DebugRunStop() : DebugBuildAndStart(); }},
    {IDM_DEBUG_STOP, CommandEndDebugging},
    {IDM_DEBUG_STEP_OVER, CommandStepOver},
    {IDM_DEBUG_STEP_INTO, CommandStepInto},
    {IDM_DEBUG_STEP_OUT, CommandStepOut},
    {IDM_DEBUG_RUN_TO_CURSOR, [](int) { RunToCursor(); }},
    {IDM_DEBUG_CONTINUE, [](int) { DebugFollowResumed(DebugContinue(&g_debugger), L""); }},
    {IDM_DEBUG_PAUSE, [](int) { PauseProgram(); }},
    {IDM_DEBUG_STEPS_FOLLOW, CommandStepsFollowProgram},
    {IDM_DEBUG_STEP_INSTRUCTION, CommandStepInstruction},
    {IDM_DEBUG_STEP_OVER_INSTRUCTION, CommandStepOverInstruction},
    {IDM_DEBUG_SET_NEXT, CommandSetNextStatement},
    {IDM_DEBUG_RESTART, [](int) { DebugRestart(); }},
    {IDM_DEBUG_PROGRAM, [](int) { AskProgramArguments(g_ui.hMainWnd); }},
    {IDM_DEBUG_NAME_PLACE, [](int) { AskNameOfPlace(g_ui.hMainWnd); }},
    // Toolbar buttons that repeat commands of the menu.
    {IDM_DEBUG_BUTTON_START, CommandBuildAndDebug},
    {IDM_DEBUG_BUTTON_STOP, CommandEndDebugging},
    {IDM_DEBUG_BUTTON_STEP_INTO, CommandStepInto},
    {IDM_DEBUG_BUTTON_STEP_OVER, CommandStepOver},
    {IDM_DEBUG_BUTTON_STEP_OUT, CommandStepOut},
    {IDM_DEBUG_BREAKPOINT, [](int) { ToggleBreakpoint(); }},
    {IDM_DEBUG_CONDITIONAL, [](int) { AskForCondition(); }},
    {IDM_DEBUG_ENABLE_BREAKPOINT, [](int) { SwitchBreakpoint(); }},
    {IDM_DEBUG_REMOVE_BREAKPOINTS, [](int) { BreakpointRemoveAll(); }},
    {IDM_DEBUG_EXCEPTIONS, [](int) { AskExceptionRules(g_ui.hMainWnd); }},
    {IDM_DEBUG_REGISTERS, [](int) { SayText(Text(L"=== Registers ===\n"), DebugFormatRegisters(&g_debugger)); }},
    {IDM_DEBUG_CALL_STACK, [](int) { SayText(L"", DebugWalkStack(&g_debugger)); }},
    {IDM_DEBUG_DISASSEMBLY, [](int) { SayInstruction(); }},
    {IDM_DEBUG_MEMORY,
     [](int) {
         SayText(Text(L"=== Memory Dump ===\n"), DebugHexDump(&g_debugger, g_debugger.currentAddress, kDumpBytes));
     }},
};

}  // namespace

std::span<const CommandHandler> DebugCommandHandlers() { return kDebugHandlers; }

bool CmdHandle_Debug(int command) { return RunCommandHandler(kDebugHandlers, command); }

void DebugUiInit() {
    DebugSetPlantHook(BreakpointsPlantAll);
    DebugSetExitHook(SayLastOutput);
    DebugSetNamesHook(NamesAtStop);
    DebugWindowSaysStart();
}

void DebugOnBuilt() {
    if (CompilerIsBuilding()) return;  // the user has started another build meanwhile
    g_debug.debugAfterBuild = false;
    DebugRunStart();
}

void DebugOnBuildEnd(bool success, bool debug) {
    if (!g_debug.debugAfterBuild) return;
    if (success && debug)
        PostMessageW(g_ui.hMainWnd, MSG_DEBUG_LAUNCH, 0, 0);
    else
        g_debug.debugAfterBuild = false;
}
