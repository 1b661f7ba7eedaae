#include "output/output_credits.h"

#include "base/handles.h"

static UniqueHandle g_credits;

bool OutputCreditsInit() {
    g_credits.Reset(CreateSemaphoreW(nullptr, kMaxPostedChunks, kMaxPostedChunks, nullptr));
    return static_cast<bool>(g_credits);
}

HANDLE OutputCreditsHandle() { return g_credits.Get(); }

void OutputCreditsReturn(int count) {
    // Credits are returned one by one, because ReleaseSemaphore refuses a count that exceeds the maximum. A text that
    // was posted without a credit (a notice after Stop) is returned here too and would exceed it.
    for (int i = 0; i < count; ++i) ReleaseSemaphore(g_credits.Get(), 1, nullptr);
}
