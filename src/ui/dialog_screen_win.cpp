#include "ui/dialog_screen.h"

#include "ui/dialog_fit.h"

#include <commctrl.h>

#include <algorithm>
#include <iterator>
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

bool IsControlOf(HWND control, const wchar_t* name) {
    wchar_t found[32] = {};
    GetClassNameW(control, found, static_cast<int>(std::size(found)));
    return lstrcmpiW(found, name) == 0;
}

RECT PlaceIn(HWND dialog, HWND control) {
    RECT place = {};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

int UnitsOf(HWND dialog, int units) {
    RECT area = {0, 0, 0, units};
    MapDialogRect(dialog, &area);
    return area.bottom;
}

// The edge of the box is not part of its item's height.
void SetComboHeight(HWND combo, int height) {
    RECT place = {};
    GetWindowRect(combo, &place);
    const auto item = static_cast<int>(SendMessageW(combo, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0));
    const int edge = static_cast<int>(place.bottom - place.top) - item;
    if (height > edge) SendMessageW(combo, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), height - edge);
}

bool IsRigid(HWND control) {
    return IsControlOf(control, WC_BUTTONW) || IsControlOf(control, WC_STATICW) || IsControlOf(control, WC_COMBOBOXW) ||
           (IsControlOf(control, WC_EDITW) && (GetWindowLongPtrW(control, GWL_STYLE) & ES_MULTILINE) == 0);
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

// Takes `less` from the dialog's size. What cannot be taken from its height stays below the screen.
void ShrinkDialog(HWND dialog, SIZE less) {
    const std::vector<HWND> controls = ControlsOf(dialog);
    std::vector<RECT> places;
    std::vector<FitPart> across, down;
    for (const HWND control : controls) {
        const RECT place = PlaceIn(dialog, control);
        places.push_back(place);
        const bool combo = IsControlOf(control, WC_COMBOBOXW) || IsControlOf(control, WC_EDITW);
        across.push_back({place.left, place.right, IsRigid(control) && !combo});
        down.push_back({place.top, place.bottom, IsRigid(control)});
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
        if (IsControlOf(control, WC_COMBOBOXW)) SetComboHeight(control, height);
}

void DialogFitScreen(HWND dialog) {
    MONITORINFO monitor = {.cbSize = sizeof(monitor)};
    RECT place = {};
    if (!GetMonitorInfoW(MonitorFromWindow(dialog, MONITOR_DEFAULTTONEAREST), &monitor) ||
        !GetWindowRect(dialog, &place))
        return;
    const RECT& work = monitor.rcWork;
    const SIZE less = {(place.right - place.left) - (work.right - work.left),
                       (place.bottom - place.top) - (work.bottom - work.top)};
    if (less.cx > 0 || less.cy > 0) ShrinkDialog(dialog, less);
    GetWindowRect(dialog, &place);
    const LONG left = std::max(work.left, std::min(place.left, work.right - (place.right - place.left)));
    const LONG top = std::max(work.top, std::min(place.top, work.bottom - (place.bottom - place.top)));
    if (left != place.left || top != place.top)
        SetWindowPos(dialog, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}
