// Saving and restoring the editing state as a session file. Knows tabs, editors and settings; the file's text is
// session_text. UI thread.
#include "session/session.h"

#include "base/events.h"
#include "base/handles.h"
#include "base/log.h"
#include "debugui/breakpoint_list.h"
#include "debugui/breakpoint_rules.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "documents/margins.h"
#include "documents/recent_files.h"
#include "files/file_io.h"
#include "files/session_file.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "session/project_tree.h"
#include "session/session_close.h"
#include "session/session_state.h"
#include "session/session_text.h"
#include "settings/settings_state.h"
#include "settings/settings_store.h"
#include "ui/message.h"
#include "ui/panes.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace {

struct NumberField {
    SessionKey key;
    std::int32_t Settings::*field;
};

// The header keys that are plain settings.
constexpr NumberField kSettingFields[] = {
    {SessionKey::ActiveCompiler, &Settings::activeCompiler},
    {SessionKey::ShowProjectTree, &Settings::showProjectTree},
    {SessionKey::ShowAiPane, &Settings::showAiSidebar},
    {SessionKey::TreeWidth, &Settings::projectTreeWidth},
    {SessionKey::SplitPos, &Settings::splitter},
    {SessionKey::EditorZoom, &Settings::editorZoom},
    {SessionKey::WordWrap, &Settings::wordWrap},
    {SessionKey::ShowIndentGuides, &Settings::showIndentGuides},
    {SessionKey::BuildProfile, &Settings::profile},
    {SessionKey::EnableAutoComplete, &Settings::enableAutoComplete},
    {SessionKey::AutoCompleteTrigger, &Settings::autoCompleteTrigger},
    {SessionKey::AutoUpperKeywords, &Settings::autoUpperKeywords},
    {SessionKey::Theme, &Settings::theme},
};

// Lines that carry the marker. One message a marked line: a document may have millions of lines.
std::vector<std::int32_t> MarkedLines(HWND editor, int marker) {
    std::vector<std::int32_t> lines;
    LRESULT line = SciSend(editor, SCI_MARKERNEXT, 0, LPARAM{1} << marker);
    while (line >= 0) {
        lines.push_back(static_cast<std::int32_t>(line));
        line = SciSend(editor, SCI_MARKERNEXT, static_cast<WPARAM>(line + 1), LPARAM{1} << marker);
    }
    return lines;
}

std::string ToUtf8(const wchar_t* text) {
    const HeapBlock<char> utf8{WideToUtf8(text)};
    return utf8 ? std::string{utf8.get()} : std::string{};
}

std::uint64_t Position(HWND editor, UINT message) { return static_cast<std::uint64_t>(SciSend(editor, message)); }

std::vector<SessionBreakpoint> BreakpointRulesOf(DocumentId document) {
    std::vector<SessionBreakpoint> rules;
    BreakpointsUpdate();
    for (const UserBreakpoint& breakpoint : BreakpointList())
        if (breakpoint.document == document && (!breakpoint.enabled || !breakpoint.condition.empty()))
            rules.push_back({breakpoint.line - 1, breakpoint.enabled, breakpoint.condition});
    return rules;
}

// Of a breakpoint that is there: a line without one gets none. A condition that could not have been entered is none.
void ApplyBreakpointRule(DocumentId document, const SessionBreakpoint& rule) {
    const int line = std::clamp(rule.line, -1, std::numeric_limits<std::int32_t>::max() - 1) + 1;
    const int index = BreakpointAt(document, line, false);
    if (index < 0) return;
    if (ConditionProblem(rule.condition).empty())
        BreakpointSetCondition(static_cast<std::size_t>(index), rule.condition);
    BreakpointEnable(static_cast<std::size_t>(index), rule.enabled);
}

SessionFile CaptureFile(const DocumentTab& tab) {
    SessionFile file;
    file.path = ToUtf8(tab.path);
    file.hasEditor = tab.editor != nullptr;
    if (file.hasEditor) {
        file.cursor = Position(tab.editor, SCI_GETCURRENTPOS);
        file.scroll = Position(tab.editor, SCI_GETFIRSTVISIBLELINE);
        file.selectionStart = Position(tab.editor, SCI_GETSELECTIONSTART);
        file.selectionEnd = Position(tab.editor, SCI_GETSELECTIONEND);
        file.bookmarks = MarkedLines(tab.editor, kMarkBookmark);
        file.breakpoints = MarkedLines(tab.editor, kMarkBreakpoint);
        file.rules = BreakpointRulesOf(tab.id);
    }
    return file;
}

SessionHeader CaptureHeader() {
    SessionHeader header;
    for (const NumberField& field : kSettingFields) header[field.key] = g_settings.*field.field;
    header[SessionKey::ActiveTab] = g_documents.activeTab;
    header[SessionKey::ShowOutput] = PaneIsShown(PaneId::Output) ? 1 : 0;
    header[SessionKey::ShowAsmPane] = PaneIsShown(PaneId::Asm) ? 1 : 0;
    header[SessionKey::SplitHorizontal] = g_session.splitHorizontal ? 1 : 0;
    header[SessionKey::FullScreen] = g_session.fullScreen ? 1 : 0;
    header.projectRoot = ToUtf8(g_settings.projectRoot);
    return header;
}

