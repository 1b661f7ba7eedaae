// The commands of the Debug menu. Whether one is possible now is the command table's affair. UI thread only.
#include "debugui/debug_commands.h"

#include "base/events.h"
#include "base/handles.h"
#include "base/wide_format.h"
#include "compile/build.h"
#include "compile/build_runner.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugui/breakpoint_list.h"
#include "debugui/condition_dialog.h"
#include "debugui/debug_run.h"
#include "debugui/location.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/ui_state.h"

namespace {

constexpr int kDumpBytes = 64;

DebuggerState* Session() { return &g_debugger; }

const DocumentTab* ActiveDocument() {
    return IsTabIndex(g_documents.activeTab) ? &TabAt(g_documents.activeTab) : nullptr;
}

int CaretLine() {
    const LRESULT caret = SciSend(g_documents.hEditor, SCI_GETCURRENTPOS);
    return static_cast<int>(SciSend(g_documents.hEditor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(caret))) + 1;
}

void Start() {
    if (g_debug.debugging) return;
    if (CompilerIsBuilding()) {
        g_events.statusText(kBuildBusy);
        return;
    }
    g_debug.debugAfterBuild = true;
    // Not left to what it was: the start may have settled an earlier build, whose end clears it.
    g_debug.debugAfterBuild = StartCompilerBuild(false, true) != 0;
}

constexpr wchar_t kTableFull[] = L"All 64 breakpoints are in use: remove one, or continue (Ctrl+F5)";

bool IsTableFull() { return Session()->breakpointCount >= kMaxBreakpoints; }

void Go(bool resumed, const wchar_t* suffix) {
    if (resumed) {
        DebugRunFollow(suffix);
        return;
    }
    DebugRunShowUnseen();
    g_events.statusText(IsTableFull() ? kTableFull
                                      : L"No step from here: continue (Ctrl+F5) or run to the cursor (Ctrl+F10)");
}

void RunToCursor() {
    const DocumentTab* document = ActiveDocument();
    if (document == nullptr) return;
    const std::uint32_t fileId = DebugFileIdOfPath(Session(), document->path);
    if (fileId == 0) {
        DebugSay(kDebugOrange, L"[Debug] %s is not part of the program.\n", document->label);
        DebugRunShowUnseen();
        return;
    }
    const int line = CaretLine();
    const bool resumed = DebugRunToLineIn(Session(), fileId, line);
    if (!resumed && IsTableFull())
        DebugSay(kDebugOrange, L"[Debug] All 64 breakpoints are in use: the way to line %d needs one more.\n", line);
    else if (!resumed)
        DebugSay(kDebugOrange, L"[Debug] No code on line %d.\n", line);
    Go(resumed, L" (run to cursor)");
}

void Pause() {
    if (DebugBreakIn(Session()))
        DebugRunPaused();
    else
        DebugSay(kDebugOrange, L"[Debug] The program cannot be paused.\n");
}

// A heap text of the inspection under its heading.
void SayText(const wchar_t* heading, wchar_t* heapText) {
    const HeapBlock<wchar_t> text(heapText);
    if (!text) return;
    std::wstring shown = heading;
    shown += text.get();
    if (!shown.ends_with(L'\n')) shown += L'\n';
    DebugSay(0, L"%s", shown.c_str());
}

void SayInstruction() {
    const HeapBlock<wchar_t> text(DebugDisassembleAt(Session(), Session()->currentAddress));
    if (!text) return;
    DebugSay(0, L"=== Disassembly ===\n");
    DebugSay(0, L"0x%I64X: %s\n", Session()->currentAddress, text.get());
}

void AskForCondition() {
    const DocumentTab* document = ActiveDocument();
    if (document == nullptr) return;
    HWND editor = document->editor;
    const int line = CaretLine();
    const std::wstring place = FormatW(L"%s:%d", document->label, line);
    const int existing = BreakpointAt(editor, line, false);
    std::string condition =
        existing >= 0 ? BreakpointList()[static_cast<std::size_t>(existing)].condition : std::string();
    if (!AskCondition(g_ui.hMainWnd, place.c_str(), &condition)) return;
    const int index = BreakpointAt(editor, line, true);
    if (index >= 0) BreakpointSetCondition(static_cast<std::size_t>(index), condition);
}

void SwitchBreakpoint() {
    const int index = BreakpointAt(g_documents.hEditor, CaretLine(), false);
    if (index < 0) {
        g_events.statusText(L"No breakpoint on this line (F9 sets one)");
        return;
    }
    BreakpointEnable(static_cast<std::size_t>(index), !BreakpointList()[static_cast<std::size_t>(index)].enabled);
}

void CommandStepOver(int) { Go(DebugStepOver(Session()), L""); }
void CommandStepInto(int) { Go(DebugStepInto(Session()), L" (step into)"); }
void CommandStepOut(int) { Go(DebugStepOut(Session()), L" (step out)"); }
void CommandBuildAndDebug(int) { Start(); }
void CommandEndDebugging(int) { DebugRunStop(); }

constexpr CommandHandler kDebugHandlers[] = {
    {IDM_DEBUG_BUILD_START, CommandBuildAndDebug},
    {IDM_DEBUG_START, [](int) { g_debug.debugging ? DebugRunStop() : Start(); }},
    {IDM_DEBUG_STOP, CommandEndDebugging},
    {IDM_DEBUG_STEP_OVER, CommandStepOver},
    {IDM_DEBUG_STEP_INTO, CommandStepInto},
    {IDM_DEBUG_STEP_OUT, CommandStepOut},
    {IDM_DEBUG_RUN_TO_CURSOR, [](int) { RunToCursor(); }},
    {IDM_DEBUG_CONTINUE, [](int) { Go(DebugContinue(Session()), L""); }},
    {IDM_DEBUG_PAUSE, [](int) { Pause(); }},
    // Buttons that stand for commands of the menu.
    {IDM_DEBUG_BUTTON_START, CommandBuildAndDebug},
    {IDM_DEBUG_BUTTON_STOP, CommandEndDebugging},
    {IDM_DEBUG_BUTTON_STEP_INTO, CommandStepInto},
    {IDM_DEBUG_BUTTON_STEP_OVER, CommandStepOver},
    {IDM_DEBUG_BUTTON_STEP_OUT, CommandStepOut},
    {IDM_DEBUG_BREAKPOINT, [](int) { BreakpointToggle(g_documents.hEditor, CaretLine()); }},
    {IDM_DEBUG_CONDITIONAL, [](int) { AskForCondition(); }},
    {IDM_DEBUG_ENABLE_BREAKPOINT, [](int) { SwitchBreakpoint(); }},
    {IDM_DEBUG_REMOVE_BREAKPOINTS, [](int) { BreakpointRemoveAll(); }},
    {IDM_DEBUG_REGISTERS, [](int) { SayText(L"=== Registers ===\n", DebugFormatRegisters(Session())); }},
    {IDM_DEBUG_CALL_STACK, [](int) { SayText(L"", DebugWalkStack(Session())); }},
    {IDM_DEBUG_DISASSEMBLY, [](int) { SayInstruction(); }},
    {IDM_DEBUG_MEMORY,
     [](int) { SayText(L"=== Memory Dump ===\n", DebugHexDump(Session(), Session()->currentAddress, kDumpBytes)); }},
};

}  // namespace

std::span<const CommandHandler> DebugCommandHandlers() { return kDebugHandlers; }

void DebugUiInit() { DebugSetPlantHook(BreakpointsPlantAll); }

void DebugOnBuilt() {
    if (CompilerIsBuilding()) return;  // asked for again meanwhile
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
