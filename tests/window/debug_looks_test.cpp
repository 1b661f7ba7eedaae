// What the debugger looks like where there is little room, at other resolutions and in the dark theme: nothing is cut,
// and what cannot be shown can be reached.
#include "debug_driver.h"

#include <commctrl.h>
#include <richedit.h>

#include <algorithm>
#include <array>
#include <utility>

#include "editor/margins.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "ui/theme_table.h"

namespace {

using namespace debug_driver;

constexpr char kSource[] =
    "FUNCTION PBMAIN () AS LONG\r\n    LOCAL i AS LONG\r\n    i = 1\r\n    IF i = 1 THEN\r\n        i = 2\r\n"
    "        i = 3\r\n    END IF\r\n    i = 4\r\nEND FUNCTION\r\n";

struct Looks : Session {
    Looks() : Session(L"looks.bas", kSource, L"kvxa64") {}

    RECT InPane(HWND child) const {
        RECT area = {};
        GetWindowRect(child, &area);
        MapWindowPoints(nullptr, pane, reinterpret_cast<POINT*>(&area), 2);
        return area;
    }
    RECT TabInPane(int index) const {
        RECT area = editor.Ask<RECT>(Tabs(), TCM_GETITEMRECT, static_cast<WPARAM>(index));
        OffsetRect(&area, InPane(Tabs()).left, 0);
        return area;
    }
    int SelectedTab() const { return static_cast<int>(editor.Send(Tabs(), TCM_GETCURSEL)); }
    HWND More() const { return GetDlgItem(pane, IDC_DEBUG_MORE); }
    bool HasFoldSign(int line) const {  // from 1
        return (editor.Sci(SCI_MARKERGET, static_cast<WPARAM>(line - 1)) >> kMarkFolded & 1) != 0;
    }
    void Fold(int line, bool folded) const {
        editor.Sci(SCI_FOLDLINE, static_cast<WPARAM>(line - 1), folded ? SC_FOLDACTION_CONTRACT : SC_FOLDACTION_EXPAND);
    }
};

struct Size {
    int dpi, width, height;
};
constexpr Size kSizes[] = {{96, 1000, 700}, {144, 1200, 860}, {96, 640, 480}};

TEST(DebugLooks, TheSelectedTabIsSeenWholeAndTheOthersAreInAMenu) {
    const Looks session;
    for (const Size& size : kSizes) {
        SCOPED_TRACE(size.width);
        session.editor.ShowAt(size.dpi, size.width, size.height);
        RECT client = {};
        GetClientRect(session.pane, &client);
        for (int tab = 0; tab < 7; ++tab) {
            session.Select(static_cast<Tab>(tab));
            const RECT area = session.TabInPane(tab);
            const bool more = IsWindowVisible(session.More()) != FALSE;
            EXPECT_EQ(more, size.width != 1000);
            EXPECT_GE(area.left, 0) << tab;
            EXPECT_LE(area.right, more ? session.InPane(session.More()).left : client.right) << tab;
        }
    }
    session.Select(kBreakpoints);
    session.editor.Foreground();
    const RECT button = session.InPane(session.More());
    session.editor.Click(session.More(), {button.right - button.left - 10, 10});
    ASSERT_TRUE(session.editor.AwaitMenu(true));
    session.editor.Keys({VK_UP});
    session.editor.Keys({VK_RETURN});
    EXPECT_TRUE(WaitFor([&] { return session.SelectedTab() == kDisassembly; })) << session.SelectedTab();
    session.editor.Click(session.Tabs(),
                         {session.TabInPane(kDisassembly).left - session.InPane(session.Tabs()).left + 9, 9});
    for (int tab = kDisassembly; tab-- > 0;) session.editor.Keys({VK_LEFT});
    EXPECT_TRUE(WaitFor([&] { return session.SelectedTab() == kBreakpoints; })) << "keys reach every view";
}

TEST(DebugLooks, ColumnsFitTheirPane) {
    const Looks session;
    ASSERT_TRUE(session.Start()) << session.editor.Describe();
    for (const Size& size : {kSizes[0], kSizes[1]}) {
        session.editor.ShowAt(size.dpi, size.width, size.height);
        for (const Tab tab : {kBreakpoints, kStack, kRegisters, kWatches, kThreads, kDisassembly}) {
            session.Select(tab);
            EXPECT_EQ(GetWindowLongW(session.List(), GWL_STYLE) & WS_HSCROLL, 0) << size.width << " view " << tab;
        }
    }
    // Drawn to another width it stays so.
    session.Select(kStack);
    const auto width = [&](int column) {
        return static_cast<int>(session.editor.Send(session.List(), LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)));
    };
    const auto header = reinterpret_cast<HWND>(session.editor.Send(session.List(), LVM_GETHEADER));
    const int first = width(0);
    session.editor.Foreground();
    session.editor.Drag(header, {first - 1, 8}, {first + 29, 8});
    ASSERT_TRUE(WaitFor([&] { return width(0) == first + 30; })) << width(0) << " was " << first;
    SetWindowPos(session.editor.main, nullptr, 0, 0, 1150, 860, SWP_NOZORDER | SWP_NOACTIVATE);
    session.Select(kWatches);
    session.Select(kStack);
    EXPECT_EQ(width(0), first + 30);
}

