// Documents on disk: what a save writes, byte for byte; save as, reload, close, backups, recent files, failed saves.
#include "harness.h"

#include "support/deep_folder.h"

#include <array>
#include <filesystem>

#include "resources/ids.h"

namespace {

std::string HighBytes() {
    std::string bytes;
    for (int c = 0x80; c <= 0xFF; ++c) bytes += static_cast<char>(c);
    return bytes;
}

// Every file below `folder` whose content is `text`.
int CountCopies(const std::wstring& folder, const std::string& text) {
    int count = 0;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, ignored))
        if (entry.is_regular_file() && entry.file_size() == text.size())
            count += ReadBytes(entry.path().wstring()) == text;
    return count;
}

}  // namespace

TEST(Files, EditingUndoAndSavingKeepEveryByte) {
    struct Case {
        const char* name;
        std::string bytes;
        std::string saved;  // what a save makes of it; empty: the same bytes
        const wchar_t *encoding, *lineEnding;
    };
    using namespace std::string_literals;
    const Case cases[] = {
        {"utf8", "PRINT \"\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80\"\r\nEND\r\n", "", L"UTF-8", L"CRLF"},
        {"ansi", "' caf\xE9 \x80\x93\r\nEND\r\n", "", L"ANSI", L"CRLF"},
        {"ansi_all_lf", HighBytes() + "\n", "", L"ANSI", L"LF"},
        {"overlong", "a\xC0\x80\r\n", "", L"ANSI", L"CRLF"},
        {"surrogate", "\xED\xA0\x80\r", "", L"ANSI", L"CR"},
        {"lf", "a\nb\n\n", "", L"UTF-8", L"LF"},
        {"cr", "a\rb\r\r", "", L"UTF-8", L"CR"},
        {"no_final_break", "a\r\nb", "", L"UTF-8", L"CRLF"},
        {"one_line", "a", "", L"UTF-8", L"CRLF"},
        {"empty", "", "", L"UTF-8", L"CRLF"},
        {"with_nul", "a\0\0b\r\n\0\n\r"s, "", L"UTF-8", L"CRLF"},
        {"bom", "\xEF\xBB\xBFPRINT\n", "", L"UTF-8", L"LF"},
        {"mixed_cr_first", "a\rb\r\nc\n", "a\rb\rc\r", L"UTF-8", L"CR"},
        {"mixed_lf_first", "a\nb\r\nc\r", "a\nb\nc\n", L"UTF-8", L"LF"},
        {"mixed_crlf_first", "a\r\nb\nc\rd", "a\r\nb\r\nc\r\nd", L"UTF-8", L"CRLF"},
    };
    ProgramFolder folder;
    std::wstring arguments;
    for (const Case& c : cases) arguments += OpenArgument(folder.Write(Wide(c.name) + L".txt", c.bytes));
    Editor editor(folder, arguments);
    ASSERT_EQ(editor.Tabs(), static_cast<int>(std::size(cases)));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::wstring file = Wide(c.name) + L".txt";
        const std::string saved = c.saved.empty() ? c.bytes : c.saved;
        while (editor.TabLabel(editor.ActiveTab()) != file) {
            const int before = editor.ActiveTab();
            editor.Do(IDM_NEXT_TAB);
            ASSERT_NE(editor.ActiveTab(), before);
        }
        EXPECT_EQ(editor.Status(kPartEncoding), c.encoding);
        const bool mixed = std::string_view(c.name).starts_with("mixed");
        EXPECT_EQ(editor.Status(kPartLineEnding), mixed ? L"Mixed" : c.lineEnding);
        EXPECT_EQ(Count(editor.Output(), L"[File] " + file + L" has line breaks of several kinds"), mixed ? 1 : 0);
        EXPECT_FALSE(editor.Modified());
        // The bytes of the file, not of the text in memory: those that it has, and those that the next save writes.
        const auto tells = [&](std::size_t bytes) {
            return WaitFor([&] {
                return editor.Status(kPartSelection) ==
                       std::to_wstring(bytes) + (bytes == 1 ? L" byte in all" : L" bytes in all");
            });
        };
        EXPECT_TRUE(tells(c.bytes.size())) << Utf8(editor.Status(kPartSelection));
        editor.Sci(SCI_GOTOPOS, 0);
        editor.Type("x");
        EXPECT_TRUE(editor.Modified());
        if (c.saved.empty() && !c.bytes.starts_with("\xEF"))
            EXPECT_TRUE(tells(c.bytes.size() + 1)) << Utf8(editor.Status(kPartSelection));
        editor.Do(IDM_FILE_SAVE);
        EXPECT_FALSE(editor.Modified());
        EXPECT_EQ(folder.Read(file), "x" + saved);
        EXPECT_TRUE(WaitFor([&] { return editor.Status(kPartLineEnding) == c.lineEnding; }));
        editor.Do(IDM_EDIT_UNDO);
        EXPECT_TRUE(editor.Modified()) << "undoing past the save modifies";
        editor.Do(IDM_FILE_SAVE);
        EXPECT_EQ(folder.Read(file), saved);
    }
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Files, OpenSaveAsAndReload) {
    ProgramFolder folder;
    const std::wstring source = folder.Write(L"in.txt", "one\n");
    Editor editor(folder);
    editor.Post(IDM_FILE_OPEN);
    editor.AnswerFileDialog(source);
    ASSERT_TRUE(WaitFor([&] { return editor.Tabs() == 2; })) << editor.Describe();
    EXPECT_EQ(editor.Text(), "one\n");

    // A new name always means ANSI and CRLF; the extension is added; the document goes by the new name.
    editor.Sci(SCI_GOTOPOS, 4);
    editor.Type("caf\xC3\xA9\n");
    editor.Post(IDM_FILE_SAVE_AS);
    editor.AnswerFileDialog(folder.File(L"out"));
    ASSERT_TRUE(WaitFor([&] { return !editor.Modified(); })) << editor.Describe();
    EXPECT_EQ(folder.Read(L"out.bas"), "one\r\ncaf\xE9\r\n");
    EXPECT_EQ(folder.Read(L"in.txt"), "one\n");
    EXPECT_EQ(editor.TabLabel(1), L"out.bas");
    EXPECT_NE(editor.Title().find(L"out.bas"), std::wstring::npos);
    EXPECT_EQ(editor.Status(kPartEncoding), L"ANSI");
    EXPECT_FALSE(editor.Modified());
    EXPECT_EQ(folder.Ini(L"MRU", L"File0"), folder.File(L"out.bas"));

    // Saving an untitled document asks for a name; refusing leaves it as it is.
    editor.Do(IDM_PREVIOUS_TAB);
    ASSERT_EQ(editor.ActiveTab(), 0);
    editor.Type("'x");
    editor.Post(IDM_FILE_SAVE);
    editor.AnswerFileDialog(folder.File(L"never.bas"), IDCANCEL);
    EXPECT_TRUE(editor.Modified());
    EXPECT_FALSE(Exists(folder.File(L"never.bas")));
    EXPECT_EQ(editor.TabLabel(0), L"Untitled");

    editor.Do(IDM_EDIT_UNDO);
    editor.Post(IDM_FILE_SAVE);
    editor.AnswerFileDialog(folder.File(L"empty.bas"));
    EXPECT_TRUE(WaitFor([&] { return editor.TabLabel(0) == L"empty.bas"; })) << editor.Describe();
    EXPECT_TRUE(Exists(folder.File(L"empty.bas")));

    // Text that ANSI does not have is never replaced unasked.
    editor.Type("\xE6\x97\xA5");
    editor.Post(IDM_FILE_SAVE_AS);
    editor.AnswerFileDialog(folder.File(L"kanji.bas"));
    editor.Answer(kProgramTitle, L"", IDYES);
    EXPECT_TRUE(WaitFor([&] { return editor.Status(kPartEncoding) == L"UTF-8" && !editor.Modified(); }));
    EXPECT_EQ(folder.Read(L"kanji.bas"), "\xE6\x97\xA5");

    folder.Write(L"kanji.bas", "new\n\xFF");
    editor.Do(IDM_FILE_RELOAD);
    EXPECT_EQ(editor.Text(), "new\n\xC3\xBF");
    EXPECT_FALSE(editor.Modified());
    EXPECT_NE(editor.Sci(SCI_CANUNDO), 0) << "a reload can be undone, although the encoding is another";
    EXPECT_TRUE(
        WaitFor([&] { return editor.Status(kPartEncoding) == L"ANSI" && editor.Status(kPartLineEnding) == L"LF"; }));
    DeleteFileW(folder.File(L"kanji.bas").c_str());
    editor.Post(IDM_FILE_RELOAD);
    editor.Answer(kProgramTitle, L"Failed to reload file: " + folder.File(L"kanji.bas"), IDOK);
    EXPECT_EQ(editor.Text(), "new\n\xC3\xBF") << "the text stays";
    folder.Write(L"kanji.bas", "new\n\xFF");  // otherwise the close asks
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Files, CloseAsksAndObeys) {
    ProgramFolder folder;
    struct Case {
        int answer;
        bool closed;
        const char* onDisk;
    };
    for (const Case& c : {Case{IDYES, true, "xa\r\n"}, Case{IDNO, true, "a\r\n"}, Case{IDCANCEL, false, "a\r\n"}}) {
        SCOPED_TRACE(c.answer);
        Editor editor(folder, OpenArgument(folder.Write(L"a.bas", "a\r\n")), Until::Started);
        if (Exists(folder.File(kSessionFile))) editor.Answer(kRestore, L"", IDNO);
        ASSERT_TRUE(editor.AwaitReady());
        editor.Type("x");
        editor.Post(IDM_FILE_CLOSE);
        editor.Answer(kUnsaved, L"Save changes to a.bas?", c.answer);
        const std::wstring line = L"prompt answered tab=0 result=" + std::to_wstring(c.answer) + L" count=1";
        EXPECT_TRUE(WaitFor([&] { return editor.Log().find(line) != std::wstring::npos; })) << editor.Describe();
        if (!c.closed) {
            EXPECT_EQ(editor.TabLabel(0), L"a.bas");
            EXPECT_EQ(folder.Read(L"a.bas"), c.onDisk);
            EXPECT_TRUE(editor.Modified());
            // A failed save keeps the tab as well.
            SetFileAttributesW(folder.File(L"a.bas").c_str(), FILE_ATTRIBUTE_READONLY);
            editor.Post(IDM_FILE_CLOSE);
            editor.Answer(kUnsaved, L"", IDYES);
            editor.Answer(kProgramTitle, L"Failed to save file: " + folder.File(L"a.bas"), IDCANCEL);
            EXPECT_EQ(editor.TabLabel(0), L"a.bas");
            EXPECT_TRUE(editor.Modified());
            SetFileAttributesW(folder.File(L"a.bas").c_str(), FILE_ATTRIBUTE_NORMAL);
            // Leaving the program asks as well, and a refusal keeps it.
            editor.Post(IDM_FILE_EXIT);
            editor.Answer(kUnsaved, L"a.bas has unsaved changes.", IDCANCEL);
            editor.Send(editor.main, WM_NULL);
            EXPECT_EQ(editor.Text(), "xa\r\n");
            editor.Post(IDM_FILE_EXIT);
            editor.Answer(kUnsaved, L"a.bas has unsaved changes.", IDC_CLOSE_SAVE);
            EXPECT_EQ(editor.ExitCode(), 0u);
            EXPECT_EQ(folder.Read(L"a.bas"), "xa\r\n");
        } else {
            EXPECT_TRUE(WaitFor([&] { return editor.Title() == L"Untitled - KVXE Editor"; })) << Utf8(editor.Title());
            EXPECT_EQ(folder.Read(L"a.bas"), c.onDisk);
        }
    }
}

