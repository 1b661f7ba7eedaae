#include "ai/chat_protocol.h"

#include "base/heap_text.h"
#include "settings/secret_text.h"

#include <cJSON.h>

#include <charconv>
#include <cstring>
#include <memory>
#include <optional>

namespace {

constexpr std::size_t kHeaderCapacity = 1024;  // wide characters, terminator included
constexpr double kMaxTokens = 2048;
constexpr double kTemperature = 0.7;

struct JsonDeleter {
    void operator()(cJSON* item) const { cJSON_Delete(item); }
};
using Json = std::unique_ptr<cJSON, JsonDeleter>;

struct JsonTextDeleter {
    void operator()(char* text) const { cJSON_free(text); }
};

bool HasText(const char* text) { return text != nullptr && text[0] != '\0'; }

bool AddChatMessage(cJSON* messages, const char* role, const char* content) {
    Json message(cJSON_CreateObject());
    if (message == nullptr || cJSON_AddStringToObject(message.get(), "role", role) == nullptr ||
        cJSON_AddStringToObject(message.get(), "content", content) == nullptr)
        return false;
    return cJSON_AddItemToArray(messages, message.release()) != 0;
}

bool AddTurns(cJSON* messages, std::span<const ChatTurn> turns) {
    for (const ChatTurn& turn : turns)
        if (!AddChatMessage(messages, "user", turn.question.c_str()) ||
            !AddChatMessage(messages, "assistant", turn.answer.c_str()))
            return false;
    return true;
}

bool FillChatRequest(cJSON* request, const char* model, const char* systemPrompt, std::span<const ChatTurn> earlier,
                     const char* message, bool stream) {
    if (cJSON_AddStringToObject(request, "model", model != nullptr ? model : kDefaultChatModel) == nullptr)
        return false;
    cJSON* messages = cJSON_AddArrayToObject(request, "messages");
    if (messages == nullptr) return false;
    if (HasText(systemPrompt) && !AddChatMessage(messages, "system", systemPrompt)) return false;
    return AddTurns(messages, earlier) && AddChatMessage(messages, "user", message) &&
           cJSON_AddNumberToObject(request, "max_tokens", kMaxTokens) != nullptr &&
           cJSON_AddNumberToObject(request, "temperature", kTemperature) != nullptr &&
           (!stream || cJSON_AddTrueToObject(request, "stream") != nullptr);
}

// The code unit of the "\\uXXXX" at `at`; nothing when there is none.
std::optional<unsigned> EscapedUnit(std::string_view json, std::size_t at) {
    unsigned unit = 0;
    if (at + 6 > json.size() || json[at] != '\\' || json[at + 1] != 'u') return std::nullopt;
    const char* const end = json.data() + at + 6;
    return std::from_chars(json.data() + at + 2, end, unit, 16).ptr == end ? std::optional{unit} : std::nullopt;
}

// Halves of surrogate pairs become U+FFFD: a server cuts a reply into pieces between the two, and cJSON takes no half.
std::string WithoutHalfPairs(std::string_view json) {
    std::string out;
    const auto isHalf = [](std::optional<unsigned> unit, unsigned first) {
        return unit && *unit >= first && *unit < first + 0x400;
    };
    for (std::size_t at = 0; at < json.size();) {
        const std::optional<unsigned> unit = EscapedUnit(json, at);
        const bool pair = isHalf(unit, 0xD800) && isHalf(EscapedUnit(json, at + 6), 0xDC00);
        const std::size_t length = pair ? 12 : unit ? 6 : json[at] == '\\' ? 2 : 1;
        const bool half = !pair && (isHalf(unit, 0xD800) || isHalf(unit, 0xDC00));
        out.append(half ? std::string_view{"\\ufffd"} : json.substr(at, length));
        at += length;
    }
    return out;
}

// Null when the text is missing or no JSON.
Json ParseReply(const char* text) {
    if (text == nullptr) return nullptr;
    Json root(cJSON_Parse(text));
    if (root == nullptr && std::strstr(text, "\\u") != nullptr) root.reset(cJSON_Parse(WithoutHalfPairs(text).c_str()));
    return root;
}

const char* StringOf(const cJSON* item) { return cJSON_IsString(item) != 0 ? item->valuestring : nullptr; }

std::string ErrorTextOf(const cJSON* root) {
    const cJSON* error = cJSON_GetObjectItemCaseSensitive(root, "error");
    const char* text = StringOf(error);
    if (text == nullptr) text = StringOf(cJSON_GetObjectItemCaseSensitive(error, "message"));
    return text != nullptr ? text : "";
}

std::wstring CutHeaders(std::wstring headers) {
    if (headers.size() >= kHeaderCapacity) headers.resize(kHeaderCapacity - 1);
    return headers;
}

std::wstring AuthorizationLine(const wchar_t* apiKey) {
    if (apiKey == nullptr || apiKey[0] == L'\0' || IsSecretText(apiKey)) return {};  // protected text is no key
    return std::wstring(L"Authorization: Bearer ").append(apiKey).append(L"\r\n");
}

}  // namespace

