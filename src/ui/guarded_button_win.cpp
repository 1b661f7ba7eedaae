#include "ui/guarded_button.h"

#include "ui/menu_text.h"
#include "ui/subclass.h"
#include "ui/window_text.h"

#include <algorithm>
#include <vector>

namespace {

std::vector<HWND> g_guarded;  // until they are destroyed

bool IsGuardedLetter(HWND dialog, wchar_t letter) {
    return std::ranges::any_of(
        g_guarded,
        [dialog, letter](HWND button) {
            return GetParent(button) == dialog && MenuHasMnemonic(WindowText(button), letter);
        });
}

// Of each control of such a dialog. A letter that the control with the keyboard takes presses nothing; a button does
// nothing with it.
LRESULT CALLBACK ControlProc(HWND control, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    if (message == WM_NCDESTROY) std::erase(g_guarded, control);
    const LRESULT result = SubclassNext(control, message, wParam, lParam);
    if (message != WM_GETDLGCODE || lParam == 0) return result;
    const MSG& key = *reinterpret_cast<const MSG*>(lParam);
    const bool taken = key.message == WM_CHAR && IsGuardedLetter(GetParent(control), static_cast<wchar_t>(key.wParam));
    return taken ? result | DLGC_WANTCHARS : result;
}

}  // namespace

void ButtonNeedsAlt(HWND dialog, int button) {
    g_guarded.push_back(GetDlgItem(dialog, button));
    for (HWND each = GetWindow(dialog, GW_CHILD); each != nullptr; each = GetWindow(each, GW_HWNDNEXT))
        SubclassAdd(each, ControlProc);
}
