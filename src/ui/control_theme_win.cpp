#include "ui/control_theme.h"

#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/paint.h"
#include "ui/subclass.h"
#include "ui/text_inset.h"
#include "ui/window_text.h"

#include <commctrl.h>
#include <uxtheme.h>

#include <algorithm>
#include <iterator>
#include <string>

namespace {

constexpr int kBoxSize = 13;  // at 96 dpi, like the next one
constexpr int kBoxGap = 5;
// What the program draws of a control. The frame of kFramed belongs to its non-client area; kCombo has one of its own.
enum ControlKind : DWORD_PTR { kPushButton, kBox, kCombo, kFramed, kProgress, kGroup, kOther };

ControlKind KindOfButton(HWND button) {
    switch (GetWindowLongPtrW(button, GWL_STYLE) & BS_TYPEMASK) {
        case BS_PUSHBUTTON:
        case BS_DEFPUSHBUTTON: return kPushButton;
        case BS_CHECKBOX:
        case BS_AUTOCHECKBOX: return kBox;
        case BS_GROUPBOX: return kGroup;
        default: return kOther;
    }
}

ControlKind KindOfControl(HWND control) {
    wchar_t name[32] = {};
    GetClassNameW(control, name, static_cast<int>(std::size(name)));
    if (lstrcmpiW(name, WC_BUTTONW) == 0) return KindOfButton(control);
    if (lstrcmpiW(name, WC_COMBOBOXW) == 0)
        return (GetWindowLongPtrW(control, GWL_STYLE) & 3) == CBS_SIMPLE ? kOther
                                                                         : kCombo;  // a list that is always open
    if (lstrcmpiW(name, PROGRESS_CLASSW) == 0) return kProgress;
    const bool framed = (GetWindowLongPtrW(control, GWL_STYLE) & WS_BORDER) != 0 ||
                        (GetWindowLongPtrW(control, GWL_EXSTYLE) & WS_EX_CLIENTEDGE) != 0;
    const bool isField = lstrcmpiW(name, WC_EDITW) == 0 || lstrcmpiW(name, WC_LISTBOXW) == 0 ||
                         lstrcmpiW(name, L"ComboLBox") == 0;  // the list of a combo box
    return framed && isField ? kFramed : kOther;
}

bool IsLineField(HWND control, ControlKind kind) {
    wchar_t name[32] = {};
    GetClassNameW(control, name, static_cast<int>(std::size(name)));
    return kind == kFramed && lstrcmpiW(name, WC_EDITW) == 0 &&
           (GetWindowLongPtrW(control, GWL_STYLE) & ES_MULTILINE) == 0;
}

bool HasFocus(HWND control) {
    const HWND focus = GetFocus();
    return focus == control || (focus != nullptr && GetParent(focus) == control);
}

// ---------------------------------------------------------------------------------------------------------- drawing

// The edge of what can be typed into or pressed. It is seen, with a contrast of 3 at least, where a line between panes
// need not be.
COLORREF ControlEdge() { return MixColours(ThemeCurrentChrome().line, ThemeQuietText(), 60); }

// The text of a button, and the focus rectangle within `focusArea`.
void DrawButtonText(HWND button, HDC dc, RECT area, UINT format, const RECT& focusArea) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const auto font = reinterpret_cast<HFONT>(SendMessageW(button, WM_GETFONT, 0, 0));
    const LRESULT hidden = SendMessageW(button, WM_QUERYUISTATE, 0, 0);
    const HGDIOBJ oldFont = SelectObject(dc, font != nullptr ? font : UiFont());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, IsWindowEnabled(button) ? chrome.paneText : ThemeQuietText());
    DrawTextW(dc, WindowText(button).c_str(), -1, &area,
              DT_VCENTER | DT_SINGLELINE | format | ((hidden & UISF_HIDEACCEL) != 0 ? DT_HIDEPREFIX : 0U));
    if (HasFocus(button) && (hidden & UISF_HIDEFOCUS) == 0) DrawFocusRect(dc, &focusArea);
    SelectObject(dc, oldFont);
}

void PaintPushButton(HWND button) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const BufferedPaint paint(button);
    const bool isDefault = (GetWindowLongPtrW(button, GWL_STYLE) & BS_TYPEMASK) == BS_DEFPUSHBUTTON;
    const bool accent = IsWindowEnabled(button) && (isDefault || HasFocus(button));
    const bool down = (SendMessageW(button, BM_GETSTATE, 0, 0) & BST_PUSHED) != 0;
    const RECT& area = paint.Client();
    FillArea(paint.Dc(), area, down ? chrome.line : chrome.hover);
    FrameArea(paint.Dc(), area, accent ? chrome.accent : ControlEdge());
    RECT inner = area;
    InflateRect(&inner, -UiScaled(3), -UiScaled(3));
    DrawButtonText(button, paint.Dc(), area, DT_CENTER, inner);
}

