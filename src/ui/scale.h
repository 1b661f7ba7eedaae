// Lengths are written for 96 dpi, and scaled where they are used. Pure; any thread.
#pragma once

// Converts a length at 96 dpi to pixels at `dpi`, rounded to the nearest.
constexpr int ScaledTo(int length, int dpi) {
    const int product = length * dpi;
    return (product + (product < 0 ? -48 : 48)) / 96;
}
