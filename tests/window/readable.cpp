#include "readable.h"

#include <commctrl.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "class_name.h"
#include "commands/toolbar_table.h"
#include "resources/ids.h"
#include "support/text_contrast.h"

Picture PictureOf(HWND window) {
    RECT area = {};
    GetClientRect(window, &area);
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&area), 2);
    area.right = std::min<LONG>(area.right, GetSystemMetrics(SM_CXSCREEN));
    area.bottom = std::min<LONG>(area.bottom, GetSystemMetrics(SM_CYSCREEN));
    Picture picture = {static_cast<int>(area.right - area.left), static_cast<int>(area.bottom - area.top), {}};
    picture.pixels.resize(static_cast<std::size_t>(picture.width * picture.height));
    BITMAPINFO info = {};
    info.bmiHeader = {.biSize = sizeof(info.bmiHeader),
                      .biWidth = picture.width,
                      .biHeight = -picture.height,
                      .biPlanes = 1,
                      .biBitCount = 32};
    void* bits = nullptr;
    const HDC screen = GetDC(nullptr), memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, picture.width, picture.height, screen, area.left, area.top, SRCCOPY);
    GdiFlush();
    const auto* pixels = static_cast<const std::uint32_t*>(bits);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) picture.pixels[i] = pixels[i] & 0xFFFFFF;
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return picture;
}

Picture PictureAtRest(HWND window) {
    Picture before = PictureOf(window);
    WaitFor(
        [&] {
            Sleep(150);  // the time between the two
            Picture now = PictureOf(window);
            std::swap(before, now);
            return before.pixels == now.pixels;
        },
        kDeadline);
    return before;
}

namespace {

// Strokes of one pixel have at least about three quarters of their contrast.
constexpr double kThinStroke = 3.3;
constexpr wchar_t kMenuClass[] = L"#32768";

Rgb SystemRgb(int index) {
    const COLORREF colour = GetSysColor(index);
    return static_cast<Rgb>(GetRValue(colour) << 16 | GetGValue(colour) << 8 | GetBValue(colour));
}

// What cannot be used need not be read: controls and buttons of the toolbar. Most buttons only have a picture.
std::vector<RECT> DisabledPlaces(const Editor& editor, HWND window) {
    std::vector<RECT> places;
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        RECT place = {};
        GetWindowRect(child, &place);
        MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
        if (IsWindowEnabled(child) == FALSE) places.push_back(place);
    }
    if (window != editor.main) return places;
    for (const ButtonRow& button : kToolbarButtons) {
        if (button.command == 0) continue;
        RECT place = editor.ButtonRect(button.command);
        const bool picture = place.right - place.left < 2 * (place.bottom - place.top);
        if (!picture && editor.ButtonWorks(button.command)) continue;
        MapWindowPoints(editor.Child(IDC_TOOLBAR), window, reinterpret_cast<POINT*>(&place), 2);
        places.push_back(place);
    }
    return places;
}

// Texts in a Rich Edit have the scale of the system, also in a frame on another one.
std::vector<RECT> PlainScalePlaces(const Editor& editor, HWND window) {
    std::vector<RECT> places;
    if (window != editor.main) return places;
    for (const int pane : {IDC_OUTPUT, IDC_ASM, IDC_AI_CHAT}) {
        const HWND child = editor.Child(pane);
        if (child == nullptr || IsWindowVisible(child) == FALSE) continue;
        RECT place = {};
        GetWindowRect(child, &place);
        MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
        places.push_back(place);
    }
    return places;
}

bool IsWithin(const PictureWord& word, const std::vector<RECT>& places) {
    return std::ranges::any_of(
        places,
        [&](const RECT& place) {
            return PtInRect(&place, {word.left + 1, word.top + 1}) != FALSE;
        });
}

bool Near(Rgb a, Rgb b) {
    const auto part = [=](int shift) {
        return std::abs(static_cast<int>(a >> shift & 255) - static_cast<int>(b >> shift & 255));
    };
    return std::max({part(0), part(8), part(16)}) < 40;
}

