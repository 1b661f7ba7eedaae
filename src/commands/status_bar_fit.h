// How the parts of the status bar share its width. Pure.
#pragma once

#include <array>

enum StatusPart : int {
    kMessage,
    kProgress,
    kPosition,
    kSelection,
    kEncoding,
    kLineEnding,
    kCompiler,
    kStatusPartCount
};

// Right ends of the parts, in pixels. The message takes what the others leave; a part that finds no room is empty, the
// least needed first.
std::array<int, kStatusPartCount> FitStatusParts(int width, int dpi);
