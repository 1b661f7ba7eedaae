// The edits that turn one text into another, line by line, so that what is the same keeps its place in an editor: markers,
// folds, caret. Pure; any thread.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

// Replaces the bytes [start, end) of the old text.
struct LineEdit {
    std::size_t start = 0, end = 0;
    std::string_view text;  // borrowed from the new text
};

// A line in the place of another is an edit of its own, without what the two have in common at their ends. In the order of their places, which are those in the old text. Line ends count: a line with another line end differs.
// Texts that differ over more than a few megabytes are told apart as one piece.
std::vector<LineEdit> LineEdits(std::string_view oldText, std::string_view newText);
