#include "ui/severity_sign.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kSamples = 4;  // of a pixel, in each direction

// Coordinates go from -1 to 1, downwards.
bool InErrorShape(double x, double y) {
    constexpr double kHalf = 0.94, kRound = 0.45;
    const double dx = std::max(std::abs(x) - (kHalf - kRound), 0.0), dy = std::max(std::abs(y) - (kHalf - kRound), 0.0);
    return std::hypot(dx, dy) <= kRound;
}

bool InCross(double x, double y) {
    constexpr double kReach = 0.52, kThick = 0.2;
    if (std::max(std::abs(x), std::abs(y)) > kReach) return false;
    return std::abs(x - y) <= kThick * std::sqrt(2.0) || std::abs(x + y) <= kThick * std::sqrt(2.0);
}

bool InWarningShape(double x, double y) {
    constexpr double kTop = -0.96, kBottom = 0.92;
    return y >= kTop && y <= kBottom && std::abs(x) <= (y - kTop) / (kBottom - kTop) * 1.02;
}

bool InExclamation(double x, double y) {
    if (std::abs(x) > 0.14) return false;
    return (y >= -0.38 && y <= 0.3) || (y >= 0.48 && y <= 0.74);
}

}  // namespace

Rgb SeverityColour(const EditorPalette& palette, const ChromePalette& chrome, bool error) {
    // Both backgrounds are dark or both are light, so what is changed for the second is no worse on the first.
    return ThemeReadableOn(ThemeReadableOn(error ? chrome.error : chrome.modified, palette.back), palette.caretLine);
}

std::vector<std::uint8_t> SeveritySign(int size, bool error, Rgb colour, Rgb inside) {
    std::vector<std::uint8_t> pixels;
    pixels.reserve(static_cast<std::size_t>(size) * static_cast<std::size_t>(size) * 4);
    const auto at = [size](int pixel, int sample) { return 2.0 * (pixel + (sample + 0.5) / kSamples) / size - 1.0; };
    for (int i = 0; i < size * size; ++i) {
        int covered = 0, inner = 0;
        for (int s = 0; s < kSamples * kSamples; ++s) {
            const double x = at(i % size, s % kSamples), y = at(i / size, s / kSamples);
            if (!(error ? InErrorShape(x, y) : InWarningShape(x, y))) continue;
            ++covered;
            inner += error ? InCross(x, y) : InExclamation(x, y);
        }
        const Rgb shown = covered == 0 ? colour : ThemeBlend(inside, colour, inner * 255 / covered);
        for (const int shift : {16, 8, 0}) pixels.push_back(static_cast<std::uint8_t>(shown >> shift & 0xFF));
        pixels.push_back(static_cast<std::uint8_t>(covered * 255 / (kSamples * kSamples)));
    }
    return pixels;
}
