#include "base/worker.h"

namespace {

struct WorkerStartup {
    WorkerBody body = nullptr;
    void* request = nullptr;
    std::shared_ptr<const WorkerCancel> cancel;
};

DWORD WINAPI WorkerThread(void* parameter) {
    const std::unique_ptr<WorkerStartup> startup(static_cast<WorkerStartup*>(parameter));
    startup->body(startup->request, *startup->cancel);
    return 0;
}

}  // namespace

WorkerCancel::WorkerCancel() : event_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

Worker WorkerStartBody(WorkerBody body, void* request) {
    auto cancel = std::make_shared<const WorkerCancel>();
    if (!*cancel) return {};
    auto startup = std::make_unique<WorkerStartup>(WorkerStartup{body, request, cancel});
    auto thread = std::make_shared<UniqueHandle>(CreateThread(nullptr, 0, WorkerThread, startup.get(), 0, nullptr));
    if (!*thread) return {};
    static_cast<void>(startup.release());  // the thread owns it now
    return {.thread = std::move(thread), .cancel = std::move(cancel)};
}

void WorkerLowerPriority(const Worker& worker) {
    if (worker) SetThreadPriority(worker.thread->Get(), THREAD_PRIORITY_BELOW_NORMAL);
}

void WorkerAskToEnd(const Worker& worker) {
    if (worker) worker.cancel->Ask();
}

bool WorkerWait(const Worker& worker, DWORD milliseconds) {
    return !worker || WaitForSingleObject(worker.thread->Get(), milliseconds) == WAIT_OBJECT_0;
}
