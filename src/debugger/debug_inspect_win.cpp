// Registers, stack, memory and values of the stopped program as text. UI thread only.
#include "debugger/debug_inspect.h"
#include "debugger/expressions.h"

#include "debugger/debug_process.h"
#include "debugger/inspect_text.h"
#include "debugger/stack_walk.h"
#include "debugger/stop_rules.h"

#include "base/wide_format.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <span>
#include <string>
#include <vector>

namespace {

constexpr DWORD kFullContext = 0x10001F;
constexpr int kMostDumped = 4096;
constexpr std::size_t kInstructionBytes = 16;
constexpr std::size_t kRegisterCapacity = 4096, kStackCapacity = 8192, kInstructionCapacity = 512, kWatchCapacity = 256;

// A new block with the text, cut to `capacity` characters with the terminator.
wchar_t* HeapText(const std::wstring& text, std::size_t capacity) {
    const std::size_t length = std::min(text.size(), capacity - 1);
    auto* block = static_cast<wchar_t*>(std::malloc((length + 1) * sizeof(wchar_t)));
    if (block == nullptr) return nullptr;
    std::memcpy(block, text.data(), length * sizeof(wchar_t));
    block[length] = L'\0';
    return block;
}

void ReadContext64(const CONTEXT& context, RegisterSet* out) {
    *out = {};
    out->x64 = true;
    out->general = {context.Rax, context.Rbx, context.Rcx, context.Rdx, context.Rsi, context.Rdi,
                    context.Rbp, context.Rsp, context.R8,  context.R9,  context.R10, context.R11,
                    context.R12, context.R13, context.R14, context.R15};
    out->ip = context.Rip;
    out->flags = context.EFlags;
    out->segments = {context.SegCs, context.SegDs, context.SegEs, context.SegFs, context.SegGs, context.SegSs};
    for (std::size_t i = 0; i < out->xmmLow.size(); ++i) {
        const M128A& value = context.FltSave.XmmRegisters[i];
        out->xmmLow[i] = static_cast<std::uint64_t>(value.Low);
        out->xmmHigh[i] = static_cast<std::uint64_t>(value.High);
    }
}

void ReadContext32(const WOW64_CONTEXT& context, RegisterSet* out) {
    *out = {};
    out->x64 = false;
    out->general = {context.Eax, context.Ebx, context.Ecx, context.Edx,
                    context.Esi, context.Edi, context.Ebp, context.Esp};
    out->ip = context.Eip;
    out->flags = context.EFlags;
    const auto segment = [](DWORD value) { return static_cast<std::uint16_t>(value); };
    out->segments = {segment(context.SegCs), segment(context.SegDs), segment(context.SegEs),
                     segment(context.SegFs), segment(context.SegGs), segment(context.SegSs)};
    constexpr std::size_t kXmmArea = 160, kXmmBytes = 16, kXmmCount = 8;  // in the area that FXSAVE writes
    for (std::size_t i = 0; i < kXmmCount; ++i) {
        std::memcpy(&out->xmmLow[i], context.ExtendedRegisters + kXmmArea + i * kXmmBytes, sizeof(std::uint64_t));
        std::memcpy(&out->xmmHigh[i], context.ExtendedRegisters + kXmmArea + i * kXmmBytes + sizeof(std::uint64_t),
                    sizeof(std::uint64_t));
    }
}

template <typename Number>
std::wstring NumberText(const DebuggerState* state, std::uint64_t address, const wchar_t* format) {
    Number value = {};
    return DebugReadMem(state, address, &value, sizeof(value)) ? FormatW(format, value, value) : L"<unreadable>";
}

std::wstring StringText(const DebuggerState* state, std::uint64_t address) {
    std::array<char, 128> bytes = {};
    if (DebugReadSome(state, address, bytes.data(), bytes.size() - 1) == 0) return L"<unreadable>";
    const auto size = static_cast<int>(std::strlen(bytes.data()));
    std::array<wchar_t, 128> wide = {};
    const int length = size == 0 ? 0
                                 : MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), size, wide.data(),
                                                       static_cast<int>(wide.size()));
    if (size != 0 && length == 0) return L"\"<encoding error>\"";
    return L"\"" + std::wstring(wide.data(), static_cast<std::size_t>(length)) + L"\"";
}

MemoryReader ReaderOf(const DebuggerState* state) {
    return [state](std::uint64_t address, void* out, std::size_t count) {
        return DebugReadMem(state, address, out, count);
    };
}

}  // namespace

bool DebugGetContext(const DebuggerState* state, CONTEXT* context) {
    if (!DebugIsActive(state)) return false;
    context->ContextFlags = kFullContext;
    return GetThreadContext(state->thread, context) != 0;
}

bool DebugGetRegisters(const DebuggerState* state, std::uint32_t threadId, RegisterSet* registers) {
    if (!DebugIsActive(state)) return false;
    if (threadId == 0) threadId = state->stopThreadId != 0 ? state->stopThreadId : state->mainThreadId;
    HANDLE thread = DebugThreadHandle(*state, threadId);
    if (state->isX64 != 0) {
        CONTEXT context = {};
        context.ContextFlags = kFullContext;
        if (!GetThreadContext(thread, &context)) return false;
        ReadContext64(context, registers);
        return true;
    }
    WOW64_CONTEXT context = {};
    context.ContextFlags = WOW64_CONTEXT_ALL;
    if (!Wow64GetThreadContext(thread, &context)) return false;
    ReadContext32(context, registers);
    return true;
}

