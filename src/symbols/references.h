// All places where a name means the same declaration: found by a worker in the open documents and in the files of the
// project, for the list of references and for a renaming. UI thread only.
#pragma once

#include "search/files_search_job.h"
#include "symbols/definitions.h"
#include "symbols/symbol_place.h"

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct References {
    WordInDocument word;  // about which was asked
    ReferenceTarget target;
    std::optional<SymbolSpot> definition;  // nothing: the program declares no such name
    SymbolKind kind = SymbolKind::Global;  // of the definition
    std::string name;                      // as the definition writes it
    std::vector<FoundFile> found;
    std::size_t places = 0;
    std::vector<std::wstring> unreadable;  // files that could not be read
    bool limited = false;                  // there are more than are kept
};

// Looks for the places of the word at the caret's place, and calls `ready` when all are found. A later call takes the
// place of one that still runs.
void FindReferences(const WordInDocument& word, std::function<void(References)> ready);

void ReferencesOnFound(WPARAM wParam);  // MSG_SYMBOLS_PLACES
void ReferencesDrop();                  // the main window is about to go
