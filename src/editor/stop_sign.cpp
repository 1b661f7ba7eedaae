#include "editor/stop_sign.h"

#include "ui/sampled_picture.h"

#include <cmath>

namespace {

bool InArrow(double x, double y, double left, double right) { return x >= left && std::abs(y) <= (right - x) * 0.98; }

bool InPlus(double x, double y) {
    constexpr double kMiddle = 0.5, kReach = 0.375, kThick = 0.125;
    x = std::abs(x - kMiddle);
    y = std::abs(y);
    return (x <= kReach && y <= kThick) || (x <= kThick && y <= kReach);
}

}  // namespace

std::vector<std::uint8_t> StopAtConditionSign(int size, const StopSignColours& colours) {
    return SampledPicture(
        size,
        [&colours](double x, double y) -> std::optional<Rgb> {
            if (std::hypot(x, y) > 1.0) return std::nullopt;
            if (InPlus(x, y)) return colours.plus;
            if (InArrow(x, y, -0.6, 0.05)) return colours.arrow;
            return InArrow(x, y, -0.75, 0.25) ? colours.edge : colours.disc;
        });
}
