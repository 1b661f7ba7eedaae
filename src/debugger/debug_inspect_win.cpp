// Registers, stack, memory and values of the stopped program as text. UI thread only.
#include "debugger/debug_inspect.h"
#include "debugger/expressions.h"

#include "debugger/debug_process.h"
#include "debugger/inspect_text.h"
#include "debugger/saved_registers.h"
#include "debugger/stack_walk.h"
#include "debugger/stop_rules.h"
#include "debugger/watch_value.h"

#include "base/handles.h"
#include "base/wide_format.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
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
    ReadSavedXmm({reinterpret_cast<const std::uint8_t*>(&context.FltSave), sizeof(context.FltSave)}, 16, out);
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
    ReadSavedXmm(context.ExtendedRegisters, 8, out);
}

ProgramImage ImageOf(const DebuggerState* state) { return {.map = &state->map, .size = state->imageSize}; }

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
    return HeapText(CallStackText(state->map, x64 ? context.Rbp : 0, x64 ? context.Rip : 0, DebugMemory(*state).read),
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
    const auto write = [](double value) { return FormatW(L"%.15g", value); };
    return HeapText(WatchValueText(kind, address, DebugMemory(*state), write), kWatchCapacity);
}

std::wstring DebugShownValue(const DebuggerState* state, std::uint64_t address, WatchKind kind) {
    const HeapBlock<wchar_t> value(DebugWatchValue(state, address, static_cast<int>(kind)));
    if (!value) return {};
    if (!IsUnreadableWatch(value.get())) return value.get();
    return value.get() + (L": " + WhyUnreadable(kind, address, DebugMemory(*state)));
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
    RegisterSet registers;
    if (!DebugGetRegisters(state, threadId, &registers)) return {};
    return FramesWithLines(ImageOf(state), registers, DebugMemory(*state));
}

bool DebugCallerOfLibrary(const DebuggerState* state, std::uint64_t* returnAddress) {
    std::uint32_t fileId = 0;
    std::uint32_t line = 0;
    return DebugIsActive(state) && !DebugLineAt(state, state->currentAddress, &fileId, &line) &&
           DebugPlaceInProgram(state, 0, returnAddress) && *returnAddress != state->currentAddress;
}

bool DebugPlaceInProgram(const DebuggerState* state, std::uint32_t threadId, std::uint64_t* address) {
    RegisterSet registers;
    if (!DebugGetRegisters(state, threadId, &registers)) return false;
    const auto found = AddressInProgram(ImageOf(state), registers, DebugMemory(*state));
    *address = found.value_or(registers.ip);
    return found.has_value();
}
