// The frame of the settings dialog: the search, the list of pages, the buttons, and what OK and Apply do. UI thread only.
#include "settingsui/settings_dialog.h"

#include "base/bounded_text.h"
#include "base/log.h"
#include "base/system_error.h"
#include "base/texts.h"
#include "settings/settings_state.h"
#include "settings/settings_store.h"
#include "settingsui/settings_dialog_internal.h"
#include "ui/accessible.h"
#include "ui/dialog_theme.h"
#include "ui/message.h"
#include "ui/small_icon.h"
#include "ui/ui_state.h"
#include "ui/window_text.h"

#include <algorithm>
#include <memory>

namespace {

constexpr DWORD kEndMs = 500;  // that a worker gets at the end

HWND g_openDialog = nullptr;
std::size_t g_lastPage = 0;  // where the user was the last time

SettingsDialog& DialogOf(HWND window) {
    return *reinterpret_cast<SettingsDialog*>(GetWindowLongPtrW(window, DWLP_USER));
}

// ------------------------------------------------------------------------------------------------------------ pages

HWND PageList(const SettingsDialog& dialog) { return GetDlgItem(dialog.window, IDC_SETTINGS_PAGES); }

// The list of keys also matches by its lines, and its button goes with it.
bool MatchesByKeys(const SettingsDialog& dialog, std::size_t page) {
    const auto isKeys = [](const SettingItem& item) { return item.control == SettingControl::Keys; };
    return std::ranges::any_of(SettingsPages()[page].items, isKeys) && !SettingsKeysFound(dialog, page).empty();
}

void MarkMatches(SettingsDialog& dialog) {
    const SettingsPage& page = SettingsPages()[dialog.page];
    PageWindow& target = dialog.pages[dialog.page];
    const bool byKeys = MatchesByKeys(dialog, dialog.page);
    for (std::size_t i = 0; i < target.items.size(); ++i) {
        const SettingControl control = page.items[i].control;
        const bool ofKeys = control == SettingControl::Keys || control == SettingControl::CopyKeys;
        target.items[i].shown = ofKeys ? byKeys : SettingItemMatches(page, page.items[i], dialog.query);
        if (control == SettingControl::Keys) SettingsKeysFill(dialog, {dialog.page, i});
    }
}

void LookForPaths(SettingsDialog& dialog, std::size_t page) {
    for (std::size_t i = 0; i < dialog.pages[page].items.size(); ++i) {
        const SettingControl control = ItemAt({page, i}).control;
        if (control == SettingControl::File || control == SettingControl::Folder)
            SettingsLookForPath(dialog, {page, i});
    }
}

void ShowPage(SettingsDialog& dialog, std::size_t page) {
    const bool isNew = dialog.pages[page].window == nullptr;
    if (!SettingsPageMake(dialog, page)) {
        AppLogMsg(L"FAIL: SettingsPageMake error=%lu", GetLastError());
        return;
    }
    if (page != dialog.page && dialog.pages[dialog.page].window != nullptr)
        ShowWindow(dialog.pages[dialog.page].window, SW_HIDE);
    dialog.page = page;
    if (dialog.keyLines.empty() && page + 1 == dialog.pages.size()) dialog.keyLines = SettingsKeyLines();
    if (isNew) LookForPaths(dialog, page);
    MarkMatches(dialog);
    SettingsShownPagePlace(dialog);
}

// Fills the list with the pages that match the search, and shows the one from before if it is among them.
void ListPages(SettingsDialog& dialog) {
    const std::vector<SettingsPage>& pages = SettingsPages();
    const HWND list = PageList(dialog);
    dialog.listed.clear();
    SendMessageW(list, LB_RESETCONTENT, 0, 0);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        if (!SettingsPageMatches(pages[i], dialog.query) && !MatchesByKeys(dialog, i)) continue;
        const std::wstring name = std::wstring(pages[i].compiler != kNoCompiler ? L"      " : L"") + pages[i].title;
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
        dialog.listed.push_back(i);
    }
    if (dialog.listed.empty()) return SettingsShownPagePlace(dialog);
    auto chosen = std::ranges::find(dialog.listed, dialog.page);
    // The page from the last time matches nearly everything by its list of keys.
    if (!dialog.pageChosen && chosen != dialog.listed.end() && !SettingsPageMatches(pages[dialog.page], dialog.query))
        chosen = dialog.listed.begin();
    if (chosen == dialog.listed.end()) chosen = dialog.listed.begin();
    SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(chosen - dialog.listed.begin()), 0);
    ShowPage(dialog, *chosen);
}

