// The folders, processes, windows and memory of the measured programs.
#include "bench.h"

#include <psapi.h>

#include <Scintilla.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <filesystem>

#include "support/start_process.h"

namespace fs = std::filesystem;

namespace {

constexpr double kReadyLimitMs = 120000;
constexpr const wchar_t* kCompilerFolders[] = {L"KVXA64", L"KVXB64", L"KVXC64", L"KVXA32", L"KELDORRBASIC"};

fs::path OwnFolder() {
    wchar_t path[1024] = {};
    GetModuleFileNameW(nullptr, path, 1024);
    return fs::path(path).parent_path();
}

// Reads an environment variable that names a folder; the name may be a Unix path.
std::wstring FolderVariable(const wchar_t* name, const std::wstring& fallback) {
    wchar_t text[1024] = {};
    const DWORD length = GetEnvironmentVariableW(name, text, 1024);
    std::wstring path = length > 0 && length < 1024 ? text : fallback;
    if (path.starts_with(L'/')) path = L"Z:" + path;
    std::replace(path.begin(), path.end(), L'/', L'\\');
    return path.ends_with(L'\\') ? path : path + L'\\';
}

void Copy(const fs::path& from, const fs::path& to) {
    fs::create_directories(to.parent_path());
    if (!CopyFileW(from.c_str(), to.c_str(), FALSE)) Die("cannot copy " + from.string());
}

std::wstring ClassOf(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

struct PaneSearch {
    DWORD pid;
    std::size_t length;
    HWND main;
    HWND pane;
};

BOOL CALLBACK LookAtChild(HWND window, LPARAM context) {
    auto& search = *reinterpret_cast<PaneSearch*>(context);
    if (ClassOf(window) != L"Scintilla" || !IsWindowVisible(window)) return TRUE;
    DWORD_PTR length = 0;
    if (!SendMessageTimeoutW(window, SCI_GETLENGTH, 0, 0, SMTO_NORMAL, kAnswerLimitMs, &length)) return TRUE;
    if (length != search.length) return TRUE;
    search.pane = window;
    return FALSE;
}

BOOL CALLBACK LookAtTop(HWND window, LPARAM context) {
    auto& search = *reinterpret_cast<PaneSearch*>(context);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner != search.pid || !IsWindowVisible(window)) return TRUE;
    search.main = window;
    EnumChildWindows(window, LookAtChild, context);
    return search.pane == nullptr;
}

// Returns the settings that a first start in such a folder writes, with the detected compilers.
std::string SettingsOfFirstStart(const Furnishing& furnishing) {
    Furnishing bare = furnishing;
    bare.settings = false;
    const Folder folder(bare);
    std::size_t size = 0;
    const std::wstring file = SourceOfSize(1000, &size);
    {
        Program program(Kind::Editor, folder, file);
        program.AwaitReady(size);
        program.SettledMemory();
    }
    std::FILE* ini = _wfopen((folder.Path() + L"Editor.ini").c_str(), L"rb");
    if (ini == nullptr) Die("the first start left no Editor.ini");
    std::string text;
    for (int c = std::fgetc(ini); c != EOF; c = std::fgetc(ini)) text += static_cast<char>(c);
    std::fclose(ini);
    return text;
}

}  // namespace

void Die(const std::string& what) {
    std::fflush(stdout);
    std::fprintf(stderr, "bench: %s (system error %lu)\n", what.c_str(), GetLastError());
    std::fflush(stderr);
    ExitProcess(1);
}

double NowMs() {
    LARGE_INTEGER frequency = {};
    LARGE_INTEGER now = {};
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&now);
    return 1000.0 * static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

int Runs(int wanted) {
    wchar_t set[2] = {};
    return GetEnvironmentVariableW(L"KVX_BENCH_QUICK", set, 2) > 0 ? 1 : wanted;
}

std::string Narrow(std::wstring_view text) { return fs::path(text).string(); }
std::wstring DistFolder() { return FolderVariable(L"KVX_DIST", OwnFolder().parent_path().wstring()); }
std::wstring RunFolder() { return FolderVariable(L"KVX_TEST_ROOT", (OwnFolder() / L"run").wstring()); }

void WriteText(const std::wstring& path, std::string_view text) {
    std::FILE* file = _wfopen(path.c_str(), L"wb");
    if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size() || std::fclose(file) != 0)
        Die("cannot write " + Narrow(path));
}

std::wstring SourceOfSize(std::size_t about, std::size_t* size) {
    const std::wstring path = RunFolder() + L"source" + std::to_wstring(about) + L".bas";
    std::string text;
    char part[512];
    for (int n = 1; text.size() < about; ++n) {
        std::snprintf(part, sizeof(part),
                      "' Adds up what row %d holds\r\n"
                      "FUNCTION Total%d(BYVAL count AS LONG, BYREF sum AS DOUBLE) AS LONG\r\n"
                      "    LOCAL i AS LONG\r\n"
                      "    FOR i = 1 TO count STEP %d\r\n"
                      "        IF i MOD 3 = 0 THEN sum = sum + i * %d.25 ELSE PRINT \"row\"; i\r\n"
                      "    NEXT i\r\n"
                      "    FUNCTION = count + %d\r\n"
                      "END FUNCTION\r\n\r\n",
                      n, n, n % 7 + 1, n % 1000, n);
        text += part;
    }
    *size = text.size();
    if (!fs::exists(path)) WriteText(path, text);
    return path;
}

