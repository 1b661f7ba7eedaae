// Panes: their titles, the bars between them, what of them comes back, the header line and the start page.
#include "harness.h"

#include "app/layout.h"

#include <commctrl.h>

#include <algorithm>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "readable.h"
#include "resources/ids.h"
#include "ui/pane_id.h"

namespace {

RECT PlaceOf(const Editor& editor, HWND child) {
    RECT rect{};
    GetWindowRect(child, &rect);
    MapWindowPoints(nullptr, editor.main, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

int HeightOf(const Editor& editor, HWND child) {
    const RECT rect = PlaceOf(editor, child);
    return static_cast<int>(rect.bottom - rect.top);
}

// The label right before the pane among its siblings, from which screen readers take the pane's name.
HWND TitleOf(const Editor& editor, int pane) { return GetWindow(editor.Child(pane), GW_HWNDPREV); }

HWND CloseButton(const Editor& editor, PaneId pane) {
    return editor.Child(IDC_PANE_CLOSE_FIRST + static_cast<int>(PaneIndex(pane)));
}

bool Shown(HWND window) { return window != nullptr && IsWindowVisible(window) != FALSE; }

constexpr struct {
    PaneId id;
    int control, command;
    const wchar_t* title;
} kTitled[] = {{PaneId::Output, IDC_OUTPUT, IDM_VIEW_OUTPUT, L"Output"},
               {PaneId::ErrorList, IDC_ERROR_LIST, IDM_VIEW_ERROR_LIST, L"Error List"},
               {PaneId::Terminal, IDC_TERMINAL, IDM_VIEW_TERMINAL, L"Terminal"},
               {PaneId::Debug, IDC_DEBUG_PANE, IDM_VIEW_DEBUG_PANE, L"Debug"},
               {PaneId::Asm, IDC_ASM, IDM_VIEW_ASM, L"ASM"},
               {PaneId::Ai, IDC_AI_CHAT, IDM_VIEW_AI, L"AI Chat"},
               {PaneId::Tree, IDC_PROJECT_TREE, IDM_VIEW_TREE, L"Project"},
               {PaneId::FilesResults, IDC_FILES_PANE, IDM_VIEW_FILES_RESULTS, L"Search Results"},
               {PaneId::Outline, IDC_OUTLINE_PANE, IDM_VIEW_OUTLINE, L"Outline"}};

// A title that is moved takes along nothing of a pane that has moved to its old place.
void ExpectTitleKeepsItsPicture(const Editor& editor, int pane, int barId) {
    const HWND bar = editor.Child(barId);
    const auto moves = [&](int key) {
        const LONG at = PlaceOf(editor, bar).left;
        editor.Keys({key});
        return WaitFor([&] { return PlaceOf(editor, bar).left != at; });
    };
    ASSERT_TRUE(WaitFor([&] { return (GetWindowLongW(editor.Child(IDC_PROJECT_TREE), GWL_STYLE) & WS_VSCROLL) != 0; }));
    editor.Foreground();
    editor.Send(editor.main, MSG_FOCUS_EDITOR);
    PictureAtRest(editor.main);
    const Picture before = PictureOf(TitleOf(editor, pane));
    editor.Keys({VK_MENU, VK_F8});
    EXPECT_TRUE(WaitFor([&] {
        if (editor.Focus() != bar) editor.Keys({VK_TAB});
        return editor.Focus() == bar;
    }));
    EXPECT_TRUE(moves(VK_HOME) && moves(VK_END) && moves(VK_ESCAPE));
    EXPECT_TRUE(WaitFor([&] { return PictureOf(TitleOf(editor, pane)).pixels == before.pixels; }));
}

}  // namespace

TEST(Panes, HaveATitleThatNamesAndClosesThem) {
    ProgramFolder folder;
    // More files than the tree has rows, so that it has a scroll bar.
    for (int i = 0; i < 60; ++i) folder.Write(L"project\\" + std::to_wstring(i) + L".bas", "");
    folder.SetIni(L"Project", L"Root", folder.File(L"project"));
    Editor editor(folder, OpenArgument(folder.Write(L"a.bas", "'\n")));
    RECT client{};
    GetClientRect(editor.main, &client);
    EXPECT_LE(HeightOf(editor, editor.Child(IDC_OUTPUT)) + HeightOf(editor, TitleOf(editor, IDC_OUTPUT)),
              client.bottom / 4)
        << "at a first start";
    editor.Do(IDM_VIEW_TREE);
    ExpectTitleKeepsItsPicture(editor, IDC_OUTPUT, IDC_SPLIT_TREE);
    for (const auto& pane : kTitled) {
        SCOPED_TRACE(Utf8(pane.title));
        if (!Shown(editor.Child(pane.control))) editor.Do(pane.command);
        ASSERT_TRUE(Shown(editor.Child(pane.control)));
        EXPECT_EQ(editor.TextOf(TitleOf(editor, pane.control)), pane.title);
        EXPECT_EQ(PlaceOf(editor, TitleOf(editor, pane.control)).bottom,
                  PlaceOf(editor, editor.Child(pane.control)).top);
        EXPECT_EQ(editor.TextOf(CloseButton(editor, pane.id)), std::wstring(L"Close ") + pane.title);
    }
    for (const auto& pane : kTitled) {
        // These went with the output.
        if (pane.id == PaneId::ErrorList || pane.id == PaneId::Terminal) continue;
        SCOPED_TRACE(Utf8(pane.title));
        editor.Foreground();
        editor.Send(editor.main, MSG_FOCUS_EDITOR);
        editor.Click(CloseButton(editor, pane.id), {5, 5});
        EXPECT_TRUE(WaitFor([&] { return !Shown(editor.Child(pane.control)); }));
        EXPECT_TRUE(WaitFor([&] { return !Shown(CloseButton(editor, pane.id)); }));
        EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); })) << "and the keyboard goes back";
    }
    editor.Do(IDM_VIEW_TREE);
    editor.Keys({VK_F6});
    ASSERT_TRUE(WaitFor([&] { return editor.Focus() == editor.Child(IDC_PROJECT_TREE); }));
    editor.Keys({VK_SHIFT, VK_ESCAPE});
    EXPECT_TRUE(WaitFor([&] { return !Shown(editor.Child(IDC_PROJECT_TREE)); }));
    EXPECT_EQ(editor.Close(), 0u);
}

