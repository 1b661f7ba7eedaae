// The JSON of chat requests and of what a service answers, in the form that OpenAI and LM Studio share. Texts are UTF-8.
// Pure; any thread.
#pragma once

#include <span>
#include <string>
#include <string_view>

// A question of the chat and its answer.
struct ChatTurn {
    std::string question, answer;
};

// The body of a chat request. A null model means kDefaultChatModel; a null or empty system prompt leaves that message
// out. Empty when memory runs out.
std::string ChatRequestJson(const char* model, const char* systemPrompt, const char* message);
inline constexpr char kDefaultChatModel[] = "gpt-4o-mini";
// The same with what was said before, oldest first, between the system prompt and the message. `stream`: the service is
// asked to send the reply as it comes.
std::string ChatRequestJson(const char* model, const char* systemPrompt, std::span<const ChatTurn> earlier,
                            const char* message, bool stream);
// The newest of the turns whose texts have at most so many bytes together.
std::span<const ChatTurn> NewestTurns(std::span<const ChatTurn> turns, std::size_t bytes);

// The text of the first choice: a new block that the caller frees with free(). Null when the body has none.
char* ChatReplyText(const char* body);
// What the service says of an error: "error.message", or "error" when that is a text. Empty when the body has neither.
std::string ChatErrorText(const char* body);
// An event of a streamed reply.
struct ChatDelta {
    std::string text;      // to be added to the reply
    std::string error;     // what the service says of an error
    bool ends = false;     // no text will follow
    bool atLimit = false;  // the reply ends because it has reached its longest length
};
ChatDelta ChatDeltaOf(const char* event);

// "text" of a transcription; empty when the body has none.
std::string SpokenText(const char* body);

// Header blocks, cut to 1,023 characters. A null or empty key leaves its line out; the header block of a model list is
// empty then.
std::wstring ChatHeaders(const wchar_t* apiKey);
std::wstring ModelListHeaders(const wchar_t* apiKey);
