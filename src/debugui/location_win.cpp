// Files and lines of a debugged program in the editors. This runs at every step, so it does little to the editor: it
// moves a marker and the caret, and scrolls only when the line is not well in view. UI thread only.
#include "debugui/location.h"

#include "base/path.h"
#include "base/texts.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugui/breakpoint_rules.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "editor/caret_place.h"
#include "editor/margins.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "scintilla/sci.h"

#include <algorithm>

namespace {

constexpr int kContext = 3;  // lines above and below a stop that stay in view

// The mark of the line where the program stands.
struct StopMark {
    DocumentId document = 0;
    int arrow = -1;       // marker handle
    int background = -1;  // marker handle
    int over = -1;        // marker handle; over the sign of a breakpoint
};
StopMark g_mark;

struct SourceLine {
    std::wstring path;  // empty: no source
    int line = 0;
    bool ofCaller = false;  // the stop is in a library; this is the program's line that called it
};

// The program's line from which a library was called in which the program has stopped.
SourceLine SourceOfCaller(const DebuggerState& state) {
    std::uint64_t address = 0;
    std::uint32_t fileId = 0;
    std::uint32_t line = 0;
    if (state.run != DebugRun::Stopped || !DebugCallerOfLibrary(&state, &address)) return {};
    if (!DebugLineAt(&state, address - 1, &fileId, &line) || line > kLastMapLine) return {};
    return {.path = DebugFilePath(&state, fileId), .line = static_cast<int>(line), .ofCaller = true};
}

SourceLine SourceOfStop(const DebuggerState& state) {
    std::uint32_t fileId = 0;
    std::uint32_t line = 0;
    const bool found = state.currentLine <= 0 && DebugLineAt(&state, state.currentAddress, &fileId, &line);
    const StopPlace place = StopPlaceOf(state.currentLine, state.currentFileId, found, fileId, line);
    if (place.line == 0) return SourceOfCaller(state);
    return {.path = DebugFilePath(&state, place.fileId), .line = place.line};
}

void RemoveMark() {
    if (const int tab = TabBarFindDocument(g_mark.document); tab >= 0) {
        SciSend(TabAt(tab).editor, SCI_MARKERDELETEHANDLE, static_cast<WPARAM>(g_mark.arrow));
        SciSend(TabAt(tab).editor, SCI_MARKERDELETEHANDLE, static_cast<WPARAM>(g_mark.background));
        SciSend(TabAt(tab).editor, SCI_MARKERDELETEHANDLE, static_cast<WPARAM>(g_mark.over));
    }
    g_mark = {};
}

int MarkerOfHandle(HWND editor, int handle) {
    const LRESULT line = SciSend(editor, SCI_MARKERLINEFROMHANDLE, static_cast<WPARAM>(handle));
    for (LPARAM which = 0; line >= 0; ++which) {
        const LRESULT each = SciSend(editor, SCI_MARKERHANDLEFROMLINE, static_cast<WPARAM>(line), which);
        if (each < 0) break;
        if (each == handle)
            return static_cast<int>(SciSend(editor, SCI_MARKERNUMBERFROMLINE, static_cast<WPARAM>(line), which));
    }
    return -1;
}

int LineCountOf(HWND editor) { return static_cast<int>(SciSend(editor, SCI_GETLINECOUNT)); }

// Removes the old mark first, because opening the file of a stop has set one already (DebugRestoreLocation). A line
// that the text does not have gets no mark, because any other line would be wrong.
void PutMark(const DocumentTab& tab, int line) {
    RemoveMark();
    if (line > LineCountOf(tab.editor)) return;
    const auto index = static_cast<WPARAM>(line - 1);
    g_mark = {.document = tab.id,
              .arrow = static_cast<int>(SciSend(tab.editor, SCI_MARKERADD, index, kMarkCurrent)),
              .background = static_cast<int>(SciSend(tab.editor, SCI_MARKERADD, index, kMarkCurrentLine))};
    DebugShowStopOver(tab.id);
}

// Says why a file cannot be shown. For a stop it says so once a session, because every step in that file would repeat
// it.
bool RefuseFile(const std::wstring& path, bool ofStop, const wchar_t* format) {
    const bool first = DebugFirstTold(path);
    if (first || !ofStop) DebugSay(0, format, path.c_str());
    return false;
}

bool ShowSourceFile(const std::wstring& path, bool ofStop) {
    if (path.empty()) return false;
    const int tab = TabBarFindPath(path.c_str());
    if (tab >= 0) {
        if (tab != g_documents.activeTab) TabBarSelect(tab);
        return true;
    }
    if (!PathAnswers(path.c_str()))
        return RefuseFile(path, ofStop, Text(L"[Debug] The place of the file does not answer: %s\n"));
    if (!FileExists(path.c_str())) return RefuseFile(path, ofStop, Text(L"[Debug] The file is not there: %s\n"));
    return FileShow(path.c_str(), true) != 0 ||
           RefuseFile(path, ofStop, Text(L"[Debug] The file cannot be opened: %s\n"));
}

}  // namespace

