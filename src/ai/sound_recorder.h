// Records on a worker, so that a slow driver, or one that hangs after its device was removed, never holds up the window.
#pragma once

#include "base/worker.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

enum class RecorderState : std::uint8_t { Opening, Records, NoInput, Lost, Ended };

// What the worker tells while it records. The worker and the dialog share it, so it outlives the one that ends first.
struct SoundFeed {
    std::atomic<RecorderState> state = RecorderState::Opening;
    std::atomic<int> level = 0;                // 0 to 100
    std::atomic<std::uint64_t> heardTick = 0;  // tick count at which sound arrived last, or the recording began
    std::atomic<bool> full = false;            // kMostSamples have come; later ones are dropped
    std::mutex lock;                           // guards the fields below
    std::wstring problem;                      // with NoInput: why there is no sound
    std::vector<std::int16_t> samples;
};

struct Recorder {
    std::shared_ptr<SoundFeed> feed;
    Worker worker;  // empty: it could not be started
};

Recorder RecorderStart();
// Moves out what was recorded until now; later sound stays in the feed. Safe while the worker hangs in the driver.
std::vector<std::int16_t> RecorderTake(SoundFeed& feed);
