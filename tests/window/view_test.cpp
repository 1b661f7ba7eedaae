// What is on the screen and how it answers: panes and their places, splitters, tabs, themes, header line, keys, mouse.
#include "drag_back.h"
#include "harness.h"

#include <SciLexer.h>
#include <commctrl.h>

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

#include "editor/margins.h"
#include "resources/ids.h"

namespace {

RECT RectOf(const Editor& editor, HWND child) {
    RECT rect{};
    GetWindowRect(child, &rect);
    MapWindowPoints(nullptr, editor.main, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

int Width(const Editor& editor, HWND child) {
    const RECT rect = RectOf(editor, child);
    return rect.right - rect.left;
}
int Height(const Editor& editor, HWND child) {
    const RECT rect = RectOf(editor, child);
    return rect.bottom - rect.top;
}

std::string Show(const RECT& r) {
    return "(" + std::to_string(r.left) + "," + std::to_string(r.top) + ")-(" + std::to_string(r.right) + "," +
           std::to_string(r.bottom) + ")";
}

// No visible child covers another or leaves the client area, and the editor stays usable.
void ExpectTidy(const Editor& editor) {
    editor.Send(editor.main, WM_NULL);  // the windows are moved one after the other
    RECT client{}, common{};
    GetClientRect(editor.main, &client);
    std::vector<std::pair<int, RECT>> seen;
    for (HWND child = GetWindow(editor.main, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        // The grips of the bars lie over what is beside them, and hide nothing.
        if (!IsWindowVisible(child) || (GetWindowLongW(child, GWL_EXSTYLE) & WS_EX_TRANSPARENT) != 0) continue;
        const RECT rect = RectOf(editor, child);
        const int id = GetDlgCtrlID(child);
        EXPECT_TRUE(rect.left >= 0 && rect.top >= 0 && rect.right <= client.right && rect.bottom <= client.bottom)
            << "child " << id << " " << Show(rect) << " leaves " << Show(client);
        for (const auto& [otherId, other] : seen)
            EXPECT_FALSE(IntersectRect(&common, &rect, &other))
                << "child " << id << " " << Show(rect) << " covers " << otherId << " " << Show(other);
        seen.emplace_back(id, rect);
    }
    EXPECT_GE(Width(editor, editor.Sci()), 100) << "the editor is too narrow";
    EXPECT_GE(Height(editor, editor.Sci()), 30) << "the editor is too low";
}

void Resize(const Editor& editor, int width, int height) {
    ShowWindow(editor.main, SW_RESTORE);
    SetWindowPos(editor.main, nullptr, 0, 0, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    EXPECT_TRUE(WaitFor([&] {
        RECT rect{};
        GetWindowRect(editor.main, &rect);
        return rect.right - rect.left == width && rect.bottom - rect.top == height;
    }));
    editor.Send(editor.main, WM_NULL);
}

}  // namespace

TEST(View, PanesNeverOverlap) {
    ProgramFolder folder;
    for (const wchar_t* key : {L"ShowTerminal", L"ShowErrorList"}) folder.SetIni(L"Editor", key, L"1");
    folder.SetIni(L"Project", L"ShowProjectTree", L"1");
    folder.SetIni(L"Editor", L"AutoSaveEnabled", L"0");
    Editor editor(folder);
    struct Step {
        const char* name;
        std::initializer_list<int> commands;
    };
    // Each step adds to or takes from the one before.
    const Step steps[] = {
        {"tree, terminal, error list", {}},
        {"ASM pane too", {IDM_VIEW_ASM}},
        {"AI side bar too", {IDM_VIEW_AI}},
        {"no tool bar, no status bar", {IDM_VIEW_TOOLBAR, IDM_VIEW_STATUS_BAR}},
        {"AI without ASM, no output", {IDM_VIEW_ASM, IDM_VIEW_OUTPUT}},
        {"bars only", {IDM_VIEW_AI, IDM_VIEW_TOOLBAR, IDM_VIEW_STATUS_BAR}},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.name);
        for (int command : step.commands) editor.Do(command);
        for (const SIZE size : {SIZE{1000, 700}, SIZE{640, 400}}) {
            SCOPED_TRACE(size.cx);
            Resize(editor, size.cx, size.cy);
            ExpectTidy(editor);
        }
        ShowWindow(editor.main, SW_MAXIMIZE);
        ASSERT_TRUE(WaitFor([&] { return IsZoomed(editor.main) != 0; }));
        editor.Send(editor.main, WM_NULL);
        SCOPED_TRACE("maximised");
        ExpectTidy(editor);
    }
    EXPECT_EQ(editor.Close(), 0u);
}

// Work in a large window leaves the small one as it was, also after a restart.
TEST(View, TheWindowComesBackAndThePanesKeepTheirShare) {
    ProgramFolder folder;
    RECT before{};
    int output = 0;
    {
        Editor editor(folder);
        SetWindowPos(editor.main, nullptr, 30, 20, 1000, 700, SWP_NOZORDER | SWP_NOACTIVATE);
        editor.Send(editor.main, WM_NULL);
        GetWindowRect(editor.main, &before);
        output = Height(editor, editor.Child(IDC_OUTPUT));
        ShowWindow(editor.main, SW_MAXIMIZE);
        ASSERT_TRUE(WaitFor([&] { return IsZoomed(editor.main) != 0; }));
        EXPECT_EQ(editor.Close(), 0u);
    }
    Editor editor(folder);
    EXPECT_TRUE(IsZoomed(editor.main));
    EXPECT_GT(Height(editor, editor.Child(IDC_OUTPUT)), output);
    ShowWindow(editor.main, SW_RESTORE);
    ASSERT_TRUE(WaitFor([&] { return IsZoomed(editor.main) == 0; }));
    editor.Send(editor.main, WM_NULL);
    RECT now{};
    GetWindowRect(editor.main, &now);
    EXPECT_TRUE(EqualRect(&now, &before)) << Show(now) << " was " << Show(before);
    EXPECT_NEAR(Height(editor, editor.Child(IDC_OUTPUT)), output, 2);
    // On a finer screen the margin of the line numbers grows with the rest.
    const LRESULT margin = editor.Sci(SCI_GETMARGINWIDTHN, 0);
    editor.ShowAt(192, 1000, 700);
    EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETMARGINWIDTHN, 0) >= 2 * margin - 2; }));
    EXPECT_EQ(editor.Close(), 0u);
}

