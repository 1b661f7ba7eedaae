#include "disasm/asm_feed.h"

#include "base/worker.h"
#include "base/worker_queue.h"
#include "disasm/asm_text.h"
#include "files/file_io.h"

#include <atomic>
#include <new>
#include <utility>

struct AsmFeed {
    AsmRequest request;
    AsmRenderer renderer = nullptr;
    Worker worker;
    WorkerQueue<std::wstring> pieces;
    std::atomic<int> place = -1;

    // Used by the worker's thread only: its request to end, the number of lines delivered, and the current part.
    const WorkerCancel* cancel = nullptr;
    int delivered = 0;
    AsmPart part;
};

namespace {

constexpr std::size_t kMostListing = std::size_t{256} << 20;
constexpr std::size_t kPieceBytes = 64 * 1024;

void DeliverText(AsmFeed& feed, std::string_view text) {
    if (text.empty()) return;
    feed.delivered += AsmLinesIn(text);
    feed.pieces.Put(Utf8ToWideText(text));
}

void PutListingText(AsmFeed& feed, std::string_view listing) {
    AsmFeedBeginPart(feed, "");
    while (!listing.empty())
        if (!AsmFeedPut(feed, AsmTakePiece(&listing, kPieceBytes))) return;
}

void PutAllParts(AsmFeed& feed) {
    std::string listing;
    const bool found = ReadSharedFile(feed.request.listing, kMostListing, &listing);
    if (found)
        PutListingText(feed, listing);
    else
        DeliverText(feed,
                    "(No compiler ASMOUT file was found. Enable ASM output and use /ASMOUT:{asm} for "
                    "KeldorBasic/KVXA32.)\r\n");
    feed.renderer(feed, feed.request, found ? &listing : nullptr);
}

void MakeAsmText(AsmFeedPtr& shared, const WorkerCancel& cancel) {
    AsmFeed& feed = *shared;
    feed.cancel = &cancel;
    try {
        PutAllParts(feed);
    } catch (const std::bad_alloc&) {
        DeliverText(feed, "(Not enough memory.)\r\n");  // the memory in use before is free again
    }
    feed.pieces.Finish();
}

}  // namespace

AsmFeedPtr AsmFeedStart(AsmRequest request, AsmRenderer renderer) {
    auto feed = std::make_shared<AsmFeed>();
    feed->request = std::move(request);
    feed->renderer = renderer;
    feed->worker = WorkerStart<MakeAsmText>(feed);
    if (!feed->worker) return nullptr;
    WorkerLowerPriority(feed->worker);
    return feed;
}

bool AsmFeedTake(AsmFeed& feed, std::deque<std::wstring>* pieces) { return feed.pieces.TakeAll(pieces); }

void AsmFeedCancel(AsmFeed& feed) {
    WorkerAskToEnd(feed.worker);
    feed.pieces.Close();
}

void AsmFeedEnd(AsmFeed& feed, unsigned milliseconds) {
    AsmFeedCancel(feed);
    WorkerWait(feed.worker, milliseconds);
}

int AsmFeedPlace(const AsmFeed& feed) { return feed.place; }
void AsmFeedMarkPlace(AsmFeed& feed) { feed.place = feed.delivered; }

bool AsmFeedIsCancelled(const AsmFeed& feed) { return feed.cancel->Asked(); }

void AsmFeedBeginPart(AsmFeed& feed, std::string_view heading) {
    feed.part = {};
    DeliverText(feed, heading);
}

bool AsmFeedPut(AsmFeed& feed, std::string_view text) {
    if (feed.part.full || AsmFeedIsCancelled(feed)) return false;
    DeliverText(feed, AsmPartTake(feed.part, text));
    return !feed.part.full;
}
