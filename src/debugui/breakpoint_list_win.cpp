// The user's breakpoints: the list, its markers in the open files, and their places in a running session. The markers
// of open files lead; every question to the list first takes over what edits did to them. UI thread only.
#include "debugui/breakpoint_list.h"

#include "base/handles.h"
#include "base/path.h"
#include "base/wide_format.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugui/breakpoint_rules.h"
#include "debugui/debug_pane.h"
#include "debugui/fold_signs.h"
#include "debugui/location.h"
#include "documents/document_row.h"
#include "documents/margins.h"
#include "files/file_io.h"
#include "scintilla/sci.h"

#include <algorithm>
#include <utility>

namespace {

std::vector<UserBreakpoint> g_list;

constexpr int kOverlays[] = {kMarkHollow, kMarkDisabled, kMarkConditional};

DebuggerState& Session() { return g_debugger; }
bool InSession() { return g_debugger.active != 0; }

bool IsRefused(const UserBreakpoint& breakpoint) {
    return breakpoint.status == BreakpointStatus::NoCode || breakpoint.status == BreakpointStatus::Refused;
}

// --- In the session

void Unplant(UserBreakpoint& breakpoint) {
    if (breakpoint.address != 0 && InSession()) DebugRemoveBreakpoint(&Session(), breakpoint.address);
    breakpoint.address = 0;
    breakpoint.shares = 0;
    breakpoint.reason.clear();
    breakpoint.status = breakpoint.enabled ? BreakpointStatus::Idle : BreakpointStatus::Disabled;
}

UserBreakpoint* OwnerOf(std::uint64_t address) {
    const auto owner = std::ranges::find(g_list, address, &UserBreakpoint::address);
    return address != 0 && owner != g_list.end() ? &*owner : nullptr;
}

void Refuse(UserBreakpoint& breakpoint, BreakpointStatus status, const wchar_t* reason) {
    breakpoint.status = status;
    breakpoint.reason = reason;
}

void Plant(UserBreakpoint& breakpoint) {
    Unplant(breakpoint);
    if (!InSession() || !breakpoint.enabled) return;
    DebuggerState& state = Session();
    const std::uint32_t fileId = DebugFileIdOfPath(&state, breakpoint.path.c_str());
    const std::uint32_t rva = fileId != 0 ? SdbgFileLineToRva(&state.map, fileId, breakpoint.line) : 0;
    if (fileId == 0) {
        Refuse(breakpoint, BreakpointStatus::NoCode, L"This file is not part of the program.");
    } else if (rva == 0) {
        Refuse(breakpoint, BreakpointStatus::NoCode, L"No code on this line: never stops here.");
    } else if (const UserBreakpoint* owner = OwnerOf(state.map.imageBase + rva); owner != nullptr) {
        breakpoint.status = BreakpointStatus::Refused;
        breakpoint.reason = FormatW(L"Has the same code as line %d, which stops there.", owner->line);
        breakpoint.shares = owner->address;
    } else if (!DebugSetBreakpointIn(&state, fileId, breakpoint.line)) {
        Refuse(breakpoint, BreakpointStatus::Refused,
               state.breakpointCount >= kMaxBreakpoints ? L"Not set: the program has 64 breakpoints already."
                                                        : L"Not set: the program's memory could not be written.");
    } else {
        breakpoint.status = BreakpointStatus::Planted;
        breakpoint.address = state.map.imageBase + rva;
        breakpoint.hits = 0;
        DebugSetCondition(&state, breakpoint.address,
                          breakpoint.condition.empty() ? nullptr : breakpoint.condition.c_str());
    }
}

void CountHits() {
    if (!InSession()) return;
    for (UserBreakpoint& breakpoint : g_list) {
        const int index = breakpoint.address != 0 ? DebugFindBp(&Session(), breakpoint.address) : -1;
        if (index >= 0) breakpoint.hits = Session().breakpoints[static_cast<std::size_t>(index)].hits;
    }
}

// --- In the editors

int AddMarker(HWND editor, int line, int marker) {
    return static_cast<int>(SciSend(editor, SCI_MARKERADD, static_cast<WPARAM>(line - 1), marker));
}

// Lines from 0. A list that is behind the markers by an edit is put right, without taking over anything else of them.
std::vector<int> LinesOf(HWND editor) {
    std::vector<int> lines;
    for (UserBreakpoint& breakpoint : g_list) {
        if (breakpoint.editor != editor) continue;
        LRESULT line = breakpoint.line - 1;
        if ((SciSend(editor, SCI_MARKERGET, static_cast<WPARAM>(line)) >> kMarkBreakpoint & 1) == 0)
            line = SciSend(editor, SCI_MARKERLINEFROMHANDLE, static_cast<WPARAM>(breakpoint.handle));
        if (line < 0) continue;
        breakpoint.line = static_cast<int>(line) + 1;
        lines.push_back(static_cast<int>(line));
    }
    return lines;
}

void RefreshLooks(HWND editor) {
    if (editor == nullptr) return;
    for (const int marker : kOverlays) SciSend(editor, SCI_MARKERDELETEALL, static_cast<WPARAM>(marker));
    for (const UserBreakpoint& breakpoint : g_list) {
        if (breakpoint.editor != editor) continue;
        switch (LookOf(breakpoint.enabled, IsRefused(breakpoint), !breakpoint.condition.empty())) {
            case BreakpointLook::Hollow: AddMarker(editor, breakpoint.line, kMarkHollow); break;
            case BreakpointLook::Disabled: AddMarker(editor, breakpoint.line, kMarkDisabled); break;
            case BreakpointLook::Conditional: AddMarker(editor, breakpoint.line, kMarkConditional); break;
            case BreakpointLook::Plain: break;
        }
    }
    FoldSignsUpdate(editor, LinesOf(editor));
}

// After a change of one: lines that shared the code of one that went take its place.
void PlantSharers() {
    for (UserBreakpoint& breakpoint : g_list) {
        if (breakpoint.shares == 0 || OwnerOf(breakpoint.shares) != nullptr) continue;
        Plant(breakpoint);
        RefreshLooks(breakpoint.editor);
    }
}

void RefreshAllLooks() {
    for (const DocumentTab& tab : g_documents.tabs) RefreshLooks(tab.editor);
}

void Changed(HWND editor) {
    PlantSharers();
    RefreshLooks(editor);
    DebugPaneInvalidate();
}

std::vector<MarkerPlace> MarkersOf(HWND editor) {
    std::vector<MarkerPlace> markers;
    constexpr LPARAM kMask = LPARAM{1} << kMarkBreakpoint;
    for (LRESULT line = SciSend(editor, SCI_MARKERNEXT, 0, kMask); line >= 0;
         line = SciSend(editor, SCI_MARKERNEXT, static_cast<WPARAM>(line + 1), kMask)) {
        for (LPARAM which = 0;; ++which) {
            const LRESULT handle = SciSend(editor, SCI_MARKERHANDLEFROMLINE, static_cast<WPARAM>(line), which);
            if (handle < 0) break;
            if (SciSend(editor, SCI_MARKERNUMBERFROMLINE, static_cast<WPARAM>(line), which) == kMarkBreakpoint)
                markers.push_back({static_cast<int>(handle), static_cast<int>(line) + 1});
        }
    }
    return markers;
}

bool BelongsTo(const UserBreakpoint& breakpoint, const DocumentTab& tab) {
    if (breakpoint.editor != nullptr) return breakpoint.editor == tab.editor;
    return tab.hasFile && PathEqualsIgnoreCase(breakpoint.path, tab.path);
}

void Forget(std::size_t index) {
    Unplant(g_list[index]);
    g_list.erase(g_list.begin() + static_cast<std::ptrdiff_t>(index));
}

// Brings the list in line with the markers of one open document. True when something but lines changed.
bool TakeOver(const DocumentTab& tab) {
    std::vector<std::size_t> owners;
    std::vector<KnownBreakpoint> known;
    for (std::size_t i = 0; i < g_list.size(); ++i) {
        if (!BelongsTo(g_list[i], tab)) continue;
        owners.push_back(i);
        known.push_back({g_list[i].editor != nullptr ? g_list[i].handle : -1, g_list[i].line});
    }
    const std::vector<MarkerPlace> markers = MarkersOf(tab.editor);
    if (known.empty() && markers.empty()) return false;
    const MarkerMatch match = MatchMarkers(known, markers);
    for (const int handle : match.surplus) SciSend(tab.editor, SCI_MARKERDELETEHANDLE, static_cast<WPARAM>(handle));
    for (std::size_t k = owners.size(); k-- > 0;) {
        UserBreakpoint& breakpoint = g_list[owners[k]];
        if (match.lines[k] == 0) {
            Forget(owners[k]);
            continue;
        }
        breakpoint.line = match.lines[k];
        breakpoint.handle = match.handles[k];
        breakpoint.editor = tab.editor;
        breakpoint.path = tab.hasFile ? tab.path : L"";
    }
    for (const MarkerPlace& marker : match.news) {
        UserBreakpoint breakpoint;
        breakpoint.path = tab.hasFile ? tab.path : L"";
        breakpoint.line = marker.line;
        breakpoint.editor = tab.editor;
        breakpoint.handle = marker.handle;
        Plant(breakpoint);
        g_list.push_back(std::move(breakpoint));
    }
    return !match.news.empty() || !match.surplus.empty();
}

void Synchronise() {
    for (UserBreakpoint& breakpoint : g_list) {
        if (breakpoint.editor == nullptr || TabBarFindEditor(breakpoint.editor) >= 0) continue;
        breakpoint.editor = nullptr;
        breakpoint.handle = -1;
    }
    bool changed = false;
    for (const DocumentTab& tab : g_documents.tabs) {
        if (tab.editor != nullptr && TakeOver(tab)) {
            changed = true;
            RefreshLooks(tab.editor);
        }
    }
    if (changed) {
        PlantSharers();
        DebugPaneInvalidate();
    }
    std::ranges::stable_sort(g_list, [](const UserBreakpoint& a, const UserBreakpoint& b) {
        const int order = _wcsicmp(a.path.c_str(), b.path.c_str());
        return order != 0 ? order < 0 : a.line < b.line;
    });
}

int Find(HWND editor, int line) {
    for (std::size_t i = 0; i < g_list.size(); ++i)
        if (g_list[i].editor == editor && g_list[i].line == line) return static_cast<int>(i);
    return -1;
}

void RemoveAt(std::size_t index) {
    HWND editor = g_list[index].editor;
    if (editor != nullptr) SciSend(editor, SCI_MARKERDELETEHANDLE, static_cast<WPARAM>(g_list[index].handle));
    Forget(index);
    Changed(editor);
}

// BreakpointList() may have been asked long ago: the index is looked at again.
bool IsIndex(std::size_t index) { return index < g_list.size(); }

}  // namespace

