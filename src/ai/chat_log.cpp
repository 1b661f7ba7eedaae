#include "ai/chat_log.h"

#include "ai/code_fence.h"
#include "base/utf8.h"

#include <algorithm>
#include <utility>

namespace {

// The oldest entries go beyond the first numbers, until no more than the second ones are left.
constexpr long kMostCharacters = 200000, kKeptCharacters = 120000;
constexpr std::size_t kMostLines = 6000, kKeptLines = 3500;

bool EndsLine(std::string_view text) { return text.ends_with('\n') || text.ends_with('\r'); }

std::size_t LinesOfText(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count(ChatShownPart(text), '\n')) + 1;
}

std::string CodeOf(std::string_view reply, const CodeFence& fence) {
    return std::string(reply.substr(fence.start, fence.end - fence.start));
}

}  // namespace

std::string_view ChatShownPart(std::string_view reply, bool coming) {
    const std::string_view most = reply.substr(0, kShownReply);
    std::size_t end = 0;
    for (std::size_t lines = 0; end < most.size() && lines < kShownLines; ++lines) {
        const std::size_t length = std::min(most.find('\n', end), most.size() - 1) + 1 - end;
        end += std::min(length, kShownLine);
        if (length > kShownLine) break;
    }
    const std::string_view part = most.substr(0, end);
    return coming || part.size() < reply.size() ? part.substr(0, WholeCharacters(part)) : part;
}

ChatEntry& ChatLogAdd(ChatLog& log, std::string_view text, bool isReply, int request) {
    ChatEntry entry = {.isReply = isReply, .request = request};
    if (!log.entries.empty()) {
        const ChatEntry& last = log.entries.back();
        entry.ownLine = last.request != 0 || !EndsLine(ChatShownPart(last.text));
        entry.start = last.start + last.length;
    }
    ChatEntryGrow(entry, text);
    log.entries.push_back(std::move(entry));
    return log.entries.back();
}

void ChatEntryGrow(ChatEntry& entry, std::string_view piece) {
    const std::size_t before = entry.text.size();
    entry.text += piece;
    entry.hasCode =
        entry.hasCode ||
        (entry.isReply && entry.text.find(kCodeFence, before - std::min<std::size_t>(before, 2)) != std::string::npos);
}

int ChatEntryOfRequest(const ChatLog& log, int request) {
    const auto found = std::ranges::find(log.entries, request, &ChatEntry::request);
    return request == 0 || found == log.entries.end() ? -1 : static_cast<int>(found - log.entries.begin());
}

ChatUpdate ChatUpdateOf(const ChatEntry& entry) {
    ChatUpdate update = {.from = entry.start + entry.settledLength, .to = entry.start + entry.length};
    update.lineBreak = entry.ownLine && entry.settledLength == 0;
    if (!entry.isReply) {
        update.runs = ChatRunsOfLine(entry.text);
        update.settled.at = entry.text.size();
        return update;
    }
    const std::string_view shown = ChatShownPart(entry.text, entry.request != 0);
    update.runs = ChatRunsFrom(shown, entry.settled, entry.request == 0, &update.settled);
    return update;
}

void ChatUpdateShown(ChatLog& log, std::size_t index, const ChatUpdate& update, long length) {
    ChatEntry& entry = log.entries[index];
    const long change = length - (update.to - update.from);
    entry.length += change;
    if (update.lineBreak && update.settled.at > entry.settled.at) ++entry.settledLength;
    entry.settledLength += static_cast<long>(
        ChatShownLength(std::string_view(entry.text).substr(entry.settled.at, update.settled.at - entry.settled.at)));
    entry.settled = update.settled;
    for (std::size_t below = index + 1; below < log.entries.size(); ++below) log.entries[below].start += change;
}

void ChatLogShowAgain(ChatLog& log) {
    for (ChatEntry& entry : log.entries) {
        entry.start = entry.length = entry.settledLength = 0;
        entry.settled = {};
    }
}

std::size_t ChatLogLines(const ChatLog& log) {
    std::size_t lines = 0;
    for (const ChatEntry& entry : log.entries) lines += LinesOfText(entry.text);
    return lines;
}

std::size_t ChatLogSurplus(const ChatLog& log) {
    long characters = 0;
    for (const ChatEntry& entry : log.entries) characters += entry.length;
    std::size_t lines = ChatLogLines(log);
    if (characters <= kMostCharacters && lines <= kMostLines) return 0;
    std::size_t surplus = 0;
    while (surplus + 1 < log.entries.size() && log.entries[surplus].request == 0 &&
           (characters > kKeptCharacters || lines > kKeptLines)) {
        characters -= log.entries[surplus].length;
        lines -= LinesOfText(log.entries[surplus].text);
        ++surplus;
    }
    return surplus;
}

bool ChatHasCode(const ChatLog& log) { return std::ranges::any_of(log.entries, &ChatEntry::hasCode); }

std::optional<std::string> ChatCodeAt(const ChatLog& log, long character) {
    const auto entry = std::ranges::find_if(log.entries, [character](const ChatEntry& each) {
        return each.hasCode && character >= each.start && character < each.start + each.length;
    });
    if (entry == log.entries.end()) return std::nullopt;
    const std::string_view reply = entry->text;
    const long wanted = character - entry->start - (entry->ownLine ? 1 : 0);
    long at = 0;  // in characters, of the byte `from`
    std::size_t from = 0;
    for (auto fence = NextCodeFence(reply); fence; fence = NextCodeFence(reply, fence->next)) {
        const std::size_t lineEnd = std::min(reply.find_first_of("\r\n", fence->next), reply.size());
        at += static_cast<long>(ChatShownLength(reply.substr(from, fence->open - from)));
        from = fence->open;
        if (wanted < at) return std::nullopt;
        if (wanted <= at + static_cast<long>(ChatShownLength(reply.substr(from, lineEnd - from))))
            return CodeOf(reply, *fence);
    }
    return std::nullopt;
}

std::string ChatLastCode(const ChatLog& log) {
    for (auto entry = log.entries.rbegin(); entry != log.entries.rend(); ++entry) {
        if (!entry->hasCode) continue;
        std::string code;
        for (auto fence = NextCodeFence(entry->text); fence; fence = NextCodeFence(entry->text, fence->next)) {
            std::string next = CodeOf(entry->text, *fence);
            if (!next.empty()) code = std::move(next);
        }
        if (!code.empty()) return code;
    }
    return {};
}
