// A page of the settings dialog: a window with the controls of its items, which scrolls when they need more room. UI
// thread only.
#include "settingsui/settings_dialog_internal.h"

#include "base/clock.h"
#include "base/texts.h"
#include "settings/secret_text.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/form_layout.h"
#include "ui/paint.h"
#include "ui/ui_state.h"
#include "ui/window_class.h"
#include "ui/window_text.h"

#include <algorithm>

namespace {

constexpr wchar_t kPageClass[] = L"KvxSettingsPage";
constexpr wchar_t kTakenLetters[] = L"SXIRA";  // by the controls of the frame

SettingsDialog* DialogOfPage(HWND window) {
    return reinterpret_cast<SettingsDialog*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

std::size_t NumberOfPage(HWND window) {
    return static_cast<std::size_t>(GetDlgCtrlID(window) - IDC_SETTINGS_PAGE_FIRST);
}

FormField FieldOf(SettingControl control) {
    switch (control) {
        case SettingControl::Check:
        case SettingControl::FixedFonts: return FormField::Check;
        case SettingControl::Number:
        case SettingControl::Colour: return FormField::Short;
        case SettingControl::Choice:
        case SettingControl::Font:
        case SettingControl::Language: return FormField::Middle;
        case SettingControl::LongText:
        case SettingControl::FontPreview:
        case SettingControl::CommandPreview: return FormField::Tall;
        case SettingControl::Keys: return FormField::Fill;
        default: return SettingIsButton(control) ? FormField::Button : FormField::Long;
    }
}

bool IsList(SettingControl control) {
    return control == SettingControl::Choice || control == SettingControl::Font ||
           control == SettingControl::Language || control == SettingControl::Model;
}

std::wstring NoteText(SettingsDialog& dialog, FormPlace place, NoteKind* kind) {
    const SettingItem& item = ItemAt(place);
    const ItemWindows& windows = WindowsAt(dialog, place);
    *kind = NoteKind::Bad;
    if (FormItemIsEdited(dialog.form, place)) {
        std::wstring problem = SettingItemProblem(item, TextAt(dialog, place));
        if (!problem.empty()) return problem;
    }
    if (item.control == SettingControl::Secret && IsSecretText(TextAt(dialog, place)))
        return Text(
            L"A key that cannot be read here: it was protected by another Windows account, or it is damaged. It is "
            L"kept until you enter another.");
    *kind = windows.seen.empty() ? NoteKind::Help : windows.seenKind;
    return windows.seen.empty() ? item.help : windows.seen;
}

FormPlan PlanOf(SettingsDialog& dialog, std::size_t page, SIZE room) {
    const PageWindow& target = dialog.pages[page];
    std::vector<FormRow> rows;
    NoteKind kind = NoteKind::Help;
    for (std::size_t i = 0; i < target.items.size(); ++i) {
        const SettingItem& item = ItemAt({page, i});
        rows.push_back({.field = FieldOf(item.control),
                        .heading = item.heading != nullptr,
                        .button = SettingsHasButton(item.control),
                        .shown = target.items[i].shown,
                        .hasNote = !NoteText(dialog, {page, i}, &kind).empty()});
    }
    const auto noteHeight = [&](std::size_t row, int width) {
        return static_cast<int>(SettingsTextSize(dialog, NoteText(dialog, {page, row}, &kind), width).cy);
    };
    const auto plan = [&](int width) {
        return FormLayout(rows, {width, room.cy, dialog.dpi, dialog.textHeight}, noteHeight);
    };
    FormPlan whole = plan(room.cx);
    return whole.height <= room.cy
               ? whole
               : plan(room.cx - GetSystemMetricsForDpi(SM_CXVSCROLL, static_cast<UINT>(dialog.dpi)));
}

// The height of a list counts as that of its drop-down, too.
bool StandsAt(HWND part, const FormRect& at, int scroll, bool isList) {
    RECT is = {};
    GetWindowRect(part, &is);
    MapWindowPoints(nullptr, GetParent(part), reinterpret_cast<POINT*>(&is), 2);
    return is.left == at.left && is.top == at.top - scroll && is.right == at.right &&
           (isList || is.bottom == at.bottom - scroll);
}

void PlacePart(HDWP& moves, HWND part, const FormRect& at, int scroll, bool isList = false) {
    if (part == nullptr || moves == nullptr) return;
    const bool shown = at.right > at.left;
    const bool isShown = (GetWindowLongPtrW(part, GWL_STYLE) & WS_VISIBLE) != 0;
    if (shown == isShown && (!shown || StandsAt(part, at, scroll, isList))) return;
    const UINT flags = SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS | (shown ? SWP_SHOWWINDOW : SWP_HIDEWINDOW);
    moves =
        DeferWindowPos(moves, part, nullptr, at.left, at.top - scroll, at.right - at.left, at.bottom - at.top, flags);
}

void ScrollPage(SettingsDialog& dialog, std::size_t page, int position) {
    SettingsPageComplete(dialog, page);
    PageWindow& target = dialog.pages[page];
    RECT client = {};
    GetClientRect(target.window, &client);
    position = std::max(0, std::min<int>(position, target.height - client.bottom));
    if (position == target.scroll) return;
    ScrollWindowEx(target.window, 0, target.scroll - position, nullptr, nullptr, nullptr, nullptr,
                   SW_SCROLLCHILDREN | SW_INVALIDATE | SW_ERASE);
    target.scroll = position;
    SetScrollPos(target.window, SB_VERT, position, TRUE);
    UpdateWindow(target.window);
}

void OnPageScroll(SettingsDialog& dialog, std::size_t page, int request) {
    PageWindow& target = dialog.pages[page];
    SCROLLINFO info = {.cbSize = sizeof(SCROLLINFO), .fMask = SIF_ALL};
    GetScrollInfo(target.window, SB_VERT, &info);
    const int line = dialog.Px(30);
    switch (request) {
        case SB_LINEUP: return ScrollPage(dialog, page, target.scroll - line);
        case SB_LINEDOWN: return ScrollPage(dialog, page, target.scroll + line);
        case SB_PAGEUP: return ScrollPage(dialog, page, target.scroll - static_cast<int>(info.nPage));
        case SB_PAGEDOWN: return ScrollPage(dialog, page, target.scroll + static_cast<int>(info.nPage));
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION: return ScrollPage(dialog, page, info.nTrackPos);
        default: return;
    }
}

void OnItemCommand(SettingsDialog& dialog, FormPlace place, int part, int notification) {
    const SettingItem& item = ItemAt(place);
    const bool isButton = part == kPartButton || SettingIsButton(item.control);
    const bool isCheck = item.control == SettingControl::Check || item.control == SettingControl::FixedFonts;
    const bool focused =
        isButton || isCheck ? notification == BN_SETFOCUS : notification == EN_SETFOCUS || notification == CBN_SETFOCUS;
    if (focused) return SettingsPageReveal(dialog, place);
    if (dialog.filling) return;
    if (IsList(item.control) && notification == CBN_DROPDOWN) SettingsPageComplete(dialog, place.page);
    if (isButton) {
        if (notification == BN_CLICKED) SettingsFieldPress(dialog, place);
        return;
    }
    const bool isList = IsList(item.control);
    const bool changed = isCheck  ? notification == BN_CLICKED
                         : isList ? notification == CBN_SELCHANGE || notification == CBN_EDITCHANGE
                                  : notification == EN_CHANGE;
    if (!changed || part != kPartField) return;
    if (item.row != nullptr)
        FormSetText(dialog.form, place, SettingsFieldText(dialog, place, notification == CBN_SELCHANGE));
    SettingsItemChanged(dialog, place);
}

// The rest of the page is made after its first painting: a timer that began when the page was made could be due before
// the dialog is shown.
LRESULT ErasePage(SettingsDialog& dialog, std::size_t page, HDC dc) {
    constexpr UINT kSoonMs = 120;  // what is in view stands on the screen by then
    const HWND window = dialog.pages[page].window;
    if (!dialog.pages[page].complete) SetTimer(window, 1, kSoonMs, nullptr);
    RECT client = {};
    GetClientRect(window, &client);
    const LRESULT brush =
        SendMessageW(dialog.window, WM_CTLCOLORDLG, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(window));
    FillRect(dc, &client, reinterpret_cast<HBRUSH>(brush));
    return 1;
}

void CompleteFurther(SettingsDialog& dialog, std::size_t page);

LRESULT CALLBACK SettingsPageProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    SettingsDialog* const dialog = DialogOfPage(window);
    if (dialog == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    const std::size_t page = NumberOfPage(window);
    const auto itemOf = [](int id) {
        return static_cast<std::size_t>((id - IDC_SETTINGS_ITEM_FIRST) / SETTINGS_PARTS);
    };
    switch (message) {
        case WM_COMMAND:
            if (LOWORD(wParam) >= IDC_SETTINGS_ITEM_FIRST)
                OnItemCommand(*dialog, {page, itemOf(LOWORD(wParam))},
                              (LOWORD(wParam) - IDC_SETTINGS_ITEM_FIRST) % SETTINGS_PARTS, HIWORD(wParam));
            return 0;
        case WM_DRAWITEM:
            SettingsFieldDraw(*dialog, {page, itemOf(static_cast<int>(wParam))},
                              *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
            return TRUE;
        case WM_TIMER:
            KillTimer(window, wParam);
            CompleteFurther(*dialog, page);
            return 0;
        case WM_VSCROLL: OnPageScroll(*dialog, page, LOWORD(wParam)); return 0;
        case WM_MOUSEWHEEL:
            ScrollPage(*dialog, page,
                       dialog->pages[page].scroll - GET_WHEEL_DELTA_WPARAM(wParam) * dialog->Px(60) / WHEEL_DELTA);
            return 0;
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLORBTN:
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX: return SendMessageW(dialog->window, message, wParam, lParam);
        case WM_ERASEBKGND: return ErasePage(*dialog, page, reinterpret_cast<HDC>(wParam));
        case WM_CLOSE:  // Esc in a field of several lines
            PostMessageW(dialog->window, WM_COMMAND, IDCANCEL, 0);
            return 0;
        default: return DefWindowProcW(window, message, wParam, lParam);
    }
}

void MakeItem(SettingsDialog& dialog, FormPlace place) {
    const bool before = dialog.filling;
    dialog.filling = true;
    SettingsFieldMake(dialog, place);
    SettingsFieldShow(dialog, place);
    if (ItemAt(place).control == SettingControl::Keys) SettingsKeysFill(dialog, place);
    dialog.filling = before;
    ItemWindows& windows = WindowsAt(dialog, place);
    const std::wstring note = NoteText(dialog, place, &windows.noteKind);
    if (note.empty()) return;
    SettingsNoteMake(dialog, place);
    SetWindowTextW(windows.parts[kPartNote], note.c_str());
}

// Up to the item, which gives the controls the order of the Tab key.
void MakeItemsTo(SettingsDialog& dialog, std::size_t page, std::size_t last) {
    PageWindow& target = dialog.pages[page];
    while (target.made <= last && target.made < target.items.size()) MakeItem(dialog, {page, target.made++});
}

// A piece of what is out of view; the dialog answers between the pieces.
void CompleteFurther(SettingsDialog& dialog, std::size_t page) {
    constexpr double kPieceMs = 20;
    PageWindow& target = dialog.pages[page];
    const double end = ClockMs() + kPieceMs;
    if (target.made == target.items.size()) return SettingsPageComplete(dialog, page);
    while (target.made < target.items.size() && ClockMs() < end) MakeItemsTo(dialog, page, target.made);
    SetTimer(target.window, 1, USER_TIMER_MINIMUM, nullptr);
}

void MakeItemsInView(SettingsDialog& dialog, std::size_t page, const FormPlan& plan, int height) {
    const int end = dialog.pages[page].scroll + height;
    for (std::size_t i = dialog.pages[page].made; i < plan.rows.size(); ++i)
        if (dialog.pages[page].items[i].shown && plan.rows[i].field.top < end) MakeItemsTo(dialog, page, i);
}

}  // namespace

COLORREF SettingsNoteColour(NoteKind kind) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    switch (kind) {
        case NoteKind::Good: return chrome.success;
        case NoteKind::Bad: return chrome.error;
        default: return chrome.quiet;
    }
}

SIZE SettingsTextSize(const SettingsDialog& dialog, const std::wstring& text, int width) {
    const HDC dc = GetDC(dialog.window);
    const HGDIOBJ old = SelectObject(dc, dialog.font.Get());
    RECT area = {0, 0, width, 0};
    DrawTextW(dc, text.c_str(), -1, &area,
              DT_CALCRECT | DT_NOPREFIX | static_cast<UINT>(width > 0 ? DT_WORDBREAK : DT_SINGLELINE));
    SelectObject(dc, old);
    ReleaseDC(dialog.window, dc);
    return {area.right, area.bottom};
}

bool SettingsPageMake(SettingsDialog& dialog, std::size_t page) {
    PageWindow& target = dialog.pages[page];
    if (target.window != nullptr) return true;
    WindowClassRegister({.name = kPageClass, .procedure = SettingsPageProc});
    target.window = CreateWindowExW(WS_EX_CONTROLPARENT, kPageClass, SettingsPages()[page].title,
                                    WS_CHILD | WS_CLIPCHILDREN | WS_VSCROLL, 0, 0, 0, 0, dialog.window,
                                    reinterpret_cast<HMENU>(IDC_SETTINGS_PAGE_FIRST + static_cast<INT_PTR>(page)),
                                    g_ui.hInstance, nullptr);
    if (target.window == nullptr) return false;
    const std::vector<SettingItem>& items = SettingsPages()[page].items;
    target.items.resize(items.size());
    std::vector<const wchar_t*> labels;
    for (const SettingItem& item : items) labels.push_back(item.label);
    target.labels = WithMnemonics(labels, kTakenLetters);
    SetWindowLongPtrW(target.window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&dialog));
    // After the list of pages in the order of the Tab key.
    SetWindowPos(target.window, GetDlgItem(dialog.window, IDC_SETTINGS_PAGES), 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    ScrollBarsApplyTheme(target.window);
    return true;
}

void SettingsPageComplete(SettingsDialog& dialog, std::size_t page) {
    PageWindow& target = dialog.pages[page];
    if (target.complete || target.window == nullptr) return;
    target.complete = true;
    MakeItemsTo(dialog, page, target.items.size());
    SettingsFontsFill(dialog, page);
    SettingsPagePlace(dialog, page);
}

void SettingsPagePlace(SettingsDialog& dialog, std::size_t page) {
    PageWindow& target = dialog.pages[page];
    if (target.window == nullptr) return;
    RECT frame = {};
    GetWindowRect(target.window, &frame);
    const SIZE room = {frame.right - frame.left, frame.bottom - frame.top};
    const FormPlan plan = PlanOf(dialog, page, room);
    target.height = plan.height;
    target.scroll = std::max(0, std::min<int>(target.scroll, plan.height - room.cy));
    MakeItemsInView(dialog, page, plan, static_cast<int>(room.cy));
    HDWP moves = BeginDeferWindowPos(static_cast<int>(target.items.size() * kPartCount));
    for (std::size_t i = 0; i < target.items.size(); ++i) {
        HWND const* const parts = target.items[i].parts;
        const FormPlaceOfRow& at = plan.rows[i];
        PlacePart(moves, parts[kPartHeading], at.heading, target.scroll);
        PlacePart(moves, parts[kPartLabel], at.label, target.scroll);
        // The list of a combo box drops below it; its height counts as the window's.
        FormRect field = at.field;
        if (IsList(ItemAt({page, i}).control) && field.right > field.left) field.bottom += dialog.Px(240);
        PlacePart(moves, parts[kPartField], field, target.scroll, field.bottom != at.field.bottom);
        PlacePart(moves, parts[kPartButton], at.button, target.scroll);
        PlacePart(moves, parts[kPartNote], at.note, target.scroll);
    }
    if (moves != nullptr) EndDeferWindowPos(moves);
    const SCROLLINFO info = {.cbSize = sizeof(SCROLLINFO),
                             .fMask = SIF_RANGE | SIF_PAGE | SIF_POS,
                             .nMin = 0,
                             .nMax = plan.height - 1,
                             .nPage = static_cast<UINT>(room.cy),
                             .nPos = target.scroll,
                             .nTrackPos = 0};
    SetScrollInfo(target.window, SB_VERT, &info, TRUE);
    InvalidateRect(target.window, nullptr, TRUE);
}

void SettingsPageReveal(SettingsDialog& dialog, FormPlace place) {
    SettingsPageComplete(dialog, place.page);
    const PageWindow& target = dialog.pages[place.page];
    RECT seen = {};
    bool first = true;
    for (HWND const part : target.items[place.item].parts) {
        if (part == nullptr || (GetWindowLongPtrW(part, GWL_STYLE) & WS_VISIBLE) == 0) continue;
        RECT area = {};
        GetWindowRect(part, &area);
        MapWindowPoints(nullptr, target.window, reinterpret_cast<POINT*>(&area), 2);
        if (first)
            seen = area;
        else
            UnionRect(&seen, &seen, &area);
        first = false;
    }
    if (first) return;
    RECT client = {};
    GetClientRect(target.window, &client);
    ScrollPage(dialog, place.page,
               FormScrollTo(target.scroll, target.scroll + seen.top - dialog.Px(6),
                            target.scroll + seen.bottom + dialog.Px(6), client.bottom, target.height));
}

void SettingsNoteRenew(SettingsDialog& dialog, FormPlace place) {
    if (place.item >= dialog.pages[place.page].made) return;
    ItemWindows& windows = WindowsAt(dialog, place);
    const std::wstring text = NoteText(dialog, place, &windows.noteKind);
    if (windows.parts[kPartNote] == nullptr) {
        if (text.empty()) return;
        SettingsNoteMake(dialog, place);
    }
    const HWND note = windows.parts[kPartNote];
    if (WindowText(note) != text) {
        SetWindowTextW(note, text.c_str());
        SettingsPagePlace(dialog, place.page);
    }
    InvalidateRect(note, nullptr, TRUE);
}
