// Waits for a worker that reads or writes a file, and the messages that are handled meanwhile. UI thread.
#include "documents/file_work.h"

#include "base/events.h"
#include "base/worker.h"
#include "ui/busy_input.h"
#include "ui/ui_state.h"

#include <windows.h>

namespace {

constexpr DWORD kStepMs = 30;
// A shorter wait is over before the window is painted, so that it is painted once.
constexpr ULONGLONG kPaintAfterMs = 100;

struct WorkWait {
    FileProgress* progress = nullptr;  // of the present wait
    bool close = false;                // WM_CLOSE is owed to the main window
};
WorkWait g_wait;

void RunWork(std::function<void()>& work, const WorkerCancel&) { work(); }

// Waits for the worker or a message, for a short time. Messages that were sent are handled.
void WaitStep(const Worker& worker, bool paints) {
    const HANDLE thread = worker.thread->Get();
    MsgWaitForMultipleObjects(1, &thread, FALSE, kStepMs, QS_SENDMESSAGE | (paints ? QS_PAINT : 0U));
    MSG message = {};
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    if (paints) PaintWhileBusy();
}

// Waits until the worker has ended, or hangs after it was cancelled.
bool WaitForWorker(const Worker& worker, const FileWork& work) {
    WorkWatch watch = {.began = work.began != 0 ? work.began : GetTickCount64()};
    bool told = false;
    bool hangs = false;
    while (!hangs && !WorkerWait(worker, 0)) {
        const ULONGLONG now = GetTickCount64();
        WaitStep(worker, now - watch.began >= kPaintAfterMs);
        if (WorkIsShown(watch, now)) {
            if (const BusyInput input = TakeBusyInput(); input.stop) FileWorkCancel(input.close);
            g_events.statusText(FileWorkText(work.verb, work.label, *work.progress).c_str());
            told = true;
        }
        hangs = WorkHangs(watch, *work.progress, now);
    }
    if (told) g_events.statusText(L"");
    return !hangs;
}

}  // namespace

bool FileWorkRun(const FileWork& work) {
    const bool begun = work.begun != nullptr && *work.begun;
    const Worker worker = begun ? *work.begun : WorkerStart<RunWork>(std::function<void()>{work.work});
    if (!worker) {
        work.work();
        return true;
    }
    // A wait within a wait: the end of the system's session may save a document meanwhile.
    const WorkWait outer = g_wait;
    g_wait = {.progress = work.progress.get(), .close = false};
    const bool ended = WaitForWorker(worker, work);
    const bool close = g_wait.close;
    g_wait = outer;
    if (close && outer.progress != nullptr)
        FileWorkCancel(true);
    else if (close)
        PostMessageW(g_ui.hMainWnd, WM_CLOSE, 0, 0);
    return ended;
}

bool FileWorkCloseIsQueued() {
    MSG message = {};
    return PeekMessageW(&message, g_ui.hMainWnd, WM_CLOSE, WM_CLOSE, PM_NOREMOVE) != FALSE;
}

bool FileWorkRuns() { return g_wait.progress != nullptr; }

void FileWorkCancel(bool close) {
    if (g_wait.progress == nullptr) return;
    g_wait.progress->cancel = true;
    g_wait.close = g_wait.close || close;
}
