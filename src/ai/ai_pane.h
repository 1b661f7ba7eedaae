// The AI chat pane: the chat, the input line below it and the Send button. UI thread only.
#pragma once

#include "ui/panes.h"

#include <windows.h>

#include <string>
#include <vector>

HWND AiPaneCreate(HWND parent, int controlId);  // returns the chat's window; null when it cannot be made
void AiPaneApplyTheme();
// The windows of the pane with their places in `area`.
std::vector<PanePart> AiPaneParts(const PaneRect& area);

// Appends a line of the program or of the user to the chat. False when there is no chat.
bool AiChatAppend(const std::wstring& text);
std::wstring AiInputText();
void AiPaneFocusInput();
// The button cancels while requests run and nothing is typed, otherwise it sends; its text says which. Called after a
// change of either.
void AiPaneUpdateSend();
bool AiSendCancels();
