// What the chat holds: its lines and replies, where the control shows each of them, and the code in them. Texts are
// UTF-8; places are characters of the control. Pure.
#pragma once

#include "ai/chat_runs.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct ChatEntry {
    std::string text;
    bool isReply = false;
    int request = 0;       // which still adds to the text; 0: none
    bool ownLine = false;  // a line break stands before it, because what is above has none at its end
    bool hasCode = false;
    long start = 0;          // place of its first character, or of that line break
    long length = 0;         // characters that are shown, with that line break
    ChatPlace settled;       // what is before it stays as it is shown
    long settledLength = 0;  // characters
};

struct ChatLog {
    std::vector<ChatEntry> entries;
};

// What the control has to show in place of the characters from `from` to `to`.
struct ChatUpdate {
    long from = 0, to = 0;
    bool lineBreak = false;  // one stands before the runs
    std::vector<ChatRun> runs;
    ChatPlace settled;
};

// The part of a reply that the chat shows: at most so many bytes and lines of it, and nothing after a line that is too
// long. The rest would take the pane seconds to lay out, a long line with each piece that comes. A reply that is cut, or that is still coming, is cut between two characters.
inline constexpr std::size_t kShownReply = 100000;
inline constexpr std::size_t kShownLines = 3000;
inline constexpr std::size_t kShownLine = 8000;
std::string_view ChatShownPart(std::string_view reply, bool coming = false);

// Adds an entry at the end, which is not shown yet. The reference is valid until the next one is added.
ChatEntry& ChatLogAdd(ChatLog& log, std::string_view text, bool isReply, int request = 0);
void ChatEntryGrow(ChatEntry& entry, std::string_view piece);
// The entry to which the request adds; -1: none.
int ChatEntryOfRequest(const ChatLog& log, int request);

ChatUpdate ChatUpdateOf(const ChatEntry& entry);
// Notes that the control shows the update, with `length` characters in its place. The entries below move.
void ChatUpdateShown(ChatLog& log, std::size_t entry, const ChatUpdate& update, long length);
void ChatLogShowAgain(ChatLog& log);  // nothing of it is shown any more

// How many of the oldest entries must go, so that the chat does not grow without end; 0 for most calls.
std::size_t ChatLogSurplus(const ChatLog& log);
std::size_t ChatLogLines(const ChatLog& log);

bool ChatHasCode(const ChatLog& log);
// The code of the block at that character, or on the rest of its line; nothing when none is there.
std::optional<std::string> ChatCodeAt(const ChatLog& log, long character);
std::string ChatLastCode(const ChatLog& log);  // empty: none
