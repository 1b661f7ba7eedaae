// What a kill leaves, and how the next start gives it back.
#include "window/recovery_driver.h"

#include "resources/ids.h"

namespace {

namespace fs = std::filesystem;

bool AwaitKept(const ProgramFolder& folder, const std::set<std::string>& texts) {
    return WaitFor([&] { return KeptTexts(folder) == texts; });
}

// The file that keeps the text, open for reading.
HANDLE OpenKept(const ProgramFolder& folder, std::string_view text) {
    for (const auto& file : fs::recursive_directory_iterator(RecoveryOf(folder)))
        if (file.is_regular_file() && ReadBytes(file.path().wstring()) == text)
            return CreateFileW(file.path().c_str(), GENERIC_READ,
                               FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0,
                               nullptr);
    ADD_FAILURE() << text << " is not kept";
    return INVALID_HANDLE_VALUE;
}

std::set<std::string> OpenTexts(const Editor& editor) {
    std::set<std::string> texts;
    for (int tab = 0; tab < editor.Tabs(); ++tab) {
        texts.insert(editor.Text());
        editor.Do(IDM_NEXT_TAB);
    }
    return texts;
}

}  // namespace

TEST(Recovery, AKillLosesNothing) {
    ProgramFolder folder;
    folder.KeepNoSession();
    const std::wstring kept = folder.Write(L"kept.bas", "one\ntwo\n"), gone = folder.Write(L"gone.bas", "three\n");
    const std::set<std::string> texts = {"kept\none\ntwo\n", "gone\nthree\n", "new \xC3\xA9"};
    {
        Editor editor(folder, OpenArgument(kept) + OpenArgument(gone));
        editor.Type("gone\n");
        editor.Do(IDM_PREVIOUS_TAB);
        editor.Type("kept\n");
        editor.Do(IDM_FILE_NEW);
        editor.Type("new \xC3\xA9 and more");
        ASSERT_TRUE(WaitFor([&] { return KeptTexts(folder).contains("new \xC3\xA9 and more"); }));
        {  // the next text takes the place of the last, although another program reads that one at this moment
            const HANDLE scanner = OpenKept(folder, "new \xC3\xA9 and more");
            editor.Sci(SCI_DELETERANGE, 6, 9);
            EXPECT_TRUE(WaitFor([&] { return KeptTexts(folder, true).contains("new \xC3\xA9"); }));  // beside it
            CloseHandle(scanner);
        }
        ASSERT_TRUE(AwaitKept(folder, texts));
        Editor other(folder);  // what a living copy keeps is not offered
        EXPECT_TRUE(other.Dialogs().empty());
        EXPECT_EQ(other.Close(), 0u);
        Kill(editor);
    }
    fs::remove(gone);
    {
        Editor editor(folder, OpenArgument(kept));
        const Dialog list = editor.AwaitDialog(kRecovered);
        editor.Press(list, IDCANCEL);  // later
        EXPECT_EQ(KeptTexts(folder), texts);
        EXPECT_EQ(editor.Text(), "one\ntwo\n");
        editor.Post(IDM_FILE_RECOVERED);
        editor.Press(editor.AwaitDialog(kRecovered), IDC_RECOVERY_RESTORE);
        ASSERT_TRUE(WaitFor([&] { return editor.Tabs() == 3; }));
        EXPECT_EQ(OpenTexts(editor), texts);
        EXPECT_TRUE(AwaitKept(folder, texts)) << "a second kill would lose nothing either";
        ASSERT_TRUE(WaitFor([&] { return std::distance(fs::directory_iterator(RecoveryOf(folder)), {}) == 2; }));
        Kill(editor);
    }
}

