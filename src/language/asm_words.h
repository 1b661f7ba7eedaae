// The words of x86 assembly: mnemonics, registers, directives. Pure; any thread.
#pragma once

#include <cstdint>
#include <string_view>

enum class AsmClass : std::uint8_t {
    None,  // a name
    Instruction,
    Math,      // of the floating-point unit
    Extended,  // SSE
    Register,
    Directive,
    Operand,  // PTR, DWORD and the like
};
AsmClass AsmClassOf(std::string_view word);  // without regard to case
std::string_view AsmWordsOf(AsmClass kind);  // in lower case, separated by blanks
