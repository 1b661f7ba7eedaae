// The places of a dialog's controls when its font gets another size. Pure; any thread.
#pragma once

// The lengths of a font by which a dialog is measured, in pixels: a unit across is a quarter of the width, one down an
// eighth of the height.
struct DialogBase {
    int width = 1, height = 1;
    bool operator==(const DialogBase&) const = default;
};

struct PixelPlace {
    int left = 0, top = 0, width = 0, height = 0;
    bool operator==(const PixelPlace&) const = default;
};
// The same in dialog units. They are no whole numbers, so a dialog that goes from screen to screen stays as it was made.
struct UnitPlace {
    double left = 0, top = 0, width = 0, height = 0;
};

UnitPlace UnitsOfPlace(const PixelPlace& place, const DialogBase& base);
PixelPlace PixelsOfPlace(const UnitPlace& place, const DialogBase& base);

// What is known of a control from the last change of the font.
struct KeptPlace {
    UnitPlace units;   // that were wanted
    PixelPlace shown;  // where it came to stand, perhaps moved or grown for a text
};
// The place of a control that stands at `now`: what was wanted as long as nobody has moved it.
UnitPlace WantedPlace(const KeptPlace* kept, const PixelPlace& now, const DialogBase& base);
