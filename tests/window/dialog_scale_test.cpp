// Dialogs that come to a screen of another resolution, and the main window with a dialog open.
#include "build_driver.h"
#include "class_name.h"
#include "fitting.h"
#include "recovery_driver.h"

#include <commctrl.h>

#include <string>
#include <vector>

namespace {

constexpr int kScales[] = {120, 144, 192, 96};  // in turns, from 96
constexpr int kHigh = 192;

void Tell(const Editor& editor, HWND dialog, int dpi) {
    RECT place = {};
    GetWindowRect(dialog, &place);
    editor.Ask(dialog, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), place);
}

std::vector<RECT> PlacesOf(HWND dialog) {
    std::vector<RECT> places;
    for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        RECT place = {};
        GetWindowRect(child, &place);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
        places.push_back(place);
    }
    RECT client = {};
    GetClientRect(dialog, &client);
    places.push_back(client);
    return places;
}

// The height of what a control shows by its font; 0: it cannot be asked for it.
int LineHeight(const Editor& editor, HWND control) {
    const std::wstring kind = ClassOf(control);
    if (kind == WC_COMBOBOXW) return static_cast<int>(editor.Send(control, CB_GETITEMHEIGHT, 0));
    if (kind == WC_LISTBOXW) return static_cast<int>(editor.Send(control, LB_GETITEMHEIGHT, 0));
    if (kind != WC_LISTVIEWW || editor.Send(control, LVM_GETITEMCOUNT) == 0) return 0;
    const RECT row = editor.Ask<RECT>(control, LVM_GETITEMRECT, 0, RECT{.left = LVIR_BOUNDS});
    return row.bottom - row.top;
}

std::vector<int> LineHeights(const Editor& editor, HWND dialog) {
    std::vector<int> heights;
    for (const HWND child : VisibleChildren(dialog)) heights.push_back(LineHeight(editor, child));
    return heights;
}

void ExpectFits(const Editor& editor, const std::string& where, HWND dialog, int dpi) {
    ExpectApart(where, editor, dialog);
    for (const HWND child : VisibleChildren(dialog)) ExpectWhole(where, child, editor.TextOf(child), Font::Dialog, dpi);
    RECT place = {};
    GetWindowRect(dialog, &place);
    EXPECT_LE(place.bottom - place.top, GetSystemMetrics(SM_CYSCREEN)) << where;
    EXPECT_LE(place.right - place.left, GetSystemMetrics(SM_CXSCREEN)) << where;
}

// At each scale everything has its room and is larger than before; in the end all is as it was.
void ExpectScales(const Editor& editor, const std::string& title, HWND dialog) {
    const std::vector<RECT> first = PlacesOf(dialog);
    const std::vector<int> lines = LineHeights(editor, dialog);
    ExpectFits(editor, title, dialog, 96);
    for (const int dpi : kScales) {
        const std::string where = title + " at " + std::to_string(dpi);
        Tell(editor, dialog, dpi);
        ExpectFits(editor, where, dialog, dpi);
        const std::vector<int> now = LineHeights(editor, dialog);
        ASSERT_EQ(now.size(), lines.size()) << where;
        for (std::size_t i = 0; i < now.size(); ++i)
            EXPECT_NEAR(now[i], MulDiv(lines[i], dpi, 96), 3 * dpi / 96) << where << ": a line of a list";
    }
    const std::vector<RECT> last = PlacesOf(dialog);
    ASSERT_EQ(last.size(), first.size()) << title;
    for (std::size_t i = 0; i < last.size(); ++i)
        EXPECT_TRUE(EqualRect(&last[i], &first[i])) << title << ": control " << i << " is not where it was";
}

}  // namespace

