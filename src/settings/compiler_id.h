// The five compilers by number: indices of every per-compiler table. What is known of each stands in compilers.h. Pure.
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
