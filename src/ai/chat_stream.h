// A reply that the service sends as it comes: server-sent events, each with a piece of the text. The bytes are fed in
// whatever portions the network gives. Pure; any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Takes events apart. A line ends in LF, CR or CR LF, an event with an empty line.
struct EventReader {
    std::string line;  // so far
    std::string data;  // of the event so far
    bool hasData = false;
    bool afterCr = false;  // a LF that comes now belongs to the CR before it
};
// The data of the events that end within the bytes.
std::vector<std::string> EventsIn(EventReader& reader, std::string_view bytes);
// The data of an event whose end the connection has cut off, if there is any.
std::vector<std::string> EventsAtEnd(EventReader& reader);

// How a streamed reply has ended.
enum class ReplyEnd : unsigned char {
    Whole,
    Cut,      // without a word of the service: the connection was lost
    AtLimit,  // it has reached its longest length
    Refused,  // the service reported an error
};

struct ChatStream {
    std::string first;  // bytes before it is known what they are
    enum class Kind : unsigned char { Unknown, Events, Other } kind = Kind::Unknown;
    EventReader reader;
    std::string text;   // of the reply so far
    std::string error;  // what the service said of an error
    bool ended = false, atLimit = false;
};
// Adds bytes of the body and returns the text that came with them. A body that does not begin as events do is none of
// its business (`kind` is Other then): it is a reply of the other form, or an error.
std::string ChatStreamAdd(ChatStream& stream, std::string_view bytes);
// No more bytes come. Returns the text that came with the last of them.
std::string ChatStreamFinish(ChatStream& stream);
ReplyEnd ChatStreamEnd(const ChatStream& stream);