void DrawTick(HDC dc, const RECT& box, COLORREF colour) {
    const int size = box.right - box.left;
    const auto at = [&](int x, int y) { return POINT{box.left + size * x / 13, box.top + size * y / 13}; };
    const POINT corners[] = {at(3, 6), at(5, 9), at(10, 3)};
    DrawPolyline(dc, corners, colour, UiScaled(2));
}

void PaintBox(HWND button) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const BufferedPaint paint(button);
    const LRESULT state = SendMessageW(button, BM_GETSTATE, 0, 0);
    const RECT& area = paint.Client();
    const int size = UiScaled(kBoxSize);
    const int top = (area.bottom - size) / 2;
    const RECT box = {0, top, size, top + size};
    FillArea(paint.Dc(), area, chrome.windowBack);
    FillArea(paint.Dc(), box, (state & BST_PUSHED) != 0 ? chrome.hover : chrome.paneBack);
    FrameArea(paint.Dc(), box, HasFocus(button) ? chrome.accent : ThemeQuietText());
    if ((state & BST_CHECKED) != 0)
        DrawTick(paint.Dc(), box, IsWindowEnabled(button) ? chrome.accent : ThemeQuietText());
    const RECT text = {size + UiScaled(kBoxGap), 0, area.right, area.bottom};
    const RECT focusArea = {text.left - UiScaled(2), 0, area.right, area.bottom};
    DrawButtonText(button, paint.Dc(), text, DT_LEFT, focusArea);
}

// The program draws combo boxes in the light theme, too: the system puts the text of a box that is as high as the fields
// beside it at its top.
struct ComboColours {
    COLORREF back, text, edge;
};

ComboColours ColoursOfCombo(HWND combo) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const bool enabled = IsWindowEnabled(combo) != FALSE;
    const COLORREF edge = HasFocus(combo) ? chrome.accent : ControlEdge();
    const COLORREF text = enabled ? chrome.paneText : ThemeQuietText();
    if (ThemeDrawsControls()) return {chrome.paneBack, text, edge};
    return {GetSysColor(enabled ? COLOR_WINDOW : COLOR_BTNFACE), text, edge};
}

// The chosen text of a combo box whose field is not a window of its own.
void DrawChosenText(HWND combo, HDC dc, RECT area, COLORREF colour) {
    const auto font = reinterpret_cast<HFONT>(SendMessageW(combo, WM_GETFONT, 0, 0));
    const HGDIOBJ oldFont = SelectObject(dc, font != nullptr ? font : UiFont());
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, colour);
    area.left += UiScaled(5);
    DrawTextW(dc, WindowText(combo).c_str(), -1, &area, DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    SelectObject(dc, oldFont);
}

// A field that is a window of its own is left alone because of WS_CLIPCHILDREN.
void PaintCombo(HWND combo) {
    const ComboColours colours = ColoursOfCombo(combo);
    COMBOBOXINFO info = {};
    info.cbSize = sizeof(info);
    GetComboBoxInfo(combo, &info);
    const BufferedPaint paint(combo);
    const RECT area = paint.Client();
    FillArea(paint.Dc(), area, colours.back);
    FrameArea(paint.Dc(), area, colours.edge);
    if (info.hwndItem == nullptr || info.hwndItem == combo)
        DrawChosenText(combo, paint.Dc(), {area.left, area.top, info.rcButton.left, area.bottom}, colours.text);
    DrawDropArrow(paint.Dc(), info.rcButton, info.rcButton.right - info.rcButton.left, colours.text);
}

// Draws the frame over that of the system, which has drawn the scroll bars too.
void DrawFrame(HWND control) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const bool sunken = (GetWindowLongPtrW(control, GWL_EXSTYLE) & WS_EX_CLIENTEDGE) != 0;
    const HDC dc = GetWindowDC(control);
    if (dc == nullptr) return;
    const DpiScope scope(control);
    RECT frame = {};
    GetWindowRect(control, &frame);
    OffsetRect(&frame, -frame.left, -frame.top);
    FrameArea(dc, frame, HasFocus(control) ? chrome.accent : ControlEdge());
    for (int edge = UiMetric(sunken ? SM_CXEDGE : SM_CXBORDER); edge > 1; --edge) {
        InflateRect(&frame, -1, -1);
        FrameArea(dc, frame, chrome.paneBack);
    }
    ReleaseDC(control, dc);
}

// ----------------------------------------------------------------------------------------------------- the subclass

void PaintControl(HWND control, ControlKind kind) {
    const DpiScope scope(control);
    switch (kind) {
        case kPushButton: PaintPushButton(control); break;
        case kBox: PaintBox(control); break;
        default: PaintCombo(control); break;
    }
}

