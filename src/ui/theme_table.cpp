// The palettes. Every text colour has a contrast of at least 4.5 to its background; the tests check that. Pure.
#include "ui/theme_table.h"

#include "ui/style_chrome.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// The order of the text colours is that of TextRole: text, keyword, type, function, string, comment, number, operator,
// preprocessor, identifier, label, assembly, error.
constexpr EditorStyle kStyles[] = {
    {.name = L"KVX-Editor",
     .accent = TextRole::Keyword,
     .font = {L"Segoe UI", 12},
     .light = {.back = 0xFFFFFF,
               .text = {0x24292F, 0x0B4FB3, 0x0A6B74, 0x6A3FA0, 0x8A3B12, 0x576657, 0x8F5400, 0x45505C, 0x8B2A7E,
                        0x24292F, 0x7A4A00, 0x0A6B74, 0xB3261E},
               .caretLine = 0xF1F5FB,
               .selection = 0xD3E3FA,
               .lineNumber = 0x626D7C,
               .margin = 0xF6F8FA,
               .guide = 0xB9C2CC,
               .braceBack = 0xD5E8D8,
               .errorBack = 0xFBE3E1,
               .boldKeywords = false,
               .italicComments = false},
     .dark = {.back = 0x1E2227,
              .text = {0xD7DCE2, 0x6FB1FF, 0x5CC8C2, 0xC3A6F5, 0xE7A97C, 0x9FAE9F, 0xE3C07B, 0xB4BECA, 0xDC94D2,
                       0xD7DCE2, 0xE6B86A, 0x5CC8C2, 0xFF8A80},
              .caretLine = 0x272C33,
              .selection = 0x2A405B,
              .lineNumber = 0x8A94A1,
              .margin = 0x1B1F24,
              .guide = 0x48515C,
              .braceBack = 0x2F5140,
              .errorBack = 0x4A2427,
              .boldKeywords = false,
              .italicComments = false}},
    {.name = L"Visual Studio Code",
     .accent = TextRole::Identifier,
     .font = {L"Consolas", 11},
     .light = {.back = 0xFFFFFF,
               .text = {0x1F1F1F, 0x8A1FB5, 0x1E6A7B, 0x725B10, 0x9C2418, 0x2B6F2B, 0x1A6E4D, 0x303030, 0x6F3FA8,
                        0x0A3A7A, 0x3A3A3A, 0x1E6A7B, 0xBF1C1C},
               .caretLine = 0xF3F3F3,
               .selection = 0xCEE4FC,
               .lineNumber = 0x5F7580,
               .margin = 0xFFFFFF,
               .guide = 0xBDBDBD,
               .braceBack = 0xD9E3D9,
               .errorBack = 0xFCE4E4,
               .boldKeywords = false,
               .italicComments = false},
     .dark = {.back = 0x202124,
              .text = {0xD2D4D6, 0xCF98CD, 0x52C4B0, 0xD9D8A6, 0xD39F82, 0x8FB481, 0xB2CCA2, 0xD2D4D6, 0xB79EE6,
                       0x9CD3F5, 0xCBCBCB, 0x52C4B0, 0xF58E79},
              .caretLine = 0x2A2B2E,
              .selection = 0x26405D,
              .lineNumber = 0x8C8F93,
              .margin = 0x202124,
              .guide = 0x4A4B4F,
              .braceBack = 0x3B4A3E,
              .errorBack = 0x4C2525,
              .boldKeywords = false,
              .italicComments = false}},
    {.name = L"Visual Studio",
     .accent = TextRole::Keyword,
     .font = {L"Consolas", 10},
     .light = {.back = 0xFFFFFF,
               .text = {0x101010, 0x0A18E0, 0x1F687C, 0x6B4A18, 0xA01818, 0x107010, 0x202020, 0x202020, 0x606060,
                        0x101010, 0x3C3C3C, 0x1F687C, 0xC40000},
               .caretLine = 0xEEF1FA,
               .selection = 0xCEE4FB,
               .lineNumber = 0x23758B,
               .margin = 0xF0F0F3,
               .guide = 0xBFC3CB,
               .braceBack = 0xDDE5CF,
               .errorBack = 0xFBE0E0,
               .boldKeywords = false,
               .italicComments = false},
     .dark = {.back = 0x1C1C1E,
              .text = {0xDADADA, 0x6BAAE0, 0x4FC6AE, 0xDCDBAE, 0xD7A085, 0x7BB274, 0xB7CFAA, 0xB8B8B8, 0xA4A4A4,
                       0xDADADA, 0xC8C8C8, 0x4FC6AE, 0xF78276},
              .caretLine = 0x262629,
              .selection = 0x243C56,
              .lineNumber = 0x4D98B5,
              .margin = 0x242427,
              .guide = 0x4B4B50,
              .braceBack = 0x254A5C,
              .errorBack = 0x4A2424,
              .boldKeywords = false,
              .italicComments = false}},
    {.name = L"Notepad++",
     .accent = TextRole::Comment,
     .font = {L"Courier New", 10},
     .light = {.back = 0xFFFFFF,
               .text = {0x000000, 0x0000E6, 0x7A00D6, 0x00606A, 0x5D5D5D, 0x006A00, 0xA04000, 0x000080, 0x76480B,
                        0x000000, 0xA00050, 0x00606A, 0xBF0000},
               .caretLine = 0xEBEBFC,
               .selection = 0xE1E1E1,
               .lineNumber = 0x6A6A6A,
               .margin = 0xEDEDED,
               .guide = 0xBDBDBD,
               .braceBack = 0xFBDCDC,
               .errorBack = 0xFFDFDF,
               .boldKeywords = true,
               .italicComments = false},
     .dark = {.back = 0x38393B,
              .text = {0xE4E2D8, 0xE6CBA0, 0xD2CDB2, 0xA5D3DD, 0xE5C0B9, 0xB6CFB1, 0xA4D8D4, 0xECE8CC, 0xEDC39F,
                       0xE4E2D8, 0xE0C58B, 0xA5D3DD, 0xFFB6AC},
              .caretLine = 0x2E2F31,
              .selection = 0x50545B,
              .lineNumber = 0xA8B3AC,
              .margin = 0x303133,
              .guide = 0x686A6E,
              .braceBack = 0x4C6152,
              .errorBack = 0x5C3434,
              .boldKeywords = true,
              .italicComments = false}},
    {.name = L"Sublime Text",
     .accent = TextRole::Function,
     .font = {L"Lucida Console", 10},
     .light = {.back = 0xFAFAF7,
               .text = {0x33332F, 0xB01255, 0x19687C, 0x3F6B0B, 0x775B0E, 0x616055, 0x6B3FB8, 0xA8184E, 0x9A4809,
                        0x33332F, 0x84560A, 0x19687C, 0xBB1E1E},
               .caretLine = 0xF0F0EA,
               .selection = 0xDDDDD2,
               .lineNumber = 0x72726A,
               .margin = 0xFAFAF7,
               .guide = 0xC6C6BC,
               .braceBack = 0xE2EAC9,
               .errorBack = 0xFBE2E2,
               .boldKeywords = false,
               .italicComments = true},
     .dark = {.back = 0x2A2B26,
              .text = {0xF4F4EC, 0xFF96BA, 0x74D5EA, 0xAEDD4B, 0xE8DC82, 0xBAB6A0, 0xC3A7FF, 0xFF96BA, 0xF5A45D,
                       0xF4F4EC, 0xEFC66B, 0x74D5EA, 0xFF9A91},
              .caretLine = 0x35362F,
              .selection = 0x46473D,
              .lineNumber = 0x9C9D90,
              .margin = 0x2A2B26,
              .guide = 0x57584D,
              .braceBack = 0x3B4629,
              .errorBack = 0x542B2F,
              .boldKeywords = false,
              .italicComments = true}},
    {.name = L"PowerBASIC Classic",
     .accent = TextRole::Keyword,
     .font = {L"Courier New", 11},
     .light = {.back = 0xFFFFFF,
               .text = {0x000000, 0x0000C0, 0x00007A, 0x0000C0, 0xAF00AF, 0x007300, 0xB00000, 0x800000, 0x7A4A00,
                        0x000000, 0x7A4A00, 0x006A6A, 0xC00000},
               .caretLine = 0xF6F6E4,
               .selection = 0xD6E2F9,
               .lineNumber = 0x5F5F78,
               .margin = 0xECECEC,
               .guide = 0xBBBBC6,
               .braceBack = 0xE6E6B4,
               .errorBack = 0xFFDCDC,
               .boldKeywords = false,
               .italicComments = false},
     .dark = {.back = 0x0B1B52,
              .text = {0xF2F2E6, 0xFFE45C, 0x8FE8FF, 0xFFE45C, 0xFFA6F2, 0x8FD69A, 0xFFB38A, 0xE0E0E0, 0x7FE0DC,
                       0xF2F2E6, 0xFFD08A, 0x7FE0DC, 0xFF9C94},
              .caretLine = 0x14276A,
              .selection = 0x22397C,
              .lineNumber = 0xA3B1E0,
              .margin = 0x091644,
              .guide = 0x4A5FA8,
              .braceBack = 0x2C5A7E,
              .errorBack = 0x5A1F48,
              .boldKeywords = false,
              .italicComments = false}},
};