// No light bar, box or header in the dark theme, and none of the dark ones in the light theme.
TEST(View, TheDarkThemeReachesMenusDialogsAndHeaders) {
    ProgramFolder folder;
    folder.SetIni(L"Editor", L"ShowErrorList", L"1");
    folder.SetIni(L"Editor", L"Theme", L"1");
    folder.SetIni(L"Project", L"ShowProjectTree", L"1");
    Editor editor(folder, OpenArgument(folder.Write(L"a.bas", "")));  // whose name goes into the caption
    const auto brightness = [](HWND window, int x, int y) {  // of the screen, at a place in the window; 0 to 255
        RECT rect{};
        GetWindowRect(window, &rect);
        const HDC screen = GetDC(nullptr);
        const COLORREF colour = GetPixel(screen, rect.left + x, rect.top + y);
        ReleaseDC(nullptr, screen);
        return (GetRValue(colour) + GetGValue(colour) + GetBValue(colour)) / 3;
    };
    const int caption = GetSystemMetrics(SM_CYSIZEFRAME) + GetSystemMetrics(SM_CYCAPTION);
    for (const bool dark : {true, false}) {
        SCOPED_TRACE(dark ? "dark" : "light");
        editor.Do(dark ? IDM_VIEW_DARK_THEME : IDM_VIEW_LIGHT_THEME);
        editor.Foreground();
        const auto fits = [&](HWND window, int x, int y) {
            return WaitFor([&] { return (brightness(window, x, y) < 90) == dark; });
        };
        const HWND header = reinterpret_cast<HWND>(editor.Send(editor.Child(IDC_ERROR_LIST), LVM_GETHEADER));
        EXPECT_TRUE(fits(editor.main, 600, caption + 12)) << "menu bar, after its items";
        EXPECT_TRUE(fits(editor.main, 12, caption + 3)) << "menu bar, first item";
        EXPECT_TRUE(fits(header, Width(editor, header) - 4, 5)) << "after the last column";
        EXPECT_TRUE(fits(header, 70, 4)) << "first column";
        // A system theme may fill the tree in a colour of its own.
        const HWND tree = editor.Child(IDC_PROJECT_TREE), list = editor.Child(IDC_ERROR_LIST);
        EXPECT_TRUE(fits(tree, 4, 60) && fits(list, 100, 40));
        EXPECT_TRUE(WaitFor([&] { return brightness(tree, 4, 60) == brightness(list, 100, 40); })) << "tree's ground";
        for (const auto& [command, title] : {std::pair{IDM_EDIT_GOTO, L"Go To Line"},
                                             {IDM_DEBUG_EXCEPTIONS, L"Exceptions"},
                                             {IDM_DEBUG_PROGRAM, L"Program Arguments"},
                                             {IDM_HELP_ABOUT, kProgramTitle}}) {
            editor.Post(command);
            const Dialog dialog = editor.AwaitDialog(title);
            EXPECT_TRUE(fits(dialog.window, 12, caption + 6)) << Utf8(title);
            if (command == IDM_DEBUG_EXCEPTIONS) {
                // It can be seen, and is not the white one of the light theme.
                const HWND field = GetDlgItem(dialog.window, IDC_EXCEPTIONS_CODE);
                EXPECT_TRUE(WaitFor([&] { return brightness(field, 0, 5) < 200; })) << "frame of a field";
                EXPECT_TRUE(fits(GetDlgItem(dialog.window, IDC_EXCEPTIONS_PASS), 6, 10)) << "box of a check box";
            }
            editor.Press(dialog, command == IDM_HELP_ABOUT ? IDOK : IDCANCEL);
        }
    }
}

