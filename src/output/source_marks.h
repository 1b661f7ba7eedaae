// The diagnostics of the last build by file, for their marks in the texts: all of them, not only those of the error list.
// Pure.
#pragma once

#include "base/events.h"
#include "output/mark_place.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct CompilerError;

inline constexpr std::size_t kMostMarksOfFile = 500;
inline constexpr std::size_t kMostMarkedFiles = 1000;

struct SourceMark {
    std::int32_t line = 0, column = 0;  // as printed, from 1; 0: not given
    std::int32_t severity = 0;          // as in CompilerError
    std::uint32_t compilerId = 0;       // the same
    std::wstring message;               // the same
    std::ptrdiff_t fileLine = 0;        // the line in the file as it was last saved or read, from 0
    std::ptrdiff_t fileStart = -1;      // of the underlined part in that line, in bytes of the text; -1: not known
    std::ptrdiff_t fileLength = 0;
    MarkPlace place = {};  // in the text of the open document; valid for the first `placed` marks
};

// The diagnostics with one printed file name of one build.
struct MarkedFile {
    std::wstring name;
    std::int32_t build = 0;                 // as in CompilerError
    std::vector<std::wstring> places = {};  // the paths that the name may mean, likeliest first
    bool placesKnown = false;
    DocumentId document = 0;  // the open document that shows the marks; 0: none
    std::vector<SourceMark> marks = {};
    std::size_t placed = 0;  // marks that have their place in the document
    std::size_t total = 0;   // diagnostics, more than marks when they are too many
    std::uint64_t edits = 0;
};

struct SourceMarks {
    std::vector<MarkedFile> files;
    std::map<std::pair<std::int32_t, std::wstring>, std::size_t> index;  // by build and printed name
};

// Whether a diagnostic is about a line of a source. Compilers say at the first column of line 1, or without a line, what
// is about the whole build, as that they cannot write `program` (full path; empty: not known).
bool HasPlaceInSource(const CompilerError& error, std::wstring_view program);

// Records a diagnostic; the same one twice counts once. Returns false when there is no room for its mark.
bool SourceMarksAdd(SourceMarks& marks, const CompilerError& error);

// "Error: Undefined name". Several of one place are told in lines, errors first.
std::wstring MarkText(const SourceMark& mark);
std::wstring MarkTexts(std::vector<const SourceMark*> marks, std::wstring_view between);

// What is told when a file has more diagnostics than marks.
std::wstring MarksLeftOutText(std::wstring_view file, std::size_t shown, std::size_t total);
