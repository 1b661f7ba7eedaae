// The symbols of the open documents, kept true while they are edited. A document is watched from the first question about
// it on; until then it costs nothing. A key only marks its lines: the text is copied in pauses, a piece at a time, and
// scanned by a worker. UI thread only.
#pragma once

#include "base/events.h"
#include "language/symbols.h"

#include <windows.h>

#include <functional>
#include <memory>

struct SCNotification;

// Empty for a document of another language and for a plain pane.
using SymbolTablePtr = std::shared_ptr<const SymbolTable>;

// The table of the last scan; never null. It may be behind the text (SymbolsAreCurrent), and is empty until the first
// scan has ended. Asks for a scan when one is needed.
SymbolTablePtr SymbolsOfDocument(DocumentId document);
bool SymbolsAreCurrent(DocumentId document);
bool SymbolsWereScanned(DocumentId document);  // at least once
// Calls `ready` once the table is that of the text: at once, or as soon as the worker has it. A later call takes the place
// of an earlier one that still waits. Not called when the document is closed or edited on and on.
void SymbolsWhenCurrent(DocumentId document, std::function<void()> ready);

// The line (from 0) in the table that stands where `line` of the text was when the table was made.
std::uint32_t SymbolsTableLine(DocumentId document, std::uint32_t line);

// `changed` is called after a document has got a new table, or other tables of the files that it includes.
void SymbolsListen(void (*changed)(DocumentId document));
void SymbolsTellChanged(DocumentId document);

// --- For the frame
// Sets the flag when the name is that of a variable or parameter. Of a document that nobody asks about nothing is known.
void SymbolsOnVariableAsked(DocumentId document, int line, std::string_view name, bool* isVariable);
void SymbolsOnModified(DocumentId document, const SCNotification& change);  // SCN_MODIFIED
void SymbolsOnTextArrived(DocumentId document);
void SymbolsOnClosed(DocumentId document);
void SymbolsOnTimer();                 // TIMER_SYMBOLS
void SymbolsOnScanned(WPARAM wParam);  // MSG_SYMBOLS_SCANNED
void SymbolsDropScans();               // the main window is about to go
