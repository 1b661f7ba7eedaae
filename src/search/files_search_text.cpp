#include "search/files_search_text.h"

#include "base/texts.h"
#include "base/utf8.h"
#include "files/utf16.h"
#include "search/replacement.h"

#include <algorithm>

namespace {

constexpr std::size_t kPiece = 1 << 20;     // bytes searched before the next look whether to stop
constexpr std::size_t kSniffed = 64 << 10;  // bytes in which a NUL makes a file binary
constexpr std::size_t kShownBefore = 60;    // bytes of a long line before the match

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }
bool IsBreak(char byte) { return byte == '\n' || byte == '\r'; }

// The next character's start at `at` or after it; not beyond `end`.
std::size_t CharacterFrom(std::string_view text, std::size_t at, std::size_t end) {
    while (at < end && IsContinuation(text[at])) ++at;
    return at;
}

// The line is looked at no further than it can be shown: one line may be the whole file.
std::size_t LineStartNear(std::string_view text, std::size_t at) {
    const std::size_t least = at > kShownBytes ? at - kShownBytes : 0;
    while (at > least && !IsBreak(text[at - 1])) --at;
    return at;
}

std::size_t LineEndNear(std::string_view text, std::size_t at) {
    const std::size_t most = std::min(text.size(), at + kShownBytes);
    while (at < most && !IsBreak(text[at])) ++at;
    return at;
}

// Control characters, which a list draws as boxes, become blanks.
std::string ShownText(std::string_view part) {
    std::string shown{part};
    std::ranges::replace_if(
        shown, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; }, ' ');
    return shown;
}

}  // namespace

void ShowLineOfHit(std::string_view text, FileHit& hit) {
    const std::size_t match = std::min<std::size_t>(hit.start, text.size());
    std::size_t start = LineStartNear(text, match);
    while (start < match && (text[start] == ' ' || text[start] == '\t')) ++start;
    const std::size_t before = std::min(kShownBefore, kShownBytes / 2);
    std::size_t end = LineEndNear(text, match);
    if (end - start > kShownBytes) {
        if (match - start > before) start = CharacterFrom(text, match - before, match);
        end = std::min(end, start + kShownBytes);
        while (end > start && end < text.size() && IsContinuation(text[end])) --end;
    }
    hit.shown = ShownText(text.substr(start, end - start));
    hit.markStart = static_cast<std::uint16_t>(match - start);
    hit.markLength = static_cast<std::uint16_t>(std::min<std::size_t>(hit.length, end - std::min(match, end)));
}

std::optional<TextMatcher> TextMatcher::Of(const FilesQuery& query, std::wstring* fault) {
    TextMatcher matcher;
    matcher.find_ = {query.matchCase, query.wholeWord, query.regex};
    matcher.preserveCase_ = query.preserveCase;
    if (query.regex || query.text.empty() || query.preserveCase) {
        const FindOptions& options = matcher.find_;
        RegexFault why;
        RegexHandle code = RegexCompile(query.text, options, why);
        ReplaceForm form;
        if (code == nullptr || (query.with && !ReplaceParse(*query.with, *code, options, {}, form, why))) {
            if (fault != nullptr)
                *fault =
                    why.text +
                    (why.position > 0 ? TextWith(L", at character {1}", {std::to_wstring(why.position + 1)}) : L"");
            return std::nullopt;
        }
        matcher.expression_ = std::make_unique<RegexSearch>(std::move(code));
    } else {
        matcher.needle_.emplace(query.text, query.matchCase, query.wholeWord);
    }
    matcher.with_ = query.with;
    return matcher;
}

void TextMatcher::Begin(std::string_view text, SearchStopped stopped) {
    text_ = text;
    stopped_ = std::move(stopped);
    from_ = 0;
    tooComplex_ = false;
    if (expression_ == nullptr) return;
    expressionText_ = std::make_unique<RegexText>(RegexTextOf(text));
    expression_->Begin(*expressionText_, {0, static_cast<std::ptrdiff_t>(text.size())}, false,
                       [this](std::ptrdiff_t) { return stopped_ == nullptr || !stopped_(); });
}

