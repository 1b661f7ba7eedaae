#include "ai/ai_requests.h"

#include "ai/ai_pane.h"
#include "ai/chat_history.h"
#include "ai/chat_view.h"
#include "base/log.h"
#include "resources/ids.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <deque>
#include <utility>
#include <vector>

namespace {

constexpr UINT kProgressMs = 1000;
constexpr UINT kPiecesMs = 50;       // between two updates of the chat
constexpr DWORD kShutdownMs = 1000;  // for all workers together; they notice the cancelling at once

struct RunningRequest {
    AiService service;
    Worker worker;
    AiLink link;
    AiTarget target;
    ULONGLONG began;        // tick count
    bool replying = false;  // text of a streamed reply has come
    bool unheard = false;   // its reply is of no interest any more
};
std::vector<RunningRequest> g_running;
int g_lastRequest = 0;

std::uint32_t SecondsSince(ULONGLONG began) { return static_cast<std::uint32_t>((GetTickCount64() - began) / 1000); }

void ShowAiProgress() {
    const RunningRequest& newest = g_running.back();
    const std::uint64_t received = *newest.link.received;
    const AiProgress progress = {.seconds = SecondsSince(newest.began),
                                 .received = received,
                                 .replying = newest.link.pieces != nullptr ? newest.replying : received > 0,
                                 .others = g_running.size() - 1};
    g_events.statusText(AiProgressText(newest.service, progress).c_str());
}

// False: nothing has come since the last time. What comes after a cancel is dropped.
bool TakePiecesOf(RunningRequest& request) {
    if (request.link.pieces == nullptr) return false;
    request.link.pieces->told = false;  // before the queue is emptied, so that no piece is left untold
    std::deque<std::string> pieces;
    request.link.pieces->queue.TakeAll(&pieces);
    std::string text;
    for (const std::string& piece : pieces) text += piece;
    if (!text.empty() && !request.worker.cancel->Asked()) {
        ChatViewPiece(request.link.request, text);
        if (!std::exchange(request.replying, true)) ShowAiProgress();
    }
    return !pieces.empty();
}

// What the chat holds of a request that has ended, and what it says of its end.
void EndInChat(const RunningRequest& request, const AiRequestEnd& ended) {
    const std::string pieces = ChatViewPiecesEnd(request.link.request);
    if (request.unheard) return;
    if (const std::wstring line = AiReplyEndLine(ended.end); !line.empty()) AiChatAppend(line);
    ChatHistoryAdd(request.link.question, pieces.empty() ? ended.reply : pieces);
}

void KeepReply(const RunningRequest& request, AiRequestEnd& ended) {
    const AiReplyState state = AiReplyStateAfter({.request = request.link.request,
                                                  .about = request.target.document != 0,
                                                  .outcome = ended.end.outcome,
                                                  .whole = !ended.reply.empty()},
                                                 g_ai.aiReply.request);
    if (state != AiReplyState::None)
        g_ai.aiReply = {state, request.link.request, request.target, std::move(ended.reply)};
}

}  // namespace

AiLink AiLinkNew() {
    return {.window = g_ui.hMainWnd,
            .request = ++g_lastRequest,
            .received = std::make_shared<std::atomic<std::uint64_t>>(0)};
}

void AiRequestStarted(AiService service, const Worker& worker, const AiLink& link, AiTarget target) {
    g_running.push_back({service, worker, link, std::move(target), GetTickCount64()});
    SetTimer(g_ui.hMainWnd, TIMER_AI, kProgressMs, nullptr);
    ShowAiProgress();
    AiPaneUpdateSend();
    g_events.refreshWanted();
}

bool AiRequestsRun() { return !g_running.empty(); }

void AiRequestsForTargets(const std::function<void(AiTarget&)>& use) {
    for (RunningRequest& request : g_running) use(request.target);
}

void AiRequestsCancel() {
    for (const RunningRequest& request : g_running) WorkerAskToEnd(request.worker);
}

void AiRequestsDrop() {
    AiRequestsCancel();
    for (RunningRequest& request : g_running) request.unheard = true;
}

void AiOnRequestEnded(AiRequestEndPtr ended) {
    const auto found = std::ranges::find(g_running, ended->request,
                                         [](const RunningRequest& request) { return request.link.request; });
    if (found == g_running.end()) return;
    TakePiecesOf(*found);
    const RunningRequest request = std::move(*found);
    g_running.erase(found);
    if (g_running.empty()) KillTimer(g_ui.hMainWnd, TIMER_AI);
    EndInChat(request, *ended);
    KeepReply(request, *ended);
    const std::wstring text = AiEndText(request.service, SecondsSince(request.began), ended->end);
    if (ended->end.outcome == AiOutcome::Failed) AppLogMsg(L"FAIL: AI request: %s", text.c_str());
    g_events.statusText(text.c_str());
    AiPaneUpdateSend();
    g_events.refreshWanted();
}

void AiOnTimer() {
    // A worker may be inside a call that does not end by cancelling. Its request ends for the user all the same, and what
    // it still posts is dropped.
    std::vector<int> late;
    for (const RunningRequest& request : g_running)
        if (request.worker.cancel->Asked()) late.push_back(request.link.request);
    for (const int request : late) {
        auto end = std::make_unique<AiRequestEnd>();
        end->request = request;
        end->end.outcome = AiOutcome::Cancelled;
        AiOnRequestEnded(std::move(end));
    }
    if (!g_running.empty()) ShowAiProgress();
}

void AiTakePieces() {
    for (RunningRequest& request : g_running) TakePiecesOf(request);
}

void AiOnPieces() { SetTimer(g_ui.hMainWnd, TIMER_AI_PIECES, kPiecesMs, nullptr); }

void AiOnPiecesTimer() {
    bool any = false;
    for (RunningRequest& request : g_running) any = TakePiecesOf(request) || any;
    if (!any) KillTimer(g_ui.hMainWnd, TIMER_AI_PIECES);
}

void AiShutdown() {
    AiRequestsCancel();
    const ULONGLONG limit = GetTickCount64() + kShutdownMs;
    for (const RunningRequest& request : g_running) {
        const ULONGLONG now = GetTickCount64();
        // Some versions of WinHTTP wait for the rest of a chunk in a call that nothing ends. The worker owns all that it
        // uses, so it may end with the process.
        if (!WorkerWait(request.worker, now < limit ? static_cast<DWORD>(limit - now) : 0))
            AppLogMsg(L"DBG AI request %d is left in a call of WinHTTP", request.link.request);
    }
    g_running.clear();
    WorkerDropPosts<HeapBlock<char>>(g_ui.hMainWnd, MSG_AI_REPLY);
    WorkerDropPosts<AiRequestEndPtr>(g_ui.hMainWnd, MSG_AI_ENDED);
}