constexpr ChromePalette kLightChrome = {.windowBack = 0xEBEFFA,
                                        .paneBack = 0xFBFCFE,
                                        .paneText = 0x24292F,
                                        .tabBack = 0xE4E9F3,
                                        .tabText = 0x475263,
                                        .tabActiveText = 0x1B2430,
                                        .accent = 0x1B5FB8,
                                        .line = 0xC9D1DE,
                                        .statusBack = 0xE4E9F3,
                                        .statusText = 0x333D4B,
                                        .hover = 0xD5DDEB,
                                        .selected = 0xCFDFF6,
                                        .quiet = 0x5B616A,
                                        .error = 0xB52E27,
                                        .modified = 0xB26A00,
                                        .success = 0x246E45,
                                        .stopLine = 0xFFE000};

constexpr ChromePalette kDarkChrome = {.windowBack = 0x16191D,
                                       .paneBack = 0x1B1F24,
                                       .paneText = 0xD7DCE2,
                                       .tabBack = 0x16191D,
                                       .tabText = 0xA3ADBA,
                                       .tabActiveText = 0xF0F3F7,
                                       .accent = 0x60A6F2,
                                       .line = 0x343B44,
                                       .statusBack = 0x16191D,
                                       .statusText = 0xB9C2CE,
                                       .hover = 0x2B323A,
                                       .selected = 0x253A50,
                                       .quiet = 0x9CA3AB,
                                       .error = 0xF48179,
                                       .modified = 0xE3B25F,
                                       .success = 0x6CC58A,
                                       .stopLine = 0xE3B25F};