// The selection of the system's own controls has the colours of the system, which promises to be readable only in
// high contrast.
bool IsPoorSelection(const PictureWord& word) {
    const Rgb ground = SystemRgb(COLOR_HIGHLIGHT);
    return word.ground == ground && ThemeContrast(SystemRgb(COLOR_HIGHLIGHTTEXT), ground) < kReadableContrast;
}

// Of an item in a menu only the colour tells that it cannot be used.
bool IsOffInMenu(const PictureWord& word) {
    const auto isOff = [&](const ChromePalette& frame) {
        return Near(word.ground, frame.statusBack) &&
               Near(word.text, ThemeBlend(frame.statusText, frame.statusBack, 128));
    };
    constexpr Rgb kGreyOfWine = 0x808080;  // whatever the system's grey is
    if (Near(word.text, SystemRgb(COLOR_GRAYTEXT)) || Near(word.text, kGreyOfWine)) return true;
    for (int style = 0; style < static_cast<int>(EditorStyles().size()); ++style)
        if (isOff(ThemeChromePalette(style, true)) || isOff(ThemeChromePalette(style, false))) return true;
    return false;
}

}  // namespace

int ExpectTextsReadable(const Editor& editor, const std::string& where, HWND window, int line) {
    const std::vector<PictureWord> words = WordsOfPicture(PictureAtRest(window), line);
    const std::vector<RECT> disabled = DisabledPlaces(editor, window), plain = PlainScalePlaces(editor, window);
    const bool menu = ClassOf(window) == kMenuClass;
    for (const PictureWord& word : words) {
        if (IsWithin(word, disabled) || IsPoorSelection(word) || (menu && IsOffInMenu(word))) continue;
        const bool scaled = line >= kScaledLine && !IsWithin(word, plain);
        EXPECT_GE(word.contrast, scaled ? kReadableContrast : kThinStroke)
            << where << ": " << word.left << "," << word.top << " " << word.right - word.left << "x"
            << word.bottom - word.top << std::hex << ", " << word.text << " on " << word.ground;
    }
    return static_cast<int>(words.size());
}

DrawnPart MeasurePicture(HWND window, const RECT& area) {
    const Picture picture = PictureAtRest(window);
    std::map<Rgb, int> colours;
    const auto each = [&](const auto& take) {
        for (LONG y = std::max(area.top, 0L); y < std::min<LONG>(area.bottom, picture.height); ++y)
            for (LONG x = std::max(area.left, 0L); x < std::min<LONG>(area.right, picture.width); ++x)
                take(picture.At(static_cast<int>(x), static_cast<int>(y)));
    };
    each([&](Rgb colour) { ++colours[colour]; });
    if (colours.empty()) return {};
    const Rgb ground = std::ranges::max_element(colours, {}, [](const auto& entry) { return entry.second; })->first;
    std::vector<double> drawn;
    int all = 0;
    each([&](Rgb colour) {
        ++all;
        if (colour != ground) drawn.push_back(ThemeContrast(colour, ground));
    });
    if (drawn.empty()) return {};
    std::ranges::sort(drawn, std::greater());
    return {drawn[drawn.size() / 10], static_cast<double>(drawn.size()) / all};
}

HWND FindPopup(const Editor& editor, const std::wstring& kind) {
    for (HWND window = nullptr; (window = FindWindowExW(nullptr, window, kind.c_str(), nullptr)) != nullptr;) {
        DWORD owner = 0;
        GetWindowThreadProcessId(window, &owner);
        if (owner == editor.pid && IsWindowVisible(window) != FALSE) return window;
    }
    return nullptr;
}

HWND AwaitPopup(const Editor& editor, const std::wstring& kind) {
    EXPECT_TRUE(WaitFor([&] { return FindPopup(editor, kind) != nullptr; })) << Utf8(kind) << " does not come\n"
                                                                             << editor.Describe();
    return FindPopup(editor, kind);
}

HWND AwaitMenuWindow(const Editor& editor) { return AwaitPopup(editor, kMenuClass); }
