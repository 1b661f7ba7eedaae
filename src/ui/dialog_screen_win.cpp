#include "ui/dialog_screen.h"

#include "ui/dialog_fit.h"
#include "ui/dialog_scale.h"
#include "ui/monitor.h"
#include "ui/window_kind.h"
#include "ui/window_text.h"

#include <commctrl.h>

#include <algorithm>
#include <vector>

namespace {

constexpr int kFieldUnits = 14;  // the height of a field and of a button, in dialog units
constexpr int kLeastUnits = 40;  // of a list that gives its height

std::vector<HWND> ControlsOf(HWND dialog) {
    std::vector<HWND> controls;
    for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        controls.push_back(child);
    return controls;
}

RECT PlaceIn(HWND dialog, HWND control) {
    RECT place = {};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

int UnitsOf(HWND dialog, int units) { return static_cast<int>(DialogPixels(dialog, 0, units).cy); }

// The edge of the box is not part of its item's height.
void SetComboHeight(HWND combo, int height) {
    RECT place = {};
    GetWindowRect(combo, &place);
    const auto item = static_cast<int>(SendMessageW(combo, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0));
    const int edge = static_cast<int>(place.bottom - place.top) - item;
    if (height > edge) SendMessageW(combo, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), height - edge);
}

bool IsRigid(HWND control) {
    return IsOfClass(control, WC_BUTTONW) || IsOfClass(control, WC_STATICW) || IsOfClass(control, WC_COMBOBOXW) ||
           (IsOfClass(control, WC_EDITW) && (GetWindowLongPtrW(control, GWL_STYLE) & ES_MULTILINE) == 0);
}

void PlaceParts(HWND dialog, const std::vector<HWND>& controls, const std::vector<RECT>& places) {
    for (std::size_t i = 0; i < controls.size(); ++i) {
        const RECT now = PlaceIn(dialog, controls[i]);
        const RECT& place = places[i];
        if (EqualRect(&now, &place)) continue;
        // The height of a combo box is that of its open list, which it keeps.
        const bool keepsSize =
            now.right - now.left == place.right - place.left && now.bottom - now.top == place.bottom - place.top;
        SetWindowPos(controls[i], nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                     SWP_NOZORDER | SWP_NOACTIVATE | (keepsSize ? SWP_NOSIZE : 0U));
    }
}

// ------------------------------------------------------------------------------------------------- room for the texts

// In dialog units.
constexpr int kButtonBlank = 3;  // on either side of a button's text
constexpr int kBoxUnits = 12;    // the box of a check box, and the blank beside it
constexpr int kLeastGap = 4;     // between two controls of a row

enum class TextKind { None, Line, Paragraph, Check, Push };

int AcrossUnits(HWND dialog, int units) { return static_cast<int>(DialogPixels(dialog, units, 0).cx); }

// The size of a control's text, in lines of at most `width`; 0: in one line.
SIZE TextSizeOf(HWND control, int width) {
    const HDC dc = GetDC(control);
    const HGDIOBJ old = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    const bool label = IsOfClass(control, WC_STATICW);
    const bool prefix = !label || (GetWindowLongPtrW(control, GWL_STYLE) & SS_NOPREFIX) == 0;
    RECT area = {0, 0, width, 0};
    DrawTextW(dc, WindowText(control).c_str(), -1, &area,
              DT_CALCRECT | (prefix ? 0U : DT_NOPREFIX) |
                  (width > 0 ? DT_WORDBREAK
                   : label   ? 0U
                             : DT_SINGLELINE));
    SelectObject(dc, old);
    ReleaseDC(control, dc);
    return {area.right, area.bottom};
}

TextKind KindOfLabel(HWND label, const RECT& place, int dialogWidth) {
    const LONG_PTR style = GetWindowLongPtrW(label, GWL_STYLE);
    if ((style & SS_ELLIPSISMASK) != 0 || (style & SS_TYPEMASK) > SS_RIGHT) return TextKind::None;
    const bool wide = place.right - place.left > dialogWidth / 2;
    return wide || place.bottom - place.top >= 2 * TextSizeOf(label, 0).cy ? TextKind::Paragraph : TextKind::Line;
}

TextKind KindOfText(HWND control, const RECT& place, int dialogWidth) {
    if (GetWindowTextLengthW(control) == 0) return TextKind::None;
    if (IsOfClass(control, WC_STATICW)) return KindOfLabel(control, place, dialogWidth);
    if (!IsOfClass(control, WC_BUTTONW)) return TextKind::None;
    switch (GetWindowLongPtrW(control, GWL_STYLE) & BS_TYPEMASK) {
        case BS_PUSHBUTTON:
        case BS_DEFPUSHBUTTON: return TextKind::Push;
        case BS_CHECKBOX:
        case BS_AUTOCHECKBOX: return TextKind::Check;
        default: return TextKind::None;
    }
}

int WidthWanted(HWND dialog, HWND control, TextKind kind) {
    if (kind == TextKind::None || kind == TextKind::Paragraph) return 0;
    const int units = kind == TextKind::Push ? 2 * kButtonBlank : kind == TextKind::Check ? kBoxUnits : 0;
    return static_cast<int>(TextSizeOf(control, 0).cx) + AcrossUnits(dialog, units);
}

// The parts along the other axis beside which the part at `at` stands.
std::vector<GrowPart> Beside(const std::vector<GrowPart>& parts, const std::vector<GrowPart>& other, std::size_t at) {
    std::vector<GrowPart> beside;
    for (std::size_t i = 0; i < parts.size(); ++i)
        if (i != at && other[i].start < other[at].end && other[i].end > other[at].start) beside.push_back(parts[i]);
    return beside;
}

void GrowWindow(HWND dialog, SIZE by) {
    RECT place = {};
    GetWindowRect(dialog, &place);
    const bool centred = (GetWindowLongPtrW(dialog, GWL_STYLE) & DS_CENTER) != 0;
    SetWindowPos(dialog, nullptr, place.left - (centred ? by.cx / 2 : 0), place.top - (centred ? by.cy / 2 : 0),
                 place.right - place.left + by.cx, place.bottom - place.top + by.cy, SWP_NOZORDER | SWP_NOACTIVATE);
}

// Takes `less` from the dialog's size. What cannot be taken from its height stays below the screen.
void ShrinkDialog(HWND dialog, SIZE less) {
    const std::vector<HWND> controls = ControlsOf(dialog);
    std::vector<RECT> places;
    std::vector<FitPart> across, down;
    for (const HWND control : controls) {
        const RECT place = PlaceIn(dialog, control);
        places.push_back(place);
        const bool combo = IsOfClass(control, WC_COMBOBOXW) || IsOfClass(control, WC_EDITW);
        across.push_back({place.left, place.right, IsRigid(control) && !combo, place.top, place.bottom});
        down.push_back({place.top, place.bottom, IsRigid(control), place.left, place.right});
    }
    RECT client = {}, whole = {};
    GetClientRect(dialog, &client);
    GetWindowRect(dialog, &whole);
    const int taken = less.cy > 0 ? FitDialogHeight(down, less.cy, UnitsOf(dialog, kLeastUnits)) : 0;
    if (less.cx > 0) FitDialogWidth(across, client.right, less.cx);
    for (std::size_t i = 0; i < places.size(); ++i)
        places[i] = {across[i].start, down[i].start, across[i].end, down[i].end};
    PlaceParts(dialog, controls, places);
    SetWindowPos(dialog, nullptr, 0, 0, whole.right - whole.left - std::max(less.cx, 0L),
                 whole.bottom - whole.top - taken, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace

void DialogFitFields(HWND dialog) {
    const int height = UnitsOf(dialog, kFieldUnits);
    for (const HWND control : ControlsOf(dialog))
        if (IsOfClass(control, WC_COMBOBOXW)) SetComboHeight(control, height);
}

void DialogFitTexts(HWND dialog) {
    if ((GetWindowLongPtrW(dialog, GWL_STYLE) & WS_THICKFRAME) != 0) return;
    RECT client = {};
    GetClientRect(dialog, &client);
    const std::vector<HWND> controls = ControlsOf(dialog);
    std::vector<GrowPart> across, down;
    std::vector<TextKind> kinds;
    LONG margin = client.right;
    for (const HWND control : controls) {
        const RECT place = PlaceIn(dialog, control);
        kinds.push_back(KindOfText(control, place, client.right));
        across.push_back(
            {place.left, place.right, WidthWanted(dialog, control, kinds.back()), kinds.back() == TextKind::Push});
        down.push_back({place.top, place.bottom, 0, IsRigid(control)});
        margin = std::min(margin, place.left);
    }
    const int gap = AcrossUnits(dialog, kLeastGap);
    for (std::size_t i = 0; i < controls.size(); ++i) {
        GrowPart& part = across[i];
        if (kinds[i] != TextKind::Line && kinds[i] != TextKind::Check) continue;
        const int room = FreeEnd(part, Beside(across, down, i), gap, static_cast<int>(client.right - margin));
        part.end = std::max(part.end, std::min(part.start + part.wanted, room));
    }
    SIZE grown = {GrowDialogParts(across, static_cast<int>(client.right)), 0};
    for (std::size_t i = 0; i < controls.size(); ++i)
        if (kinds[i] == TextKind::Paragraph)
            down[i].wanted = static_cast<int>(TextSizeOf(controls[i], across[i].end - across[i].start).cy);
    grown.cy = GrowDialogParts(down, 0);
    std::vector<RECT> places;
    for (std::size_t i = 0; i < controls.size(); ++i)
        places.push_back({across[i].start, down[i].start, across[i].end, down[i].end});
    PlaceParts(dialog, controls, places);
    if (grown.cx > 0 || grown.cy > 0) GrowWindow(dialog, grown);
}

void DialogFitSize(HWND dialog) {
    const RECT work = WorkAreaOf(dialog);
    RECT place = {};
    if (IsRectEmpty(&work) || !GetWindowRect(dialog, &place)) return;
    const SIZE less = {(place.right - place.left) - (work.right - work.left),
                       (place.bottom - place.top) - (work.bottom - work.top)};
    if (less.cx > 0 || less.cy > 0) ShrinkDialog(dialog, less);
}

void DialogFitScreen(HWND dialog) {
    DialogFitSize(dialog);
    const RECT work = WorkAreaOf(dialog);
    RECT place = {};
    if (IsRectEmpty(&work) || !GetWindowRect(dialog, &place)) return;
    const LONG left = std::max(work.left, std::min(place.left, work.right - (place.right - place.left)));
    const LONG top = std::max(work.top, std::min(place.top, work.bottom - (place.bottom - place.top)));
    if (left != place.left || top != place.top)
        SetWindowPos(dialog, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}
