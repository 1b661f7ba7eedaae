// Files of the editor that are damaged or foreign: each start ends in a working editor, and the file of somebody else is
// as it was.
#include "window/recovery_driver.h"

#include "resources/ids.h"

namespace {

// Answers what a start asks with yes until it is complete, and returns what was asked.
std::wstring AnswerStart(Editor& editor) {
    std::wstring asked;
    WaitFor([&] {
        for (const Dialog& dialog : editor.Dialogs()) {
            asked += dialog.caption + L": " + dialog.text.substr(0, 200) + L"\n";
            editor.Press(dialog, GetDlgItem(dialog.window, IDYES) != nullptr ? IDYES : IDOK);
        }
        return editor.Log().find(L"DBG WM_USER+200 EXIT") != std::wstring::npos;
    });
    EXPECT_TRUE(editor.AwaitReady());
    return asked;
}

// The editor still takes keys.
void ExpectToWork(Editor& editor) {
    editor.Do(IDM_FILE_NEW);
    editor.Type("works");
    EXPECT_EQ(editor.Text(), "works");
}

void CloseUnsaved(Editor& editor) {
    PostMessageW(editor.main, WM_CLOSE, 0, 0);
    editor.Answer(kUnsaved, L"", IDC_CLOSE_DISCARD);
    EXPECT_EQ(editor.ExitCode(), 0u) << editor.Describe();
}

std::string Noise(int bytes) {
    std::string text;
    for (unsigned value = 1; bytes > 0; --bytes)
        text += static_cast<char>((value = value * 1664525 + 1013904223) >> 24);
    return text;
}

std::string SessionOf(std::string_view head, std::string_view file) {
    return "[Session]\r\nVersion=1\r\n" + std::string(head) + "\r\n[File1]\r\n" + std::string(file) + "\r\n";
}

}  // namespace

TEST(HostileFiles, SessionsLeaveAWorkingEditor) {
    ProgramFolder folder;
    const std::string good = "Path=" + Utf8(folder.Write(L"good.bas", "1\r\n2\r\n")) + "\r\n";
    std::string many = "[Session]\r\nVersion=1\r\nActiveTab=9999\r\nTabCount=10000\r\n";
    for (int i = 1; i <= 10000; ++i)
        many += "\r\n[File" + std::to_string(i) + "]\r\nPath=" + Utf8(folder.File(L"away")) + std::to_string(i) +
                ".bas\r\n";
    const std::string absurd =
        "Cursor=99999999999999999999\r\nScroll=-7\r\nSelectionStart=-1\r\nSelectionEnd=4294967296\r\nBookmarks=0,"
        "-1,99999999999,x,,\r\nBreakpoints=5000000000,1\r\n";
    struct Case {
        const char* name;
        std::string bytes;
        int tabs;           // of files; -1: any number
        bool kept = false;  // before it is written over, because it is no session
    };
    const Case cases[] = {
        {"empty", "", 0},
        {"noise", Noise(5000), 0, true},
        {"zeros", std::string(100000, '\0'), 0, true},
        {"foreign", R"({"tabs": [{"path": "a.bas"}], "Version": 1})", 0, true},
        {"absurd numbers", SessionOf("ActiveTab=-5\r\nTabCount=999999999\r\nTreeWidth=99999999999\r\n", good + absurd),
         1},
        {"cut", SessionOf("ActiveTab=0\r\nTabCount=1\r\n", good + "Curs"), 1},
        {"cut in a path", SessionOf("TabCount=2\r\n", good + "\r\n[File2]\r\nPath=" + Utf8(folder.path) + "goo"), 1},
        {"a folder", SessionOf("TabCount=1\r\n", "Path=" + Utf8(folder.path) + "\r\n"), 0},
        {"devices", SessionOf("TabCount=2\r\n", "Path=NUL\r\n\r\n[File2]\r\nPath=\\\\.\\PhysicalDrive0\r\n"), -1},
        {"a long path", SessionOf("TabCount=1\r\n", "Path=C:\\" + std::string(40000, 'x') + ".bas\r\n"), 0},
        {"many files that are away", many, 0},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        folder.Write(kSessionFile, test.bytes);
        DeleteFileW(folder.File(L"workspace.json").c_str());  // of the case before
        Editor editor(folder, L"", Until::Started);
        const std::wstring asked = AnswerStart(editor);
        SCOPED_TRACE(Utf8(asked));
        const std::wstring aside = folder.File(kSessionFile) + L".bad";
        if (test.kept) {
            const Dialog told = editor.AwaitDialog(kProgramTitle);
            EXPECT_NE(told.text.find(L"session is damaged"), std::wstring::npos) << Utf8(told.text);
            EXPECT_NE(told.text.find(aside), std::wstring::npos) << Utf8(told.text);
            editor.Press(told, IDOK);
        }
        EXPECT_EQ(ReadBytes(aside), test.kept ? std::optional(test.bytes) : std::nullopt);
        DeleteFileW(aside.c_str());
        int files = 0;
        std::wstring labels;
        for (int tab = 0; tab < editor.Tabs(); ++tab) {
            const std::wstring label = editor.TabLabel(tab);
            files += label.starts_with(L"Untitled") ? 0 : 1;
            labels += label + L"\n";
        }
        if (test.tabs >= 0) EXPECT_EQ(files, test.tabs) << Utf8(labels);
        ExpectToWork(editor);
        CloseUnsaved(editor);
        if (testing::Test::HasFailure()) return;
    }
    EXPECT_EQ(folder.Read(L"good.bas"), "1\r\n2\r\n");
}

