// Names for screen readers. A window without a label before it has its text as its name; that of an editor, a field or
// a Rich Edit pane is its whole content, and it needs a name of its own. UI thread only.
#pragma once

#include <windows.h>

#include <string>

// Names a window that was just made. `name` is a literal. A list, a tree or a bar takes it as its text, which it does
// not show; a field, a list box or a Rich Edit pane answers with it from now on.
void AccessibleNameSet(HWND window, const wchar_t* name);
// The same for a window whose text is something else: its content, or, of a button, what many others are called, too; a
// button is heard with its text before the name.
void AccessibleNameAdd(HWND window, const wchar_t* name);
// The parts of a bar that are no windows, from 0. They are the children of its object, numbered from 1 as the system
// does, which also knows where they are and what they can do.
struct AccessibleParts {
    int count;
    std::wstring (*name)(int part);  // empty: a gap
};
// For a window procedure: the answer to WM_GETOBJECT of a window with that name. `usual` is the answer of the
// control itself, which is returned for everything else than its client area.
LRESULT AccessibleAnswer(HWND window, WPARAM wParam, LPARAM lParam, const std::wstring& name, LRESULT usual,
                         const AccessibleParts& parts = {});