TEST(DialogScale, EveryDialogFollowsItsScreen) {
    FakeFolder folder("exit: 0\n");
    const std::wstring file = folder.Write(L"q.bas", kHello);
    Editor editor(folder, OpenArgument(file));
    editor.ShowAt(96, 1250, 860);
    for (const auto& [command, title] : {std::pair{IDM_EDIT_FIND, L"Find"},
                                         {IDM_EDIT_REPLACE, L"Find and Replace"},
                                         {IDM_FILES_FIND, L"Find in Files"},
                                         {IDM_FILES_REPLACE, L"Replace in Files"},
                                         {IDM_EDIT_GOTO, L"Go To Line"},
                                         {IDM_DEBUG_EXCEPTIONS, L"Exceptions"},
                                         {IDM_DEBUG_PROGRAM, L"Program Arguments"},
                                         {IDM_DEBUG_CONDITIONAL, L"Conditional Breakpoint"},
                                         {IDM_DEBUG_NAME_PLACE, L"Name a Place"},
                                         {IDM_HELP_KEYS, L"Keyboard Map"},
                                         {IDM_PROJECT_NEW, L"New Project"}}) {
        editor.Post(command);
        const Dialog dialog = editor.AwaitDialog(title);
        ExpectScales(editor, Utf8(title), dialog.window);
        editor.Press(dialog, IDCANCEL);
    }
    // A row that comes at another scale has the height of that scale.
    editor.Post(IDM_EDIT_FIND);
    const Dialog find = editor.AwaitDialog(L"Find");
    Tell(editor, find.window, kHigh);
    editor.Post(IDM_EDIT_REPLACE);
    ExpectFits(editor, "Replace opened at 192", editor.AwaitDialog(L"Find and Replace").window, kHigh);
    editor.Press(find, IDCANCEL);

    editor.Sci(SCI_GOTOPOS, static_cast<WPARAM>(editor.Text().find("PBMAIN") + 1));
    editor.Post(IDM_SYMBOL_RENAME);
    const Dialog rename = editor.AwaitDialog(L"Rename Symbol");
    ExpectScales(editor, "Rename Symbol", rename.window);
    editor.Press(rename, IDCANCEL);
    WriteBytes(file, "' other\r\n" + kHello);
    const Dialog outside = editor.AwaitDialog(kProgramTitle);
    ExpectScales(editor, "changed outside", outside.window);
    Tell(editor, outside.window, 144);
    editor.Send(GetDlgItem(outside.window, IDC_OUTSIDE_COMPARE), BM_CLICK);
    ExpectFits(editor, "compared at 144", outside.window, 144);
    Tell(editor, outside.window, 96);
    ExpectFits(editor, "compared, then at 96", outside.window, 96);
    editor.Press(outside, IDC_OUTSIDE_FIRST);
    for (int i = 0; i < 2; ++i) {
        editor.Do(IDM_FILE_NEW);
        editor.Type("x");
    }
    editor.Post(IDM_FILE_CLOSE_ALL);
    const Dialog unsaved = editor.AwaitDialog(kUnsaved);
    ExpectScales(editor, "Unsaved Changes", unsaved.window);
    editor.Press(unsaved, IDCANCEL);
    ASSERT_TRUE(WaitFor([&] { return KeptTexts(folder).contains("x"); }));
    Kill(editor);

    Editor next(folder);
    const Dialog recovered = next.AwaitDialog(kRecovered);
    ExpectScales(next, "Recovered Files", recovered.window);
    next.Press(recovered, IDCANCEL);
}

// A dialog keeps its scale when only the main window moves.
TEST(DialogScale, TheMainWindowFollowsItsScreenWithADialogOpen) {
    FakeFolder folder("out: q(3): error: x\nexit: 1\n");
    for (const wchar_t* pane : {L"ShowErrorList", L"ShowTerminal", L"ShowOutline"})
        folder.SetIni(L"Editor", pane, L"1");
    folder.SetIni(L"Project", L"ShowProjectTree", L"1");
    folder.SetIni(L"AI", L"ShowAISidebar", L"1");
    Editor editor(folder, OpenArgument(folder.Write(L"q.bas", kHello)));
    for (const int command : {IDM_VIEW_ASM, IDM_VIEW_DEBUG_PANE}) editor.Do(command);
    editor.Post(IDM_EDIT_FIND);
    const Dialog find = editor.AwaitDialog(L"Find");
    const std::vector<RECT> first = PlacesOf(find.window);
    for (const int dpi : kScales) {
        const std::string where = "frame at " + std::to_string(dpi);
        editor.ShowAt(dpi, 1278, 880);
        ExpectApart(where, editor, editor.main);
        for (const HWND child : VisibleChildren(editor.main))
            ExpectWhole(where, child, editor.TextOf(child), Font::Message, dpi);
        const std::vector<RECT> now = PlacesOf(find.window);
        EXPECT_TRUE(std::equal(now.begin(), now.end(), first.begin(), first.end(),
                               [](const RECT& one, const RECT& other) { return EqualRect(&one, &other) != FALSE; }))
            << where;
        ExpectFits(editor, "Find with the " + where, find.window, 96);
    }
    editor.Press(find, IDCANCEL);

    // The open command palette becomes narrower; its list does not scroll sideways.
    editor.Foreground();
    editor.ShowAt(144, 1278, 880);
    editor.Keys({VK_CONTROL, VK_SHIFT, 'P'});
    const auto list = [&] { return GetDlgItem(editor.Child(IDC_QUICK_OPEN), IDC_QUICK_LIST); };
    ASSERT_TRUE(WaitFor([&] { return editor.Send(list(), LVM_GETITEMCOUNT) > 150; })) << editor.Describe();
    editor.ShowAt(96, 1000, 700);
    EXPECT_EQ(GetWindowLongPtrW(list(), GWL_STYLE) & WS_HSCROLL, 0);
    ExpectApart("palette", editor, editor.Child(IDC_QUICK_OPEN));
}
