// The colours, styles, markers and margins of a theme as messages to an editor. The font, the keywords and the lexer
// are not included, because they are texts and objects. Pure.
#pragma once

#include "editor/editor_message.h"
#include "language/lexer_table.h"
#include "settings/settings.h"
#include "ui/theme_table.h"

struct ThemeInputs {
    const EditorPalette& palette;
    const ChromePalette& chrome;
    bool dark;
    std::int32_t fontSize;          // points
    const std::int32_t* overrides;  // Settings::colors, in the order of kOverriddenRoles; 0: the theme's colour
    int dpi;
};

// The colour of a role as 0xBBGGRR: the user's colour, else the theme's.
std::uint32_t RoleColourRef(const ThemeInputs& theme, TextRole role);

EditorMessages DefaultStyleMessages(const ThemeInputs& theme);  // to SCI_STYLECLEARALL; without the font
EditorMessages TextStyleMessages(const ThemeInputs& theme, const LanguageLexer& lexer);
EditorMessages FrameStyleMessages(const ThemeInputs& theme);  // line numbers, guides, caret, selection, tips
Rgb StopArrowEdge(const ThemeInputs& theme);
EditorMessages MarkerMessages(const ThemeInputs& theme);
EditorMessages MarginMessages(bool folding, int dpi);
EditorMessages FoldMessages(const ThemeInputs& theme);
