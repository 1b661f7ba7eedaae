// Compares sixteen places at once with two bytes of the text that are seldom in a source, and looks closer only where
// both are. SSE2 belongs to every x64 processor.
#include "search/files_search_needle.h"

#include "base/path.h"
#include "base/utf8.h"

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::size_t kStep = 16;

// The bytes of sources, from the most frequent on; all others are rarer.
constexpr std::string_view kFrequent =
    " etaionrslcdupm\nfh(),g\r.yb\t_=10ISTwvxENRAk2LCD\"OPk;-:M/4F3U*BG85'6zj97HVq><WXY[]KZ{}Q+#&";

std::size_t Rarity(char byte) { return std::min(kFrequent.find(byte), kFrequent.size()); }

__m128i Load16(const char* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }

// Bit i: byte i of the sixteen is one of the two.
__m128i EqualsEither(__m128i bytes, __m128i one, __m128i other) {
    return _mm_or_si128(_mm_cmpeq_epi8(bytes, one), _mm_cmpeq_epi8(bytes, other));
}

unsigned MaskOf(__m128i bytes) { return static_cast<unsigned>(_mm_movemask_epi8(bytes)); }

bool IsWordByte(char byte) {
    const auto c = static_cast<unsigned char>(byte);
    return c >= 0x80 || c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// The character in the other case, when that has as many bytes.
std::string OtherCaseOf(std::string_view character) {
    std::wstring wide = Utf8ToWideText(character);
    if (wide.size() == 1) wide[0] = OtherCase(wide[0]);
    std::string other = ToUtf8(wide);
    return other.size() == character.size() ? other : std::string{character};
}

}  // namespace

TextNeedle::TextNeedle(std::string_view utf8, bool matchCase, bool wholeWord) : text_(utf8), wholeWord_(wholeWord) {
    isAscii_ = std::ranges::none_of(text_, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
    other_ = text_;
    for (std::size_t at = 0; !matchCase && at < text_.size();) {
        std::size_t end = at + 1;
        while (end < text_.size() && (static_cast<unsigned char>(text_[end]) & 0xC0U) == 0x80U) ++end;
        other_.replace(at, end - at, OtherCaseOf(std::string_view{text_}.substr(at, end - at)));
        characters_.push_back(static_cast<char>(end - at));
        at = end;
    }
    const auto rarity = [this](std::size_t i) { return std::min(Rarity(text_[i]), Rarity(other_[i])); };
    for (std::size_t i = 1; i < text_.size(); ++i)
        if (rarity(i) > rarity(rare_)) rare_ = i;
    second_ = rare_ == 0 ? text_.size() - 1 : 0;
    for (std::size_t i = 0; i < text_.size(); ++i)
        if (i != rare_ && rarity(i) > rarity(second_)) second_ = i;
}

bool TextNeedle::IsAt(const char* at) const {
    if (characters_.empty()) return std::memcmp(at, text_.data(), text_.size()) == 0;
    std::size_t i = 0;
    for (const char length : characters_) {
        const std::size_t bytes = static_cast<unsigned char>(length);
        if (std::memcmp(at + i, text_.data() + i, bytes) != 0 && std::memcmp(at + i, other_.data() + i, bytes) != 0)
            return false;
        i += bytes;
    }
    return true;
}

std::size_t TextNeedle::FindText(std::string_view text, std::size_t from) const {
    if (text.size() < text_.size()) return kNone;
    const std::size_t places = text.size() - text_.size() + 1;  // at which a match may begin
    const auto all = [](char byte) { return _mm_set1_epi8(byte); };
    const __m128i rare = all(text_[rare_]), rareOther = all(other_[rare_]);
    const __m128i second = all(text_[second_]), secondOther = all(other_[second_]);
    std::size_t at = from;
    for (; at + kStep <= places; at += kStep) {
        const char* const here = text.data() + at;
        unsigned mask = MaskOf(_mm_and_si128(EqualsEither(Load16(here + rare_), rare, rareOther),
                                             EqualsEither(Load16(here + second_), second, secondOther)));
        for (; mask != 0; mask &= mask - 1) {
            const auto i = static_cast<std::size_t>(std::countr_zero(mask));
            if (IsAt(here + i)) return at + i;
        }
    }
    for (; at < places; ++at)
        if (IsAt(text.data() + at)) return at;
    return kNone;
}

std::size_t TextNeedle::Find(std::string_view text, std::size_t from) const {
    std::size_t at = FindText(text, from);
    while (wholeWord_ && at != kNone && !IsWholeWord(text, at, at + text_.size())) at = FindText(text, at + 1);
    return at;
}

bool IsWholeWord(std::string_view text, std::size_t start, std::size_t end) {
    if (start >= end) return false;
    const bool goesOnBefore = start > 0 && IsWordByte(text[start - 1]) && IsWordByte(text[start]);
    const bool goesOnAfter = end < text.size() && IsWordByte(text[end - 1]) && IsWordByte(text[end]);
    return !goesOnBefore && !goesOnAfter;
}

std::size_t FindNul(std::string_view bytes) {
    std::size_t at = 0;
    for (const __m128i zero = _mm_setzero_si128(); at + kStep <= bytes.size(); at += kStep) {
        const unsigned mask = MaskOf(_mm_cmpeq_epi8(Load16(bytes.data() + at), zero));
        if (mask != 0) return at + static_cast<std::size_t>(std::countr_zero(mask));
    }
    for (; at < bytes.size(); ++at)
        if (bytes[at] == '\0') return at;
    return kNone;
}

std::size_t CountBreaks(std::string_view text, std::size_t from, std::size_t to) {
    std::size_t breaks = 0;
    std::size_t at = from;
    const __m128i feed = _mm_set1_epi8('\n'), carriage = _mm_set1_epi8('\r');
    for (; at + kStep <= to && at + kStep < text.size(); at += kStep) {
        const __m128i bytes = Load16(text.data() + at);
        const __m128i nextFeeds = _mm_cmpeq_epi8(Load16(text.data() + at + 1), feed);
        const unsigned feeds = MaskOf(_mm_cmpeq_epi8(bytes, feed));
        const unsigned alone = MaskOf(_mm_andnot_si128(nextFeeds, _mm_cmpeq_epi8(bytes, carriage)));
        breaks += static_cast<std::size_t>(std::popcount(feeds) + std::popcount(alone));
    }
    for (; at < to; ++at) {
        const bool beforeFeed = at + 1 < text.size() && text[at + 1] == '\n';
        if (text[at] == '\n' || (text[at] == '\r' && !beforeFeed)) ++breaks;
    }
    return breaks;
}