double Linear(Rgb channel) {
    const double value = static_cast<double>(channel) / 255.0;
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double Luminance(Rgb rgb) {
    return 0.2126 * Linear(rgb >> 16 & 0xFF) + 0.7152 * Linear(rgb >> 8 & 0xFF) + 0.0722 * Linear(rgb & 0xFF);
}

constexpr int kFullSteps = 255;  // from a colour to the brightest of its hue
constexpr int kLightSteps = 2 * kFullSteps;

// In the first kFullSteps steps all channels grow in proportion until the greatest is 255. In the others all approach
// white. Neither changes the hue.
Rgb Lighter(Rgb colour, int step) {
    const int greatest = static_cast<int>(std::max({colour >> 16 & 0xFF, colour >> 8 & 0xFF, colour & 0xFF, Rgb{1}}));
    const int full = greatest + (255 - greatest) * std::min(step, kFullSteps) / kFullSteps;
    const int white = std::max(step - kFullSteps, 0);
    Rgb result = 0;
    for (const int shift : {0, 8, 16}) {
        const int channel = static_cast<int>(colour >> shift & 0xFF) * full / greatest;
        result |= static_cast<Rgb>(channel + (255 - channel) * white / kFullSteps) << shift;
    }
    return result;
}

// All channels shrink in proportion, down to black.
Rgb Darker(Rgb colour, int step) {
    Rgb result = 0;
    for (const int shift : {0, 8, 16})
        result |= (colour >> shift & 0xFF) * static_cast<Rgb>(kLightSteps - step) / static_cast<Rgb>(kLightSteps)
                  << shift;
    return result;
}

}  // namespace

