// The statement before a place of a BASIC document. UI thread only.
#pragma once

#include "language/scanner.h"

#include <windows.h>

#include <optional>
#include <string>

struct StatementText {
    std::string text;     // from the start of a line on
    LRESULT start = 0;    // its position (bytes)
    ScanState state = 0;  // of its first line
};
// The text from the line with which the statement at `position` (bytes) begins up to that place. A statement that is
// longer than anyone writes is cut at its start. Nothing for other languages and in lines of megabytes.
std::optional<StatementText> EditorPaneStatementTo(HWND editor, LRESULT position);
// The line of a place up to its end.
std::optional<StatementText> EditorPaneLineAt(HWND editor, LRESULT position);
