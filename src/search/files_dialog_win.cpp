// The dialog of a search over files. Modeless, UI thread only.
#include "base/log.h"
#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "documents/document_row.h"
#include "documents/recent_files.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "search/files_internal.h"
#include "search/find_rules.h"
#include "settings/settings_state.h"
#include "ui/accessible.h"
#include "ui/dialog_theme.h"
#include "ui/monitor.h"
#include "ui/path_dialog.h"
#include "ui/ui_state.h"
#include "ui/window_text.h"

#include <commctrl.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace {

constexpr int kLongestText = 255;   // characters of a field
constexpr int kLongestPath = 1000;  // of the folder

struct FilesDialog {
    HWND window = nullptr;
    std::vector<FilesOptions> recent;  // as the list shows them
    std::wstring folder;               // as it was typed; the field shows it for FilesScope::Folder only
};
FilesDialog g_filesDialog;

struct BoxOption {
    int control;
    bool FilesOptions::*option;
};
constexpr BoxOption kBoxes[] = {
    {IDC_FILES_CASE, &FilesOptions::matchCase},      {IDC_FILES_WORD, &FilesOptions::wholeWord},
    {IDC_FILES_REGEX, &FilesOptions::regex},         {IDC_FILES_SUBFOLDERS, &FilesOptions::subfolders},
    {IDC_FILES_GITIGNORE, &FilesOptions::gitIgnore}, {IDC_FILES_HIDDEN, &FilesOptions::hidden},
    {IDC_FILES_REPLACING, &FilesOptions::replacing}, {IDC_FILES_PRESERVE, &FilesOptions::preserveCase},
};
struct TextOption {
    int control;
    std::wstring FilesOptions::*option;
    int limit;
};
constexpr TextOption kFields[] = {
    {IDC_FILES_WHAT, &FilesOptions::what, kLongestText},     {IDC_FILES_WITH, &FilesOptions::with, kLongestText},
    {IDC_FILES_FOLDER, &FilesOptions::folder, kLongestPath}, {IDC_FILES_ONLY, &FilesOptions::only, kLongestText},
    {IDC_FILES_EXCEPT, &FilesOptions::except, kLongestText},
};