TEST(HostileFiles, RecoveryFilesLeaveAWorkingEditor) {
    ProgramFolder folder;
    folder.KeepNoSession();
    const std::string source = Utf8(folder.Write(L"a.bas", "a\n"));
    const std::wstring run = L"local\\KVX-Editor\\Recovery\\Run 1-1\\";
    folder.Write(run + L"noise [1].bas", Noise(3000));
    folder.Write(run + L"noise [1].bas.note", Noise(3000));
    folder.Write(run + L"empty [2].bas", "");
    folder.Write(run + L"empty [2].bas.note", "");
    folder.Write(run + L"alone [3].bas", "no note");
    folder.Write(run + L"saved [6].bas", "a\n");  // what the file holds
    folder.Write(run + L"saved [6].bas.note", "[Unsaved text of KVX-Editor]\r\nPath=" + source + "\r\n");
    folder.Write(run + L"gone [4].bas.note", "path=" + source + "\r\n");
    folder.Write(run + L"folder [5].bas\\x", "a folder with the name of a text");
    folder.Write(L"local\\KVX-Editor\\Recovery\\b [1-fffffff0-1].bas", "b");
    folder.Write(L"local\\KVX-Editor\\Recovery\\b [1-fffffff0-1].bas.path", Utf8(folder.path));  // a folder
    folder.Write(L"local\\KVX-Editor\\Recovery\\foreign.txt", "of somebody else");
    Editor editor(folder);
    editor.Press(editor.AwaitDialog(kRecovered), IDC_RECOVERY_RESTORE);
    ASSERT_TRUE(WaitFor([&] { return editor.Tabs() >= 4; }));  // the texts that can be read
    ASSERT_TRUE(WaitFor([&] { return editor.Status().find(L"4 texts were brought back") == 0; }))
        << Utf8(editor.Status()) << editor.Describe();
    for (int tab = 0; tab < editor.Tabs(); ++tab) EXPECT_NE(editor.TabLabel(tab), L"");
    ExpectToWork(editor);
    Kill(editor);
    EXPECT_EQ(folder.Read(L"a.bas"), "a\n");
    EXPECT_EQ(folder.Read(L"local\\KVX-Editor\\Recovery\\foreign.txt"), "of somebody else");
}
