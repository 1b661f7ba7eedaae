// Any bytes as a reply of a chat service, as a model list and as a text with code.
#include "ai/ai_texts.h"
#include "ai/chat_log.h"
#include "ai/chat_protocol.h"
#include "ai/chat_stream.h"
#include "ai/code_fence.h"
#include "ai/model_list.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

// Bytes that come in two portions mean the same as all at once.
void CheckStream(std::string_view body, std::size_t cut) {
    ChatStream whole;
    std::string text = ChatStreamAdd(whole, body);
    text += ChatStreamFinish(whole);
    ChatStream split;
    std::string pieces = ChatStreamAdd(split, body.substr(0, cut));
    pieces += ChatStreamAdd(split, body.substr(cut));
    pieces += ChatStreamFinish(split);
    Require(text == whole.text && pieces == split.text && text == pieces);
    Require(whole.error == split.error && ChatStreamEnd(whole) == ChatStreamEnd(split));
}

// A reply that comes in two pieces ends up as long as it does at once; all its bytes are shown, the code as code.
void CheckShown(const std::string& reply, std::size_t cut) {
    ChatLog log;
    ChatLogAdd(log, "x", false).length = 1;
    ChatLogAdd(log, reply.substr(0, cut), true, 1);
    const auto show = [&log] {
        const ChatUpdate update = ChatUpdateOf(log.entries[1]);
        std::string all = log.entries[1].text.substr(0, log.entries[1].settled.at);
        std::size_t length = update.lineBreak ? 1 : 0;
        for (const ChatRun& run : update.runs) {
            all += run.text;
            length += ChatShownLength(run.text);
        }
        Require(all == ChatShownPart(log.entries[1].text, log.entries[1].request != 0));
        ChatUpdateShown(log, 1, update, static_cast<long>(length));
    };
    show();
    ChatEntryGrow(log.entries[1], std::string_view(reply).substr(cut));
    show();
    log.entries[1].request = 0;
    show();
    Require(log.entries[1].length == log.entries[1].settledLength || reply.empty());
    for (long at = 0; at < log.entries[1].length; at += 7) ChatCodeAt(log, at);
    for (auto fence = NextCodeFence(reply); fence; fence = NextCodeFence(reply, fence->next))
        Require(fence->open < fence->start && fence->start <= fence->end && fence->end <= fence->next);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string body(reinterpret_cast<const char*>(data), size);
    std::free(ChatReplyText(body.c_str()));
    ChatErrorText(body.c_str());
    for (const bool filter : {false, true}) {
        AiModelList list;
        const int read = ModelListRead(body.c_str(), filter, &list);
        Require(read != 0 || (list.names == nullptr && list.count == 0));
        for (int i = 1; i < list.count; ++i) Require(std::strcmp(list.names[i - 1], list.names[i]) <= 0);
        AiApiFreeModelList(&list);
    }
    if (char* code = AiApiExtractCode(body.c_str()); code != nullptr) {
        Require(std::strstr(body.c_str(), code) != nullptr);
        std::free(code);
    }
    const std::size_t cut = size == 0 ? 0 : data[0] % size;
    CheckStream(body, cut);
    CheckShown(body, cut);
    // Whatever is asked stands inside the request.
    const std::string asked = ChatRequestJson("m", "", body.c_str());
    Require(asked.ends_with("],\"max_tokens\":2048,\"temperature\":0.7}"));
    return 0;
}
