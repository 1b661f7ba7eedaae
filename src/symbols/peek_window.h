// The window of a peek: over the editor, below or above the caret's line. It is made when it is first shown, and closes
// when the keyboard goes elsewhere. UI thread only.
#pragma once

#include "symbols/peek.h"
#include "symbols/symbol_place.h"

#include <windows.h>

#include <optional>

// Shows a page; in an open peek it comes after the page that is shown there.
void PeekShowPage(PeekPage page);
void PeekClose();
// Handles the keys of the window. True when the message was handled.
bool PeekIsMessage(const MSG& message);
void PeekApplySettings();  // fonts, colours, zoom

// What the window shows at its caret; nothing when it does not have the keyboard.
struct PeekCaret {
    DocumentId under = 0;  // the document over which it stands
    PeekPlace place;       // the document or file that it shows
    std::uint32_t line = 0;
    std::optional<SymbolWord> word;
};
std::optional<PeekCaret> PeekCaretNow();
