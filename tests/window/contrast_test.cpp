// Measures over pictures of the screen whether every text can be read, in both themes. The frame is on a scale of 200 %,
// where the strokes of letters have their full colour. Dialogs come on the scale of the system; of a stroke that is one
// pixel wide there is at least about three quarters of the contrast.
#include "commands/toolbar_table.h"
#include "debug_driver.h"
#include "support/text_contrast.h"

#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int kDpi = 192;
constexpr int kLine = 34;        // pixels of a line of text on that scale
constexpr int kDialogLine = 17;  // and in a dialog
constexpr double kThinStroke = 3.3;

// What is on the screen in the window's client area.
Picture PictureOf(HWND window) {
    RECT area = {};
    GetClientRect(window, &area);
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&area), 2);
    area.right = std::min<LONG>(area.right, GetSystemMetrics(SM_CXSCREEN));
    area.bottom = std::min<LONG>(area.bottom, GetSystemMetrics(SM_CYSCREEN));
    Picture picture = {static_cast<int>(area.right - area.left), static_cast<int>(area.bottom - area.top), {}};
    picture.pixels.resize(static_cast<std::size_t>(picture.width * picture.height));
    BITMAPINFO info = {};
    info.bmiHeader = {.biSize = sizeof(info.bmiHeader),
                      .biWidth = picture.width,
                      .biHeight = -picture.height,
                      .biPlanes = 1,
                      .biBitCount = 32};
    void* bits = nullptr;
    const HDC screen = GetDC(nullptr), memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, picture.width, picture.height, screen, area.left, area.top, SRCCOPY);
    GdiFlush();
    const auto* pixels = static_cast<const std::uint32_t*>(bits);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) picture.pixels[i] = pixels[i] & 0xFFFFFF;
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return picture;
}

// Until two pictures in a row are equal.
Picture PictureAtRest(HWND window) {
    Picture before = PictureOf(window);
    WaitFor(
        [&] {
            Sleep(150);  // the time between the two
            Picture now = PictureOf(window);
            std::swap(before, now);
            return before.pixels == now.pixels;
        },
        kDeadline);
    return before;
}

Rgb SystemRgb(int index) {
    const COLORREF colour = GetSysColor(index);
    return static_cast<Rgb>(GetRValue(colour) << 16 | GetGValue(colour) << 8 | GetBValue(colour));
}

// What cannot be used need not be read: controls and buttons of the toolbar.
std::vector<RECT> DisabledPlaces(const Editor& editor, HWND window) {
    std::vector<RECT> places;
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        RECT place = {};
        GetWindowRect(child, &place);
        MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
        if (IsWindowEnabled(child) == FALSE) places.push_back(place);
    }
    if (window != editor.main) return places;
    for (const ButtonRow& button : kToolbarButtons) {
        if (button.command == 0 || editor.ButtonWorks(button.command)) continue;
        RECT place = editor.ButtonRect(button.command);
        MapWindowPoints(editor.Child(IDC_TOOLBAR), window, reinterpret_cast<POINT*>(&place), 2);
        places.push_back(place);
    }
    return places;
}

// The selection of the system's own controls has the colours of the system. Returns how many words there are.
int ExpectReadableOnScreen(const Editor& editor, const std::string& where, HWND window) {
    const bool frame = window == editor.main;
    const std::vector<PictureWord> words = WordsOfPicture(PictureAtRest(window), frame ? kLine : kDialogLine);
    const std::vector<RECT> disabled = DisabledPlaces(editor, window);
    for (const PictureWord& word : words) {
        const bool off = std::ranges::any_of(disabled, [&](const RECT& place) {
            return PtInRect(&place, {word.left + 1, word.top + 1}) != FALSE;
        });
        if (off || word.ground == SystemRgb(COLOR_HIGHLIGHT)) continue;
        EXPECT_GE(word.contrast, frame ? kReadableContrast : kThinStroke)
            << where << ": " << word.left << "," << word.top << " " << word.right - word.left << "x"
            << word.bottom - word.top << std::hex << ", " << word.text << " on " << word.ground;
    }
    return static_cast<int>(words.size());
}

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
        const std::vector<PictureWord> words = WordsOfPicture(picture, kLine);
        ASSERT_EQ(words.size(), 1u) << std::hex << text;
        EXPECT_EQ(words[0].ground, ground);
        EXPECT_NEAR(words[0].contrast, ThemeContrast(text, ground), 0.01);
        EXPECT_EQ(words[0].contrast >= kReadableContrast, readable) << std::hex << text;
    }
}

constexpr char kFaulty[] =
    "#INCLUDE \"no_such_file.inc\"\r\n\r\n' a comment, and text\r\nFUNCTION PBMAIN () AS LONG\r\n    LOCAL turn AS "
    "LONG\r\n"
    "    turn = unknown + 1\r\n    PRINT \"turn\"; turn\r\n    PRINT \"again\"\r\nEND FUNCTION\r\n";
constexpr char kStops[] =
    "FUNCTION PBMAIN () AS LONG\r\n    LOCAL turn AS LONG\r\n    turn = 1\r\n    PRINT \"turn\"; turn\r\nEND "
    "FUNCTION\r\n";

class Contrast : public ::testing::TestWithParam<int> {};

TEST_P(Contrast, EveryTextOnTheScreenCanBeRead) {
    ProgramFolder folder(kCompilers);
    for (const wchar_t* pane : {L"ShowErrorList", L"ShowTerminal"}) folder.SetIni(L"Editor", pane, L"1");
    folder.SetIni(L"Editor", L"Theme", std::to_wstring(GetParam()));
    folder.SetIni(L"Editor", L"ReadableOutput", L"1");
    folder.SetIni(L"Project", L"ShowProjectTree", L"1");
    folder.SetIni(L"Project", L"ShowOutline", L"1");
    folder.SetIni(L"AI", L"ShowAISidebar", L"1");
    folder.KeepNoSession();
    folder.Write(L"stops.bas", kStops);
    Editor editor(folder, OpenArgument(folder.Write(L"faulty.bas", kFaulty)) + L" --compiler KeldorBasic");
    editor.ShowAt(kDpi, 1278, 880);
    int words = 0;
    const auto look = [&](const std::string& where) { words += ExpectReadableOnScreen(editor, where, editor.main); };
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
        words += ExpectReadableOnScreen(editor, Utf8(title), dialog.window);
        RECT place = {};
        GetWindowRect(dialog.window, &place);
        EXPECT_LE(place.bottom - place.top, GetSystemMetrics(SM_CYSCREEN)) << Utf8(title) << " fits the screen";
        editor.Press(dialog, IDCANCEL);
    }
    editor.Do(IDM_FILE_CLOSE_ALL);
    look("start page");
    EXPECT_GT(words, 400) << "words were found at all";
}

INSTANTIATE_TEST_SUITE_P(Themes, Contrast, ::testing::Values(0, 1),
                         [](const auto& each) { return each.param == 0 ? "Light" : "Dark"; });

}  // namespace
