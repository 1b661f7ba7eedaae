// What the ASM pane shows, made on a thread of its own: reading a listing and rendering code take time that grows with
// the files. The thread works on copies and a record that it shares with the pane; nobody waits for it.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>

// What was built, and where the user stands.
struct AsmRequest {
    std::wstring source;
    std::wstring staged;  // the copy of it that the compiler saw, empty when that is unknown
    std::wstring listing;
    std::wstring program;    // empty: unknown
    std::wstring caretFile;  // of the active editor
    int caretLine = 0;       // from 1; 0: none
};

struct AsmFeed;
using AsmFeedPtr = std::shared_ptr<AsmFeed>;

// What follows the listing's text, put by the functions below. `listing` is null when there is none.
using AsmRenderer = void (*)(AsmFeed& feed, const AsmRequest& request, const std::string* listing);

// --- UI thread
// The feed of a new thread that calls the renderer, or null when none could be started.
AsmFeedPtr AsmFeedStart(AsmRequest request, AsmRenderer renderer);
// What came since the last call, in its order. False: nothing, and nothing more will.
bool AsmFeedTake(AsmFeed& feed, std::deque<std::wstring>* pieces);
// The line of all pieces together, from 0, that AsmFeedMarkPlace marked, or -1.
int AsmFeedPlace(const AsmFeed& feed);
void AsmFeedCancel(AsmFeed& feed);  // its thread ends soon, and nothing comes any more
// Cancels, and waits for the thread, at most so many milliseconds.
void AsmFeedEnd(AsmFeed& feed, unsigned milliseconds);

// --- The feed's own thread
// A part has room for so many lines. What it has no room for is left out, and a line of the part's text says so.
inline constexpr std::size_t kAsmPartLines = 8000;
inline constexpr std::size_t kAsmPartBytes = std::size_t{4} << 20;
void AsmFeedBeginPart(AsmFeed& feed, std::string_view heading);
// Adds UTF-8 text: whole lines, or the end of the part. False: no more is wanted.
bool AsmFeedPut(AsmFeed& feed, std::string_view text);
bool AsmFeedIsCancelled(const AsmFeed& feed);
// What is put next belongs to the line where the user stands.
void AsmFeedMarkPlace(AsmFeed& feed);
