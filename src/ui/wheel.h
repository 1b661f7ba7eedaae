// Adds up the movements of a mouse wheel. A wheel with notches sends 120 for each; a touchpad or a fine wheel sends many
// small movements. Pure.
#pragma once

struct WheelRest {
    int delta = 0;  // moved since the last whole notch, in the direction of the last movement
};

// The whole notches that `delta` (WM_MOUSEWHEEL; above 0: away from the user) completes. Turning round begins anew.
inline int WheelNotches(WheelRest& rest, int delta) {
    constexpr int kNotch = 120;  // WHEEL_DELTA
    if ((rest.delta < 0) != (delta < 0)) rest.delta = 0;
    rest.delta += delta;
    const int notches = rest.delta / kNotch;
    rest.delta %= kNotch;
    return notches;
}
