// Shows a replacement that waits in its editor: the new lines have a background of their own, the removed ones stand as
// annotations between the lines. No other part of the program uses annotations. UI thread only.
#pragma once

#include "ai/replacement_marks.h"

#include <windows.h>

#include <string_view>

// Shows what is different between the range and `before`, the text that it had. `first`: the marks were not shown yet;
// the view then goes to the first of them.
ReplacementMarks PendingMarksShow(HWND editor, const ByteRange& range, std::string_view before, bool first);
void PendingMarksHide(HWND editor, const ByteRange& range);
