// The one pattern for work on a thread of its own. A worker gets its request moved to it, works on that alone, and hands
// over what it makes as blocks that change their owner: posted to a window (WorkerPost), or put into a queue that the owner
// empties when it has time (base/worker_queue.h). It touches no window, neither the log nor the events, and of the program's
// record only what is guarded by a lock that the field's comment names.
//
// Cancelling is a wish: the work looks at its WorkerCancel between steps and waits for it together with other things. Nobody
// waits for a worker without a limit. Forgetting a worker leaves it running to its own end.
//
// What is posted too late is freed: by WorkerPost where the window is gone, by WorkerDropPosts where the window has stopped
// to answer, and by the queue where its owner has closed it. What is posted for a question that nobody asks any more carries
// the question's number, and the receiver drops it.
#pragma once

#include "base/handles.h"

#include <windows.h>

#include <memory>
#include <utility>

// The wish that a worker ends; shared by the worker and its owner. It is never taken back. Any thread.
class WorkerCancel {
public:
    WorkerCancel();
    void Ask() const { SetEvent(event_.Get()); }
    bool Asked() const { return WaitForSingleObject(event_.Get(), 0) == WAIT_OBJECT_0; }
    // For waits; signalled from the asking on. Lives as long as this object.
    HANDLE Event() const { return event_.Get(); }
    explicit operator bool() const { return static_cast<bool>(event_); }

private:
    UniqueHandle event_;
};

// A worker as its owner sees it; empty when none was started. Copies mean the same worker.
struct Worker {
    std::shared_ptr<UniqueHandle> thread;
    std::shared_ptr<const WorkerCancel> cancel;
    explicit operator bool() const { return thread != nullptr; }
};

// Starts `work(request, cancel)` on a new thread; the request is destroyed there when the work is done. An empty worker: no
// thread was to be had, nothing runs, the request is gone, and GetLastError() tells why.
template <auto work, typename Request>
Worker WorkerStart(Request request);

void WorkerLowerPriority(const Worker& worker);  // below what the user waits for
// Asks it to end, and returns at once.
void WorkerAskToEnd(const Worker& worker);
// Waits for its end, at most so many milliseconds. True: it has ended, or there is none.
bool WorkerWait(const Worker& worker, DWORD milliseconds);

// On the worker's thread: gives the block to a window, as `message` with the block in wParam. Where the window is gone or
// its queue is full the block is freed here. False: it was not delivered.
template <typename Block, typename Deleter>
bool WorkerPost(HWND window, UINT message, std::unique_ptr<Block, Deleter> block, LPARAM lParam = 0) {
    if (PostMessageW(window, message, reinterpret_cast<WPARAM>(block.get()), lParam) == FALSE) return false;
    static_cast<void>(block.release());  // now the window's
    return true;
}

// In the window: takes over the block of a message that WorkerPost sent with the same kind of owner.
template <typename Owner>
Owner WorkerTake(WPARAM wParam) {
    return Owner(reinterpret_cast<typename Owner::pointer>(wParam));
}

// Frees what still waits in the queue of a window that will answer no more. On the window's thread, before it is destroyed.
template <typename Owner>
void WorkerDropPosts(HWND window, UINT message) {
    MSG late = {};
    while (PeekMessageW(&late, window, message, message, PM_REMOVE) != FALSE) {
        if (late.message == WM_QUIT) {  // comes through every filter; it is for the message loop
            PostQuitMessage(static_cast<int>(late.wParam));
            return;
        }
        static_cast<void>(WorkerTake<Owner>(late.wParam));
    }
}

// --- How WorkerStart does it
using WorkerBody = void (*)(void* request, const WorkerCancel& cancel);
// `body` owns `request` once the thread was started.
Worker WorkerStartBody(WorkerBody body, void* request);

template <auto work, typename Request>
Worker WorkerStart(Request request) {
    auto block = std::make_unique<Request>(std::move(request));
    const WorkerBody body = [](void* parameter, const WorkerCancel& cancel) {
        const std::unique_ptr<Request> owned(static_cast<Request*>(parameter));
        work(*owned, cancel);
    };
    Worker worker = WorkerStartBody(body, block.get());
    if (worker) static_cast<void>(block.release());  // now the thread's
    return worker;
}