std::optional<MatchSpan> TextMatcher::Next() { return needle_ ? NextText() : NextOfExpression(); }

std::optional<MatchSpan> TextMatcher::NextText() {
    const std::size_t length = needle_->Length();
    for (;;) {
        // A whole word needs the byte after it, so the piece has one more; a match that touches its end is found again.
        const std::size_t end = std::min(text_.size(), from_ + kPiece + length + 1);
        const std::size_t at = needle_->Find(text_.substr(0, end), from_);
        if (at != std::string_view::npos && (end == text_.size() || at + length < end)) {
            from_ = at + length;
            return MatchSpan{at, length};
        }
        if (end == text_.size() || (stopped_ != nullptr && stopped_())) return std::nullopt;
        from_ = end - length;
    }
}

std::optional<MatchSpan> TextMatcher::NextOfExpression() {
    const RegexResult result = expression_->Next();
    tooComplex_ = result == RegexResult::TooComplex;
    if (result != RegexResult::Match) return std::nullopt;
    const FindSpan match = expression_->Match();
    return MatchSpan{static_cast<std::size_t>(match.start), static_cast<std::size_t>(match.end - match.start)};
}

std::string TextMatcher::Preview() const {
    if (expression_ == nullptr || !with_) return {};
    std::string text = Replacement(*with_, " ");
    if (text.size() > kShownBytes) text.resize(WholeCharacters(std::string_view{text}.substr(0, kShownBytes)));
    return text;
}

std::string TextMatcher::Replacement(std::string_view with, std::string_view breaks) const {
    if (expression_ == nullptr) return std::string{with};
    ReplaceForm form;
    RegexFault fault;
    ReplaceParse(with, expression_->Code(), find_, {.preserveCase = preserveCase_, .lineBreak = breaks}, form, fault);
    return ReplaceExpand(form, *expression_);
}

FileHits HitsInText(std::string_view utf8, TextMatcher& matcher, std::size_t most, const SearchStopped& stopped) {
    FileHits found;
    std::size_t counted = 0, line = 0;
    matcher.Begin(utf8, stopped);
    while (const std::optional<MatchSpan> match = matcher.Next()) {
        if (found.hits.size() == most) {
            found.more = true;
            break;
        }
        line += CountBreaks(utf8, counted, match->start);
        counted = match->start;
        FileHit hit;
        hit.start = static_cast<std::uint32_t>(match->start);
        hit.length = static_cast<std::uint32_t>(match->length);
        hit.line = static_cast<std::uint32_t>(line);
        ShowLineOfHit(utf8, hit);
        hit.preview = matcher.Preview();
        found.hits.push_back(std::move(hit));
        if (stopped != nullptr && stopped()) break;
    }
    if (matcher.TooComplex()) found.kind = FileKind::TooComplex;
    return found;
}

FileHits HitsInBytes(std::string_view bytes, TextMatcher& matcher, const AnsiDecoder& ansi, std::size_t most,
                     const SearchStopped& stopped) {
    const bool marked = bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
    if (!marked && FindNul(bytes.substr(0, kSniffed)) == std::string_view::npos) {
        // Most files are decoded as they are, or have no match.
        if (matcher.FindsInBytes()) {
            matcher.Begin(bytes, stopped);
            if (!matcher.Next()) return {};
        }
        if (IsValidUtf8Bytes(bytes.data(), bytes.size())) return HitsInText(bytes, matcher, most, stopped);
    }
    SourceText text;
    if (!DecodeSource(bytes, ansi, &text)) return {.kind = FileKind::NotDecoded};
    const std::string_view utf8 = text.asItIs ? bytes : std::string_view{text.utf8};
    if (text.form.utf16 == Utf16Order::None && FindNul(utf8.substr(0, kSniffed)) != std::string_view::npos)
        return {.kind = FileKind::Binary};
    return HitsInText(utf8, matcher, most, stopped);
}
