// What of a BASIC source its meaning depends on, for tests that compare it before and after formatting.
#pragma once

#include "base/scan_text.h"
#include "language/scanner.h"

#include <string>
#include <string_view>

// The tokens of each line. The case of words and blanks at the end of a comment mean nothing.
inline std::string TokenStream(std::string_view text, const Dialect& dialect) {
    std::string stream;
    LineReader reader{.text = text, .dialect = &dialect};
    while (ReadLine(reader)) {
        for (const Token& token : reader.tokens) {
            stream.append(
                {static_cast<char>('a' + static_cast<int>(token.kind)), static_cast<char>('0' + token.flags)});
            std::string_view shown = TokenText(reader.line, token);
            if (!token.Is(kTokenOpen)) shown = shown.substr(0, shown.find_last_not_of(" \t") + 1);
            const bool word = token.kind == TokenKind::Word || token.kind == TokenKind::Directive;
            const std::size_t rem = token.kind == TokenKind::Comment && shown[0] != '\'' ? 3 : 0;
            for (std::size_t i = 0; i < shown.size(); ++i) stream += word || i < rem ? UpperAscii(shown[i]) : shown[i];
        }
        stream.append(reader.ending);
    }
    return stream;
}