// Escape takes all keys back; Enter keeps them, over a restart too, as it does what is shown.
TEST(Panes, BarsMoveByKeysAndAllOfItComesBack) {
    ProgramFolder folder;
    folder.KeepNoSession();
    const std::wstring file = OpenArgument(folder.Write(L"a.bas", "'\n"));
    int listHeight = 0;
    {
        Editor editor(folder, file);
        editor.Do(IDM_VIEW_ERROR_LIST);
        editor.Do(IDM_VIEW_ASM);
        const auto asmWidth = [&] {
            const RECT pane = PlaceOf(editor, editor.Child(IDC_ASM));
            return pane.right - pane.left;
        };
        EXPECT_GT(asmWidth(), kFirstSideWidth) << "an instruction is not cut";
        editor.Foreground();
        const auto top = [&](int bar) { return static_cast<int>(PlaceOf(editor, editor.Child(bar)).top); };
        const auto left = [&](int bar) { return static_cast<int>(PlaceOf(editor, editor.Child(bar)).left); };
        const int before = top(IDC_SPLIT_OUTPUT);
        editor.Keys({VK_MENU, VK_F8});
        ASSERT_TRUE(WaitFor([&] { return editor.Focus() == editor.Child(IDC_SPLIT_OUTPUT); }));
        editor.Keys({VK_UP});
        editor.Keys({VK_CONTROL, VK_UP});
        EXPECT_TRUE(WaitFor([&] { return top(IDC_SPLIT_OUTPUT) == before - 9; })) << top(IDC_SPLIT_OUTPUT) << before;
        editor.Keys({VK_HOME});
        EXPECT_TRUE(WaitFor([&] { return HeightOf(editor, editor.Sci()) <= 50; }));
        editor.Keys({VK_ESCAPE});
        EXPECT_TRUE(WaitFor([&] { return top(IDC_SPLIT_OUTPUT) == before && editor.Focus() == editor.Sci(); }));

        editor.Keys({VK_MENU, VK_F8});
        editor.Keys({VK_TAB});
        ASSERT_TRUE(WaitFor([&] { return editor.Focus() == editor.Child(IDC_SPLIT_ASM); }));
        const int side = left(IDC_SPLIT_ASM);
        editor.Keys({VK_LEFT});
        EXPECT_TRUE(WaitFor([&] { return left(IDC_SPLIT_ASM) == side - 8; }));
        editor.Keys({VK_TAB});
        ASSERT_TRUE(WaitFor([&] { return editor.Focus() == editor.Child(IDC_SPLIT_ERROR_LIST); }));
        const int list = top(IDC_SPLIT_ERROR_LIST);
        editor.Keys({VK_DOWN});
        EXPECT_TRUE(WaitFor([&] { return top(IDC_SPLIT_ERROR_LIST) == list + 8; }));
        editor.Keys({VK_RETURN});
        EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));
        listHeight = HeightOf(editor, editor.Child(IDC_ERROR_LIST));

        editor.Keys({VK_MENU, VK_F8});
        editor.Keys({VK_END});
        editor.Keys({VK_RETURN});
        EXPECT_TRUE(WaitFor([&] { return top(IDC_SPLIT_OUTPUT) > before; }));
        const HWND bar = editor.Child(IDC_SPLIT_OUTPUT);
        editor.Click(bar, {40, 1}, MOUSEEVENTF_LEFTDOWN, 2);
        EXPECT_TRUE(WaitFor([&] { return top(IDC_SPLIT_OUTPUT) == before; })) << "a double-click puts it back";
        const LONG chosen = asmWidth();
        editor.Do(IDM_VIEW_ASM);
        editor.Do(IDM_VIEW_ASM);
        EXPECT_EQ(asmWidth(), chosen);
        EXPECT_EQ(editor.Close(), 0u);
    }
    {
        Editor editor(folder, file);
        EXPECT_TRUE(Shown(editor.Child(IDC_ERROR_LIST)) && Shown(editor.Child(IDC_ASM)));
        EXPECT_EQ(HeightOf(editor, editor.Child(IDC_ERROR_LIST)), listHeight);
        editor.Do(IDM_VIEW_OUTPUT);
        editor.Do(IDM_VIEW_ASM);
        editor.Do(IDM_VIEW_FILES_RESULTS);
        EXPECT_EQ(editor.Close(), 0u);
    }
    Editor editor(folder, file);
    EXPECT_FALSE(Shown(editor.Child(IDC_OUTPUT)) || Shown(editor.Child(IDC_ASM)));
    EXPECT_TRUE(Shown(editor.Child(IDC_FILES_PANE)));
}

