// The requests of the assistant and the workers that carry them out. A worker owns its job. It posts MSG_AI_REPLY and
// then MSG_AI_ENDED to the window; a cancelled one posts only the latter.
#pragma once

#include "ai/ai_rules.h"
#include "ai/prompt_settings.h"
#include "base/events.h"
#include "base/handles.h"
#include "base/worker.h"

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

// What a job and the list of running requests share.
struct AiLink {
    HWND window = nullptr;                                 // gets the messages
    int request = 0;                                       // number of the request
    std::shared_ptr<std::atomic<std::uint64_t>> received;  // bytes of the reply so far
};

// The block of MSG_AI_ENDED.
struct AiRequestEnd {
    int request = 0;
    AiEnd end;
    std::string reply;  // empty unless it was answered
};
using AiRequestEndPtr = std::unique_ptr<AiRequestEnd>;

struct AiChatJob {
    wchar_t url[1024] = {};
    wchar_t apiKey[256] = {};  // empty: none
    wchar_t model[64] = {};    // not consulted: the model is that of `settings`
    HeapBlock<char> message;   // UTF-8
    std::uint32_t cloud = 0;   // 1: OpenAI, 0: LM Studio
    AiPromptSettings settings;
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
