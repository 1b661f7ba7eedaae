// A search over files on other threads, one for each processor. Its results wait in a queue until the owner takes them.
#pragma once

#include "base/events.h"
#include "base/handles.h"
#include "base/worker_queue.h"
#include "search/file_walk.h"
#include "search/files_search_text.h"

#include <windows.h>

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The text of a document, searched in place of its file.
struct OpenText {
    DocumentId document = 0;
    std::wstring path;  // empty: it has no file
    std::string utf8;
};

struct FilesJob {
    FilesQuery query;
    std::optional<WalkRules> walk;
    std::vector<std::wstring> files;  // beside those of the walk; absolute paths
    std::vector<OpenText> texts;
};

struct FoundFile {
    std::wstring path;        // empty for a document without a file
    DocumentId document = 0;  // whose text was searched; 0: the file was
    std::vector<FileHit> hits;
};

inline constexpr std::uint64_t kLargestSearched = 1ULL << 30;  // bytes of a file
inline constexpr std::size_t kMostNamed = 100;                 // unreadable files and folders

struct FilesTally {
    std::size_t files = 0;   // searched; documents too
    std::size_t hits = 0;    // found
    std::size_t binary = 0;  // left out
    std::size_t unreadable = 0;
    std::vector<std::wstring> unreadableNames;  // the first kMostNamed, each with the reason
    bool limited = false;                       // it has ended because of kMaxHits
    bool ended = false;
};

struct FilesSearchCourse;  // shared by the threads and the owner
using FilesSearchHandle = std::shared_ptr<FilesSearchCourse>;

// Starts the search. When it has ended, `message` is posted to the window with `number` in wParam. Null, with a sentence
// in `fault`, when the query cannot be searched for or no thread could be made.
FilesSearchHandle FilesSearchStart(FilesJob job, HWND window, UINT message, WPARAM number, std::wstring* fault);
// Asks the threads to end and returns at once. They end after the call of the system that they are in.
void FilesSearchStop(const FilesSearchHandle& search);
// Replaces `found` by what was found since the last call. Returns false when nothing came and nothing will.
bool FilesSearchTake(const FilesSearchHandle& search, std::deque<FoundFile>* found, FilesTally* tally);

// Memory for one file after the other. It is not cleared, because clearing takes longer than reading what is cached.
struct ReadBuffer {
    HeapBlock<char> bytes;
    std::size_t capacity = 0;
    std::size_t length = 0;  // of the file

    std::string_view Text() const { return {bytes.get(), length}; }
};
// Reads a file whole for a search. Returns a sentence without a full stop when that fails, else an empty text.
std::wstring ReadSearchedFile(const std::wstring& path, std::uint64_t size, bool sizeKnown,
                              const SearchStopped& stopped, ReadBuffer* buffer);
AnsiDecoder SystemAnsiDecoder();
