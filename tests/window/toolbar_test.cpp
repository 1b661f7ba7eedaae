// The toolbar where there is not room for all of its buttons: none is cut, and those that are not shown are in a menu.
#include "debug_driver.h"

#include <commctrl.h>

#include <algorithm>

#include "resources/ids.h"

namespace {

using namespace debug_driver;

constexpr char kSource[] = "FUNCTION PBMAIN () AS LONG\r\n    FUNCTION = 1\r\nEND FUNCTION\r\n";

TEST(Toolbar, NoButtonIsCutAndWhatRunsStaysLongest) {
    const Session session(L"bar.bas", kSource, L"kvxa64");
    ASSERT_TRUE(session.Start()) << session.editor.Describe();
    const struct {
        int dpi, width;
        bool all, edits;  // are shown
    } sizes[] = {{96, 1000, true, true},   {96, 640, false, false},  {96, 480, false, false},
                 {144, 1200, false, true}, {144, 960, false, false}, {96, 1200, true, true}};
    for (const auto& size : sizes) {
        SCOPED_TRACE(std::to_string(size.width) + " at " + std::to_string(size.dpi));
        session.editor.ShowAt(size.dpi, size.width, 600);
        const HWND bar = session.editor.Child(IDC_TOOLBAR);
        RECT client = {};
        GetClientRect(bar, &client);
        for (WPARAM i = static_cast<WPARAM>(session.editor.Send(bar, TB_BUTTONCOUNT)); i-- > 0;)  // empty when hidden
            EXPECT_LE(session.editor.Ask<RECT>(bar, TB_GETITEMRECT, i).right, client.right) << i;
        EXPECT_EQ(session.editor.ButtonShown(IDM_TOOLBAR_MORE), !size.all);
        EXPECT_EQ(session.editor.ButtonShown(IDM_VIEW_AI), size.all);
        EXPECT_EQ(session.editor.ButtonShown(IDM_EDIT_UNDO), size.edits);
        for (const int command : {IDM_COMPILER_MENU, IDM_DEBUG_BUTTON_STOP, IDM_DEBUG_BUTTON_STEP_OVER})
            EXPECT_TRUE(session.editor.ButtonShown(command)) << command;
    }
}

TEST(Toolbar, HiddenButtonsWorkFromTheMenu) {
    const Session session(L"bar.bas", kSource, L"kvxa64");
    const Editor& editor = session.editor;
    editor.Foreground();
    editor.ShowAt(96, 480, 600);
    editor.Type("x");
    const std::string typed = editor.Text();
    ASSERT_TRUE(WaitFor([&] { return editor.ButtonShown(IDM_TOOLBAR_MORE) && !editor.ButtonShown(IDM_EDIT_UNDO); }));
    const auto choose = [&](int key, int times) {
        ASSERT_TRUE(editor.AwaitMenu(true));
        for (int i = 0; i < times; ++i) editor.Keys({key});
        editor.Keys({VK_RETURN});
        ASSERT_TRUE(editor.AwaitMenu(false));
    };
    editor.Keys({VK_MENU, VK_F2});
    choose(VK_UP, 1);
    EXPECT_TRUE(WaitFor([&] { return IsWindowVisible(editor.Child(IDC_AI_CHAT)) != FALSE; })) << "the last of the bar";
    editor.Click(editor.Child(IDC_TOOLBAR), editor.ButtonPlace(IDM_TOOLBAR_MORE));
    choose(VK_UP, 3);
    EXPECT_TRUE(WaitFor([&] { return !IsWindowVisible(editor.Child(IDC_OUTPUT)); }));
    // With room again there is no menu.
    editor.ShowAt(96, 1200, 600);
    EXPECT_FALSE(editor.ButtonShown(IDM_TOOLBAR_MORE));
    editor.Do(IDM_TOOLBAR_MORE);
    EXPECT_EQ(editor.Input().flags & GUI_INMENUMODE, 0u);
    EXPECT_EQ(editor.Text(), typed);
}

}  // namespace
