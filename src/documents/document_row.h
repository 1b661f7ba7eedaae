// The row of open documents: adding, showing, moving, naming and removing them, each with its editor. The functions take a
// document's index in the row, which changes when others are closed or moved. Whoever remembers a document over a message
// box, a worker or a later event remembers its id. The tab bar draws the row and hears of changes by events. UI thread only.
#pragma once

#include "documents/documents_state.h"
#include "documents/row_rules.h"

#include <windows.h>

#include <vector>

// The record at an index that IsTabIndex() accepts. Adding, moving or removing a document moves the records.
inline DocumentTab& TabAt(int index) { return g_documents.tabs[static_cast<std::size_t>(index)]; }

// --- Finding. -1: none.
int TabBarFindDocument(DocumentId document);
int TabBarFindEditor(HWND editor);
int TabBarFindPath(const wchar_t* path);   // bound to that file, letter case aside
DocumentId DocumentOfEditor(HWND editor);  // 0: none
DocumentId ActiveDocumentId();             // 0: none
std::vector<RowEntry> DocumentRowEntries();

// Adds a document with its own editor, and reads the file when `path` is not empty. Returns its index, or -1 when the
// file could not be read or no window could be made. Does not show it.
int TabBarAdd(const wchar_t* path, const wchar_t* label);

// Shows a document. Returns 1, or 0 for an index out of range.
int TabBarSelect(int index);
// TabBarSelect with the focus in the editor.
int TabBarActivate(int index);
// TabBarSelect before the document is closed: once it is, the one that was active before is shown again.
int TabBarSelectToClose(int index);
// Shows the editor of `activeTab` and hides the others.
void TabBarSyncActiveEditor();

// Destroys the document's editor and forgets the record, without asking. Returns 1, or 0 for an index out of range.
int TabBarRemove(int index);
// Moves a document to another place in the row.
int TabBarMove(int from, int to);

// Line breaks typed from now on are those of the record's `lineEnding`.
void TabBarUpdateLineEnding(int index);
// Tells that label, modified mark or encoding have changed; a new name may also mean another language.
void TabBarUpdateTitle(int index);

// --- Focus
// Keyboard focus to the active editor, now; or retried for a short while until it has it.
void FocusCurrentEditor();
void QueueFocusCurrentEditor();
void FocusOnTimer();  // TIMER_FOCUS
