// Where a stop is shown when its file or its line is not what the program's map says.
#include "debug_driver.h"

#include "editor/margins.h"

namespace {

using namespace debug_driver;

const std::string kPart = "' Line 3 has statements in both files.\r\nSUB Twice\r\n  value = value * 2\r\nEND SUB\r\n";

std::string Numbered(int lines) {
    std::string text;
    for (int i = 1; i <= lines; ++i) text += "' " + std::to_string(i) + "\r\n";
    return text;
}

std::string Record(std::uint32_t file, std::uint32_t line) {
    std::string bytes;
    for (const std::uint32_t value : {file, line})
        for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift & 0xFF);
    return bytes;
}

// The program of two files, calls.bas and calls_part.inc, of which the first is taken for the source. A build does
// nothing, so that what is debugged is the program put here, in which the bytes `from` are `to`.
struct Calls : Session {
    explicit Calls(const std::string& source = Numbered(9), const std::string& from = "", const std::string& to = "")
        : Session(L"steps.bas", source, L"kvxa64") {
        folder.FakeCompiler("renew " + Utf8(folder.File(L"steps.exe")) + "\nprint ok\n");
        std::string program = ReadBytes(Wide(KVX_DEBUGGEES_DIR) + L"\\calls64.exe").value_or("");
        EXPECT_EQ(from.size(), to.size());
        const std::size_t at = program.find(from);
        EXPECT_NE(at, std::string::npos) << "not in the program: " << from;
        if (at != std::string::npos) program.replace(at, to.size(), to);
        folder.Write(L"steps.exe", program);
    }
    // The status ends like this, and the output pane has the line of the stop.
    bool AwaitStopAt(const std::wstring& place, int milliseconds = kDeadline) const {
        const bool came = WaitFor([&] { return editor.Status().ends_with(place); }, milliseconds);
        EXPECT_TRUE(came) << "status: " << Utf8(editor.Status()) << "\n" << editor.Describe();
        return came && editor.AwaitOutput(place);
    }
    bool Begin() const {
        editor.Do(IDM_DEBUG_BUILD_START);
        return AwaitStopAt(L"steps.bas:3", kBuildDeadline);
    }
    bool Step(int command, const std::wstring& place) const {
        editor.Do(command);
        return AwaitStopAt(place);
    }
    // From the first line into the second file.
    bool StepIn(const std::wstring& place) const {
        return Step(IDM_DEBUG_STEP_OVER, L"steps.bas:4") && Step(IDM_DEBUG_STEP_INTO, place);
    }
    int LineMarked() const { return static_cast<int>(editor.Sci(SCI_MARKERNEXT, 0, LPARAM{1} << kMarkCurrent)) + 1; }
    std::wstring Tab() const { return editor.TabLabel(editor.ActiveTab()); }
};

}  // namespace

