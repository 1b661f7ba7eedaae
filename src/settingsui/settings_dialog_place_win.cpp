// The places of everything in the settings dialog, and its scale, which is that of the monitor on which the dialog is.
// UI thread only.
#include "settingsui/settings_dialog_internal.h"

#include "base/texts.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/monitor.h"
#include "ui/small_icon.h"

#include <algorithm>

namespace {

// Lengths at 96 dpi.
constexpr int kWidth = 800, kHeight = 600;
constexpr int kLeastWidth = 620, kLeastHeight = 400;
constexpr int kGap = 10;
constexpr int kListWidth = 160;
constexpr int kButtonWidth = 84, kButtonHeight = 26;
constexpr int kButtonGap = 6;
constexpr int kSearchHeight = 23;

void PlaceItem(const SettingsDialog& dialog, int id, int left, int top, int width, int height) {
    SetWindowPos(GetDlgItem(dialog.window, id), nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

void GiveFont(HWND parent, HFONT font) {
    for (HWND child = GetWindow(parent, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
}

}  // namespace

void SettingsScaleSet(SettingsDialog& dialog, int dpi) {
    const UniqueFont oldFont = std::move(dialog.font),
                     oldBold = std::move(dialog.bold);  // in use until the new ones are
    dialog.dpi = dpi;
    WindowDpiKeep(dialog.window, dpi);
    SmallIconShow(dialog.window);  // without one a dialog whose size can change shows an icon of the system
    dialog.font.Reset(UiMakeTextFont(dpi));
    LOGFONTW description = {};
    GetObjectW(dialog.font.Get(), sizeof(description), &description);
    description.lfWeight = FW_BOLD;
    dialog.bold.Reset(CreateFontIndirectW(&description));
    dialog.textHeight = UiTextHeightOf(dialog.font.Get());
    GiveFont(dialog.window, dialog.font.Get());
    SendDlgItemMessageW(dialog.window, IDC_SETTINGS_PAGES, LB_SETITEMHEIGHT, 0, dialog.textHeight + dialog.Px(5));
    for (std::size_t page = 0; page < dialog.pages.size(); ++page) {
        if (dialog.pages[page].window == nullptr) continue;
        GiveFont(dialog.pages[page].window, dialog.font.Get());
        for (const ItemWindows& item : dialog.pages[page].items)
            SendMessageW(item.parts[kPartHeading], WM_SETFONT, reinterpret_cast<WPARAM>(dialog.bold.Get()), FALSE);
        for (std::size_t i = 0; i < dialog.pages[page].items.size(); ++i) SettingsFieldScale(dialog, {page, i});
    }
}

void SettingsShownPagePlace(SettingsDialog& dialog) {
    RECT client = {};
    GetClientRect(dialog.window, &client);
    const int gap = dialog.Px(kGap);
    const int left = gap + dialog.Px(kListWidth) + gap;
    const int bottom = client.bottom - 2 * gap - dialog.Px(kButtonHeight);
    const HWND page = dialog.pages[dialog.page].window;
    const bool none = dialog.listed.empty();
    PlaceItem(dialog, IDC_SETTINGS_NOTHING, left + gap, gap, client.right - left - 2 * gap, dialog.textHeight);
    ShowWindow(GetDlgItem(dialog.window, IDC_SETTINGS_NOTHING), none ? SW_SHOW : SW_HIDE);
    if (page == nullptr) return;
    SetWindowPos(page, nullptr, left, gap / 2, client.right - left, bottom - gap / 2, SWP_NOZORDER | SWP_NOACTIVATE);
    SettingsPagePlace(dialog, dialog.page);
    ShowWindow(page, none ? SW_HIDE : SW_SHOW);
}

void SettingsFramePlace(SettingsDialog& dialog) {
    RECT client = {};
    GetClientRect(dialog.window, &client);
    const int gap = dialog.Px(kGap), width = dialog.Px(kButtonWidth), height = dialog.Px(kButtonHeight);
    const int label = SettingsTextSize(dialog, Text(L"Search:"), 0).cx + dialog.Px(kButtonGap);
    const int search = dialog.Px(kSearchHeight), list = dialog.Px(kListWidth);
    const int bottom = client.bottom - gap - height;
    PlaceItem(dialog, IDC_SETTINGS_SEARCH_LABEL, gap, gap + (search - dialog.textHeight) / 2, label, dialog.textHeight);
    PlaceItem(dialog, IDC_SETTINGS_SEARCH, gap + label, gap, list - label, search);
    PlaceItem(dialog, IDC_SETTINGS_PAGES, gap, gap + search + gap, list, bottom - 3 * gap - search);
    int left = gap;
    for (const int id : {IDC_SETTINGS_EXPORT, IDC_SETTINGS_IMPORT, IDC_SETTINGS_RESET}) {
        PlaceItem(dialog, id, left, bottom, width, height);
        left += width + dialog.Px(kButtonGap);
    }
    left = client.right - gap - width;
    for (const int id : {IDC_SETTINGS_APPLY, IDCANCEL, IDOK}) {
        PlaceItem(dialog, id, left, bottom, width, height);
        left -= width + dialog.Px(kButtonGap);
    }
    SettingsShownPagePlace(dialog);
    InvalidateRect(dialog.window, nullptr, TRUE);
}

void SettingsDialogPlace(const SettingsDialog& dialog) {
    const HWND owner = GetWindow(dialog.window, GW_OWNER);
    RECT frame = {};
    GetWindowRect(owner, &frame);
    const RECT work = WorkAreaOf(owner);
    const int width = std::min<int>(dialog.Px(kWidth), work.right - work.left);
    const int height = std::min<int>(dialog.Px(kHeight), work.bottom - work.top);
    const int left = std::clamp<int>((frame.left + frame.right - width) / 2, work.left, work.right - width);
    const int top = std::clamp<int>((frame.top + frame.bottom - height) / 2, work.top, work.bottom - height);
    SetWindowPos(dialog.window, nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

void SettingsDialogLimit(const SettingsDialog& dialog, MINMAXINFO& info) {
    const RECT work = WorkAreaOf(dialog.window);
    info.ptMinTrackSize = {std::min<LONG>(dialog.Px(kLeastWidth), work.right - work.left),
                           std::min<LONG>(dialog.Px(kLeastHeight), work.bottom - work.top)};
}

void SettingsDialogRescale(SettingsDialog& dialog, int dpi, const RECT& suggested) {
    SettingsScaleSet(dialog, dpi);
    SetWindowPos(dialog.window, nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
                 suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
    SettingsFramePlace(dialog);  // the size may be the same as before
    RedrawWindow(dialog.window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}
