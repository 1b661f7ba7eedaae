#include "output/output_credits.h"

#include "base/handles.h"

static UniqueHandle g_credits;

bool OutputCreditsInit() {
    g_credits.Reset(CreateSemaphoreW(nullptr, kMaxPostedChunks, kMaxPostedChunks, nullptr));
    return static_cast<bool>(g_credits);
}

HANDLE OutputCreditsHandle() { return g_credits.Get(); }

void OutputCreditsReturn(int count) {
    // One by one, because a release beyond the maximum is refused as a whole, and a text that was posted without a credit
    // (a notice after Stop) is returned here like any other.
    for (int i = 0; i < count; ++i) ReleaseSemaphore(g_credits.Get(), 1, nullptr);
}