TEST(Files, BackupsAndSaveAll) {
    ProgramFolder folder;
    folder.SetIni(L"Editor", L"BackupOnSave", L"1");
    Editor editor(folder,
                  OpenArgument(folder.Write(L"a.bas", "a\r\n")) + OpenArgument(folder.Write(L"b.bas", "b\r\n")));
    editor.Type("2");
    editor.Do(IDM_PREVIOUS_TAB);
    editor.Type("1");
    editor.Do(IDM_FILE_SAVE_ALL);
    EXPECT_EQ(folder.Read(L"a.bas"), "1a\r\n");
    EXPECT_EQ(folder.Read(L"b.bas"), "2b\r\n");
    EXPECT_EQ(folder.Read(L"a.bas.bak"), "a\r\n");
    editor.Type("1");
    editor.Do(IDM_FILE_SAVE);
    EXPECT_EQ(folder.Read(L"a.bas.bak"), "1a\r\n") << "the copy follows";
    editor.Type("1");
    editor.Send(editor.main, WM_TIMER, TIMER_AUTO_SAVE);
    EXPECT_EQ(folder.Read(L"a.bas"), "111a\r\n") << "the auto-save timer saves what has a file";
    editor.Send(editor.main, WM_TIMER, TIMER_SESSION);
    EXPECT_NE(folder.Read(kSessionFile).find("a.bas"), std::string::npos);
    DeleteFileW(folder.File(L"b.bas").c_str());
    DeleteFileW(folder.File(L"b.bas.bak").c_str());
    editor.Do(IDM_NEXT_TAB);
    editor.Do(IDM_FILE_SAVE);
    EXPECT_EQ(folder.Read(L"b.bas"), "2b\r\n");
    EXPECT_FALSE(Exists(folder.File(L"b.bas.bak"))) << "nothing to copy";
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Files, RecentListKeepsTenNewestFirst) {
    ProgramFolder folder;
    std::wstring arguments;
    for (int i = 1; i <= 12; ++i) arguments += OpenArgument(folder.Write(L"f" + std::to_wstring(i) + L".bas", ""));
    {
        Editor editor(folder, arguments + OpenArgument(folder.File(L"F12.BAS")));
        EXPECT_EQ(editor.Tabs(), 12) << "the same file under another case is the same file";
        EXPECT_EQ(editor.ActiveTab(), 11);
        EXPECT_EQ(folder.Ini(L"MRU", L"Count"), L"10") << "written at once";
        EXPECT_EQ(folder.Ini(L"MRU", L"File0"), folder.File(L"f12.bas"));
        EXPECT_EQ(folder.Ini(L"MRU", L"File9"), folder.File(L"f3.bas"));
        editor.Do(IDM_FILE_CLOSE_ALL);
        EXPECT_EQ(editor.Close(), 0u);
    }
    DeleteFileW(folder.File(kSessionFile).c_str());
    folder.SetIni(L"Editor", L"RestoreLastSession", L"0");
    Editor editor(folder, OpenArgument(folder.File(L"f10.bas")));
    EXPECT_EQ(folder.Ini(L"MRU", L"Count"), L"10");
    EXPECT_EQ(folder.Ini(L"MRU", L"File0"), folder.File(L"f10.bas"));
    EXPECT_EQ(folder.Ini(L"MRU", L"File1"), folder.File(L"f12.bas"));
    EXPECT_EQ(folder.Ini(L"MRU", L"File3"), folder.File(L"f9.bas"));
}

