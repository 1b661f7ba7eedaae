#include "ai/chat_rtf.h"

#include "ui/rtf_block.h"

namespace {

// Numbers of the colour table.
constexpr char kOfText[] = "\\cf1", kOfTag[] = "\\cf2", kOfQuiet[] = "\\cf3";
// Some versions of the control know only the one, some only the other.
constexpr char kCodeGround[] = "\\f1\\cb4\\highlight4";

void AppendColourEntry(std::string& rtf, std::uint32_t colour) {
    rtf += "\\red" + std::to_string(colour & 0xFF) + "\\green" + std::to_string(colour >> 8 & 0xFF) + "\\blue" +
           std::to_string(colour >> 16 & 0xFF) + ";";
}

std::string LookWords(ChatLook look) {
    switch (look) {
        case ChatLook::Tag: return std::string(kOfTag) + "\\b";
        case ChatLook::Mark: return kOfQuiet;
        case ChatLook::Bold: return std::string(kOfText) + "\\b";
        case ChatLook::Snip:
        case ChatLook::Code: return std::string(kOfText) + kCodeGround;
        case ChatLook::Fence: return std::string(kOfQuiet) + kCodeGround;
        default: return kOfText;
    }
}

void AppendShown(std::string& rtf, std::wstring_view shown) {
    for (;;) {
        const std::size_t lineEnd = shown.find(L'\n');
        RtfAppendEscaped(rtf, shown.substr(0, lineEnd));
        if (lineEnd == std::wstring_view::npos) return;
        rtf += "\\par\n";
        shown.remove_prefix(lineEnd + 1);
    }
}

}  // namespace

std::string ChatRtf(std::span<const ChatRun> runs, const ChatFonts& fonts, const ChatColours& colours) {
    std::string rtf = "{\\rtf1\\ansi\\deff0\\uc1{\\fonttbl{\\f0\\fmodern ";
    RtfAppendEscaped(rtf, fonts.face);
    rtf += ";}{\\f1\\fmodern\\fprq1 ";
    RtfAppendEscaped(rtf, fonts.codeFace);
    rtf += ";}}{\\colortbl;";
    for (const std::uint32_t colour : {colours.text, colours.tag, colours.quiet, colours.codeBack})
        AppendColourEntry(rtf, colour);
    // Without \plain the look of the character before would go on.
    rtf += "}\\plain\\f0\\fs" + std::to_string(fonts.points * 2);
    for (const ChatRun& run : runs) {
        // The blank ends the last control word and is not part of the text.
        rtf += "{" + LookWords(run.look) + ' ';
        AppendShown(rtf, ChatShownText(run.text));
        rtf += "}";
    }
    rtf += "}";
    return rtf;
}
