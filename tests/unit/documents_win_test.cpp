// The row of documents with real editors: large files from disk to disk, and places visited when tabs move and close.
#include "base/handles.h"
#include "documents/document_load.h"
#include "documents/document_place.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "documents/file_work.h"
#include "documents/nav_history.h"
#include "documents/text_pieces.h"
#include "editor/caret_place.h"
#include "editor/editor_pane.h"
#include "editor/pane_state.h"
#include "language/basic_lexer.h"
#include "scintilla/sci.h"
#include "settings/settings_state.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include "support/temp_files.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr ULONGLONG kPatienceMs = 30'000;

class DocumentsWin : public testing::Test {
protected:
    static void SetUpTestSuite() { library_ = LoadLibraryW(L"" KVX_DIST_DIR "/Scintilla.dll"); }
    static void TearDownTestSuite() { FreeLibrary(library_); }

    void SetUp() override {
        ASSERT_NE(library_, nullptr) << "no Scintilla.dll in " KVX_DIST_DIR;
        g_ui.hMainWnd =
            CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 400, 300, nullptr, nullptr, nullptr, nullptr);
        g_selftestTabsMode = true;  // no message boxes
    }
    void TearDown() override {
        while (TabCount() > 0) TabBarRemove(0);
        g_documents.navigation = {};
        g_answerInstead = nullptr;
        g_selftestTabsMode = false;
        DestroyWindow(g_ui.hMainWnd);
        g_ui.hMainWnd = nullptr;
    }

    TempFolder folder_;
    inline static HMODULE library_ = nullptr;
};

// Loads, edits, undoes and saves files that are read in pieces, with a character or a CR LF across every border.
TEST_F(DocumentsWin, LargeFilesComeBackByteForByte) {
    const struct {
        const char* across;
        LineEnding ending;
    } cases[] = {
        {"\xE2\x82\xAC", LineEnding::CrLf}, {"\r\n", LineEnding::CrLf}, {"\xF0\x9F\x98\x80\n", LineEnding::Lf}};
    for (const auto& test : cases) {
        std::string bytes;
        for (std::size_t border = kTextPiece; border <= 5 * kTextPiece; border += kTextPiece) {
            bytes.resize(border - 1, 'x');
            bytes += test.across;
        }
        const fs::path path = folder_.path / L"large.bas";
        WriteBytes(path, bytes);
        const int tab = TabBarAdd(path.c_str(), L"large.bas");
        ASSERT_GE(tab, 0);
        EXPECT_EQ(TabAt(tab).encoding, TextEncoding::Utf8) << test.across;
        EXPECT_EQ(TabAt(tab).lineEnding, test.ending) << test.across;
        const HWND editor = TabAt(tab).editor;
        const auto end = static_cast<WPARAM>(bytes.size());
        EXPECT_EQ(SciSend(editor, SCI_CANUNDO), 0) << "loading cannot be undone";
        SciSend(editor, SCI_SETTARGETRANGE, end - 1, static_cast<LPARAM>(end - 1));
        SciSend(editor, SCI_REPLACETARGET, 4, reinterpret_cast<LPARAM>("edit"));
        SciSend(editor, SCI_UNDO);
        EXPECT_EQ(SciSend(editor, SCI_GETMODIFY), 0) << test.across;
        EXPECT_EQ(FileSave(tab), 1);
        EXPECT_TRUE(ReadBytes(path) == bytes) << test.across;
        SciSend(editor, SCI_INSERTTEXT, 0, reinterpret_cast<LPARAM>("'"));
        EXPECT_EQ(FileSave(tab), 1);
        EXPECT_TRUE(ReadBytes(path) == "'" + bytes) << test.across;
        TabBarRemove(tab);
    }
    // A file that stops being UTF-8 only near its end is read again as ANSI.
    const fs::path ansi = folder_.path / L"ansi.bas";
    WriteBytes(ansi, std::string(4 * kTextPiece, 'x') + "\xE9\r\n");
    const int tab = TabBarAdd(ansi.c_str(), L"ansi.bas");
    ASSERT_GE(tab, 0);
    EXPECT_EQ(TabAt(tab).encoding, TextEncoding::Ansi);
    EXPECT_EQ(SciSend(TabAt(tab).editor, SCI_GETLENGTH), static_cast<LRESULT>(4 * kTextPiece + 4));
}