// The menu's newer commands, by the keys that people expect.
TEST(View, BookmarksRecentFilesAndPanesAreWithinReach) {
    ProgramFolder folder(kCompilers);
    folder.KeepNoSession();
    const std::wstring one = folder.Write(L"one.bas", "1\r\n2\r\n3\r\n4\r\n"), two = folder.Write(L"two.bas", "");
    Editor editor(folder, OpenArgument(two) + OpenArgument(one));
    editor.Foreground();
    for (const int line : {1, 3}) {
        editor.Sci(SCI_GOTOLINE, static_cast<WPARAM>(line));
        editor.Keys({VK_CONTROL, VK_F2});
        EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_MARKERGET, static_cast<WPARAM>(line)) != 0; })) << line;
    }
    for (const auto& [keys, line] : {std::pair{std::initializer_list<int>{VK_F2}, 2},
                                     {std::initializer_list<int>{VK_F2}, 4},
                                     {std::initializer_list<int>{VK_SHIFT, VK_F2}, 2}}) {
        editor.Keys(keys);
        EXPECT_TRUE(WaitFor([&, line = line] { return editor.Line() == line; })) << editor.Line();
    }
    editor.Do(IDM_BOOKMARKS_CLEAR);
    EXPECT_EQ(editor.Sci(SCI_MARKERNEXT, 0, 1 << kMarkBookmark), -1);
    for (const auto& [keys, pane] : {std::pair{std::initializer_list<int>{VK_CONTROL, VK_SHIFT, 'E'}, IDC_PROJECT_TREE},
                                     {std::initializer_list<int>{VK_CONTROL, VK_SHIFT, 'M'}, IDC_ERROR_LIST}}) {
        editor.Keys(keys);
        EXPECT_TRUE(WaitFor([&, pane = pane] { return IsWindowVisible(editor.Child(pane)) != FALSE; })) << pane;
    }
    // The terminal line is seen only with the output, and opens for typing.
    editor.Do(IDM_VIEW_OUTPUT);
    editor.Do(IDM_VIEW_TERMINAL);
    EXPECT_TRUE(IsWindowVisible(editor.Child(IDC_TERMINAL)));
    EXPECT_EQ(editor.Focus(), editor.Child(IDC_TERMINAL));
    editor.Foreground();
    // After the last pane the bars and the tabs, then the editor.
    for (const int pane : {IDC_PROJECT_TREE, IDC_STATUS_BAR, IDC_TOOLBAR, IDC_TABS, 0, IDC_OUTPUT, IDC_ERROR_LIST}) {
        const HWND wanted = pane == 0 ? editor.Sci() : editor.Child(pane);
        editor.Keys({VK_F6});
        EXPECT_TRUE(WaitFor([&] { return editor.Focus() == wanted; })) << pane;
    }
    editor.Keys({VK_SHIFT, VK_F6});
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Child(IDC_OUTPUT); }));
    editor.Do(IDM_VIEW_FILES_RESULTS);  // beside the output
    editor.Keys({VK_F6});
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Child(IDC_ERROR_LIST); })) << "the next one in sight";
    editor.Keys({VK_ESCAPE});
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));

    editor.Do(IDM_RECENT_FILE_FIRST + 1);
    EXPECT_EQ(editor.TabLabel(editor.ActiveTab()), L"two.bas");
    editor.Do(IDM_FILE_CLOSE_ALL);
    DeleteFileW(one.c_str());
    editor.Post(IDM_RECENT_FILE_FIRST);  // opening what was open has changed nothing in the list
    editor.Answer(kProgramTitle, L"", IDYES);
    EXPECT_TRUE(WaitFor([&] { return folder.Ini(L"MRU", L"Count") == L"1"; }));
    editor.Do(IDM_NEXT_COMPILER);
    EXPECT_EQ(folder.Ini(L"Editor", L"ActiveCompiler"), L"4");
    // What is shown of a compiler is looked up when the window becomes active.
    DeleteFileW(folder.File(L"KVXC64\\KVXC64.exe").c_str());
    editor.Send(editor.main, WM_ACTIVATE, WA_ACTIVE);
    EXPECT_TRUE(WaitFor([&] { return editor.Status(kPartCompiler) == L"KVXC64 (not found)"; }));
}