const std::vector<UserBreakpoint>& BreakpointList() {
    Synchronise();
    CountHits();
    return g_list;
}

int BreakpointAt(HWND editor, int line, bool make) {
    const int tab = TabBarFindEditor(editor);
    if (tab < 0 || line < 1 || line > SciSend(editor, SCI_GETLINECOUNT)) return -1;
    Synchronise();
    const int found = Find(editor, line);
    if (found >= 0 || !make) return found;
    AddMarker(editor, line, kMarkBreakpoint);
    Synchronise();  // finds the new marker, makes its record and plants it
    Changed(editor);
    return Find(editor, line);
}

void BreakpointToggle(HWND editor, int line) {
    const int index = BreakpointAt(editor, line, false);
    if (index >= 0)
        RemoveAt(static_cast<std::size_t>(index));
    else
        BreakpointAt(editor, line, true);
}

void BreakpointRemove(std::size_t index) {
    if (IsIndex(index)) RemoveAt(index);
}

void BreakpointRemoveAll() {
    Synchronise();
    while (!g_list.empty()) RemoveAt(g_list.size() - 1);
}

void BreakpointEnable(std::size_t index, bool enabled) {
    if (!IsIndex(index)) return;
    UserBreakpoint& breakpoint = g_list[index];
    breakpoint.enabled = enabled;
    Plant(breakpoint);
    Changed(breakpoint.editor);
}

