// The row of open documents: adding, showing, moving and removing a document with its editor. The functions take a
// document's index in the row, which changes when others are closed or moved. Code that needs a document after a
// message box, in a worker or in a later event keeps its id. Changes are announced by events (base/events.h), on which
// the tab bar draws the row. UI thread only.
#pragma once

#include "documents/documents_state.h"
#include "documents/load_rules.h"
#include "documents/row_rules.h"

#include <windows.h>

#include <vector>

// The record at an index that IsTabIndex() accepts. The reference is invalid after a document is added, moved or
// removed.
inline DocumentTab& TabAt(int index) { return g_documents.tabs[static_cast<std::size_t>(index)]; }

// --- Finding; -1 when there is none
int TabBarFindDocument(DocumentId document);
int TabBarFindEditor(HWND editor);
int TabBarFindPath(const wchar_t* path);  // the document of that file; ignores letter case
// The same, and when no document has that name, the document of the same file under another name: a link, a short name,
// a share. Asks the system about the file.
int TabBarFindFile(const wchar_t* path);
DocumentId DocumentOfEditor(HWND editor);  // 0: none
DocumentId ActiveDocumentId();             // 0: none
std::vector<RowEntry> DocumentRowEntries();

// Adds a document with its own editor at the end of the row, and reads the file when `path` is not empty. Does not show
// it. Returns its index, or -1 when the file could not be read or no window could be made. `why` (may be null) tells how
// the reading ended, when there was a file to read. Reading a large file handles paints and Esc meanwhile.
int TabBarAdd(const wchar_t* path, const wchar_t* label, LoadEnd* why = nullptr);

// A label for a document without a file: `wanted`, or with a number when another one has that.
std::wstring LabelWithoutFile(const std::wstring& wanted);

// Adds the document of a file that is read when it is first shown. Returns its index.
int TabBarAddUnread(const wchar_t* path, const wchar_t* label);
// Reads the file of such a document, for whoever needs its text or its editor before it is shown. True when the document
// has its editor. When the file cannot be read a message says so, and the document stays unread.
bool TabBarRead(int index);

// Shows a document. Returns 1, or 0 for an index out of range.
int TabBarSelect(int index);
// TabBarSelect, then moves the keyboard focus to the editor.
int TabBarActivate(int index);
// Shows a document that is about to be closed. After it is closed, the document that was active before is shown again.
int TabBarSelectToClose(int index);
// Shows the editor of `activeTab` and hides the others.
void TabBarSyncActiveEditor();

// Removes the document and destroys its editor, without asking. Returns 1, or 0 for an index out of range.
int TabBarRemove(int index);
// Removes all documents, those first that are not shown, so that no other is shown, or read, meanwhile.
void TabBarRemoveAll();
// Moves a document to another place in the row, or to the nearest one that pinned and other documents allow. Returns 1,
// or 0 for an index out of range.
int TabBarMove(int from, int to);
// Pins a document, which then stands behind the other pinned ones, or takes the pin off.
void TabBarPin(int index, bool pinned);
// Moves pinned documents before all others, after several have been pinned at once.
void TabBarSortPinned();

// Makes the editor insert the line breaks of the record's `lineEnding`.
void TabBarUpdateLineEnding(int index);
// Announces that the label, the modified mark or the encoding has changed. When the new file name means another
// language, the editor gets that language too.
void TabBarUpdateTitle(int index);

// Tells the user what is unusual about the document's file: its encoding, its bytes. Says nothing about an ordinary one.
void TellDocumentForm(int index);
// The same after a change has made its pane plain.
void TellDocumentPlain(int index);

// --- Focus
// Moves the keyboard focus to the active editor when that is visible.
void FocusCurrentEditor();
// The same when the user leaves a pane: what is selected in the editor comes into view, because the next key replaces it.
void FocusEditorFromPane();
// The same after the messages that are waiting, repeated by TIMER_FOCUS for up to 2 s until the editor has the focus.
void QueueFocusCurrentEditor();
void FocusOnTimer();  // TIMER_FOCUS
// Gives up the repetitions, because the user wants the keyboard elsewhere by now.
void FocusRetryEnd();
