// What a screen reader says of the frame and of the dialogs.
#include "readable.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "held_control.h"
#include "resources/ids.h"
#include "support/accessible_names.h"

namespace {

TEST(Looks, AScreenReaderHearsANameForEveryControl) {
    const ComScope com;
    ProgramFolder folder;
    for (const wchar_t* pane : {L"ShowErrorList", L"ShowTerminal"}) folder.SetIni(L"Editor", pane, L"1");
    for (const wchar_t* pane : {L"ShowProjectTree", L"ShowOutline"}) folder.SetIni(L"Project", pane, L"1");
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
                                         {IDM_DEBUG_NAME_PLACE, L"Name a Place"},
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
    // What comes up over the frame and goes again, and the pane that no setting shows.
    for (const auto& [command, id] : {std::pair{IDM_QUICK_OPEN, IDC_QUICK_OPEN},
                                      {IDM_COMMAND_PALETTE, IDC_QUICK_OPEN},
                                      {IDM_SYMBOL_REFERENCES, IDC_FILES_PANE},
                                      {IDM_PEEK_DEFINITION, IDC_PEEK}}) {
        const std::string where = "command " + std::to_string(command);
        editor.Sci(SCI_GRABFOCUS);
        editor.Sci(SCI_GOTOPOS, 5);
        editor.Do(command);
        ASSERT_TRUE(WaitFor([&editor, pane = id] { return IsWindowVisible(editor.Child(pane)) != FALSE; })) << where;
        ExpectNamed(where, editor.Child(id));
        if (id == IDC_QUICK_OPEN) editor.Send(editor.Focus(), WM_KEYDOWN, VK_ESCAPE);
    }
    ExpectNamed("frame with all that", editor.main);
    editor.Do(IDM_FILE_NEW);
    editor.Sci(SCI_GRABFOCUS);
    editor.Type("P");
    editor.Do(IDM_EDIT_COMPLETE);
    const HWND words = AwaitPopup(editor, L"KVXEWordList");
    EXPECT_EQ(AccessibleName(words), L"Completion");
    EXPECT_TRUE(std::ranges::any_of(Accessible(words).Parts(),
                                    [](const std::wstring& row) { return row.starts_with(L"PRINT"); }));
    editor.Do(IDM_EDIT_UNDO);
    {
        const HeldControl control(editor);
        HeldControl::Press(VK_TAB);
        ASSERT_TRUE(WaitFor([&] { return editor.Child(IDC_TAB_SWITCHER) != nullptr; }));
        ExpectNamed("tab switcher", editor.Child(IDC_TAB_SWITCHER));
    }
    ASSERT_TRUE(WaitFor([&] { return editor.Child(IDC_TAB_SWITCHER) == nullptr; }));
    editor.Do(IDM_FILE_CLOSE_ALL);
    ASSERT_TRUE(WaitFor([&] { return editor.Child(IDC_START_PAGE) != nullptr; }));
    ExpectNamed("start page", editor.Child(IDC_START_PAGE));
}

}  // namespace
