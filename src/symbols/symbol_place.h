// Places of symbols in documents and files, and going to them. UI thread only.
#pragma once

#include "language/symbol_word.h"
#include "symbols/symbol_index.h"

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

struct SymbolSpot {
    DocumentId document = 0;  // 0: `path`
    std::wstring path;
    std::uint32_t line = 0;    // from 0
    std::uint32_t column = 0;  // bytes from the start of the line
};

SymbolSpot SpotOf(const ReachedText& text, std::uint32_t symbol);
// Shows the place with the caret on it, in its document, which is opened when it is not open. Alt+Left leads back.
void SymbolGoTo(const SymbolSpot& spot);
// "SUB", "FUNCTION", "constant": the kind as people call it. A constant text.
const wchar_t* SymbolKindText(SymbolKind kind);
// "FUNCTION Find(values() AS LONG) AS LONG", "%LIMIT = 5": the declaration in one line.
std::wstring SymbolDeclaration(const SymbolTable& table, const Symbol& symbol);

// The word of the active document that a command is about: at a position (bytes), or at the caret with -1.
struct WordInDocument {
    DocumentId document = 0;
    HWND editor = nullptr;
    std::uint32_t compilerId = 0;
    LRESULT position = 0;  // where the word starts
    std::uint32_t line = 0;
    SymbolWord word;
};
std::optional<WordInDocument> WordAtPlace(LRESULT position);

// A text in the status bar that goes with the active document.
void TellSymbolStatus(const std::wstring& text);
