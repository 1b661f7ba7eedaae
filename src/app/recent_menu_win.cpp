// The lists of recent files and sessions in the File menu, and the commands of named sessions. UI thread.
#include "app/recent_menu.h"

#include "app/app_state.h"
#include "app/main_window.h"
#include "app/recent_text.h"
#include "app/start_page.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/wide_format.h"
#include "commands/status_bar.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "resources/ids.h"
#include "session/session.h"
#include "settings/settings_store.h"
#include "ui/message.h"
#include "ui/path_dialog.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string>
#include <vector>

namespace {

// A list in the menu: the rows of the settings and the ids of its items.
struct RecentList {
    int first;      // command of row 0
    int none;       // the item that stands there while the list is empty
    int neighbour;  // an item of the same menu that always stays
    std::int32_t Settings::*count;
    wchar_t (Settings::*rows)[kMruCapacity][kPathCapacity];
};
constexpr RecentList kFiles = {IDM_RECENT_FILE_FIRST, IDM_RECENT_FILES_NONE, IDM_RECENT_FILES_CLEAR,
                               &Settings::mruCount, &Settings::mruFiles};
constexpr RecentList kSessions = {IDM_RECENT_SESSION_FIRST, IDM_RECENT_SESSIONS_NONE, IDM_SESSION_OPEN,
                                  &Settings::sessionMruCount, &Settings::sessionMruFiles};

bool HasItem(HMENU menu, int command) {
    for (int i = 0; i < GetMenuItemCount(menu); ++i)
        if (GetMenuItemID(menu, i) == static_cast<UINT>(command)) return true;
    return false;
}

// The rows of the settings that the list shows.
std::vector<int> RowsToShow(const RecentList& list) {
    if (list.first == IDM_RECENT_SESSION_FIRST) {
        wchar_t own[kPathCapacity] = {};
        SessionAutoSavePath(own, kPathCapacity);
        return SessionRowsToOffer(g_app.settings, own);
    }
    std::vector<int> rows(static_cast<std::size_t>(std::clamp<int>(g_app.settings.*list.count, 0, kMruCapacity)));
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
}

// The rows stand where the first of them, or the item of the empty list, stands.
void FillList(HMENU menu, const RecentList& list) {
    const auto isRow = [&](UINT id) {
        const int command = static_cast<int>(id);
        return command == list.none || (command >= list.first && command < list.first + kMruCapacity);
    };
    int at = 0;
    while (at < GetMenuItemCount(menu) && !isRow(GetMenuItemID(menu, at))) ++at;
    while (at < GetMenuItemCount(menu) && isRow(GetMenuItemID(menu, at)))
        DeleteMenu(menu, static_cast<UINT>(at), MF_BYPOSITION);
    const auto insert = [&](int offset, int command, const std::wstring& text) {
        InsertMenuW(menu, static_cast<UINT>(at + offset), MF_BYPOSITION | MF_STRING, static_cast<UINT_PTR>(command),
                    text.c_str());
    };
    int shown = 0;
    for (const int row : RowsToShow(list)) {
        insert(shown, list.first + row, RecentMenuText(shown, (g_app.settings.*list.rows)[row]));
        ++shown;
    }
    if (shown == 0) insert(0, list.none, Text(L"(None)"));
}

void RemoveRow(const RecentList& list, int row) {
    SettingsChange([&](Settings& settings) { RecentRowRemove(settings.*list.rows, settings.*list.count, row); });
    SettingsSave(nullptr);
}

// False when the file is gone: asks whether its row is to go, too.
bool IsThere(const RecentList& list, int row, const std::wstring& path) {
    if (PathAnswers(path.c_str()) && FileExists(path.c_str())) return true;
    const std::wstring text =
        FormatW(Text(L"This file is not there at the moment:\n%s\n\nRemove it from the list?"), path.c_str());
    if (AskUser({.caption = kProgramCaption,
                 .text = text.c_str(),
                 .buttons = AskButtons::OkCancel,
                 .icon = AskIcon::Question,
                 .inSelftest = Answer::No,
                 .yes = Text(L"&Remove")}) == Answer::Yes)
        RemoveRow(list, row);
    return false;
}

void OpenSession(const std::wstring& path) {
    // The session in use is written when the program ends, so a file of another kind must not become it.
    if (!SessionFileIsOurs(path.c_str())) {
        ErrorMessage(Text(L"Failed to open session: %s\n\nThe file cannot be read, or it is not a session."),
                     path.c_str());
        return;
    }
    // A document that the user wanted to keep open stops it, and that needs no message.
    if (SessionLoad(path.c_str(), g_app.hMainWnd) == 0) return;
    EnsureEditableStartupTab();  // all its files may be away
    SafeCopyW(g_app.sessionPath, path);
    FocusCurrentEditor();
    StatusBarSetText(TextWith(L"Session opened: {1}", {FileNameOf(path)}).c_str());
}

void SaveSession(const std::wstring& path) {
    if (SessionSave(path.c_str()) == 0) {
        ErrorMessage(Text(L"Failed to save session: %s"), path.c_str());
        return;
    }
    SafeCopyW(g_app.sessionPath, path);
    SessionMRUAdd(path.c_str());
    SettingsSave(nullptr);
    StatusBarSetText(TextWith(L"Session saved: {1}", {FileNameOf(path)}).c_str());
}

// Empty when the user cancelled.
std::wstring AskSessionPath(bool save) {
    std::wstring path = save ? g_app.sessionPath : L"";
    wchar_t folder[kPathCapacity] = {};
    FileOpenResolveInitialDirectory(folder, kPathCapacity);
    const PathQuestion question = {.owner = g_app.hMainWnd,
                                   .filter = English(L"Sessions (*.kvxsess)\0*.kvxsess\0All Files (*.*)\0*.*\0"),
                                   .extension = L"kvxsess",
                                   .folder = folder,
                                   .save = save};
    return AskFilePath(question, path) ? path : std::wstring();
}

void OpenRecentFile(int command) {
    const int row = command - kFiles.first;
    if (row >= g_app.settings.mruCount) return;
    const std::wstring path = g_app.settings.mruFiles[row];
    if (IsThere(kFiles, row, path)) FileOpen(path.c_str());
}

void OpenRecentSession(int command) {
    const int row = command - kSessions.first;
    if (row >= g_app.settings.sessionMruCount) return;
    const std::wstring path = g_app.settings.sessionMruFiles[row];
    if (IsThere(kSessions, row, path)) OpenSession(path);
}

void ClearRecentFiles(int) {
    SettingsChange([](Settings& settings) { settings.mruCount = 0; });
    SettingsSave(nullptr);
}

void AskAndOpenSession(int) {
    if (const std::wstring path = AskSessionPath(false); !path.empty()) OpenSession(path);
}

void AskAndSaveSession(int) {
    if (const std::wstring path = AskSessionPath(true); !path.empty()) SaveSession(path);
}

void SaveCurrentSession(int command) {
    if (g_app.sessionPath[0] == L'\0')
        AskAndSaveSession(command);
    else
        SaveSession(g_app.sessionPath);
}

constexpr CommandHandler kSessionHandlers[] = {
    {IDM_RECENT_FILES_CLEAR, ClearRecentFiles},
    {IDM_SESSION_OPEN, AskAndOpenSession},
    {IDM_SESSION_SAVE, SaveCurrentSession},
    {IDM_SESSION_SAVE_AS, AskAndSaveSession},
};

// The handlers of kSessionHandlers and one for each row of both lists.
constexpr auto SessionAndRowHandlers() {
    std::array<CommandHandler, std::size(kSessionHandlers) + 3 * kMruCapacity> all = {};
    auto* next = std::ranges::copy(kSessionHandlers, all.begin()).out;
    for (int i = 0; i < kMruCapacity; ++i) {
        *next++ = {IDM_RECENT_FILE_FIRST + i, OpenRecentFile};
        *next++ = {IDM_RECENT_SESSION_FIRST + i, OpenRecentSession};
        *next++ = {IDM_SAMPLE_FIRST + i, OpenSample};
    }
    return all;
}
constexpr auto kRecentHandlers = SessionAndRowHandlers();

}  // namespace

void RecentMenuFill(HMENU menu) {
    for (const RecentList& list : {kFiles, kSessions})
        if (HasItem(menu, list.neighbour)) FillList(menu, list);
}

std::span<const CommandHandler> RecentCommandHandlers() { return kRecentHandlers; }