bool DebugShowFile(const std::wstring& path) { return ShowSourceFile(path, false); }

void DebugScrollToLine(HWND editor, int line) {
    const auto index = static_cast<WPARAM>(std::min(line, LineCountOf(editor)) - 1);
    CaretUncoverLine(editor, static_cast<LRESULT>(index));
    const auto ask = [&](UINT message, WPARAM argument = 0) {
        return static_cast<int>(SciSend(editor, message, argument));
    };
    const int first = ask(SCI_GETFIRSTVISIBLELINE);
    const int wanted = ScrollForStop(first, ask(SCI_LINESONSCREEN), ask(SCI_VISIBLEFROMDOCLINE, index), kContext);
    const LRESULT start = SciSend(editor, SCI_POSITIONFROMLINE, index);
    SciSend(editor, SCI_SETEMPTYSELECTION, static_cast<WPARAM>(start));
    if (wanted != first) SciSend(editor, SCI_SETFIRSTVISIBLELINE, static_cast<WPARAM>(wanted));
}

std::wstring DebugPlaceText(const DebuggerState* state) {
    const SourceLine source = SourceOfStop(*state);
    wchar_t name[kPathCapacity] = {};
    PathGetFile(source.path.c_str(), name, kPathCapacity);
    return StopPlaceText(name, source.line, source.ofCaller, state->currentAddress, state->isX64 != 0);
}

void DebugSayLocation(const DebuggerState* state, const wchar_t* suffix) {
    DebugSay(0, Text(L"[Debug] Stopped at %s%s\n"), DebugPlaceText(state).c_str(), suffix != nullptr ? suffix : L"");
}

void DebugMarkLocation(const DebuggerState* state) {
    DebugClearLocation();
    if (state->active == 0) return;
    const SourceLine source = SourceOfStop(*state);
    if (!ShowSourceFile(source.path, true)) return;
    PutMark(TabAt(g_documents.activeTab), source.line);
    DebugScrollToLine(g_documents.hEditor, source.line);
}

void DebugShowCurrentLocation(const DebuggerState* state, const wchar_t* suffix) {
    DebugSayLocation(state, suffix);
    DebugMarkLocation(state);
}

void DebugClearLocation() { RemoveMark(); }

void DebugShowStopOver(DocumentId document) {
    const int tab = document == g_mark.document ? TabBarFindDocument(document) : -1;
    if (tab < 0) return;
    const HWND editor = TabAt(tab).editor;
    SciSend(editor, SCI_MARKERDELETEHANDLE, static_cast<WPARAM>(g_mark.over));
    const LRESULT line = SciSend(editor, SCI_MARKERLINEFROMHANDLE, static_cast<WPARAM>(g_mark.arrow));
    if (line < 0) return;
    const auto index = static_cast<WPARAM>(line);
    const bool conditional = (SciSend(editor, SCI_MARKERGET, index) >> kMarkConditional & 1) != 0;
    const int marker = conditional ? kMarkStopConditional : kMarkStopOver;
    g_mark.over = static_cast<int>(SciSend(editor, SCI_MARKERADD, index, marker));
}

void DebugOnMarkerRenewed(DocumentId document, int before, int after) {
    const int tab = TabBarFindDocument(document);
    if (tab < 0) return;
    const HWND editor = TabAt(tab).editor;
    if (after < 0) {  // a mark that is off keeps its handle here, by which it is known again
        if (before == g_mark.arrow) SciSend(editor, SCI_MARKERDELETEHANDLE, static_cast<WPARAM>(g_mark.over));
        return;
    }
    const int marker = MarkerOfHandle(editor, after);
    if (marker != kMarkCurrent && marker != kMarkCurrentLine) return;
    int& known = marker == kMarkCurrent ? g_mark.arrow : g_mark.background;
    if (g_mark.document == document && known == before) {
        known = after;
        DebugShowStopOver(document);
    } else {  // the program has gone on meanwhile
        SciSend(editor, SCI_MARKERDELETEHANDLE, static_cast<WPARAM>(after));
    }
}

void DebugRestoreLocation(DocumentId document) {
    const DebuggerState& state = g_debugger;
    const int tab = TabBarFindDocument(document);
    if (state.active == 0 || state.run != DebugRun::Stopped || tab < 0) return;
    const SourceLine source = SourceOfStop(state);
    if (source.path.empty() || !PathEqualsIgnoreCase(source.path, TabAt(tab).path)) return;
    PutMark(TabAt(tab), source.line);
}

bool DebugGoTo(const DebuggerState* state, std::uint32_t fileId, int line) {
    if (line < 1 || !DebugShowFile(DebugFilePath(state, fileId))) return false;
    DebugScrollToLine(g_documents.hEditor, line);
    FocusCurrentEditor();
    return true;
}
