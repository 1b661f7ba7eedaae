// How far a worker has come that reads or writes a file, and whether it shall stop. Shared with the thread that waits
// for it. Pure.
#pragma once

#include <atomic>
#include <cstdint>

struct FileProgress {
    std::atomic<std::uint64_t> done{0};   // bytes
    std::atomic<std::uint64_t> total{0};  // 0: not known
    std::atomic<bool> cancel{false};      // set by the one that waits
    std::atomic<bool> mayCancel{true};    // false from the moment on in which stopping would leave half a file
};
