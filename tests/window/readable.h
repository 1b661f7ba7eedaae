// Measures over pictures of the screen whether the texts of a window can be read.
#pragma once

#include <string>

#include "harness.h"
#include "support/text_contrast.h"

// What is on the screen in the window's client area.
Picture PictureOf(HWND window);
// The same, once two pictures in a row are equal.
Picture PictureAtRest(HWND window);

// The height of a line of text in pixels: at 200 %, where the strokes of letters have their full colour, and at 100 %.
inline constexpr int kScaledLine = 34, kPlainLine = 17;

// Each text that can be used has a contrast of 4.5 to its ground; at 100 % of a stroke that is one pixel wide there is
// at least about three quarters of it. Returns how many words were found.
int ExpectTextsReadable(const Editor& editor, const std::string& where, HWND window, int line = kPlainLine);

// The contrast that a picture without a text beside it needs to its ground.
inline constexpr double kVisibleContrast = 3.0;
// The contrast that a tenth of what is drawn in an area of the window's client area has to the ground there. `full`:
// the part of the area that is drawn on, 0..1; 0 when nothing is.
struct DrawnPart {
    double contrast = 0, full = 0;
};
DrawnPart MeasurePicture(HWND window, const RECT& area);

// A visible window of the program with this class, which no other window owns as a child; null when there is none.
HWND FindPopup(const Editor& editor, const std::wstring& kind);
// The same once it is there; null after a failure.
HWND AwaitPopup(const Editor& editor, const std::wstring& kind);
HWND AwaitMenuWindow(const Editor& editor);