TEST_F(DocumentsWin, PlacesFromOutsideSplitNoCharacter) {
    const fs::path path = folder_.path / L"place.bas";
    WriteBytes(path, "\xE9\xE9\r\n\xE9x");  // ANSI: in the editor 4 + 2 + 3 bytes
    const int tab = TabBarAdd(path.c_str(), L"place.bas");
    const HWND editor = TabAt(tab).editor;
    const LRESULT expected[] = {0, 0, 2, 2, 4, 4, 6, 6, 8, 9, 9};
    for (LRESULT at = 0; at < 11; ++at) EXPECT_EQ(CaretPositionAt(editor, at), expected[at]) << at;
    EXPECT_EQ(CaretPositionAt(editor, -1), 0);
    EXPECT_EQ(CaretPositionOfFileColumn(TabAt(tab), 1, 1), 8) << "one byte of the code page, two of UTF-8";
    EXPECT_EQ(CaretPositionOfFileColumn(TabAt(tab), 0, 50), 4) << "not on the next line";
    EXPECT_EQ(CaretPositionOfFileColumn(TabAt(tab), 99, -1), 6);
    TabAt(tab).encoding = TextEncoding::Utf8;
    EXPECT_EQ(CaretPositionOfFileColumn(TabAt(tab), 1, 1), 6) << "inside a character of two bytes";
    SciSend(editor, SCI_GOTOPOS, 8);
    WriteBytes(path, "12345\r\n\xC3\xA9\xC3\xA9");
    EXPECT_EQ(FileReload(tab), 1);
    EXPECT_EQ(SciSend(editor, SCI_GETCURRENTPOS), 9) << "line and column stay, although bytes came in above";
    for (const int line : {0, 1}) SciSend(editor, SCI_SETFOLDLEVEL, static_cast<WPARAM>(line), 0x400 + line);
    SciSend(editor, SCI_SETFOLDLEVEL, 0, SC_FOLDLEVELBASE | SC_FOLDLEVELHEADERFLAG);
    SciSend(editor, SCI_FOLDLINE, 0, SC_FOLDACTION_CONTRACT);
    ASSERT_EQ(SciSend(editor, SCI_GETLINEVISIBLE, 1), 0);
    CaretGoTo(editor, 8);
    EXPECT_EQ(SciSend(editor, SCI_GETCURRENTPOS), 7);
    EXPECT_NE(SciSend(editor, SCI_GETLINEVISIBLE, 1), 0) << "a folded block opens";
    SciSend(editor, SCI_GOTOPOS, 9);
    SciSend(editor, SCI_FOLDLINE, 0, SC_FOLDACTION_CONTRACT);
    CaretLeaveHiddenLine(editor);
    EXPECT_EQ(SciSend(editor, SCI_GETCURRENTPOS), 1) << "beside its column, on the line that is shown";
}

// Few marks go one by one, many at once; a line can have a marker twice.
TEST_F(DocumentsWin, OneMarkerGoesFromAllLines) {
    constexpr int kMarker = 20, kOther = 21, kLines = 600;
    const fs::path path = folder_.path / L"marks.bas";
    std::string text;
    for (int i = 0; i < kLines; ++i) text += "PRINT\r\n";
    WriteBytes(path, text);
    const HWND editor = TabAt(TabBarAdd(path.c_str(), L"marks.bas")).editor;
    SciSend(editor, SCI_MARKERADD, kLines / 2, kOther);
    for (const int marked : {0, 1, 100, 128, kLines}) {
        for (int line = 0; line < marked; ++line)
            for (int twice = 0; twice < 2; ++twice) SciSend(editor, SCI_MARKERADD, static_cast<WPARAM>(line), kMarker);
        SciClearMarker(editor, kMarker);
        EXPECT_LT(SciSend(editor, SCI_MARKERNEXT, 0, 1 << kMarker), 0) << marked;
        EXPECT_EQ(SciSend(editor, SCI_MARKERNEXT, 0, 1 << kOther), kLines / 2) << marked;
    }
}

