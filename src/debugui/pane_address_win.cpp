// The address box of the memory and disassembly views. UI thread only.
#include "debugui/pane_internal.h"

#include "resources/ids.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"

#include <commctrl.h>

namespace {

bool OnAddressKey(HWND box, WPARAM key) {
    if (PaneHandleFocusKey(box, key)) return true;
    if (key == VK_RETURN) {
        SendMessageW(box, EM_SETSEL, 0, -1);
        DebugPaneInvalidate();
        return true;
    }
    if (key != VK_DOWN) return false;
    PaneFocusView();
    return true;
}

LRESULT CALLBACK AddressProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    switch (message) {
        case WM_KEYDOWN:
            if (OnAddressKey(box, wParam)) return 0;
            break;
        case WM_CHAR:
            if (wParam == VK_RETURN || wParam == VK_TAB || wParam == VK_ESCAPE) return 0;  // no beep
            break;
        default: break;
    }
    return SubclassNext(box, message, wParam, lParam);
}

}  // namespace

HWND PaneAddressCreate(HWND parent) {
    // Not WS_BORDER: a field takes that from its style and paints the border, and would pass for one without a frame.
    const HWND box = CreateWindowExW(
        WS_EX_CLIENTEDGE, WC_EDITW, nullptr, WS_CHILD | WS_CLIPSIBLINGS | WS_TABSTOP | ES_AUTOHSCROLL, 0, 0, 0, 0,
        parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(IDC_DEBUG_ADDRESS)), g_ui.hInstance, nullptr);
    if (box != nullptr) SubclassAdd(box, AddressProc);
    return box;
}
