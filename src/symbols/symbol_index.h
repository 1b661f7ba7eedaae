// What a document can refer to: its own symbols, those of the files that it includes, and those of the project. Files are
// read by a worker when they are asked for, never at start-up; their symbols are kept until they change. UI thread only.
#pragma once

#include "symbols/document_symbols.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

struct ReachedText {
    std::wstring path;        // empty: a document without a file
    DocumentId document = 0;  // its open document; 0: none
    SymbolTablePtr table;     // never null
};

// The document itself, then what it includes, directly or through other files, as far as it is known now. Asks for what
// is not known yet, or may have changed.
std::vector<ReachedText> SymbolsInReach(DocumentId document);
// Whether these are all that the text includes now.
bool SymbolsReachIsKnown(DocumentId document);
// Calls `ready` once SymbolsInReach() holds what the document's text and the files on the disk say now. A later call of
// this or of the next function takes the place of one that still waits.
void SymbolsWhenReached(DocumentId document, std::function<void()> ready);

// The sources of the project folder and the open documents. Empty but for these until the project has been read once.
std::vector<ReachedText> SymbolsInProject();
// Calls `ready` once the project was read, and each open document at least once.
void SymbolsWhenProjectKnown(std::function<void()> ready);
bool SymbolsProjectLimited();  // the project is larger than what is kept of it

void SymbolsOnFilesScanned(WPARAM wParam);  // MSG_SYMBOLS_FILES
void SymbolsDropFiles();                    // the main window is about to go
