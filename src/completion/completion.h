// The completion list of the editor: comes up by itself after some letters, or by its command. UI thread only.
#pragma once

#include "scintilla/sci.h"

#include <windows.h>

void CompletionAttach(HWND editor);  // for a new editor
void CompletionOnNotify(HWND editor, const SCNotification& notification);
void CompletionClose();       // the theme or another setting has changed
void CompletionGoOn();        // once the message queue is empty: an open list follows what was typed
void CompletionShowWanted();  // the command: at the caret of the active editor
