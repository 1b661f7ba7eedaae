// What other programs do to the files of open documents: noticed by files/file_watch.h, shown on the tab, and asked about
// once, when the program or the document becomes active. UI thread only.
#pragma once

#include "documents/document.h"

#include <windows.h>

#include <string>

// A document was opened, read, saved or closed, or has another file: other files are to be watched.
void OutsideOnDocuments();
void OutsideOnTimer();              // TIMER_OUTSIDE
void OutsideOnSeen(WPARAM wParam);  // MSG_OUTSIDE_SEEN
void OutsideOnProgramActive();
void OutsideOnDocumentActive();
// True when the user is to be asked now. The frame calls OutsideAsk then, if nothing else is open. `isOwn`: whether a build
// of this editor made the file at that path, which is read again without a question.
bool OutsideWantsToAsk();
void OutsideAsk(bool (*isOwn)(const std::wstring& path));
void OutsideEnd();

// A save has met a change of the file that is at `now`: shows it on the tab.
void OutsideMark(int tab, const FileState& now, bool asked);

// --- outside_dialog_win.cpp
struct OutsideRow {
    DocumentId document = 0;
    std::wstring label, path, what;
    FileState now;  // of the file, when the question came up
    bool modified = false;
    bool mayTick = false;
    bool ticked = false;
};
enum class OutsideAnswer : std::uint8_t { Later, First, Second };
struct OutsideQuestion {
    const wchar_t* caption = L"";
    std::wstring text;
    const wchar_t* first = L"";   // button
    const wchar_t* second = L"";  // button
    const wchar_t* later = L"";   // button, and Esc
    bool enterIsLater = false;
    OutsideAnswer inSelftest = OutsideAnswer::Later;
    std::vector<OutsideRow> rows;  // with more than one, a list
};
// Asks, and shows the difference between file and document when the user wants it. Changes `ticked` of the rows.
OutsideAnswer OutsideDialogShow(OutsideQuestion& question);
