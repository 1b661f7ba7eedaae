#include "ai/chat_runs.h"

#include "ai/code_fence.h"
#include "base/utf8.h"

#include <algorithm>

namespace {

constexpr std::size_t kLongTail = 2000;  // bytes of an unfinished line that are shown again with each piece
constexpr std::size_t kLongestTag = 12;

void AddRun(std::vector<ChatRun>& runs, std::string_view text, ChatLook look) {
    if (!text.empty()) runs.push_back({text, look});
}

bool IsHeading(std::string_view line) {
    const std::size_t marks = line.find_first_not_of('#');
    return marks != std::string_view::npos && marks > 0 && marks <= 6 && line[marks] == ' ';
}

// The end of what begins at `at` with `mark` and ends with it in the same line; npos when it is no such thing.
std::size_t EndOfMarked(std::string_view line, std::size_t at, std::string_view mark) {
    const std::size_t inner = at + mark.size();
    if (!line.substr(at).starts_with(mark) || inner >= line.size() || line[inner] == ' ') return std::string_view::npos;
    const std::size_t end = line.find(mark, inner);
    return end == std::string_view::npos || end == inner ? std::string_view::npos : end + mark.size();
}

void AddTextLine(std::vector<ChatRun>& runs, std::string_view line) {
    constexpr std::string_view kBoldMark = "**";
    if (IsHeading(line)) return AddRun(runs, line, ChatLook::Bold);
    std::size_t plain = 0;
    for (std::size_t at = line.find_first_of("*`"); at != std::string_view::npos; at = line.find_first_of("*`", at)) {
        const bool bold = line[at] == '*';
        const std::size_t end = EndOfMarked(line, at, bold ? kBoldMark : std::string_view("`"));
        if (end == std::string_view::npos) {
            ++at;
            continue;
        }
        AddRun(runs, line.substr(plain, at - plain), ChatLook::Text);
        if (bold) {
            const std::size_t inner = at + kBoldMark.size();
            AddRun(runs, kBoldMark, ChatLook::Mark);
            runs.back().text = line.substr(at, kBoldMark.size());
            AddRun(runs, line.substr(inner, end - kBoldMark.size() - inner), ChatLook::Bold);
            AddRun(runs, line.substr(end - kBoldMark.size(), kBoldMark.size()), ChatLook::Mark);
        } else {
            AddRun(runs, line.substr(at, end - at), ChatLook::Snip);
        }
        plain = at = end;
    }
    AddRun(runs, line.substr(plain), ChatLook::Text);
}

void AddText(std::vector<ChatRun>& runs, std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        AddTextLine(runs, text.substr(0, end));
        text.remove_prefix(end);
    }
}

// The last place from which on the rest may still look different when more has come.
ChatPlace SettledPlace(std::string_view reply, ChatPlace open) {
    const std::size_t lineEnd = reply.rfind('\n');
    if (lineEnd != std::string_view::npos && lineEnd >= open.at) open.at = lineEnd + 1;
    if (reply.size() - open.at <= kLongTail) return open;
    // What may be the beginning of a fence, of a line break or of a character stays.
    std::string_view rest = reply.substr(open.at);
    rest = rest.substr(0, rest.find_last_not_of("`\r") + 1);
    open.at += WholeCharacters(rest);
    return open;
}

}  // namespace

std::vector<ChatRun> ChatRunsFrom(std::string_view reply, ChatPlace from, bool whole, ChatPlace* settled) {
    std::vector<ChatRun> runs;
    ChatPlace at = from;
    while (at.at < reply.size()) {
        if (at.part == ChatPart::Text) {
            const std::size_t open = reply.find(kCodeFence, at.at);
            AddText(runs, reply.substr(at.at, open - at.at));
            if (open == std::string_view::npos) break;
            AddRun(runs, reply.substr(open, kCodeFence.size()), ChatLook::Fence);
            at = {open + kCodeFence.size(), ChatPart::FenceLine};
        } else if (at.part == ChatPart::FenceLine) {
            const std::size_t lineEnd = reply.find('\n', at.at);
            if (lineEnd == std::string_view::npos && !whole) {
                AddRun(runs, reply.substr(at.at), ChatLook::Fence);
                break;
            }
            const std::size_t start = lineEnd == std::string_view::npos ? at.at : lineEnd + 1;
            AddRun(runs, reply.substr(at.at, start - at.at), ChatLook::Fence);
            at = {start, ChatPart::Code};
        } else {
            const CodeFence fence = CodeFenceFrom(reply, at.at);
            AddRun(runs, reply.substr(at.at, fence.close - at.at), ChatLook::Code);
            if (fence.close == std::string_view::npos) break;
            AddRun(runs, reply.substr(fence.close, kCodeFence.size()), ChatLook::Fence);
            at = {fence.next, ChatPart::Text};
        }
    }
    if (settled != nullptr) *settled = whole ? ChatPlace{reply.size(), at.part} : SettledPlace(reply, at);
    return runs;
}

std::vector<ChatRun> ChatRunsOfLine(std::string_view line) {
    std::vector<ChatRun> runs;
    const std::size_t end = line.find("]:");
    const std::size_t tag = line.starts_with('[') && end < kLongestTag ? end + 2 : 0;
    AddRun(runs, line.substr(0, tag), ChatLook::Tag);
    AddRun(runs, line.substr(tag), ChatLook::Text);
    return runs;
}

std::wstring ChatShownText(std::string_view utf8) {
    const std::wstring wide = Utf8ToWideText(utf8);
    std::wstring shown;
    shown.reserve(wide.size());
    for (std::size_t i = 0; i < wide.size(); ++i) {
        const wchar_t c = wide[i];
        if (c == L'\r' && i + 1 < wide.size() && wide[i + 1] == L'\n') continue;
        if (c == L'\r' || c == L'\n')
            shown += L'\n';
        else if ((c >= L' ' && c != 0x7F) || c == L'\t')
            shown += c;
    }
    return shown;
}

std::size_t ChatShownLength(std::string_view utf8) {
    const std::wstring shown = ChatShownText(utf8);
    if constexpr (sizeof(wchar_t) == 2) return shown.size();
    constexpr std::uint32_t kLastOfOneUnit = 0xFFFF;
    return shown.size() + static_cast<std::size_t>(std::ranges::count_if(
                              shown, [](wchar_t c) { return static_cast<std::uint32_t>(c) > kLastOfOneUnit; }));
}