wchar_t* DebugFormatRegisters(const DebuggerState* state) {
    if (!DebugIsActive(state)) return nullptr;
    RegisterSet registers;
    registers.x64 = state->isX64 != 0;
    if (registers.x64) {
        CONTEXT context = {};
        if (!DebugGetContext(state, &context)) return nullptr;
        ReadContext64(context, &registers);
    }
    return HeapText(FormatRegisters(registers), kRegisterCapacity);
}

wchar_t* DebugWalkStack(const DebuggerState* state) {
    CONTEXT context = {};
    if (!DebugIsActive(state)) return nullptr;
    const bool x64 = state->isX64 != 0;
    if (x64 && !DebugGetContext(state, &context)) return nullptr;
    return HeapText(CallStackText(state->map, x64 ? context.Rbp : 0, x64 ? context.Rip : 0, ReaderOf(state)),
                    kStackCapacity);
}

wchar_t* DebugHexDump(const DebuggerState* state, std::uint64_t address, int count) {
    if (!DebugIsActive(state) || count < 1 || count > kMostDumped) return nullptr;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(count));
    if (!DebugReadMem(state, address, bytes.data(), bytes.size())) return nullptr;
    const std::wstring text = HexDumpText(address, bytes);
    return HeapText(text, text.size() + 1);
}

wchar_t* DebugDisassembleAt(const DebuggerState* state, std::uint64_t address) {
    if (!DebugIsActive(state)) return nullptr;
    std::array<std::uint8_t, kInstructionBytes> bytes = {};
    const std::size_t count = DebugReadSome(state, address, bytes.data(), bytes.size());
    if (count == 0) return nullptr;
    return HeapText(InstructionBytesText(std::span(bytes).first(count)), kInstructionCapacity);
}

std::uint64_t DebugEvaluate(const DebuggerState* state, const char* expression) {
    RegisterSet registers;
    if (expression == nullptr || !DebugGetRegisters(state, 0, &registers)) return 0;
    return EvaluateExpression(registers, expression);
}

wchar_t* DebugWatchValue(const DebuggerState* state, std::uint64_t address, int kind) {
    if (!DebugIsActive(state)) return nullptr;
    std::wstring text;
    switch (kind) {
        case 0: text = NumberText<std::int32_t>(state, address, L"%d (0x%08X)"); break;
        case 1: text = NumberText<std::int64_t>(state, address, L"%lld (0x%016llX)"); break;
        case 2: text = StringText(state, address); break;
        case 3: text = NumberText<double>(state, address, L"%.15g"); break;
        default: text = L"<unknown kind>"; break;
    }
    return HeapText(text, kWatchCapacity);
}

bool DebugLineAt(const DebuggerState* state, std::uint64_t address, std::uint32_t* fileId, std::uint32_t* line) {
    const SourcePlace place =
        DebugIsActive(state) ? PlaceInImage(state->map, state->imageSize, address) : SourcePlace{};
    if (place.line == 0) return false;
    *fileId = place.fileId;
    *line = place.line;
    return true;
}

std::vector<DebugFrame> DebugFrames(const DebuggerState* state, std::uint32_t threadId) {
    std::vector<DebugFrame> frames;
    RegisterSet registers;
    if (!DebugGetRegisters(state, threadId, &registers)) return frames;
    for (const FrameLink& link : WalkFrames(registers, ReaderOf(state))) {
        // A caller's address is that after its call, where the next line may begin already.
        const std::uint64_t inLine = frames.empty() ? link.address : link.address - 1;
        frames.push_back({.address = link.address, .framePointer = link.framePointer});
        DebugLineAt(state, inLine, &frames.back().fileId, &frames.back().line);
    }
    return frames;
}

bool DebugPlaceInProgram(const DebuggerState* state, std::uint32_t threadId, std::uint64_t* address) {
    constexpr std::size_t kStackBytes = 8192;
    RegisterSet registers;
    if (!DebugGetRegisters(state, threadId, &registers)) return false;
    const auto hasLine = [&](std::uint64_t at) { return PlaceInImage(state->map, state->imageSize, at).line != 0; };
    *address = registers.ip;
    if (hasLine(registers.ip)) return true;
    std::vector<std::uint8_t> stack(kStackBytes);
    stack.resize(DebugReadSome(state, registers.general[kSp], stack.data(), stack.size()));
    const auto found = FindReturnAddress(
        stack, registers.x64 ? sizeof(std::uint64_t) : sizeof(std::uint32_t), [&](std::uint64_t value) {
            std::array<std::uint8_t, kLongestCall> before = {};
            return hasLine(value - 1) && DebugReadMem(state, value - kLongestCall, before.data(), before.size()) &&
                   EndsWithCall(before);
        });
    if (!found) return false;
    *address = *found;
    return true;
}