std::span<const EditorStyle> EditorStyles() { return kStyles; }

const EditorStyle& EditorStyleOf(int style) {
    return kStyles[style >= 0 && style < static_cast<int>(std::size(kStyles)) ? style : 0];
}

const EditorPalette& ThemePalette(int style, bool dark) {
    const EditorStyle& row = EditorStyleOf(style);
    return dark ? row.dark : row.light;
}

std::optional<EditorFont> FontWithStyle(int left, int chosen, std::wstring_view face, int points) {
    constexpr EditorFont kAfterReset = {L"Consolas", 11};  // the font of SettingsReset
    const auto isPresent = [&](const EditorFont& font) { return face == font.face && points == font.points; };
    const bool given =
        isPresent(EditorStyleOf(left).font) || isPresent(EditorStyleOf(0).font) || isPresent(kAfterReset);
    const EditorFont& wanted = EditorStyleOf(chosen).font;
    const bool stays = isPresent(wanted) || (left == 0 && chosen == 0);  // with the font after a reset, too
    return given && !stays ? std::optional(wanted) : std::nullopt;
}

const ChromePalette& ThemeChromePalette(int style, bool dark) {
    using Frames = std::array<ChromePalette, std::size(kStyles)>;
    const auto framesOf = [](bool isDark) {
        Frames frames;
        for (std::size_t i = 0; i < frames.size(); ++i) {
            const EditorPalette& page = ThemePalette(static_cast<int>(i), isDark);
            const ChromePalette& own = isDark ? kDarkChrome : kLightChrome;
            frames[i] = i == 0 ? own : ChromeOfStyle(page, page.text[static_cast<int>(kStyles[i].accent)], own, isDark);
        }
        return frames;
    };
    static const Frames light = framesOf(false), darks = framesOf(true);
    return (dark ? darks : light)[static_cast<std::size_t>(&EditorStyleOf(style) - kStyles)];
}

Rgb ThemeBlend(Rgb over, Rgb under, int alpha) {
    Rgb mixed = 0;
    for (const int shift : {0, 8, 16}) {
        const int a = static_cast<int>(over >> shift & 0xFF);
        const int b = static_cast<int>(under >> shift & 0xFF);
        mixed |= static_cast<Rgb>((a * alpha + b * (255 - alpha)) / 255) << shift;
    }
    return mixed;
}

double ThemeContrast(Rgb a, Rgb b) {
    const double first = Luminance(a);
    const double second = Luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

Rgb ThemeReadableOn(Rgb colour, Rgb back) {
    if (ThemeContrast(colour, back) >= kReadableContrast) return colour;
    constexpr Rgb kWhite = 0xFFFFFF;
    const bool lighten = ThemeContrast(kWhite, back) >= ThemeContrast(0, back);
    const auto at = [colour, lighten](int step) { return lighten ? Lighter(colour, step) : Darker(colour, step); };
    // Searches for the smallest step that is enough. The contrast falls at first when the colour is on the other side of
    // its background, so a step must also be on the right side.
    int low = 0;
    int high = kLightSteps;
    while (high - low > 1) {
        const int middle = (low + high) / 2;
        const Rgb next = at(middle);
        const bool beyond = (Luminance(next) > Luminance(back)) == lighten;
        (beyond && ThemeContrast(next, back) >= kReadableContrast ? high : low) = middle;
    }
    return at(high);
}
