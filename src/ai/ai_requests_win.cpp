#include "ai/ai_requests.h"

#include "ai/ai_pane.h"
#include "base/log.h"
#include "resources/ids.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr UINT kProgressMs = 1000;
constexpr DWORD kShutdownMs = 1000;  // for all workers together; they notice the cancelling at once

struct RunningRequest {
    AiService service;
    Worker worker;
    AiLink link;
    AiTarget target;
    ULONGLONG began;  // tick count
};
std::vector<RunningRequest> g_running;
int g_lastRequest = 0;

std::uint32_t SecondsSince(ULONGLONG began) { return static_cast<std::uint32_t>((GetTickCount64() - began) / 1000); }

void ShowAiProgress() {
    const RunningRequest& newest = g_running.back();
    g_events.statusText(AiProgressText(newest.service, SecondsSince(newest.began), *newest.link.received).c_str());
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

void AiOnRequestEnded(AiRequestEndPtr ended) {
    const auto found = std::ranges::find(g_running, ended->request,
                                         [](const RunningRequest& request) { return request.link.request; });
    if (found == g_running.end()) return;
    const RunningRequest request = std::move(*found);
    g_running.erase(found);
    if (g_running.empty()) KillTimer(g_ui.hMainWnd, TIMER_AI);
    if (ended->end.outcome == AiOutcome::Cancelled) AiChatAppend(L"[AI]: Cancelled.\r\n");
    if (!ended->reply.empty()) {
        g_ai.aiReplyText = std::move(ended->reply);
        g_ai.aiReplyTarget = request.target;
    }
    const std::wstring text = AiEndText(request.service, SecondsSince(request.began), ended->end);
    if (ended->end.outcome == AiOutcome::Failed) AppLogMsg(L"FAIL: AI request: %s", text.c_str());
    g_events.statusText(text.c_str());
    AiPaneUpdateSend();
    g_events.refreshWanted();
}

void AiOnTimer() {
    if (!g_running.empty()) ShowAiProgress();
}

void AiShutdown() {
    AiRequestsCancel();
    const ULONGLONG limit = GetTickCount64() + kShutdownMs;
    for (const RunningRequest& request : g_running) {
        const ULONGLONG now = GetTickCount64();
        if (!WorkerWait(request.worker, now < limit ? static_cast<DWORD>(limit - now) : 0))
            AppLogMsg(L"FAIL: an AI request did not end in time");
    }
    g_running.clear();
    WorkerDropPosts<HeapBlock<char>>(g_ui.hMainWnd, MSG_AI_REPLY);
    WorkerDropPosts<AiRequestEndPtr>(g_ui.hMainWnd, MSG_AI_ENDED);
}