TEST(View, SplittersFollowTheMouseAndKeepTheirShare) {
    ProgramFolder folder;
    folder.SetIni(L"Project", L"ShowProjectTree", L"1");
    Editor editor(folder, OpenArgument(folder.Write(L"a.bas", "")));  // so that no start page takes a part
    editor.Do(IDM_VIEW_ASM);
    Resize(editor, 1100, 760);
    editor.Foreground();
    const HWND output = editor.Child(IDC_OUTPUT), assembly = editor.Child(IDC_ASM),
               tree = editor.Child(IDC_PROJECT_TREE);
    using Sizes = std::array<int, 4>;  // height of the output, widths of the others
    const auto sizes = [&]() -> Sizes {
        return {Height(editor, output), Width(editor, assembly), Width(editor, tree),
                Width(editor, editor.Child(IDC_DEBUG_PANE))};
    };
    struct Case {
        const char* name;
        int bar;
        POINT by;
        Sizes change;
        int beside = 0;  // pixels from the middle of the bar at which the mouse takes it
        void (*drag)(const Editor&, HWND, POINT, POINT) = nullptr;  // null: until the button goes up
    };
    const Case cases[] = {
        {"output up", IDC_SPLIT_OUTPUT, {0, -60}, {60, 0, 0, 0}},
        {"output down", IDC_SPLIT_OUTPUT, {0, 40}, {-40, 0, 0, 0}},
        {"assembly to the left", IDC_SPLIT_ASM, {-50, 0}, {0, 50, 0, 0}},
        {"tree to the left", IDC_SPLIT_TREE, {-30, 0}, {0, 0, -30, 0}},
        {"tree to the right, beyond its first width", IDC_SPLIT_TREE, {90, 0}, {0, 0, 90, 0}, 4},
        {"tree to the right, and taken back", IDC_SPLIT_TREE, {60, 0}, {0, 0, 0, 0}, 0, DragAndTakeBack},
        {"tree to the left again", IDC_SPLIT_TREE, {-90, 0}, {0, 0, -90, 0}, -4},
        {"tree to the right, and the mouse lost", IDC_SPLIT_TREE, {30, 0}, {0, 0, 30, 0}, 0, DragAndLoseMouse},
        {"output up, and taken back", IDC_SPLIT_OUTPUT, {0, -70}, {0, 0, 0, 0}, 0, DragAndTakeBack},
        {"debug pane to the left", IDC_SPLIT_DEBUG, {-90, 0}, {0, 0, 0, 90}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        if (c.bar == IDC_SPLIT_DEBUG) editor.Do(IDM_VIEW_DEBUG_PANE);  // until drawn its width follows the others
        Sizes wanted = sizes();
        for (std::size_t i = 0; i < wanted.size(); ++i) wanted[i] += c.change[i];
        const HWND bar = editor.Child(c.bar);
        const POINT from{Width(editor, bar) / 2 + c.beside, Height(editor, bar) / 2};
        const POINT to{from.x + c.by.x, from.y + c.by.y};
        c.drag != nullptr ? c.drag(editor, bar, from, to) : editor.Drag(bar, from, to);
        EXPECT_TRUE(WaitFor([&] { return sizes() == wanted; }))
            << ::testing::PrintToString(sizes()) << " instead of " << ::testing::PrintToString(wanted);
        ExpectTidy(editor);
    }
    const int height = Height(editor, output), share = Height(editor, editor.Sci());
    Resize(editor, 900, 500);
    EXPECT_LT(Height(editor, output), height);
    EXPECT_LT(Height(editor, editor.Sci()), share) << "both panes give";
    Resize(editor, 1100, 760);
    EXPECT_NEAR(Height(editor, output), height, 2) << "the share survives a resize";
    editor.Do(IDM_VIEW_OUTPUT);  // hidden: the debug pane has the place alone
    EXPECT_FALSE(IsWindowVisible(editor.Child(IDC_SPLIT_DEBUG)));
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(View, CommandsChangeTheViewAndAreRemembered) {
    ProgramFolder folder;
    folder.SetIni(L"Editor", L"AutoSaveEnabled", L"0");
    {
        Editor editor(folder);
        struct Pane {
            const char* name;
            int command, child;
            bool shown;
        };
        for (const Pane& p : {Pane{"toolbar", IDM_VIEW_TOOLBAR, IDC_TOOLBAR, true},
                              Pane{"status bar", IDM_VIEW_STATUS_BAR, IDC_STATUS_BAR, true},
                              Pane{"output", IDM_VIEW_OUTPUT, IDC_OUTPUT, true},
                              Pane{"ASM", IDM_VIEW_ASM, IDC_ASM, false}, Pane{"AI", IDM_VIEW_AI, IDC_AI_CHAT, false}}) {
            for (const bool expected : {p.shown, !p.shown, p.shown}) {
                EXPECT_EQ(IsWindowVisible(editor.Child(p.child)) != 0, expected) << p.name;
                editor.Do(p.command);
            }
        }
        EXPECT_TRUE(editor.TextOf(editor.Child(IDC_ASM)).starts_with(L"ASM output will appear here"));
        EXPECT_TRUE(editor.TextOf(editor.Child(IDC_AI_CHAT)).starts_with(L"AI Chat"));

        editor.Do(IDM_VIEW_ZOOM_IN);
        editor.Do(IDM_VIEW_ZOOM_IN);
        editor.Do(IDM_FILE_NEW);
        EXPECT_EQ(editor.Sci(SCI_GETZOOM), 2) << "every editor zooms";
        editor.Do(IDM_VIEW_ZOOM_OUT);
        EXPECT_EQ(editor.Sci(SCI_GETZOOM), 1);
        editor.Do(IDM_VIEW_ZOOM_RESET);
        EXPECT_EQ(editor.Sci(SCI_GETZOOM), 0);
        editor.Do(IDM_VIEW_ZOOM_IN);
        editor.Do(IDM_VIEW_WORD_WRAP);
        editor.Do(IDM_VIEW_WHITESPACE);
        EXPECT_NE(editor.Sci(SCI_GETWRAPMODE), 0);
        EXPECT_NE(editor.Sci(SCI_GETVIEWWS), 0);

        const auto back = [&] { return editor.Sci(SCI_STYLEGETBACK, STYLE_DEFAULT); };
        const LRESULT light = back();
        EXPECT_EQ(editor.Sci(SCI_GETCARETFORE), 0) << "a black caret on a light page";
        editor.Do(IDM_VIEW_DARK_THEME);
        EXPECT_NE(back(), light);
        EXPECT_EQ(editor.Sci(SCI_GETCARETFORE), 0xFFFFFF);
        std::vector<LRESULT> pages;
        for (int style = IDM_STYLE_CODE; style <= IDM_STYLE_CLASSIC; ++style) {
            editor.Do(style);
            pages.push_back(back());
            EXPECT_EQ(folder.Ini(L"Editor", L"EditorStylePreset"), std::to_wstring(style - IDM_STYLE_FIRST + 1));
        }
        EXPECT_NE(std::count(pages.begin(), pages.end(), pages[0]), 5) << "the five styles look the same";
        EXPECT_EQ(folder.Ini(L"Editor", L"Font"), L"Courier New") << "the font of the last style";
        EXPECT_EQ(folder.Ini(L"Editor", L"FontSize"), L"11");
        EXPECT_EQ(editor.Close(), 0u);
    }
    Editor editor(folder);
    EXPECT_EQ(editor.Sci(SCI_GETZOOM), 1);
    EXPECT_NE(editor.Sci(SCI_GETWRAPMODE), 0);
    EXPECT_NE(editor.Sci(SCI_GETVIEWWS), 0);
    EXPECT_EQ(folder.Ini(L"Editor", L"Theme"), L"1");
    EXPECT_EQ(folder.Ini(L"Editor", L"EditorStylePreset"), L"5");
}

TEST(View, KeysReachEditorAndCommands) {
    ProgramFolder folder;
    Editor editor(folder, OpenArgument(folder.Write(L"a.bas", "  x = 1")));
    editor.Foreground();
    ASSERT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));
    editor.Sci(SCI_DOCUMENTEND);
    editor.Keys({VK_RETURN});
    for (const int key : {int{'H'}, VK_SPACE, int{'I'}, int{'F'}, VK_SPACE}) editor.Keys({key});
    editor.Keys({VK_SHIFT, 'I'});
    editor.Keys({VK_RETURN});
    for (const int key : {int{'A'}, int{'S'}, int{'M'}}) editor.Keys({key});
    editor.Keys({VK_CONTROL, VK_RETURN});  // the same, where it would insert another form of line end
    for (const int key : {int{'A'}, int{'N'}, int{'D'}, int{VK_SPACE}, int{VK_RETURN}, int{'E'}, int{'N'}, int{'D'},
                          int{VK_SPACE}, int{'A'}, int{'S'}, int{'M'}, int{VK_RETURN}})
        editor.Keys({key});
    // Indented by the blocks above, END ASM taken back, and keywords in capitals, but not in assembly.
    const std::string typed = "  x = 1\r\n  h IF I\r\n  ASM\r\n      and \r\n  END ASM\r\n  ";
    EXPECT_TRUE(WaitFor([&] { return editor.Text() == typed; })) << editor.Text();
    const auto opening = static_cast<LRESULT>(typed.find("ASM"));
    editor.Sci(SCI_GOTOPOS, typed.find("END"));
    editor.Keys({VK_CONTROL, 'M'});
    EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETCURRENTPOS) == opening; })) << "to the word that opens";
    editor.Keys({VK_CONTROL, 'Q'});
    EXPECT_TRUE(WaitFor([&] { return editor.Text().find("  ' ASM\r\n") != std::string::npos; })) << editor.Text();
    editor.Keys({VK_CONTROL, 'Q'});
    EXPECT_TRUE(WaitFor([&] { return editor.Text() == typed; })) << editor.Text();
    editor.Sci(SCI_SELECTALL);
    editor.Do(IDM_EDIT_COMMENT);
    EXPECT_TRUE(editor.Text().starts_with("  ' x = 1\r\n  ' h IF I\r\n")) << editor.Text();
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_EQ(editor.Text(), typed) << "the lines were one step";
    editor.Sci(SCI_DOCUMENTEND);
    editor.Keys({VK_CONTROL, 'S'});
    EXPECT_TRUE(WaitFor([&] { return !editor.Modified(); }));
    EXPECT_EQ(folder.Read(L"a.bas"), typed);
    EXPECT_TRUE(WaitFor([&] { return editor.Status(kPartPosition) == L"Ln 6, Col 3"; }))
        << Utf8(editor.Status(kPartPosition));
    editor.Keys({VK_CONTROL, 'N'});
    EXPECT_TRUE(WaitFor([&] { return editor.Tabs() == 2; }));
    editor.Keys({VK_CONTROL, VK_OEM_PLUS});
    EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETZOOM) == 1; }));
    editor.Keys({VK_CONTROL, '0'});
    EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETZOOM) == 0; }));
}