std::string ChatRequestJson(const char* model, const char* systemPrompt, const char* message) {
    return ChatRequestJson(model, systemPrompt, {}, message, false);
}

std::string ChatRequestJson(const char* model, const char* systemPrompt, std::span<const ChatTurn> earlier,
                            const char* message, bool stream) {
    const Json request(cJSON_CreateObject());
    if (request == nullptr || !FillChatRequest(request.get(), model, systemPrompt, earlier, message, stream)) return {};
    const std::unique_ptr<char, JsonTextDeleter> text(cJSON_PrintUnformatted(request.get()));
    return text != nullptr ? std::string(text.get()) : std::string();
}

std::span<const ChatTurn> NewestTurns(std::span<const ChatTurn> turns, std::size_t bytes) {
    std::size_t count = 0;
    for (std::size_t used = 0; count < turns.size(); ++count) {
        const ChatTurn& turn = turns[turns.size() - 1 - count];
        used += turn.question.size() + turn.answer.size();
        if (used > bytes) break;
    }
    return turns.last(count);
}

char* ChatReplyText(const char* body) {
    const Json root(ParseReply(body));
    const cJSON* choices = cJSON_GetObjectItemCaseSensitive(root.get(), "choices");
    if (cJSON_IsArray(choices) == 0) return nullptr;
    const cJSON* message = cJSON_GetObjectItemCaseSensitive(cJSON_GetArrayItem(choices, 0), "message");
    const char* content = StringOf(cJSON_GetObjectItemCaseSensitive(message, "content"));
    return content != nullptr ? HeapText(content) : nullptr;
}

std::string ChatErrorText(const char* body) {
    const Json root(ParseReply(body));
    return ErrorTextOf(root.get());
}

ChatDelta ChatDeltaOf(const char* event) {
    const Json root(ParseReply(event));
    const cJSON* choices = cJSON_GetObjectItemCaseSensitive(root.get(), "choices");
    const cJSON* choice = cJSON_IsArray(choices) != 0 ? cJSON_GetArrayItem(choices, 0) : nullptr;
    const cJSON* delta = cJSON_GetObjectItemCaseSensitive(choice, "delta");
    const char* text = StringOf(cJSON_GetObjectItemCaseSensitive(delta, "content"));
    const char* finish = StringOf(cJSON_GetObjectItemCaseSensitive(choice, "finish_reason"));
    return {.text = text != nullptr ? text : "",
            .error = ErrorTextOf(root.get()),
            .ends = finish != nullptr,
            .atLimit = finish != nullptr && std::string_view(finish) == "length"};
}

std::string SpokenText(const char* body) {
    const Json root(ParseReply(body));
    const char* text = StringOf(cJSON_GetObjectItemCaseSensitive(root.get(), "text"));
    return text != nullptr ? text : "";
}

std::wstring ChatHeaders(const wchar_t* apiKey) {
    return CutHeaders(L"Content-Type: application/json\r\n" + AuthorizationLine(apiKey));
}

std::wstring ModelListHeaders(const wchar_t* apiKey) { return CutHeaders(AuthorizationLine(apiKey)); }
