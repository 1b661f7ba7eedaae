// The frame of the settings dialog: the search, the list of pages, the buttons, and what OK and Apply do. UI thread only.
#include "app/settings_dialog.h"

#include "app/settings_dialog_internal.h"
#include "base/bounded_text.h"
#include "base/log.h"
#include "settings/settings_state.h"
#include "settings/settings_store.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dialog_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/message.h"
#include "ui/paint.h"
#include "ui/redraw.h"
#include "ui/window_text.h"

#include <commdlg.h>

#include <algorithm>
#include <iterator>
#include <memory>

namespace {

// Lengths at 96 dpi.
constexpr int kWidth = 800, kHeight = 600;
constexpr int kLeastWidth = 620, kLeastHeight = 400;
constexpr int kGap = 10;
constexpr int kListWidth = 160;
constexpr int kButtonWidth = 84, kButtonHeight = 26;
constexpr int kSearchHeight = 23;
constexpr DWORD kEndMs = 500;  // that a worker gets at the end

HWND g_openDialog = nullptr;
std::size_t g_lastPage = 0;  // where the user was the last time

SettingsDialog& DialogOf(HWND window) {
    return *reinterpret_cast<SettingsDialog*>(GetWindowLongPtrW(window, DWLP_USER));
}

// ----------------------------------------------------------------------------------------------------------- layout

void Place(HWND dialog, int id, int left, int top, int width, int height) {
    SetWindowPos(GetDlgItem(dialog, id), nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

void PlacePage(SettingsDialog& dialog) {
    RECT client = {};
    GetClientRect(dialog.window, &client);
    const int gap = UiScaled(kGap);
    const int left = gap + UiScaled(kListWidth) + gap;
    const int bottom = client.bottom - 2 * gap - UiScaled(kButtonHeight);
    const HWND page = dialog.pages[dialog.page].window;
    const bool none = dialog.listed.empty();
    Place(dialog.window, IDC_SETTINGS_NOTHING, left + gap, gap, client.right - left - 2 * gap, UiSizes().textHeight);
    ShowWindow(GetDlgItem(dialog.window, IDC_SETTINGS_NOTHING), none ? SW_SHOW : SW_HIDE);
    SetWindowPos(page, nullptr, left, gap / 2, client.right - left, bottom - gap / 2, SWP_NOZORDER | SWP_NOACTIVATE);
    SettingsPagePlace(dialog, dialog.page);
    ShowWindow(page, none ? SW_HIDE : SW_SHOW);
}

void PlaceFrame(SettingsDialog& dialog) {
    RECT client = {};
    GetClientRect(dialog.window, &client);
    const int gap = UiScaled(kGap), width = UiScaled(kButtonWidth), height = UiScaled(kButtonHeight);
    const int label = UiTextWidth(L"Search:", 7) + UiScaled(6), search = UiScaled(kSearchHeight);
    const int list = UiScaled(kListWidth), bottom = client.bottom - gap - height;
    Place(dialog.window, IDC_SETTINGS_SEARCH_LABEL, gap, gap + (search - UiSizes().textHeight) / 2, label,
          UiSizes().textHeight);
    Place(dialog.window, IDC_SETTINGS_SEARCH, gap + label, gap, list - label, search);
    Place(dialog.window, IDC_SETTINGS_PAGES, gap, gap + search + gap, list, bottom - 3 * gap - search);
    int left = gap;
    for (const int id : {IDC_SETTINGS_EXPORT, IDC_SETTINGS_IMPORT, IDC_SETTINGS_RESET}) {
        Place(dialog.window, id, left, bottom, width, height);
        left += width + UiScaled(6);
    }
    left = client.right - gap - width;
    for (const int id : {IDC_SETTINGS_APPLY, IDCANCEL, IDOK}) {
        Place(dialog.window, id, left, bottom, width, height);
        left -= width + UiScaled(6);
    }
    PlacePage(dialog);
    InvalidateRect(dialog.window, nullptr, TRUE);
}

// In the middle of its owner, on the owner's monitor, no larger than that.
RECT WorkAreaOf(HWND window) {
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}

void PlaceDialog(HWND window) {
    const HWND owner = GetWindow(window, GW_OWNER);
    RECT frame = {};
    GetWindowRect(owner, &frame);
    const RECT work = WorkAreaOf(owner);
    const int width = std::min<int>(UiScaled(kWidth), work.right - work.left);
    const int height = std::min<int>(UiScaled(kHeight), work.bottom - work.top);
    const int left = std::clamp<int>((frame.left + frame.right - width) / 2, work.left, work.right - width);
    const int top = std::clamp<int>((frame.top + frame.bottom - height) / 2, work.top, work.bottom - height);
    SetWindowPos(window, nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

// At a large scaling the least size may be more than the screen has.
void LimitSize(HWND window, MINMAXINFO& info) {
    const RECT work = WorkAreaOf(GetWindow(window, GW_OWNER));
    info.ptMinTrackSize = {std::min<LONG>(UiScaled(kLeastWidth), work.right - work.left),
                           std::min<LONG>(UiScaled(kLeastHeight), work.bottom - work.top)};
}

// ------------------------------------------------------------------------------------------------------------ pages

HWND PageList(const SettingsDialog& dialog) { return GetDlgItem(dialog.window, IDC_SETTINGS_PAGES); }

void MarkMatches(SettingsDialog& dialog) {
    const SettingsPage& page = SettingsPages()[dialog.page];
    PageWindow& target = dialog.pages[dialog.page];
    for (std::size_t i = 0; i < target.items.size(); ++i)
        target.items[i].shown = SettingItemMatches(page, page.items[i], dialog.query);
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
    if (isNew) LookForPaths(dialog, page);
    MarkMatches(dialog);
    PlacePage(dialog);
}

// Fills the list with the pages that match the search, and shows the one from before if it is among them.
void ListPages(SettingsDialog& dialog) {
    const std::vector<SettingsPage>& pages = SettingsPages();
    const HWND list = PageList(dialog);
    dialog.listed.clear();
    SendMessageW(list, LB_RESETCONTENT, 0, 0);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        if (!SettingsPageMatches(pages[i], dialog.query)) continue;
        const std::wstring name = std::wstring(pages[i].compiler != kNoCompiler ? L"      " : L"") + pages[i].title;
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
        dialog.listed.push_back(i);
    }
    if (dialog.listed.empty()) return PlacePage(dialog);
    auto chosen = std::ranges::find(dialog.listed, dialog.page);
    if (chosen == dialog.listed.end()) chosen = dialog.listed.begin();
    SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(chosen - dialog.listed.begin()), 0);
    ShowPage(dialog, *chosen);
}

void ShowListed(SettingsDialog& dialog) {
    const LRESULT at = SendMessageW(PageList(dialog), LB_GETCURSEL, 0, 0);
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

// Sees the keys of the dialog before IsDialogMessage, which takes Ctrl+Tab for Tab.
LRESULT CALLBACK PageKeysHook(int code, WPARAM wParam, LPARAM lParam) {
    const MSG& message = *reinterpret_cast<const MSG*>(lParam);
    const bool own = code == MSGF_DIALOGBOX && message.message == WM_KEYDOWN && g_openDialog != nullptr &&
                     GetAncestor(message.hwnd, GA_ROOT) == g_openDialog;
    if (!own || message.wParam != VK_TAB || GetKeyState(VK_CONTROL) >= 0)
        return CallNextHookEx(nullptr, code, wParam, lParam);
    StepPage(DialogOf(g_openDialog), GetKeyState(VK_SHIFT) < 0);
    return 1;
}

void GoToItem(SettingsDialog& dialog, FormPlace place) {
    SetDlgItemTextW(dialog.window, IDC_SETTINGS_SEARCH, L"");  // lists all pages
    dialog.page = place.page;
    ListPages(dialog);
    const HWND field = WindowsAt(dialog, place).parts[kPartField];
    SettingsPageReveal(dialog, place);
    SendMessageW(dialog.window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(field), TRUE);
}

void ShowAllTexts(SettingsDialog& dialog) {
    dialog.filling = true;
    for (std::size_t page = 0; page < dialog.pages.size(); ++page)
        for (std::size_t i = 0; i < dialog.pages[page].items.size(); ++i) SettingsFieldShow(dialog, {page, i});
    dialog.filling = false;
    for (std::size_t page = 0; page < dialog.pages.size(); ++page) {
        for (std::size_t i = 0; i < dialog.pages[page].items.size(); ++i) SettingsNoteRenew(dialog, {page, i});
        LookForPaths(dialog, page);
    }
}

void EnableApply(const SettingsDialog& dialog) {
    const HWND apply = GetDlgItem(dialog.window, IDC_SETTINGS_APPLY);
    const bool edited = FormIsEdited(dialog.form);
    // A window that is disabled keeps the keyboard, and takes no key.
    if (!edited && GetFocus() == apply)
        SendMessageW(dialog.window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog.window, IDOK)), TRUE);
    EnableWindow(apply, edited ? TRUE : FALSE);
}

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
    if (SettingsSave(nullptr) == 0)
        ErrorMessage(
            L"The settings are in force, but the settings file could not be written. They last until the editor "
            L"closes.");
    dialog.form = FormOf(g_settings);
    ShowAllTexts(dialog);
    EnableApply(dialog);
    return true;
}

bool AskIniPath(const SettingsDialog& dialog, bool save, wchar_t (&path)[kPathCapacity]) {
    OPENFILENAMEW request = {};
    request.lStructSize = sizeof(request);
    request.hwndOwner = dialog.window;
    request.lpstrFilter = L"INI Files (*.ini)\0*.ini\0";
    request.lpstrFile = path;
    request.nMaxFile = static_cast<DWORD>(std::size(path));
    request.lpstrDefExt = L"ini";
    request.Flags = OFN_HIDEREADONLY | OFN_PATHMUSTEXIST | OFN_NOCHANGEDIR |
                    (save ? OFN_OVERWRITEPROMPT : static_cast<DWORD>(OFN_FILEMUSTEXIST));
    return (save ? GetSaveFileNameW(&request) : GetOpenFileNameW(&request)) != FALSE;
}

void ExportSettings(const SettingsDialog& dialog) {
    wchar_t path[kPathCapacity] = {};
    if (!AskIniPath(dialog, true, path)) return;
    SettingsSave(nullptr);  // the file that is copied may lack what has changed without a save
    if (!SettingsExport(path)) return TellUser(L"Export", L"Export failed.", AskIcon::Error);
    std::wstring text = L"Settings exported successfully.";
    if (g_settings.openAIKey[0] != L'\0' || g_settings.lmStudioKey[0] != L'\0')
        text += L"\n\nThe file holds the AI keys, protected: only this Windows account can read them.";
    if (FormIsEdited(dialog.form)) text += L"\n\nWhat was changed here and not applied yet is not in it.";
    TellUser(L"Export", text.c_str(), AskIcon::Information);
}

void ImportSettings(SettingsDialog& dialog) {
    constexpr std::size_t kMostNamed = 12;
    wchar_t path[kPathCapacity] = {};
    if (!AskIniPath(dialog, false, path)) return;
    std::vector<std::wstring> strange;
    if (!SettingsImport(path, &strange)) return TellUser(L"Import", L"Import failed.", AskIcon::Error);
    FormRenew(dialog.form, g_settings);
    ShowAllTexts(dialog);
    EnableApply(dialog);
    std::wstring text = L"Settings imported successfully. Restart dialog to see changes.";
    if (!strange.empty()) text += L"\n\nNot understood, so your own settings stay:";
    for (std::size_t i = 0; i < std::min(strange.size(), kMostNamed); ++i) text += L"\n" + strange[i].substr(0, 80);
    if (strange.size() > kMostNamed) text += L"\nand " + std::to_wstring(strange.size() - kMostNamed) + L" more";
    TellUser(L"Import", text.c_str(), strange.empty() ? AskIcon::Information : AskIcon::Warning);
}

void ResetSettings(const SettingsDialog& dialog) {
    if (AskUser({.caption = L"Reset All Settings",
                 .text = L"Reset ALL settings to factory defaults?\n\nThis will clear all compiler paths, AI keys, and "
                         L"preferences.",
                 .buttons = AskButtons::YesNo,
                 .icon = AskIcon::Warning,
                 .inSelftest = Answer::No,
                 .enterIsNo = true}) != Answer::Yes)
        return;
    SettingsResetAll();
    EndDialog(dialog.window, IDOK);
    TellUser(L"Reset Complete", L"Settings reset. Please restart the editor.", AskIcon::Information);
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
            ListPages(dialog);
            break;
        case IDC_SETTINGS_PAGES:
            if (notification == LBN_SELCHANGE) ShowListed(dialog);
            break;
        case IDC_SETTINGS_APPLY: ApplySettings(dialog); break;
        case IDC_SETTINGS_EXPORT: ExportSettings(dialog); break;
        case IDC_SETTINGS_IMPORT: ImportSettings(dialog); break;
        case IDC_SETTINGS_RESET: ResetSettings(dialog); break;
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
    LOGFONTW font = {};
    GetObjectW(UiFont(), sizeof(font), &font);
    font.lfWeight = FW_BOLD;
    dialog.bold.Reset(CreateFontIndirectW(&font));
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    SendMessageW(PageList(dialog), LB_SETITEMHEIGHT, 0, UiSizes().textHeight + UiScaled(5));
    // Without one a dialog whose size can change shows an icon of the system.
    const HANDLE icon = LoadImageW(g_ui.hInstance, MAKEINTRESOURCEW(IDI_APP), IMAGE_ICON, GetSystemMetrics(SM_CXSMICON),
                                   GetSystemMetrics(SM_CYSMICON), LR_SHARED);
    SendMessageW(window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icon));
    DialogApplyTheme(window);
    PlaceDialog(window);
    ListPages(dialog);
    PlaceFrame(dialog);
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
        OpenSettings(window, *reinterpret_cast<SettingsDialog*>(lParam));
        return FALSE;  // the focus is set already
    }
    if (GetWindowLongPtrW(window, DWLP_USER) == 0) return FALSE;
    SettingsDialog& dialog = DialogOf(window);
    switch (message) {
        case WM_COMMAND: OnSettingsCommand(dialog, LOWORD(wParam), HIWORD(wParam)); return TRUE;
        case WM_SIZE: PlaceFrame(dialog); return TRUE;
        case WM_GETMINMAXINFO: LimitSize(window, *reinterpret_cast<MINMAXINFO*>(lParam)); return TRUE;
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
        const bool follows = control == SettingControl::FontPreview || control == SettingControl::CommandPreview ||
                             control == SettingControl::Colour ||
                             (control == SettingControl::Font && changed.control == SettingControl::FixedFonts);
        if (follows || i == place.item) SettingsFieldShow(dialog, {place.page, i});
    }
    dialog.filling = false;
    if (changed.control == SettingControl::File || changed.control == SettingControl::Folder)
        SettingsLookForPath(dialog, place);
    SettingsNoteRenew(dialog, place);
    EnableApply(dialog);
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