TEST(View, ABlockIsClosedWhenItIsOpened) {
    ProgramFolder folder;
    folder.SetIni(L"Editor", L"AutoCloseBlocks", L"1");
    Editor editor(folder, OpenArgument(folder.Write(L"a.bas", "sub a\r\n\r\nend sub\r\n")));
    editor.Foreground();
    ASSERT_TRUE(WaitFor([&] { return editor.Sci() != nullptr && editor.Focus() == editor.Sci(); }));
    editor.Sci(SCI_GOTOPOS, 5);
    editor.Keys({VK_RETURN});  // this block is closed already
    for (const int key : {int{'D'}, int{'O'}, int{VK_RETURN}, int{'X'}}) editor.Keys({key});
    const auto await = [&](const std::string& text) {
        EXPECT_TRUE(WaitFor([&] { return editor.Text() == text; })) << editor.Text();
    };
    await("sub a\r\n    DO\r\n        x\r\n    LOOP\r\n\r\nend sub\r\n");
    for (const int key : {int{VK_RETURN}, int{'L'}, int{'O'}, int{'O'}, int{'P'}, int{VK_RETURN}}) editor.Keys({key});
    await("sub a\r\n    DO\r\n        x\r\n    LOOP\r\n    \r\n\r\nend sub\r\n");  // not a second LOOP
    for (const std::initializer_list<int>& keys : {std::initializer_list<int>{'H'}, {VK_SHIFT, VK_OEM_1}, {VK_RETURN}})
        editor.Keys(keys);
    await("sub a\r\n    DO\r\n        x\r\n    LOOP\r\nh:\r\n    \r\n\r\nend sub\r\n");
    // Names in a TYPE are no keywords, and leaving the line does to its last word what Return does.
    editor.Sci(SCI_DOCUMENTEND);
    for (const char key : std::string("TYPE T\rNAME AS DOUBLE")) editor.Keys({key});
    editor.Keys({VK_DOWN});
    await(
        "sub a\r\n    DO\r\n        x\r\n    LOOP\r\nh:\r\n    \r\n\r\nend sub\r\nTYPE t\r\n    name AS DOUBLE\r\nEND "
        "TYPE");
    editor.Sci(SCI_GOTOPOS, 5);
    for (const int key : {int{VK_RETURN}, int{'D'}, int{'O'}, int{VK_RETURN}}) editor.Keys({key});
    ASSERT_TRUE(WaitFor([&] { return editor.Text().starts_with("sub a\r\n    DO\r\n        \r\n    LOOP\r\n"); }));
    const LRESULT inside = editor.Sci(SCI_GETCURRENTPOS);
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_NE(editor.Sci(SCI_GETCURRENTPOS), inside);
    editor.Do(IDM_EDIT_REDO);
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), inside) << "redo leaves the caret where Return has put it";
}