HWND Control(int id) { return GetDlgItem(g_filesDialog.window, id); }
LRESULT Ask(int control, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    return SendDlgItemMessageW(g_filesDialog.window, control, message, wParam, lParam);
}
void AddItem(int control, const std::wstring& text) {
    Ask(control, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

FilesOptions ReadFields() {
    FilesOptions options;
    for (const BoxOption& box : kBoxes)
        options.*box.option = IsDlgButtonChecked(g_filesDialog.window, box.control) == BST_CHECKED;
    for (const TextOption& field : kFields) options.*field.option = WindowText(Control(field.control));
    options.scope = static_cast<FilesScope>(std::max<LRESULT>(Ask(IDC_FILES_SCOPE, CB_GETCURSEL), 0));
    if (IsWindowEnabled(Control(IDC_FILES_FOLDER)) == FALSE) options.folder = g_filesDialog.folder;
    return options;
}

// Switches the fields that mean something with the options as they are.
void EnableFields() {
    FilesOptions options = ReadFields();
    const bool chosenNow = options.scope == FilesScope::Folder && IsWindowEnabled(Control(IDC_FILES_FOLDER)) == FALSE;
    if (chosenNow && options.folder.empty()) options.folder = FilesFolderWanted({.scope = FilesScope::Project});
    const auto enable = [](int control, bool on) { EnableWindow(Control(control), on ? TRUE : FALSE); };
    const bool walks = options.scope != FilesScope::OpenDocuments;
    enable(IDC_FILES_WITH, options.replacing);
    enable(IDC_FILES_PRESERVE, options.replacing);
    g_filesDialog.folder = options.folder;
    for (const int control : {IDC_FILES_FOLDER, IDC_FILES_BROWSE, IDC_FILES_FOLDER_LABEL})
        enable(control, options.scope == FilesScope::Folder);
    for (const int control :
         {IDC_FILES_ONLY, IDC_FILES_EXCEPT, IDC_FILES_SUBFOLDERS, IDC_FILES_GITIGNORE, IDC_FILES_HIDDEN})
        enable(control, walks);
    SetDlgItemTextW(g_filesDialog.window, IDC_FILES_FOLDER, FilesFolderWanted(options).c_str());
    SetWindowTextW(g_filesDialog.window, options.replacing ? Text(L"Replace in Files") : Text(L"Find in Files"));
    SetDlgItemTextW(g_filesDialog.window, IDOK, options.replacing ? Text(L"&Find and Preview") : Text(L"&Find All"));
}

void ShowFields(const FilesOptions& options) {
    for (const BoxOption& box : kBoxes)
        CheckDlgButton(g_filesDialog.window, box.control, options.*box.option ? BST_CHECKED : BST_UNCHECKED);
    g_filesDialog.folder = options.folder;
    EnableWindow(Control(IDC_FILES_FOLDER), TRUE);
    for (const TextOption& field : kFields)
        SetDlgItemTextW(g_filesDialog.window, field.control, (options.*field.option).c_str());
    Ask(IDC_FILES_SCOPE, CB_SETCURSEL, static_cast<WPARAM>(options.scope));
    EnableFields();
}

std::vector<FilesOptions> RecentSearches() {
    std::vector<FilesOptions> recent;
    for (int i = 0; i < std::min<int>(g_settings.filesSearchCount, kFilesSearchCapacity); ++i)
        if (std::optional<FilesOptions> entry = RecentSearchOf(g_settings.filesSearches[i]))
            recent.push_back(std::move(*entry));
    return recent;
}

void FillLists() {
    g_filesDialog.recent = RecentSearches();
    Ask(IDC_FILES_RECENT, CB_RESETCONTENT);
    for (const FilesOptions& entry : g_filesDialog.recent) AddItem(IDC_FILES_RECENT, RecentSearchLabel(entry));
    EnableWindow(Control(IDC_FILES_RECENT), !g_filesDialog.recent.empty());
    Ask(IDC_FILES_WHAT, CB_RESETCONTENT);
    for (int i = 0; i < std::min<int>(g_settings.searchHistoryCount, kSearchHistoryCapacity); ++i)
        AddItem(IDC_FILES_WHAT, g_settings.searchHistory[i]);
}

void RememberFilesSearch(const FilesOptions& options) {
    SettingsChange([&](Settings& settings) {
        settings.searchHistoryCount =
            RecentListAdd(settings.searchHistory, settings.searchHistoryCount, options.what, RecentMatch::Exact);
        settings.filesSearchCount = RecentListAdd(settings.filesSearches, settings.filesSearchCount,
                                                  RecentSearchText(options), RecentMatch::Exact);
    });
}

// The selection of the active editor when it can be searched for, else empty.
std::wstring SelectedText() {
    const LRESULT start = SciSend(g_documents.hEditor, SCI_GETSELECTIONSTART);
    const LRESULT end = SciSend(g_documents.hEditor, SCI_GETSELECTIONEND);
    if (end - start < 1 || end - start > kLongestText) return {};
    std::string text(static_cast<std::size_t>(end - start), '\0');
    SciSend(g_documents.hEditor, SCI_SETTARGETRANGE, static_cast<WPARAM>(start), end);
    SciSend(g_documents.hEditor, SCI_GETTARGETTEXT, 0, reinterpret_cast<LPARAM>(text.data()));
    return Utf8ToWideText(SearchTextFromSelection(text));
}

void ChooseFolder() {
    std::wstring folder = WindowText(Control(IDC_FILES_FOLDER));
    if (AskFolderPath(g_filesDialog.window, Text(L"Choose the folder to search in"), folder))
        SetDlgItemTextW(g_filesDialog.window, IDC_FILES_FOLDER, folder.c_str());
}

void StartFromDialog() {
    const FilesOptions options = ReadFields();
    if (g_files.replaceRuns) {
        SetDlgItemTextW(g_filesDialog.window, IDC_FILES_STATUS, Text(L"A replacement is running"));
        return;
    }
    const std::wstring fault = FilesSearchBegin(options);
    if (!fault.empty()) {
        SetDlgItemTextW(g_filesDialog.window, IDC_FILES_STATUS, fault.c_str());
        MessageBeep(MB_OK);
        return;
    }
    RememberFilesSearch(options);
    DestroyWindow(g_filesDialog.window);
    FilesPaneFocus();
}

void TakeRecent() {
    const LRESULT chosen = Ask(IDC_FILES_RECENT, CB_GETCURSEL);
    if (chosen >= 0 && static_cast<std::size_t>(chosen) < g_filesDialog.recent.size())
        ShowFields(g_filesDialog.recent[static_cast<std::size_t>(chosen)]);
}

void OnFilesInit(HWND dialog) {
    g_filesDialog.window = dialog;
    AccessibleNameSet(Control(IDC_FILES_WITH), Text(L"Replacement"));  // a check box stands where its label would
    for (const wchar_t* scope : {Text(L"Project folder"), Text(L"Open documents"), Text(L"Folder")})
        AddItem(IDC_FILES_SCOPE, scope);
    Ask(IDC_FILES_WHAT, CB_LIMITTEXT, kLongestText);
    for (const TextOption& field : kFields)
        if (field.control != IDC_FILES_WHAT) Ask(field.control, EM_SETLIMITTEXT, static_cast<WPARAM>(field.limit));
    for (const auto& [control, cue] :
         {std::pair{IDC_FILES_ONLY, Text(L"all, or *.bas;*.inc")}, {IDC_FILES_EXCEPT, Text(L"none, or bin;*.log")}})
        Ask(control, EM_SETCUEBANNER, FALSE, reinterpret_cast<LPARAM>(cue));
    FillLists();
    DialogApplyTheme(dialog);
}

void OnFilesDialogCommand(int control, int notification) {
    switch (control) {
        case IDOK: StartFromDialog(); break;
        case IDCANCEL:
            DestroyWindow(g_filesDialog.window);
            FocusCurrentEditor();
            break;
        case IDC_FILES_REPLACING: EnableFields(); break;
        case IDC_FILES_SCOPE:
            if (notification == CBN_SELCHANGE) EnableFields();
            break;
        case IDC_FILES_RECENT:
            if (notification == CBN_SELCHANGE) TakeRecent();
            break;
        case IDC_FILES_BROWSE: ChooseFolder(); break;
        default: break;
    }
}

INT_PTR CALLBACK FilesDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
        case WM_INITDIALOG: OnFilesInit(dialog); return FALSE;  // FilesDialogShow sets the focus
        case WM_COMMAND: OnFilesDialogCommand(LOWORD(wParam), HIWORD(wParam)); return TRUE;
        case WM_DESTROY: g_filesDialog = {}; return TRUE;
        default: return FALSE;
    }
}

