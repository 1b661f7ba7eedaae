// The self-test as a user calls it: from an installed program, with its output in a pipe.
#include "harness.h"
#include "support/start_process.h"

#include <filesystem>
#include <set>

namespace {

struct Ended {
    std::optional<DWORD> code;
    std::string output;
};

Ended RunProgram(const ProgramFolder& folder, const std::wstring& arguments) {
    const std::wstring path = folder.File(L"output.txt");
    SECURITY_ATTRIBUTES inherited = {
        .nLength = sizeof(inherited), .lpSecurityDescriptor = nullptr, .bInheritHandle = TRUE};
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
    PROCESS_INFORMATION started = {};
    EXPECT_TRUE(StartProcess(L"\"" + folder.File(L"KVX-Editor.exe") + L"\" " + arguments, &started,
                             {.folder = folder.path.c_str(), .output = file, .errors = file}));
    CloseHandle(file);
    const bool ended = WaitForSingleObject(started.hProcess, 300'000) == WAIT_OBJECT_0;
    Ended run;
    DWORD code = 0;
    if (ended && GetExitCodeProcess(started.hProcess, &code)) run.code = code;
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    run.output = folder.Read(L"output.txt");
    DeleteFileW(path.c_str());
    return run;
}

std::filesystem::path TemporaryFolder() {
    wchar_t path[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH + 1, path);
    return path;
}

int FoldersOfSelfTests() {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(TemporaryFolder()))
        count += entry.path().filename().wstring().starts_with(L"KVX-Editor self-test ") ? 1 : 0;
    return count;
}

std::set<std::filesystem::path> FilesOf(const ProgramFolder& folder) {
    std::set<std::filesystem::path> files;
    for (const auto& file : std::filesystem::recursive_directory_iterator(folder.path)) files.insert(file.path());
    return files;
}

}  // namespace

TEST(SelfTestRun, ChecksAnInstallationAndTouchesNothing) {
    const ProgramFolder folder(kCompilers);
    folder.Write(L"Editor.ini", "[Editor]\r\nFontSize=17\r\n[KVXA64]\r\nFlags=\r\n");
    const std::string settings = folder.Read(L"Editor.ini");
    const auto before = FilesOf(folder);
    const Ended all = RunProgram(folder, L"--test-all");
    EXPECT_EQ(all.code, 0u) << all.output;
    EXPECT_NE(all.output.find(" passed, 0 failed, "), std::string::npos) << all.output;
    for (const char* check :
         {"ok    tabs: ", "ok    kvxb64-debug: the steps go down the lines", "ok    exit: File > Exit"})
        EXPECT_NE(all.output.find(check), std::string::npos) << check << "\n" << all.output;
    EXPECT_EQ(folder.Read(L"Editor.ini"), settings);
    EXPECT_EQ(FilesOf(folder), before);
    EXPECT_EQ(CountProcesses(L"KVX-Editor.exe"), 0);
}

TEST(SelfTestRun, NamesWhatItCannotCheck) {
    const ProgramFolder folder;
    const Ended steps = RunProgram(folder, L"--selftest-kb-debug");
    EXPECT_EQ(steps.code, 0u);
    EXPECT_NE(steps.output.find("skip  kb-debug: steps with KeldorBasic (the compiler is not installed)"),
              std::string::npos)
        << steps.output;
    EXPECT_EQ(RunProgram(folder, L"--test nothing").code, 2u);
    DeleteFileW(folder.File(L"Scintilla.dll").c_str());
    const Ended broken = RunProgram(folder, L"--test exit");
    EXPECT_EQ(broken.code, 1u);
    EXPECT_NE(broken.output.find("(the editor ended; Could not load Scintilla.dll)"), std::string::npos)
        << broken.output;
    EXPECT_NE(RunProgram(folder, L"--test-list").output.find("\nkvxb64-debug "), std::string::npos);
}

// Its programs end with it; its folder, with copies of read-only files, is removed by the next one.
TEST(SelfTestRun, LeavesNothingWhenItIsKilled) {
    const ProgramFolder folder;
    const std::wstring library = folder.File(L"Lexilla.dll");
    SetFileAttributesW(library.c_str(), FILE_ATTRIBUTE_READONLY);
    PROCESS_INFORMATION started = {};
    ASSERT_TRUE(StartProcess(L"\"" + folder.File(L"KVX-Editor.exe") + L"\" --test mouse", &started,
                             {.folder = folder.path.c_str()}));
    ASSERT_TRUE(WaitFor([] { return CountProcesses(L"KVX-Editor.exe") == 2; }));
    TerminateProcess(started.hProcess, 1);
    EXPECT_TRUE(WaitFor([] { return CountProcesses(L"KVX-Editor.exe") == 0; }));
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    EXPECT_EQ(FoldersOfSelfTests(), 1);
    EXPECT_EQ(RunProgram(folder, L"--test kb-debug").code, 0u);
    EXPECT_EQ(FoldersOfSelfTests(), 0);
    SetFileAttributesW(library.c_str(), FILE_ATTRIBUTE_NORMAL);
}
