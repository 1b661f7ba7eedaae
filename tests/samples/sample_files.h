// What both kinds of sample tests need: the samples and their texts.
#pragma once

#include <filesystem>
#include <sstream>
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

inline std::string Utf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

inline std::string Unix(std::string text) {  // CR LF to LF
    std::erase(text, '\r');
    return text;
}

inline std::vector<std::string> Lines(const std::string& text) {
    std::istringstream in(Unix(text));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

inline std::string Expected(std::string_view name) {
    return Unix(ReadBytes(kFolder / "expected" / (std::string(name) + ".txt")));
}

}  // namespace samples
