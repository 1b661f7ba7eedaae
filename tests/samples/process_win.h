// Runs programs, plainly and under the debugging interface.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace samples {

struct Ended {
    bool started = false;
    uint32_t exit = 0;
    std::string output;  // standard output and error
};

// Runs to the end, at most a minute (then it is killed and `exit` is 0xDEAD).
Ended RunProgram(const std::filesystem::path& program, const std::vector<std::string>& args);

// Runs under the debugger and gives the addresses, relative to the image, of the breakpoints met in order. Those that
// are not part of the program are planted at `plant` (RVAs; 64-bit programs only) and removed when met.
std::vector<uint32_t> DebugRun(const std::filesystem::path& program, const std::vector<uint32_t>& plant);

}  // namespace samples
