// The user's breakpoints in the editors and in the session: markers, their looks, and planting. In open files the
// markers decide: every update first takes over what edits did to them. UI thread only.
#include "debugui/breakpoint_list.h"

#include "base/path.h"
#include "base/texts.h"
#include "debugger/at_address.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugui/code_breakpoints.h"
#include "debugui/debug_pane.h"
#include "debugui/fold_signs.h"
#include "debugui/kept_names.h"
#include "debugui/location.h"
#include "documents/document_row.h"
#include "editor/margins.h"
#include "files/file_io.h"
#include "scintilla/sci.h"

#include <algorithm>

namespace {

UserBreakpoints g_list;
UserBreakpoints g_away;  // of lines that were deleted, and may come back by undo
std::uint64_t g_changes = 0;

constexpr int kOverlays[] = {kMarkHollow, kMarkDisabled, kMarkConditional};

// --- In the session

CodePlace FindCode(const std::wstring& path, int line) {
    const std::uint32_t fileId = DebugFileIdOfPath(&g_debugger, path.c_str());
    const std::uint32_t rva = fileId != 0 ? SdbgFileLineToRva(&g_debugger.map, fileId, line) : 0;
    return {.fileId = fileId,
            .address = rva != 0 ? g_debugger.map.imageBase + rva : 0,
            .untold = fileId != 0 && !SdbgCoversLine(&g_debugger.map, line)};
}

PlantResult PlantInSession(std::uint32_t fileId, int line) {
    if (DebugSetBreakpointIn(&g_debugger, fileId, line)) {
        CodeBreakpointYield(g_debugger.map.imageBase + SdbgFileLineToRva(&g_debugger.map, fileId, line));
        return PlantResult::Planted;
    }
    return g_debugger.breakpointCount >= kMaxBreakpoints ? PlantResult::TableFull : PlantResult::NotWritable;
}

void RemoveInSession(std::uint64_t address) { DebugRemoveBreakpoint(&g_debugger, address); }

void SetConditionInSession(std::uint64_t address, const std::string& condition) {
    DebugSetCondition(&g_debugger, address, condition.empty() ? nullptr : condition.c_str());
}

void SetStopFromInSession(std::uint64_t address, std::uint32_t count) { DebugSetStopFrom(&g_debugger, address, count); }

int HitsInSession(std::uint64_t address) {
    const int index = DebugFindBp(&g_debugger, address);
    return index < 0 ? -1 : static_cast<int>(g_debugger.breakpoints[static_cast<std::size_t>(index)].hits);
}

BreakpointTarget SessionTarget() {
    if (g_debugger.active == 0) return {};
    return {.find = FindCode,
            .plant = PlantInSession,
            .remove = RemoveInSession,
            .setCondition = SetConditionInSession,
            .setStopFrom = SetStopFromInSession,
            .hits = HitsInSession};
}

// A condition that does not do what it seems to say would make a breakpoint pass in silence, as when its names belong to
// a procedure that has another name now.
void SayNoticesOfConditions() {
    for (const UserBreakpoint& breakpoint : g_list) {
        if (breakpoint.status != BreakpointStatus::Planted || breakpoint.condition.empty()) continue;
        const std::uint32_t fileId = DebugFileIdOfPath(&g_debugger, breakpoint.path.c_str());
        const SourceScope scope = ScopeOfLine(fileId, static_cast<std::uint32_t>(breakpoint.line));
        const std::wstring notice = ConditionNotice(breakpoint.condition, NamesOfProcedure(scope.file, scope.Name()));
        if (notice.empty()) continue;
        DebugSay(kDebugOrange, Text(L"[Debug] %s:%d only if %s: %s\n"),
                 std::wstring(FileNameOf(breakpoint.path)).c_str(), breakpoint.line,
                 Utf8ToWideText(breakpoint.condition).c_str(), notice.c_str());
    }
}

// --- In the editors

// The editor of an open document, or null.
HWND EditorOfDocument(DocumentId document) {
    const int tab = TabBarFindDocument(document);
    return tab < 0 ? nullptr : TabAt(tab).editor;
}

int AddMarker(HWND editor, int line, int marker) {
    return static_cast<int>(SciSend(editor, SCI_MARKERADD, static_cast<WPARAM>(line - 1), marker));
}

// Lines (from 0) of a document's breakpoints. The list may be older than the last edit, so a breakpoint whose line has
// no marker is looked up by the marker's handle, and its line is corrected.
std::vector<int> LinesOfBreakpoints(HWND editor, DocumentId document) {
    std::vector<int> lines;
    for (UserBreakpoint& breakpoint : g_list) {
        if (breakpoint.document != document) continue;
        LRESULT line = breakpoint.line - 1;
        if ((SciSend(editor, SCI_MARKERGET, static_cast<WPARAM>(line)) >> kMarkBreakpoint & 1) == 0)
            line = SciSend(editor, SCI_MARKERLINEFROMHANDLE, static_cast<WPARAM>(breakpoint.handle));
        if (line < 0) continue;
        breakpoint.line = static_cast<int>(line) + 1;
        lines.push_back(static_cast<int>(line));
    }
    return lines;
}

void DrawLooks(DocumentId document) {
    const HWND editor = EditorOfDocument(document);
    if (editor == nullptr) return;
    for (const int marker : kOverlays) SciClearMarker(editor, marker);
    for (const UserBreakpoint& breakpoint : g_list) {
        if (breakpoint.document != document) continue;
        switch (LookOfBreakpoint(breakpoint)) {
            case BreakpointLook::Hollow: AddMarker(editor, breakpoint.line, kMarkHollow); break;
            case BreakpointLook::Disabled: AddMarker(editor, breakpoint.line, kMarkDisabled); break;
            case BreakpointLook::Conditional: AddMarker(editor, breakpoint.line, kMarkConditional); break;
            case BreakpointLook::Plain: break;
        }
    }
    DebugShowStopOver(document);
    FoldSignsUpdate(document, editor, LinesOfBreakpoints(editor, document));
}

void DrawAllLooks() {
    for (const DocumentTab& tab : g_documents.tabs) DrawLooks(tab.id);
}

void OnListChanged() {
    ++g_changes;
    g_events.refreshWanted();
    for (const DocumentId document : PlantSharers(&g_list, SessionTarget())) DrawLooks(document);
    DebugPaneInvalidate();
}

void OnBreakpointChanged(DocumentId document) {
    OnListChanged();
    DrawLooks(document);
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

std::wstring PathOfDocument(const DocumentTab& tab) { return tab.hasFile ? tab.path : L""; }

void TakeOverMarkers() {
    DetachClosedDocuments(&g_list, [](DocumentId document) { return TabBarFindDocument(document) >= 0; });
    bool changed = false;
    for (const DocumentTab& tab : g_documents.tabs) {
        if (tab.editor == nullptr) continue;
        const MarkerMerge merge =
            MergeMarkers(&g_list, {.document = tab.id, .path = PathOfDocument(tab), .markers = MarkersOf(tab.editor)},
                         SessionTarget());
        for (const int handle : merge.surplus) SciSend(tab.editor, SCI_MARKERDELETEHANDLE, static_cast<WPARAM>(handle));
        if (merge.changed) DrawLooks(tab.id);
        changed = changed || merge.changed;
    }
    if (changed) OnListChanged();
    SortBreakpoints(&g_list);
}

void RemoveAt(std::size_t index) {
    const DocumentId document = g_list[index].document;
    if (const HWND editor = EditorOfDocument(document); editor != nullptr)
        SciSend(editor, SCI_MARKERDELETEHANDLE, static_cast<WPARAM>(g_list[index].handle));
    ForgetBreakpoint(&g_list, index, SessionTarget());
    OnBreakpointChanged(document);
}

// False for an index that was taken before the list changed.
bool IsIndex(std::size_t index) { return index < g_list.size(); }

// The breakpoints that a block folded at this line (from 0) hides.
std::wstring FoldedTip(HWND editor, DocumentId document, int header) {
    std::vector<int> hidden = LinesOfBreakpoints(editor, document);
    std::erase_if(hidden, [&](int line) { return FoldHeaderOf(editor, line) != header; });
    return FoldedTipText(hidden);
}

}  // namespace

void BreakpointsUpdate() {
    TakeOverMarkers();
    ReadHits(&g_list, SessionTarget());
}

const UserBreakpoints& BreakpointList() { return g_list; }

std::uint64_t BreakpointChanges() { return g_changes; }

int BreakpointAt(DocumentId document, int line, bool make) {
    const HWND editor = EditorOfDocument(document);
    if (editor == nullptr || line < 1 || line > SciSend(editor, SCI_GETLINECOUNT)) return -1;
    TakeOverMarkers();
    const int found = FindBreakpoint(g_list, document, line);
    if (found >= 0 || !make) return found;
    AddMarker(editor, line, kMarkBreakpoint);
    TakeOverMarkers();  // makes and plants a breakpoint for the new marker
    OnBreakpointChanged(document);
    return FindBreakpoint(g_list, document, line);
}

void BreakpointToggle(DocumentId document, int line) {
    const int index = BreakpointAt(document, line, false);
    if (index >= 0)
        RemoveAt(static_cast<std::size_t>(index));
    else
        BreakpointAt(document, line, true);
}

void BreakpointRemove(std::size_t index) {
    if (IsIndex(index)) RemoveAt(index);
}

void BreakpointRemoveAll() {
    TakeOverMarkers();
    while (!g_list.empty()) RemoveAt(g_list.size() - 1);
    CodeBreakpointsRemoveAll();
    DebugPaneInvalidate();
}

void BreakpointEnable(std::size_t index, bool enabled) {
    if (!IsIndex(index)) return;
    UserBreakpoint& breakpoint = g_list[index];
    breakpoint.enabled = enabled;
    PlantBreakpoint(&g_list, &breakpoint, SessionTarget());
    OnBreakpointChanged(breakpoint.document);
}

void BreakpointSetCondition(std::size_t index, const std::string& condition) {
    if (!IsIndex(index)) return;
    UserBreakpoint& breakpoint = g_list[index];
    breakpoint.condition = condition;
    if (breakpoint.address != 0 && g_debugger.active != 0) SetConditionInSession(breakpoint.address, condition);
    OnBreakpointChanged(breakpoint.document);
}

void BreakpointSetStopFrom(std::size_t index, std::uint32_t count) {
    if (!IsIndex(index)) return;
    UserBreakpoint& breakpoint = g_list[index];
    breakpoint.stopFrom = count;
    if (breakpoint.address != 0 && g_debugger.active != 0) SetStopFromInSession(breakpoint.address, count);
    OnBreakpointChanged(breakpoint.document);
}

void BreakpointJump(std::size_t index) {
    if (!IsIndex(index)) return;
    const std::wstring path = g_list[index].path;
    const int line = g_list[index].line;
    const int tab = TabBarFindDocument(g_list[index].document);
    const bool shown = tab >= 0 ? TabBarSelect(tab) != 0 : DebugShowFile(path);
    if (!shown) return;
    DebugScrollToLine(g_documents.hEditor, line);
    FocusCurrentEditor();
}

void BreakpointsPlantAll(DebuggerState*) {
    TakeOverMarkers();
    PlantAllBreakpoints(&g_list, SessionTarget());
    SayNoticesOfConditions();
    DrawAllLooks();
    DebugPaneInvalidate();
}

void BreakpointsDropStart(DebuggerState* state) {
    if (state->startAddress == 0 || state->currentAddress != state->startAddress) return;
    TakeOverMarkers();
    if (!CodeBreakpointIsSet(state->startAddress)) DebugRemoveBreakpoint(state, state->startAddress);
    state->startAddress = 0;
}

void BreakpointsOnSessionEnd() {
    CodeBreakpointsForget();
    IdleBreakpoints(&g_list);
    DrawAllLooks();
    DebugPaneInvalidate();
}

std::wstring BreakpointTip(DocumentId document, int line) {
    const HWND editor = EditorOfDocument(document);
    if (editor == nullptr) return L"";
    const int index = BreakpointAt(document, line, false);
    std::wstring tip;
    if (index >= 0) {
        ReadHits(&g_list, SessionTarget());
        const UserBreakpoint& breakpoint = g_list[static_cast<std::size_t>(index)];
        tip = BreakpointTipText(breakpoint, Utf8ToWideText(breakpoint.condition));
    }
    const std::wstring folded = FoldedTip(editor, document, line - 1);
    if (!tip.empty() && !folded.empty()) tip += L" ";
    return tip + folded;
}

void BreakpointsOnPainted(DocumentId document) {
    const HWND editor = EditorOfDocument(document);
    if (editor != nullptr) FoldSignsUpdate(document, editor, LinesOfBreakpoints(editor, document));
}

void BreakpointsOnLinesMoved(DocumentId document, int line, int added) {
    if (MoveBreakpointLines(&g_list, document, line, added)) DebugPaneInvalidate();
    FoldSignsOnLinesMoved(document, line, added);
}

void BreakpointsOnMarkerRenewed(DocumentId document, int before, int after) {
    const HWND editor = EditorOfDocument(document);
    if (editor == nullptr) return;
    const LRESULT line = after < 0 ? -1 : SciSend(editor, SCI_MARKERLINEFROMHANDLE, static_cast<WPARAM>(after));
    const RenewedMarker marker = {
        .document = document, .before = before, .after = after, .line = static_cast<int>(line) + 1};
    if (RenewMarker(&g_list, &g_away, marker, SessionTarget())) OnBreakpointChanged(document);
}

void BreakpointsKeepLines(DocumentId document) {
    TakeOverMarkers();
    DetachDocument(&g_list, document, SessionTarget());
    std::erase_if(g_away, [document](const UserBreakpoint& each) { return each.document == document; });
    FoldSignsForget(document);
}

void BreakpointsFollowRename(const std::wstring& from, const std::wstring& to) {
    for (UserBreakpoint& breakpoint : g_list) breakpoint.path = PathAfterMove(breakpoint.path, from, to);
    SortBreakpoints(&g_list);
    DebugPaneInvalidate();
}

void BreakpointsRestoreMarkers(DocumentId document) {
    const HWND editor = EditorOfDocument(document);
    if (editor == nullptr) return;
    const std::wstring path = PathOfDocument(TabAt(TabBarFindDocument(document)));
    SciClearMarker(editor, kMarkBreakpoint);  // replacing the text has left all of them on the first line
    const int lines = static_cast<int>(SciSend(editor, SCI_GETLINECOUNT));
    for (UserBreakpoint& breakpoint : g_list) {
        if (breakpoint.document != 0 || !BelongsToDocument(breakpoint, document, path)) continue;
        breakpoint.line = std::min(breakpoint.line, lines);
        breakpoint.document = document;
        breakpoint.handle = AddMarker(editor, breakpoint.line, kMarkBreakpoint);
    }
    TakeOverMarkers();  // in a shorter text, several may be on one line now
    DrawLooks(document);
}