TEST(DebugPlaces, AFileThatCannotBeShownIsToldOfOnceAndWithoutABox) {
    for (const bool locked : {true, false}) {
        SCOPED_TRACE(locked);
        const Calls calls;
        const std::wstring part = calls.folder.File(L"calls_part.inc");
        HANDLE lock = INVALID_HANDLE_VALUE;
        if (locked) {
            calls.folder.Write(L"calls_part.inc", kPart);
            lock = CreateFileW(part.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
            ASSERT_NE(lock, INVALID_HANDLE_VALUE);
        }
        ASSERT_TRUE(calls.Begin());
        ASSERT_TRUE(calls.StepIn(L"calls_part.inc:2"));
        ASSERT_TRUE(calls.Step(IDM_DEBUG_STEP_OVER, L"calls_part.inc:3"));
        EXPECT_TRUE(calls.editor.Dialogs().empty()) << calls.editor.Describe();
        const std::wstring output = calls.editor.Output();
        const std::wstring notice =
            (locked ? L"[Debug] The file cannot be opened: " : L"[Debug] The file is not there: ") + part + L"\n";
        EXPECT_EQ(Count(output, notice), 1) << Utf8(output);
        EXPECT_EQ(Count(output, L"[Debug] The file "), 1) << Utf8(output);
        EXPECT_EQ(calls.Tab(), L"steps.bas");
        EXPECT_EQ(calls.LineMarked(), 0) << "the program stands elsewhere";
        // The next stop finds it.
        if (locked) CloseHandle(lock);
        if (!locked) calls.folder.Write(L"calls_part.inc", kPart);
        ASSERT_TRUE(calls.Step(IDM_DEBUG_STEP_OVER, L"calls_part.inc:4"));
        EXPECT_EQ(calls.Tab(), L"calls_part.inc");
        EXPECT_EQ(calls.LineMarked(), 4);
        // Opened for the stop, not by the user.
        EXPECT_EQ(calls.editor.Status(kPartCompiler), L"KVXA64");
        EXPECT_EQ(calls.folder.Ini(L"MRU", L"Count"), L"1");
    }
}

// At a start it is said of files in tabs alone, as a program may have thousands.
TEST(DebugPlaces, AFileInNoTabThatIsNewerIsToldOfAtItsStop) {
    const Calls calls;
    calls.folder.Write(L"calls_part.inc", kPart);
    // Later than the program, which the build renews.
    for (const wchar_t* file : {L"steps.bas", L"calls_part.inc"}) WrittenFromNow(calls.folder.File(file), 5);
    const auto said = [&](const std::wstring& file) {
        return Count(calls.editor.Output(), L"[Debug] " + file + L" is newer than the program");
    };
    ASSERT_TRUE(calls.Begin());
    EXPECT_EQ(said(L"steps.bas"), 1);
    EXPECT_EQ(said(L"calls_part.inc"), 0);
    ASSERT_TRUE(calls.StepIn(L"calls_part.inc:2"));
    EXPECT_TRUE(WaitFor([&] { return said(L"calls_part.inc") == 1; })) << Utf8(calls.editor.Output());
}

TEST(DebugPlaces, ALineBehindTheEndMovesToTheEnd) {
    const Calls calls("' 1\r\n' 2");
    ASSERT_TRUE(calls.Begin());
    EXPECT_EQ(calls.editor.Line(), 2);
    EXPECT_EQ(calls.LineMarked(), 0) << "no line of the text is where the program stands";
    ASSERT_TRUE(calls.Step(IDM_DEBUG_STEP_OVER, L"steps.bas:4"));
    EXPECT_EQ(calls.editor.Line(), 2);
}

TEST(DebugPlaces, WhatNamesNoFileOrLineIsNoSource) {
    const struct {
        const char* name;
        std::string from, to;
    } cases[] = {
        {"a folder", "calls_part.inc", "C:\\folder\\off\\"},
        {"a line beyond any text", Record(2, 2), Record(2, 0xFFFFFFFF)},
        {"a line just beyond", Record(2, 2), Record(2, 0x80000000)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Calls calls(Numbered(9), c.from, c.to);
        ASSERT_TRUE(calls.Begin());
        ASSERT_TRUE(calls.Step(IDM_DEBUG_STEP_OVER, L"steps.bas:4"));
        calls.editor.Do(IDM_DEBUG_STEP_INTO);
        ASSERT_TRUE(calls.AwaitStopAt(L", no source"));
        EXPECT_EQ(calls.editor.Line(), 4) << "the caret stays";
        EXPECT_EQ(calls.LineMarked(), 0);
        EXPECT_TRUE(calls.editor.Dialogs().empty()) << calls.editor.Describe();
    }
}

// The producer's bytes may be UTF-8 or of the system's code page; the debugger and the ASM pane read them alike.
TEST(DebugPlaces, NamesInTheMapMayBeOfTheCodePage) {
    if (GetACP() == CP_UTF8) GTEST_SKIP() << "the system's code page is UTF-8";
    wchar_t letter[2] = {};
    ASSERT_EQ(MultiByteToWideChar(CP_ACP, 0, "\xE4", 1, letter, 2), 1);
    const std::wstring name = std::wstring(L"calls_p") + letter + L"rt.inc";
    const Calls calls(Numbered(9), "calls_part.inc", "calls_p\xE4rt.inc");
    calls.folder.Write(name, kPart);
    calls.editor.Do(IDM_VIEW_ASM);
    ASSERT_TRUE(calls.Begin());
    ASSERT_TRUE(calls.StepIn(name + L":2"));
    EXPECT_EQ(calls.Tab(), name);
    const auto assembly = [&] { return calls.editor.TextOf(calls.editor.Child(IDC_ASM)); };
    EXPECT_TRUE(WaitFor([&] {
        return assembly().find(L"; " + name + L" 3:   value = value * 2") != std::wstring::npos;
    })) << Utf8(assembly());
}

// The disassembly shows lines of files that no tab has; of a very large one it does not.
TEST(DebugPlaces, LargeFilesAreNotReadForALine) {
    for (const auto& [megabytes, shown] : {std::pair{1, true}, {17, false}}) {
        SCOPED_TRACE(megabytes);
        const Calls calls;
        calls.folder.Write(L"calls_part.inc", kPart + std::string(static_cast<std::size_t>(megabytes) << 20, '\''));
        ASSERT_TRUE(calls.Begin());
        calls.Select(kDisassembly);
        ASSERT_TRUE(calls.Await(L"2: ")) << Utf8(calls.All());
        EXPECT_EQ(calls.All().find(L"2: SUB Twice") != std::wstring::npos, shown) << Utf8(calls.All());
    }
}
