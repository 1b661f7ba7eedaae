#include "ai/chat_stream.h"

#include "ai/chat_protocol.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::string_view kDone = "[DONE]";
constexpr std::string_view kMark = "\xEF\xBB\xBF";
constexpr std::string_view kFields[] = {"data:", "event:", "id:", "retry:", ":"};
constexpr std::size_t kLongestField = 6;

void TakeEventLine(EventReader& reader, std::vector<std::string>& events) {
    const std::string line = std::exchange(reader.line, {});
    if (line.empty()) {
        if (std::exchange(reader.hasData, false)) events.push_back(std::exchange(reader.data, {}));
        return;
    }
    constexpr std::string_view kData = "data";
    std::string_view value = line;
    if (!value.starts_with(kData)) return;  // a comment, or a field that says nothing about the text
    value.remove_prefix(kData.size());
    if (!value.empty() && value.front() != ':') return;
    if (!value.empty()) value.remove_prefix(1);
    if (value.starts_with(' ')) value.remove_prefix(1);
    if (reader.hasData) reader.data += '\n';
    reader.data += value;
    reader.hasData = true;
}

// What bytes that begin so are.
ChatStream::Kind KindOfBody(std::string_view bytes) {
    if (bytes.starts_with(kMark)) bytes.remove_prefix(kMark.size());
    bytes.remove_prefix(std::min(bytes.find_first_not_of("\r\n \t"), bytes.size()));
    if (std::ranges::any_of(kFields, [bytes](std::string_view field) { return bytes.starts_with(field); }))
        return ChatStream::Kind::Events;
    const bool mayBecome = std::ranges::any_of(kFields, [bytes](std::string_view field) {
        return bytes.size() < kLongestField && (field.starts_with(bytes) || kMark.starts_with(bytes));
    });
    return mayBecome ? ChatStream::Kind::Unknown : ChatStream::Kind::Other;
}

std::string TakeEvents(ChatStream& stream, const std::vector<std::string>& events) {
    const std::size_t before = stream.text.size();
    for (const std::string& event : events) {
        if (event == kDone) {
            stream.ended = true;
            continue;
        }
        ChatDelta delta = ChatDeltaOf(event.c_str());
        stream.text += delta.text;
        stream.ended = stream.ended || delta.ends;
        stream.atLimit = stream.atLimit || delta.atLimit;
        if (stream.error.empty()) stream.error = std::move(delta.error);
    }
    return stream.text.substr(before);
}

}  // namespace

std::vector<std::string> EventsIn(EventReader& reader, std::string_view bytes) {
    std::vector<std::string> events;
    while (!bytes.empty()) {
        if (std::exchange(reader.afterCr, false) && bytes.front() == '\n') {
            bytes.remove_prefix(1);
            continue;
        }
        const std::size_t end = bytes.find_first_of("\r\n");
        reader.line += bytes.substr(0, end);
        if (end == std::string_view::npos) break;
        reader.afterCr = bytes[end] == '\r';
        bytes.remove_prefix(end + 1);
        TakeEventLine(reader, events);
    }
    return events;
}

std::vector<std::string> EventsAtEnd(EventReader& reader) {
    return EventsIn(reader, reader.line.empty() ? "\n" : "\n\n");
}

std::string ChatStreamAdd(ChatStream& stream, std::string_view bytes) {
    if (stream.kind == ChatStream::Kind::Other) return {};
    if (stream.kind == ChatStream::Kind::Events) return TakeEvents(stream, EventsIn(stream.reader, bytes));
    stream.first += bytes;
    stream.kind = KindOfBody(stream.first);
    if (stream.kind != ChatStream::Kind::Events) return {};
    std::string first = std::exchange(stream.first, {});
    if (first.starts_with(kMark)) first.erase(0, kMark.size());
    first.erase(0, std::min(first.find_first_not_of("\r\n \t"), first.size()));
    return TakeEvents(stream, EventsIn(stream.reader, first));
}

std::string ChatStreamFinish(ChatStream& stream) {
    if (stream.kind != ChatStream::Kind::Events) return {};
    return TakeEvents(stream, EventsAtEnd(stream.reader));
}

ReplyEnd ChatStreamEnd(const ChatStream& stream) {
    if (!stream.error.empty()) return ReplyEnd::Refused;
    if (!stream.ended) return ReplyEnd::Cut;
    return stream.atLimit ? ReplyEnd::AtLimit : ReplyEnd::Whole;
}
