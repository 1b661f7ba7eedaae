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
    kProject,  // empty, and of no width, while no project is open
    kTabWidth,
    kZoom,
    kStatusPartCount
};

// Each part's value in pixels.
using StatusWidths = std::array<int, kStatusPartCount>;

// The right ends of the parts for a bar of `width` pixels. `wanted` holds the widths of the parts; that of the message is
// the least it gets, and it takes the rest of the bar. When that is too little, parts get the width 0: first selection,
// then zoom, tab width, progress, project, line ending and encoding.
StatusWidths FitStatusParts(int width, const StatusWidths& wanted);
