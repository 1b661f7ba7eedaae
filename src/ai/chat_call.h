// A chat request whose reply may come piece by piece. Blocks, see http.h; any thread.
#pragma once

#include "ai/chat_stream.h"
#include "ai/http.h"

#include <functional>
#include <string>
#include <string_view>

// Posts the body `request` and returns 1 when a reply text was obtained, else 0; `reply` gets it as a new block that the
// caller frees with free(). A service that streams its reply has `onText` called with each piece; what has come until a
// failure is a reply as well, and `end` tells that. A service that does not stream answers as to AiApiChat.
int AiApiChatStreamed(const wchar_t* url, const wchar_t* apiKey, const std::string& request,
                      const std::function<void(std::string_view)>& onText, char** reply, HttpExtras* extras,
                      std::string* serviceText, ReplyEnd* end);
