// What both kinds of sample tests need: the samples, their lines, and the fields of an executable.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "support/temp_files.h"

namespace samples {

inline const std::filesystem::path kFolder = std::filesystem::path(KVX_ROOT_DIR) / "samples";

// Sources that build, relative to kFolder; the expected output is expected/NAME.txt.
struct Sample {
    std::string_view source, name;
};
inline constexpr Sample kSamples[] = {
    {"hello.bas", "hello"},   {"primes.bas", "primes"},   {"recursion.bas", "recursion"},
    {"arrays.bas", "arrays"}, {"doubles.bas", "doubles"}, {"quads.bas", "quads"},
    {"steps.bas", "steps"},   {"maze.bas", "maze"},       {"multifile/main.bas", "multifile"},
};

std::string Utf8(const std::filesystem::path& path);
std::string Unix(std::string text);  // CR LF to LF
std::vector<std::string> Lines(const std::string& text);
std::string Expected(std::string_view name);

uint32_t Number(std::string_view bytes, size_t at, size_t size = 4);  // little-endian; 0 outside

struct Section {
    uint32_t virtualSize = 0, rva = 0, rawSize = 0;
    std::string raw;  // as in the file
};
// Sections of an executable by name; empty when it is none.
std::map<std::string, Section> ReadSections(const std::string& program);

// The line map of a trapped program, found as its debugger finds it: RVA of each run of CC from PBMAIN on, with PBMAIN's
// place taken from the .pbd file.
std::vector<uint32_t> TrapsOf(const std::string& program, const std::string& pbd);
// The lines that those traps stand for.
std::vector<int> StatementLines(const std::string& source);

}  // namespace samples
