#include "app/window_place.h"

#include "app/layout.h"
#include "ui/scale.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kFarAway = 1000000;  // beyond any desktop
constexpr int kWidth = 1200;       // of a window whose place is not known, at 96 dpi
constexpr int kHeight = 800;

int FitEdge(int edge, int extent, int workStart, int workEnd) {
    if (edge < workStart) return workStart;
    if (edge > workEnd) return std::max(workStart, workEnd - extent);
    return edge;
}

// The window with this size inside the work area.
PaneRect PutInside(const PaneRect& window, int width, int height, const PaneRect& work) {
    width = std::min(width, work.width());
    height = std::min(height, work.height());
    const int left = std::clamp(window.left, work.left, work.right - width);
    const int top = std::clamp(window.top, work.top, work.bottom - height);
    return {left, top, left + width, top + height};
}

}  // namespace

PaneRect FitToWorkArea(const PaneRect& window, const PaneRect& work) {
    const int left = FitEdge(window.left, window.width(), work.left, work.right);
    const int top = FitEdge(window.top, window.height(), work.top, work.bottom);
    return {left, top, left + window.width(), top + window.height()};
}

PaneRect PlaceForReturn(const PaneRect& window, const PaneRect& work, int captionHeight) {
    const int x = window.left + window.width() / 2;
    const int y = window.top + captionHeight / 2;
    if (x >= work.left && x < work.right && y >= work.top && y < work.bottom) return window;
    return PutInside(window, window.width(), window.height(), work);
}

PaneRect FarRect(int left, int top, int width, int height) {
    left = std::clamp(left, -kFarAway, kFarAway);
    top = std::clamp(top, -kFarAway, kFarAway);
    return {left, top, left + std::clamp(width, 0, kFarAway), top + std::clamp(height, 0, kFarAway)};
}

PaneRect StoredRect(const StoredPlace& stored) { return FarRect(stored.left, stored.top, stored.width, stored.height); }

PaneRect StoredRectAt(const StoredPlace& stored, int dpi) {
    const PaneRect is = StoredRect(stored);
    const auto scaled = [&](int length) {
        return stored.dpi > 0 ? static_cast<int>(std::lround(static_cast<double>(length) * dpi / stored.dpi)) : length;
    };
    const int width = std::max(scaled(is.width()), ScaledTo(kMinimumWidth, dpi));
    const int height = std::max(scaled(is.height()), ScaledTo(kMinimumHeight, dpi));
    return {is.left, is.top, is.left + width, is.top + height};
}

PaneRect PlaceForReturnAt(const StoredPlace& stored, int dpi, const PaneRect& work, int captionHeight) {
    const PaneRect was = StoredRect(stored), is = StoredRectAt(stored, dpi);
    const bool grown = is.width() > was.width() || is.height() > was.height();
    return grown ? PutInside(is, is.width(), is.height(), work) : PlaceForReturn(is, work, captionHeight);
}

bool LiesInside(const PaneRect& window, const PaneRect& work) {
    return window.left >= work.left && window.top >= work.top && window.right <= work.right &&
           window.bottom <= work.bottom;
}

PaneRect FirstPlace(const PaneRect& is, const PaneRect& work, int dpi) {
    return PutInside(is, ScaledTo(kWidth, dpi), ScaledTo(kHeight, dpi), work);
}