TEST(View, AClickMeansWhatTheViewShows) {
    ProgramFolder folder;
    std::string text = "ASM\r\n";
    for (int i = 0; i < 300; ++i) text += "nop " + std::string(300, 'a') + "\r\n";
    const std::wstring path = folder.Write(L"a.bas", text);
    Editor editor(folder, OpenArgument(path));
    editor.Foreground();
    const auto leave = [&] { editor.Click(editor.Child(IDC_OUTPUT), {30, 30}); };
    const auto expectPlace = [&](const char* name, LRESULT line, LRESULT offset, LRESULT anchor, LRESULT caret) {
        EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETCURRENTPOS) == caret; }))
            << name << ": " << editor.Sci(SCI_GETCURRENTPOS) << " instead of " << caret;
        EXPECT_EQ(editor.Sci(SCI_GETANCHOR), anchor) << name;
        EXPECT_EQ(editor.Sci(SCI_GETFIRSTVISIBLELINE), line) << name;
        EXPECT_EQ(editor.Sci(SCI_GETXOFFSET), offset) << name;
    };
    const POINT at = {300, 100};
    for (const bool elsewhere : {false, true}) {
        if (elsewhere) leave();
        editor.Sci(SCI_SETFIRSTVISIBLELINE, 100);
        editor.Sci(SCI_SETXOFFSET, 600);
        const LRESULT clicked = editor.Sci(SCI_POSITIONFROMPOINT, at.x, at.y);
        editor.Click(editor.Sci(), at);
        expectPlace(elsewhere ? "from another pane" : "a click", 100, 600, clicked, clicked);
        editor.Sci(SCI_SETFIRSTVISIBLELINE, 150);
        const POINT below = {at.x + 60, at.y + 60};  // at the same place it would be a double click
        const LRESULT further = editor.Sci(SCI_POSITIONFROMPOINT, below.x, below.y);
        editor.Send(editor.Sci(), WM_LBUTTONDOWN, MK_LBUTTON | MK_SHIFT, MAKELPARAM(below.x, below.y));
        editor.Send(editor.Sci(), WM_LBUTTONUP, MK_SHIFT, MAKELPARAM(below.x, below.y));
        expectPlace("a click with Shift, after scrolling", 150, 600, clicked, further);
        editor.Sci(SCI_SETEMPTYSELECTION, static_cast<WPARAM>(clicked));
    }
    editor.Sci(SCI_SETFIRSTVISIBLELINE, 260);
    const LRESULT assembly = editor.Sci(SCI_POSITIONFROMLINE, 262);
    EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETSTYLEAT, static_cast<WPARAM>(assembly)) == SCE_B_ASM; }))
        << "the block of assembly begins far above the view";
    editor.Do(IDM_EDIT_SELECT_ALL);
    editor.Sci(SCI_SETFIRSTVISIBLELINE, 10);
    leave();
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Child(IDC_OUTPUT); }));
    editor.Send(editor.main, WM_SETFOCUS);
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));
    EXPECT_EQ(editor.Sci(SCI_GETSELECTIONEND) - editor.Sci(SCI_GETSELECTIONSTART), static_cast<LRESULT>(text.size()));
    EXPECT_EQ(editor.Sci(SCI_GETFIRSTVISIBLELINE), 10);

    // A fine wheel makes one step of many messages.
    editor.Do(IDM_FILE_NEW);
    const auto turn = [&](HWND window, int keys, int times) {
        for (int i = 0; i < times; ++i) editor.Send(window, WM_MOUSEWHEEL, MAKEWPARAM(keys, 10));
    };
    turn(editor.Sci(), MK_CONTROL, 18);
    EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETZOOM) > 0; }));
    EXPECT_EQ(editor.Sci(SCI_GETZOOM), 1);
}

