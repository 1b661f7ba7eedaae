// Whether every text on the screen can be read, in both themes and in the high-contrast mode. The frame is on a scale of 200 %; dialogs come on the
// scale of the system. What needs more than a command to come is measured in contrast_boxes_test.cpp.
#include "debug_driver.h"
#include "readable.h"
#include "support/accessible_names.h"
#include "support/text_contrast.h"
#include "system_scheme.h"

#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int kDpi = 192;

// The measure itself: words of a known contrast.
TEST(ContrastMeasure, KnowsTheContrastOfWords) {
    for (const auto& [text, ground, readable] : {std::tuple{0x8A8A8AU, 0xFFFFFFU, false},
                                                 {0x6A6A6AU, 0xFFFFFFU, true},
                                                 {0x5A6068U, 0x1B1F24U, false},
                                                 {0x9CA3ABU, 0x1B1F24U, true}}) {
        Picture picture = {300, 60, std::vector<Rgb>(300 * 60, ground)};
        for (int letter = 0; letter < 6; ++letter)  // a stem and two arms, smoothed at its side
            for (int y = 20; y < 40; ++y)
                for (int x = 0; x < 10; ++x) {
                    const bool ink = x < 3 || y == 20 || y == 30;
                    const Rgb colour = ink ? text : x == 3 ? ThemeBlend(text, ground, 90) : ground;
                    picture.pixels[static_cast<std::size_t>(y * 300 + 40 + letter * 13 + x)] = colour;
                }
        const std::vector<PictureWord> words = WordsOfPicture(picture, kScaledLine);
        ASSERT_EQ(words.size(), 1u) << std::hex << text;
        EXPECT_EQ(words[0].ground, ground);
        EXPECT_NEAR(words[0].contrast, ThemeContrast(text, ground), 0.01);
        EXPECT_EQ(words[0].contrast >= kReadableContrast, readable) << std::hex << text;
    }
}

constexpr char kFaulty[] =
    "#INCLUDE \"no_such_file.inc\"\r\n\r\n' a comment, and text\r\nFUNCTION PBMAIN () AS LONG\r\n    LOCAL turn AS "
    "LONG\r\n"
    "    turn = unknown + 1\r\n    PRINT \"turn\"; turn\r\n    PRINT LEFT$(\"a\", 1)\r\nEND FUNCTION\r\n";
constexpr char kStops[] =
    "FUNCTION PBMAIN () AS LONG\r\n    LOCAL turn AS LONG\r\n    turn = 1\r\n    PRINT \"turn\"; turn\r\nEND "
    "FUNCTION\r\n";

struct Frame {
    const char* name;
    int theme, style;
    SystemScheme::Kind scheme = SystemScheme::kUsual;

    const wchar_t* Option() const { return scheme == SystemScheme::kUsual ? L"" : L" --high-contrast"; }
};
class Contrast : public ::testing::TestWithParam<Frame> {
    const SystemScheme scheme_{GetParam().scheme};
};
class ContrastOfFrame : public Contrast {};