// A line of megabytes is shown plain, whatever the name and the settings say; a longer one is refused while it is read.
TEST_F(DocumentsWin, LongLinesArePlainOrRefused) {
    const fs::path path = folder_.path / L"long.bas";
    for (const std::size_t length : {2 * kLongLine, 5 * kLongLine}) {
        WriteBytes(path, "PRINT\n" + std::string(length, '\0'));
        const int tab = TabBarAdd(path.c_str(), L"long.bas");
        ASSERT_GE(tab, 0) << length;
        const HWND editor = TabAt(tab).editor;
        EXPECT_TRUE(EditorPaneIsPlain(editor));
        EXPECT_EQ(SciSend(editor, SCI_GETLEXER), 0);
        EXPECT_EQ(SciSend(editor, SCI_GETCODEPAGE), SC_CP_UTF8);
        EXPECT_TRUE(TabAt(tab).form.keepBreaks);
        WriteBytes(path, "PRINT\n");
        EXPECT_EQ(FileReload(tab), 1);
        EXPECT_FALSE(EditorPaneIsPlain(editor));
        EXPECT_EQ(SciSend(editor, SCI_GETLENGTH), 6);
        TabBarRemove(tab);
    }
    WriteBytes(path, std::string(kLargestLine + kTextPiece, '\0'));
    LoadEnd why = LoadEnd::Done;
    EXPECT_EQ(TabBarAdd(path.c_str(), L"long.bas", &why), -1);
    EXPECT_EQ(why, LoadEnd::LineTooLong);
}

// What was read ahead is taken when the file is still the same, and only once; otherwise the file is read again.
TEST_F(DocumentsWin, TextReadAheadIsTakenWhileItIsTheFiles) {
    const std::string before(kLargeFile + 1, 'a');
    const std::string after(kLargeFile + 2, 'b');
    const fs::path path = folder_.path / L"ahead.bas";
    const auto open = [&path](DWORD access, DWORD sharing) {
        return UniqueHandle{CreateFileW(path.c_str(), access, sharing, nullptr, OPEN_EXISTING, 0, nullptr)};
    };
    const auto readAhead = [&] {
        const auto progress = DocumentReadAhead(path.c_str());
        const ULONGLONG end = GetTickCount64() + kPatienceMs;
        // The reader holds the file open from when it knows the size until it has read all.
        while (progress != nullptr && (progress->total == 0 || !open(GENERIC_WRITE, FILE_SHARE_READ)))
            if (GetTickCount64() > end) return false;
        return progress != nullptr;
    };
    for (const bool changes : {false, true}) {
        WriteBytes(path, before);
        ASSERT_TRUE(readAhead());
        if (changes) WriteBytes(path, after);
        for (const bool again : {false, true}) {
            // Nobody can read the file now, so the text is there only when it was read before.
            const UniqueHandle locked = changes ? UniqueHandle{} : open(GENERIC_READ, 0);
            LoadEnd why = LoadEnd::Done;
            const int tab = TabBarAdd(path.c_str(), L"ahead.bas", &why);
            ASSERT_EQ(why, again && !changes ? LoadEnd::Unreadable : LoadEnd::Done) << changes;
            if (tab < 0) continue;
            const HWND editor = TabAt(tab).editor;
            EXPECT_EQ(SciSend(editor, SCI_GETLENGTH), static_cast<LRESULT>((changes ? after : before).size()));
            TabBarRemove(tab);
        }
    }
    // What was dropped is not taken.
    WriteBytes(path, before);
    ASSERT_TRUE(readAhead());
    DocumentReadAheadEnd();
    const UniqueHandle locked = open(GENERIC_READ, 0);
    LoadEnd why = LoadEnd::Done;
    EXPECT_EQ(TabBarAdd(path.c_str(), L"ahead.bas", &why), -1);
    EXPECT_EQ(why, LoadEnd::Unreadable);
}

