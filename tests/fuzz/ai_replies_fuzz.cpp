// Any bytes as a reply of a chat service, as a model list and as a text with code.
#include "ai/ai_texts.h"
#include "ai/chat_protocol.h"
#include "ai/model_list.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
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
    // Whatever is asked stands inside the request.
    const std::string asked = ChatRequestJson("m", "", body.c_str());
    Require(asked.ends_with("],\"max_tokens\":2048,\"temperature\":0.7}"));
    return 0;
}
