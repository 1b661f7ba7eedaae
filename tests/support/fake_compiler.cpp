// A fake compiler. Tests and measurements copy its executable over a compiler's. It carries out the orders in
// "fake.txt" beside it, one a line:
//   print TEXT       the text and a line break            args         command line and working folder
//   raw TEXT         \xHH escapes, no line break          sleep MS
//   flood N          N numbered lines (0: without end)    spawn        a copy of itself that lives for a minute
//   talk N           the same, a tenth of them diagnostics
//   errors N FILE    N diagnostics for FILE, line i       touch PATH   creates an empty file
//   settle           waits until its output was read     await PATH   waits for up to a minute until the file exists
//   exit N           ends with that code                  tally PATH   one byte more in a file
//   make             a copy of itself after "-o"          echo         prints its input, line by line, to its end
//   renew PATH       gives a file the time of now, as if it had been written
//   ask              a prompt with the time of now, "at N ms?" by the performance counter, without a line break
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "support/flood_lines.h"
#include "support/start_process.h"

namespace {

// Bytes written at once: about what a C runtime buffers for a pipe, and much more.
constexpr std::size_t kSmallBlock = 4000, kLargeBlock = 16000;

void Put(std::string_view bytes) {
    DWORD put = 0;
    while (!bytes.empty()) {
        if (!WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), bytes.data(), static_cast<DWORD>(bytes.size()), &put, nullptr))
            ExitProcess(98);  // the reader has closed the pipe
        bytes.remove_prefix(put);
    }
}

std::string Narrow(const wchar_t* text) {
    char out[8192] = {};
    WideCharToMultiByte(CP_UTF8, 0, text, -1, out, sizeof(out) - 1, nullptr, nullptr);
    return out;
}

std::wstring OwnPath() {
    wchar_t path[1024] = {};
    GetModuleFileNameW(nullptr, path, 1024);
    return path;
}

std::string NumberedLine(int number) {
    char line[64];
    std::snprintf(line, sizeof(line), "output line %07d", number);
    return line;
}

void Flood(int count, std::string (*line)(int number), std::size_t blockBytes) {
    std::string block;
    for (int i = 1; count == 0 || i <= count; ++i) {
        block += line(i) + "\r\n";
        if (block.size() > blockBytes || i == count) Put(block), block.clear();
    }
}

void Spawn() {
    PROCESS_INFORMATION child{};
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE), errors = GetStdHandle(STD_ERROR_HANDLE);
    if (!StartProcess(L"\"" + OwnPath() + L"\" --linger", &child, {.output = output, .errors = errors}))
        ExitProcess(96);
}

void Raw(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.substr(i, 2) != "\\x") {
            bytes += text[i];
            continue;
        }
        bytes += static_cast<char>(std::strtol(std::string(text.substr(i + 2, 2)).c_str(), nullptr, 16));
        i += 3;
    }
    Put(bytes);
}

void AskWithTime() {
    LARGE_INTEGER frequency = {}, now = {};
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&now);
    char text[64];
    std::snprintf(text, sizeof(text), "at %.3f ms?",
                  1000.0 * static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart));
    Put(text);
}

void Obey(const std::string& order, const std::string& text) {
    if (order == "print") Put(text + "\r\n");
    if (order == "raw") Raw(text);
    if (order == "flood") Flood(std::atoi(text.c_str()), NumberedLine, kLargeBlock);
    if (order == "talk") Flood(std::atoi(text.c_str()), FloodLine, kSmallBlock);
    if (order == "settle") FlushFileBuffers(GetStdHandle(STD_OUTPUT_HANDLE));
    if (order == "sleep") Sleep(static_cast<DWORD>(std::atol(text.c_str())));
    if (order == "spawn") Spawn();
    if (order == "ask") AskWithTime();
    for (int i = 0; order == "await" && GetFileAttributesA(text.c_str()) == INVALID_FILE_ATTRIBUTES && i < 6000; ++i)
        Sleep(10);
    if (order == "make") {
        const std::wstring line = GetCommandLineW();
        const std::size_t at = line.find(L" -o \"") + 5;
        const std::wstring program = line.substr(at, line.find(L'"', at) - at);
        CopyFileW(OwnPath().c_str(), program.c_str(), FALSE);
        FILETIME now{};  // the copy has the time of the original
        GetSystemTimeAsFileTime(&now);
        const HANDLE file = CreateFileW(program.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        SetFileTime(file, nullptr, nullptr, &now);
        CloseHandle(file);
    }
    if (order == "echo")
        for (char said[256]; std::fgets(said, sizeof(said), stdin) != nullptr;) Put(std::string("got ") + said);
    if (order == "exit") ExitProcess(static_cast<UINT>(std::atol(text.c_str())));
    if (order == "touch") std::fclose(std::fopen(text.c_str(), "wb"));
    if (order == "renew") {
        FILETIME now = {};
        GetSystemTimeAsFileTime(&now);
        HANDLE file = CreateFileA(text.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
        SetFileTime(file, nullptr, nullptr, &now);
        CloseHandle(file);
    }
    if (order == "tally") {
        std::FILE* file = std::fopen(text.c_str(), "ab");
        std::fputc('1', file);
        std::fclose(file);
    }
    if (order == "args") {
        wchar_t folder[1024] = {};
        GetCurrentDirectoryW(1024, folder);
        Put("args: " + Narrow(GetCommandLineW()) + "\r\ncwd: " + Narrow(folder) + "\r\n");
    }
    if (order == "errors") {
        const std::size_t blank = text.find(' ');
        for (long i = 1, count = std::atol(text.c_str()); i <= count; ++i) {
            const std::string number = std::to_string(i);
            Put(text.substr(blank + 1) + "(" + number + ",1): error: number " + number + "\r\n");
        }
    }
}

}  // namespace

int main() {
    if (std::wstring_view(GetCommandLineW()).find(L"--linger") != std::wstring_view::npos) {
        Sleep(60000);
        return 0;
    }
    const std::wstring own = OwnPath();
    std::FILE* file = _wfopen((own.substr(0, own.rfind(L'\\') + 1) + L"fake.txt").c_str(), L"rb");
    if (file == nullptr) return 97;
    std::string script;
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) script += static_cast<char>(c);
    std::fclose(file);
    for (std::size_t at = 0; at < script.size();) {
        const std::size_t end = std::min(script.find('\n', at), script.size());
        const std::string line = script.substr(at, end - at);
        const std::size_t blank = line.find(' ');
        Obey(line.substr(0, blank), blank == std::string::npos ? "" : line.substr(blank + 1));
        at = end + 1;
    }
    return 0;
}
