#include "ai/chat_view.h"

#include "ai/ai_state.h"
#include "ai/chat_log.h"
#include "ai/chat_rtf.h"
#include "ai/chat_window.h"
#include "base/events.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "output/output_pane.h"
#include "output/show_timer.h"
#include "settings/settings_state.h"
#include "ui/chrome.h"
#include "ui/fonts.h"
#include "ui/redraw.h"
#include "ui/rich_lines.h"
#include "ui/theme_table.h"

#include <richedit.h>

#include <utility>

namespace {

constexpr int kGroundShare = 0x16;  // of 255: how much of the text's colour the ground of code has
constexpr char kOlderGone[] = "(Older messages are not shown any more.)\r\n";

ChatLog g_chat;

// What of the text the user sees, so that an update does not move it.
struct ChatScroll {
    bool atEnd = true;
    LRESULT firstLine = 0;
};

ChatScroll ChatScrollNow() {
    return {.atEnd = RichIsAtEnd(g_ai.hAiChat), .firstLine = SendMessageW(g_ai.hAiChat, EM_GETFIRSTVISIBLELINE, 0, 0)};
}

void ChatScrollBack(const ChatScroll& scroll) {
    if (scroll.atEnd) return RichLinesReveal(g_ai.hAiChat);
    {
        const RedrawPause pause(g_ai.hAiChat);
        SendMessageW(g_ai.hAiChat, EM_LINESCROLL, 0,
                     scroll.firstLine - SendMessageW(g_ai.hAiChat, EM_GETFIRSTVISIBLELINE, 0, 0));
        RichScrollToLeft(g_ai.hAiChat);
    }
    RedrawWindow(g_ai.hAiChat, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME);
}

ChatColours ChatColoursNow() {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    return {.text = chrome.paneText,
            .tag = chrome.accent,
            .quiet = ThemeQuietText(),
            .codeBack = ThemeBlend(chrome.paneText, chrome.paneBack, kGroundShare)};
}

bool EndsInBreak(const std::vector<ChatRun>& runs) {
    return !runs.empty() && (runs.back().text.ends_with('\n') || runs.back().text.ends_with('\r'));
}

void ShowEntry(std::size_t index) {
    ChatUpdate update = ChatUpdateOf(g_chat.entries[index]);
    std::vector<ChatRun> runs = update.runs;
    if (update.lineBreak) runs.insert(runs.begin(), {"\n", ChatLook::Text});
    if (runs.empty() && update.from == update.to) return;
    const ChatFonts fonts = {.face = g_settings.outputFont,
                             .codeFace = UiFixedFace(g_settings.outputFont),
                             .points = g_settings.outputFontSize};
    const LONG length =
        RichRtfReplace(g_ai.hAiChat, update.from, update.to, ChatRtf(runs, fonts, ChatColoursNow()), EndsInBreak(runs));
    ChatUpdateShown(g_chat, index, update, length);
}

// Shows everything again, in a new control when the old one holds much: its text would take seconds to delete.
void ShowAllEntries() {
    const std::size_t lines = ChatLogLines(g_chat);
    const HWND pane = RichPaneEmptied(g_ai.hAiChat, lines);
    if (pane != g_ai.hAiChat) {
        ShowTimerStart();  // which destroys the old one
        g_ai.hAiChat = pane;
        ChatWindowInit(pane);
    }
    PaneApplyFontAndTheme(pane);
    ChatLogShowAgain(g_chat);
    const RedrawPause pause(pane);
    long start = 0;
    for (std::size_t i = 0; i < g_chat.entries.size(); ++i) {
        g_chat.entries[i].start = start;
        ShowEntry(i);
        start += g_chat.entries[i].length;
    }
}

void DropOldest() {
    const std::size_t surplus = ChatLogSurplus(g_chat);
    if (surplus == 0) return;
    std::vector<ChatEntry>& entries = g_chat.entries;
    entries.erase(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(surplus) - 1);
    entries.front() = {.text = kOlderGone};
    if (entries.size() > 1) entries[1].ownLine = false;
    ShowAllEntries();
}

void ShowGreeting() {
    if (!g_chat.entries.empty()) return;
    ChatEntry& entry = ChatLogAdd(g_chat, ToUtf8(Text(kChatGreeting)), false);
    entry.settled.at = entry.text.size();
    entry.length = entry.settledLength = RichLength(g_ai.hAiChat);
}

bool AddToChat(std::string_view text, bool isReply, int request) {
    if (g_ai.hAiChat == nullptr) return false;
    ShowGreeting();
    const ChatScroll scroll = ChatScrollNow();
    ChatLogAdd(g_chat, text, isReply, request);
    ShowEntry(g_chat.entries.size() - 1);
    DropOldest();
    ChatScrollBack(scroll);
    if (isReply) g_events.refreshWanted();  // there may be code now
    return true;
}

}  // namespace

