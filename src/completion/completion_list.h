// The window with the rows of the completion list: a popup beside the word at the caret that never takes the keyboard. It
// is made once and shown anew for each word, because making a list for every key takes longer than all the rest of it
// (under Wine 8 to 10 ms with Scintilla's own). UI thread only.
#pragma once

#include "completion/completion_rows.h"

#include <windows.h>

#include <functional>
#include <string>

struct WordListContent {
    std::size_t count = 0;
    std::function<std::wstring(std::size_t row)> text;    // called for the rows in sight
    std::function<std::wstring(std::size_t row)> detail;  // to the right of it, in quiet letters
    std::function<RowKind(std::size_t row)> kind;
    std::function<void(std::size_t row)> chosen;  // by a click
};

// Shows the rows at a position (bytes) of the editor, the first one selected. False when the window cannot be made.
bool WordListShow(HWND editor, LRESULT position, WordListContent content);
void WordListHide();
std::size_t WordListSelected();
void WordListMove(int rows);  // the selection, as far as there are rows
int WordListPage();           // rows in sight
