// Makes lines comments, and comments lines again. Pure.
#pragma once

#include "settings/file_type_table.h"

#include <string>
#include <string_view>

// What begins a comment that ends with its line; empty when the language has none.
std::string_view LineCommentMark(Language language);

// Whole lines, with their breaks. When all that are not blank are comments, the marks go, each with one blank after it;
// otherwise each line that is not blank gets one, at the indentation of the least indented.
std::string ToggleLineComments(std::string_view lines, std::string_view mark);
