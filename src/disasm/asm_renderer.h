// Renders the text of the ASM pane: the listing in columns, and the built program's code with its source lines.
#pragma once

#include "disasm/asm_feed.h"
#include "program/map_paths.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

// Runs on the feed's worker thread. `listing` is null when there is none.
void AsmRender(AsmFeed& feed, const AsmRequest& request, const std::string* listing);

// --- The same over replaceable access to the disk and the pane (asm_renderer.cpp). Pure.
struct AsmSurroundings {
    using Path = std::wstring;
    std::function<bool(const Path&)> exists;
    std::function<bool(const Path&, std::size_t most, std::string* bytes)> read;
    std::function<std::string(const Path&)> sourceText;         // as UTF-8; empty when it cannot be read
    std::function<bool(const Path& a, const Path& b)> isOlder;  // both files exist, and `a` was written before `b`
    std::function<Path(const char* name, bool first, const MapSource& compiled)> mapFile;  // PathOfMapFile
    std::function<std::string(std::wstring_view)> utf8;

    std::function<void(std::string_view heading)> beginPart;
    std::function<bool(std::string_view text)> put;  // returns false when no more text is wanted
    std::function<void()> markPlace;                 // marks the next text as the code of the caret's line
    std::function<bool()> cancelled;
};
void AsmRenderIn(const AsmSurroundings& around, const AsmRequest& request, const std::string* listing);
