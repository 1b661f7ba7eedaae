#include "ui/dialog_theme.h"

#include "base/handles.h"
#include "base/texts.h"
#include "files/libraries.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dialog_scale.h"
#include "ui/dialog_screen.h"
#include "ui/dpi.h"
#include "ui/list_view.h"
#include "ui/paint.h"
#include "ui/subclass.h"
#include "ui/window_kind.h"
#include "ui/window_text.h"

#include <commctrl.h>
#include <commdlg.h>
#include <dlgs.h>

namespace {

constexpr wchar_t kKindProperty[] = L"KvxDialogKind";  // of a dialog that has been themed
enum DialogKind : DWORD_PTR { kOwnDialog = 1, kMessageBox, kChooser };

BOOL CALLBACK ThemeChild(HWND child, LPARAM) {
    ControlApplyTheme(child);
    return TRUE;
}

// The dialog's own answer to WM_CTLCOLOR... may have chosen another colour of the text.
LRESULT ColoursOfControl(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto dc = reinterpret_cast<HDC>(wParam);
    const ThemeChrome& chrome = ThemeCurrentChrome();
    SubclassNext(dialog, message, wParam, lParam);
    const COLORREF chosen = GetTextColor(dc);
    const bool own = chosen != GetSysColor(COLOR_WINDOWTEXT) && chosen != GetSysColor(COLOR_BTNTEXT);
    const bool field = message == WM_CTLCOLOREDIT || message == WM_CTLCOLORLISTBOX;
    return ControlColours(dc, own ? chosen : chrome.paneText, field ? chrome.paneBack : chrome.windowBack);
}

LRESULT EraseDialog(HWND dialog, HDC dc) {
    RECT client = {};
    GetClientRect(dialog, &client);
    FillArea(dc, client, ThemeCurrentChrome().windowBack);
    return 1;
}

// A message box would paint a light band below its text. The background is erased by BeginPaint.
void PaintNothing(HWND dialog) {
    PAINTSTRUCT paint = {};
    BeginPaint(dialog, &paint);
    EndPaint(dialog, &paint);
}

// The sample of the chooser of fonts, which the system paints in colours of its own.
void PaintFontSample(HWND dialog) {
    const HWND sample = GetDlgItem(dialog, stc5);
    LOGFONTW shape = {};
    if (sample == nullptr) return;
    SendMessageW(dialog, WM_CHOOSEFONT_GETLOGFONT, 0, reinterpret_cast<LPARAM>(&shape));
    const UniqueFont font(CreateFontIndirectW(&shape));
    RECT area = {};
    GetWindowRect(sample, &area);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&area), 2);
    const HDC dc = GetDC(dialog);
    if (dc == nullptr) return;
    FillArea(dc, area, ThemeCurrentChrome().paneBack);
    FrameArea(dc, area, ThemeCurrentChrome().line);
    IntersectClipRect(dc, area.left, area.top, area.right, area.bottom);
    const HGDIOBJ before = SelectObject(dc, font.Get());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, ThemeCurrentChrome().paneText);
    DrawTextW(dc, L"AaBbYyZz", -1, &area, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    SelectObject(dc, before);
    ReleaseDC(dialog, dc);
}

LRESULT CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR kind) {
    if (message == WM_NCDESTROY) {
        RemovePropW(dialog, kKindProperty);
        DialogScaleEnd(dialog);
    }
    if (message == WM_DPICHANGED && DialogRescale(dialog, HIWORD(wParam), *reinterpret_cast<const RECT*>(lParam)))
        return 0;
    // A dialog may change its size and its place until it is shown.
    if (message == WM_SHOWWINDOW && wParam != FALSE && kind == kOwnDialog) {
        DialogFitTexts(dialog);
        DialogFitScreen(dialog);
    }
    if (!ThemeDrawsControls()) return SubclassNext(dialog, message, wParam, lParam);
    switch (message) {
        case WM_CTLCOLORDLG:
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLORBTN:
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX: return ColoursOfControl(dialog, message, wParam, lParam);
        case WM_ERASEBKGND: return EraseDialog(dialog, reinterpret_cast<HDC>(wParam));
        case WM_PAINT:
            if (kind == kOwnDialog) break;
            if (kind == kMessageBox) return PaintNothing(dialog), 0;
            SubclassNext(dialog, message, wParam, lParam);
            PaintFontSample(dialog);
            return 0;
        default: break;
    }
    return SubclassNext(dialog, message, wParam, lParam);
}

void ThemeDialog(HWND dialog, DialogKind kind) {
    SubclassAdd(dialog, DialogProc, kind);
    SetPropW(dialog, kKindProperty, reinterpret_cast<HANDLE>(static_cast<DWORD_PTR>(kind)));
    EnumChildWindows(dialog, ThemeChild, 0);
    FrameApplyTheme(dialog);
}

