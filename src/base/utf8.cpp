// Text between UTF-8 and wide characters. Pure; any thread.
#include "base/utf8.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

constexpr bool IsHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
constexpr bool IsLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }
constexpr bool IsContinuation(unsigned char byte) { return (byte & 0xC0U) == 0x80U; }

constexpr char32_t Unit(wchar_t c) {
    return sizeof(wchar_t) == 2 ? static_cast<char16_t>(c) : static_cast<char32_t>(c);
}

// Takes the next code point off the front of `rest`, which is not empty.
char32_t TakeWide(std::wstring_view& rest) {
    const char32_t first = Unit(rest.front());
    rest.remove_prefix(1);
    if (IsHighSurrogate(first) && !rest.empty() && IsLowSurrogate(Unit(rest.front()))) {
        const char32_t second = Unit(rest.front());
        rest.remove_prefix(1);
        return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
    }
    return IsHighSurrogate(first) || IsLowSurrogate(first) || first > 0x10FFFF ? kReplacement : first;
}

void AppendUtf8(std::string& out, char32_t point) {
    const auto add = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (point < 0x80) {
        add(point);
    } else if (point < 0x800) {
        add(0xC0 | point >> 6);
        add(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        add(0xE0 | point >> 12);
        add(0x80 | (point >> 6 & 0x3F));
        add(0x80 | (point & 0x3F));
    } else {
        add(0xF0 | point >> 18);
        add(0x80 | (point >> 12 & 0x3F));
        add(0x80 | (point >> 6 & 0x3F));
        add(0x80 | (point & 0x3F));
    }
}

void AppendWide(std::wstring& out, char32_t point) {
    if (sizeof(wchar_t) == 2 && point >= 0x10000) {
        out.push_back(static_cast<wchar_t>(0xD800 + ((point - 0x10000) >> 10)));
        out.push_back(static_cast<wchar_t>(0xDC00 + ((point - 0x10000) & 0x3FF)));
    } else {
        out.push_back(static_cast<wchar_t>(point));
    }
}

// What may follow a lead byte: the number of bytes, and the limits of the first of them. The limits exclude overlong
// forms, surrogates and code points beyond U+10FFFF.
struct Sequence {
    int more = 0;  // 0: not a lead byte
    unsigned char low = 0x80, high = 0xBF;
};

constexpr Sequence SequenceOf(unsigned char lead) {
    if (lead >= 0xC2 && lead <= 0xDF) return {1};
    if (lead == 0xE0) return {2, 0xA0, 0xBF};
    if (lead == 0xED) return {2, 0x80, 0x9F};
    if (lead >= 0xE1 && lead <= 0xEF) return {2};
    if (lead == 0xF0) return {3, 0x90, 0xBF};
    if (lead == 0xF4) return {3, 0x80, 0x8F};
    if (lead >= 0xF1 && lead <= 0xF3) return {3};
    return {};
}

// Takes the next code point off the front of `rest`, which is not empty.
char32_t TakeUtf8(std::string_view& rest) {
    const auto lead = static_cast<unsigned char>(rest.front());
    rest.remove_prefix(1);
    if (lead < 0x80) return lead;
    const Sequence sequence = SequenceOf(lead);
    if (sequence.more == 0) return kReplacement;
    char32_t point = lead & (0x3FU >> sequence.more);
    for (int i = 0; i < sequence.more; ++i) {
        if (rest.empty()) return kReplacement;
        const auto byte = static_cast<unsigned char>(rest.front());
        const bool fits = i == 0 ? byte >= sequence.low && byte <= sequence.high : IsContinuation(byte);
        if (!fits) return kReplacement;
        point = point << 6 | (byte & 0x3FU);
        rest.remove_prefix(1);
    }
    return point;
}

template <typename Text>
auto* TerminatedBlock(const Text& text) {
    using Character = typename Text::value_type;
    auto* const block = static_cast<Character*>(std::malloc((text.size() + 1) * sizeof(Character)));
    if (block != nullptr) std::copy_n(text.c_str(), text.size() + 1, block);
    return block;
}

}  // namespace

std::string ToUtf8(std::wstring_view wide) {
    std::string out;
    out.reserve(wide.size());
    while (!wide.empty()) AppendUtf8(out, TakeWide(wide));
    return out;
}

std::wstring Utf8ToWideText(std::string_view utf8) {
    std::wstring out;
    out.reserve(utf8.size());
    while (!utf8.empty()) AppendWide(out, TakeUtf8(utf8));
    return out;
}

std::size_t WholeDoubleBytes(std::string_view bytes, std::string_view leadBytes) {
    if (leadBytes.empty()) return bytes.size();
    std::size_t at = 0;
    while (at < bytes.size()) {
        const std::size_t width = leadBytes.find(bytes[at]) != std::string_view::npos ? 2 : 1;
        if (width > bytes.size() - at) break;
        at += width;
    }
    return at;
}

char* WideToUtf8(const wchar_t* wide) { return wide == nullptr ? nullptr : TerminatedBlock(ToUtf8(wide)); }

wchar_t* Utf8ToWide(const char* utf8) { return utf8 == nullptr ? nullptr : TerminatedBlock(Utf8ToWideText(utf8)); }

std::size_t WholeCharacters(std::string_view bytes) {
    for (std::size_t back = 1; back <= 3 && back <= bytes.size(); ++back) {
        const auto byte = static_cast<unsigned char>(bytes[bytes.size() - back]);
        if (byte < 0x80) return bytes.size();
        if (byte < 0xC0) continue;
        const std::size_t needs = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
        return needs > back ? bytes.size() - back : bytes.size();
    }
    return bytes.size();
}
