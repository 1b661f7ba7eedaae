// Converts lines of output to one block of RTF. This is the fastest way to put coloured lines into a Rich Edit control:
// 0.03 ms a line in a block of 1,000, against 0.24 ms when each line has its own colour change and insertion. Pure; any
// thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

struct PaneLine {
    std::wstring text;
    std::uint32_t colour = 0;  // 0x00BBGGRR; 0: the text colour of the pane
    bool lineBreak = true;
};

struct RtfFont {
    std::wstring_view face;
    int points = 9;
    std::uint32_t textColour = 0;  // 0x00BBGGRR; the colour that 0 stands for
    // A background, 0x00BBGGRR: colours that cannot be read on it are made lighter or darker. Without it, every colour
    // is kept.
    std::optional<std::uint32_t> readableOn = {};
};

// Appends plain text as RTF. `\`, `{` and `}` are escaped, characters beyond ASCII become \uN, and control characters
// other than the tab are left out.
void RtfAppendEscaped(std::string& rtf, std::wstring_view text);

// A complete RTF document of the lines.
std::string RtfBlock(std::span<const PaneLine> lines, const RtfFont& font);
