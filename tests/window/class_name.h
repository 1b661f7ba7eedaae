// The class of a window, for tests that look for windows by it.
#pragma once

#include <windows.h>

#include <iterator>
#include <string>

// Empty when there is no such window.
inline std::wstring ClassOf(HWND window) {
    wchar_t name[128] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return name;
}
