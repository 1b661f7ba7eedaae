#include "ui/rtf_block.h"

#include "ui/theme_table.h"

#include <algorithm>
#include <vector>

namespace {

// \uN takes a signed 16-bit number. A reader without Unicode shows the question mark.
void AppendUnit(std::string& rtf, std::uint32_t unit) {
    const int number = static_cast<int>(unit) - (unit > 0x7FFF ? 0x10000 : 0);
    rtf += "\\u";
    rtf += std::to_string(number);
    rtf += '?';
}

void AppendUnicode(std::string& rtf, std::uint32_t code) {
    if (code < 0x10000) {
        AppendUnit(rtf, code);
        return;
    }
    if (code > 0x10FFFF) return;
    AppendUnit(rtf, 0xD800 + ((code - 0x10000) >> 10));
    AppendUnit(rtf, 0xDC00 + ((code - 0x10000) & 0x3FF));
}

void AppendColour(std::string& rtf, std::uint32_t colour) {
    rtf += "\\red" + std::to_string(colour & 0xFF) + "\\green" + std::to_string(colour >> 8 & 0xFF) + "\\blue" +
           std::to_string(colour >> 16 & 0xFF) + ";";
}

std::uint32_t ShownColour(std::uint32_t colour, const RtfFont& font) {
    if (colour == 0) return font.textColour;
    if (!font.readableOn) return colour;
    return ThemeColorRef(ThemeReadableOn(ThemeColorRef(colour), ThemeColorRef(*font.readableOn)));
}

// The distinct colours of the lines. 0, the colour of the pane, is the first.
std::vector<std::uint32_t> DistinctColours(std::span<const PaneLine> lines) {
    std::vector<std::uint32_t> colours = {0};
    for (const PaneLine& line : lines)
        if (std::find(colours.begin(), colours.end(), line.colour) == colours.end()) colours.push_back(line.colour);
    return colours;
}

}  // namespace

void RtfAppendEscaped(std::string& rtf, std::wstring_view text) {
    for (const wchar_t character : text) {
        const auto code = static_cast<std::uint32_t>(character);
        if (code == L'\\' || code == L'{' || code == L'}') {
            rtf += '\\';
            rtf += static_cast<char>(code);
        } else if (code == L'\t') {
            rtf += "\\tab ";
        } else if (code >= 0x80) {
            AppendUnicode(rtf, code);
        } else if (code >= 0x20 && code != 0x7F) {
            rtf += static_cast<char>(code);
        }
    }
}

std::string RtfBlock(std::span<const PaneLine> lines, const RtfFont& font) {
    const std::vector<std::uint32_t> colours = DistinctColours(lines);
    std::string rtf;
    rtf.reserve(lines.size() * 96 + 256);
    rtf += "{\\rtf1\\ansi\\deff0\\uc1{\\fonttbl{\\f0\\fmodern ";
    RtfAppendEscaped(rtf, font.face);
    rtf += ";}}{\\colortbl;";
    for (const std::uint32_t colour : colours) AppendColour(rtf, ShownColour(colour, font));
    rtf += "}\\f0\\fs" + std::to_string(font.points * 2);
    std::size_t current = colours.size();
    for (const PaneLine& line : lines) {
        const auto index =
            static_cast<std::size_t>(std::find(colours.begin(), colours.end(), line.colour) - colours.begin());
        // The blank ends the control word and is not part of the text.
        if (index != current) rtf += "\\cf" + std::to_string(index + 1) + ' ';
        current = index;
        RtfAppendEscaped(rtf, line.text);
        if (line.lineBreak) rtf += "\\par\n";
    }
    rtf += "}";
    return rtf;
}