TEST(Files, LongPathsWorkOrAreRefusedInWords) {
    ProgramFolder folder;
    const DeepFolder deep(folder.path);
    const std::wstring file = deep.File(L"deep.bas"), plain = DeepFolder::LongForm(file);
    WriteBytes(plain, "old\n");
    const std::wstring endless = folder.path + std::wstring(1100, L'x') + L".bas";
    Editor editor(folder, OpenArgument(file) + OpenArgument(endless), Until::Started);
    const Dialog refusal = editor.AwaitDialog(kProgramTitle);
    EXPECT_TRUE(refusal.text.starts_with(L"Failed to open file: ")) << Utf8(refusal.text);
    editor.Press(refusal, IDOK);
    ASSERT_TRUE(editor.AwaitReady());
    ASSERT_EQ(editor.Tabs(), 1);
    EXPECT_EQ(editor.Text(), "old\n");
    editor.Type("new ");
    editor.Do(IDM_FILE_SAVE);
    EXPECT_EQ(ReadBytes(plain), "new old\n");
    EXPECT_EQ(editor.Close(), 0u);
    DeleteFileW(plain.c_str());
}

// Each way of failing: the message, the tab still modified, the old file whole, the new text in a recovery copy.
TEST(Files, FailedSaveLosesNothing) {
    ProgramFolder folder;
    folder.SetIni(L"Editor", L"BackupOnSave", L"1");
    const std::wstring path = folder.Write(L"a.bas", "old\r\n");
    Editor editor(folder, OpenArgument(path));
    const auto expectFailure = [&](const std::wstring& file, const std::string& text, const std::string& onDisk,
                                   int button) {
        editor.Post(IDM_FILE_SAVE);
        editor.Answer(kProgramTitle, L"Failed to save file: " + file, button);
        EXPECT_TRUE(editor.Modified());
        EXPECT_EQ(ReadBytes(file).value_or("(unreadable)"), onDisk);
        EXPECT_GE(CountCopies(folder.File(L"local"), text), 1) << "no recovery copy holds the text";
    };

    editor.Type("read-only 1 ");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    expectFailure(path, "read-only 1 old\r\n", "old\r\n", IDCANCEL);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);

    editor.Type("locked 2 ");
    const HANDLE lock = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    expectFailure(path, "read-only 1 locked 2 old\r\n", "(unreadable)", IDOK);
    CloseHandle(lock);
    EXPECT_EQ(folder.Read(L"a.bas"), "old\r\n");

    SetFileAttributesW(folder.File(L"a.bas.bak").c_str(), FILE_ATTRIBUTE_NORMAL);  // copied from a read-only file
    folder.Write(L"a.bas", "o");  // as a save that broke off in the middle leaves it
    editor.Post(IDM_FILE_SAVE);
    editor.Answer(kProgramTitle, L"a.bas was changed by another program", IDC_OUTSIDE_FIRST);
    EXPECT_TRUE(WaitFor([&] { return !editor.Modified(); }));
    EXPECT_EQ(folder.Read(L"a.bas"), "read-only 1 locked 2 old\r\n");
    EXPECT_EQ(folder.Read(L"a.bas.bak"), "old\r\n") << "the good backup gave way to the damaged file";
    EXPECT_EQ(CountCopies(folder.File(L"local"), "read-only 1 locked 2 old\r\n"), 0)
        << "a verified save needs no copy any more";

    // The folder was renamed: it can be made again, and the document saved there.
    const std::wstring away = folder.Write(L"was here\\b.bas", "b\r\n");
    editor.Post(IDM_FILE_OPEN);
    editor.AnswerFileDialog(away);
    ASSERT_TRUE(WaitFor([&] { return editor.Tabs() == 2; }));
    editor.Type("kept ");
    ASSERT_TRUE(MoveFileW(folder.File(L"was here").c_str(), folder.File(L"is there").c_str()));
    editor.Post(IDM_FILE_SAVE);
    editor.Answer(kProgramTitle, L"Failed to save file: " + away + L"\n\nThe folder of the file is not there", IDYES);
    EXPECT_TRUE(WaitFor([&] { return !editor.Modified(); }));
    EXPECT_EQ(folder.Read(L"was here\\b.bas") + folder.Read(L"is there\\b.bas"), "kept b\r\nb\r\n");
    editor.Do(IDM_FILE_CLOSE);

    // A save under a new name that fails leaves the document to its own file. A folder that is missing is offered.
    editor.Post(IDM_FILE_SAVE_AS);
    editor.AnswerFileDialog(folder.File(L"no folder\\deeper\\other.bas"));
    editor.Answer(kProgramTitle, L"The folder ", IDCANCEL);
    EXPECT_EQ(editor.NameInFileDialog(), L"other.bas") << "it need not be typed again";
    editor.AnswerFileDialog(folder.File(L"never.bas"), IDCANCEL);
    EXPECT_EQ(editor.TabLabel(0), L"a.bas");

    // A file that is as it was: undoing all changes makes the document equal to it. The box says why and where the text is.
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    editor.Type("x");
    editor.Post(IDM_FILE_SAVE);
    const Dialog box = editor.AwaitDialog(kProgramTitle);
    EXPECT_NE(box.text.find(L"read-only"), std::wstring::npos) << Utf8(box.text);
    EXPECT_NE(box.text.find(L"\\Recovery\\a ["), std::wstring::npos) << Utf8(box.text);
    editor.Press(box, IDCANCEL);
    EXPECT_TRUE(WaitFor([&] { return editor.ButtonWorks(IDM_FILE_SAVE_ALL); }));
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_TRUE(WaitFor([&] { return !editor.ButtonWorks(IDM_FILE_SAVE_ALL); })) << "still modified";

    // It is made writable when the user says so.
    editor.Type("y");
    editor.Post(IDM_FILE_SAVE);
    editor.Answer(kProgramTitle, L"Failed to save file: " + path, IDYES);
    EXPECT_TRUE(WaitFor([&] { return !editor.Modified(); }));
    EXPECT_TRUE(folder.Read(L"a.bas").find('y') != std::string::npos);
    editor.Post(IDM_FILE_SAVE_AS);
    editor.AnswerFileDialog(folder.File(L"no folder\\deeper\\other.bas"));
    editor.Answer(kProgramTitle, L"The folder ", IDOK);
    EXPECT_TRUE(WaitFor([&] { return editor.TabLabel(0) == L"other.bas"; }));
    EXPECT_EQ(folder.Read(L"no folder\\deeper\\other.bas"), folder.Read(L"a.bas"));
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    editor.Do(IDM_FILE_SAVE);
    editor.Do(IDM_FILE_CLOSE);
    EXPECT_TRUE(WaitFor([&] { return editor.Title() == L"Untitled - KVXE Editor"; })) << editor.Describe();
}

