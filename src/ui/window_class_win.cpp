#include "ui/window_class.h"

#include "ui/ui_state.h"

bool WindowClassRegister(const WindowClass& wanted) {
    WNDCLASSEXW description = {};
    description.cbSize = sizeof(description);
    description.style = wanted.style;
    description.lpfnWndProc = wanted.procedure;
    description.hInstance = g_ui.hInstance;
    description.hCursor = LoadCursorW(nullptr, wanted.cursor);
    description.hbrBackground = wanted.background;
    description.lpszClassName = wanted.name;
    return RegisterClassExW(&description) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}
