// Files and lines of a debugged program in the editors. Runs at every step, so it asks the editor for little: a marker,
// the caret, and a scroll only when the line is not well in view. UI thread only.
#include "debugui/location.h"

#include "base/path.h"
#include "base/wide_format.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugui/breakpoint_rules.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "documents/margins.h"
#include "files/file_io.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"

#include <algorithm>

namespace {

constexpr int kContext = 3;  // lines above and below a stop that stay in view

// The mark of the line where the program stands.
struct Mark {
    HWND editor = nullptr;
    int arrow = -1;  // handles of its two markers
    int background = -1;
};
Mark g_mark;

std::wstring FileName(const std::wstring& path) {
    wchar_t name[kPathCapacity] = {};
    PathGetFile(path.c_str(), name, kPathCapacity);
    return name;
}

bool IsOpen(HWND editor) { return editor != nullptr && TabBarFindEditor(editor) >= 0; }

struct Place {
    std::wstring path;  // empty: no source
    int line = 0;
};

// A trap of the program's own leaves the session without a line, though its address may well have one.
Place PlaceOfStop(const DebuggerState& state) {
    std::uint32_t fileId = state.currentFileId;
    auto line = static_cast<std::uint32_t>(state.currentLine);
    if (state.currentLine <= 0 && !DebugLineAt(&state, state.currentAddress, &fileId, &line)) return {};
    if (line > kLastMapLine) return {};
    return {.path = DebugFilePath(&state, fileId), .line = static_cast<int>(line)};
}

void RemoveMark() {
    if (IsOpen(g_mark.editor)) {
        SciSend(g_mark.editor, SCI_MARKERDELETEHANDLE, static_cast<WPARAM>(g_mark.arrow));
        SciSend(g_mark.editor, SCI_MARKERDELETEHANDLE, static_cast<WPARAM>(g_mark.background));
    }
    g_mark = {};
}

int LineCount(HWND editor) { return static_cast<int>(SciSend(editor, SCI_GETLINECOUNT)); }

// There is one mark: a file that was opened to show the stop has it already. A line that the text does not have (any
// more) gets none: no other line is where the program stands.
void PutMark(HWND editor, int line) {
    RemoveMark();
    if (line > LineCount(editor)) return;
    const auto index = static_cast<WPARAM>(line - 1);
    g_mark = {.editor = editor,
              .arrow = static_cast<int>(SciSend(editor, SCI_MARKERADD, index, kMarkCurrent)),
              .background = static_cast<int>(SciSend(editor, SCI_MARKERADD, index, kMarkCurrentLine))};
}

// The next step would say it again: for stops once is enough.
HWND ShowFile(const std::wstring& path, bool sayOnce) {
    if (path.empty()) return nullptr;
    const int tab = TabBarFindPath(path.c_str());
    if (tab >= 0) {
        if (tab != g_documents.activeTab) TabBarSelect(tab);
        return g_documents.hEditor;
    }
    const auto refuse = [&](const wchar_t* format) -> HWND {
        const bool first = DebugIsFirstTold(path);
        if (first || !sayOnce) DebugSay(0, format, path.c_str());
        return nullptr;
    };
    if (!FileExists(path.c_str())) return refuse(L"[Debug] The file is not there: %s\n");
    return FileShow(path.c_str(), true) != 0 ? g_documents.hEditor : refuse(L"[Debug] The file cannot be opened: %s\n");
}

}  // namespace

HWND DebugShowFile(const std::wstring& path) { return ShowFile(path, false); }

void DebugScrollToLine(HWND editor, int line) {
    const auto index = static_cast<WPARAM>(std::min(line, LineCount(editor)) - 1);
    if (SciSend(editor, SCI_GETLINEVISIBLE, index) == 0) SciSend(editor, SCI_ENSUREVISIBLE, index);
    const auto shown = [&](UINT message, WPARAM argument = 0) {
        return static_cast<int>(SciSend(editor, message, argument));
    };
    const int first = shown(SCI_GETFIRSTVISIBLELINE);
    const int wanted = ScrollForStop(first, shown(SCI_LINESONSCREEN), shown(SCI_VISIBLEFROMDOCLINE, index), kContext);
    const LRESULT start = SciSend(editor, SCI_POSITIONFROMLINE, index);
    SciSend(editor, SCI_SETEMPTYSELECTION, static_cast<WPARAM>(start));
    if (wanted != first) SciSend(editor, SCI_SETFIRSTVISIBLELINE, static_cast<WPARAM>(wanted));
}

std::wstring DebugPlaceText(const DebuggerState* state) {
    const Place place = PlaceOfStop(*state);
    if (place.path.empty())
        return FormatW(state->isX64 != 0 ? L"0x%016I64X, no source" : L"0x%08I64X, no source", state->currentAddress);
    return FormatW(L"%s:%d", FileName(place.path).c_str(), place.line);
}

void DebugSayLocation(const DebuggerState* state, const wchar_t* suffix) {
    DebugSay(0, L"[Debug] Stopped at %s%s\n", DebugPlaceText(state).c_str(), suffix != nullptr ? suffix : L"");
}

void DebugMarkLocation(const DebuggerState* state) {
    DebugClearLocation();
    if (state->active == 0) return;
    const Place place = PlaceOfStop(*state);
    HWND editor = ShowFile(place.path, true);
    if (editor == nullptr) return;
    PutMark(editor, place.line);
    DebugScrollToLine(editor, place.line);
}

void DebugShowCurrentLocation(const DebuggerState* state, const wchar_t* suffix) {
    DebugSayLocation(state, suffix);
    DebugMarkLocation(state);
}

void DebugClearLocation() { RemoveMark(); }

void DebugRestoreLocation(HWND editor) {
    const DebuggerState& state = g_debugger;
    const int tab = TabBarFindEditor(editor);
    if (state.active == 0 || state.run != DebugRun::Stopped || tab < 0) return;
    const Place place = PlaceOfStop(state);
    if (place.path.empty() || !PathEqualsIgnoreCase(place.path, TabAt(tab).path)) return;
    PutMark(editor, place.line);
}

bool DebugGoTo(const DebuggerState* state, std::uint32_t fileId, int line) {
    HWND editor = line < 1 ? nullptr : DebugShowFile(DebugFilePath(state, fileId));
    if (editor == nullptr) return false;
    DebugScrollToLine(editor, line);
    FocusCurrentEditor();
    return true;
}
