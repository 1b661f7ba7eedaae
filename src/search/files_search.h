// Find in Files and Replace in Files: the dialog, the pane of results, and the commands. UI thread only.
#pragma once

#include "base/command_handler.h"
#include "base/events.h"

#include <windows.h>

#include <span>
#include <string>
#include <vector>

std::span<const CommandHandler> FilesSearchCommandHandlers();
// Opens the dialog or activates the open one.
void FilesDialogShow(HWND owner, bool replace);
// The same for what is below this folder.
void FilesDialogShowFolder(HWND owner, const std::wstring& folder);
// Handles a message for the open dialog. True when it was handled; the message loop then leaves it alone.
bool FilesDialogIsMessage(MSG* message);

// --- The pane of results; null until it was shown
HWND FilesPaneCreate(HWND parent, int controlId);
void FilesPaneApplyTheme();
void FilesPaneFocus();

// Shows hits that were found in another way, in place of the results that are there. `note` says what they are. A new
// search for `text` as a whole word takes their place when the user searches again.
struct FoundFile;
void FilesShowFound(const std::wstring& note, const std::string& text, std::vector<FoundFile> found);

// --- What the results follow. They cost nothing while there are none.
// At `position`, a text was inserted into that of the document, or removed from it.
void FilesSearchOnEdit(DocumentId document, std::ptrdiff_t position, std::string_view text, bool insertion);
void FilesSearchOnTextArrived(DocumentId document);
void FilesSearchOnTextLeaving(DocumentId document);
