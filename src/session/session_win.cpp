// Saves the state of the documents and panes as a session file, and restores it. The text of the file is in
// session_text, the meaning of its values in session_view. UI thread.
#include "session/session.h"

#include "base/events.h"
#include "base/log.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "debugui/breakpoint_list.h"
#include "debugui/breakpoint_rules.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "documents/file_work.h"
#include "documents/recent_files.h"
#include "editor/caret_place.h"
#include "editor/margins.h"
#include "files/file_io.h"
#include "files/keep_aside.h"
#include "files/session_file.h"
#include "project/project_tree.h"
#include "scintilla/sci.h"
#include "session/session_close.h"
#include "session/session_owner.h"
#include "session/session_restore.h"
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
#include <utility>
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

// Applies the rule to the breakpoint on its line. Does nothing when the line has none. A condition with a fault is left
// out.
void ApplyBreakpointRule(DocumentId document, const SessionBreakpoint& rule) {
    const int line = std::clamp(rule.line, -1, std::numeric_limits<std::int32_t>::max() - 1) + 1;
    const int index = BreakpointAt(document, line, false);
    if (index < 0) return;
    if (ConditionProblem(rule.condition).empty())
        BreakpointSetCondition(static_cast<std::size_t>(index), rule.condition);
    BreakpointSetStopFrom(static_cast<std::size_t>(index), static_cast<std::uint32_t>(rule.stopFrom));
    BreakpointEnable(static_cast<std::size_t>(index), rule.enabled);
}

bool IsMark(SessionKey key) {
    return key == SessionKey::Bookmarks || key == SessionKey::Breakpoints || key == SessionKey::BreakpointRule;
}