// The documents of a session are read when they are first shown. Another program changes the file after the kill.
TEST(Recovery, ATextComesBackIntoADocumentOfTheSession) {
    ProgramFolder folder;
    const std::wstring one = folder.Write(L"one.bas", "one\n"), two = folder.Write(L"two.bas", "two\n");
    EXPECT_EQ(Editor(folder, OpenArgument(one) + OpenArgument(two)).Close(), 0u);
    {
        Editor editor(folder, L"", Until::Started);
        editor.Answer(kRestore, L"A previous session", IDYES);
        ASSERT_TRUE(editor.AwaitReady());
        editor.Do(IDM_PREVIOUS_TAB);
        editor.Type("typed ");
        ASSERT_TRUE(AwaitKept(folder, {"typed one\n"}));
        Kill(editor);
    }
    WriteBytes(one, "one\nby another program\n");
    Editor editor(folder, L"", Until::Started);
    editor.Answer(kRestore, L"A previous session", IDYES);
    ASSERT_TRUE(editor.AwaitReady());
    editor.Press(editor.AwaitDialog(kRecovered), IDC_RECOVERY_RESTORE);
    EXPECT_TRUE(WaitFor([&] { return editor.Text() == "typed one\n"; })) << editor.Text();
    EXPECT_EQ(editor.Tabs(), 2);
    EXPECT_TRUE(editor.AwaitDialog(kProgramTitle).text.starts_with(L"one.bas was changed by another program"));
    EXPECT_TRUE(AwaitKept(folder, {"typed one\n"}));
}

// A save that cannot overwrite its file stands at the place at which a kill leaves two texts: that of the save, and the one
// that was kept before.
TEST(Recovery, AKillWithinASaveOffersOneTextOfTheFile) {
    for (const bool typedSince : {false, true}) {
        SCOPED_TRACE(typedSince ? "the save has a later text" : "both are equal");
        ProgramFolder folder;
        folder.KeepNoSession();
        const std::wstring path = folder.Write(L"a.bas", "a\n");
        HANDLE ended = nullptr;  // as whoever started the program keeps one
        const std::string text = typedSince ? "later and kept a\n" : "kept a\n";
        {
            Editor editor(folder, OpenArgument(path));
            editor.Type("kept ");
            ASSERT_TRUE(AwaitKept(folder, {"kept a\n"}));
            if (typedSince) {
                editor.Sci(SCI_GOTOPOS, 0);
                editor.Type("later and ");
            }
            const HANDLE held =
                CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
            editor.Post(IDM_FILE_SAVE);
            ASSERT_TRUE(WaitFor([&] { return !editor.Dialogs().empty(); }));
            EXPECT_TRUE(KeptTexts(folder).contains(text));
            DuplicateHandle(GetCurrentProcess(), editor.process, GetCurrentProcess(), &ended, 0, FALSE,
                            DUPLICATE_SAME_ACCESS);
            Kill(editor);
            CloseHandle(held);
        }
        // A run that was killed while it wrote the copy of a save: its file has not been touched.
        folder.Write(L"local\\KVX-Editor\\Recovery\\a [1-fffffff0-1].bas.new", "half");
        folder.Write(L"local\\KVX-Editor\\Recovery\\a [1-fffffff0-1].bas.path", Utf8(path));
        Editor editor(folder, OpenArgument(path));
        const Dialog list = editor.AwaitDialog(kRecovered);
        EXPECT_EQ(editor.Send(GetDlgItem(list.window, IDC_RECOVERY_LIST), LVM_GETITEMCOUNT), 1);
        editor.Press(list, IDC_RECOVERY_RESTORE);
        EXPECT_TRUE(WaitFor([&] { return editor.Text() == text; })) << editor.Text();
        EXPECT_EQ(editor.Tabs(), 1);
        EXPECT_TRUE(AwaitKept(folder, {text})) << "the repeated one is gone with it";
        Kill(editor);
        CloseHandle(ended);
    }
}

