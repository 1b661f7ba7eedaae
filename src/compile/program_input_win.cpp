#include "compile/program_input.h"

#include "base/handles.h"
#include "compile/input_queue.h"

#include <string>

namespace {

struct ProgramInput {
    UniqueHandle pipe;
    UniqueHandle written;  // event of the pending write
    OVERLAPPED write = {};
    InputQueue queue;
};
ProgramInput g_input;

bool StartWrite(std::string_view bytes) {
    g_input.write = {};
    g_input.write.hEvent = g_input.written.Get();
    return WriteFile(g_input.pipe.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &g_input.write) !=
               FALSE ||
           GetLastError() == ERROR_IO_PENDING;
}

InputWrite ResultOfWrite(std::size_t* bytes) {
    DWORD count = 0;
    if (!GetOverlappedResult(g_input.pipe.Get(), &g_input.write, &count, FALSE))
        return GetLastError() == ERROR_IO_INCOMPLETE ? InputWrite::Pending : InputWrite::Failed;
    *bytes = count;
    return InputWrite::Done;
}

const InputPipe& ThePipe() {
    static const InputPipe kPipe = {.clock = [] { return static_cast<std::uint64_t>(GetTickCount64()); },
                                    .write = StartWrite,
                                    .result = ResultOfWrite,
                                    .close = [] { g_input.pipe.Reset(); }};
    return kPipe;
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

bool ProgramInputIsOpen() { return g_input.pipe && !g_input.queue.ends; }

bool ProgramInputSend(std::wstring_view text) {
    if (!g_input.pipe || !InputAdd(g_input.queue, ConsoleBytes(text))) return false;
    ProgramInputPump();
    return true;
}

void ProgramInputEnd() {
    g_input.queue.ends = true;
    ProgramInputPump();
}

void ProgramInputPump() {
    if (g_input.pipe) InputPump(g_input.queue, ThePipe());
}

bool ProgramInputIsDoubtful() { return InputIsDoubtful(g_input.queue, GetTickCount64()); }

void ProgramInputClose() {
    if (g_input.queue.pending) {
        CancelIo(g_input.pipe.Get());
        DWORD count = 0;
        GetOverlappedResult(g_input.pipe.Get(), &g_input.write, &count, TRUE);  // the bytes are in use until then
    }
    g_input = {};
}
