// Classes of the program's own windows. UI thread only.
#pragma once

#include <windows.h>

struct WindowClass {
    const wchar_t* name = nullptr;
    WNDPROC procedure = nullptr;
    UINT style = 0;                     // CS_...
    const wchar_t* cursor = IDC_ARROW;  // one of the system's
    HBRUSH background = nullptr;        // none: the procedure fills the window
};

// Registers the class, unless it is registered already. Returns false when the system cannot, with its error.
bool WindowClassRegister(const WindowClass& wanted);
