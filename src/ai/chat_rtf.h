// Runs of the chat as one block of RTF. Pure.
#pragma once

#include "ai/chat_runs.h"

#include <cstdint>
#include <span>
#include <string>

// Colours are 0x00BBGGRR.
struct ChatColours {
    std::uint32_t text = 0, tag = 0, quiet = 0;
    std::uint32_t codeBack = 0;  // the ground of code
};
struct ChatFonts {
    std::wstring face;      // of text
    std::wstring codeFace;  // with a fixed pitch
    int points = 9;
};

std::string ChatRtf(std::span<const ChatRun> runs, const ChatFonts& fonts, const ChatColours& colours);