LRESULT CALLBACK ForwardChanges(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto* const change = reinterpret_cast<const SCNotification*>(lParam);
    if (message == WM_NOTIFY && change->nmhdr.code == SCN_MODIFIED)
        EditorPaneOnModified(static_cast<HWND>(change->nmhdr.hwndFrom), *change);
    return DefWindowProcW(window, message, wParam, lParam);
}

// A line of megabytes that comes into an open text does the same, whatever brings it; undo and redo go with it.
TEST_F(DocumentsWin, AChangeThatBringsALongLineMakesThePanePlain) {
    SetWindowLongPtrW(g_ui.hMainWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(ForwardChanges));
    SettingsChange([](Settings& settings) { settings.wordWrap = 1; });
    const fs::path path = folder_.path / L"short.bas";
    const std::string start = "PRINT 1\nPRINT 2\n", half(kLongLine / 2 + 1, 'x');
    const auto send = [](HWND editor, UINT message, std::size_t at, const std::string& text) {
        SciSend(editor, message, at, reinterpret_cast<LPARAM>(text.c_str()));
    };
    const struct {
        const char* name;
        std::function<void(HWND)> change;
    } cases[] = {
        {"inserted", [&](HWND editor) { send(editor, SCI_INSERTTEXT, 6, half + half); }},
        {"with lines around", [&](HWND editor) { send(editor, SCI_REPLACESEL, 0, "a\n" + half + half + "\nb\n"); }},
        {"grown",
         [&](HWND editor) {
             for (int i = 0; i < 2; ++i) send(editor, SCI_INSERTTEXT, 3, half);
         }},
        {"joined",
         [&](HWND editor) {
             send(editor, SCI_INSERTTEXT, 0, half + "\n" + half);
             EXPECT_FALSE(EditorPaneIsPlain(editor)) << "both lines are short enough";
             SciSend(editor, SCI_DELETERANGE, half.size(), 1);
         }},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        WriteBytes(path, start);
        const int tab = TabBarAdd(path.c_str(), L"short.bas");
        ASSERT_GE(tab, 0);
        const HWND editor = TabAt(tab).editor;
        const LRESULT lexer = SciSend(editor, SCI_GETLEXER);
        ASSERT_NE(SciSend(editor, SCI_GETWRAPMODE), SC_WRAP_NONE);
        for (const bool again : {false, true}) {
            if (again)
                while (SciSend(editor, SCI_CANREDO) != 0) SciSend(editor, SCI_REDO);
            else
                test.change(editor);
            EXPECT_TRUE(EditorPaneIsPlain(editor)) << again;
            EXPECT_GT(EditorPaneLongLine(editor), kLongLine);
            EXPECT_EQ(SciSend(editor, SCI_GETLEXER), 0);
            EXPECT_EQ(SciSend(editor, SCI_GETWRAPMODE), SC_WRAP_NONE);
            while (SciSend(editor, SCI_CANUNDO) != 0) SciSend(editor, SCI_UNDO);
            std::size_t length = 0;
            const std::unique_ptr<char, decltype(&std::free)> text(EditorPaneGetText(editor, &length), std::free);
            EXPECT_EQ(std::string_view(text.get(), length), start);
        }
        if (std::string_view(test.name) != "joined" && std::string_view(test.name) != "grown") {
            EXPECT_FALSE(EditorPaneIsPlain(editor)) << "the line is gone";
            EXPECT_EQ(SciSend(editor, SCI_GETLEXER), lexer);
            EXPECT_NE(SciSend(editor, SCI_GETWRAPMODE), SC_WRAP_NONE);
        }
        TabBarRemove(tab);
    }
}

// Esc reaches the work; work that hangs is left behind; closing the window is put off.
TEST_F(DocumentsWin, WorkOnAFileIsCancelledByEsc) {
    for (const bool hangs : {false, true}) {
        const auto progress = std::make_shared<FileProgress>();
        const auto release = std::make_shared<std::atomic<bool>>(false);
        PostMessageW(g_ui.hMainWnd, hangs ? WM_CLOSE : WM_KEYDOWN, hangs ? 0 : VK_ESCAPE, 0);
        const bool ended = FileWorkRun({.verb = L"Opening", .label = L"x", .progress = progress, .work = [=] {
                                            for (int i = 0; i < 6000 && !(hangs ? *release : progress->cancel); ++i)
                                                Sleep(1);
                                        }});
        EXPECT_EQ(ended, !hangs);
        EXPECT_TRUE(progress->cancel);
        EXPECT_FALSE(FileWorkRuns());
        MSG message = {};
        EXPECT_EQ(PeekMessageW(&message, g_ui.hMainWnd, WM_CLOSE, WM_CLOSE, PM_REMOVE) != FALSE, hangs);
        *release = true;
    }
}

