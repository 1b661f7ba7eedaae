// A text of the chat as lines for its pane. Pure.
#pragma once

#include "ui/rtf_block.h"

#include <string_view>
#include <vector>

// LF, CR and CRLF end a line. A last line without a line break gets none.
std::vector<PaneLine> ChatLines(std::wstring_view text);

// The part of a reply that the chat shows. The rest would take the pane seconds to lay out.
inline constexpr std::size_t kShownReply = 100000;  // characters
