// How long the output of a process is read: until its end, its time limit, or the user's Stop. A process that ours has started
// may live on and hold the pipe open for ever; after the end of ours the pipe is read for only a moment more, and only so much
// of it, both more than what ours can have left in it. Times are tick counts in milliseconds. Pure.
#pragma once

#include "compile/build_values.h"

#include <cstddef>
#include <cstdint>

inline constexpr std::uint64_t kReadNoLimit = ~std::uint64_t{0};
inline constexpr std::uint64_t kReadLateMs = 500;
inline constexpr std::size_t kReadLateBytes = 1024 * 1024;

enum class ReadStep : std::uint8_t { Go, PipeEnd, Stopped, TimedOut };

struct ReadCourse {
    std::uint64_t deadline = kReadNoLimit;
    std::uint64_t endedAt = 0;  // the process's end
    std::size_t lateBytes = 0;  // read since that end
    bool processEnded = false;
};

// Until the time limit; at most 0xFFFFFFFE, for waits.
std::uint32_t ReadMsLeft(const ReadCourse& course, std::uint64_t now);
// How long the next piece is waited for, and what it means that none has come by then.
std::uint32_t ReadPatience(const ReadCourse& course, std::uint64_t now);
ReadStep ReadNothingCame(const ReadCourse& course, std::uint64_t now);
// Counts a piece of so many bytes, whose reading gave `step`; whether to go on.
ReadStep ReadPieceCame(ReadCourse& course, std::size_t bytes, ReadStep step, std::uint64_t now);

BuildEnd ReadEndOf(ReadStep step);
// A command that outlived its time goes on without us; a compiler is ended.
bool ReadLeavesRunning(BuildStage stage, BuildEnd end);