void BreakpointSetCondition(std::size_t index, const std::string& condition) {
    if (!IsIndex(index)) return;
    UserBreakpoint& breakpoint = g_list[index];
    breakpoint.condition = condition;
    if (breakpoint.address != 0 && InSession())
        DebugSetCondition(&Session(), breakpoint.address, condition.empty() ? nullptr : condition.c_str());
    Changed(breakpoint.editor);
}

void BreakpointJump(std::size_t index) {
    if (!IsIndex(index)) return;
    HWND editor = g_list[index].editor;
    const std::wstring path = g_list[index].path;
    const int line = g_list[index].line;
    const int tab = TabBarFindEditor(editor);
    if (tab >= 0)
        TabBarSelect(tab);
    else
        editor = DebugShowFile(path);
    if (editor == nullptr) return;
    DebugScrollToLine(editor, line);
    FocusCurrentEditor();
}

void BreakpointsPlantAll(DebuggerState*) {
    Synchronise();
    for (UserBreakpoint& breakpoint : g_list) {
        breakpoint.address = 0;
        breakpoint.hits = 0;
        Plant(breakpoint);
    }
    RefreshAllLooks();
    DebugPaneInvalidate();
}

void BreakpointsDropStart(DebuggerState* state) {
    if (state->startAddress == 0 || state->currentAddress != state->startAddress) return;
    Synchronise();
    if (OwnerOf(state->startAddress) == nullptr) DebugRemoveBreakpoint(state, state->startAddress);
    state->startAddress = 0;
}

