#include "ai/ai_jobs.h"

#include "ai/ai_api.h"
#include "ai/ai_texts.h"
#include "ai/chat_call.h"
#include "base/utf8.h"
#include "resources/ids.h"

#include <cstring>

namespace {

constexpr char kAiDoModel[] = "gpt-4o-mini";  // whichever service was chosen, by design

const wchar_t* KeyOrNull(const wchar_t* key) { return key[0] != L'\0' ? key : nullptr; }

struct AiCall {
    HttpExtras extras;
    std::string serviceText;
    HeapBlock<char> reply;
    ReplyEnd replyEnd = ReplyEnd::Whole;
};

// Posts the reply with the status, and how the request ended. A reply that came although the user cancelled is dropped.
void PostReply(const AiLink& link, const wchar_t* key, AiCall& call, const WorkerCancel& cancel, LPARAM status) {
    auto end = std::make_unique<AiRequestEnd>();
    end->request = link.request;
    end->end = {.outcome = cancel.Asked()          ? AiOutcome::Cancelled
                           : call.reply != nullptr ? AiOutcome::Answered
                                                   : AiOutcome::Failed,
                .httpStatus = call.extras.status,
                .error = call.extras.error,
                .replyEnd = call.replyEnd,
                .blank = call.reply != nullptr && call.reply.get()[std::strspn(call.reply.get(), " \t\r\n")] == '\0',
                .serviceText = WithoutKey(call.serviceText, ToUtf8(key))};
    if (end->end.outcome != AiOutcome::Cancelled) {
        if (call.reply != nullptr && call.replyEnd == ReplyEnd::Whole) end->reply = call.reply.get();
        WorkerPost(link.window, MSG_AI_REPLY, std::move(call.reply), status);
    }
    WorkerPost(link.window, MSG_AI_ENDED, std::move(end));
}

AiCall CallFor(const AiLink& link, const WorkerCancel& cancel) {
    return {.extras = {.cancel = &cancel, .received = link.received.get()}};
}

// The window is told once until it has taken what is there.
void PutPiece(const AiLink& link, std::string_view text) {
    link.pieces->queue.Put(std::string(text));
    if (!link.pieces->told.exchange(true)) PostMessageW(link.window, MSG_AI_PIECES, 0, 0);
}

// A message of the chat that goes with what was said before, or whose reply is to come piece by piece.
int AskInTurns(const AiChatJob& job, AiCall& call, char** reply) {
    const std::wstring& model = job.cloud != 0 ? job.settings.codeModel : job.settings.localModel;
    const std::string request = ChatRequestJson(ToUtf8(model).c_str(), SystemPromptText(job.settings).c_str(),
                                                job.earlier, job.message.get(), job.link.pieces != nullptr);
    const auto onText = [&job](std::string_view text) {
        if (job.link.pieces != nullptr) PutPiece(job.link, text);
    };
    return AiApiChatStreamed(job.url, KeyOrNull(job.apiKey), request, onText, reply, &call.extras, &call.serviceText,
                             &call.replyEnd);
}

}  // namespace

void AiWorkerThread(AiChatJob& job, const WorkerCancel& cancel) {
    AiCall call = CallFor(job.link, cancel);
    char* reply = nullptr;
    const auto chat = job.cloud != 0 ? AiApiChatCode : AiApiChatLocal;
    const int done = job.link.pieces != nullptr || !job.earlier.empty()
                         ? AskInTurns(job, call, &reply)
                         : chat(job.url, KeyOrNull(job.apiKey), job.message.get(), &reply, job.settings, &call.extras,
                                &call.serviceText);
    call.reply.reset(reply);
    PostReply(job.link, job.apiKey, call, cancel, done != 0 ? kAiStatusOk : kAiStatusFailed);
}

void AiDoWorkerThread(AiDoJob& job, const WorkerCancel& cancel) {
    AiCall call = CallFor(job.link, cancel);
    char* reply = nullptr;
    AiApiChat(job.url, KeyOrNull(job.apiKey), kAiDoModel,
              job.systemPrompt != nullptr ? job.systemPrompt.get() : kAiDoPrompt, job.message.get(), &reply,
              &call.extras, &call.serviceText);
    call.reply.reset(reply);
    PostReply(job.link, job.apiKey, call, cancel, kAiStatusOk);  // whatever the outcome
}
