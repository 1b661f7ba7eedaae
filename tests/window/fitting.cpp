#include "window/fitting.h"

#include "window/class_name.h"

#include <commctrl.h>

namespace {

// The box of a check box, and the blank beside it, at 96 dpi.
constexpr int kBoxWidth = 17;

LOGFONTW FaceOf(Font font, int dpi) {
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof(metrics);
    SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0, static_cast<UINT>(dpi));
    if (font == Font::Message) return metrics.lfMessageFont;
    LOGFONTW face = {};
    face.lfHeight = -MulDiv(9, dpi, 72);
    face.lfCharSet = DEFAULT_CHARSET;
    lstrcpyW(face.lfFaceName, L"Segoe UI");
    return face;
}

RECT PlaceIn(HWND parent, HWND child) {
    RECT place = {};
    GetWindowRect(child, &place);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

std::string TextOfRect(const RECT& place) {
    return std::to_string(place.left) + "," + std::to_string(place.top) + " to " + std::to_string(place.right) + "," +
           std::to_string(place.bottom);
}

}  // namespace

SIZE SizeOf(const std::wstring& text, Font font, UINT format, LONG width, int dpi) {
    const HDC dc = GetDC(nullptr);
    const LOGFONTW face = FaceOf(font, dpi);
    const HFONT made = CreateFontIndirectW(&face);
    const HGDIOBJ old = SelectObject(dc, made);
    RECT area = {0, 0, width, 0};
    DrawTextW(dc, text.c_str(), -1, &area, DT_CALCRECT | format | (width > 0 ? DT_WORDBREAK : 0U));
    SelectObject(dc, old);
    DeleteObject(made);
    ReleaseDC(nullptr, dc);
    return {area.right, area.bottom};
}

void ExpectWhole(const std::string& where, HWND control, const std::wstring& text, Font font, int dpi) {
    const std::wstring kind = ClassOf(control);
    const LONG_PTR style = GetWindowLongPtrW(control, GWL_STYLE);
    const bool label = kind == WC_STATICW;
    if (!label && (style & BS_TYPEMASK) == BS_OWNERDRAW) return;  // its text is only a name
    if (text.empty() || (label && (style & SS_ELLIPSISMASK) != 0) || (!label && kind != WC_BUTTONW)) return;
    RECT client = {};
    GetClientRect(control, &client);
    const LONG_PTR type = style & BS_TYPEMASK;
    const bool box = !label && type != BS_PUSHBUTTON && type != BS_DEFPUSHBUTTON;
    const UINT format = label && (style & SS_NOPREFIX) != 0 ? DT_NOPREFIX : 0U;
    const SIZE size = SizeOf(text, font, format, label ? client.right : 0, dpi);
    const bool whole = size.cx <= client.right - (box ? MulDiv(kBoxWidth, dpi, 96) : 0) && size.cy <= client.bottom;
    EXPECT_TRUE(whole) << where << ", " << Utf8(text) << ": " << size.cx << "x" << size.cy << " in " << client.right
                       << "x" << client.bottom;
}

std::vector<HWND> VisibleChildren(HWND parent) {
    std::vector<HWND> children;
    EnumChildWindows(
        parent,
        [](HWND child, LPARAM list) -> BOOL {
            if (IsWindowVisible(child)) reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&children));
    return children;
}

void ExpectApart(const std::string& where, const Editor& editor, HWND parent) {
    std::vector<HWND> shown;
    for (const HWND child : VisibleChildren(parent))
        if (GetParent(child) == parent && !ClassOf(child).starts_with(L"KxeSplitter") &&
            (ClassOf(child) != WC_STATICW || !editor.TextOf(child).empty()))
            shown.push_back(child);
    EXPECT_FALSE(shown.empty()) << where;
    RECT client = {};
    GetClientRect(parent, &client);
    const auto name = [&](HWND child) {
        return Utf8(ClassOf(child)) + " " + std::to_string(GetDlgCtrlID(child)) + " \"" + Utf8(editor.TextOf(child)) +
               "\" at " + TextOfRect(PlaceIn(parent, child));
    };
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const RECT place = PlaceIn(parent, shown[i]);
        RECT inside = {}, common = {};
        EXPECT_TRUE(IntersectRect(&inside, &place, &client) && EqualRect(&inside, &place))
            << where << ": " << name(shown[i]) << " is not within " << TextOfRect(client);
        for (std::size_t j = i + 1; j < shown.size(); ++j) {
            const RECT other = PlaceIn(parent, shown[j]);
            EXPECT_FALSE(IntersectRect(&common, &place, &other))
                << where << ": " << name(shown[i]) << " lies over " << name(shown[j]);
        }
    }
}
