#include "ai/chat_call.h"

#include "ai/chat_protocol.h"
#include "base/handles.h"
#include "base/heap_text.h"

int AiApiChatStreamed(const wchar_t* url, const wchar_t* apiKey, const std::string& request,
                      const std::function<void(std::string_view)>& onText, char** reply, HttpExtras* extras,
                      std::string* serviceText, ReplyEnd* end) {
    *reply = nullptr;
    *end = ReplyEnd::Whole;
    if (url == nullptr || request.empty()) return 0;
    ChatStream stream;
    const auto tell = [&onText](const std::string& text) {
        if (!text.empty()) onText(text);
    };
    extras->arrived = [&](std::string_view bytes) {
        tell(ChatStreamAdd(stream, bytes));
        return stream.kind == ChatStream::Kind::Events;
    };
    HttpResponseBuffer buffer;
    const int sent = WinHttpPost(url, ChatHeaders(apiKey).c_str(), request.c_str(), &buffer, extras);
    extras->arrived = nullptr;
    const HeapBlock<char> body(buffer.data);
    if (stream.kind == ChatStream::Kind::Events) {
        tell(ChatStreamFinish(stream));
        *serviceText = stream.error;
        *end = ChatStreamEnd(stream);
        if (!stream.text.empty() || *end == ReplyEnd::Whole) *reply = HeapText(stream.text);
    } else if (sent != 0) {
        *reply = ChatReplyText(body.get());
        if (*reply == nullptr) *serviceText = ChatErrorText(body.get());
    }
    return *reply != nullptr ? 1 : 0;
}
