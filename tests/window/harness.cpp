// Files, folders and the life of the program's process.
#include "harness.h"

#include "support/start_process.h"

#include <tlhelp32.h>

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

// The time during which this process did not run, because the machine slept or was measured, does not count.
bool WaitFor(const std::function<bool()>& condition, int milliseconds) {
    constexpr ULONGLONG kLongestStep = 1000;
    ULONGLONG passed = 0;
    for (ULONGLONG last = GetTickCount64();;) {
        if (condition()) return true;
        if (passed >= static_cast<ULONGLONG>(milliseconds)) return false;
        Sleep(15);
        const ULONGLONG now = GetTickCount64();
        passed += std::min(now - last, kLongestStep);
        last = now;
    }
}

int Count(std::wstring_view text, std::wstring_view part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::wstring::npos; at = text.find(part, at + part.size())) ++count;
    return count;
}

std::string Utf8(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, out.data(), needed, nullptr, nullptr);
    return out;
}

std::wstring Wide(std::string_view utf8) {
    const int size = static_cast<int>(utf8.size());
    const int needed = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0);
    std::wstring out(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, out.data(), needed);
    return out;
}

bool Exists(const std::wstring& path) { return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

// Not to be polled for a save: the program cannot write what another has open.
void WrittenFromNow(const std::wstring& path, int minutes) {
    constexpr LONGLONG kMinute = 60 * 10000000LL;  // in units of FILETIME
    FILETIME now = {};
    GetSystemTimeAsFileTime(&now);
    ULARGE_INTEGER whole = {{now.dwLowDateTime, now.dwHighDateTime}};
    whole.QuadPart += static_cast<ULONGLONG>(minutes * kMinute);
    const FILETIME time = {whole.LowPart, whole.HighPart};
    const HANDLE file = CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE) << Utf8(path);
    EXPECT_TRUE(SetFileTime(file, nullptr, nullptr, &time));
    CloseHandle(file);
}

std::optional<std::string> ReadBytes(const std::wstring& path) {
    const DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return std::nullopt;
    std::string out(GetFileSize(file, nullptr), '\0');
    DWORD got = 0;
    ReadFile(file, out.data(), static_cast<DWORD>(out.size()), &got, nullptr);
    CloseHandle(file);
    out.resize(got);
    return out;
}

void WriteBytes(const std::wstring& path, std::string_view bytes) {
    HANDLE file = INVALID_HANDLE_VALUE;
    WaitFor([&] {  // the program may be reading it for a moment
        file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        return file != INVALID_HANDLE_VALUE;
    });
    ASSERT_NE(file, INVALID_HANDLE_VALUE) << "cannot write " << Utf8(path);
    DWORD put = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &put, nullptr);
    CloseHandle(file);
    ASSERT_EQ(put, bytes.size()) << "wrote too little to " << Utf8(path);
}

std::wstring Variable(const wchar_t* name) {
    wchar_t text[1024];
    const DWORD length = GetEnvironmentVariableW(name, text, 1024);
    if (length == 0 || length >= 1024) return L"";
    if (text[0] != L'/') return text;
    std::wstring path = L"Z:" + std::wstring(text);
    std::replace(path.begin(), path.end(), L'/', L'\\');
    return path;
}

static std::vector<DWORD> ProcessesOf(std::wstring_view fileName) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    std::vector<DWORD> found;
    for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry))
        if (_wcsicmp(entry.szExeFile, std::wstring(fileName).c_str()) == 0) found.push_back(entry.th32ProcessID);
    CloseHandle(snapshot);
    return found;
}

int CountProcesses(std::wstring_view fileName) { return static_cast<int>(ProcessesOf(fileName).size()); }

int EndProcesses(std::wstring_view fileName) {
    int ended = 0;
    for (const DWORD id : ProcessesOf(fileName)) {
        const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, id);
        ended += process != nullptr && TerminateProcess(process, 7) != FALSE;
        if (process != nullptr) CloseHandle(process);
    }
    return ended;
}

