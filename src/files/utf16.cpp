// UTF-16 files. Pure.
#include "files/utf16.h"

#include <algorithm>

namespace {

constexpr unsigned kMark = 0xFEFF;

unsigned UnitAt(std::string_view bytes, std::size_t at, Utf16Order order) {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    return order == Utf16Order::Big ? first * 256u + second : second * 256u + first;
}

bool IsLead(unsigned unit) { return (unit & 0xFC00u) == 0xD800u; }
bool IsTrail(unsigned unit) { return (unit & 0xFC00u) == 0xDC00u; }

// True for a control character that a text does not hold. DOS ends texts with 1A.
bool IsForeign(unsigned unit) { return unit < 0x20 && !(unit >= 0x09 && unit <= 0x0D) && unit != 0x1A; }

// True for what the line breaks of other files look like: neither 0A00 nor 0A0D is a character.
bool IsBreakOfBytes(unsigned unit) { return unit == 0x0A00 || unit == 0x0A0D; }

// Whether the bytes read like a text in that order of bytes.
bool ReadsLikeText(std::string_view head, Utf16Order order) {
    std::size_t ascii = 0;
    bool afterLead = false;
    for (std::size_t at = 0; at < head.size(); at += 2) {
        const unsigned unit = UnitAt(head, at, order);
        if (IsForeign(unit) || IsBreakOfBytes(unit) || IsTrail(unit) != afterLead || unit >= 0xFFFE) return false;
        afterLead = IsLead(unit);
        if (unit < 0x80) ++ascii;
    }
    return ascii * 4 >= head.size() / 2;
}

void AppendUtf8(char32_t code, std::string& out) {
    if (code < 0x80) {
        out += static_cast<char>(code);
        return;
    }
    const int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    constexpr unsigned kLeads[] = {0, 0xC0, 0xE0, 0xF0};
    out += static_cast<char>(kLeads[more] | (code >> (6 * more)));
    for (int i = more - 1; i >= 0; --i) out += static_cast<char>(0x80u | ((code >> (6 * i)) & 0x3Fu));
}

void AppendUnit(unsigned unit, Utf16Order order, std::string& out) {
    const auto high = static_cast<char>(unit >> 8);
    const auto low = static_cast<char>(unit & 0xFF);
    out += order == Utf16Order::Big ? high : low;
    out += order == Utf16Order::Big ? low : high;
}

// Takes one character from the front of the text. U+FFFD stands for a malformed byte.
char32_t TakeCharacter(std::string_view& utf8) {
    const auto lead = static_cast<unsigned char>(utf8.front());
    const std::size_t length = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (length > utf8.size() || !IsValidUtf8Bytes(utf8.data(), length)) {
        utf8.remove_prefix(1);
        return 0xFFFD;
    }
    char32_t code = length == 1 ? lead : lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) code = (code << 6) | (static_cast<unsigned char>(utf8[i]) & 0x3Fu);
    utf8.remove_prefix(length);
    return code;
}

}  // namespace

Utf16Kind Utf16KindOf(std::string_view head) {
    if (head.size() < 2) return {};
    for (const Utf16Order order : {Utf16Order::Little, Utf16Order::Big})
        if (UnitAt(head, 0, order) == kMark) return {.order = order, .mark = true};
    // Without a NUL byte there is no ASCII character in UTF-16.
    if (head.size() % 2 != 0 || head.find('\0') == std::string_view::npos) return {};
    for (const Utf16Order order : {Utf16Order::Little, Utf16Order::Big})
        if (ReadsLikeText(head.substr(0, WholeUtf16(head, order)), order)) return {.order = order, .mark = false};
    return {};
}

Utf16Kind Utf16KindAs(std::string_view head, SourceCode code) {
    if (code == SourceCode::Guess) return Utf16KindOf(head);
    if (!IsUtf16(code)) return {};
    const bool little = code == SourceCode::Utf16Little;
    return {.order = little ? Utf16Order::Little : Utf16Order::Big,
            .mark = head.starts_with(little ? "\xFF\xFE" : "\xFE\xFF")};
}

std::size_t WholeUtf16(std::string_view bytes, Utf16Order order) {
    const std::size_t whole = bytes.size() / 2 * 2;
    return whole >= 2 && IsLead(UnitAt(bytes, whole - 2, order)) ? whole - 2 : whole;
}

bool AppendUtf16AsUtf8(std::string_view bytes, Utf16Order order, std::string& out) {
    for (std::size_t at = 0; at < bytes.size(); at += 2) {
        if (bytes.size() - at < 2) return false;
        char32_t code = UnitAt(bytes, at, order);
        if (IsTrail(code)) return false;
        if (IsLead(code)) {
            if (bytes.size() - at < 4) return false;
            const unsigned trail = UnitAt(bytes, at += 2, order);
            if (!IsTrail(trail)) return false;
            code = 0x10000 + ((code - 0xD800) << 10) + (trail - 0xDC00);
        }
        AppendUtf8(code, out);
    }
    return true;
}

std::string Utf8AsUtf16(std::string_view utf8, Utf16Order order, bool mark) {
    std::string out;
    out.reserve(2 * utf8.size() + 2);
    if (mark) AppendUnit(kMark, order, out);
    while (!utf8.empty()) {
        const char32_t code = TakeCharacter(utf8);
        if (code >= 0x10000) AppendUnit(0xD800 + static_cast<unsigned>((code - 0x10000) >> 10), order, out);
        AppendUnit(code >= 0x10000 ? 0xDC00 + static_cast<unsigned>(code & 0x3FF) : static_cast<unsigned>(code), order,
                   out);
    }
    return out;
}