TEST(Recovery, WhatIsSavedOrRefusedIsGone) {
    ProgramFolder folder;
    folder.KeepNoSession();
    const std::wstring a = folder.Write(L"a.bas", "a\n"), b = folder.Write(L"b.bas", "b\n");
    // A save of an earlier run failed.
    folder.Write(L"local\\KVX-Editor\\Recovery\\c [1-fffffff0-1].bas", "c");
    folder.Write(L"local\\KVX-Editor\\Recovery\\c [1-fffffff0-1].bas.path", Utf8(folder.File(L"c.bas")));
    // A kill in the middle of writing, and a file of somebody else.
    folder.Write(L"local\\KVX-Editor\\Recovery\\Run 1-1\\half [1].bas.new", "hal");
    folder.Write(L"local\\KVX-Editor\\Recovery\\Run 1-1\\half [1].bas.note", "\xFF\xFE garbage");
    {
        Editor editor(folder, OpenArgument(a) + OpenArgument(b));
        const Dialog list = editor.AwaitDialog(kRecovered);
        EXPECT_EQ(editor.CellOf(GetDlgItem(list.window, IDC_RECOVERY_LIST), 0, 0), L"c.bas");
        EXPECT_EQ(editor.Send(GetDlgItem(list.window, IDC_RECOVERY_LIST), LVM_GETITEMCOUNT), 1);
        PostMessageW(list.window, WM_COMMAND, IDC_RECOVERY_DISCARD, 0);
        editor.Answer(L"Discard", L"Discard this text?", IDOK);
        ASSERT_TRUE(WaitFor([&] { return KeptTexts(folder).empty(); }));

        editor.Type("x");
        editor.Do(IDM_PREVIOUS_TAB);
        editor.Type("y");
        ASSERT_TRUE(AwaitKept(folder, {"xb\n", "ya\n"}));
        editor.Do(IDM_FILE_SAVE);
        EXPECT_TRUE(AwaitKept(folder, {"xb\n"}));
        editor.Do(IDM_NEXT_TAB);
        editor.Do(IDM_EDIT_UNDO);
        EXPECT_TRUE(AwaitKept(folder, {})) << "the file has the text";
        editor.Type("z");
        ASSERT_TRUE(AwaitKept(folder, {"zb\n"}));
        editor.Send(editor.main, WM_ENDSESSION, TRUE);  // unasked: all is kept
        EXPECT_EQ(KeptTexts(folder), std::set<std::string>{"zb\n"});
        PostMessageW(editor.main, WM_CLOSE, 0, 0);
        editor.Answer(kUnsaved, L"b.bas has unsaved changes.", IDC_CLOSE_DISCARD);
        EXPECT_EQ(editor.ExitCode(), 0u);
        EXPECT_TRUE(fs::is_empty(RecoveryOf(folder)));
    }
    Editor editor(folder);
    EXPECT_TRUE(editor.Dialogs().empty());
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Recovery, ACrashLeavesItsReportAndTheText) {
    ProgramFolder folder;
    folder.KeepNoSession();
    const std::wstring a = folder.Write(L"a.bas", "PRINT \"of the file\"\n");
    const std::string text = "' SECRET-TEXT\nPRINT \"of the file\"\n";
    {
        Editor editor(folder, OpenArgument(a));
        editor.Type("' SECRET-TEXT\n");                     // crashes before the first snapshot is due
        PostMessageW(editor.Sci(), SCI_ADDTEXT, 1000, 16);  // no text is there
        EXPECT_TRUE(AwaitKept(folder, {text}));
        EXPECT_TRUE(editor.ExitCode(60'000)) << "the dump reads the memory a kilobyte at a time";
        EXPECT_EQ(KeptTexts(folder), std::set<std::string>{text});
    }
    int reports = 0;
    for (const auto& entry : fs::directory_iterator(folder.File(L"local\\KVX-Editor\\Crashes"))) {
        const std::string bytes = ReadBytes(entry.path().wstring()).value_or("");
        EXPECT_EQ(bytes.find("SECRET-TEXT"), std::string::npos) << entry.path();
        EXPECT_FALSE(bytes.empty()) << entry.path();
        ++reports;
    }
    EXPECT_EQ(reports, 3) << "a report, a dump, the name of the latest";
    Editor editor(folder);
    const Dialog list = editor.AwaitDialog(kRecovered);
    const std::wstring told = editor.TextOf(GetDlgItem(list.window, IDC_RECOVERY_CRASH));
    EXPECT_NE(told.find(L"The editor ended because of a fault the last time."), std::wstring::npos) << "no second box";
    EXPECT_NE(told.find(L"\\Crashes\\Crash "), std::wstring::npos);
    editor.Press(list, IDC_RECOVERY_RESTORE);
    EXPECT_TRUE(WaitFor([&] { return OpenTexts(editor).contains(text); }));
    EXPECT_NE(IsWindowEnabled(editor.main), FALSE) << "a box is open";
}
