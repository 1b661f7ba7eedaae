// The commands about symbols: definition, references, rename, outline. UI thread only.
#pragma once

#include "base/command_handler.h"

#include <windows.h>

#include <span>

std::span<const CommandHandler> SymbolCommandHandlers();

// Goes to the definition of the word at a position of the active editor (bytes; -1: the caret's), once the symbols that
// it needs are known. The status bar tells when there is none.
void GoToDefinition(LRESULT position);
// Whether GoToDefinition() may find one in what the document reaches; `*start` and `*end` become the word's place.
bool HasDefinition(LRESULT position, LRESULT* start, LRESULT* end);

// Underlines the word under the mouse while Ctrl is held, and takes the click on it. For a new editor.
void DefinitionLinksAttach(HWND editor);