TEST_F(DocumentsWin, PlacesVisitedFollowMovedTabsAndEndWithClosedOnes) {
    DocumentId ids[3] = {};
    for (int i = 0; i < 3; ++i) {
        ids[i] = TabAt(TabBarAdd(L"", L"Untitled")).id;
        TabBarSelect(i);
    }
    TabBarMove(0, 2);  // 1 2 0
    NavHistoryBack();
    EXPECT_EQ(ActiveDocumentId(), ids[1]);
    NavHistoryBack();
    EXPECT_EQ(ActiveDocumentId(), ids[0]) << "a moved tab keeps its places";
    NavHistoryForward();
    NavHistoryForward();
    EXPECT_EQ(ActiveDocumentId(), ids[2]);
    TabBarRemove(TabBarFindDocument(ids[1]));
    const int before = g_documents.navigation.navIndex;
    NavHistoryBack();
    EXPECT_EQ(ActiveDocumentId(), ids[2]) << "the place before is gone: no other file is shown for it";
    EXPECT_EQ(g_documents.navigation.navIndex, before - 1);
    NavHistoryBack();
    EXPECT_EQ(ActiveDocumentId(), ids[0]);
}

TEST_F(DocumentsWin, ClosingSeveralKeepsTheRestAndEndsAtCancel) {
    DocumentId ids[5] = {};
    for (int i = 0; i < 5; ++i) ids[i] = TabAt(TabBarAdd(L"", L"Untitled")).id;
    TabBarSelect(4);
    EXPECT_EQ(FileCloseDocuments(CloseRange::Right, ids[2]), 1);
    EXPECT_EQ(TabCount(), 3);
    EXPECT_EQ(ActiveDocumentId(), ids[2]);
    for (const DocumentId id : {ids[0], ids[2]}) TabAt(TabBarFindDocument(id)).modified = true;
    static int asked;
    asked = 0;
    g_answerInstead = [](const UserQuestion&) { return ++asked == 1 ? Answer::Cancel : Answer::No; };
    EXPECT_EQ(FileCloseDocuments(CloseRange::Others, ids[1]), 0);
    EXPECT_EQ(TabCount(), 3) << "nothing is closed before the question is answered";
    TabBarPin(TabBarFindDocument(ids[0]), true);
    EXPECT_EQ(FileCloseDocuments(CloseRange::Others, ids[1]), 1);
    EXPECT_EQ(TabCount(), 2) << "the pinned one stays, with its changes";
    TabBarPin(TabBarFindDocument(ids[0]), false);
    EXPECT_EQ(FileCloseDocuments(CloseRange::Others, ids[1]), 1);
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(TabCount(), 1);
    EXPECT_EQ(ActiveDocumentId(), ids[1]);
    g_answerInstead = nullptr;
}

// All that the lexer has left: styles, line states, fold levels.
std::vector<LRESULT> LexerMarks(HWND editor) {
    std::vector<LRESULT> marks;
    const LRESULT length = SciSend(editor, SCI_GETLENGTH), lines = SciSend(editor, SCI_GETLINECOUNT);
    for (LRESULT at = 0; at < length; ++at) marks.push_back(PaneSend(editor, SCI_GETSTYLEAT, at));
    for (LRESULT line = 0; line < lines; ++line) {
        marks.push_back(PaneSend(editor, SCI_GETLINESTATE, line));
        marks.push_back(PaneSend(editor, SCI_GETFOLDLEVEL, line) & (SC_FOLDLEVELNUMBERMASK | SC_FOLDLEVELHEADERFLAG));
    }
    return marks;
}