TEST(View, StickyHeaderAndNavigationHistory) {
    ProgramFolder folder;
    std::string text = "TYPEOF x\n  SUB Indented\nSUB First(BYVAL a AS LONG)\n  a = 1\nEND SUB\nfunction lower\n";
    for (int i = 0; i < 30; ++i) text += "' " + std::to_string(i) + "\n";
    Editor editor(folder, OpenArgument(folder.Write(L"a.bas", text)) + OpenArgument(folder.Write(L"b.bas", "'\n")));
    editor.Do(IDM_PREVIOUS_TAB);
    const auto header = [&] { return editor.TextOf(editor.Child(IDC_STICKY_HEADER)); };
    struct Case {
        int line;
        const wchar_t* header;
    };
    for (const Case& c : {Case{1, L"TYPEOF x"}, Case{2, L"TYPEOF x"}, Case{4, L"SUB First(BYVAL a AS LONG)"},
                          Case{30, L"SUB First(BYVAL a AS LONG)"}}) {
        editor.Sci(SCI_GOTOLINE, static_cast<WPARAM>(c.line - 1));
        EXPECT_TRUE(WaitFor([&] { return header() == c.header; })) << "line " << c.line << ": " << Utf8(header());
    }
    editor.Do(IDM_NAV_BACK);
    EXPECT_EQ(editor.Line(), 1) << "back over the jump of 26 lines; the short moves were not kept";
    editor.Do(IDM_NAV_FORWARD);
    EXPECT_EQ(editor.Line(), 30);
    editor.Do(IDM_NEXT_TAB);
    EXPECT_TRUE(WaitFor([&] { return header().empty(); })) << Utf8(header());
    // The switch of tabs is a place of its own once the editor has told of its caret.
    editor.Sci(SCI_GOTOPOS, 1);
    EXPECT_TRUE(WaitFor([&] { return editor.Status(kPartPosition) == L"Ln 1, Col 2"; }));
    editor.Do(IDM_NAV_BACK);
    EXPECT_TRUE(WaitFor([&] { return editor.ActiveTab() == 0; }));
    EXPECT_EQ(editor.Line(), 30);
    // Places of a closed tab lead nowhere, not into the file that has its number now.
    editor.Do(IDM_FILE_CLOSE);
    ASSERT_EQ(editor.Tabs(), 1);
    for (const int step : {IDM_NAV_BACK, IDM_NAV_BACK, IDM_NAV_FORWARD, IDM_NAV_FORWARD}) {
        editor.Do(step);
        EXPECT_EQ(editor.Line(), 1);
    }
}

