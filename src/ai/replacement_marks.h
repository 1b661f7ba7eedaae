// How a replacement that waits is shown: which lines are new and which were removed, and where the replaced range is
// after further edits. Texts are UTF-8, positions are bytes. Pure.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// --- The range
struct ByteRange {
    std::size_t start = 0;
    std::size_t length = 0;
    bool operator==(const ByteRange&) const = default;
};
struct TextEdit {
    std::size_t position = 0;
    std::size_t length = 0;
    bool inserted = false;  // else deleted
    bool undone = false;    // by undo or redo
};
// Where the range is after the edit. What is typed at one of its ends does not belong to it, unless it is empty and thus
// is being replaced. What undo puts there does while the range is shorter than `whole`, because it is a part of the range
// that was deleted.
ByteRange RangeAfterEdit(ByteRange range, const TextEdit& edit, std::size_t whole);
// Whether the edit is in the range or at one of its ends.
bool EditTouches(const ByteRange& range, const TextEdit& edit);

// --- The marks
struct AddedLines {
    int first = 0;
    int end = 0;  // is not among them
    bool operator==(const AddedLines&) const = default;
};
struct RemovedLines {
    int below = 0;     // the line under which they are shown
    std::string text;  // lines separated by LF, without tabs
    bool operator==(const RemovedLines&) const = default;
};
struct ReplacementMarks {
    std::vector<AddedLines> added;
    std::vector<RemovedLines> removed;  // at most one for a line, in order
    int addedCount = 0, removedCount = 0;
};
// The differences of two texts of whole lines. `firstLine` (from 0) is the line of the document at which both begin.
// Removed lines stand above the new ones. At the document's first line, above which nothing can stand, they stand below
// the new ones, or below the first when the new ones are many.
ReplacementMarks MarksOfReplacement(std::string_view oldText, std::string_view newText, int firstLine, int tabWidth);

// The removed lines with a break where `fits` says that no more of a line can be seen.
void WrapRemoved(ReplacementMarks& marks, const std::function<bool(const std::string& part)>& fits);

// What is shown at most; the rest is counted.
inline constexpr int kShownRemoved = 40;             // lines in one place
inline constexpr int kShownRemovedTogether = 2000;   // lines
inline constexpr std::size_t kShownLineBytes = 300;  // of a line

// "AI replacement: 3 lines new, 1 removed"
std::wstring MarksSummary(const ReplacementMarks& marks);
