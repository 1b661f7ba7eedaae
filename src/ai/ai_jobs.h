// The requests of the assistant and the workers that carry them out. A worker owns its job. It posts MSG_AI_REPLY and
// then MSG_AI_ENDED to the window; a cancelled one posts only the latter.
#pragma once

#include "ai/ai_rules.h"
#include "ai/chat_protocol.h"
#include "ai/prompt_settings.h"
#include "base/events.h"
#include "base/handles.h"
#include "base/worker.h"
#include "base/worker_queue.h"

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// Pieces of a streamed reply on their way to the chat.
struct AiPieces {
    WorkerQueue<std::string> queue;
    std::atomic<bool> told = false;  // MSG_AI_PIECES was posted and the queue not emptied since
};

// What a job and the list of running requests share.
struct AiLink {
    HWND window = nullptr;                                 // gets the messages
    int request = 0;                                       // number of the request
    std::shared_ptr<std::atomic<std::uint64_t>> received;  // bytes of the reply so far
    std::shared_ptr<AiPieces> pieces;                      // null: the reply is shown when it is whole
    std::string question;                                  // that the chat remembers with its answer; empty: none
};

// The block of MSG_AI_ENDED.
struct AiRequestEnd {
    int request = 0;
    AiEnd end;
    std::string reply;  // empty unless it was answered with a whole reply
};
using AiRequestEndPtr = std::unique_ptr<AiRequestEnd>;

struct AiChatJob {
    wchar_t url[1024] = {};
    wchar_t apiKey[256] = {};  // empty: none
    wchar_t model[64] = {};    // not consulted: the model is that of `settings`
    HeapBlock<char> message;   // UTF-8
    std::uint32_t cloud = 0;   // 1: OpenAI, 0: LM Studio
    AiPromptSettings settings;
    std::vector<ChatTurn> earlier;  // what was said before, sent with the message
    AiLink link;
};

struct AiDoJob {
    wchar_t url[1024] = {};
    wchar_t apiKey[256] = {};
    HeapBlock<char> message;                // UTF-8, as the next one
    HeapBlock<char> systemPrompt;           // may be null
    HWND editor = nullptr;                  // the editor that the request was made from; only the UI thread may use it
    DocumentId tabId = 0;                   // its document
    std::int64_t selStart = 0, selEnd = 0;  // byte positions
    std::uint32_t hadSelection = 0;         // 1: they differ
    AiLink link;
};

void AiWorkerThread(AiChatJob& job, const WorkerCancel& cancel);
void AiDoWorkerThread(AiDoJob& job, const WorkerCancel& cancel);
