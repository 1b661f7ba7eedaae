// Saves the state of the documents and panes as a session file, and restores it. The text of the file is in
// session_text, the meaning of its values in session_view. UI thread.
#include "session/session.h"

#include "base/events.h"
#include "base/handles.h"
#include "base/log.h"
#include "debugui/breakpoint_list.h"
#include "debugui/breakpoint_rules.h"
#include "documents/caret_place.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "documents/margins.h"
#include "documents/recent_files.h"
#include "files/file_io.h"
#include "files/session_file.h"
#include "scintilla/sci.h"
#include "session/project_tree.h"
#include "session/session_close.h"
#include "session/session_state.h"
#include "session/session_text.h"
#include "session/session_view.h"
#include "settings/settings_state.h"
#include "settings/settings_store.h"
#include "ui/message.h"
#include "ui/panes.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace {

// The 0-based lines that have the marker. SCI_MARKERNEXT needs one message for each marked line, not for each line.
std::vector<std::int32_t> MarkedLines(HWND editor, int marker) {
    std::vector<std::int32_t> lines;
    LRESULT line = SciSend(editor, SCI_MARKERNEXT, 0, LPARAM{1} << marker);
    while (line >= 0) {
        lines.push_back(static_cast<std::int32_t>(line));
        line = SciSend(editor, SCI_MARKERNEXT, static_cast<WPARAM>(line + 1), LPARAM{1} << marker);
    }
    return lines;
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

// Applies the rule to the breakpoint on its line. Does nothing when the line has none. A condition with a fault is left
// out.
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

SessionFrame CaptureFrame() {
    return {.activeTab = g_documents.activeTab,
            .showOutput = PaneIsShown(PaneId::Output),
            .showAsmPane = PaneIsShown(PaneId::Asm),
            .splitHorizontal = g_session.splitHorizontal,
            .fullScreen = g_session.fullScreen};
}

void ApplyFrame(const SessionFrame& frame) {
    PaneSetShown(PaneId::Output, frame.showOutput);
    PaneSetShown(PaneId::Asm, frame.showAsmPane);
    g_session.splitHorizontal = frame.splitHorizontal;
    g_session.fullScreen = frame.fullScreen;
}

// Sends a message that applies a value of a file section. The text may have changed since its positions were saved.
void SendFitting(HWND editor, const EditorMessage& message) {
    switch (message.message) {
        case SCI_GOTOPOS: CaretGoTo(editor, message.wParam); break;
        case SCI_SETSELECTIONSTART:
        case SCI_SETSELECTIONEND:
            SciSend(editor, message.message, static_cast<WPARAM>(CaretPositionAt(editor, message.wParam)));
            break;
        default: SciSend(editor, message.message, static_cast<WPARAM>(message.wParam), message.lParam); break;
    }
}

// The number of the file section decides which document gets the values, not the document that its "Path" opened. When
// a file is gone, the values of the later sections therefore go to other documents.
void ApplyFileItem(const SessionItem& item) {
    if (item.key == SessionKey::Path) {
        if (!item.text.empty()) FileShow(Utf8ToWideText(item.text).c_str(), false);
        return;
    }
    if (!IsTabIndex(item.file)) return;
    const HWND editor = TabAt(item.file).editor;
    if (item.key == SessionKey::BreakpointRule) ApplyBreakpointRule(TabAt(item.file).id, SessionParseRule(item.text));
    for (const EditorMessage& message : SessionEditorMessages(item)) SendFitting(editor, message);
}

void ApplySession(const std::vector<SessionItem>& items) {
    const SettingsEdit edit;
    SessionFrame frame = CaptureFrame();
    frame.activeTab = 0;
    for (const SessionItem& item : items) {
        if (item.file < 0) {
            const SessionFrame before = frame;
            SessionApplyHeader(item, g_settings, frame);
            if (frame != before) ApplyFrame(frame);
        } else {
            ApplyFileItem(item);
        }
    }
    if (IsTabIndex(frame.activeTab)) TabBarActivate(frame.activeTab);
}

// The text of the file, or nothing when it cannot be read.
std::optional<std::string> ReadSession(const wchar_t* path) {
    if (path == nullptr || path[0] == L'\0') return std::nullopt;
    std::size_t length = 0;
    const HeapBlock<char> text{ReadFileUtf8(path, &length)};
    return text ? std::optional{std::string{text.get(), length}} : std::nullopt;
}

}  // namespace

int SessionSave(const wchar_t* path) {
    if (path == nullptr || path[0] == L'\0') return 0;
    std::vector<SessionFile> files;
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.path[0] != L'\0') files.push_back(CaptureFile(tab));
    return ReplaceFileWithText(path, SessionCompose(SessionHeaderOf(g_settings, CaptureFrame()), files)) ? 1 : 0;
}

int SessionLoad(const wchar_t* path, HWND) {
    const std::optional<std::string> text = ReadSession(path);
    if (!text || !CloseEveryTab()) return 0;
    ApplySession(SessionParse(*text));
    g_events.layoutWanted();
    g_events.refreshWanted();
    SettingsSave(nullptr);
    SessionMRUAdd(path);
    return 1;
}

int SessionHasFiles(const wchar_t* path) {
    const std::optional<std::string> text = ReadSession(path);
    return text && SessionListsFiles(*text) ? 1 : 0;
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
