// Saving and restoring the editing state as a session file. Knows tabs, editors and settings; the file's text is
// session_text. UI thread.
#include "session/session.h"

#include "app/app_state.h"
#include "app/log.h"
#include "app/shell.h"
#include "debugui/breakpoint_list.h"
#include "debugui/breakpoint_rules.h"
#include "documents/file_commands.h"
#include "documents/recent_files.h"
#include "files/file_io.h"
#include "files/handles.h"
#include "language/theme.h"
#include "resources/ids.h"
#include "scintilla/margins.h"
#include "scintilla/sci.h"
#include "session/project_tree.h"
#include "session/session_close.h"
#include "session/session_file.h"
#include "session/session_text.h"
#include "settings/settings_store.h"
#include "tabs/tab_bar.h"

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

std::vector<SessionBreakpoint> BreakpointRulesOf(HWND editor) {
    std::vector<SessionBreakpoint> rules;
    for (const UserBreakpoint& breakpoint : BreakpointList()) {
        if (breakpoint.editor == editor && (!breakpoint.enabled || !breakpoint.condition.empty())) {
            rules.push_back({breakpoint.line - 1, breakpoint.enabled, breakpoint.condition});
        }
    }
    return rules;
}

// Of a breakpoint that is there: a line without one gets none. A condition that could not have been entered is none.
void ApplyBreakpointRule(HWND editor, const SessionBreakpoint& rule) {
    const int line = std::clamp(rule.line, -1, std::numeric_limits<std::int32_t>::max() - 1) + 1;
    const int index = BreakpointAt(editor, line, false);
    if (index < 0) {
        return;
    }
    if (ConditionProblem(rule.condition).empty()) {
        BreakpointSetCondition(static_cast<std::size_t>(index), rule.condition);
    }
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
        file.rules = BreakpointRulesOf(tab.editor);
    }
    return file;
}

SessionHeader CaptureHeader() {
    SessionHeader header;
    for (const NumberField& field : kSettingFields) {
        header[field.key] = g_app.settings.*field.field;
    }
    header[SessionKey::ActiveTab] = g_app.activeTab;
    header[SessionKey::ShowOutput] = g_app.showOutput ? 1 : 0;
    header[SessionKey::ShowAsmPane] = g_app.showAsmPane ? 1 : 0;
    header[SessionKey::SplitHorizontal] = g_app.splitHorizontal ? 1 : 0;
    header[SessionKey::FullScreen] = g_app.fullScreen ? 1 : 0;
    header.projectRoot = ToUtf8(g_app.settings.projectRoot);
    return header;
}

void ApplyHeader(const SessionItem& item, int* activeTab) {
    switch (item.key) {
        case SessionKey::ActiveTab: *activeTab = item.number; return;
        case SessionKey::ProjectRoot: {
            const HeapBlock<wchar_t> root{Utf8ToWide(item.text.c_str())};
            SafeCopyW(g_app.settings.projectRoot, root ? root.get() : L"");
            return;
        }
        case SessionKey::ShowOutput: g_app.showOutput = item.number != 0; return;
        case SessionKey::ShowAsmPane: g_app.showAsmPane = item.number != 0; return;
        case SessionKey::SplitHorizontal: g_app.splitHorizontal = item.number != 0; return;
        case SessionKey::FullScreen: g_app.fullScreen = item.number != 0; return;
        case SessionKey::TreeWidth: g_app.settings.projectTreeWidth = SessionTreeWidth(item.number); return;
        default: break;
    }
    for (const NumberField& field : kSettingFields) {
        if (field.key == item.key) {
            g_app.settings.*field.field = item.number;
        }
    }
}

void AddMarkers(HWND editor, const std::string& list, int marker) {
    for (const std::int32_t line : SessionParseLines(list)) {
        if (line >= 0) {
            SciSend(editor, SCI_MARKERADD, static_cast<WPARAM>(line), marker);
        }
    }
}

