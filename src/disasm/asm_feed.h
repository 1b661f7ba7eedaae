// What the ASM pane shows, made by a worker: reading a listing and rendering code take time that grows with the files. The
// worker has its own copy of the request and shares a record with the pane. Nobody waits for it but the program's end.
#pragma once

#include "disasm/asm_request.h"

#include <deque>
#include <memory>
#include <string>
#include <string_view>

struct AsmFeed;
using AsmFeedPtr = std::shared_ptr<AsmFeed>;

// What follows the listing's text, put by the functions below. `listing` is null when there is none.
using AsmRenderer = void (*)(AsmFeed& feed, const AsmRequest& request, const std::string* listing);

// --- UI thread
// The feed of a new worker that calls the renderer, or null when none could be started.
AsmFeedPtr AsmFeedStart(AsmRequest request, AsmRenderer renderer);
// What came since the last call, in its order. False: nothing, and nothing more will.
bool AsmFeedTake(AsmFeed& feed, std::deque<std::wstring>* pieces);
// The line of all pieces together, from 0, that AsmFeedMarkPlace marked, or -1.
int AsmFeedPlace(const AsmFeed& feed);
void AsmFeedCancel(AsmFeed& feed);  // its worker ends soon, and nothing comes any more
// Cancels, and waits for the worker, at most so many milliseconds.
void AsmFeedEnd(AsmFeed& feed, unsigned milliseconds);

// --- The worker's thread
void AsmFeedBeginPart(AsmFeed& feed, std::string_view heading);
// Adds UTF-8 text: whole lines, or the end of the part, as far as the part has room (disasm/asm_text.h). False: no more is
// wanted.
bool AsmFeedPut(AsmFeed& feed, std::string_view text);
bool AsmFeedIsCancelled(const AsmFeed& feed);
// What is put next belongs to the line where the user stands.
void AsmFeedMarkPlace(AsmFeed& feed);
