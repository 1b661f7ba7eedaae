// The small windows at a place of the editor that tell about the program: call tips while arguments are typed, and the
// declaration of the word under the mouse. Only one is shown at a time. UI thread only.
#pragma once

#include "base/events.h"
#include "scintilla/sci.h"

#include <windows.h>

#include <string>

// --- Call tips
// The command: shows the tip for the call at the caret, or tells that there is none.
void CallTipShow();
void CallTipOnCharacter(HWND editor, int character);  // SCN_CHARADDED
void CallTipOnView(HWND editor);                      // SCN_UPDATEUI
void CallTipOnClick(HWND editor, int arrow);          // SCN_CALLTIPCLICK; 1: up, 2: down
void CallTipOnListClosed(HWND editor);                // the completion list has gone, under which no tip is shown
bool CallTipIsShown();

// --- A text at a word
// Shows a text in lines at a position (bytes), until the mouse, the caret or the view moves.
void HoverShow(HWND editor, LRESULT position, const std::string& utf8);
void HoverShowLines(HWND editor, LRESULT position, const std::string& utf8);  // breaks lines that are too long
void HoverEnd(HWND editor);
void HoverMouseMoved(HWND editor);           // SCN_DWELLEND
void HoverOnView(HWND editor, bool edited);  // SCN_UPDATEUI

// What is known of the word at a position of a document; empty: nothing. `*start` becomes the word's position.
std::string HoverTextAt(DocumentId document, LRESULT position, LRESULT* start);
// Shows it for the word at which the mouse rests, as soon as the symbols are known.
void HoverAtMouse(HWND editor, DocumentId document, LRESULT position);
// The command: shows that text for the word at the caret, or tells that nothing is known.
void HoverShowAtCaret();

// Where a tip with these lines fits into the view: a position on the row of `wanted`, as far to the right as that one or
// less.
LRESULT TipPlace(HWND editor, LRESULT wanted, const std::string& utf8);
// The characters that a line of a tip has room for.
std::size_t TipColumns(HWND editor);