// The tab is chosen by the section's number, not by what its "Path" opened: a file that is gone shifts the positions of
// the later ones onto other tabs.
void ApplyFileItem(const SessionItem& item) {
    if (item.key == SessionKey::Path) {
        const HeapBlock<wchar_t> path{Utf8ToWide(item.text.c_str())};
        if (path && path.get()[0] != L'\0') {
            FileOpen(path.get());
        }
        return;
    }
    if (!IsTabIndex(item.file)) {
        return;
    }
    const HWND editor = g_app.tabs[static_cast<std::size_t>(item.file)].editor;
    const auto position = static_cast<WPARAM>(item.number);
    switch (item.key) {
        case SessionKey::Cursor: SciSend(editor, SCI_GOTOPOS, position); break;
        case SessionKey::Scroll: SciSend(editor, SCI_SETFIRSTVISIBLELINE, position); break;
        case SessionKey::SelectionStart: SciSend(editor, SCI_SETSELECTIONSTART, position); break;
        case SessionKey::SelectionEnd: SciSend(editor, SCI_SETSELECTIONEND, position); break;
        case SessionKey::Bookmarks: AddMarkers(editor, item.text, kMarkBookmark); break;
        case SessionKey::Breakpoints: AddMarkers(editor, item.text, kMarkBreakpoint); break;
        case SessionKey::BreakpointRule: ApplyBreakpointRule(editor, SessionParseRule(item.text)); break;
        default: break;
    }
}

// View options reach the editors that the session opened.
void ApplyViewToEditors() {
    const Settings& settings = g_app.settings;
    for (const DocumentTab& tab : g_app.tabs) {
        SciSend(tab.editor, SCI_SETZOOM, static_cast<WPARAM>(settings.editorZoom));
        SciSend(tab.editor, SCI_SETWRAPMODE, settings.wordWrap != 0 ? 1 : 0);
        SciSend(tab.editor, SCI_SETINDENTATIONGUIDES, settings.showIndentGuides != 0 ? 1 : 0);
    }
}

// A change of theme concerns every window of the frame. The command that the user would give does all of it, but only
// when it finds the old theme still set; a number that is no theme counts as the light one.
void ApplyThemeChange(std::int32_t before) {
    const bool isDark = g_app.settings.theme == 1;
    if (isDark != (before == 1)) {
        g_app.settings.theme = before;
        SendMessageW(g_app.hMainWnd, WM_COMMAND, isDark ? IDM_VIEW_DARK_THEME : IDM_VIEW_LIGHT_THEME, 0);
    }
}

}  // namespace

int SessionSave(const wchar_t* path) {
    if (path == nullptr || path[0] == L'\0') {
        return 0;
    }
    std::vector<SessionFile> files;
    for (const DocumentTab& tab : g_app.tabs) {
        if (tab.path[0] != L'\0') {
            files.push_back(CaptureFile(tab));
        }
    }
    return ReplaceFileWithText(path, SessionCompose(CaptureHeader(), files)) ? 1 : 0;
}

int SessionLoad(const wchar_t* path, HWND) {
    if (path == nullptr || path[0] == L'\0') {
        return 0;
    }
    std::size_t length = 0;
    const HeapBlock<char> text{ReadFileUtf8(path, &length)};
    if (!text || !CloseEveryTab()) {
        return 0;
    }
    const std::int32_t themeBefore = g_app.settings.theme;
    int activeTab = 0;
    for (const SessionItem& item : SessionParse({text.get(), length})) {
        if (item.file < 0) {
            ApplyHeader(item, &activeTab);
        } else {
            ApplyFileItem(item);
        }
    }
    if (IsTabIndex(activeTab)) {
        TabBarActivate(activeTab);
    }
    if (g_app.settings.projectRoot[0] != L'\0' && g_app.hProjectTree != nullptr) {
        ProjectTreePopulate();
    }
    ApplyViewToEditors();
    ApplyThemeChange(themeBefore);
    MainWindow_UpdateCompilerSelection();
    MainWindow_Layout();
    MenuUpdateState();
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
    if (g_selftestTabsMode || g_app.settings.autoSaveEnabled == 0) {
        return;
    }
    wchar_t path[kPathCapacity] = {};
    SessionAutoSavePath(path, kPathCapacity);
    if (SessionSave(path) == 0) {
        AppLogMsg(L"FAIL: SessionAutoSave could not write path=%s", path);
    }
}

void SessionMRUAdd(const wchar_t* path) {
    if (path == nullptr) {
        return;
    }
    Settings& settings = g_app.settings;
    settings.sessionMruCount =
        RecentListAdd(settings.sessionMruFiles, settings.sessionMruCount, path, RecentMatch::Exact);
}
