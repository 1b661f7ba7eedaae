// What a screen reader says of the frame and of the dialogs.
#include "harness.h"

#include <commctrl.h>
#include <oleacc.h>

#include <array>
#include <set>
#include <utility>
#include <vector>

#include "class_name.h"
#include "resources/ids.h"

namespace {

// The name of a window as the accessibility interface gives it.
std::wstring AccessibleName(HWND window) {
    void* object = nullptr;
    if (FAILED(AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible), &object)))
        return L"(no object)";
    auto* const accessible = static_cast<IAccessible*>(object);
    VARIANT self = {};
    self.vt = VT_I4;
    self.lVal = CHILDID_SELF;
    BSTR name = nullptr;
    const HRESULT result = accessible->get_accName(self, &name);
    accessible->Release();
    std::wstring text = SUCCEEDED(result) && name != nullptr ? name : L"";
    SysFreeString(name);
    return text;
}

std::vector<HWND> ChildrenOf(HWND parent) {
    std::vector<HWND> children;
    EnumChildWindows(
        parent,
        [](HWND child, LPARAM list) -> BOOL {
            reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&children));
    return children;
}

// Each window that can be reached by the keyboard, and each bar, has a name, and no two editors or panes have the same.
void ExpectNamed(const std::string& where, HWND parent) {
    std::set<std::wstring> seen;
    for (const HWND child : ChildrenOf(parent)) {
        const std::wstring kind = ClassOf(child);
        const bool reached = (GetWindowLongPtrW(child, GWL_STYLE) & WS_TABSTOP) != 0 || GetParent(child) == parent;
        if (!reached || IsWindowVisible(child) == FALSE || kind == WC_STATICW || kind == STATUSCLASSNAMEW) continue;
        if (ClassOf(GetParent(child)) == WC_COMBOBOXW) continue;  // its field has its name
        std::wstring name = AccessibleName(child);
        // Wine takes the label before a field for its name, but not that before a list or a combo box, as Windows does.
        const HWND before = GetWindow(child, GW_HWNDPREV);
        if (name.empty() && (kind == WC_COMBOBOXW || kind == WC_LISTBOXW) && ClassOf(before) == WC_STATICW)
            name = AccessibleName(before);
        EXPECT_FALSE(name.empty()) << where << ": " << Utf8(kind) << " " << GetDlgCtrlID(child);
        EXPECT_LT(name.size(), 100u) << where << ": a content, not a name: " << Utf8(name.substr(0, 40));
        EXPECT_TRUE(seen.insert(name).second)
            << where << ": two are called " << Utf8(name) << ", one is " << Utf8(kind) << " " << GetDlgCtrlID(child);
    }
}

TEST(Looks, AScreenReaderHearsANameForEveryControl) {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    ProgramFolder folder;
    for (const wchar_t* pane : {L"ShowErrorList", L"ShowTerminal", L"ShowOutline"})
        folder.SetIni(L"Editor", pane, L"1");
    folder.SetIni(L"Project", L"ShowProjectTree", L"1");
    folder.SetIni(L"AI", L"ShowAISidebar", L"1");
    Editor editor(folder, OpenArgument(folder.Write(L"named.bas", "SUB Main\r\n    PRINT 1\r\nEND SUB\r\n")));
    editor.ShowAt(96, 1250, 860);
    EXPECT_EQ(AccessibleName(editor.Sci()), L"Editor, named.bas");
    EXPECT_EQ(AccessibleName(editor.Child(IDC_OUTPUT)), L"Output");
    for (const int command : {IDM_VIEW_ASM, IDM_VIEW_DEBUG_PANE}) editor.Do(command);
    ExpectNamed("frame", editor.main);
    // The buttons of the toolbar have texts that are not shown.
    const HWND bar = editor.Child(IDC_TOOLBAR);
    const RECT before = editor.ButtonRect(IDM_BUILD_RUN);
    AccessibleName(bar);
    for (const auto& [command, name] : {std::pair{IDM_BUILD_RUN, L"Build & Run"}, {IDM_FILE_SAVE, L"Save"}}) {
        const RemoteBlock block(editor.process, 256);
        std::array<wchar_t, 128> text = {};
        editor.Send(bar, TB_GETBUTTONTEXTW, static_cast<WPARAM>(command), block.At());
        block.Get(text.data(), sizeof(text));
        EXPECT_TRUE(std::wstring(text.data()).starts_with(name)) << Utf8(text.data());
    }
    const RECT after = editor.ButtonRect(IDM_BUILD_RUN);
    EXPECT_TRUE(EqualRect(&before, &after)) << "and stay where they are";

    for (const auto& [command, title] : {std::pair{IDM_EDIT_GOTO, L"Go To Line"},
                                         {IDM_FILES_FIND, L"Find in Files"},
                                         {IDM_EDIT_REPLACE, L"Find and Replace"},
                                         {IDM_DEBUG_EXCEPTIONS, L"Exceptions"},
                                         {IDM_DEBUG_PROGRAM, L"Program Arguments"},
                                         {IDM_PROJECT_NEW, L"New Project"},
                                         {IDM_PROJECT_SETTINGS, L"Settings"}}) {
        editor.Post(command);
        const Dialog dialog = editor.AwaitDialog(title);
        ExpectNamed(Utf8(title), dialog.window);
        editor.Press(dialog, IDCANCEL);
    }
    editor.Do(IDM_FILE_CLOSE_ALL);
    ASSERT_TRUE(WaitFor([&] { return editor.Child(IDC_START_PAGE) != nullptr; }));
    ExpectNamed("start page", editor.Child(IDC_START_PAGE));
    CoUninitialize();
}

}  // namespace
