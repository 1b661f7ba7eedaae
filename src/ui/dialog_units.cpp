#include "ui/dialog_units.h"

#include <cmath>

UnitPlace UnitsOfPlace(const PixelPlace& place, const DialogBase& base) {
    const auto across = [&](int pixels) { return 4.0 * pixels / base.width; };
    const auto down = [&](int pixels) { return 8.0 * pixels / base.height; };
    return {across(place.left), down(place.top), across(place.width), down(place.height)};
}

PixelPlace PixelsOfPlace(const UnitPlace& place, const DialogBase& base) {
    const auto across = [&](double units) { return static_cast<int>(std::lround(units * base.width / 4)); };
    const auto down = [&](double units) { return static_cast<int>(std::lround(units * base.height / 8)); };
    return {across(place.left), down(place.top), across(place.width), down(place.height)};
}

UnitPlace WantedPlace(const KeptPlace* kept, const PixelPlace& now, const DialogBase& base) {
    return kept != nullptr && kept->shown == now ? kept->units : UnitsOfPlace(now, base);
}
