// Asks the user before a document goes to a server for the first time in a run. UI thread only.
#pragma once

#include "ai/ai_state.h"

#include <cstddef>

// True when the text may be sent to the server of the URL: it is small, or the user has agreed to that server in this
// run or agrees now. `message` is the length in bytes of all that is sent.
bool SendIsAllowed(const wchar_t* url, const AiTarget& target, std::size_t message);
