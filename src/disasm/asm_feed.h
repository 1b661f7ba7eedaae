// Produces the text of the ASM pane on a worker thread, because reading a listing and rendering code take time that
// grows with the files. The worker has its own copy of the request and shares the record AsmFeed with the pane. Only
// the end of the program waits for it.
#pragma once

#include "disasm/asm_request.h"

#include <deque>
#include <memory>
#include <string>
#include <string_view>

struct AsmFeed;
using AsmFeedPtr = std::shared_ptr<AsmFeed>;

// Adds the text after the listing's, by AsmFeedPut and its neighbours. `listing` is null when there is none.
using AsmRenderer = void (*)(AsmFeed& feed, const AsmRequest& request, const std::string* listing);

// --- UI thread
// Starts a worker that calls the renderer. Returns null when it could not be started.
AsmFeedPtr AsmFeedStart(AsmRequest request, AsmRenderer renderer);
// Takes the pieces that came since the last call. Returns false when there were none and none will come.
bool AsmFeedTake(AsmFeed& feed, std::deque<std::wstring>* pieces);
// The line that AsmFeedMarkPlace marked, counted from 0 over all pieces, or -1.
int AsmFeedPlace(const AsmFeed& feed);
void AsmFeedCancel(AsmFeed& feed);  // asks the worker to end; no more pieces come
// Cancels the feed and waits for the worker, at most `milliseconds`.
void AsmFeedEnd(AsmFeed& feed, unsigned milliseconds);

// --- The worker's thread
void AsmFeedBeginPart(AsmFeed& feed, std::string_view heading);
// Adds UTF-8 text: whole lines, or the end of a part. Text beyond the part's limits is left out (disasm/asm_text.h).
// Returns false when no more text is wanted.
bool AsmFeedPut(AsmFeed& feed, std::string_view text);
bool AsmFeedIsCancelled(const AsmFeed& feed);
// Marks the next text as the code of the caret's line.
void AsmFeedMarkPlace(AsmFeed& feed);
