// The dialog of the keyboard map: a filter and the rows that it leaves. UI thread.
#include "commands/keyboard_map.h"

#include "base/log.h"
#include "base/texts.h"
#include "commands/keyboard_map_rows.h"
#include "commands/menu_commands.h"
#include "resources/ids.h"
#include "ui/dialog_scale.h"
#include "ui/dialog_theme.h"
#include "ui/redraw.h"
#include "ui/subclass.h"
#include "ui/ui_state.h"
#include "ui/window_text.h"

#include <iterator>
#include <string>
#include <vector>

namespace {

struct KeyMap {
    std::vector<KeyMapRow> all, shown;
    int chosen = 0;  // the command to carry out; 0: none
};

KeyMap& MapOf(HWND dialog) { return *reinterpret_cast<KeyMap*>(GetWindowLongPtrW(dialog, DWLP_USER)); }

std::vector<KeyMapRow> KeyRowsOfMenu(HMENU menu) {
    std::vector<KeyMapRow> rows;
    for (const MenuCommand& command : MenuCommands(menu)) {
        std::wstring place = command.path;
        if (place.ends_with(L" > ")) place.resize(place.size() - 3);
        rows.push_back({command.id, command.keys, command.name, place});
    }
    return rows;
}

void ShowKeyRows(HWND dialog) {
    KeyMap& map = MapOf(dialog);
    const HWND list = GetDlgItem(dialog, IDC_KEYS_LIST);
    map.shown = FilteredKeyRows(map.all, WindowText(GetDlgItem(dialog, IDC_KEYS_FILTER)));
    {
        const RedrawPause pause(list);
        SendMessageW(list, LB_RESETCONTENT, 0, 0);
        for (const KeyMapRow& row : map.shown) {
            const std::wstring text = row.keys + L"\t" + row.name + L"\t" + row.place;
            SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
        }
        SendMessageW(list, LB_SETCURSEL, 0, 0);
    }
    InvalidateRect(list, nullptr, TRUE);
}

void ChooseKeyRow(HWND dialog) {
    KeyMap& map = MapOf(dialog);
    const LRESULT row = SendDlgItemMessageW(dialog, IDC_KEYS_LIST, LB_GETCURSEL, 0, 0);
    if (row < 0 || row >= static_cast<LRESULT>(map.shown.size())) return;
    map.chosen = map.shown[static_cast<std::size_t>(row)].command;
    if (map.chosen != 0) EndDialog(dialog, IDOK);
}

// The arrows move through the list while the filter is typed.
LRESULT CALLBACK KeyFilterProc(HWND field, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    const bool moves = wParam == VK_UP || wParam == VK_DOWN || wParam == VK_PRIOR || wParam == VK_NEXT;
    if (message == WM_KEYDOWN && moves)
        return SendDlgItemMessageW(GetParent(field), IDC_KEYS_LIST, message, wParam, lParam);
    return SubclassNext(field, message, wParam, lParam);
}

void FillKeyDialog(HWND dialog) {
    const UINT tabs[] = {130, 290};  // dialog units
    DialogListTabs(dialog, IDC_KEYS_LIST, tabs);
    SubclassAdd(GetDlgItem(dialog, IDC_KEYS_FILTER), KeyFilterProc);
    ShowKeyRows(dialog);
    DialogApplyTheme(dialog);
}

void OnKeysCommand(HWND dialog, int control, int notification) {
    if (control == IDC_KEYS_FILTER && notification == EN_CHANGE) ShowKeyRows(dialog);
    if (control == IDOK || (control == IDC_KEYS_LIST && notification == LBN_DBLCLK)) ChooseKeyRow(dialog);
    if (control == IDCANCEL) EndDialog(dialog, IDCANCEL);
}

INT_PTR CALLBACK KeysDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            FillKeyDialog(dialog);
            return TRUE;
        case WM_COMMAND: OnKeysCommand(dialog, LOWORD(wParam), HIWORD(wParam)); return TRUE;
        default: return FALSE;
    }
}

}  // namespace

void KeyboardMapShow(HWND owner) {
    KeyMap map{.all = AllKeyRows(KeyRowsOfMenu(GetMenu(owner))), .shown = {}};
    const INT_PTR answer =
        DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_KEYS), owner, KeysDlgProc, reinterpret_cast<LPARAM>(&map));
    if (answer == -1) AppLogMsg(L"FAIL: KeyboardMapShow error=%lu", GetLastError());
    if (answer == IDOK && map.chosen != 0) PostMessageW(owner, WM_COMMAND, static_cast<WPARAM>(map.chosen), 0);
}