std::wstring OpenArgument(const std::wstring& path) { return L" --open \"" + path + L"\""; }

namespace {

// Another program may have it open for a moment.
bool ClipboardOpen() {
    return WaitFor([] { return OpenClipboard(nullptr) != FALSE; });
}

}  // namespace

void ClipboardEmpty() {
    ASSERT_TRUE(ClipboardOpen());
    EXPECT_TRUE(EmptyClipboard());
    CloseClipboard();
}

std::wstring ClipboardText() {
    if (!ClipboardOpen()) return L"(the clipboard cannot be opened)";
    std::wstring text;
    const HANDLE data = GetClipboardData(CF_UNICODETEXT);
    if (const void* characters = data ? GlobalLock(data) : nullptr) {
        text = static_cast<const wchar_t*>(characters);
        GlobalUnlock(data);
    }
    CloseClipboard();
    return text;
}

namespace {

fs::path OwnFolder() {
    wchar_t path[1024];
    GetModuleFileNameW(nullptr, path, 1024);
    return fs::path(path).parent_path();
}

// KVX_DIST, else a folder "dist" beside the test executable or above it.
fs::path DistFolder() {
    if (const std::wstring set = Variable(L"KVX_DIST"); !set.empty()) return set;
    for (fs::path at = OwnFolder(); at.has_relative_path(); at = at.parent_path())
        if (fs::exists(at / L"dist" / L"KVX-Editor.exe")) return at / L"dist";
    return OwnFolder() / L"dist";
}

void Link(const fs::path& from, const fs::path& to) {
    if (CreateHardLinkW(to.c_str(), from.c_str(), nullptr)) return;
    EXPECT_TRUE(CopyFileW(from.c_str(), to.c_str(), FALSE)) << "cannot copy " << from.string();
}

bool IsCompilerFolder(const fs::path& folder) {
    static constexpr const wchar_t* kNames[] = {L"KVXA64", L"KVXB64", L"KVXC64", L"KVXA32", L"KELDORRBASIC"};
    return std::any_of(std::begin(kNames), std::end(kNames),
                       [&](const wchar_t* name) { return _wcsicmp(name, folder.filename().c_str()) == 0; });
}

}  // namespace

ProgramFolder::ProgramFolder(unsigned furnishing) {
    static int number = 0;
    const std::wstring root = Variable(L"KVX_TEST_ROOT");
    const fs::path base = root.empty() ? OwnFolder() / L"window-run" : fs::path(root);
    const fs::path own = base / (std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++number));
    std::error_code ignored;
    fs::remove_all(own, ignored);
    fs::create_directories(own);
    path = own.wstring() + L"\\";

    const fs::path dist = DistFolder();
    Link(dist / L"KVX-Editor.exe", own / L"KVX-Editor.exe");
    if (!(furnishing & kNoScintilla)) Link(dist / L"Scintilla.dll", own / L"Scintilla.dll");
    if (!(furnishing & kNoLexilla)) Link(dist / L"Lexilla.dll", own / L"Lexilla.dll");
    if (!(furnishing & kCompilers)) return;
    for (const auto& entry : fs::directory_iterator(dist)) {
        if (!entry.is_directory() || !IsCompilerFolder(entry.path())) continue;
        fs::create_directories(own / entry.path().filename());
        for (const auto& file : fs::directory_iterator(entry.path()))
            if (file.is_regular_file()) Link(file.path(), own / entry.path().filename() / file.path().filename());
    }
}

ProgramFolder::~ProgramFolder() {
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, File(L"Editor.ini").c_str());
    std::error_code ignored;
    if (!::testing::Test::HasFailure()) fs::remove_all(path, ignored);
}

std::wstring ProgramFolder::Write(std::wstring_view name, std::string_view bytes) const {
    const fs::path file = fs::path(path) / name;
    fs::create_directories(file.parent_path());
    WriteBytes(file.wstring(), bytes);
    return file.wstring();
}

