// The one search over files of the window, shared by its dialog, its pane and its replacements. Private to files_*. UI
// thread only.
#pragma once

#include "search/files_options.h"
#include "search/files_results.h"
#include "search/files_search.h"
#include "search/files_search_job.h"

#include <map>
#include <string>
#include <vector>

struct FollowedEdit {
    std::ptrdiff_t position, inserted, removed;
};

struct FilesSearchState {
    FilesOptions options;  // of the last search
    bool byUser = false;   // the user has set these options; else they are those of FilesShowFound
    std::wstring root;     // of its folder, without the backslash; empty: none
    FilesResults results;
    FilesTally tally;
    bool running = false;
    bool stopped = false;              // by the user
    bool replaceRuns = false;          // on a worker
    std::optional<ResultRow> current;  // the hit that was gone to last
    std::wstring note;                 // shown instead of the summary; empty: none

    // Private to files_course_win.cpp.
    WPARAM number = 0;  // of the last search
    FilesSearchHandle search;
    std::map<DocumentId, std::vector<FollowedEdit>> edits;  // since their texts were taken; while the search runs
    std::map<DocumentId, std::wstring> linked;              // documents with hits: the key of their file
};
extern FilesSearchState g_files;

// --- files_course_win.cpp: the search and what its results belong to
// Starts a search and shows the pane. Returns a sentence for the user when it cannot be started, else an empty text.
std::wstring FilesSearchBegin(const FilesOptions& options);
// The folder that the options mean; for the project, that of the active document when there is no project folder. Empty:
// none.
std::wstring FilesFolderWanted(const FilesOptions& options);
void FilesSearchEnd();                   // stops it
void FilesSearchTakeMore();              // shows what was found meanwhile
void FilesTextsGoOn();                   // MSG_FILES_TEXTS
void FilesSearchOnEnded(WPARAM number);  // MSG_FILES_ENDED
// Shows the hit in its document, which is opened when it is not open. False when that fails.
bool FilesGoTo(ResultRow row);
void FilesGoBeside(bool forward);
HWND FilesEditorOf(const ResultFile& file);  // null: its file is not open
// The hit as its document has it now, or as it was found. `gone`: its text has changed.
FileHit FilesHitNow(const ResultFile& file, std::size_t hit, bool* gone);

// --- files_pane_win.cpp
HWND FilesPaneWindow();
void FilesPaneStarted();                           // a search has begun
void FilesPaneUpdate();                            // after the results or the state have changed
void FilesPaneAdd(std::vector<ResultFile> files);  // to the results
void FilesPaneSelect(ResultRow row);
void FilesPaneRepaintSoon();

// --- files_replace_win.cpp
void FilesReplaceTicked();            // asks first
void FilesReplaceStop();              // after the file at hand
void FilesReplaceFinish();            // before the pane goes: waits until the file at hand is written, for at most 5 s
void FilesOnReplaced(WPARAM result);  // MSG_FILES_REPLACED
