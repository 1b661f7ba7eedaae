#include "disasm/asm_feed.h"

#include "base/worker.h"
#include "base/worker_queue.h"
#include "disasm/asm_writer.h"
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

    AsmWriter writer;  // used by the worker's thread only
};

namespace {

constexpr std::size_t kMostListing = std::size_t{256} << 20;
void PutAllParts(AsmFeed& feed) {
    std::string listing;
    const bool found = ReadSharedFile(feed.request.listing, kMostListing, &listing);
    const std::string_view text = listing;
    AsmWriteListing(feed.writer, found ? &text : nullptr);
    feed.renderer(feed, feed.request, found ? &listing : nullptr);
}

void MakeAsmText(AsmFeedPtr& shared, const WorkerCancel& cancel) {
    AsmFeed& feed = *shared;
    feed.writer.cancelled = [&cancel] { return cancel.Asked(); };
    feed.writer.deliver = [&feed](std::string_view text) { feed.pieces.Put(Utf8ToWideText(text)); };
    try {
        PutAllParts(feed);
    } catch (const std::bad_alloc&) {
        AsmWrite(feed.writer, "(Not enough memory.)\r\n");  // the memory in use before is free again
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
void AsmFeedMarkPlace(AsmFeed& feed) { feed.place = feed.writer.lines; }

bool AsmFeedIsCancelled(const AsmFeed& feed) { return feed.writer.cancelled(); }

void AsmFeedBeginPart(AsmFeed& feed, std::string_view heading) { AsmWriteHeading(feed.writer, heading); }

bool AsmFeedPut(AsmFeed& feed, std::string_view text) { return AsmWritePart(feed.writer, text); }
