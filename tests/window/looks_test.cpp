// What a screen reader says of the frame and of the dialogs.
#include "harness.h"

#include <commctrl.h>
#include <oleacc.h>

#include <set>
#include <utility>
#include <vector>

#include "class_name.h"
#include "resources/ids.h"

namespace {

// What the accessibility interface says of a window.
class Accessible {
public:
    explicit Accessible(HWND window) {
        void* object = nullptr;
        if (SUCCEEDED(
                AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible), &object)))
            object_ = static_cast<IAccessible*>(object);
    }
    ~Accessible() {
        if (object_ != nullptr) object_->Release();
    }
    Accessible(const Accessible&) = delete;
    Accessible& operator=(const Accessible&) = delete;

    std::wstring Name(LONG child = CHILDID_SELF) const {
        if (object_ == nullptr) return L"(no object)";
        VARIANT which = {};
        which.vt = VT_I4;
        which.lVal = child;
        BSTR name = nullptr;
        const HRESULT result = object_->get_accName(which, &name);
        std::wstring text = SUCCEEDED(result) && name != nullptr ? name : L"";
        SysFreeString(name);
        return text;
    }
    std::set<std::wstring> Parts() const {
        LONG count = 0;
        if (object_ != nullptr) object_->get_accChildCount(&count);
        std::set<std::wstring> names;
        for (LONG child = 1; child <= count; ++child) names.insert(Name(child));
        return names;
    }

private:
    IAccessible* object_ = nullptr;
};

std::wstring AccessibleName(HWND window) { return Accessible(window).Name(); }

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
        if (!reached || IsWindowVisible(child) == FALSE || kind == WC_STATICW) continue;
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
    for (const int command : {IDM_VIEW_ASM, IDM_VIEW_DEBUG_PANE, IDM_SEARCH_INCREMENTAL}) editor.Do(command);
    EXPECT_TRUE(WaitFor([&] { return editor.Child(IDC_FIND_BAR) != nullptr; }));
    const RECT before = editor.ButtonRect(IDM_BUILD_RUN);
    ExpectNamed("frame", editor.main);
    // The buttons and the fields are no windows, but parts of their bars.
    for (const auto& [bar, names] :
         {std::pair<int, std::vector<std::wstring>>{IDC_TOOLBAR, {L"Build & Run (F5)", L"Save (Ctrl+S)"}},
          {IDC_STATUS_BAR, {L"Position: Ln 1, Col 1", L"Encoding: UTF-8", L"Line ending: CRLF", L"Zoom: 100 %"}}}) {
        const std::set<std::wstring> parts = Accessible(editor.Child(bar)).Parts();
        std::string all;
        for (const std::wstring& part : parts) all += Utf8(part) + " | ";
        for (const std::wstring& name : names) EXPECT_TRUE(parts.contains(name)) << Utf8(name) << " in " << all;
    }
    const RECT after = editor.ButtonRect(IDM_BUILD_RUN);
    EXPECT_TRUE(EqualRect(&before, &after)) << "and stay where they are";

    editor.Send(editor.Sci(), SCI_GOTOPOS, 5);  // the name of the procedure
    for (const auto& [command, title] : {std::pair{IDM_EDIT_GOTO, L"Go To Line"},
                                         {IDM_FILES_FIND, L"Find in Files"},
                                         {IDM_EDIT_REPLACE, L"Find and Replace"},
                                         {IDM_DEBUG_EXCEPTIONS, L"Exceptions"},
                                         {IDM_DEBUG_PROGRAM, L"Program Arguments"},
                                         {IDM_DEBUG_CONDITIONAL, L"Conditional Breakpoint"},
                                         {IDM_SYMBOL_RENAME, L"Rename Symbol"},
                                         {IDM_HELP_KEYS, L"Keyboard Map"},
                                         {IDM_PROJECT_NEW, L"New Project"},
                                         {IDM_PROJECT_SETTINGS, L"Settings"},
                                         {IDM_FILE_EXIT, kUnsaved}}) {
        if (command == IDM_FILE_EXIT) editor.Type("x");  // which is not saved
        editor.Post(command);
        const Dialog dialog = editor.AwaitDialog(title);
        ExpectNamed(Utf8(title), dialog.window);
        editor.Press(dialog, IDCANCEL);
    }
    editor.Do(IDM_EDIT_UNDO);
    editor.Do(IDM_QUICK_OPEN);
    const HWND quick = editor.Child(IDC_QUICK_OPEN);
    ExpectNamed("quick open", quick);
    editor.Send(GetDlgItem(quick, IDC_QUICK_FIELD), WM_KEYDOWN, VK_ESCAPE);
    editor.Do(IDM_FILE_CLOSE_ALL);
    ASSERT_TRUE(WaitFor([&] { return editor.Child(IDC_START_PAGE) != nullptr; }));
    ExpectNamed("start page", editor.Child(IDC_START_PAGE));
    CoUninitialize();
}

}  // namespace
