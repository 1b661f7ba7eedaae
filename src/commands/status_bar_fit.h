// Divides the width of the status bar among its parts. Pure.
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

// The right ends of the parts for a bar of `width` pixels, in pixels. The message gets the rest of the width. When that
// is too little, parts get the width 0: first selection, then progress, line ending and encoding.
std::array<int, kStatusPartCount> FitStatusParts(int width, int dpi);
