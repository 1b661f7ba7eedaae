// Dialogs and captions in the dark theme. In the light theme their colours are the system's own. UI thread only.
#pragma once

#include <windows.h>

// Gives the caption of a top-level window the colours of the theme, where the system can do that.
void FrameApplyTheme(HWND window);
// Colours a dialog and its controls by the theme from now on, gives its caption, texts and buttons the program's
// language, and evens its rows; when it is shown, its texts get the room they need, and it fits the screen. On a monitor
// of another DPI it is scaled. Called once, in WM_INITDIALOG, and before its controls are moved.
void DialogApplyTheme(HWND dialog);
// The answer to WM_CTLCOLORSTATIC that shows the text of `control` as that of a problem when its id is `problem`. FALSE for
// any other control.
INT_PTR DialogColourOfProblem(HDC dc, HWND control, int problem);
// Shows the new theme in all dialogs that are open.
void DialogsRenewTheme();
// Colours a box of MessageBoxW that is complete and not yet painted.
// The hook of the system's choosers of fonts and colours, which gives them the colours of the program's own dialogs.
UINT_PTR CALLBACK ChooserThemeHook(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
void MessageBoxApplyTheme(HWND box);

// Words on the buttons of a message box, null: the system's; and whether a button takes its letter only with Alt
// (ui/guarded_button.h).
struct BoxNames {
    const wchar_t* yes = nullptr;  // on Yes and on OK
    const wchar_t* no = nullptr;
    bool guardsYes = false;
    bool guardsNo = false;
};
// Runs MessageBoxW, colours the box, and makes room for the words on its buttons.
int ThemedMessageBox(HWND owner, const wchar_t* text, const wchar_t* caption, UINT flags, const BoxNames& names = {});
