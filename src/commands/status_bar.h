// The status bar: message, build progress, position, selection, encoding, line ending, compiler. The control holds the
// texts, so that other programs can read them; the painting follows the theme. UI thread only.
#pragma once

#include "base/events.h"
#include "commands/status_bar_fit.h"

#include <windows.h>

HWND StatusBarCreate(HWND parent, int controlId);  // null when it cannot be made
int StatusBarHeight();                             // pixels at the current DPI
void StatusBarLayout(int width);                   // sets the widths of the parts for a bar of `width` pixels
void StatusBarApplyTheme();                        // sets the font and repaints
// Sets the message ("Building...", for example), which stays until the next one, or until it passes. Null: empty.
void StatusBarSetText(const wchar_t* text);
// The same for a text about one document, which goes when another is shown. An empty text takes back only a text about
// that document.
void StatusBarSetDocumentText(DocumentId document, const wchar_t* text);
// Takes back a text about another document than this one.
void StatusBarForgetOthers(DocumentId document);
// Takes back a message that has stood long enough to be read. Called when the user goes on working.
void StatusBarPassText();
// Sets the progress of a build ("/ 0:07"). Null or empty: nothing runs.
void StatusBarSetProgress(const wchar_t* text);
// Shows line, column, selection, encoding and line ending of the active document.
void StatusBarUpdatePosition();
void StatusBarUpdateCompiler();
std::wstring StatusBarCutMessage();                  // the message when its end is not seen, otherwise empty
StatusWidths StatusBarEnds();                        // the right ends of the parts, in pixels of the bar
void StatusBarSetProject(const std::wstring& name);  // empty: no project is open
