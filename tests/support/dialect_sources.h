// A program in each dialect, in tests/golden/dialects.
#pragma once

#include "settings/compiler_id.h"

#include <cstdint>

struct DialectSource {
    const char* name;  // below tests/golden
    std::uint32_t compiler;
};
inline constexpr DialectSource kDialectSources[] = {
    {"dialects/parser.kxa", kCompilerKvxa64},     {"dialects/images.kxb", kCompilerKvxb64},
    {"dialects/adventure.ka32", kCompilerKvxa32}, {"dialects/ledger.kb", kCompilerKeldorBasic},
    {"dialects/sorting.kxc", kCompilerKvxc64},
};
