// Writing a register of a stopped thread. UI thread only.
#include "debugger/debug_inspect.h"

#include "debugger/debug_process.h"

#include <cwchar>

namespace {

struct Name64 {
    const wchar_t* name;
    DWORD64 CONTEXT::*field;
};
constexpr Name64 kNames64[] = {
    {L"RAX", &CONTEXT::Rax}, {L"RBX", &CONTEXT::Rbx}, {L"RCX", &CONTEXT::Rcx}, {L"RDX", &CONTEXT::Rdx},
    {L"RSI", &CONTEXT::Rsi}, {L"RDI", &CONTEXT::Rdi}, {L"RBP", &CONTEXT::Rbp}, {L"RSP", &CONTEXT::Rsp},
    {L"R8", &CONTEXT::R8},   {L"R9", &CONTEXT::R9},   {L"R10", &CONTEXT::R10}, {L"R11", &CONTEXT::R11},
    {L"R12", &CONTEXT::R12}, {L"R13", &CONTEXT::R13}, {L"R14", &CONTEXT::R14}, {L"R15", &CONTEXT::R15}};

struct Name32 {
    const wchar_t* name;
    DWORD WOW64_CONTEXT::*field;
};
constexpr Name32 kNames32[] = {{L"EAX", &WOW64_CONTEXT::Eax}, {L"EBX", &WOW64_CONTEXT::Ebx},
                               {L"ECX", &WOW64_CONTEXT::Ecx}, {L"EDX", &WOW64_CONTEXT::Edx},
                               {L"ESI", &WOW64_CONTEXT::Esi}, {L"EDI", &WOW64_CONTEXT::Edi},
                               {L"EBP", &WOW64_CONTEXT::Ebp}, {L"ESP", &WOW64_CONTEXT::Esp}};

bool SetIn64(HANDLE thread, const wchar_t* name, std::uint64_t value) {
    for (const Name64& row : kNames64) {
        if (_wcsicmp(row.name, name) != 0) continue;
        CONTEXT context = {};
        context.ContextFlags = CONTEXT_CONTROL;
        context.ContextFlags |= CONTEXT_INTEGER;
        if (!GetThreadContext(thread, &context)) return false;
        context.*row.field = value;
        return SetThreadContext(thread, &context) != 0;
    }
    return false;
}

bool SetIn32(HANDLE thread, const wchar_t* name, std::uint64_t value) {
    for (const Name32& row : kNames32) {
        if (_wcsicmp(row.name, name) != 0) continue;
        WOW64_CONTEXT context = {};
        context.ContextFlags = WOW64_CONTEXT_CONTROL;
        context.ContextFlags |= WOW64_CONTEXT_INTEGER;
        if (!Wow64GetThreadContext(thread, &context)) return false;
        context.*row.field = static_cast<DWORD>(value);
        return Wow64SetThreadContext(thread, &context) != 0;
    }
    return false;
}

}  // namespace

bool DebugSetRegister(const DebuggerState* state, std::uint32_t threadId, const wchar_t* name, std::uint64_t value) {
    if (state == nullptr || state->active == 0 || state->run != DebugRun::Stopped || name == nullptr) return false;
    const HANDLE thread = DebugThreadHandle(*state, threadId);
    if (thread == nullptr) return false;
    if (state->isX64 != 0) return SetIn64(thread, name, value);
    return value <= MAXDWORD && SetIn32(thread, name, value);
}