TEST(View, WithoutATabNothingBreaks) {
    ProgramFolder folder;
    Editor editor(folder);
    editor.Do(IDM_FILE_CLOSE_ALL);
    ASSERT_EQ(editor.Tabs(), 0);
    EXPECT_EQ(editor.Title(), L"Untitled - KVXE Editor");
    // All but those that open a dialog or a tab of their own, or end the program.
    const int others[] = {IDM_FILE_EXIT,        IDM_STYLE_FONT,        IDM_WORKSPACE_OPEN,   IDM_WORKSPACE_NEW,
                          IDM_HELP_ABOUT,       IDM_COMPILER_MENU,     IDM_SESSION_OPEN,     IDM_SESSION_SAVE,
                          IDM_SESSION_SAVE_AS,  IDM_PROJECT_FOLDER,    IDM_DEBUG_EXCEPTIONS, IDM_DEBUG_PROGRAM,
                          IDM_AI_OPENAI,        IDM_AI_LMSTUDIO,       IDM_AI_TRANSCRIBE,    IDM_AI_DO,
                          IDM_PROJECT_SETTINGS, IDM_EDIT_SNIPPETS,     IDM_PROJECT_NEW,      IDM_PROJECT_OPEN,
                          IDM_HELP_KEYS,        IDM_HELP_DOCUMENTATION};
    for (int command = IDM_FILE_SAVE; command < IDM_TOOLBAR_MORE; ++command)
        if (std::ranges::find(others, command) == std::end(others)) editor.Do(command);
    for (int tab : {-1, 0, 99}) editor.Send(editor.main, MSG_REINIT_EDITOR, static_cast<WPARAM>(tab));
    EXPECT_EQ(editor.Tabs(), 0);
    editor.Do(IDM_FILE_NEW);
    EXPECT_EQ(editor.Tabs(), 1);
    ExpectTidy(editor);
    EXPECT_EQ(editor.Close(), 0u);
}
