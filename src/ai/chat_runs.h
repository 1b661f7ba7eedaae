// A reply as the chat shows it: all its characters as they came, in runs of one look each. Fenced code stands out, and
// so do headings, **bold** text and `code` within a line. A reply that is still coming is shown piece by piece: what has
// been shown for good is never looked at again. Texts are UTF-8. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

enum class ChatLook : std::uint8_t {
    Text,
    Tag,    // who speaks: "[You]:"
    Mark,   // of bold text
    Bold,   // a heading, too
    Snip,   // code within a line, with its backticks
    Fence,  // the line that opens fenced code, and the backticks that close it
    Code,
};

struct ChatRun {
    std::string_view text;  // of the reply
    ChatLook look = ChatLook::Text;
    bool operator==(const ChatRun&) const = default;
};

// A place in a reply, and what is there.
enum class ChatPart : std::uint8_t { Text, FenceLine, Code };
struct ChatPlace {
    std::size_t at = 0;  // byte
    ChatPart part = ChatPart::Text;
};

// The runs from the place on. `whole`: nothing more will come; otherwise `settled` gets the place up to which the runs
// stay as they are whatever comes. It is never far from the end, so that the time of showing does not grow.
std::vector<ChatRun> ChatRunsFrom(std::string_view reply, ChatPlace from, bool whole, ChatPlace* settled);
// A line of the program or of the user: its "[...]:" is the tag.
std::vector<ChatRun> ChatRunsOfLine(std::string_view line);

// The text of runs as the control holds it: one '\n' for each line break, whatever its bytes, and no control characters
// but tabs. Its length in UTF-16 is that in the control.
std::wstring ChatShownText(std::string_view utf8);
std::size_t ChatShownLength(std::string_view utf8);  // UTF-16 units