// BreakpointsUpdate() has been called.
SessionFile CaptureFile(const DocumentTab& tab) {
    SessionFile file;
    file.path = ToUtf8(tab.path);
    file.pinned = tab.pinned;
    const auto unshown = g_session.unshown.find(tab.id);
    const bool isShown = unshown == g_session.unshown.end();
    file.hasEditor = !isShown || tab.editor != nullptr;
    if (!isShown)
        for (const SessionItem& item : unshown->second) SessionTakeItem(file, item);
    if (isShown && tab.editor != nullptr) {
        file.cursor = Position(tab.editor, SCI_GETCURRENTPOS);
        file.scroll = Position(tab.editor, SCI_GETFIRSTVISIBLELINE);
        file.selectionStart = Position(tab.editor, SCI_GETSELECTIONSTART);
        file.selectionEnd = Position(tab.editor, SCI_GETSELECTIONEND);
    }
    if (tab.editor != nullptr) {
        file.bookmarks = MarkedLines(tab.editor, kMarkBookmark);
        file.breakpoints = MarkedLines(tab.editor, kMarkBreakpoint);
        file.rules = SessionRulesOf(BreakpointList(), tab.id);
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

void ApplyItem(int tab, const SessionItem& item) {
    if (item.key == SessionKey::BreakpointRule) return ApplyBreakpointRule(TabAt(tab).id, SessionParseRule(item.text));
    for (const EditorMessage& message : SessionEditorMessages(item)) SendFitting(TabAt(tab).editor, message);
}

bool OpenSessionFile(const std::string& path) { return FileAddUnread(Utf8ToWideText(path).c_str()) >= 0; }

// A document with breakpoints is read at once, because the debugger must know them.
bool KeepForLater(int tab, const SessionItem& item) {
    if (TabAt(tab).editor != nullptr && !g_session.unshown.contains(TabAt(tab).id)) return false;
    const DocumentId document = TabAt(tab).id;
    const bool wasRead = TabAt(tab).editor != nullptr;
    if (wasRead && IsMark(item.key))
        ApplyItem(tab, item);
    else
        g_session.unshown[document].push_back(item);
    if (!wasRead && (item.key == SessionKey::Breakpoints || item.key == SessionKey::BreakpointRule)) TabBarRead(tab);
    return true;
}

void ApplySession(const std::vector<SessionItem>& items) {
    const SettingsEdit edit;
    SessionFrame frame = CaptureFrame();
    const SessionTarget target = {
        .open = OpenSessionFile,
        .has = IsTabIndex,
        .keep = KeepForLater,
        .send = [](int tab, const EditorMessage& message) { SendFitting(TabAt(tab).editor, message); },
        .setRule = [](int tab, const SessionBreakpoint& rule) { ApplyBreakpointRule(TabAt(tab).id, rule); },
        .pin =
            [] {
                if (TabCount() > 0) TabAt(TabCount() - 1).pinned = true;
            },
        .showFrame = ApplyFrame};
    g_events.documentsComing(true);
    g_session.missing = SessionRestore(items, target, g_settings, frame);
    const DocumentId active = IsTabIndex(frame.activeTab) ? TabAt(frame.activeTab).id : 0;
    TabBarSortPinned();  // the sections of files that are away have moved the others
    g_events.documentsComing(false);
    TabBarActivate(active != 0 ? TabBarFindDocument(active) : TabCount() - 1);
}

// Asks once about all files that could not be opened.
void AskAboutMissing() {
    // A program that is being closed keeps them all; a box would swallow the close.
    if (g_session.missing.empty() || FileWorkCloseIsQueued()) return;
    const Answer answer = AskUser({.caption = Text(L"Restore Session"),
                                   .text = MissingFilesQuestion(g_session.missing).c_str(),
                                   .buttons = AskButtons::YesNo,
                                   .icon = AskIcon::Warning,
                                   .inSelftest = Answer::Yes,
                                   .yes = Text(L"&Keep"),
                                   .no = Text(L"&Forget"),
                                   .loses = Answer::No});
    if (answer == Answer::No) g_session.missing.clear();
}

// The text of the file, or nothing when it cannot be read.
std::optional<std::string> ReadSession(const wchar_t* path) {
    if (path == nullptr || path[0] == L'\0') return std::nullopt;
    constexpr std::size_t kMost = 1U << 28U;  // bytes, more than any session of ours
    std::string text;
    return ReadSharedFile(path, kMost, &text) ? std::optional{text} : std::nullopt;
}

}  // namespace

RestoreScope::RestoreScope() { ++g_session.restores; }

RestoreScope::~RestoreScope() { --g_session.restores; }

void SessionOnTextArrived(DocumentId document) {
    const auto unshown = g_session.unshown.find(document);
    if (unshown == g_session.unshown.end()) return;
    for (const SessionItem& item : unshown->second)
        if (IsMark(item.key)) ApplyItem(TabBarFindDocument(document), item);
    // Once: a reload brings back what there is by then.
    std::erase_if(unshown->second, [](const SessionItem& item) { return IsMark(item.key); });
}

void SessionOnShown(DocumentId document) {
    const int tab = TabBarFindDocument(document);
    if (g_session.unshown.empty() || tab < 0 || TabAt(tab).editor == nullptr) return;
    const auto unshown = g_session.unshown.extract(document);
    if (unshown.empty()) return;
    for (const SessionItem& item : unshown.mapped())
        if (!IsMark(item.key)) ApplyItem(tab, item);
}

void SessionOnClosed(DocumentId document) { g_session.unshown.erase(document); }

std::uint64_t SessionCaretOf(const DocumentTab& tab) {
    const auto unshown = g_session.unshown.find(tab.id);
    if (unshown == g_session.unshown.end()) return Position(tab.editor, SCI_GETCURRENTPOS);
    SessionFile file;
    for (const SessionItem& item : unshown->second) SessionTakeItem(file, item);
    return file.cursor;
}

SessionFile SessionPlaceOf(const DocumentTab& tab) { return CaptureFile(tab); }

void SessionApplyPlace(int tab, const SessionFile& place) {
    if (!IsTabIndex(tab) || TabAt(tab).editor == nullptr || !place.hasEditor) return;
    const HWND editor = TabAt(tab).editor;
    for (const std::int32_t line : place.bookmarks)
        SciSend(editor, SCI_MARKERADD, static_cast<WPARAM>(line), kMarkBookmark);
    const auto send = [&](UINT message, std::uint64_t value) {
        SendFitting(editor, {message, static_cast<std::intptr_t>(value), 0});
    };
    send(SCI_GOTOPOS, place.cursor);
    send(SCI_SETSELECTIONSTART, place.selectionStart);
    send(SCI_SETSELECTIONEND, place.selectionEnd);
    send(SCI_SETFIRSTVISIBLELINE, place.scroll);
}

bool SessionSavesAllowed() { return !g_session.starting && g_session.restores == 0; }

void SessionStartupDone() { g_session.starting = false; }

int SessionSave(const wchar_t* path) {
    if (path == nullptr || path[0] == L'\0') return 0;
    std::vector<SessionFile> files;
    BreakpointsUpdate();  // once for all documents, because it looks at each of them
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.path[0] != L'\0') files.push_back(CaptureFile(tab));
    files = SessionFilesToSave(std::move(files), g_session.missing, [](const std::string& missing) {
        return TabBarFindPath(Utf8ToWideText(missing).c_str()) >= 0;
    });
    return ReplaceFileWithText(path, SessionCompose(SessionHeaderOf(g_settings, CaptureFrame()), files)) ? 1 : 0;
}

