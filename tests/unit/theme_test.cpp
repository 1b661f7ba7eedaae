// Every text of the program on every background that it can stand on: in both themes, in each style, and in the
// high-contrast mode with the colours that people choose there.
#include "commands/toolbar_rules.h"
#include "ui/high_contrast.h"
#include "ui/theme_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace {

struct Colour {
    std::string name;
    Rgb rgb;
};
using Colours = std::vector<Colour>;

void ExpectReadable(const std::string& where, const Colours& texts, const Colours& backs,
                    double least = kReadableContrast) {
    for (const Colour& text : texts)
        for (const Colour& back : backs)
            EXPECT_GE(ThemeContrast(text.rgb, back.rgb), least) << where << ": " << text.name << " on " << back.name
                                                                << std::hex << ", " << text.rgb << " on " << back.rgb;
}

// The greatest difference in a channel.
int Difference(Rgb a, Rgb b) {
    int greatest = 0;
    for (const int shift : {0, 8, 16})
        greatest =
            std::max(greatest, std::abs(static_cast<int>(a >> shift & 0xFF) - static_cast<int>(b >> shift & 0xFF)));
    return greatest;
}

Colours RolesOf(const EditorPalette& palette) {
    static constexpr const char* kNames[kTextRoleCount] = {
        "text",     "keyword",      "type",       "function", "string",   "comment", "number",
        "operator", "preprocessor", "identifier", "label",    "assembly", "error"};
    Colours roles;
    for (int i = 0; i < kTextRoleCount; ++i) roles.push_back({kNames[i], palette.text[i]});
    return roles;
}

void ExpectEditorReadable(const std::string& where, const EditorPalette& palette, const ChromePalette& chrome,
                          bool dark) {
    Colours backs = {{"page", palette.back}, {"caret line", palette.caretLine}};
    const Colours plain = backs;
    for (const Colour& under : plain) {
        const Rgb stop = ThemeBlend(chrome.stopLine, under.rgb, ThemeStopLineAlpha(dark));
        const Rgb added = ThemeBlend(chrome.success, under.rgb, kNewLineAlpha);
        backs.push_back({"stop on " + under.name, stop});
        backs.push_back({"new line on " + under.name, added});
        EXPECT_GE(Difference(stop, under.rgb), dark ? 20 : 90)
            << where << ": the line where the program stopped is seen";
    }
    const Colours roles = RolesOf(palette), text = {roles[0]};
    ExpectReadable(where, roles, backs);
    const Rgb selected = palette.selectionText.value_or(palette.text[0]);
    ExpectReadable(where, palette.selectionText ? Colours{{"selected text", selected}} : roles,
                   {{"selection", palette.selection}});
    ExpectReadable(where, {text[0], roles[static_cast<int>(TextRole::Operator)]}, {{"pair", palette.braceBack}});
    ExpectReadable(where, text, {{"removed lines", palette.errorBack}});
    ExpectReadable(where, {{"line number", palette.lineNumber}}, {{"margin", palette.margin}});
    // A find bar, an inline field and the active tab have the background of the page.
    ExpectReadable(where,
                   {{"tab text", chrome.tabActiveText}, {"field", chrome.paneText}, {"refused field", chrome.error}},
                   {{"page", palette.back}});
    EXPECT_GE(ThemeContrast(palette.selection, palette.back), 1.25) << where << ": the selection is seen";
    EXPECT_EQ(ThemeContrast(palette.back, 0x000000) < ThemeContrast(palette.back, 0xFFFFFF), dark) << where;
}

void ExpectChromeReadable(const std::string& where, const ChromePalette& chrome, Rgb dialogBack) {
    const Colour pane{"pane", chrome.paneBack}, selected{"selected row", chrome.selected}, hover{"hover", chrome.hover},
        dialog{"dialog", dialogBack}, window{"window", chrome.windowBack}, bar{"bar", chrome.statusBack},
        strip{"tab strip", chrome.tabBack};
    const auto mixed = [&](const char* name, Rgb colour, int percent) {  // as MixColours does
        return Colour{name, ThemeBlend(colour, chrome.selected, percent * 255 / 100)};
    };
    ExpectReadable(where, {{"pane text", chrome.paneText}, {"quiet", chrome.quiet}, {"error", chrome.error}},
                   {pane, selected, hover, window, dialog});
    ExpectReadable(where, {{"success", chrome.success}}, {pane, selected, window, dialog});
    ExpectReadable(where, {{"accent", chrome.accent}}, {pane, selected, hover, bar});
    ExpectReadable(where, {{"pane text", chrome.paneText}},
                   {mixed("match", chrome.modified, 30), mixed("replaced", chrome.error, 25),
                    mixed("replacement", chrome.success, 25)});
    ExpectReadable(where, {{"tab text", chrome.tabText}}, {strip, hover, pane});
    ExpectReadable(where, {{"status text", chrome.statusText}}, {bar, hover, selected});
    for (const Rgb mark : {chrome.error, chrome.modified, chrome.success, chrome.accent})
        EXPECT_GE(ThemeContrast(mark, chrome.tabBack), 3.0) << where << ": a mark, " << std::hex << mark;
}

