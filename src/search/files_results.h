// The results of a search over files as rows: one for each file, and below it one for each of its hits. Pure.
#pragma once

#include "base/events.h"
#include "search/files_search_text.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The starts and ends of hits in a text, which move with its edits. An edit costs as many steps as there are places
// between it and the edit before, so that neither typing nor a replacement of all hits is slow.
class MovedPlaces {
public:
    MovedPlaces() = default;
    // Start and end of each hit in turn, ascending.
    explicit MovedPlaces(std::vector<std::ptrdiff_t> places) : places_(std::move(places)) {}
    void Removed(std::ptrdiff_t position, std::ptrdiff_t length);
    void Inserted(std::ptrdiff_t position, std::ptrdiff_t length);
    std::ptrdiff_t At(std::size_t index) const { return places_[index] + (index >= step_ ? delta_ : 0); }
    std::size_t Count() const { return places_.size(); }

private:
    template <typename Stays>
    std::size_t FirstMoved(const Stays& stays) const;
    void MoveStep(std::size_t to);

    std::vector<std::ptrdiff_t> places_;
    std::size_t step_ = 0;  // from here on `delta_` is to be added
    std::ptrdiff_t delta_ = 0;
};

// Hits whose text a removal has taken away. They come back when the next edit inserts that text again: where a line is
// moved, or pasted after it was cut, and by undo.
struct CutHits {
    std::size_t first = 0;                // the first of them
    std::vector<std::ptrdiff_t> offsets;  // start and end of each in the text
    std::string text;                     // without the line breaks around it; empty: there are none
};

struct ResultFile {
    std::wstring path;        // empty: a document without a file
    std::wstring key;         // PathKey of the path, or the label
    std::wstring label;       // what the row shows
    DocumentId document = 0;  // the open document that the hits belong to; 0: none
    bool folded = false;
    std::vector<FileHit> hits;
    std::vector<bool> ticked;  // by hit: whether a replacement takes it
    // While `document` is not 0: start and end of each hit in the document.
    MovedPlaces places;
    CutHits cut;
};

// Moves the hits with an edit: `text` was inserted at the position, or removed from it. Returns for each hit its place in
// the order from now on when that order has changed; else nothing.
std::vector<std::size_t> MoveHits(ResultFile& file, std::ptrdiff_t position, std::string_view text, bool inserted);

struct ResultRow {
    std::size_t file = 0;
    std::optional<std::size_t> hit;  // nothing: the row of the file
    bool operator==(const ResultRow&) const = default;
};

class FilesResults {
public:
    std::vector<ResultFile> files;  // in the order of their keys; whoever changes one calls Recount

    void Add(std::vector<ResultFile> found);
    void Clear();
    void Recount();  // after files were folded, or hits were removed
    // Removes the row: a hit, or a file with its hits. A file goes with its last hit.
    void Remove(ResultRow row);

    // The hits of that file as they are after a replacement, in order.
    void TakeReplaced(std::wstring_view key, std::vector<FileHit> hits);
    std::size_t RowCount() const { return ends_.empty() ? 0 : ends_.back(); }
    std::size_t HitCount() const { return hits_; }
    ResultRow RowAt(std::size_t index) const;  // `index` below RowCount()
    std::size_t IndexOf(ResultRow row) const;  // of the file's row when that is folded
    // The hit after or before a row, without the end coming round; also those of folded files. Nothing: there is none.
    std::optional<ResultRow> Beside(std::optional<ResultRow> from, bool forward) const;
    std::size_t FindFile(std::wstring_view key) const;  // its index; npos when it has no hits

private:
    std::vector<std::size_t> ends_;  // by file: the index behind its last row
    std::size_t hits_ = 0;
};

// The path below the root, or the whole path when it is elsewhere. `root` may be empty.
std::wstring PathBelow(std::wstring_view path, std::wstring_view root);

// "12 hits in 3 files" and what else there is to say; ended by what the search still does or why it has ended.
struct FilesSummary {
    std::size_t hits = 0, files = 0, searched = 0, binary = 0, unreadable = 0;
    bool running = false, stopped = false, limited = false;
};
std::wstring HitsInFilesText(std::size_t hits, std::size_t files);  // "3 hits in 2 files"
std::wstring FilesSummaryText(const FilesSummary& summary);
