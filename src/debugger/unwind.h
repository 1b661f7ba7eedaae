// Callers of 64-bit code by the unwind tables of the module that it is in: exact also in a library, whose stack may hold
// old return addresses of the program. Pure; whatever the memory holds is legal input.
#pragma once

#include "debugger/stack_walk.h"

#include <cstdint>
#include <functional>
#include <optional>

// A place where a thread will go on in the program.
struct NearestReturn {
    std::uint64_t address = 0;
    std::uint64_t offset = 0;                   // of the return address, from the stack pointer
    std::optional<std::uint64_t> framePointer;  // there, when it is known
};
// The nearest return address of a thread for which `hasLine` is true of the address before it, that is, of the call.
// Libraries are unwound; where that is not possible, the words of the stack are
// searched for an address behind a call.
std::optional<NearestReturn> NearestReturnToLine(const RegisterSet& registers, const ProgramMemory& memory,
                                                 const std::function<bool(std::uint64_t)>& hasLine);