void TranslateWindow(HWND window) {
    const std::wstring english = WindowText(window);
    const wchar_t* const text = Text(english.c_str());
    if (text != english.c_str()) SetWindowTextW(window, text);
}

// Fields hold what the user has typed.
BOOL CALLBACK TranslateControl(HWND control, LPARAM) {
    if (IsOfClass(control, WC_STATICW) || IsOfClass(control, WC_BUTTONW)) TranslateWindow(control);
    return TRUE;
}

void TranslateDialog(HWND dialog) {
    if (!TextsAreTranslated()) return;
    TranslateWindow(dialog);
    EnumChildWindows(dialog, TranslateControl, 0);
}

BOOL CALLBACK RenewWindow(HWND window, LPARAM) {
    const auto kind = reinterpret_cast<DWORD_PTR>(GetPropW(window, kKindProperty));
    if (kind == 0) return TRUE;
    ThemeDialog(window, static_cast<DialogKind>(kind));
    ListViewsRenew(window);
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
    return TRUE;
}

// The rows of a chooser's lists, which the system would draw in its own colours.
void DrawChooserRow(const DRAWITEMSTRUCT& item) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    FillArea(item.hDC, item.rcItem, (item.itemState & ODS_SELECTED) != 0 ? chrome.selected : chrome.paneBack);
    const LRESULT length = SendMessageW(item.hwndItem, CB_GETLBTEXTLEN, item.itemID, 0);
    if (length <= 0) return;
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    SendMessageW(item.hwndItem, CB_GETLBTEXT, item.itemID, reinterpret_cast<LPARAM>(text.data()));
    RECT area = item.rcItem;
    area.left += UiScaled(3);
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, chrome.paneText);
    DrawTextW(item.hDC, text.c_str(), -1, &area, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
}

}  // namespace

void FrameApplyTheme(HWND window) {
    // DWMWA_USE_IMMERSIVE_DARK_MODE and others that the toolchain's headers do not have
    constexpr DWORD kDarkCaption = 20, kCaptionColour = 35, kCaptionText = 36;
    constexpr COLORREF kUsualColour = 0xFFFFFFFF;
    using SetAttribute = HRESULT(WINAPI*)(HWND, DWORD, const void*, DWORD);
    static bool everDrawn = false;  // until then the library need not be loaded
    everDrawn = everDrawn || ThemeDrawsControls();
    if (!everDrawn) return;
    static const auto setAttribute = [] {
        const HMODULE library = LoadSystemLibrary(L"dwmapi.dll");
        return library == nullptr ? nullptr
                                  : reinterpret_cast<SetAttribute>(
                                        reinterpret_cast<void*>(GetProcAddress(library, "DwmSetWindowAttribute")));
    }();
    if (setAttribute == nullptr) return;
    // An older system refuses, and the caption stays light, or has no colour of its own.
    const BOOL dark = ThemeDrawsDark() ? TRUE : FALSE;
    setAttribute(window, kDarkCaption, &dark, sizeof(dark));
    const bool coloured = ThemeDrawsControls() && !ThemeIsOwnStyle();
    const COLORREF back = coloured ? ThemeCurrentChrome().statusBack : kUsualColour;
    const COLORREF text = coloured ? ThemeCurrentChrome().statusText : kUsualColour;
    setAttribute(window, kCaptionColour, &back, sizeof(back));
    setAttribute(window, kCaptionText, &text, sizeof(text));
}

void DialogApplyTheme(HWND dialog) {
    TranslateDialog(dialog);
    DialogScaleBegin(dialog);
    DialogFitFields(dialog);
    ThemeDialog(dialog, kOwnDialog);
}

void DialogsRenewTheme() { EnumThreadWindows(GetCurrentThreadId(), RenewWindow, 0); }

void MessageBoxApplyTheme(HWND box) {
    if (!ThemeDrawsControls()) return;
    WindowDpiKeep(box, static_cast<int>(GetDpiForWindow(box)));
    ThemeDialog(box, kMessageBox);
}

UINT_PTR CALLBACK ChooserThemeHook(HWND dialog, UINT message, WPARAM, LPARAM lParam) {
    if (!ThemeDrawsControls()) return FALSE;
    if (message == WM_INITDIALOG) ThemeDialog(dialog, kChooser);
    if (message != WM_DRAWITEM) return FALSE;
    const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
    if (item.CtlType != ODT_COMBOBOX) return FALSE;
    DrawChooserRow(item);
    return TRUE;
}

INT_PTR DialogColourOfProblem(HDC dc, HWND control, int problem) {
    if (GetDlgCtrlID(control) != problem) return FALSE;
    SetTextColor(dc, ThemeCurrentChrome().error);
    SetBkMode(dc, TRANSPARENT);
    return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_BTNFACE));
}
