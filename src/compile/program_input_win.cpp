#include "compile/program_input.h"

#include "base/handles.h"

#include <string>
#include <utility>

namespace {

constexpr std::size_t kMostWaiting = 1024 * 1024;  // bytes
constexpr ULONGLONG kPatienceMs = 2000;

struct ProgramInput {
    UniqueHandle pipe;
    UniqueHandle written;  // event of the pending write
    OVERLAPPED write = {};
    std::string going;    // the bytes of the pending write
    std::string waiting;  // the bytes after it
    bool pending = false;
    ULONGLONG began = 0;  // tick count of the pending write
    bool doubted = false;
    bool ends = false;  // nothing more is accepted, and the pipe is closed after `waiting`
};
ProgramInput g_input;

// Whether the pending write is over. After a failed one the program has closed its input, and the rest is dropped.
bool WriteIsOver() {
    DWORD count = 0;
    if (!g_input.pending) return true;
    if (GetOverlappedResult(g_input.pipe.Get(), &g_input.write, &count, FALSE)) {
        g_input.going.erase(0, count);
    } else {
        if (GetLastError() == ERROR_IO_INCOMPLETE) return false;
        g_input.going.clear();
        g_input.waiting.clear();
    }
    g_input.pending = false;
    return true;
}

void StartWrite() {
    if (g_input.going.empty()) g_input.going = std::exchange(g_input.waiting, {});
    g_input.write = {};
    g_input.write.hEvent = g_input.written.Get();
    g_input.began = GetTickCount64();
    g_input.pending = WriteFile(g_input.pipe.Get(), g_input.going.data(), static_cast<DWORD>(g_input.going.size()),
                                nullptr, &g_input.write) != FALSE ||
                      GetLastError() == ERROR_IO_PENDING;
    if (!g_input.pending) g_input.going.clear();
}

std::string ConsoleBytes(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_OEMCP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_OEMCP, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

}  // namespace

void ProgramInputOpen(HANDLE pipe) {
    ProgramInputClose();
    g_input.pipe.Reset(pipe);
    g_input.written.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

bool ProgramInputIsOpen() { return g_input.pipe && !g_input.ends; }

bool ProgramInputSend(std::wstring_view text) {
    const std::string bytes = ConsoleBytes(text);
    if (!ProgramInputIsOpen() || g_input.waiting.size() + bytes.size() > kMostWaiting) return false;
    g_input.waiting += bytes;
    ProgramInputPump();
    return true;
}

void ProgramInputEnd() {
    g_input.ends = true;
    ProgramInputPump();
}

void ProgramInputPump() {
    if (!g_input.pipe) return;
    while (WriteIsOver()) {
        if (g_input.going.empty() && g_input.waiting.empty()) {
            if (g_input.ends) g_input.pipe.Reset();
            return;
        }
        StartWrite();
    }
}

bool ProgramInputIsDoubtful() {
    if (!g_input.pending || g_input.doubted || GetTickCount64() - g_input.began < kPatienceMs) return false;
    g_input.doubted = true;
    return true;
}

void ProgramInputClose() {
    if (g_input.pending) {
        CancelIo(g_input.pipe.Get());
        DWORD count = 0;
        GetOverlappedResult(g_input.pipe.Get(), &g_input.write, &count, TRUE);  // the bytes are in use until then
    }
    g_input = {};
}
