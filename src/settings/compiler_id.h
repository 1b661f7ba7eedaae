// The numbers of the five compilers: the indices of every table with one row for each. What is known of a compiler is
// in compilers.h. Pure.
#pragma once

#include <cstdint>

enum CompilerId : std::uint32_t {
    kCompilerKvxa64 = 0,
    kCompilerKvxb64 = 1,
    kCompilerKvxa32 = 2,
    kCompilerKeldorBasic = 3,
    kCompilerKvxc64 = 4,
};
inline constexpr std::uint32_t kCompilerCount = 5;
inline constexpr std::uint32_t kDefaultCompiler = kCompilerKeldorBasic;
