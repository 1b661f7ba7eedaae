// The microphone. Its calls may wait for the driver, so they belong on a worker; the calls for one input on one thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Samples are in the form of ai/wav.h. Both readers append to `samples` what came since the last call.
struct SoundInput {
    // The opened input; null: there is no sound, and `problem` tells the user why.
    void* (*start)(std::wstring* problem);
    bool (*read)(void* input,
                 std::vector<std::int16_t>* samples);  // false: the device is gone; does not wait for sound
    void (*stop)(void* input, std::vector<std::int16_t>* samples);  // closes the input
};
// The system's default microphone. Tests put another input in its place while nothing records.
extern const SoundInput* g_soundInput;
