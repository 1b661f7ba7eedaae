// Opening, saving, reloading and closing documents, and the "go to line" dialog. Functions that return int return 1
// when all was done, else 0; those that take a tab index return 0 for an index out of range. UI thread only.
#pragma once

#include "documents/row_rules.h"

#include <windows.h>

#include <cstddef>
#include <string>
#include <vector>

int FileNew();  // 0 when no document could be added
// Null: asks with the open dialog. Shows a file that is open already. A project file is not shown: it opens its project.
// `problem` gets what a failure would tell in a message box; null: the box.
int FileOpen(const wchar_t* path, std::wstring* problem = nullptr);
// Begins to read a file that will soon be opened, if that takes long (documents/document_load.h).
void FileReadAhead(const wchar_t* path);
bool FileSaveHasFailed(DocumentId document);  // the status bar says so
bool FileIsProject(const wchar_t* path);      // by its name
// Shows a file on behalf of another command (a debugger stop, an error line, a session), and opens it when it is not
// open. Leaves the active compiler, the recent files and the last folder as they are. `quiet`: a failure shows no
// message box.
int FileShow(const wchar_t* path, bool quiet);
// Opens a file without showing it, for a command that opens many. Shows no message box. Returns the index of its document,
// also when it was open already, or -1.
int FileAdd(const wchar_t* path);
// The same for a file that is read when its document is first shown. -1: there is no such file.
int FileAddUnread(const wchar_t* path);
int FileSave(int tab);
// The same for a save that comes by itself: asks nothing. 0, with nothing written, when it would have to ask.
int FileSaveUnasked(int tab);
int FileSaveAs(int tab);
int FileSaveAll();        // 0 when a modified document was not saved
int FileReload(int tab);  // asks before unsaved changes are lost
int FileClose(int tab);   // 0 when the user cancelled or the save failed
// Asks as FileClose does, but does not close: 1 when the document is unmodified or saved, or the user does not want its
// changes.
int FileConfirmClose(int tab);
// Asks about the modified ones of these documents (empty: of all): about one as FileConfirmClose does, about several with
// a list. Closes nothing. Returns 0 when a document stays open. With `refused` (may be null) that gets these documents.
int FileConfirmCloseAll(const std::vector<DocumentId>& documents, std::vector<DocumentId>* refused = nullptr);
// Closes several documents. All questions come first: returns 0, and closes nothing, when one of the answers keeps a
// document open. Otherwise shows `kept` at the end. With CloseRange::All `kept` is 0.
int FileCloseDocuments(CloseRange range, DocumentId kept);
int FileCloseAll();

// The folder in which the open dialog starts. 0 when there is none.
int FileOpenResolveInitialDirectory(wchar_t* out, std::size_t capacity);

// A file, or a folder with files, has got another name on the disk: its documents and the recent files follow. Their texts
// stay as they are.
void FilesFollowRename(const std::wstring& from, const std::wstring& to);

// Puts a file first in the recent-file list and saves the settings.
void MruAddFile(const wchar_t* path);
bool DirectoryExists(const wchar_t* path);

void GotoLineDialogShow(HWND owner);