// The header takes a line only while its own line is above what is visible, and no text moves for it.
TEST(Panes, TheHeaderLineTakesNoRoomWhileItSaysNothingNew) {
    ProgramFolder folder;
    std::string text = "' one\r\nSUB First\r\n";
    for (int i = 0; i < 300; ++i) text += "  x = " + std::to_string(i) + "\r\n";
    Editor editor(folder, OpenArgument(folder.Write(L"a.bas", text)) + OpenArgument(folder.Write(L"b.bas", "'\n")));
    const HWND header = editor.Child(IDC_STICKY_HEADER);
    EXPECT_FALSE(Shown(header)) << "no heading";
    editor.Do(IDM_PREVIOUS_TAB);
    editor.Sci(SCI_GOTOLINE, 5);
    editor.Send(editor.main, WM_NULL);
    EXPECT_FALSE(Shown(header)) << "its line is visible";
    // Where a line stands on the screen.
    const auto screenY = [&](int line) {
        const LRESULT at = editor.Sci(SCI_POSITIONFROMLINE, static_cast<WPARAM>(line));
        return editor.Sci(SCI_POINTYFROMPOSITION, 0, at) + PlaceOf(editor, editor.Sci()).top;
    };
    editor.Sci(SCI_GOTOLINE, 12);
    const LRESULT pitch = screenY(13) - screenY(12), before = screenY(12);
    editor.Sci(SCI_LINESCROLL, 0, 4);
    EXPECT_TRUE(WaitFor([&] { return Shown(header); }));
    EXPECT_EQ(editor.TextOf(header), L"SUB First");
    EXPECT_EQ(screenY(12), before - 4 * pitch) << "scrolled by four lines, and by nothing else";
    const LRESULT top = editor.Sci(SCI_GETFIRSTVISIBLELINE);
    editor.Do(IDM_NEXT_TAB);
    EXPECT_FALSE(Shown(header));
    editor.Do(IDM_PREVIOUS_TAB);
    EXPECT_TRUE(Shown(header));
    EXPECT_EQ(editor.Sci(SCI_GETFIRSTVISIBLELINE), top) << "another tab and back";
    editor.Sci(SCI_LINESCROLL, 0, -4);
    EXPECT_TRUE(WaitFor([&] { return !Shown(header); }));
    EXPECT_EQ(screenY(12), before);
}