void ShowListed(SettingsDialog& dialog) {
    const LRESULT at = SendMessageW(PageList(dialog), LB_GETCURSEL, 0, 0);
    dialog.pageChosen = true;
    if (at >= 0 && at < static_cast<LRESULT>(dialog.listed.size()))
        ShowPage(dialog, dialog.listed[static_cast<std::size_t>(at)]);
}

// To the next or the previous page of the list, as Ctrl+Tab goes through the tabs of the editor.
void StepPage(SettingsDialog& dialog, bool back) {
    if (dialog.listed.empty()) return;
    const HWND list = PageList(dialog);
    const auto count = static_cast<LRESULT>(dialog.listed.size());
    const LRESULT at = (SendMessageW(list, LB_GETCURSEL, 0, 0) + (back ? count - 1 : 1)) % count;
    // The field that had the keyboard is hidden with its page.
    SendMessageW(dialog.window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(list), TRUE);
    SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(at), 0);
    ShowListed(dialog);
}

// To the search: Ctrl+F from anywhere, and with a letter that is typed in the list of pages, which has few of them.
bool KeyIsForSearch(SettingsDialog& dialog, const MSG& message) {
    const HWND search = GetDlgItem(dialog.window, IDC_SETTINGS_SEARCH);
    const bool find = message.message == WM_KEYDOWN && message.wParam == 'F' && GetKeyState(VK_CONTROL) < 0 &&
                      GetKeyState(VK_MENU) >= 0 && GetKeyState(VK_SHIFT) >= 0;
    const bool letter = message.message == WM_CHAR && message.hwnd == PageList(dialog) && message.wParam > L' ';
    if (!find && !letter) return false;
    SendMessageW(dialog.window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(search), TRUE);  // selects what is in it
    if (letter) SendMessageW(search, WM_CHAR, message.wParam, message.lParam);
    return true;
}

// Sees the keys of the dialog before IsDialogMessage, which takes Ctrl+Tab for Tab.
LRESULT CALLBACK PageKeysHook(int code, WPARAM wParam, LPARAM lParam) {
    const MSG& message = *reinterpret_cast<const MSG*>(lParam);
    const bool own = code == MSGF_DIALOGBOX && (message.message == WM_KEYDOWN || message.message == WM_CHAR) &&
                     g_openDialog != nullptr && GetAncestor(message.hwnd, GA_ROOT) == g_openDialog;
    if (own && KeyIsForSearch(DialogOf(g_openDialog), message)) return 1;
    if (!own || message.message != WM_KEYDOWN || message.wParam != VK_TAB || GetKeyState(VK_CONTROL) >= 0)
        return CallNextHookEx(nullptr, code, wParam, lParam);
    StepPage(DialogOf(g_openDialog), GetKeyState(VK_SHIFT) < 0);
    return 1;
}

void GoToItem(SettingsDialog& dialog, FormPlace place) {
    SetDlgItemTextW(dialog.window, IDC_SETTINGS_SEARCH, L"");  // lists all pages
    dialog.page = place.page;
    ListPages(dialog);
    SettingsPageReveal(dialog, place);
    const HWND field = WindowsAt(dialog, place).parts[kPartField];
    SendMessageW(dialog.window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(field), TRUE);
}

}  // namespace

void SettingsShowAllTexts(SettingsDialog& dialog) {
    dialog.filling = true;
    for (std::size_t page = 0; page < dialog.pages.size(); ++page)
        for (std::size_t i = 0; i < dialog.pages[page].items.size(); ++i) SettingsFieldShow(dialog, {page, i});
    dialog.filling = false;
    for (std::size_t page = 0; page < dialog.pages.size(); ++page) {
        for (std::size_t i = 0; i < dialog.pages[page].items.size(); ++i) SettingsNoteRenew(dialog, {page, i});
        LookForPaths(dialog, page);
    }
}

void SettingsApplyEnable(const SettingsDialog& dialog) {
    const HWND apply = GetDlgItem(dialog.window, IDC_SETTINGS_APPLY);
    const bool edited = FormIsEdited(dialog.form);
    // A window that is disabled keeps the keyboard, and takes no key.
    if (!edited && GetFocus() == apply)
        SendMessageW(dialog.window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog.window, IDOK)), TRUE);
    EnableWindow(apply, edited ? TRUE : FALSE);
}

