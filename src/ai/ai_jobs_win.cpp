#include "ai/ai_jobs.h"

#include "ai/ai_api.h"
#include "ai/ai_texts.h"
#include "base/utf8.h"
#include "resources/ids.h"

namespace {

constexpr char kAiDoModel[] = "gpt-4o-mini";  // whichever service was chosen, by design

const wchar_t* KeyOrNull(const wchar_t* key) { return key[0] != L'\0' ? key : nullptr; }

struct AiCall {
    HttpExtras extras;
    std::string serviceText;
    HeapBlock<char> reply;
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
                .serviceText = WithoutKey(call.serviceText, ToUtf8(key))};
    if (end->end.outcome != AiOutcome::Cancelled) {
        if (call.reply != nullptr) end->reply = call.reply.get();
        WorkerPost(link.window, MSG_AI_REPLY, std::move(call.reply), status);
    }
    WorkerPost(link.window, MSG_AI_ENDED, std::move(end));
}

AiCall CallFor(const AiLink& link, const WorkerCancel& cancel) {
    return {.extras = {.cancel = &cancel, .received = link.received.get()}};
}

}  // namespace

void AiWorkerThread(AiChatJob& job, const WorkerCancel& cancel) {
    AiCall call = CallFor(job.link, cancel);
    char* reply = nullptr;
    const auto chat = job.cloud != 0 ? AiApiChatCode : AiApiChatLocal;
    const int done =
        chat(job.url, KeyOrNull(job.apiKey), job.message.get(), &reply, job.settings, &call.extras, &call.serviceText);
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
