#include "ui/severity_sign.h"

#include "ui/sampled_picture.h"

#include <algorithm>
#include <cmath>

namespace {

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
    return SampledPicture(
        size,
        [=](double x, double y) -> std::optional<Rgb> {
            if (!(error ? InErrorShape(x, y) : InWarningShape(x, y))) return std::nullopt;
            return (error ? InCross(x, y) : InExclamation(x, y)) ? inside : colour;
        });
}