// Whether the control may draw itself at this message, without a WM_PAINT.
bool DrawsAtOnce(UINT message, ControlKind kind) {
    switch (message) {
        case BM_SETSTATE:
        case BM_SETSTYLE:
        case BM_SETCHECK:
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
        case WM_ENABLE:
        case WM_SETTEXT:
        case WM_UPDATEUISTATE: return true;
        case WM_COMMAND:  // the focus of the field within
        case WM_LBUTTONDOWN:
        case WM_LBUTTONUP:
        case WM_MOUSEMOVE:
        case WM_CAPTURECHANGED:
        case WM_KEYDOWN:
        case WM_CHAR:
        case WM_MOUSEWHEEL:
        case CB_SETCURSEL:
        case CB_SHOWDROPDOWN: return kind == kCombo;
        default: return false;
    }
}

LRESULT PassAndRepaint(HWND control, UINT message, WPARAM wParam, LPARAM lParam, ControlKind kind) {
    const LRESULT result = SubclassNext(control, message, wParam, lParam);
    if (kind == kFramed)
        DrawFrame(control);
    else
        InvalidateRect(control, nullptr, FALSE);
    return result;
}

LRESULT CALLBACK ControlProc(HWND control, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR data) {
    const auto kind = static_cast<ControlKind>(data);
    const bool drawn = kind == kCombo ? !SystemHighContrast() : ThemeDrawsControls();
    if (!drawn) return SubclassNext(control, message, wParam, lParam);
    if (message == WM_NCPAINT && IsLineField(control, kind)) {
        DrawFrame(control);  // the system fills all of the field first, which flashes while it is resized
        return 0;
    }
    if (message == WM_NCPAINT && kind == kFramed) return PassAndRepaint(control, message, wParam, lParam, kind);
    if (DrawsAtOnce(message, kind)) return PassAndRepaint(control, message, wParam, lParam, kind);
    if (kind == kFramed) return SubclassNext(control, message, wParam, lParam);
    switch (message) {
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: PaintControl(control, kind); return 0;
        default: return SubclassNext(control, message, wParam, lParam);
    }
}

void ThemeCombo(HWND combo) {
    const LONG_PTR style = GetWindowLongPtrW(combo, GWL_STYLE);
    if ((style & WS_CLIPCHILDREN) == 0) SetWindowLongPtrW(combo, GWL_STYLE, style | WS_CLIPCHILDREN);
    COMBOBOXINFO info = {};
    info.cbSize = sizeof(info);
    if (!GetComboBoxInfo(combo, &info)) return;
    if (info.hwndList != nullptr) ControlApplyTheme(info.hwndList);
    if (info.hwndItem != nullptr && info.hwndItem != combo) TextInsetCentre(info.hwndItem);
}

// A bar or a group with a visual style would not take the colours. " " names a style that there is not; Wine ignores an
// empty name.
void LeaveVisualStyle(HWND control) {
    const wchar_t* const none = ThemeDrawsControls() ? L" " : nullptr;
    SetWindowTheme(control, none, none);
}

void ThemeProgress(HWND bar) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const bool drawn = ThemeDrawsControls();
    LeaveVisualStyle(bar);
    SendMessageW(bar, PBM_SETBKCOLOR, 0, static_cast<LPARAM>(drawn ? chrome.line : CLR_DEFAULT));
    SendMessageW(bar, PBM_SETBARCOLOR, 0, static_cast<LPARAM>(drawn ? chrome.accent : CLR_DEFAULT));
}

}  // namespace

void ControlApplyTheme(HWND control) {
    if (control == nullptr) return;
    const ControlKind kind = KindOfControl(control);
    if (kind == kProgress) return ThemeProgress(control);
    if (kind == kGroup) return LeaveVisualStyle(control);
    if (kind == kOther) return;
    SubclassAdd(control, ControlProc, kind);  // setting it again changes nothing
    if (kind == kCombo) ThemeCombo(control);
    if (IsLineField(control, kind)) TextInsetCentre(control);
    if (kind == kFramed) ScrollBarsApplyTheme(control);
    // All of a hidden control is painted when it is shown.
    if (IsWindowVisible(control)) RedrawWindow(control, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_ERASE);
}

void ScrollBarsApplyTheme(HWND window, const wchar_t* light) {
    static bool everDark = false;  // until then the system's are right, and asking for them costs time at the start
    everDark = everDark || ThemeDrawsDark();
    if (window != nullptr && everDark) SetWindowTheme(window, ThemeDrawsDark() ? L"DarkMode_Explorer" : light, nullptr);
}

// A tooltip with a visual style would not take the colours. The system gives it the font of the main monitor.
void TooltipApplyTheme(HWND tooltip) {
    if (tooltip == nullptr) return;
    SendMessageW(tooltip, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    const ThemeChrome& chrome = ThemeCurrentChrome();
    const bool drawn = ThemeDrawsControls();
    SetWindowTheme(tooltip, drawn ? L"" : nullptr, drawn ? L"" : nullptr);
    SendMessageW(tooltip, TTM_SETTIPBKCOLOR, drawn ? chrome.paneBack : GetSysColor(COLOR_INFOBK), 0);
    SendMessageW(tooltip, TTM_SETTIPTEXTCOLOR, drawn ? chrome.paneText : GetSysColor(COLOR_INFOTEXT), 0);
}
