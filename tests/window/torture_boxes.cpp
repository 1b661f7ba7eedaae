// Boxes of any kind, used at random: their controls are edited, their buttons pressed.
#include "window/torture_driver.h"

#include <commctrl.h>
#include <dlgs.h>

#include <algorithm>
#include <array>

#include "resources/ids.h"
#include "settingsui/settings_pages.h"
#include "window/class_name.h"

namespace torture {

namespace {

std::vector<HWND> ControlsOf(HWND box) {
    std::vector<HWND> found;
    EnumChildWindows(
        box,
        [](HWND window, LPARAM data) -> BOOL {
            if (IsWindowVisible(window) && IsWindowEnabled(window))
                reinterpret_cast<std::vector<HWND>*>(data)->push_back(window);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

// Buttons whose work leaves this program: a browser, another folder of this machine, the user's own files, and any
// command, of which one ends the program.
bool IsLeft(HWND button) {
    wchar_t caption[128] = {};
    InternalGetWindowText(button, caption, 128);
    for (const wchar_t* part : {L"Import", L"Open Folder", L"Record", L"Browse", L"Run Command"})
        if (std::wstring_view(caption).find(part) != std::wstring_view::npos) return true;
    return false;
}

constexpr const wchar_t* kOddValues[] = {
    L"",     L"0",        L"-1",     L"7",       L"99999999999", L"x",  L"\u00e9\u6f22",
    L"a*b?", L"\"q\" -x", L"PRINT",  L"LOCAL i", L"(",           L".",  L"^$",
    L"12:3", L"%1",       L"{file}", L"RCX < 3", L"1==1",        L"&H", L"files\\a.bas",
    L"main", L"C:\\gone", L"Total",  L"    ",    L"i",           L"\\", L"[a-"};

HWND FieldOf(HWND box) {
    HWND field = GetDlgItem(box, cmb13) != nullptr ? GetDlgItem(box, cmb13) : GetDlgItem(box, edt1);
    for (const HWND control : ControlsOf(field))
        if (ClassOf(control) == L"Edit") field = control;
    return field;
}

void AnswerFileDialog(Driver& driver, HWND box) {
    const auto names = FileNames();
    std::wstring path = driver.folder.File(driver.OneOf(names));
    if (driver.Chance(25)) path = driver.folder.File(L"files\\new" + std::to_wstring(driver.Below(4)) + L".bas");
    if (!driver.Chance(40)) return driver.ChooseFile(box, path);
    driver.Say("file dialog cancel");
    ++driver.fileDialogs;
    PostMessageW(box, WM_COMMAND, IDCANCEL, reinterpret_cast<LPARAM>(GetDlgItem(box, IDCANCEL)));
}

void Notify(HWND control, int code) {
    PostMessageW(GetParent(control), WM_COMMAND,
                 MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(control)), static_cast<WORD>(code)),
                 reinterpret_cast<LPARAM>(control));
}

void PlayWith(Driver& driver, HWND control) {
    const std::wstring kind = ClassOf(control);
    const auto row = [&](UINT count) {
        const auto rows = static_cast<int>(driver.Ask(control, count));
        return rows > 0 ? static_cast<WPARAM>(driver.Below(rows)) : 0;
    };
    driver.Say("  control " + std::to_string(GetDlgCtrlID(control)) + " " + Utf8(kind));
    if (kind == L"Edit") {
        const std::wstring text = driver.OneOf(kOddValues);
        if (GetWindowLongPtrW(control, GWL_STYLE) & ES_READONLY) return;
        driver.Ask(control, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    } else if (kind == L"Button") {
        if (!IsLeft(control)) PostMessageW(control, BM_CLICK, 0, 0);
    } else if (kind == L"ComboBox") {
        driver.Ask(control, CB_SETCURSEL, row(CB_GETCOUNT));
        Notify(control, CBN_SELCHANGE);
    } else if (kind == L"ListBox") {
        driver.Ask(control, LB_SETCURSEL, row(LB_GETCOUNT));
        Notify(control, LBN_SELCHANGE);
    } else if (kind == L"SysListView32") {
        PostMessageW(control, WM_KEYDOWN, driver.Chance(70) ? VK_DOWN : VK_SPACE, 1);
    } else {
        RECT client = {};
        GetClientRect(control, &client);
        driver.Click(control, {driver.Below(client.right + 1), driver.Below(client.bottom + 1)});
    }
}

}  // namespace

bool Driver::IsFileDialog(HWND box) { return GetDlgItem(box, cmb13) != nullptr || GetDlgItem(box, edt1) != nullptr; }

void Driver::ChooseFile(HWND box, const std::wstring& path) {
    Say("file dialog " + Utf8(path));
    ++fileDialogs;
    ++filesChosen;
    Ask(FieldOf(box), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
    PostMessageW(box, WM_COMMAND, IDOK, reinterpret_cast<LPARAM>(GetDlgItem(box, IDOK)));
}

bool Driver::ChooseBy(int command, const std::wstring& path) {
    Post(command);
    HWND box = nullptr;
    if (!Settle() || !WaitFor([&] { return (box = Box()) != nullptr; }, 3000) || !IsFileDialog(box)) return false;
    ChooseFile(box, path);
    return Settle() && WaitFor([&] { return !IsAsking(); }, 3000);
}

void Driver::PlayWithBox(HWND box) {
    wchar_t caption[128] = {};
    InternalGetWindowText(box, caption, 128);
    if (IsFileDialog(box)) return AnswerFileDialog(*this, box);
    Say("box \"" + Utf8(caption) + "\"");
    if (const HWND pages = GetDlgItem(box, IDC_SETTINGS_PAGES); pages != nullptr && Chance(60)) {
        Ask(pages, LB_SETCURSEL, static_cast<WPARAM>(Below(static_cast<int>(SettingsPages().size()))));
        Notify(pages, LBN_SELCHANGE);
        if (!Settle()) return;
    }
    for (int i = Below(4); i > 0 && IsWindow(box) && Box() == box; --i) {
        const std::vector<HWND> controls = ControlsOf(box);
        if (controls.empty()) break;
        PlayWith(*this, OneOf(controls));
        if (!Settle()) return;
    }
    if (Box() != box) return;
    constexpr int kEnds[] = {IDOK, IDOK, IDCANCEL, IDCANCEL, IDYES, IDNO, IDNO, IDC_SETTINGS_APPLY, IDC_CLOSE_DISCARD};
    const int end = OneOf(kEnds);
    if (const HWND button = GetDlgItem(box, end); button != nullptr && IsWindowEnabled(button) && !IsLeft(button)) {
        Say("  press " + std::to_string(end));
        PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(end), reinterpret_cast<LPARAM>(button));
    } else if (Chance(50)) {
        Say("  key Escape or Return");
        Key(Chance(70) || GetDlgItem(box, IDC_KEYS_LIST) != nullptr ? VK_ESCAPE : VK_RETURN);
    }
}

}  // namespace torture
