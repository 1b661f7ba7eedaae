// The place of a diagnostic in a text that is edited. It moves with the edits, and when its text is removed it comes back
// with it: by undo, when lines are moved, and when the lines are replaced by as many others. Positions are bytes. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

// A removal that took the place along.
struct MarkRemoval {
    std::ptrdiff_t offset = 0;      // of the place in the removed text
    std::ptrdiff_t length = 0;      // of the removed text
    std::ptrdiff_t lines = 0;       // line breaks in it
    std::ptrdiff_t lineOffset = 0;  // line breaks in it before the place; negative: not counted, because it is long
    std::size_t hash = 0;           // of it
    bool blank = false;             // nothing but blanks and line breaks
    std::uint64_t edit = 0;         // MarkEdit::number
    std::ptrdiff_t span = 0;        // length of the place before it
    bool replaced = false;          // another text took its place, and the place is there
};

// A removal that took the start or the end of the place, while more of it is left.
struct MarkCut {
    std::ptrdiff_t length = 0;  // of the removed text
    std::size_t hash = 0;       // of it
    std::ptrdiff_t before = 0;  // bytes of the place in it, at its start
    std::ptrdiff_t behind = 0;  // at its end
};

struct MarkPlace {
    std::ptrdiff_t start = 0, end = 0;       // equal: nothing to underline
    std::ptrdiff_t caret = 0;                // the column that was printed, from `start`
    std::vector<MarkCut> cuts = {};          // the last one at the end
    std::vector<MarkRemoval> removals = {};  // the last one at the end
};

struct MarkEdit {
    bool inserted = false;
    bool undone = false;  // by undo or redo
    std::ptrdiff_t position = 0;
    std::string_view text = {};  // what was inserted or removed
    std::uint64_t number = 0;    // counts the edits of the document
    // Of the text, found once for all places of a document.
    std::ptrdiff_t lines = 0;
    std::size_t hash = 0;
};
// Completes the last two.
MarkEdit WholeEdit(MarkEdit edit);

// The line of the place was removed.
bool MarkIsGone(const MarkPlace& place);
// Moves the place. Returns true when it looks different than Scintilla's own markers and indicators after that edit.
bool MoveMark(MarkPlace& place, const MarkEdit& edit);

// What to underline in a line for a diagnostic at a column (bytes from 0; negative: none): the word, the string or the
// character there; the whole statement when there is no column or it is in the indentation. Offsets in the line.
struct MarkSpan {
    std::ptrdiff_t start = 0, end = 0;
    bool operator==(const MarkSpan&) const = default;
};
MarkSpan SpanOfDiagnostic(std::string_view line, std::ptrdiff_t column);
