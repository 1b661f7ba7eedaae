// The completion list and snippets by real keys: a name, a member of a type in an included file, a snippet with linked
// fields, and the places where nothing comes up.
#include "harness.h"

#include "resources/ids.h"

namespace {

constexpr char kMain[] =
    "#INCLUDE \"spot.inc\"\r\n"
    "SUB Draw()\r\n"
    "    LOCAL position AS Spot\r\n"
    "\r\n"
    "END SUB\r\n";
constexpr char kInclude[] = "TYPE Spot\r\n    px AS LONG\r\n    py AS LONG\r\nEND TYPE\r\n";

struct Typist {
    const Editor& editor;

    void Press(std::string_view capitals) const {
        for (const char c : capitals) editor.Keys({c});
    }
    bool IsOpen() const {
        const HWND list = FindWindowW(L"KVXEWordList", nullptr);
        return list != nullptr && IsWindowVisible(list) != FALSE;
    }
    void AwaitList(const char* when) const {
        EXPECT_TRUE(WaitFor([&] { return IsOpen(); })) << when << "\n" << editor.Text();
    }
    // The text of the lines from `line` (from 1) on.
    void AwaitLines(int line, const std::string& text, const char* when) const {
        const auto lines = [&] {
            const auto start =
                static_cast<std::size_t>(editor.Sci(SCI_POSITIONFROMLINE, static_cast<WPARAM>(line - 1)));
            return editor.Text().substr(start, text.size());
        };
        EXPECT_TRUE(WaitFor([&] { return lines() == text; })) << when << "\n" << editor.Text();
    }
};

TEST(Completion, NamesMembersAndSnippets) {
    const ProgramFolder folder;
    const std::wstring main = folder.Write(L"main.bas", kMain);
    folder.Write(L"spot.inc", kInclude);
    folder.Write(L"Snippets.txt", "[hi]\r\nPRINT \"$0\"\r\n");
    Editor editor(folder, OpenArgument(main));
    editor.Foreground();
    const Typist typist{editor};
    editor.Sci(SCI_GOTOLINE, 3);
    editor.Keys({VK_TAB});
    typist.Press("PO");
    typist.AwaitList("two letters");
    editor.Keys({VK_TAB});
    typist.AwaitLines(4, "    position\r\n", "Tab takes the local variable");
    editor.Keys({VK_OEM_PERIOD});
    typist.AwaitList("the members, once the included file has been read");
    editor.Keys({VK_DOWN});
    editor.Keys({VK_RETURN});
    typist.AwaitLines(4, "    position.py\r\nEND SUB", "Enter takes the second member and breaks no line");

    editor.Keys({VK_RETURN});
    typist.Press("FOR");
    typist.AwaitList("a keyword and a snippet");
    editor.Keys({VK_TAB});
    typist.AwaitLines(5, "    FOR i = 1 TO 10\r\n        \r\n    NEXT i\r\n", "Tab expands the snippet");
    editor.Do(IDM_EDIT_UNDO);
    typist.AwaitLines(5, "    for\r\nEND SUB", "one step of undo");
    editor.Do(IDM_EDIT_REDO);
    editor.Do(IDM_EDIT_UNDO);
    editor.Keys({VK_CONTROL, VK_SPACE});
    typist.AwaitList("the command");
    editor.Keys({VK_TAB});
    typist.AwaitLines(5, "    FOR i = 1 TO 10\r\n", "again");
    typist.Press("ID");
    typist.AwaitLines(5, "    FOR id = 1 TO 10\r\n        \r\n    NEXT id\r\n", "linked fields");
    editor.Keys({VK_TAB});
    typist.Press("LOG");
    typist.AwaitList("LOG, which is written whole, and LOG10");
    editor.Keys({VK_TAB});  // to the next field
    editor.Keys({VK_SHIFT, VK_TAB});
    typist.Press("7");
    editor.Keys({VK_RETURN});
    typist.Press("HI");
    typist.AwaitList("the user's snippet");
    editor.Keys({VK_TAB});
    typist.AwaitLines(5, "    FOR id = 7 TO 10\r\n        PRINT \"\"\r\n    NEXT id\r\n", "Enter goes to the body");
    typist.Press("FOR");
    typist.AwaitLines(6, "        PRINT \"for\"\r\n", "in a string");
    EXPECT_FALSE(typist.IsOpen());
    editor.Keys({VK_END});
    editor.Keys({VK_CONTROL, VK_SPACE});
    EXPECT_TRUE(WaitFor([&] { return editor.Status() == L"Nothing to complete here"; })) << Utf8(editor.Status());
    typist.AwaitLines(6, "        PRINT \"for\"\r\n", "no blank is typed");
    // A keyword that is written whole leaves Enter to the line.
    editor.Keys({VK_RETURN});
    typist.Press("END");
    typist.AwaitList("END, and longer ones");
    editor.Keys({VK_RETURN});
    typist.AwaitLines(7, "        END\r\n        \r\n    NEXT", "a new line");
    typist.Press("SELE");
    typist.AwaitList("SELECT");
    editor.Keys({VK_ESCAPE});
    EXPECT_TRUE(WaitFor([&] { return !typist.IsOpen(); }));
    typist.AwaitLines(8, "        sele\r\n    NEXT", "Escape changes nothing");
    // The end of a block goes back to its beginning as soon as it is whole.
    editor.Sci(SCI_DOCUMENTEND);
    typist.Press("\rSUB OTHER");
    editor.Keys({VK_ESCAPE});
    typist.Press("\rEND SU");
    EXPECT_TRUE(WaitFor([&] { return editor.Text().ends_with("SUB other\r\n    END su"); })) << editor.Text();
    typist.Press("B");
    EXPECT_TRUE(WaitFor([&] { return editor.Text().ends_with("SUB other\r\nEND sub"); })) << editor.Text();
}

}  // namespace
