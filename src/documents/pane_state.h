// What is remembered of one Scintilla pane, and the functions that its files share. Private to this folder. UI thread.
#pragma once

#include "documents/sticky_header.h"
#include "scintilla/sci.h"

#include <windows.h>

#include <cstddef>

// What the width of the line-number margin depends on.
struct LineMarginBasis {
    int digits = 0;
    int zoom = 0;
    int fontSize = 0;
    std::size_t font = 0;  // hash of its name
    bool operator==(const LineMarginBasis&) const = default;
};

struct PaneState {
    bool emptyPaint = false;  // a paint of an empty area is under way: it needs no preparations
    bool bracesShown = false;
    bool inlineShown = false;     // some of the document is marked as inline assembly
    StickyCache sticky;           // what is known about procedure lines above the caret
    LineMarginBasis lineMargin;   // what the line-number margin was last measured for
    LRESULT coloured = 0;         // everything before this position has its colours
    bool colouring = false;       // the idle timer runs
    std::size_t colourChunk = 0;  // bytes that one idle slice of colouring takes on
};

// Null for a window that is no Scintilla pane of ours (the Rich Edit fallback).
PaneState* PaneStateOf(HWND editor);

// SciSend with a signed wParam: positions and lines are signed.
inline LRESULT PaneSend(HWND editor, UINT message, LRESULT wParam = 0, LRESULT lParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam), lParam);
}

// Colours, margins and input rules that do not depend on any setting; once, at creation.
void EditorPaneSetUp(HWND editor);

// Subclass of every pane: cursor, focus, mouse log, colouring before a paint.
bool EditorPaneInstallSubclass(HWND editor);

// The text from `position` on has changed: it is coloured again, in idle time what cannot be seen.
void EditorColourRestart(HWND editor, LRESULT position);
// Around a paint: what is about to be visible gets its colours now, whatever lies uncoloured above it. When the first
// returns true the paint does the colouring, and the second must follow it.
bool EditorColourBeforePaint(HWND editor);
void EditorColourAfterPaint(HWND editor);
void EditorColourStop(HWND editor);

// Width of the line-number margin for the settings, the font and the number of lines.
void EditorPaneUpdateLineMargin(HWND editor);
// The same when any of that has changed since; before every paint.
void EditorPaneCheckLineMargin(HWND editor);

// A change of text that begins on `line`: what the sticky header must look at again.
void StickyHeaderForget(HWND editor, int line, int linesAdded);

// A line was just broken at the caret: the new one starts below the text above.
void EditorPaneAfterNewLine(HWND editor);
// A BASIC keyword that ends at `position` goes to capitals, unless it stands in a string or a comment.
void EditorPaneUpperKeywordBefore(HWND editor, LRESULT position);
// Shows inline assembly in the visible text in its own colour.
void EditorPaneMarkInlineRegions(HWND editor);
