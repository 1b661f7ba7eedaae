// Workers on real threads, with a real window to post to.
#include "base/worker.h"

#include <gtest/gtest.h>

#include <atomic>

namespace {

constexpr UINT kMessage = WM_APP + 1;
constexpr DWORD kPatienceMs = 10000;

std::atomic<int> g_alive = 0;

struct CountedBlock {
    int value = 0;
    explicit CountedBlock(int v) : value(v) { ++g_alive; }
    ~CountedBlock() { --g_alive; }
    CountedBlock(const CountedBlock&) = delete;
    CountedBlock& operator=(const CountedBlock&) = delete;
};
using CountedPtr = std::unique_ptr<CountedBlock>;

struct WorkRequest {
    CountedPtr input;
    HWND window = nullptr;
    HANDLE go = nullptr;
    int posts = 0;
    int delivered = -1;
    int* report = nullptr;  // gets `delivered` at the end
};

void PostMany(WorkRequest& request, const WorkerCancel& cancel) {
    const HANDLE either[] = {cancel.Event(), request.go};
    if (request.go != nullptr) WaitForMultipleObjects(2, either, FALSE, INFINITE);
    request.delivered = 0;
    for (int i = 0; i < request.posts; ++i)
        request.delivered +=
            WorkerPost(request.window, kMessage, std::make_unique<CountedBlock>(request.input->value + i), i) ? 1 : 0;
    if (request.report != nullptr) *request.report = cancel.Asked() ? -request.delivered : request.delivered;
}

HWND MessageWindow() {
    return CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
}

TEST(Worker, GetsItsRequestAndPostsWhatItMakes) {
    const HWND window = MessageWindow();
    const Worker worker =
        WorkerStart<PostMany>(WorkRequest{.input = std::make_unique<CountedBlock>(40), .window = window, .posts = 3});
    ASSERT_TRUE(worker);
    ASSERT_TRUE(WorkerWait(worker, kPatienceMs));
    EXPECT_EQ(g_alive, 3) << "the request is gone, its posts wait";
    MSG message = {};
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(PeekMessageW(&message, window, kMessage, kMessage, PM_REMOVE));
        EXPECT_EQ(message.lParam, i);
        EXPECT_EQ(WorkerTake<CountedPtr>(message.wParam)->value, 40 + i);
    }
    PostQuitMessage(7);
    WorkerDropPosts<CountedPtr>(window, kMessage);
    EXPECT_EQ(g_alive, 0) << "what nobody took is freed";
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "and the wish to quit is passed on";
    EXPECT_EQ(message.wParam, 7U);
    DestroyWindow(window);
}

TEST(Worker, EndsWhenAskedAndFreesWhatComesTooLate) {
    const UniqueHandle never(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const HWND window = MessageWindow();
    int report = 1;
    const Worker worker = WorkerStart<PostMany>(WorkRequest{.input = std::make_unique<CountedBlock>(1),
                                                            .window = window,
                                                            .go = never.Get(),
                                                            .posts = 5,
                                                            .report = &report});
    EXPECT_FALSE(WorkerWait(worker, 20)) << "the wait has a limit";
    DestroyWindow(window);
    WorkerAskToEnd(worker);
    ASSERT_TRUE(WorkerWait(worker, kPatienceMs));
    EXPECT_EQ(report, 0) << "nothing could be delivered";
    EXPECT_EQ(g_alive, 0);
    EXPECT_TRUE(WorkerWait({}, 0)) << "no worker has ended";
}

}  // namespace