TEST(StartPage, OffersWhatCanBeOpenedUntilSomethingIs) {
    ProgramFolder folder;
    folder.KeepNoSession();
    const std::wstring one = folder.Write(L"one.bas", "1"), two = folder.Write(L"two.bas", "2");
    folder.Write(L"samples\\shown.bas", "'sample");
    {
        Editor editor(folder, OpenArgument(one) + OpenArgument(two));
        EXPECT_EQ(editor.Child(IDC_START_PAGE), nullptr) << "a file is open";
        EXPECT_EQ(editor.Close(), 0u);
    }
    Editor editor(folder);
    const auto list = [&] { return GetDlgItem(editor.Child(IDC_START_PAGE), IDC_START_LIST); };
    ASSERT_TRUE(WaitFor([&] { return Shown(list()); }));
    EXPECT_EQ(editor.Focus(), editor.Sci()) << "typing goes into the empty document";
    EXPECT_EQ(editor.CellOf(list(), 0, 1), L"two.bas");
    EXPECT_EQ(editor.CellOf(list(), 1, 0), L"2");
    EXPECT_EQ(editor.CellOf(list(), 2, 1), L"shown.bas");
    editor.Foreground();
    editor.Keys({'A'});
    EXPECT_TRUE(WaitFor([&] { return editor.Child(IDC_START_PAGE) == nullptr; })) << "and takes the whole place";
    EXPECT_EQ(editor.Text().size(), 1U);
    editor.Sci(SCI_UNDO);
    editor.Do(IDM_FILE_CLOSE_ALL);
    ASSERT_TRUE(WaitFor([&] { return Shown(list()) && editor.Focus() == list(); }))
        << "without a document it has the keys";
    editor.Keys({'2'});
    EXPECT_TRUE(WaitFor([&] { return editor.Tabs() == 1 && editor.Text() == "1"; }));
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci() && editor.Child(IDC_START_PAGE) == nullptr; }));
    editor.Do(IDM_FILE_CLOSE_ALL);
    ASSERT_TRUE(WaitFor([&] { return editor.Focus() == list(); }));
    editor.Keys({VK_END});
    editor.Keys({VK_RETURN});
    EXPECT_TRUE(WaitFor([&] { return editor.Tabs() == 1 && editor.Text() == "'sample"; }));
    editor.Do(IDM_FILE_CLOSE_ALL);
    ASSERT_TRUE(WaitFor([&] { return editor.Focus() == list(); }));
    editor.Keys({VK_TAB});  // from the list to the first button
    editor.Keys({VK_RETURN});
    EXPECT_TRUE(WaitFor([&] { return editor.Tabs() == 1 && editor.TabLabel(0).starts_with(L"Untitled"); }));
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));
}

