// The file finder and the command palette, by the keyboard alone.
#include "harness.h"

#include <commctrl.h>

#include <string>

#include "resources/ids.h"

namespace {

struct QuickDriver {
    const Editor& editor;

    HWND Window() const { return editor.Child(IDC_QUICK_OPEN); }
    HWND Field() const { return GetDlgItem(Window(), IDC_QUICK_FIELD); }
    HWND List() const { return GetDlgItem(Window(), IDC_QUICK_LIST); }
    bool IsOpen() const { return Window() != nullptr && IsWindowVisible(Window()) != FALSE; }
    int Rows() const { return static_cast<int>(editor.Send(List(), LVM_GETITEMCOUNT)); }
    std::wstring Row(int row) const { return row < Rows() ? editor.CellOf(List(), row, 0) : L"(none)"; }
    int Selected() const {
        return static_cast<int>(editor.Send(List(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
    }
    void Open(bool palette) const {
        if (palette)
            editor.Keys({VK_CONTROL, VK_SHIFT, 'P'});
        else
            editor.Keys({VK_CONTROL, 'P'});
        EXPECT_TRUE(WaitFor([&] { return IsOpen() && editor.Focus() == Field(); })) << editor.Describe();
    }
    void Type(std::wstring_view text) const {
        for (const wchar_t letter : text) PostMessageW(editor.Focus(), WM_CHAR, letter, 1);
    }
    void ExpectFirst(const std::wstring& row) const {
        EXPECT_TRUE(WaitFor([&] { return Row(0) == row; })) << Utf8(Row(0)) << " instead of " << Utf8(row);
    }
    // What was there before, rows or the text under the window, is no longer to be seen below the last row.
    void ExpectBlankBelowRows() const {
        constexpr int kStep = 3, kRowAtMost = 40;  // pixels
        RECT area = {};
        GetWindowRect(List(), &area);
        const auto ground = static_cast<COLORREF>(editor.Send(List(), LVM_GETBKCOLOR));
        const HDC screen = GetDC(nullptr);
        const auto blank = [&] {
            for (int y = area.top + Rows() * kRowAtMost; y < area.bottom - kStep; y += kStep)
                for (int x = area.left + kStep; x < area.left + 300; x += kStep)
                    if (GetPixel(screen, x, y) != ground) return false;
            return true;
        };
        EXPECT_LT(area.top + Rows() * kRowAtMost, area.bottom - 100);
        EXPECT_TRUE(WaitFor(blank));
        ReleaseDC(nullptr, screen);
    }
    void ExpectClosed() const {
        EXPECT_TRUE(WaitFor([&] { return !IsOpen() && editor.Focus() == editor.Sci(); })) << editor.Describe();
    }
};

std::string Lines(int count) {
    std::string text;
    for (int i = 1; i <= count; ++i) text += "' line " + std::to_string(i) + "\r\n";
    return text;
}

TEST(FileFinder, FindsOpensAndGoesToTheLine) {
    ProgramFolder folder;
    const std::wstring main = folder.Write(L"project\\main.bas", Lines(3));
    folder.Write(L"project\\.gitignore", "out/\n");
    folder.Write(L"project\\lib\\find_rules.kxa", Lines(40));
    folder.Write(L"project\\lib\\file_runner.bas", Lines(5));
    folder.Write(L"project\\out\\find_rules.bas", Lines(5));
    folder.Write(L"project\\program.exe", "MZ");
    {
        Editor editor(folder, OpenArgument(main));
        editor.Foreground();
        const QuickDriver quick{editor};
        EXPECT_EQ(quick.Window(), nullptr) << "made when it is first used";
        quick.Open(false);
        EXPECT_TRUE(WaitFor([&] { return quick.Rows() == 3; })) << "not the ignored one, and no program";
        EXPECT_EQ(quick.Row(0), L"main.bas") << "what is open comes first";
        quick.Type(L"fr");
        quick.ExpectFirst(L"find_rules.kxa  lib");
        EXPECT_EQ(quick.Row(1), L"file_runner.bas  lib");
        EXPECT_EQ(quick.Rows(), 2);
        editor.Keys({VK_DOWN});
        EXPECT_TRUE(WaitFor([&] { return quick.Selected() == 1; }));
        editor.Keys({VK_ESCAPE});
        quick.ExpectClosed();
        EXPECT_EQ(editor.Tabs(), 1) << "a row that is only looked at is not opened";

        const std::wstring compiler = editor.Status(kPartCompiler);
        quick.Open(false);
        quick.Type(L"rules lib:33:5");
        quick.ExpectFirst(L"find_rules.kxa  lib");
        editor.Keys({VK_RETURN});
        EXPECT_TRUE(WaitFor([&] { return editor.Tabs() == 2 && editor.Line() == 33; })) << editor.Describe();
        EXPECT_EQ(editor.Column(), 5);
        EXPECT_EQ(editor.TabLabel(1), L"find_rules.kxa");
        EXPECT_EQ(editor.Status(kPartCompiler), compiler) << "a file that is looked up is no choice of its compiler";
        quick.ExpectClosed();

        quick.Open(false);
        quick.ExpectFirst(L"main.bas");  // shown before the active one
        editor.Keys({VK_RETURN});
        EXPECT_TRUE(WaitFor([&] { return editor.ActiveTab() == 0; }));
        quick.Open(false);
        quick.Type(L"zzz");
        EXPECT_TRUE(WaitFor([&] { return quick.Rows() == 0; }));
        editor.Keys({VK_RETURN});
        editor.Keys({'Z'});
        EXPECT_TRUE(WaitFor([&] { return editor.TextOf(quick.Field()) == L"zzzz"; })) << "nothing to open";
        PostMessageW(editor.main, WM_COMMAND, IDM_FILE_NEW, 0);
        EXPECT_TRUE(WaitFor([&] { return !quick.IsOpen() && editor.Tabs() == 3; })) << "another command ends it";
        EXPECT_EQ(editor.Close(), 0u);
    }
    EXPECT_EQ(folder.Ini(L"MRU", L"Count"), L"2") << "what was looked at is no recent file";
}

TEST(CommandPalette, RunsCommandsAndTurnsIntoTheOthers) {
    ProgramFolder folder;
    const std::wstring path = folder.Write(L"project\\main.bas", Lines(30));
    Editor editor(folder, OpenArgument(path));
    editor.Foreground();
    const QuickDriver quick{editor};
    quick.Open(true);
    EXPECT_EQ(editor.TextOf(quick.Field()), L">");
    EXPECT_GT(quick.Rows(), 100);
    quick.Type(L"stop build");
    quick.ExpectFirst(L"Stop Build  Compiler  Ctrl+Break");
    quick.ExpectBlankBelowRows();
    editor.Keys({VK_RETURN});
    editor.Keys({'X'});
    EXPECT_TRUE(WaitFor([&] { return editor.TextOf(quick.Field()) == L">stop buildx"; })) << "not possible, so not run";
    editor.Keys({VK_CONTROL, 'A'});
    EXPECT_TRUE(WaitFor([&] { return editor.Send(quick.Field(), EM_GETSEL) == MAKELPARAM(0, 12); }));
    quick.Type(L">whit");
    quick.ExpectFirst(L"Whitespace  View");
    editor.Keys({VK_RETURN});
    EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETVIEWWS) != SCWS_INVISIBLE; }));
    quick.ExpectClosed();

    quick.Open(true);
    quick.ExpectFirst(L"Whitespace  View");  // what was run last
    editor.Keys({VK_BACK});
    quick.ExpectFirst(L"main.bas");
    quick.Type(L":20");
    quick.ExpectFirst(L"Go to line 20 of 31");
    editor.Keys({VK_RETURN});
    quick.ExpectClosed();
    EXPECT_EQ(editor.Line(), 20);
}

}  // namespace
