// Decides how long the output of a process is read: until its end, its time limit, or the user's Stop. The limit of a
// compiler is for its silence: each piece of output begins it anew, because long builds print all the time. A process
// started by it may live on and keep the pipe open. After the end of the first process the pipe is therefore read only
// for a short time and up to a limit of bytes; both are more than the output that it can have left in the pipe. Times
// are tick counts in milliseconds. Pure.
#pragma once

#include "compile/build_values.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

inline constexpr std::uint64_t kReadNoLimit = ~std::uint64_t{0};
inline constexpr std::uint64_t kReadLateMs = 500;
inline constexpr std::size_t kReadLateBytes = 1024 * 1024;

enum class ReadStep : std::uint8_t { Go, PipeEnd, Stopped, TimedOut };

struct ReadCourse {
    std::uint64_t deadline = kReadNoLimit;
    std::uint64_t silenceMs = 0;  // above 0: the deadline is this long after the last output
    std::uint64_t endedAt = 0;    // when the process ended
    std::size_t lateBytes = 0;    // bytes read since then
    bool processEnded = false;
};

// Milliseconds until the time limit, at most 0xFFFFFFFE, because a wait takes 0xFFFFFFFF as INFINITE.
std::uint32_t ReadMsLeft(const ReadCourse& course, std::uint64_t now);
// ReadPatience: milliseconds to wait for the next piece. ReadNothingCame: what to do when none came in that time.
std::uint32_t ReadPatience(const ReadCourse& course, std::uint64_t now);
ReadStep ReadNothingCame(const ReadCourse& course, std::uint64_t now);
// Counts a piece of `bytes` bytes, whose read gave `step`. Returns whether to go on.
ReadStep ReadPieceCame(ReadCourse& course, std::size_t bytes, ReadStep step, std::uint64_t now);

// How many of the bytes read so far can be decoded now. The start of a UTF-8 character at their end waits for its other
// bytes. In bytes that are no UTF-8 the first byte of a character of the code page waits for the second one; `leadBytes`
// are the bytes with which such characters begin.
std::size_t ReadDecodable(std::string_view bytes, std::string_view leadBytes);

BuildEnd ReadEndOf(ReadStep step);
// Whether the process is left running: a command that exceeded its time limit is, a compiler is ended.
bool ReadLeavesRunning(BuildStage stage, BuildEnd end);
