// What the find dialog, the search bar and the commands of searching share. Only for this folder. UI thread only.
#pragma once

#include "base/events.h"
#include "search/find_engine.h"

#include <windows.h>

#include <string>

inline constexpr int kFindFieldLimit = 255;  // characters, as many as the history holds

// The last search. It is kept while the dialog and the bar are closed.
struct FindState {
    std::wstring what;
    std::wstring with;
    FindOptions options;
    bool wrap = true;
    bool preserveCase = false;
    bool replacing = false;        // the dialog shows the controls for replacing
    DocumentId scopeDocument = 0;  // document of `scope`, 0: none
    FindSpan scope;                // the selection when "in selection" was ticked; follows the edits since
    FindSpan scopeSelection;       // the selection that is known; another one becomes the scope
    // The match that is shown, and what was selected for it: whole characters and line breaks around it.
    DocumentId shownDocument = 0;
    FindSpan shown, shownSelection;
};
extern FindState g_find;

// --- The dialog (find_win.cpp)
void ReadFindDialog();      // into g_find; does nothing while the dialog is closed
bool FindInSelection();     // the dialog is open and "in selection" is ticked
void FindLeaveSelection();  // unticks it
void ShowFindStatus(const wchar_t* text);
void ShowFindFault(int control, const std::wstring& field, const RegexFault& fault);  // also moves the caret to it
void FillFindHistories();
void UncoverMatch(FindSpan match);  // moves the dialog when it covers the match

// --- Searching (find_actions_win.cpp)
void FindStep(const FindQuery& query, bool forward);  // selects the next match and says where it went on
void FindTakeScope();                                 // makes the selection the scope
bool FindSelectionSpansLines();
void FindReplaceNext();
void FindReplaceAll();
void FindCount();
void FindMarkAll();
void FindShowMatch(FindSpan match);
FindSpan FindCurrentMatch();      // the match that is shown while it is selected, else the selection
void FindRemember();              // the search text, in the history
std::wstring FindSelectedText();  // the selection when it can be a search text, else empty

// --- Marks in the text (find_marks_win.cpp)
enum class FindMarks { All, Bar };                    // of Mark All, of the search bar
void FindMarksPrepare(HWND editor, FindMarks marks);  // their looks in the present theme; call before FindMark
void FindMark(HWND editor, FindMarks marks, FindSpan span);
void FindUnmark(HWND editor, FindMarks marks, FindSpan span);
