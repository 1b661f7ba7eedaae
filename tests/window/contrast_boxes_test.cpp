// Whether the texts can be read that need more than a command to come: tips under the mouse, and the boxes that ask. And
// whether the pictures of the toolbar can be seen. Both themes.
#include "readable.h"
#include "recovery_driver.h"
#include "support/accessible_names.h"
#include "support/text_contrast.h"

#include "commands/toolbar_table.h"
#include "resources/ids.h"
#include "ui/menu_text.h"

#include <commctrl.h>
#include <mmsystem.h>

#include <filesystem>
#include <string>

namespace {

constexpr int kDpi = 192;
constexpr int kIconDpi = 120;  // all buttons have room
constexpr char kSource[] =
    "SUB Report(text AS STRING, BYVAL count AS LONG)\r\nEND SUB\r\nFUNCTION PBMAIN () AS LONG\r\n    Report \"a\", "
    "1\r\nEND FUNCTION\r\n";

class ContrastOf : public ::testing::TestWithParam<int> {
protected:
    ProgramFolder folder{kCompilers};
    void SetUp() override {
        folder.KeepNoSession();
        folder.SetIni(L"Editor", L"Theme", std::to_wstring(GetParam()));
    }
};

// A dialog with more than `least` words and a name for each control; its scale is that of the system.
void ExpectBox(const Editor& editor, const wchar_t* title, int least, int button) {
    const Dialog dialog = editor.AwaitDialog(title);
    EXPECT_GT(ExpectTextsReadable(editor, Utf8(title), dialog.window), least) << Utf8(title);
    ExpectNamed(Utf8(title), dialog.window);
    editor.Press(dialog, button);
}

void MouseOver(const Editor& editor, HWND window, POINT at) { editor.Click(window, at, MOUSEEVENTF_LEFTDOWN, 0); }

POINT PlaceInText(const Editor& editor, std::string_view part) {
    const auto at = static_cast<LPARAM>(editor.Text().find(part));
    return {static_cast<LONG>(editor.Sci(SCI_POINTXFROMPOSITION, 0, at)) + 8,
            static_cast<LONG>(editor.Sci(SCI_POINTYFROMPOSITION, 0, at)) + 10};
}

TEST_P(ContrastOf, TipsUnderTheMouse) {
    folder.SetIni(L"Project", L"ShowProjectTree", L"1");
    Editor editor(folder, OpenArgument(folder.Write(L"tips.bas", kSource)));
    editor.ShowAt(kDpi, 1278, 880);
    editor.Foreground();
    const auto tip = [&](const std::string& where, HWND window, POINT at, const wchar_t* kind = TOOLTIPS_CLASSW) {
        MouseOver(editor, window, at);
        EXPECT_GT(ExpectTextsReadable(editor, where, AwaitPopup(editor, kind), kScaledLine), 0) << where;
        MouseOver(editor, editor.Sci(), PlaceInText(editor, "END FUNCTION"));
        ASSERT_TRUE(WaitFor([&] { return FindPopup(editor, kind) == nullptr; })) << where << ": the tip stays";
    };
    const HWND toolbar = editor.Child(IDC_TOOLBAR), status = editor.Child(IDC_STATUS_BAR);
    tip("tip of a button", toolbar, editor.ButtonPlace(IDM_BUILD_RUN));
    tip("tip of a button that is off", toolbar, editor.ButtonPlace(IDM_BUILD_STOP));
    tip("tip of a tab", editor.Child(IDC_TABS), editor.TabCentre(0));
    tip("tip of a field", status, Centre(editor.Ask<RECT>(status, SB_GETRECT, kPartEncoding)));
    tip("declaration under the mouse", editor.Sci(), PlaceInText(editor, "Report \"a\""), L"CallTip");
}

// Every button that can be used, as it stands, under the mouse and checked.
TEST_P(ContrastOf, PicturesOfTheToolbar) {
    Editor editor(folder, OpenArgument(folder.Write(L"icons.bas", kSource)));
    editor.ShowAt(kIconDpi, 1278, 880);
    editor.Foreground();
    editor.Type(" ");  // it can be saved and undone
    editor.Do(IDM_EDIT_SELECT_ALL);
    const HWND bar = editor.Child(IDC_TOOLBAR);
    int seen = 0;
    const auto look = [&](const ButtonRow& row, const std::string& state) {
        EXPECT_GE(MeasurePicture(bar, editor.ButtonRect(row.command)).contrast, kVisibleContrast)
            << "button " << row.command << ", " << state;
        ++seen;
    };
    for (const ButtonRow& row : kToolbarButtons) {
        if (row.command == 0 || row.command == IDM_COMPILER_MENU || row.command == IDM_TOOLBAR_MORE ||
            !editor.ButtonShown(row.command) || !editor.ButtonWorks(row.command))
            continue;
        look(row, "at rest");
        MouseOver(editor, bar, editor.ButtonPlace(row.command));
        look(row, "under the mouse");
        MouseOver(editor, editor.Sci(), PlaceInText(editor, "END FUNCTION"));
    }
    editor.Do(IDM_VIEW_ASM);
    ASSERT_TRUE(WaitFor([&] { return editor.Send(bar, TB_ISBUTTONCHECKED, IDM_VIEW_ASM) != 0; }));
    for (const ButtonRow& row : kToolbarButtons)
        if (row.command == IDM_VIEW_ASM) look(row, "checked");
    EXPECT_GT(seen, 30);

    // The buttons without room, in the menu at the end of the bar.
    editor.ShowAt(kIconDpi, 700, 600);
    editor.Keys({VK_MENU, VK_F2});
    ASSERT_TRUE(editor.AwaitMenu(true));
    const HWND menu = AwaitMenuWindow(editor);
    EXPECT_GT(ExpectTextsReadable(editor, "menu of the bar", menu), 5);
    RECT gutter = {};
    GetClientRect(menu, &gutter);
    gutter.right = kMenuGutter * kIconDpi / 96;
    const DrawnPart pictures = MeasurePicture(menu, gutter);
    EXPECT_GE(pictures.contrast, kVisibleContrast);
    EXPECT_GT(pictures.full, 0.02) << "there are pictures";
    EXPECT_LT(pictures.full, 0.3) << "they are not squares";
    editor.Keys({VK_ESCAPE});
    ASSERT_TRUE(editor.AwaitMenu(false));
}

TEST_P(ContrastOf, BoxesThatAsk) {
    folder.SetIni(L"AI", L"OpenAIEnabled", L"1");
    folder.SetIni(L"AI", L"OpenAIKey", L"sk-0123456789");
    folder.SetIni(L"AI", L"OpenAIUrl", L"http://127.0.0.1:9/");
    const std::wstring path = folder.Write(L"boxes.bas", kSource);
    {
        Editor editor(folder,
                      OpenArgument(path) + OpenArgument(folder.Write(L"other.bas", kSource)) + OpenArgument(path));
        editor.Foreground();
        editor.Sci(SCI_GOTOPOS, editor.Text().find("Report \"a\"") + 2);
        editor.Post(IDM_SYMBOL_RENAME);
        ExpectBox(editor, L"Rename Symbol", 8, IDCANCEL);

        WriteBytes(path, std::string("' changed\r\n") + kSource);
        const Dialog outside = editor.AwaitDialog(kProgramTitle);
        editor.Send(outside.window, WM_COMMAND, IDC_OUTSIDE_COMPARE);
        ASSERT_TRUE(
            WaitFor([&] { return !editor.TextOf(GetDlgItem(outside.window, IDC_OUTSIDE_DIFFERENCE)).empty(); }));
        ExpectBox(editor, kProgramTitle, 12, IDC_OUTSIDE_FIRST);
        ASSERT_TRUE(WaitFor([&] { return editor.Text().starts_with("' changed"); })) << "a later reload takes the x";

        for (int i = 0; i < 2; ++i) {
            editor.Type("x");
            editor.Do(IDM_NEXT_TAB);
        }
        editor.Post(IDM_FILE_CLOSE_ALL);
        ExpectBox(editor, kUnsaved, 10, IDCANCEL);

        editor.Post(IDM_PROJECT_SETTINGS);
        const Dialog settings = editor.AwaitDialog(L"Settings");
        const HWND pages = GetDlgItem(settings.window, IDC_SETTINGS_PAGES);
        for (LRESULT page = 0; page < editor.Send(pages, LB_GETCOUNT); ++page) {
            editor.Send(pages, LB_SETCURSEL, static_cast<WPARAM>(page));
            editor.Send(settings.window, WM_COMMAND, MAKEWPARAM(IDC_SETTINGS_PAGES, LBN_SELCHANGE),
                        reinterpret_cast<LPARAM>(pages));
            EXPECT_GT(ExpectTextsReadable(editor, "settings, page " + std::to_string(page), settings.window), 20);
            ExpectNamed("settings, page " + std::to_string(page), settings.window);
        }
        editor.Press(settings, IDCANCEL);

        editor.Post(IDM_STYLE_FONT);  // the system's own, whose controls have the names that it gives them
        const Dialog font = editor.AwaitDialog(L"Font");
        EXPECT_GT(ExpectTextsReadable(editor, "chooser of fonts", font.window), 8);
        editor.Press(font, IDCANCEL);

        if (waveInGetNumDevs() != 0) {  // a machine with a microphone
            editor.Post(IDM_AI_DO);
            ExpectBox(editor, L"AI Do: Say What to Change", 5, IDCANCEL);
        }
        ASSERT_TRUE(WaitFor([&] { return KeptTexts(folder).size() == 2; })) << KeptTexts(folder).size();
        Kill(editor);
    }
    Editor editor(folder);
    ExpectBox(editor, kRecovered, 20, IDCANCEL);
}

INSTANTIATE_TEST_SUITE_P(Themes, ContrastOf, ::testing::Values(0, 1),
                         [](const auto& each) { return each.param == 0 ? "Light" : "Dark"; });

}  // namespace
