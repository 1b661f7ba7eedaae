// What a step must know of the instruction that the program stands on. Pure.
#pragma once

#include <cstdint>
#include <span>

struct StepInstruction {
    enum class Kind : std::uint8_t {
        Plain,  // also bytes that are no instruction
        Call,
        Return,
        Repeat,     // a string instruction with a repeat prefix, which traps after each repetition
        PushFlags,  // would store the trap flag of a single step on the stack
    } kind = Kind::Plain;
    std::uint8_t length = 1;  // bytes
};
// The instruction at the start of `bytes`.
StepInstruction StepInstructionAt(std::span<const std::uint8_t> bytes, bool x64);