TEST(Theme, EveryTextCanBeReadOnEachOfItsBackgrounds) {
    for (const bool dark : {false, true}) {
        for (int style = 0; style < static_cast<int>(EditorStyles().size()); ++style) {
            const std::string where = "style " + std::to_string(style) + (dark ? ", dark" : ", light");
            const ChromePalette& chrome = ThemeChromePalette(style, dark);
            ExpectEditorReadable(where, ThemePalette(style, dark), chrome, dark);
            ExpectChromeReadable(where, chrome, dark || style != 0 ? chrome.windowBack : 0xF0F0F0);
            const Rgb usual = ThemeChromePalette(0, dark).windowBack;
            EXPECT_EQ(chrome.windowBack == usual, style == 0) << where << ": each style has a frame of its own";
        }
    }
    EXPECT_NEAR(ThemeContrast(0xFFFFFF, 0x000000), 21.0, 0.01);
    EXPECT_NEAR(ThemeContrast(0x777777, 0xFFFFFF), 4.48, 0.01);
    EXPECT_EQ(&ThemePalette(99, true), &ThemePalette(0, true)) << "out of range: the program's own";
    EXPECT_EQ(&ThemeChromePalette(99, true), &ThemeChromePalette(0, true));
    EXPECT_EQ(ThemeColorRef(0x112233), 0x332211u);
}

TEST(Theme, AStyleBringsItsFontUnlessTheUserHasChosenOne) {
    const struct {
        const char* what;
        int left, chosen;
        const wchar_t* face;
        int points;
        const wchar_t* then;  // null: the font stays
    } cases[] = {
        {"the font of the first start", 0, 3, L"Segoe UI", 12, L"Courier New"},
        {"the font after a reset", 0, 4, L"Consolas", 11, L"Lucida Console"},
        {"the font of the style that is left", 3, 1, L"Courier New", 10, L"Consolas"},
        {"back to the program's own", 4, 0, L"Lucida Console", 10, L"Segoe UI"},
        {"a style that was chosen before it had a font", 2, 3, L"Segoe UI", 12, L"Courier New"},
        {"a face of the user's own", 3, 1, L"Cascadia Mono", 10, nullptr},
        {"a size of the user's own", 3, 1, L"Courier New", 13, nullptr},
        {"the font of another style", 1, 2, L"Courier New", 10, nullptr},
        {"the same style again", 3, 3, L"Courier New", 10, nullptr},
        {"that was chosen before it had a font", 3, 3, L"Segoe UI", 12, L"Courier New"},
        {"with a font of the user's own", 3, 3, L"Cascadia Mono", 10, nullptr},
        {"the program's own again after a reset", 0, 0, L"Consolas", 11, nullptr},
    };
    for (const auto& row : cases) {
        const auto font = FontWithStyle(row.left, row.chosen, row.face, row.points);
        ASSERT_EQ(font.has_value(), row.then != nullptr) << row.what;
        if (font) EXPECT_STREQ(font->face, row.then) << row.what;
    }
}

TEST(Theme, HighContrastShowsTheColoursOfTheSystem) {
    const std::pair<const char*, SystemColours> schemes[] = {
        {"white on black", {0x000000, 0xFFFFFF, 0x000000, 0xFFFFFF, 0x1AEBFF, 0x000000, 0x3FF23F}},
        {"yellow on black", {0x000000, 0xFFFF00, 0x000000, 0x00FF00, 0x008000, 0xFFFFFF, 0x00FF00}},
        {"green on black", {0x000000, 0x00FF00, 0x000000, 0xC0C0C0, 0x0000FF, 0xFFFFFF, 0x00FF00}},
        {"black on white", {0xFFFFFF, 0x000000, 0xFFFFFF, 0x000000, 0x37006E, 0xFFFFFF, 0x600000}},
        {"black on sand", {0xFFFAEF, 0x3D3D3D, 0xFFFAEF, 0x202020, 0x903909, 0xFFF5E3, 0x676767}},
        {"white on grey", {0x2D3236, 0xFFFFFF, 0x2D3236, 0xB6F6F0, 0xA1BFDE, 0x212D3B, 0xA6A6A6}},
    };
    for (const auto& [name, colours] : schemes) {
        const bool dark = HighContrastIsDark(colours);
        const ChromePalette chrome = HighContrastChrome(colours);
        ExpectChromeReadable(name, chrome, colours.face);
        EXPECT_EQ(chrome.paneText, colours.windowText) << name;
        EXPECT_EQ(chrome.line, colours.windowText) << name << ": lines between panes are seen";
        for (const bool enabled : {true, false}) {
            const IconInks inks = HighContrastInks(colours, enabled);
            ExpectReadable(name, {{"line", inks.line}, {"accent", inks.accent}, {"go", inks.go}, {"stop", inks.stop}},
                           {{"button", colours.face}, {"inside of a shape", inks.fill}});
            EXPECT_EQ(inks.line, enabled ? colours.faceText : colours.greyText) << name;
        }
        for (std::size_t style = 0; style < EditorStyles().size(); ++style) {
            const EditorPalette palette = HighContrastPalette(colours, ThemePalette(static_cast<int>(style), dark));
            const std::string where = name + std::string(", style ") + std::to_string(style);
            ExpectEditorReadable(where, palette, chrome, dark);
            EXPECT_EQ(palette.back, colours.window) << where;
            EXPECT_EQ(palette.selection, colours.highlight) << where;
            ExpectReadable(where, RolesOf(palette), {{"page", palette.back}}, 7.0);
        }
    }
}

}  // namespace
