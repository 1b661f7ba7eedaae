// Checks UTF-8 and converts line breaks of whole files, mostly eight bytes at a time: a source of 100 MB is checked
// whenever it is opened. Pure; any thread.
#include "files/text_encoding.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::uint64_t kLowBits = 0x0101010101010101U;
constexpr std::uint64_t kHighBits = 0x8080808080808080U;

std::uint64_t Load8(const char* at) {
    std::uint64_t word = 0;
    std::memcpy(&word, at, sizeof word);
    return word;
}

// Sets the high bit of each zero byte of `word`. A byte of 1 above a zero byte may be set too, so a hit is checked byte
// by byte.
constexpr std::uint64_t ZeroBytes(std::uint64_t word) { return (word - kLowBits) & ~word & kHighBits; }

const char* SkipAscii(const char* at, const char* end) {
    while (end - at >= 32) {
        if (((Load8(at) | Load8(at + 8) | Load8(at + 16) | Load8(at + 24)) & kHighBits) != 0) break;
        at += 32;
    }
    while (end - at >= 8 && (Load8(at) & kHighBits) == 0) at += 8;
    while (at != end && static_cast<unsigned char>(*at) < 0x80) ++at;
    return at;
}

const char* FindLineBreak(const char* at, const char* end) {
    while (end - at >= 8) {
        const std::uint64_t word = Load8(at);
        if ((ZeroBytes(word ^ (kLowBits * '\n')) | ZeroBytes(word ^ (kLowBits * '\r'))) != 0) break;
        at += 8;
    }
    while (at != end && *at != '\n' && *at != '\r') ++at;
    return at;
}

const char* AfterLineBreak(const char* at, const char* end) {
    return *at == '\r' && end - at > 1 && at[1] == '\n' ? at + 2 : at + 1;
}

// The length of the sequence that begins at `at` with a byte of 0x80 or more. 0 when it is not well formed.
std::size_t SequenceLength(const char* at, const char* end) {
    const auto byte = [at](std::size_t i) { return static_cast<unsigned char>(at[i]); };
    const auto left = static_cast<std::size_t>(end - at);
    const unsigned lead = byte(0);
    std::size_t length = 0;
    unsigned low = 0x80;  // limits of the second byte: no overlong forms, surrogates, or code points beyond U+10FFFF
    unsigned high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : low;
        high = lead == 0xED ? 0x9F : high;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : low;
        high = lead == 0xF4 ? 0x8F : high;
    }
    if (length == 0 || length > left || byte(1) < low || byte(1) > high) return 0;
    for (std::size_t i = 2; i < length; ++i)
        if ((byte(i) & 0xC0U) != 0x80U) return 0;
    return length;
}

}  // namespace

const wchar_t* EncodingName(TextEncoding encoding, const DiskForm& form) {
    if (form.utf16 != Utf16Order::None) return form.utf16 == Utf16Order::Little ? L"UTF-16 LE" : L"UTF-16 BE";
    return encoding == TextEncoding::Ansi ? L"ANSI" : L"UTF-8";
}

bool IsValidUtf8Bytes(const char* bytes, std::size_t length) {
    if (length == 0) return true;
    const char* const end = bytes + length;
    for (const char* at = SkipAscii(bytes, end); at != end;) {
        const std::size_t taken = SequenceLength(at, end);
        if (taken == 0) return false;
        at += taken;
        // In text of another script the next byte is seldom ASCII, and SkipAscii pays only when it is.
        if (at != end && static_cast<unsigned char>(*at) < 0x80) at = SkipAscii(at, end);
    }
    return true;
}

bool HasNul(std::string_view bytes) {
    for (; bytes.size() >= 32; bytes.remove_prefix(32)) {
        const char* const at = bytes.data();
        if ((ZeroBytes(Load8(at)) | ZeroBytes(Load8(at + 8)) | ZeroBytes(Load8(at + 16)) | ZeroBytes(Load8(at + 24))) !=
            0)
            return true;
    }
    return bytes.find('\0') != std::string_view::npos;
}

std::ptrdiff_t FirstRefusedCharacter(std::string_view utf8, const std::function<bool(std::string_view)>& holds) {
    constexpr std::size_t kBlock = 1 << 16;
    const auto endOfCharacter = [&](std::size_t at) {
        while (at < utf8.size() && (static_cast<unsigned char>(utf8[at]) & 0xC0U) == 0x80U) ++at;
        return at;
    };
    for (std::size_t at = 0; at < utf8.size();) {
        const std::size_t end = endOfCharacter(std::min(utf8.size(), at + kBlock));
        const char* const stop = utf8.data() + end;
        const auto firstWide = static_cast<std::size_t>(SkipAscii(utf8.data() + at, stop) - utf8.data());
        if (firstWide < end && !holds(utf8.substr(at, end - at))) {
            for (std::size_t first = firstWide; first < end;) {
                const std::size_t next = endOfCharacter(first + 1);
                if (static_cast<unsigned char>(utf8[first]) >= 0x80 && !holds(utf8.substr(first, next - first)))
                    return static_cast<std::ptrdiff_t>(first);
                first = next;
            }
        }
        at = end;
    }
    return -1;
}

LineEnding DetectLineEnding(const char* bytes, std::size_t length) {
    if (length == 0) return LineEnding::CrLf;
    const char* const end = bytes + length;
    const char* const at = FindLineBreak(bytes, end);
    if (at == end) return LineEnding::CrLf;
    if (*at == '\n') return LineEnding::Lf;
    return AfterLineBreak(at, end) - at == 2 ? LineEnding::CrLf : LineEnding::Cr;
}

char* NormalizeLineEndings(const char* bytes, std::size_t length, LineEnding lineEnding, std::size_t* outLength) {
    const char* const target = lineEnding == LineEnding::Lf ? "\n" : lineEnding == LineEnding::Cr ? "\r" : "\r\n";
    const std::size_t targetLength = std::strlen(target);
    const char* const begin = length == 0 ? "" : bytes;
    const char* const end = begin + length;

    std::size_t total = length;
    for (const char* at = FindLineBreak(begin, end); at != end; at = FindLineBreak(at, end)) {
        const char* const after = AfterLineBreak(at, end);
        total = total - static_cast<std::size_t>(after - at) + targetLength;
        at = after;
    }

    char* const result = static_cast<char*>(std::malloc(total + 1));
    if (result == nullptr) return nullptr;
    char* out = result;
    for (const char* at = begin;;) {
        const char* const lineEnd = FindLineBreak(at, end);
        const auto run = static_cast<std::size_t>(lineEnd - at);
        std::memcpy(out, at, run);
        out += run;
        if (lineEnd == end) break;
        std::memcpy(out, target, targetLength);
        out += targetLength;
        at = AfterLineBreak(lineEnd, end);
    }
    *out = '\0';
    if (outLength != nullptr) *outLength = total;
    return result;
}