void ProgramFolder::FakeCompiler(std::string_view script) const {
    // The one that stands there may be a link, and the file that it leads to is not to be written.
    const std::wstring compiler = File(L"KVXA64\\kvxa64.exe");
    CreateDirectoryW(File(L"KVXA64").c_str(), nullptr);
    DeleteFileW(compiler.c_str());
    EXPECT_TRUE(CopyFileW(L"" KVX_FAKE_COMPILER, compiler.c_str(), FALSE)) << KVX_FAKE_COMPILER << " is missing";
    Write(L"KVXA64\\fake.txt", script);
}

std::string ProgramFolder::Read(std::wstring_view name) const { return ReadBytes(File(name)).value_or(""); }

std::wstring ProgramFolder::Ini(const wchar_t* section, const wchar_t* key, const wchar_t* fallback) const {
    const std::wstring file = File(L"Editor.ini");
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, file.c_str());
    wchar_t text[4096];
    GetPrivateProfileStringW(section, key, fallback, text, 4096, file.c_str());
    return text;
}

void ProgramFolder::SetIni(const wchar_t* section, const wchar_t* key, const std::wstring& value) const {
    const std::wstring file = File(L"Editor.ini");
    EXPECT_TRUE(WritePrivateProfileStringW(section, key, value.c_str(), file.c_str()));
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, file.c_str());
}

void ProgramFolder::KeepNoSession() const {
    SetIni(L"Editor", L"AutoSaveEnabled", L"0");
    SetIni(L"Editor", L"RestoreLastSession", L"0");
}

Editor::Editor(const ProgramFolder& programFolder, const std::wstring& arguments, Until until) : folder(programFolder) {
    DeleteFileW(folder.File(L"Editor_Detect.log").c_str());
    // What the program keeps for the user, recovery copies above all, goes into this folder as well.
    CreateDirectoryW(folder.File(L"local").c_str(), nullptr);
    SetEnvironmentVariableW(L"LOCALAPPDATA", folder.File(L"local").c_str());
    job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof(limits));

    const std::wstring line = L"\"" + folder.File(L"KVX-Editor.exe") + L"\" --new " + arguments;
    PROCESS_INFORMATION started{};
    if (!StartProcess(line, &started, {.flags = CREATE_SUSPENDED, .folder = folder.path.c_str()})) {
        ADD_FAILURE() << "cannot start " << Utf8(line) << ", error " << GetLastError();
        return;
    }
    process = started.hProcess;
    pid = started.dwProcessId;
    AssignProcessToJobObject(job, process);
    ResumeThread(started.hThread);
    CloseHandle(started.hThread);
    if (until == Until::Ready) AwaitReady();
}

Editor::~Editor() {
    if (::testing::Test::HasFailure() && process && WaitForSingleObject(process, 0) == WAIT_TIMEOUT)
        std::printf("%s", Describe().c_str());
    if (process && WaitForSingleObject(process, 0) == WAIT_TIMEOUT) TerminateProcess(process, 99);
    if (process) WaitForSingleObject(process, kDeadline);
    CloseHandle(job);
    if (process) CloseHandle(process);
}

std::optional<DWORD> Editor::ExitCode(int milliseconds) {
    DWORD code = 0;
    if (WaitForSingleObject(process, static_cast<DWORD>(milliseconds)) != WAIT_OBJECT_0) return std::nullopt;
    return GetExitCodeProcess(process, &code) ? std::optional(code) : std::nullopt;
}

std::optional<DWORD> Editor::Close() {
    PostMessageW(main, WM_CLOSE, 0, 0);
    return ExitCode();
}

std::wstring Editor::Log() const {
    const std::string bytes = folder.Read(L"Editor_Detect.log");
    return Wide(std::string_view(bytes).substr(bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0));
}