// Colours end where the lines agree again; what is left alone must be what colouring all of the text would give.
TEST_F(DocumentsWin, ColoursAfterEditsAreThoseOfTheWholeText) {
    static constexpr const char* kPieces[] = {
        "SUB a\n", "END SUB\n", "IF x THEN\n", "END IF\n", "x = 1 _\n", "ASM\n",    "END ASM\n",
        "/'",      "'/",        "' c",         "\"",       "#IF 1\n",   "#ENDIF\n", "! mov eax, 1\n",
        "\n",      "\r",        "y",           " ",        "TYPE t\n",  "END",      "FOR i = 1 TO 2: NEXT\n"};
    const HWND editor = EditorPaneCreate(nullptr, g_ui.hMainWnd, 1);
    ShowWindow(g_ui.hMainWnd, SW_SHOWNA);
    SetWindowPos(editor, nullptr, 0, 0, 400, 300, SWP_SHOWWINDOW);
    SciSend(editor, SCI_SETILEXER, 0, reinterpret_cast<LPARAM>(CreateBasicLexer()));
    SciSend(editor, SCI_SETPROPERTY, reinterpret_cast<WPARAM>("fold"), reinterpret_cast<LPARAM>("1"));
    std::string code;
    while (code.size() < 2000) code += "SUB a\n  DO\n    x = y + 1 ' c\n  LOOP\n  IF x THEN\n  END IF\nEND SUB\n";
    std::string text = code;  // then so much that the end can be coloured before what is above it
    while (text.size() < 40'000) text += "'" + std::string(4000, '-') + "\n";
    text += code;
    SciSend(editor, SCI_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    EditorColourRestart(editor);
    std::mt19937 random(3);
    const auto below = [&random](LRESULT end) { return static_cast<LRESULT>(random() % static_cast<unsigned>(end)); };
    const auto lineStart = [&] {
        return PaneSend(editor, SCI_POSITIONFROMLINE, below(SciSend(editor, SCI_GETLINECOUNT)));
    };
    for (int round = 0, settled = 0; round < 600 || settled < 50; ++round) {
        ASSERT_LT(round, 1200) << "colouring ends early only " << settled << " times";
        const LRESULT length = SciSend(editor, SCI_GETLENGTH);
        SCNotification change = {};
        change.position = std::min(lineStart() + below(12), length);
        if (random() % 3 == 0) {
            change.modificationType = SC_MOD_DELETETEXT;
            change.length = std::min<LRESULT>(below(random() % 4 == 0 ? 300 : 8), length - change.position);
            PaneSend(editor, SCI_DELETERANGE, change.position, change.length);
        } else {
            const char* piece = kPieces[random() % std::size(kPieces)];
            change.modificationType = SC_MOD_INSERTTEXT;
            change.length = static_cast<Sci_Position>(std::string_view(piece).size());
            PaneSend(editor, SCI_INSERTTEXT, change.position, reinterpret_cast<LPARAM>(piece));
        }
        EditorPaneOnModified(editor, change);
        const LRESULT end = SciSend(editor, SCI_GETLENGTH);
        if (random() % 2 == 0) PaneSend(editor, SCI_SETFIRSTVISIBLELINE, below(SciSend(editor, SCI_GETLINECOUNT)));
        if (random() % 3 != 0) RedrawWindow(editor, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        if (random() % 3 == 0) EditorColourUpTo(editor, lineStart());
        settled += PaneStateOf(editor)->colours.coloured == end ? 1 : 0;
        if (random() % 16 != 0) continue;
        for (LRESULT line = 0; line < SciSend(editor, SCI_GETLINECOUNT); line += 1 + below(3))
            EditorColourUpTo(editor, PaneSend(editor, SCI_POSITIONFROMLINE, line));
        ASSERT_TRUE(EditorColourUpTo(editor, end));
        const std::vector<LRESULT> marks = LexerMarks(editor);
        SciSend(editor, SCI_COLOURISE, 0, -1);
        ASSERT_EQ(marks == LexerMarks(editor), true) << "round " << round;
        EditorColourRestart(editor);
        ASSERT_TRUE(EditorColourUpTo(editor, end));
    }
}

}  // namespace