void CentreOver(HWND dialog, HWND owner) {
    RECT frame = {}, size = {};
    GetWindowRect(owner, &frame);
    GetWindowRect(dialog, &size);
    const RECT work = WorkAreaOf(owner);
    const LONG width = size.right - size.left, height = size.bottom - size.top;
    const LONG left = (frame.left + frame.right - width) / 2, top = (frame.top + frame.bottom - height) / 3;
    SetWindowPos(dialog, nullptr, std::max(work.left, std::min(left, work.right - width)),
                 std::max(work.top, std::min(top, work.bottom - height)), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// What the dialog shows first: the last search of this run, else the newest one of the list.
FilesOptions FirstOptions() {
    if (g_files.byUser) return g_files.options;
    const std::vector<FilesOptions> recent = RecentSearches();
    return recent.empty() ? FilesOptions{} : recent.front();
}

}  // namespace

void FilesDialogShow(HWND owner, bool replace) {
    const bool opened = g_filesDialog.window == nullptr;
    if (opened &&
        CreateDialogParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_FILES_SEARCH), owner, FilesDlgProc, 0) == nullptr) {
        AppLogMsg(L"FAIL: FilesDialogShow error=%lu", GetLastError());
        return;
    }
    FilesOptions options = opened ? FirstOptions() : ReadFields();
    options.replacing = replace;
    if (const std::wstring selected = SelectedText(); !selected.empty()) options.what = selected;
    ShowFields(options);
    if (opened) CentreOver(g_filesDialog.window, owner);
    ShowWindow(g_filesDialog.window, SW_SHOW);
    SetActiveWindow(g_filesDialog.window);
    SetFocus(Control(IDC_FILES_WHAT));
    Ask(IDC_FILES_WHAT, CB_SETEDITSEL, 0, MAKELPARAM(0, -1));
}

void FilesDialogShowFolder(HWND owner, const std::wstring& folder) {
    FilesDialogShow(owner, false);
    if (g_filesDialog.window == nullptr) return;
    FilesOptions options = ReadFields();
    options.scope = FilesScope::Folder;
    options.folder = folder;
    ShowFields(options);
}

bool FilesDialogIsMessage(MSG* message) {
    const HWND dialog = g_filesDialog.window;
    if (dialog == nullptr || (message->hwnd != dialog && IsChild(dialog, message->hwnd) == FALSE)) return false;
    return IsDialogMessageW(dialog, message) != FALSE;
}