void ApplyHeader(const SessionItem& item, int* activeTab) {
    switch (item.key) {
        case SessionKey::ActiveTab: *activeTab = item.number; return;
        case SessionKey::ProjectRoot: {
            const HeapBlock<wchar_t> root{Utf8ToWide(item.text.c_str())};
            SafeCopyW(g_settings.projectRoot, root ? root.get() : L"");
            return;
        }
        case SessionKey::ShowOutput: PaneSetShown(PaneId::Output, item.number != 0); return;
        case SessionKey::ShowAsmPane: PaneSetShown(PaneId::Asm, item.number != 0); return;
        case SessionKey::SplitHorizontal: g_session.splitHorizontal = item.number != 0; return;
        case SessionKey::FullScreen: g_session.fullScreen = item.number != 0; return;
        case SessionKey::TreeWidth: g_settings.projectTreeWidth = SessionTreeWidth(item.number); return;
        default: break;
    }
    for (const NumberField& field : kSettingFields)
        if (field.key == item.key) g_settings.*field.field = item.number;
}

void AddMarkers(HWND editor, const std::string& list, int marker) {
    for (const std::int32_t line : SessionParseLines(list))
        if (line >= 0) SciSend(editor, SCI_MARKERADD, static_cast<WPARAM>(line), marker);
}

// The tab is chosen by the section's number, not by what its "Path" opened: a file that is gone shifts the positions of
// the later ones onto other tabs.
void ApplyFileItem(const SessionItem& item) {
    if (item.key == SessionKey::Path) {
        const HeapBlock<wchar_t> path{Utf8ToWide(item.text.c_str())};
        if (path && path.get()[0] != L'\0') FileShow(path.get(), false);
        return;
    }
    if (!IsTabIndex(item.file)) return;
    const HWND editor = TabAt(item.file).editor;
    const auto position = static_cast<WPARAM>(item.number);
    switch (item.key) {
        case SessionKey::Cursor: SciSend(editor, SCI_GOTOPOS, position); break;
        case SessionKey::Scroll: SciSend(editor, SCI_SETFIRSTVISIBLELINE, position); break;
        case SessionKey::SelectionStart: SciSend(editor, SCI_SETSELECTIONSTART, position); break;
        case SessionKey::SelectionEnd: SciSend(editor, SCI_SETSELECTIONEND, position); break;
        case SessionKey::Bookmarks: AddMarkers(editor, item.text, kMarkBookmark); break;
        case SessionKey::Breakpoints: AddMarkers(editor, item.text, kMarkBreakpoint); break;
        case SessionKey::BreakpointRule:
            ApplyBreakpointRule(DocumentOfEditor(editor), SessionParseRule(item.text));
            break;
        default: break;
    }
}

void ApplySession(const std::vector<SessionItem>& items) {
    const SettingsEdit edit;
    int activeTab = 0;
    for (const SessionItem& item : items)
        if (item.file < 0)
            ApplyHeader(item, &activeTab);
        else
            ApplyFileItem(item);
    if (IsTabIndex(activeTab)) TabBarActivate(activeTab);
}

}  // namespace

int SessionSave(const wchar_t* path) {
    if (path == nullptr || path[0] == L'\0') return 0;
    std::vector<SessionFile> files;
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.path[0] != L'\0') files.push_back(CaptureFile(tab));
    return ReplaceFileWithText(path, SessionCompose(CaptureHeader(), files)) ? 1 : 0;
}

int SessionLoad(const wchar_t* path, HWND) {
    if (path == nullptr || path[0] == L'\0') return 0;
    std::size_t length = 0;
    const HeapBlock<char> text{ReadFileUtf8(path, &length)};
    if (!text || !CloseEveryTab()) return 0;
    ApplySession(SessionParse({text.get(), length}));
    g_events.layoutWanted();
    g_events.refreshWanted();
    SettingsSave(nullptr);
    SessionMRUAdd(path);
    return 1;
}

int SessionHasFiles(const wchar_t* path) {
    std::size_t length = 0;
    const HeapBlock<char> text{path != nullptr ? ReadFileUtf8(path, &length) : nullptr};
    return text && SessionListsFiles({text.get(), length}) ? 1 : 0;
}

void SessionAutoSavePath(wchar_t* out, std::size_t capacity) {
    GetIniPath(nullptr, out, capacity);
    SafeCatW(out, capacity, L"_autosave.kvxsess");
}

void SessionAutoSave(HWND) {
    if (g_selftestTabsMode || g_settings.autoSaveEnabled == 0) return;
    wchar_t path[kPathCapacity] = {};
    SessionAutoSavePath(path, kPathCapacity);
    if (SessionSave(path) == 0) AppLogMsg(L"FAIL: SessionAutoSave could not write path=%s", path);
}

void SessionMRUAdd(const wchar_t* path) {
    if (path == nullptr) return;
    SettingsChange([path](Settings& settings) {
        settings.sessionMruCount =
            RecentListAdd(settings.sessionMruFiles, settings.sessionMruCount, path, RecentMatch::Exact);
    });
}