namespace {

// ---------------------------------------------------------------------------------------------------------- buttons

// Puts the edited settings in force and saves them. False: one cannot be taken, and the keyboard is at its field.
bool ApplySettings(SettingsDialog& dialog) {
    if (const auto problem = FormFirstProblem(dialog.form); problem.has_value()) {
        MessageBeep(MB_ICONWARNING);
        GoToItem(dialog, *problem);
        return false;
    }
    if (!FormIsEdited(dialog.form)) return true;
    SettingsChange([&](Settings& settings) {
        FormPut(dialog.form, settings);
        UpdateAssistantEnabled(settings);
    });
    if (SettingsSave(nullptr) == 0) {
        const std::wstring reason = SystemErrorText(GetLastError());
        wchar_t ini[kPathCapacity] = {};
        GetIniPath(nullptr, ini, kPathCapacity);
        ErrorMessage(Text(L"The settings are in force, but the settings file could not be written, so it is as it "
                          L"was:\n\n%s\n\n%s\n\n"
                          L"It is written again after the next change and when the editor closes."),
                     ini, reason.c_str());
    }
    dialog.form = FormOf(g_settings);
    SettingsShowAllTexts(dialog);
    SettingsApplyEnable(dialog);
    return true;
}

// Esc in the search, and Enter there, mean the search first.
bool SearchTakes(SettingsDialog& dialog, int command) {
    if (GetFocus() != GetDlgItem(dialog.window, IDC_SETTINGS_SEARCH)) return false;
    if (command == IDCANCEL) {
        if (dialog.query.empty()) return false;
        SetDlgItemTextW(dialog.window, IDC_SETTINGS_SEARCH, L"");
        return true;
    }
    if (dialog.listed.empty()) return true;
    const HWND page = dialog.pages[dialog.page].window;
    const HWND first = GetNextDlgTabItem(page, nullptr, FALSE);
    SendMessageW(dialog.window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(first), TRUE);
    return true;
}

void OnSettingsCommand(SettingsDialog& dialog, int id, int notification) {
    switch (id) {
        case IDC_SETTINGS_SEARCH:
            if (notification != EN_CHANGE) break;
            dialog.query = WindowText(GetDlgItem(dialog.window, id));
            if (dialog.keyLines.empty()) dialog.keyLines = SettingsKeyLines();
            ListPages(dialog);
            break;
        case IDC_SETTINGS_PAGES:
            if (notification == LBN_SELCHANGE) ShowListed(dialog);
            break;
        case IDC_SETTINGS_APPLY: ApplySettings(dialog); break;
        case IDC_SETTINGS_EXPORT: SettingsDialogExport(dialog); break;
        case IDC_SETTINGS_IMPORT: SettingsDialogImport(dialog); break;
        case IDC_SETTINGS_RESET: SettingsDialogReset(dialog); break;
        case IDOK:
            if (!SearchTakes(dialog, IDOK) && ApplySettings(dialog)) EndDialog(dialog.window, IDOK);
            break;
        case IDCANCEL:
            if (!SearchTakes(dialog, IDCANCEL)) EndDialog(dialog.window, IDCANCEL);
            break;
        default: break;
    }
}

// ----------------------------------------------------------------------------------------------------------- window

void OpenSettings(HWND window, SettingsDialog& dialog) {
    SetWindowLongPtrW(window, DWLP_USER, reinterpret_cast<LONG_PTR>(&dialog));
    dialog.window = window;
    DialogApplyTheme(window);
    SettingsScaleSet(dialog, g_ui.dpi);
    SettingsDialogPlace(dialog);
    SettingsFramePlace(dialog);
    ListPages(dialog);
    SetFocus(PageList(dialog));
}

void CloseSettings(SettingsDialog& dialog) {
    g_lastPage = dialog.page;
    for (const Worker& worker : {dialog.look, dialog.test, dialog.fetch}) {
        WorkerAskToEnd(worker);
        WorkerWait(worker, kEndMs);
    }
    WorkerDropPosts<std::unique_ptr<PathSight>>(dialog.window, MSG_SETTINGS_LOOKED);
    WorkerDropPosts<std::unique_ptr<CompilerReply>>(dialog.window, MSG_SETTINGS_TESTED);
    WorkerDropPosts<std::unique_ptr<ModelsReply>>(dialog.window, MSG_SETTINGS_MODELS);
}

// The colour of a note. Zero for every other control, which keeps the colours of the dialog.
INT_PTR NoteColour(const SettingsDialog& dialog, HDC dc, HWND control) {
    const int id = GetDlgCtrlID(control) - IDC_SETTINGS_ITEM_FIRST;
    if (id < 0 || id % SETTINGS_PARTS != kPartNote) return 0;
    const auto item = static_cast<std::size_t>(id / SETTINGS_PARTS);
    const PageWindow& page = dialog.pages[dialog.page];
    if (GetParent(control) != page.window || item >= page.items.size()) return 0;
    SetTextColor(dc, SettingsNoteColour(page.items[item].noteKind));
    SetBkColor(dc, GetSysColor(COLOR_BTNFACE));
    return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_BTNFACE));
}