void ChatViewApplyLook() {
    if (g_ai.hAiChat == nullptr) return;
    if (g_chat.entries.empty()) {
        PaneApplyFontAndTheme(g_ai.hAiChat);
        RichScrollToLeft(g_ai.hAiChat);
        return;
    }
    const ChatScroll scroll = ChatScrollNow();
    CHARRANGE selection = {};
    SendMessageW(g_ai.hAiChat, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&selection));
    ShowAllEntries();
    SendMessageW(g_ai.hAiChat, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&selection));
    ChatScrollBack(scroll);
}

void ChatViewClear() {
    if (g_chat.entries.empty()) return;
    g_chat.entries.clear();
    ChatLogAdd(g_chat, ToUtf8(Text(kChatGreeting)), false);
    ShowAllEntries();
    ChatScrollBack({});
    g_events.refreshWanted();
}

bool ChatViewLine(std::wstring_view text) { return AddToChat(ToUtf8(text), false, 0); }

bool ChatViewReply(std::string_view reply) { return AddToChat(reply, true, 0); }

void ChatViewScrollToEnd() {
    if (g_ai.hAiChat != nullptr) RichLinesReveal(g_ai.hAiChat);
}

bool ChatViewPiece(int request, std::string_view piece) {
    const int index = ChatEntryOfRequest(g_chat, request);
    if (index < 0) return AddToChat(piece, true, request);
    ChatEntry& entry = g_chat.entries[static_cast<std::size_t>(index)];
    const bool hadCode = entry.hasCode;
    const std::size_t shown = ChatShownPart(entry.text, true).size();
    ChatEntryGrow(entry, piece);
    if (ChatShownPart(entry.text, true).size() == shown) return true;
    if (GetCapture() == g_ai.hAiChat) return true;  // the user selects; the next piece shows this one too
    const ChatScroll scroll = ChatScrollNow();
    ShowEntry(static_cast<std::size_t>(index));
    ChatScrollBack(scroll);
    if (entry.hasCode != hadCode) g_events.refreshWanted();
    return true;
}

std::string ChatViewPiecesEnd(int request) {
    const int index = ChatEntryOfRequest(g_chat, request);
    if (index < 0) return {};
    ChatEntry& entry = g_chat.entries[static_cast<std::size_t>(index)];
    entry.request = 0;
    std::string text = entry.text;
    const ChatScroll scroll = ChatScrollNow();
    ShowEntry(static_cast<std::size_t>(index));
    DropOldest();
    ChatScrollBack(scroll);
    return text;
}

int ChatViewRequestOf(std::string_view reply) {
    for (const ChatEntry& entry : g_chat.entries)
        if (entry.request != 0 && entry.text == reply) return entry.request;
    return 0;
}

bool ChatViewHasCode() { return ChatHasCode(g_chat); }

std::string ChatViewCode() {
    if (GetFocus() == g_ai.hAiChat) {
        CHARRANGE selection = {};
        SendMessageW(g_ai.hAiChat, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&selection));
        if (const auto code = ChatCodeAt(g_chat, selection.cpMin); code) return *code;
    }
    return ChatLastCode(g_chat);
}
