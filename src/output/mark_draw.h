// What Scintilla shows of the diagnostics in a text. Private to mark_*_win.cpp. UI thread only.
#pragma once

#include "output/source_marks.h"
#include "scintilla/sci.h"

#include <span>
#include <utility>

// Defines the looks by the theme and shows the margin of the signs. Before the first mark of a document, and after a
// change of the theme.
void MarkDrawPrepare(HWND editor);
void MarkDrawMargin(HWND editor, bool shown);
void MarkDraw(HWND editor, const SourceMark& mark, LRESULT line);  // from 0
// The texts behind the lines, one for each line (from 0).
void MarkDrawTexts(HWND editor, std::span<const std::pair<LRESULT, const SourceMark*>> marks);
void MarkDrawClear(HWND editor);  // all but the margin