INT_PTR CALLBACK SettingsDlgProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        g_openDialog = window;
        AccessibleNameSet(GetDlgItem(window, IDC_SETTINGS_PAGES), Text(L"Pages"));
        OpenSettings(window, *reinterpret_cast<SettingsDialog*>(lParam));
        return FALSE;  // the focus is set already
    }
    if (GetWindowLongPtrW(window, DWLP_USER) == 0) return FALSE;
    SettingsDialog& dialog = DialogOf(window);
    switch (message) {
        case WM_COMMAND: OnSettingsCommand(dialog, LOWORD(wParam), HIWORD(wParam)); return TRUE;
        case WM_SIZE: SettingsFramePlace(dialog); return TRUE;
        case WM_GETMINMAXINFO: SettingsDialogLimit(dialog, *reinterpret_cast<MINMAXINFO*>(lParam)); return TRUE;
        case WM_DPICHANGED:  // TRUE keeps the system from scaling the controls once more
            SettingsDialogRescale(dialog, HIWORD(wParam), *reinterpret_cast<const RECT*>(lParam));
            return TRUE;
        case WM_CLOSE:  // the caption's X, which unlike Esc never means the search
            EndDialog(window, IDCANCEL);
            return TRUE;
        case WM_CTLCOLORSTATIC:
            return NoteColour(dialog, reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
        case MSG_SETTINGS_LOOKED:
            SettingsOnLooked(dialog, *WorkerTake<std::unique_ptr<PathSight>>(wParam));
            return TRUE;
        case MSG_SETTINGS_TESTED:
            SettingsOnTested(dialog, *WorkerTake<std::unique_ptr<CompilerReply>>(wParam));
            return TRUE;
        case MSG_SETTINGS_MODELS:
            SettingsOnModels(dialog, *WorkerTake<std::unique_ptr<ModelsReply>>(wParam));
            return TRUE;
        case WM_DESTROY:
            g_openDialog = nullptr;
            SmallIconDrop(window);
            CloseSettings(dialog);
            return TRUE;
        default: return FALSE;
    }
}

}  // namespace

void SettingsItemChanged(SettingsDialog& dialog, FormPlace place) {
    const SettingItem& changed = ItemAt(place);
    if (changed.control == SettingControl::FixedFonts) dialog.fixedFonts = !dialog.fixedFonts;
    dialog.filling = true;
    if (changed.control == SettingControl::FixedFonts) SettingsFontsFill(dialog, place.page);
    for (std::size_t i = 0; i < dialog.pages[place.page].items.size(); ++i) {
        const SettingControl control = ItemAt({place.page, i}).control;
        const bool follows = SettingIsStyle(changed) || control == SettingControl::FontPreview ||
                             control == SettingControl::CommandPreview || control == SettingControl::Colour;
        if (follows || i == place.item) SettingsFieldShow(dialog, {place.page, i});
    }
    dialog.filling = false;
    if (changed.control == SettingControl::File || changed.control == SettingControl::Folder)
        SettingsLookForPath(dialog, place);
    SettingsNoteRenew(dialog, place);
    SettingsApplyEnable(dialog);
}

void SettingsDialogShow(HWND owner) {
    if (g_openDialog != nullptr) {
        SetForegroundWindow(g_openDialog);
        return;
    }
    SettingsDialog dialog{.form = FormOf(g_settings),
                          .pages = std::vector<PageWindow>(SettingsPages().size()),
                          .page = g_lastPage,
                          .listed = {},
                          .query = {},
                          .keyLines = {},
                          .font = {},
                          .bold = {},
                          .preview = {},
                          .look = {},
                          .test = {},
                          .fetch = {}};
    const HHOOK keys = SetWindowsHookExW(WH_MSGFILTER, PageKeysHook, nullptr, GetCurrentThreadId());
    if (DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_SETTINGS), owner, SettingsDlgProc,
                        reinterpret_cast<LPARAM>(&dialog)) == -1)
        AppLogMsg(L"FAIL: SettingsDialogShow error=%lu", GetLastError());
    if (keys != nullptr) UnhookWindowsHookEx(keys);
}
