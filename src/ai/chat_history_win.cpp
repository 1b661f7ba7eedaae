#include "ai/chat_history.h"

#include "base/utf8.h"
#include "settings/settings_state.h"

namespace {

constexpr std::size_t kBytesKept = 1000 * 1024;  // the most that the setting allows

std::vector<ChatTurn> g_turns;

}  // namespace

void ChatHistoryAdd(const std::string& question, const std::string& answer) {
    if (question.empty() || answer.empty()) return;
    g_turns.push_back({question, ToUtf8(Utf8ToWideText(answer))});  // JSON takes no other bytes than UTF-8
    const std::size_t kept = NewestTurns(g_turns, kBytesKept).size();
    g_turns.erase(g_turns.begin(), g_turns.end() - static_cast<std::ptrdiff_t>(kept));
}

void ChatHistoryClear() { g_turns.clear(); }

std::vector<ChatTurn> ChatHistoryToSend() {
    const auto newest = NewestTurns(g_turns, static_cast<std::size_t>(g_settings.aiHistoryKb) * 1024);
    return {newest.begin(), newest.end()};
}