// UTF-16 is read as text and saved as the user says; the same file under a second name is no second document.
TEST(Files, Utf16AndSecondNames) {
    using namespace std::string_literals;
    ProgramFolder folder;
    const std::wstring path = folder.Write(L"u.bas",
                                           "\xFF\xFE"
                                           "a\0\xAC\x20\r\0\n\0"s);
    const std::wstring link = folder.File(L"link.bas");
    ASSERT_TRUE(CreateHardLinkW(link.c_str(), path.c_str(), nullptr));
    Editor editor(folder, OpenArgument(path) + OpenArgument(link));
    EXPECT_EQ(editor.Tabs(), 1);
    EXPECT_EQ(editor.Text(), "a\xE2\x82\xAC\r\n");
    EXPECT_EQ(editor.Status(kPartEncoding), L"UTF-16 LE");
    EXPECT_TRUE(editor.AwaitOutput(L"[File] u.bas is UTF-16 text."));
    EXPECT_TRUE(editor.Status(kPartMessage).starts_with(L"u.bas is UTF-16 text."));
    editor.Do(IDM_FILE_NEW);
    EXPECT_EQ(editor.Status(kPartMessage), L"") << "that was about the other document";
    editor.Do(IDM_FILE_CLOSE);
    editor.Type("x");
    editor.Send(editor.main, WM_TIMER, TIMER_AUTO_SAVE);  // asks nothing by itself
    editor.Post(IDM_FILE_SAVE);
    editor.Answer(kProgramTitle, L"u.bas is UTF-16 text", IDYES);
    EXPECT_TRUE(WaitFor([&] { return !editor.Modified(); }));
    EXPECT_EQ(folder.Read(L"u.bas"),
              "\xFF\xFEx\0"
              "a\0\xAC\x20\r\0\n\0"s);
    editor.Type("y");
    editor.Do(IDM_FILE_SAVE);
    EXPECT_EQ(folder.Read(L"u.bas").size(), 14U) << "asked once";
    editor.Do(IDM_FILE_RELOAD);
    editor.Type("z");
    editor.Post(IDM_FILE_SAVE);
    editor.Answer(kProgramTitle, L"u.bas is UTF-16 text", IDNO);
    EXPECT_TRUE(WaitFor([&] { return editor.Status(kPartEncoding) == L"UTF-8"; }));
    EXPECT_EQ(folder.Read(L"u.bas"), "xyza\xE2\x82\xAC\r\n");
    EXPECT_EQ(editor.Close(), 0u);
}

