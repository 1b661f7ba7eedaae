// Lines of output as one block of RTF: by far the cheapest way to get coloured lines into a Rich Edit control (0.03 ms
// a line in a block of 1,000, against 0.24 ms each with a colour and an insertion of its own). Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

struct PaneLine {
    std::wstring text;
    std::uint32_t colour = 0;  // 0x00BBGGRR, 0: the pane's text colour
    bool lineBreak = true;
};

struct RtfFont {
    std::wstring_view face;
    int points = 9;
    std::uint32_t textColour = 0;  // what colour 0 stands for, 0x00BBGGRR
    // A dark background, 0x00BBGGRR: colours that cannot be read on it are shown lighter. None: every colour as it is.
    std::optional<std::uint32_t> darkBack = {};
};

// Plain text as RTF: `\`, `{` and `}` escaped, everything beyond ASCII as \uN, control characters other than the tab
// left out.
void RtfAppendEscaped(std::string& rtf, std::wstring_view text);

// A whole RTF document holding the lines.
std::string RtfBlock(std::span<const PaneLine> lines, const RtfFont& font);
