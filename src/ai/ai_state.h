// The assistant's windows and what it holds between a request and what the user does with the reply. UI thread only.
#pragma once

#include "ai/ai_rules.h"
#include "ai/replacement_marks.h"
#include "base/events.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>

// The text that a request was made of, so that a reply replaces nothing else.
struct AiTarget {
    DocumentId document = 0;  // 0: the request was made of no document
    std::size_t start = 0;    // byte positions of the selection, which follow edits elsewhere in the document
    std::size_t end = 0;
    std::string sent;      // the bytes from `start` to `end`, or all
    bool all = false;      // the whole document was sent; `start` and `end` are 0
    bool several = false;  // more than one selection was sent, so that no one range holds the text
    int firstLine = 0;     // of `sent`, from 1, when the request told the lines' numbers; else 0
};

// A replacement that waits to be accepted or undone.
struct AiReplacement {
    AiTarget target;
    ByteRange range;                    // where it stands, which follows edits
    std::string code;                   // what was put there
    std::size_t anchor = 0, caret = 0;  // of the selection before it
    std::intptr_t topRow = 0;           // of the view before it
    std::size_t whole = 0;              // bytes of the document before it; after it was undone: with it
};

// The reply that can be applied, or why there is none.
struct AiLastReply {
    AiReplyState state = AiReplyState::None;
    int request = 0;
    AiTarget target;   // of the request
    std::string text;  // empty unless the state is Whole
};

struct AiState {
    HWND hAiChat = nullptr;  // Rich Edit
    HWND hAiInput = nullptr;
    HWND hAiSend = nullptr;
    bool aiDoPending = false;  // a replacement waits
    AiReplacement aiReplacement;
    AiReplacement aiTakenBack;  // undone; redo may bring it back. Its document is 0 when there is none
    AiReplacement aiAccepted;   // the last one, as it was made; likewise
    AiTarget aiDoTarget;        // of the last AI Do request
    AiLastReply aiReply;
};
// A part of `g_app` (app/app_state.h).
extern AiState& g_ai;
