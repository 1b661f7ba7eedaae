// The colours of the program in the system's high-contrast mode: those that the user chose in the system, for the frame
// and for the text of the editors alike. Pure.
#pragma once

#include "ui/theme_table.h"

// The colours of the system that the program uses. A scheme promises that each text can be read on its background.
struct SystemColours {
    Rgb window, windowText;
    Rgb face, faceText;  // of buttons, bars and dialogs
    Rgb highlight, highlightText;
    Rgb greyText;  // of what cannot be chosen, on `face`
    bool operator==(const SystemColours&) const = default;
};

struct SystemLook {
    bool highContrast = false;
    SystemColours colours = {};
    bool operator==(const SystemLook&) const = default;
};

bool HighContrastIsDark(const SystemColours& colours);
ChromePalette HighContrastChrome(const SystemColours& colours);
// `style` gives the colours of its roles, as far as they have twice the contrast that text needs, and its fonts.
EditorPalette HighContrastPalette(const SystemColours& colours, const EditorPalette& style);