// KVX_SMALL_DISK names a folder on a disk of a few hundred kilobytes that the tests may fill (scripts/test mounts one).
TEST(Files, FullDiskLosesNothing) {
    const std::wstring disk = Variable(L"KVX_SMALL_DISK");
    if (disk.empty()) GTEST_SKIP() << "KVX_SMALL_DISK is not set";
    ProgramFolder folder;
    const std::wstring path = disk + L"\\full.bas";
    WriteBytes(path, "old\r\n");
    ULARGE_INTEGER room{};
    ASSERT_TRUE(GetDiskFreeSpaceExW(disk.c_str(), &room, nullptr, nullptr));
    ASSERT_LT(room.QuadPart, 4u << 20) << "not a small disk";
    Editor editor(folder, OpenArgument(path));
    const std::string text(static_cast<std::size_t>(room.QuadPart) + 65536, 'z');
    editor.Type(text);
    editor.Post(IDM_FILE_SAVE);
    editor.Answer(kProgramTitle, L"Failed to save file: " + path, IDOK);
    EXPECT_TRUE(editor.Modified());
    EXPECT_GE(CountCopies(folder.File(L"local"), text + "old\r\n"), 1);
    EXPECT_EQ(ReadBytes(path), "old\r\n") << "not even cut short";
    DeleteFileW(path.c_str());
}
