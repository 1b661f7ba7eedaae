// The one way to work on another thread. A worker owns its request and works on that alone. It hands its results over
// as blocks: posted to a window (WorkerPost), or put into a queue that the owner empties (base/worker_queue.h). It uses
// no window, no log and no event. Of the program's record it uses only fields whose comment names the lock that guards
// them.
//
// Cancelling is a request: the work checks its WorkerCancel between steps, or waits for it together with other handles.
// Nobody waits for a worker without a limit. A worker that its owner forgets runs to its own end.
//
// A block that comes too late is freed: by WorkerPost when the window is gone, by WorkerDropPosts when the window is
// about to be destroyed, by the queue when its owner has closed it. A result carries the number of its question, so
// that the receiver can drop the answer to an old one.
#pragma once

#include "base/handles.h"

#include <windows.h>

#include <memory>
#include <utility>

// The request that a worker ends, shared by the worker and its owner. It cannot be withdrawn. Any thread.
class WorkerCancel {
public:
    WorkerCancel();
    void Ask() const { SetEvent(event_.Get()); }
    bool Asked() const { return WaitForSingleObject(event_.Get(), 0) == WAIT_OBJECT_0; }
    // For waits: signalled from Ask() on. Owned by this object.
    HANDLE Event() const { return event_.Get(); }
    explicit operator bool() const { return static_cast<bool>(event_); }

private:
    UniqueHandle event_;
};

// A worker as its owner sees it; empty when none was started. Copies refer to the same worker.
struct Worker {
    std::shared_ptr<UniqueHandle> thread;
    std::shared_ptr<const WorkerCancel> cancel;
    explicit operator bool() const { return thread != nullptr; }
};

// Starts `work(request, cancel)` on a new thread, which destroys the request when the work is done. Returns an empty
// worker when no thread could be created: nothing runs, the request is destroyed, and GetLastError() tells the reason.
template <auto work, typename Request>
Worker WorkerStart(Request request);

void WorkerLowerPriority(const Worker& worker);  // THREAD_PRIORITY_BELOW_NORMAL
// Asks the worker to end and returns at once.
void WorkerAskToEnd(const Worker& worker);
// Waits for the end of the worker, for at most that time. Returns true when it has ended or there is none.
bool WorkerWait(const Worker& worker, DWORD milliseconds);

// On the worker's thread: posts `message` to the window with the block in wParam. The window owns the block from then
// on. Returns false, and frees the block, when the window is gone or its queue is full.
template <typename Block, typename Deleter>
bool WorkerPost(HWND window, UINT message, std::unique_ptr<Block, Deleter> block, LPARAM lParam = 0) {
    if (PostMessageW(window, message, reinterpret_cast<WPARAM>(block.get()), lParam) == FALSE) return false;
    static_cast<void>(block.release());  // the window owns it now
    return true;
}

// In the window: takes over the block of a message that WorkerPost sent. `Owner` is the type that was posted.
template <typename Owner>
Owner WorkerTake(WPARAM wParam) {
    return Owner(reinterpret_cast<typename Owner::pointer>(wParam));
}

// Frees the blocks that wait in the queue of a window. Called on the window's thread before the window is destroyed.
template <typename Owner>
void WorkerDropPosts(HWND window, UINT message) {
    MSG late = {};
    while (PeekMessageW(&late, window, message, message, PM_REMOVE) != FALSE) {
        if (late.message == WM_QUIT) {  // passes every filter, and belongs to the message loop
            PostQuitMessage(static_cast<int>(late.wParam));
            return;
        }
        static_cast<void>(WorkerTake<Owner>(late.wParam));
    }
}

// --- The implementation of WorkerStart
using WorkerBody = void (*)(void* request, const WorkerCancel& cancel);
// `body` owns `request` once the thread has been started.
Worker WorkerStartBody(WorkerBody body, void* request);

template <auto work, typename Request>
Worker WorkerStart(Request request) {
    auto block = std::make_unique<Request>(std::move(request));
    const WorkerBody body = [](void* parameter, const WorkerCancel& cancel) {
        const std::unique_ptr<Request> owned(static_cast<Request*>(parameter));
        work(*owned, cancel);
    };
    Worker worker = WorkerStartBody(body, block.get());
    if (worker) static_cast<void>(block.release());  // the thread owns it now
    return worker;
}
