// Call tips, the declaration of a word, and peeks, over an include.
#include "harness.h"

#include "resources/ids.h"

namespace {

constexpr char kMain[] =
    "#INCLUDE \"inc\\shapes.inc\"\r\n"
    "SUB Report(text AS STRING, BYVAL count AS LONG)\r\n"
    "END SUB\r\n"
    "FUNCTION PBMAIN () AS LONG\r\n"
    "    LOCAL here AS LONG ' Area\r\n"
    "    Report \"a\", Area(1, 2)\r\n"
    "    \r\n"
    "END FUNCTION\r\n";
constexpr char kShapes[] =
    "' shapes\r\nFUNCTION Area(BYVAL wide AS LONG, BYVAL high AS LONG) AS LONG\r\n"
    "    FUNCTION = wide * high\r\nEND FUNCTION\r\n";

struct Shapes {
    ProgramFolder folder;
    std::wstring main = folder.Write(L"p\\main.bas", kMain);
    Shapes() { folder.Write(L"p\\inc\\shapes.inc", kShapes); }
};

LRESULT PlaceOf(const Editor& editor, std::string_view text) { return static_cast<LRESULT>(editor.Text().find(text)); }

// As the keyboard does; the caret's tip follows once the pane has told of its change.
void TypeKeys(const Editor& editor, std::string_view text) {
    for (const char c : text) editor.Send(editor.Sci(), WM_CHAR, static_cast<WPARAM>(c));
}

bool AwaitTip(const Editor& editor, bool shown) {
    return WaitFor([&] { return (editor.Sci(SCI_CALLTIPACTIVE) != 0) == shown; });
}

TEST(Tips, ParametersWhileACallIsTyped) {
    const Shapes shapes;
    Editor editor(shapes.folder, OpenArgument(shapes.main));
    editor.Sci(SCI_GOTOPOS, static_cast<WPARAM>(PlaceOf(editor, "\r\nEND FUNCTION")));
    TypeKeys(editor, "here = Area(");
    ASSERT_TRUE(AwaitTip(editor, true)) << "the function of the include";
    EXPECT_EQ(editor.Sci(SCI_CALLTIPPOSSTART), editor.Sci(SCI_GETCURRENTPOS));
    const LRESULT first = editor.Sci(SCI_CALLTIPPOSSTART);
    TypeKeys(editor, "1, UCASE$(");
    EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_CALLTIPPOSSTART) == editor.Sci(SCI_GETCURRENTPOS); })) << "inner";
    TypeKeys(editor, "\"),\")");
    EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_CALLTIPPOSSTART) == first; })) << "the outer call again";
    TypeKeys(editor, ")");
    EXPECT_TRUE(AwaitTip(editor, false)) << "the call is closed";
    editor.Sci(SCI_GOTOPOS, static_cast<WPARAM>(first + 1));
    editor.Do(IDM_PARAMETER_INFO);
    EXPECT_TRUE(AwaitTip(editor, true));
    editor.Send(editor.Sci(), WM_KEYDOWN, VK_ESCAPE);
    EXPECT_TRUE(AwaitTip(editor, false));
    editor.Sci(SCI_GOTOPOS, 0);
    editor.Do(IDM_PARAMETER_INFO);
    EXPECT_EQ(editor.Status(), L"There is no call at the caret");

    // The declaration of a word, by keyboard and mouse.
    const auto over = [&](LRESULT at) {
        const POINT point = {static_cast<LONG>(editor.Sci(SCI_POINTXFROMPOSITION, 0, at)) + 3,
                             static_cast<LONG>(editor.Sci(SCI_POINTYFROMPOSITION, 0, at)) + 5};
        editor.Click(editor.Sci(), point, MOUSEEVENTF_LEFTDOWN, 0);
    };
    editor.Foreground();
    over(PlaceOf(editor, "Area(1"));
    EXPECT_TRUE(AwaitTip(editor, true)) << "under the mouse";
    over(PlaceOf(editor, "' Area") + 2);
    EXPECT_TRUE(AwaitTip(editor, false)) << "the mouse has left the word, and a comment says nothing";
    editor.Sci(SCI_GOTOPOS, static_cast<WPARAM>(PlaceOf(editor, "Report \"a")));
    editor.Do(IDM_SHOW_DECLARATION);
    EXPECT_TRUE(AwaitTip(editor, true));
}

TEST(Tips, APeekShowsAndGoes) {
    const Shapes shapes;
    Editor editor(shapes.folder, OpenArgument(shapes.main));
    EXPECT_EQ(editor.Child(IDC_PEEK), nullptr) << "a start does not pay for it";
    // The mouse rests on a name before anything was asked of the symbols.
    editor.Foreground();
    const auto name = static_cast<WPARAM>(PlaceOf(editor, "Area(1"));
    editor.Click(editor.Sci(),
                 {static_cast<LONG>(editor.Sci(SCI_POINTXFROMPOSITION, 0, static_cast<LPARAM>(name))) + 3,
                  static_cast<LONG>(editor.Sci(SCI_POINTYFROMPOSITION, 0, static_cast<LPARAM>(name))) + 5},
                 MOUSEEVENTF_LEFTDOWN, 0);
    EXPECT_TRUE(AwaitTip(editor, true));
    const LRESULT caret = PlaceOf(editor, "Area(1");
    editor.Sci(SCI_GOTOPOS, static_cast<WPARAM>(caret));
    editor.Do(IDM_PEEK_DEFINITION);
    const auto text = [&] { return GetDlgItem(editor.Child(IDC_PEEK), IDC_PEEK_TEXT); };
    const auto key = [&](WPARAM virtualKey) { PostMessageW(editor.Focus(), WM_KEYDOWN, virtualKey, 0); };
    const auto shows = [&](std::size_t length, LRESULT place) {
        EXPECT_TRUE(WaitFor([&] {
            return text() != nullptr && editor.Send(text(), SCI_GETLENGTH) == static_cast<LRESULT>(length) &&
                   editor.Send(text(), SCI_GETCURRENTPOS) == place;
        })) << editor.Send(text(), SCI_GETLENGTH)
            << " " << editor.Send(text(), SCI_GETCURRENTPOS);
    };
    const auto nameInShapes = static_cast<LRESULT>(std::string_view(kShapes).find("Area"));
    shows(sizeof kShapes - 1, nameInShapes);
    EXPECT_EQ(editor.Focus(), text());
    editor.Send(text(), WM_CHAR, 'x');
    EXPECT_EQ(editor.Send(text(), SCI_GETLENGTH), static_cast<LRESULT>(sizeof kShapes - 1)) << "read-only";
    // Who calls it, from within, and back.
    editor.Do(IDM_PEEK_CALLERS);
    shows(sizeof kMain - 1, caret);
    key(VK_ESCAPE);
    ASSERT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));
    EXPECT_EQ(IsWindowVisible(editor.Child(IDC_PEEK)), FALSE);
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), caret) << "the place is not lost";
    EXPECT_EQ(editor.Tabs(), 1);
    editor.Do(IDM_PEEK_DEFINITION);
    shows(sizeof kShapes - 1, nameInShapes);
    key(VK_RETURN);
    EXPECT_TRUE(WaitFor([&] { return editor.TabLabel(editor.ActiveTab()) == L"shapes.inc" && editor.Line() == 2; }));
}

}  // namespace
