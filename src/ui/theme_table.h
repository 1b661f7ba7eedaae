// The colours of all themes: six editor styles, each in a light and a dark variant with a font, and the frame around the editors.
// Colours are 0xRRGGBB here, as people write them; ThemeColorRef converts them to COLORREF. Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

using Rgb = std::uint32_t;  // 0xRRGGBB

constexpr std::uint32_t ThemeColorRef(Rgb rgb) { return (rgb & 0xFF) << 16 | (rgb & 0xFF00) | (rgb >> 16 & 0xFF); }

// The role of a piece of text in any language.
enum class TextRole : std::uint8_t {
    Text,
    Keyword,
    Type,
    Function,
    String,
    Comment,
    Number,
    Operator,
    Preprocessor,
    Identifier,
    Label,
    Assembly,
    Error,
    Count
};
inline constexpr int kTextRoleCount = static_cast<int>(TextRole::Count);

struct EditorPalette {
    Rgb back;
    Rgb text[kTextRoleCount];  // by TextRole
    Rgb caretLine;
    Rgb selection;
    Rgb lineNumber;
    Rgb margin;                        // background of line numbers, symbols and folding marks
    Rgb guide;                         // indentation guides, visible whitespace, folding marks
    Rgb braceBack;                     // background of a matching pair
    Rgb errorBack;                     // lines that a replacement has removed
    std::optional<Rgb> selectionText;  // of selected text; none: its own colours
    bool boldKeywords;
    bool italicComments;
};

struct ChromePalette {
    Rgb windowBack;
    Rgb paneBack;
    Rgb paneText;
    Rgb tabBack;
    Rgb tabText;
    Rgb tabActiveText;
    Rgb accent;
    Rgb line;
    Rgb statusBack;
    Rgb statusText;
    Rgb hover;
    Rgb selected;  // background of the selected row while its list has the focus
    Rgb quiet;     // text of hints, and of what is out of date
    Rgb error;
    Rgb modified;
    Rgb success;
    Rgb stopLine;  // blended over the line where the program stopped
};

struct EditorFont {
    const wchar_t* face;
    int points;
};

struct EditorStyle {
    const wchar_t* name;
    TextRole accent;  // of the frame: the colour of this role
    EditorFont font;
    EditorPalette light;
    EditorPalette dark;
};

// Row 0 is the program's own style. The menu offers rows 1..5.
std::span<const EditorStyle> EditorStyles();

// Row 0 when `style` is out of range.
const EditorStyle& EditorStyleOf(int style);
const EditorPalette& ThemePalette(int style, bool dark);
// The frame in that style: of row 0 by a table, of the others made of their editor palettes.
const ChromePalette& ThemeChromePalette(int style, bool dark);

// The font that comes when the style `chosen` follows the style `left`, which may be the same. None when it is there, or
// when the user has chosen the present font: that is neither the one of `left` nor one that the program starts with. So
// who has had a style since before it had a font gets it by choosing the style again, and never by a start.
std::optional<EditorFont> FontWithStyle(int left, int chosen, std::wstring_view face, int points);

// The roles that the user may override, in the order of the settings.
inline constexpr TextRole kOverriddenRoles[] = {TextRole::Keyword,   TextRole::String,   TextRole::Comment,
                                                TextRole::Number,    TextRole::Operator, TextRole::Preprocessor,
                                                TextRole::Identifier};

// The opacity of `stopLine`, 0..255.
constexpr int ThemeStopLineAlpha(bool dark) { return dark ? 0x24 : 0x70; }
// The opacity of `success` over a new line of a replacement that waits.
inline constexpr int kNewLineAlpha = 0x24;
// Blends `over` with the opacity `alpha`, 0..255, over `under`.
Rgb ThemeBlend(Rgb over, Rgb under, int alpha);

// The contrast of two colours as WCAG 2 defines it, 1..21.
double ThemeContrast(Rgb a, Rgb b);
// The contrast that text needs to its background.
inline constexpr double kReadableContrast = 4.5;
// A colour for text on a background: `colour` itself when it can be read there, else the nearest colour of its hue that
// can: a lighter one on a dark background, a darker one on a light background.
Rgb ThemeReadableOn(Rgb colour, Rgb back);
