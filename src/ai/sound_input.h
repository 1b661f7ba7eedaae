// The microphone. UI thread only.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Samples are in the form of ai/wav.h.
struct SoundInput {
    bool (*start)(std::wstring* problem);              // false: `problem` says why there is no sound
    void (*read)(std::vector<std::int16_t>* samples);  // appends what came since the last call; does not wait
    void (*stop)();
};
// The system's default microphone. Tests put another input in its place.
extern const SoundInput* g_soundInput;
