// What the bytes of a source file mean: their encoding, their line breaks, their text. Pure; any thread.
#pragma once

#include "files/text_encoding.h"

#include <functional>
#include <string>
#include <string_view>

struct SourceText {
    std::string utf8;     // unused when `asItIs`
    bool asItIs = false;  // the bytes themselves are the text
    TextEncoding encoding = TextEncoding::Utf8;
    LineEnding lineEnding = LineEnding::CrLf;
    DiskForm form;
};

// Decodes a file. `ansi` appends the bytes of the system's code page as UTF-8; it clears `*exact` when the text does not
// give them back, and returns false when they cannot be converted. Returns false then, with `lineEnding` set all the same.
// Bytes that are taken for UTF-8 because `code` says so stay as they are, whatever they are.
using AnsiDecoder = std::function<bool(std::string_view bytes, std::string* utf8, bool* exact)>;
bool DecodeSource(std::string_view bytes, const AnsiDecoder& ansi, SourceText* text,
                  SourceCode code = SourceCode::Guess);
