// Many requests one after the other: what they have allocated and opened is given back, and each text has one owner.
#include "ai/ai_jobs.h"
#include "base/bounded_text.h"
#include "base/heap_text.h"
#include "resources/ids.h"
#include "support/http_server.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <vector>

namespace {

constexpr int kBatch = 100;  // requests; the server forgets what it has seen after each
constexpr int kBatches = 10;
constexpr std::size_t kTextBytes = 20000;  // of a message and of a reply

std::size_t HeapBytes() {
    std::vector<HANDLE> heaps(64);
    heaps.resize(std::min<std::size_t>(GetProcessHeaps(64, heaps.data()), 64));
    std::size_t bytes = 0;
    for (const HANDLE heap : heaps) {
        HeapLock(heap);
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(heap, &entry) != FALSE)
            if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData;
        HeapUnlock(heap);
    }
    return bytes;
}

// Of this process. Where the system gives 0, its list of all handles is counted.
DWORD HandleCount() {
    DWORD count = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &count) != FALSE && count > 0) return count;
    constexpr int kSystemHandleInformation = 16;
    struct SystemHandle {
        ULONG process;
        std::uint8_t others[20];
    };
    using Query = LONG(WINAPI*)(int, void*, ULONG, ULONG*);
    const auto query = reinterpret_cast<Query>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<std::uint64_t> block(1 << 18);  // a count, then the handles
    const auto size = static_cast<ULONG>(block.size() * sizeof(block[0]));
    if (query(kSystemHandleInformation, block.data(), size, nullptr) < 0) return 0;
    const auto* handle = reinterpret_cast<const SystemHandle*>(block.data() + 1);
    for (ULONG left = static_cast<ULONG>(block[0]); left > 0; --left, ++handle)
        if (handle->process == GetCurrentProcessId()) ++count;
    return count;
}

// Runs the workers of one request to its end, as the window would.
void AskOnce(HWND window, const std::wstring& url, int number) {
    const AiLink link = {
        .window = window, .request = number, .received = std::make_shared<std::atomic<std::uint64_t>>(0)};
    const auto fill = [&](auto job) {
        SafeCopyW(job.url, url);
        job.message.reset(HeapText(std::string(kTextBytes, 'm')));
        job.link = link;
        return job;
    };
    const Worker worker = number % 2 == 0 ? WorkerStart<AiWorkerThread>(fill(AiChatJob()))
                                          : WorkerStart<AiDoWorkerThread>(fill(AiDoJob()));
    AiRequestEndPtr ended;
    const ULONGLONG limit = GetTickCount64() + 20000;
    while (ended == nullptr && GetTickCount64() < limit) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 1000, QS_ALLINPUT);
        MSG message;
        while (PeekMessageW(&message, window, 0, 0, PM_REMOVE) != FALSE) {
            if (message.message == MSG_AI_REPLY) WorkerTake<HeapBlock<char>>(message.wParam);
            if (message.message == MSG_AI_ENDED) ended = WorkerTake<AiRequestEndPtr>(message.wParam);
        }
    }
    ASSERT_NE(ended, nullptr);
    EXPECT_EQ(ended->end.outcome, number % 3 == 0 ? AiOutcome::Failed : AiOutcome::Answered);
    EXPECT_TRUE(WorkerWait(worker, 5000));
}

TEST(AiLongRun, AThousandRequestsLeaveNothingBehind) {
    const HWND window =
        CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, GetModuleHandleW(nullptr), nullptr);
    std::size_t firstBytes = 0, bytes = 0;
    DWORD firstHandles = 0, handles = 0;
    for (int batch = 0; batch < kBatches; ++batch) {
        {
            std::atomic<int> number = 0;
            HttpServer server([&number](const std::string&) {
                return number % 3 == 0 ? HttpAnswer(500, R"({"error":")" + std::string(kTextBytes, 'e') + "\"}")
                                       : HttpAnswer(200, R"({"choices":[{"message":{"content":")" +
                                                             std::string(kTextBytes, 'r') + "\"}}]}");
            });
            for (; number < kBatch; ++number) AskOnce(window, server.Url(L"/"), number);
        }
        bytes = HeapBytes();
        handles = HandleCount();
        // What libraries allocate at their first use stays.
        if (batch == 0) firstBytes = bytes, firstHandles = handles;
    }
    EXPECT_LT(bytes, firstBytes + kTextBytes * kBatch / 4);
    EXPECT_GT(firstHandles, 0U);
    EXPECT_LT(handles, firstHandles + kBatch / 4);
    RecordProperty("bytes", std::to_string(firstBytes) + " to " + std::to_string(bytes));
    RecordProperty("handles", std::to_string(firstHandles) + " to " + std::to_string(handles));
    DestroyWindow(window);
}

}  // namespace
