#include "disasm/asm_feed.h"

#include "base/handles.h"
#include "files/file_io.h"
#include "files/shared_read.h"
#include "output/output_queue.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <new>

struct AsmFeed {
    AsmRequest request;
    AsmRenderer renderer = nullptr;
    UniqueHandle thread;
    std::atomic<bool> cancelled = false;
    std::atomic<int> place = -1;

    std::mutex mutex;  // over the two that both sides touch
    std::deque<std::wstring> pieces;
    bool done = false;

    // Of the thread alone: lines delivered, and what the current part has got so far.
    int delivered = 0;
    std::size_t lines = 0;
    std::size_t bytes = 0;
    bool full = false;
};

namespace {

constexpr std::size_t kMostListing = std::size_t{256} << 20;
constexpr std::size_t kPieceBytes = 64 * 1024;

// Bytes of the first line of `text`, its line end included; a line too long for the pane is cut between characters.
std::size_t FirstLine(std::string_view text) {
    std::size_t end = text.find_first_of("\r\n");
    if (end == std::string_view::npos) end = text.size();
    if (end > kMaxOutputLine) {
        end = kMaxOutputLine;
        while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80 && end > kMaxOutputLine - 4) --end;
        return end;
    }
    return std::min(text.size(), end + (text.substr(end).starts_with("\r\n") ? 2 : 1));
}

void Deliver(AsmFeed& feed, std::string_view text) {
    if (text.empty()) return;
    std::wstring wide = Utf8ToWideText(text);
    for (; !text.empty(); text.remove_prefix(FirstLine(text))) ++feed.delivered;
    const std::lock_guard lock(feed.mutex);
    feed.pieces.push_back(std::move(wide));
}

void PutListing(AsmFeed& feed, std::string_view listing) {
    AsmFeedBeginPart(feed, "");
    while (!listing.empty()) {
        std::size_t size = std::min(listing.size(), kPieceBytes);
        if (size < listing.size()) {
            const std::size_t end = listing.find_last_of('\n', size);
            size = end == std::string_view::npos ? listing.size() : end + 1;
        }
        if (!AsmFeedPut(feed, listing.substr(0, size))) return;
        listing.remove_prefix(size);
    }
}

void Fill(AsmFeed& feed) {
    std::string listing;
    const bool found = ReadSharedFile(feed.request.listing, kMostListing, &listing);
    if (found)
        PutListing(feed, listing);
    else
        Deliver(feed,
                "(No compiler ASMOUT file was found. Enable ASM output and use /ASMOUT:{asm} for "
                "KeldorBasic/KVXA32.)\r\n");
    feed.renderer(feed, feed.request, found ? &listing : nullptr);
}

DWORD WINAPI FeedThread(void* parameter) {
    const std::unique_ptr<AsmFeedPtr> owned(static_cast<AsmFeedPtr*>(parameter));
    AsmFeed& feed = **owned;
    try {
        Fill(feed);
    } catch (const std::bad_alloc&) {
        Deliver(feed, "(Not enough memory.)\r\n");  // what was there is free again
    }
    const std::lock_guard lock(feed.mutex);
    feed.done = true;
    return 0;
}

}  // namespace

AsmFeedPtr AsmFeedStart(AsmRequest request, AsmRenderer renderer) {
    auto feed = std::make_shared<AsmFeed>();
    feed->request = std::move(request);
    feed->renderer = renderer;
    auto parameter = std::make_unique<AsmFeedPtr>(feed);
    feed->thread.Reset(CreateThread(nullptr, 0, FeedThread, parameter.get(), 0, nullptr));
    if (!feed->thread) return nullptr;
    static_cast<void>(parameter.release());  // now the thread's
    SetThreadPriority(feed->thread.Get(), THREAD_PRIORITY_BELOW_NORMAL);
    return feed;
}

bool AsmFeedTake(AsmFeed& feed, std::deque<std::wstring>* pieces) {
    const std::lock_guard lock(feed.mutex);
    pieces->clear();
    pieces->swap(feed.pieces);
    return !pieces->empty() || !feed.done;
}

void AsmFeedCancel(AsmFeed& feed) { feed.cancelled = true; }

void AsmFeedEnd(AsmFeed& feed, unsigned milliseconds) {
    AsmFeedCancel(feed);
    WaitForSingleObject(feed.thread.Get(), milliseconds);
}

int AsmFeedPlace(const AsmFeed& feed) { return feed.place; }
void AsmFeedMarkPlace(AsmFeed& feed) { feed.place = feed.delivered; }

bool AsmFeedIsCancelled(const AsmFeed& feed) { return feed.cancelled; }

void AsmFeedBeginPart(AsmFeed& feed, std::string_view heading) {
    feed.lines = 0;
    feed.bytes = 0;
    feed.full = false;
    Deliver(feed, heading);
}

bool AsmFeedPut(AsmFeed& feed, std::string_view text) {
    if (feed.full || feed.cancelled) return false;
    std::string fitting;
    while (!text.empty() && !feed.full) {
        const std::size_t size = FirstLine(text);
        const bool cut = text[size - 1] != '\n' && text[size - 1] != '\r' && size < text.size();
        feed.full = feed.lines >= kAsmPartLines || feed.bytes + size > kAsmPartBytes;
        if (feed.full) {
            fitting += "... the rest is left out here ...\r\n";
            break;
        }
        fitting.append(text.substr(0, size)).append(cut ? "\r\n" : "");
        ++feed.lines;
        feed.bytes += size;
        text.remove_prefix(size);
    }
    Deliver(feed, fitting);
    return !feed.full;
}