TEST_P(ContrastOfFrame, EveryTextOnTheScreenCanBeRead) {
    ProgramFolder folder(kCompilers);
    for (const wchar_t* pane : {L"ShowErrorList", L"ShowTerminal"}) folder.SetIni(L"Editor", pane, L"1");
    folder.SetIni(L"Editor", L"Theme", std::to_wstring(GetParam().theme));
    folder.SetIni(L"Editor", L"EditorStylePreset", std::to_wstring(GetParam().style));
    folder.SetIni(L"Editor", L"ReadableOutput", L"1");
    folder.SetIni(L"Project", L"ShowProjectTree", L"1");
    folder.SetIni(L"Project", L"ShowOutline", L"1");
    folder.SetIni(L"AI", L"ShowAISidebar", L"1");
    folder.KeepNoSession();
    folder.Write(L"stops.bas", kStops);
    Editor editor(
        folder, OpenArgument(folder.Write(L"faulty.bas", kFaulty)) + L" --compiler KeldorBasic" + GetParam().Option());
    editor.ShowAt(kDpi, 1278, 880);
    int words = 0;
    const auto look = [&](const std::string& where) {
        words += ExpectTextsReadable(editor, where, editor.main, kScaledLine);
    };
    editor.Do(IDM_BUILD);
    // The room is small: columns and scroll bars of the error list must find an end.
    ASSERT_TRUE(WaitFor([&] { return editor.Status().find(L"error") != std::wstring::npos; }, kBuildDeadline))
        << editor.Describe();
    editor.Do(IDM_ERROR_NEXT);
    look("errors");
    for (const int command : {IDM_VIEW_AI, IDM_VIEW_OUTLINE, IDM_VIEW_ERROR_TEXTS, IDM_SEARCH_INCREMENTAL})
        editor.Do(command);
    editor.Keys({'P'});
    editor.Keys({'R'});
    look("search bar, texts behind lines");
    for (const int command : {IDM_VIEW_TREE, IDM_VIEW_ERROR_LIST, IDM_VIEW_ASM}) editor.Do(command);
    look("machine code");
    for (const int command : {IDM_COMMAND_PALETTE, IDM_TAB_LIST}) {
        editor.Post(command);
        look("list " + std::to_string(command));
        editor.Keys({VK_ESCAPE});
    }
    const auto popup = [&](const std::string& where, HWND window, int line) {
        const int found = ExpectTextsReadable(editor, where, window, line);
        EXPECT_GT(found, 0) << where << ": no words";
        words += found;
    };
    // The menus of the program's own style in the light theme, and of high contrast, are the system's, on its scale.
    const bool own = GetParam().theme != 0 || GetParam().style != 0;
    const int menuLine = own && GetParam().scheme == SystemScheme::kUsual ? kScaledLine : kPlainLine;
    const auto menu = [&](const std::string& where) {
        ASSERT_TRUE(editor.AwaitMenu(true)) << where;
        popup(where, AwaitMenuWindow(editor), menuLine);
        editor.Keys({VK_ESCAPE});
        if ((editor.Input().flags & GUI_INMENUMODE) != 0) editor.Keys({VK_ESCAPE});  // the bar
        ASSERT_TRUE(editor.AwaitMenu(false)) << where;
    };
    editor.Foreground();
    editor.Sci(SCI_GRABFOCUS);  // the search bar has letters of its own
    for (const char letter : std::string("FESVCPDTWH")) {
        editor.Keys({VK_MENU, letter});
        menu(std::string("menu ") + letter);
    }
    editor.Sci(SCI_GRABFOCUS);
    editor.Keys({VK_APPS});
    menu("menu of the text");
    const HWND bar = editor.Child(IDC_STATUS_BAR);
    for (const int part : {+kPartEncoding, +kPartLineEnding, +kPartCompiler}) {
        editor.Click(bar, Centre(editor.Ask<RECT>(bar, SB_GETRECT, static_cast<WPARAM>(part))));
        menu("menu of field " + std::to_string(part));
    }
    editor.Sci(SCI_GOTOPOS, static_cast<WPARAM>(editor.Text().find("\"a\"")));
    editor.Do(IDM_PARAMETER_INFO);
    popup("tip of a call", AwaitPopup(editor, L"CallTip"), kScaledLine);
    for (const auto& [command, title] : {std::pair{IDM_EDIT_GOTO, L"Go To Line"},
                                         {IDM_FILES_REPLACE, L"Replace in Files"},
                                         {IDM_EDIT_REPLACE, L"Find and Replace"},
                                         {IDM_DEBUG_EXCEPTIONS, L"Exceptions"},
                                         {IDM_DEBUG_PROGRAM, L"Program Arguments"},
                                         {IDM_DEBUG_NAME_PLACE, L"Name a Place"},
                                         {IDM_PROJECT_NEW, L"New Project"},
                                         {IDM_HELP_KEYS, L"Keyboard Map"},
                                         {IDM_PROJECT_SETTINGS, L"Settings"}}) {
        editor.Post(command);
        const Dialog dialog = editor.AwaitDialog(title);
        words += ExpectTextsReadable(editor, Utf8(title), dialog.window);
        RECT place = {};
        GetWindowRect(dialog.window, &place);
        EXPECT_LE(place.bottom - place.top, GetSystemMetrics(SM_CYSCREEN)) << Utf8(title) << " fits the screen";
        editor.Press(dialog, IDCANCEL);
    }
    editor.Do(IDM_FILE_CLOSE_ALL);
    look("start page");
    EXPECT_GT(words, 400) << "words were found at all";
}

TEST_P(Contrast, TheListsOfTheDebuggerCanBeRead) {
    using namespace debug_driver;
    const Session session(L"stops.bas", kStops, L"kvxa64", GetParam().theme, GetParam().Option());
    session.editor.ShowAt(kDpi, 1278, 880);
    session.CaretTo(4);
    session.editor.Do(IDM_DEBUG_BREAKPOINT);
    ASSERT_TRUE(session.Start()) << session.editor.Describe();
    EXPECT_EQ(session.editor.Sci(SCI_MARKERGETLAYER, kMarkCurrentLine), SC_LAYER_UNDER_TEXT)
        << "a tint over the text takes its colour";
    session.Select(kWatches);
    session.AddWatch(L"RSP");
    session.editor.Do(IDM_DEBUG_STEP_OVER);  // some values are new now
    for (const Tab tab : {kBreakpoints, kStack, kRegisters, kLocals, kWatches, kMemory, kThreads, kDisassembly}) {
        session.Select(tab);
        const std::string where = "view " + std::to_string(tab);
        EXPECT_GT(ExpectTextsReadable(session.editor, where, session.editor.main, kScaledLine), 20) << where;
        ExpectNamed(where, session.pane);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Themes, ContrastOfFrame,
    ::testing::Values(Frame{"Light", 0, 0}, Frame{"Dark", 1, 0}, Frame{"LightClassic", 0, 5},
                      Frame{"HighContrastBlack", 0, 0, SystemScheme::kBlack}),
    [](const auto& each) { return each.param.name; });
INSTANTIATE_TEST_SUITE_P(Themes, Contrast,
                         ::testing::Values(Frame{"Light", 0, 0}, Frame{"Dark", 1, 0},
                                           Frame{"HighContrastWhite", 1, 0, SystemScheme::kWhite}),
                         [](const auto& each) { return each.param.name; });

}  // namespace
