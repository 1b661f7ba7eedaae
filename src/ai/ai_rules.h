// What the assistant's commands decide: which service a request goes to, what is missing, what a reply message means,
// and what the user is told about a request that has ended. Pure.
#pragma once

#include "ai/chat_stream.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

struct Settings;

enum class AiService : std::uint8_t { None, OpenAi, LmStudio };
const wchar_t* AiServiceName(AiService service);  // "OpenAI", "LM-Studio"

// The message that keeps a selection from being sent to the service; null when it can be. The texts for the two
// services differ on purpose.
const wchar_t* AskProblem(AiService service, const Settings& settings, bool hasSelection);
// The service for a message typed into the chat; None when no service is ready.
AiService SendService(const Settings& settings);
// The message that keeps an AI Do request from being started; null when it can be.
const wchar_t* AiDoProblem(const Settings& settings);
AiService AiDoService(const Settings& settings);

// What a reply message means. Only the low 32 bits of its status tell a result of AI Do from a reply of the chat. The
// workers use the statuses in another way than the names suggest, on purpose: a reply to AI Do comes with 0 and is shown
// in the chat, and a failed chat request comes with -1 and is reported as an AI Do request without a response.
enum class AiReplyPath : std::uint8_t { Result, Chat, Failure, Nothing };
AiReplyPath AiReplyPathOf(std::int64_t status, bool hasReply);
inline constexpr std::int32_t kAiStatusOk = 0;
inline constexpr std::int32_t kAiStatusFailed = -1;

enum class AiOutcome : std::uint8_t { Answered, Failed, Cancelled };
// How a request ended.
struct AiEnd {
    AiOutcome outcome = AiOutcome::Failed;
    std::uint32_t httpStatus = 0;         // 0: no reply came
    std::uint32_t error = 0;              // of WinHTTP, when no reply came
    ReplyEnd replyEnd = ReplyEnd::Whole;  // of a reply that came piece by piece
    bool blank = false;                   // nothing can be seen of the reply
    std::string serviceText;              // what the service said about its error
};
// A request that runs.
struct AiProgress {
    std::uint32_t seconds = 0;   // since it began
    std::uint64_t received = 0;  // bytes
    bool replying = false;       // text of the reply has come
    std::size_t others = 0;      // requests that run beside it
};
// For the status bar: "OpenAI: replying, 0:12, 34 KB received".
std::wstring AiProgressText(AiService service, const AiProgress& progress);
// For the status bar: "OpenAI answered after 0:12.", "LM-Studio: the request failed: nothing answers at ...".
std::wstring AiEndText(AiService service, std::uint32_t seconds, const AiEnd& end);
// The line of the chat in place of a reply that did not come, or below one that is not whole; empty below one that is.
std::wstring AiReplyEndLine(const AiEnd& end);
// What the last reply is to code that it could replace.
enum class AiReplyState : std::uint8_t { None, Whole, Cut, Missing };
// How a request has ended. `about`: code was sent that the reply could replace.
struct AiEnded {
    int request = 0;  // numbers go up
    bool about = false;
    AiOutcome outcome = AiOutcome::Failed;
    bool whole = false;
};
// What takes the place of the reply to the request `held`; None: that stays. A talk that began before it does not count.
AiReplyState AiReplyStateAfter(const AiEnded& ended, int held);
// Why nothing can be applied; null when `state` and `about` allow it.
const wchar_t* ApplyProblem(AiReplyState state, bool about);
// The text without the key, if that is in it.
std::string WithoutKey(std::string text, std::string_view key);
