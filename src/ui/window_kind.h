// What kind of control a window is. UI thread only.
#pragma once

#include <windows.h>

#include <iterator>

inline bool IsOfClass(HWND window, const wchar_t* name) {
    wchar_t found[32] = {};
    GetClassNameW(window, found, static_cast<int>(std::size(found)));
    return lstrcmpiW(found, name) == 0;
}