void BreakpointsOnSessionEnd() {
    for (UserBreakpoint& breakpoint : g_list) {
        breakpoint.address = 0;
        Unplant(breakpoint);
    }
    RefreshAllLooks();
    DebugPaneInvalidate();
}

namespace {

std::wstring TipOf(const UserBreakpoint& breakpoint) {
    if (!breakpoint.enabled) return L"Switched off (Debug > Enable or Disable Breakpoint).";
    if (!breakpoint.reason.empty()) return breakpoint.reason;
    std::wstring tip;
    if (!breakpoint.condition.empty()) {
        const HeapBlock<wchar_t> condition(Utf8ToWide(breakpoint.condition.c_str()));
        tip = FormatW(L"Stops if %s.", condition ? condition.get() : L"");
    }
    if (breakpoint.address != 0) {
        if (!tip.empty()) tip += L" ";
        tip += FormatW(breakpoint.hits == 1 ? L"Hit once." : L"Hit %u times.", breakpoint.hits);
    }
    return tip;
}

// The breakpoints that a folded block hides.
std::wstring FoldedTip(HWND editor, int header) {
    std::wstring lines;
    for (const int line : LinesOf(editor))
        if (FoldHeaderOf(editor, line) == header) lines += FormatW(lines.empty() ? L"%d" : L", %d", line + 1);
    if (lines.empty()) return L"";
    const bool several = lines.find(L',') != std::wstring::npos;
    return FormatW(several ? L"Breakpoints on the folded lines %s." : L"Breakpoint on the folded line %s.",
                   lines.c_str());
}

}  // namespace

std::wstring BreakpointTip(HWND editor, int line) {
    const int index = BreakpointAt(editor, line, false);
    CountHits();
    std::wstring tip = index >= 0 ? TipOf(g_list[static_cast<std::size_t>(index)]) : L"";
    const std::wstring folded = FoldedTip(editor, line - 1);
    if (!tip.empty() && !folded.empty()) tip += L" ";
    return tip + folded;
}

void BreakpointsOnPainted(HWND editor) { FoldSignsUpdate(editor, LinesOf(editor)); }

void BreakpointsOnLinesMoved(HWND editor, int line, int added) {
    bool moved = false;
    for (UserBreakpoint& breakpoint : g_list) {
        if (breakpoint.editor != editor) continue;
        const int before = std::exchange(breakpoint.line, MovedLine(breakpoint.line, line + 1, added));
        moved = moved || before != breakpoint.line;
    }
    if (moved) DebugPaneInvalidate();
    FoldSignsOnLinesMoved(editor, line, added);
}

void BreakpointsKeepLines(HWND editor) {
    Synchronise();
    for (UserBreakpoint& breakpoint : g_list) {
        if (breakpoint.editor != editor) continue;
        breakpoint.editor = nullptr;
        breakpoint.handle = -1;
    }
    // Nobody could find those of a document without a file again.
    for (std::size_t i = g_list.size(); i-- > 0;)
        if (g_list[i].editor == nullptr && g_list[i].path.empty()) Forget(i);
}

void BreakpointsRestoreMarkers(HWND editor) {
    const int tab = TabBarFindEditor(editor);
    if (tab < 0) return;
    SciSend(editor, SCI_MARKERDELETEALL, kMarkBreakpoint);  // replaced text leaves them all on its first line
    const int lines = static_cast<int>(SciSend(editor, SCI_GETLINECOUNT));
    for (UserBreakpoint& breakpoint : g_list) {
        if (breakpoint.editor != nullptr || !BelongsTo(breakpoint, TabAt(tab))) continue;
        breakpoint.line = std::min(breakpoint.line, lines);
        breakpoint.editor = editor;
        breakpoint.handle = AddMarker(editor, breakpoint.line, kMarkBreakpoint);
    }
    Synchronise();  // a text that became shorter may have put several on one line
    RefreshLooks(editor);
}