Folder::Folder(const Furnishing& furnishing) {
    static int number = 0;
    path_ = RunFolder() + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++number) + L"\\";
    const fs::path dist = DistFolder();
    const fs::path own = path_;
    for (const wchar_t* name : {L"KVX-Editor.exe", L"Scintilla.dll", L"Lexilla.dll", L"bench\\floor.exe"})
        Copy(dist / name, own / name);
    for (const wchar_t* name : kCompilerFolders)
        if (furnishing.compilers && fs::exists(dist / name))
            fs::copy(dist / name, own / name, fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    if (furnishing.floodLines >= 0) {
        Copy(KVX_FAKE_COMPILER, own / L"KVXA64" / L"kvxa64.exe");
        const std::string lines = std::to_string(furnishing.floodLines);
        WriteText(path_ + L"KVXA64\\fake.txt",
                  furnishing.floodLines == 0 ? "spawn\ntalk 0\n" : "talk " + lines + "\nexit 1\n");
    }
    fs::create_directories(own / L"local");
    if (furnishing.settings) {
        static std::string with;  // made once, because the detected paths are relative to the folder
        static std::string without;
        std::string& settings = furnishing.compilers ? with : without;
        if (settings.empty()) settings = SettingsOfFirstStart({.compilers = furnishing.compilers});
        WriteText(path_ + L"Editor.ini", settings);
    }
}

Folder::~Folder() {
    std::error_code ignored;  // a process that has just ended may hold a file for a moment
    fs::remove_all(path_, ignored);
}

Program::Program(Kind kind, const Folder& folder, const std::wstring& file) {
    // The program's files for the user go into the folder too.
    SetEnvironmentVariableW(L"LOCALAPPDATA", (folder.Path() + L"local").c_str());
    const bool isFloor = kind == Kind::Floor;
    std::wstring line = L"\"" + folder.Path() + (isFloor ? L"bench\\floor.exe\"" : L"KVX-Editor.exe\"");
    if (!file.empty()) line += (isFloor ? L" \"" : L" --open \"") + file + L"\"";
    PROCESS_INFORMATION process = {};
    if (!StartProcess(line, &process,
                      {.folder = folder.Path().c_str(), .beforeEachTry = [this] { started_ = NowMs(); }}))
        Die("cannot start " + Narrow(line));
    CloseHandle(process.hThread);
    process_ = process.hProcess;
    pid_ = process.dwProcessId;
}

Program::~Program() {
    TerminateProcess(process_, 0);
    WaitForSingleObject(process_, 10000);
    CloseHandle(process_);
}

bool Program::FindPane(std::size_t length) {
    PaneSearch search = {pid_, length, nullptr, nullptr};
    EnumWindows(LookAtTop, reinterpret_cast<LPARAM>(&search));
    main_ = search.main;
    sci_ = search.pane;
    return sci_ != nullptr;
}

double Program::AwaitReady(std::size_t length) {
    while (!FindPane(length)) {
        if (WaitForSingleObject(process_, 0) == WAIT_OBJECT_0) Die("a program ended before it was ready");
        if (NowMs() - started_ > kReadyLimitMs) Die("a program did not get ready");
        Sleep(1);
    }
    return NowMs() - started_;
}

// Windows has these counters itself. Wine returns VmRSS and VmHWM of the Linux process.
Memory Program::SettledMemory() const {
    constexpr int kSameFor = 10;  // equal readings in a row
    constexpr DWORD kPauseMs = 100;
    PROCESS_MEMORY_COUNTERS counters = {};
    SIZE_T last = 0;
    for (int same = 0, looks = 0; same < kSameFor && looks < 100; ++looks) {
        if (!GetProcessMemoryInfo(process_, &counters, sizeof(counters))) Die("no memory counters");
        const SIZE_T difference =
            counters.WorkingSetSize > last ? counters.WorkingSetSize - last : last - counters.WorkingSetSize;
        same = difference < last / 200 ? same + 1 : 0;
        last = counters.WorkingSetSize;
        Sleep(kPauseMs);
    }
    constexpr double kMb = 1024.0 * 1024.0;
    return {static_cast<double>(counters.WorkingSetSize) / kMb, static_cast<double>(counters.PeakWorkingSetSize) / kMb};
}

double RunFloor(const std::wstring& arguments) {
    SECURITY_ATTRIBUTES inheritable = {.nLength = sizeof(SECURITY_ATTRIBUTES), .bInheritHandle = TRUE};
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    if (!CreatePipe(&read, &write, &inheritable, 0)) Die("no pipe");
    PROCESS_INFORMATION process = {};
    if (!StartProcess(L"\"" + DistFolder() + L"bench\\floor.exe\" " + arguments, &process,
                      {.output = write, .errors = GetStdHandle(STD_ERROR_HANDLE)}))
        Die("cannot start the floor program");
    CloseHandle(write);
    char text[64] = {};
    DWORD got = 0;
    const bool ok = ReadFile(read, text, sizeof(text) - 1, &got, nullptr) != FALSE;
    WaitForSingleObject(process.hProcess, 10000);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    CloseHandle(read);
    double value = 0;
    if (!ok || std::sscanf(text, "%lf", &value) != 1) Die("the floor program printed no number");
    return value;
}