// Lets the thread of a window run for a short time and then stand still for longer than a frame, so that whatever takes
// the thread some milliseconds is slow on any machine.
class SlowedThread {
public:
    explicit SlowedThread(HWND window)
        : thread_(OpenThread(THREAD_SUSPEND_RESUME, FALSE, GetWindowThreadProcessId(window, nullptr))),
          slows_([this](const std::stop_token& stop) {
              while (!stop.stop_requested()) {
                  SuspendThread(thread_);
                  Sleep(20);
                  ResumeThread(thread_);
                  Sleep(2);
              }
          }) {}
    ~SlowedThread() {
        slows_.request_stop();
        slows_.join();
        CloseHandle(thread_);
    }
    SlowedThread(const SlowedThread&) = delete;
    SlowedThread& operator=(const SlowedThread&) = delete;

private:
    HANDLE thread_;
    std::jthread slows_;
};

// While the steps of a drag are slow, the list in a pane is not told its new sizes.
TEST(Panes, FitAfterASlowDragAsAfterASingleStep) {
    ProgramFolder folder;
    folder.SetIni(L"Editor", L"ShowErrorList", L"1");
    Editor editor(folder, OpenArgument(folder.Write(L"a.bas", "'\n")));
    const HWND list = editor.Child(IDC_ERROR_LIST);
    const HWND header = GetWindow(list, GW_CHILD);
    const auto widths = [&] {
        std::vector<LRESULT> all{HeightOf(editor, list)};
        RECT place{}, client{};
        GetWindowRect(header, &place);
        GetClientRect(list, &client);
        all.insert(all.end(), {place.right - place.left, client.right});
        for (WPARAM column = 0; column < 4; ++column) all.push_back(editor.Send(list, LVM_GETCOLUMNWIDTH, column));
        return all;
    };
    const auto sizeTo = [&](int width) {
        SetWindowPos(editor.main, nullptr, 0, 0, width, 700, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    };
    const auto fits = [&] {
        const std::vector<LRESULT> now = widths();
        return now[1] == now[2];
    };
    // Ends at the width in the middle of the drag, when a size is kept back. The widths before are other ones.
    const auto dragSlowly = [&](int toWidth) {
        int width = toWidth + 400;
        bool late = false;
        {
            const SlowedThread slowed(editor.main);
            late = WaitFor([&] {
                for (int step = 0; step < 4; ++step) sizeTo(width -= 2);
                return !fits() || width < toWidth + 30;
            });
        }
        sizeTo(toWidth);
        return late && !fits();
    };
    sizeTo(900);
    ASSERT_TRUE(WaitFor(fits));
    const std::vector<LRESULT> wanted = widths();
    sizeTo(1100);
    ASSERT_TRUE(WaitFor([&] { return fits() && widths() != wanted; }));

    ASSERT_TRUE(dragSlowly(900)) << "no size was kept back";
    EXPECT_TRUE(WaitFor([&] { return widths() == wanted; }))
        << ::testing::PrintToString(widths()) << " instead of " << ::testing::PrintToString(wanted);

    ASSERT_TRUE(dragSlowly(1000));
    editor.Do(IDM_VIEW_ERROR_LIST);
    sizeTo(900);
    editor.Do(IDM_VIEW_ERROR_LIST);
    EXPECT_EQ(widths(), wanted) << "a pane that is shown is told at once";
    EXPECT_EQ(editor.Close(), 0u);
}