TEST(DebugLooks, MemoryRowsAreAsLongAsThePaneHasRoomFor) {
    const Looks session;
    ASSERT_TRUE(session.Start()) << session.editor.Describe();
    session.Select(kMemory);
    const auto rows = [&] {
        std::vector<std::wstring> lines;
        const std::wstring text = session.editor.TextOf(session.Memory());
        for (std::size_t at = 0; at < text.size(); at = text.find(L'\n', at) + 1) {
            lines.push_back(text.substr(at, text.find(L'\r', at) - at));
            if (text.find(L'\n', at) == std::wstring::npos) break;
        }
        return lines;
    };
    const auto start = [&](std::size_t row) { return std::stoull(rows()[row].substr(0, 12), nullptr, 16); };
    session.editor.ShowAt(96, 1280, 800);
    ASSERT_TRUE(WaitFor([&] { return rows().size() > 2; }));
    session.editor.Foreground();
    SetFocus(session.Memory());
    EXPECT_EQ(start(1) - start(0), 16u);
    const auto base = start(0);
    session.Key(session.Memory(), VK_END);  // the caret is on the row's last byte, and stays on it
    for (const auto& [width, bytes] : {std::pair{1000, 8u}, std::pair{640, 4u}, std::pair{1000, 8u}}) {
        session.editor.ShowAt(96, width, 700);
        EXPECT_EQ(start(0), base);
        EXPECT_EQ(start(1) - start(0), bytes) << width;
        EXPECT_EQ(rows()[0].size(), 12 + bytes * 4 + 2) << Utf8(rows()[0]);
    }
    for (const wchar_t digit : {L'5', L'A'}) session.editor.Send(session.Memory(), WM_CHAR, digit, 1);
    EXPECT_TRUE(rows()[1].ends_with(L'Z')) << Utf8(rows()[1]);
}

TEST(DebugLooks, AFoldedBreakpointShowsOnTheHeader) {
    const Looks session;
    const Editor& editor = session.editor;
    session.CaretTo(5);
    editor.Do(IDM_DEBUG_BREAKPOINT);
    editor.Foreground();
    const auto sign = [&](int line) { return WaitFor([&] { return session.HasFoldSign(line); }); };
    const auto noSign = [&](int line) { return WaitFor([&] { return !session.HasFoldSign(line); }); };
    EXPECT_FALSE(session.HasFoldSign(4));
    session.Fold(4, true);
    EXPECT_TRUE(sign(4)) << "the IF";
    session.Fold(1, true);
    EXPECT_TRUE(sign(1)) << "the procedure around it";
    EXPECT_TRUE(noSign(4));
    const RemoteBlock text(editor.process, 8);
    text.Put("\r\n\r\n", 5);
    editor.Sci(SCI_INSERTTEXT, 0, text.At());
    EXPECT_TRUE(sign(3) && noSign(1)) << "it goes with its line";
    EXPECT_EQ(editor.Sci(SCI_MARKERGET, 2) >> kMarkBreakpoint & 1, 0) << "it is no breakpoint";
    session.Select(kBreakpoints);
    EXPECT_TRUE(WaitFor([&] { return session.Cell(0, 0) == L"looks.bas:7"; })) << Utf8(session.All());
    EXPECT_EQ(session.Rows(), 1);
    session.Fold(3, false);
    EXPECT_TRUE(sign(6) && noSign(3)) << "the inner block is still folded";
    session.Fold(6, false);
    EXPECT_TRUE(noSign(6));
    session.Fold(6, true);
    EXPECT_TRUE(sign(6));
    editor.Do(IDM_DEBUG_REMOVE_BREAKPOINTS);
    EXPECT_TRUE(noSign(6));
}

TEST(DebugLooks, MessagesCanBeReadInTheDarkTheme) {
    const Looks session;
    const wchar_t* message = L"Process exited.";
    const auto colour = [&] {
        // For the control a line break is one character, as it is in this text.
        return session.editor.ColourAt(session.editor.Child(IDC_OUTPUT), session.editor.Output().rfind(message));
    };
    ASSERT_TRUE(session.Start()) << session.editor.Describe();
    session.editor.Do(IDM_DEBUG_CONTINUE);
    ASSERT_TRUE(session.editor.AwaitOutput(L"[Debug] Process exited.")) << session.editor.Describe();
    ASSERT_EQ(session.editor.Status(), L"Exited with code 0");
    EXPECT_NE(colour(), 200u) << "nothing went wrong";
    ASSERT_TRUE(session.Start()) << session.editor.Describe();
    session.editor.Do(IDM_DEBUG_STOP);
    ASSERT_TRUE(session.editor.AwaitOutput(L"[Debug] Stopped."));
    message = L"Stopped.";
    EXPECT_EQ(colour(), 200u);
    const Rgb lifted = ThemeReadableOn(0xC80000, ThemeChromePalette(0, true).paneBack);
    EXPECT_NE(lifted, 0xC80000u);
    session.editor.Do(IDM_VIEW_DARK_THEME);
    EXPECT_TRUE(WaitFor([&] { return ThemeColorRef(colour()) == lifted; })) << std::hex << colour();
    session.editor.Do(IDM_VIEW_LIGHT_THEME);
    EXPECT_TRUE(WaitFor([&] { return colour() == 200; })) << std::hex << colour();
}

}  // namespace
