// The document operations of the File menu and of everyone who opens or saves. Those with a tab index return 0 at
// once for an index out of range. UI thread only.
#pragma once

#include "documents/row_rules.h"

#include <windows.h>

#include <cstddef>

int FileNew();                      // 1, or 0 when no tab could be added
int FileOpen(const wchar_t* path);  // null: the dialog. 1 when the file is shown in a tab, new or existing
// Shows a file for a purpose - a stop, an error, a session - and opens it when it is not open. The active compiler, the
// recent files and the last folder stay as the user left them. 1 when it is shown; `quiet`: no box when it is not.
int FileShow(const wchar_t* path, bool quiet);
int FileSave(int tab);
int FileSaveAs(int tab);
int FileSaveAll();  // 1 when every modified document was saved
int FileReload(int tab);
int FileClose(int tab);  // 0 when the user cancelled or the save failed
// The question of FileClose alone: 1 when the document may go (unmodified, saved, or given up), 0 otherwise.
int FileConfirmClose(int tab);
// Closes several documents, each as FileClose does, until one is refused: 0. `kept` is shown at the end unless one was
// refused; 0 with CloseRange::All.
int FileCloseDocuments(CloseRange range, DocumentId kept);
int FileCloseAll();

// The folder that the open dialog starts in. 1 when one was produced.
int FileOpenResolveInitialDirectory(wchar_t* out, std::size_t capacity);

void MruAddFile(const wchar_t* path);
bool DirectoryExists(const wchar_t* path);

void GotoLineDialogShow(HWND owner);