int SessionLoad(const wchar_t* path, HWND) {
    const std::optional<std::string> text = ReadSession(path);
    const RestoreScope restore;
    if (!text || !CloseEveryTab()) return 0;
    ApplySession(SessionParse(*text));
    g_events.layoutWanted();
    g_events.refreshWanted();
    SessionMRUAdd(path);
    SettingsSave(nullptr);
    AskAboutMissing();
    return 1;
}

int SessionHasFiles(const wchar_t* path) {
    const std::optional<std::string> text = ReadSession(path);
    return text && SessionListsFiles(*text) ? 1 : 0;
}

bool SessionFileIsOurs(const wchar_t* path) {
    const std::optional<std::string> text = ReadSession(path);
    return text && SessionHasHeader(*text);
}

void SessionAutoSavePath(wchar_t* out, std::size_t capacity) {
    GetIniPath(nullptr, out, capacity);
    SafeCatW(out, capacity, L"_autosave.kvxsess");
}

int SessionAutoSave(HWND) {
    if (g_selftestTabsMode || g_settings.autoSaveEnabled == 0 || g_session.autoSaveLost || !SessionSavesAllowed() ||
        !SessionIsOurs())
        return 1;
    wchar_t path[kPathCapacity] = {};
    SessionAutoSavePath(path, kPathCapacity);
    if (SessionSave(path) != 0) return 1;
    AppLogMsg(L"FAIL: SessionAutoSave could not write path=%s", path);
    return 0;
}

// Keeps what is no session before this run writes its own over it.
static void KeepForeignSession(const wchar_t* path) {
    const std::wstring aside = KeepAside(path);
    g_session.autoSaveLost = aside.empty();
    AppLogMsg(L"FAIL: the file of the session holds none: %s, kept as %s", path, aside.c_str());
    g_events.noticeWanted(
        aside.empty()
            ? TextWith(L"The file of the last run's session is damaged:\n\n{1}\n\nNo copy of it could be made, "
                       L"so it is not overwritten in this run.",
                       {path})
                  .c_str()
            : TextWith(L"The file of the last run's session is damaged:\n\n{1}\n\nIt will be written anew. "
                       L"What it held is kept in:\n\n{2}",
                       {path, aside})
                  .c_str());
}

void SessionCheckAutoSave() {
    constexpr int kTries = 8;
    constexpr DWORD kPause = 50;  // ms; a virus scanner or a backup keeps a file for a moment
    wchar_t path[kPathCapacity] = {};
    SessionAutoSavePath(path, kPathCapacity);
    for (int attempt = 1; FileExists(path); ++attempt) {
        if (const std::optional<std::string> text = ReadSession(path)) {
            if (!text->empty() && !SessionHasHeader(*text)) KeepForeignSession(path);
            return;
        }
        if (attempt < kTries) {
            Sleep(kPause);
            continue;
        }
        g_session.autoSaveLost = true;
        AppLogMsg(L"FAIL: the session cannot be read, it is not saved in this run: %s", path);
        g_events.noticeWanted(
            FormatW(Text(L"The session of the last run cannot be read at the moment:\n\n%s\n\nIt is not "
                         L"overwritten in this run, so that it is not lost."),
                    path)
                .c_str());
        return;
    }
}

void SessionMRUAdd(const wchar_t* path) {
    if (path == nullptr) return;
    SettingsChange([path](Settings& settings) {
        settings.sessionMruCount =
            RecentListAdd(settings.sessionMruFiles, settings.sessionMruCount, path, RecentMatch::Exact);
    });
}
