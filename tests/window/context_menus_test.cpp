// The context menus of the editor, its margin, the output pane, the error list and the ASM pane, by mouse and by keys.
#include "build_driver.h"

#include "editor/margins.h"

#include <string>

namespace {

constexpr char kText[] = "SUB a\r\n  LOCAL x AS LONG\r\n  x = missing + 1\r\nEND SUB\r\n";

struct ContextSession {
    FakeFolder folder{"print main.bas(3,7): error: no 'missing'\nprint main.bas(2,9): warning: w\nexit 1\n"};
    Editor editor{folder, OpenArgument(folder.Write(L"main.bas", kText)) + L" --compiler kvxa64"};

    // Opens the menu and chooses the item with this mnemonic.
    void Choose(const std::function<void()>& open, int mnemonic) const {
        open();
        ASSERT_TRUE(editor.AwaitMenu(true)) << static_cast<char>(mnemonic);
        editor.Keys({mnemonic});
        ASSERT_TRUE(editor.AwaitMenu(false)) << static_cast<char>(mnemonic);
    }
    POINT AtPosition(LRESULT position) const {
        return {static_cast<LONG>(editor.Sci(SCI_POINTXFROMPOSITION, 0, position)) + 2,
                static_cast<LONG>(editor.Sci(SCI_POINTYFROMPOSITION, 0, position)) + 4};
    }
    bool Marked(int line, int marker) const {
        return (editor.Sci(SCI_MARKERGET, static_cast<WPARAM>(line - 1)) >> marker & 1) != 0;
    }
    bool FocusOn(int pane, int y = 30) const {
        editor.Foreground();
        editor.Click(editor.Child(pane), {40, y});
        return WaitFor([&] { return editor.Focus() == editor.Child(pane); });
    }
};

TEST(ContextMenus, OfTheEditorWorkAtThePlaceOfTheMouseOrTheCaret) {
    const ContextSession session;
    const Editor& editor = session.editor;
    Build(editor);
    editor.Foreground();
    editor.Sci(SCI_GRABFOCUS);
    const LRESULT word = static_cast<LRESULT>(std::string(kText).find("missing"));
    session.Choose([&] { editor.Click(editor.Sci(), session.AtPosition(word + 1), MOUSEEVENTF_RIGHTDOWN); }, 'B');
    EXPECT_TRUE(WaitFor([&] { return session.Marked(3, kMarkBreakpoint); })) << "the line that was clicked";
    EXPECT_EQ(editor.Line(), 3);
    session.Choose([&] { editor.Keys({VK_SHIFT, VK_F10}); }, 'A');
    EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETSELECTIONEND) == editor.Sci(SCI_GETLENGTH); }));
    // Within the selection nothing moves.
    ClipboardEmpty();
    session.Choose([&] { editor.Click(editor.Sci(), session.AtPosition(word + 1), MOUSEEVENTF_RIGHTDOWN); }, 'C');
    EXPECT_TRUE(WaitFor([&] { return ClipboardText() == Wide(kText); })) << Utf8(ClipboardText());
    const POINT line2 = {6, session.AtPosition(editor.Sci(SCI_POSITIONFROMLINE, 1)).y};
    session.Choose([&] { editor.Click(editor.Sci(), line2, MOUSEEVENTF_RIGHTDOWN); }, 'T');
    EXPECT_TRUE(WaitFor([&] { return session.Marked(2, kMarkBookmark); })) << "of the margin";
    EXPECT_FALSE(session.Marked(3, kMarkBookmark));
    session.Choose([&] { editor.Keys({VK_APPS}); }, VK_ESCAPE);
    EXPECT_EQ(editor.Text(), kText) << "no letter got into the text";
}

TEST(ContextMenus, OfOutputAndErrorListGoToTheSourceAndCopy) {
    const ContextSession session;
    const Editor& editor = session.editor;
    editor.Do(IDM_VIEW_ERROR_LIST);  // empty
    ASSERT_TRUE(session.FocusOn(IDC_ERROR_LIST));
    editor.Keys({VK_APPS});
    ASSERT_TRUE(editor.AwaitMenu(true));
    editor.Keys({VK_ESCAPE});
    ASSERT_TRUE(editor.AwaitMenu(false));
    Build(editor);
    ASSERT_TRUE(session.FocusOn(IDC_OUTPUT));
    const auto at = static_cast<LPARAM>(editor.Output().find(L"main.bas(2,9)"));
    editor.Send(editor.Child(IDC_OUTPUT), EM_SETSEL, static_cast<WPARAM>(at), at);
    session.Choose([&] { editor.Keys({VK_APPS}); }, 'G');
    EXPECT_TRUE(WaitFor([&] { return editor.Line() == 2; })) << editor.Line();

    ClipboardEmpty();
    ASSERT_TRUE(session.FocusOn(IDC_OUTPUT));
    session.Choose([&] { editor.Keys({VK_APPS}); }, 'O');
    EXPECT_TRUE(WaitFor([&] { return ClipboardText().find(L"main.bas(3,7)") != std::wstring::npos; }));

    EXPECT_EQ(editor.CellOf(editor.Child(IDC_ERROR_LIST), 1, 0), L"Warning");
    editor.Sci(SCI_GOTOPOS, 0);
    ASSERT_TRUE(session.FocusOn(IDC_ERROR_LIST));
    editor.Keys({VK_HOME});
    session.Choose([&] { editor.Keys({VK_APPS}); }, 'G');
    EXPECT_TRUE(WaitFor([&] { return editor.Line() == 3; })) << editor.Line();
    ASSERT_TRUE(session.FocusOn(IDC_ERROR_LIST, 50)) << "no double-click";
    session.Choose([&] { editor.Keys({VK_APPS}); }, 'C');
    EXPECT_TRUE(WaitFor([&] { return ClipboardText().find(L"\tw\t") != std::wstring::npos; }));

    // The text of a pane that has no source to go to is copied as well.
    editor.Do(IDM_VIEW_ASM);
    ASSERT_TRUE(session.FocusOn(IDC_ASM));
    session.Choose([&] { editor.Click(editor.Child(IDC_ASM), {40, 30}, MOUSEEVENTF_RIGHTDOWN); }, 'A');
    session.Choose([&] { editor.Keys({VK_SHIFT, VK_F10}); }, 'C');
    const std::wstring listing = editor.TextOf(editor.Child(IDC_ASM));
    EXPECT_TRUE(WaitFor([&] { return ClipboardText() == listing; })) << Utf8(ClipboardText());

    ASSERT_TRUE(session.FocusOn(IDC_OUTPUT));
    session.Choose([&] { editor.Keys({VK_APPS}); }, 'L');
    EXPECT_TRUE(WaitFor([&] { return editor.Output().empty(); })) << Utf8(editor.Output());
}

}  // namespace
