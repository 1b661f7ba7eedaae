// Encodes values for the system's INI functions, and reads the lines that these return. Pure; any thread.
#include "settings/ini_value.h"

#include "base/hex_digit.h"
#include "base/hex_text.h"
#include "base/path.h"

namespace {

constexpr std::wstring_view kEscaped = L"[ESC]";

// The characters that an implementation of the INI functions may treat as blanks.
bool IsIniBlank(wchar_t c) {
    const auto code = static_cast<unsigned>(c);
    return code <= 0x20 || code == 0x85 || code == 0xA0 || code == 0x1680 || (code >= 0x2000 && code <= 0x200A) ||
           code == 0x2028 || code == 0x2029 || code == 0x202F || code == 0x205F || code == 0x3000 || code == 0xFEFF;
}

bool IsQuote(wchar_t c) { return c == L'"' || c == L'\''; }

bool NeedsEscape(std::wstring_view value) {
    if (value.starts_with(kEscaped)) return true;
    for (const wchar_t c : value)
        if (static_cast<unsigned>(c) < 0x20 && c != L'\t') return true;
    return false;
}

std::wstring EscapeIni(std::wstring_view value) {
    std::wstring stored{kEscaped};
    for (const wchar_t c : value)
        if (c == L'\\')
            stored += L"\\\\";
        else if (c == L'\r')
            stored += L"\\r";
        else if (c == L'\n')
            stored += L"\\n";
        else if (static_cast<unsigned>(c) < 0x20)
            stored += L"\\x" + HexText(static_cast<unsigned>(c), 2);
        else
            stored += c;
    return stored;
}

// Text that is not an escape sequence is kept, because a user may have edited the file.
std::wstring UnescapeIni(std::wstring_view text) {
    std::wstring value;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const wchar_t next = text[i] == L'\\' && i + 1 < text.size() ? text[i + 1] : L'\0';
        if (next == L'\\' || next == L'r' || next == L'n') {
            value += next == L'r' ? L'\r' : next == L'n' ? L'\n' : L'\\';
            ++i;
        } else if (next == L'x' && i + 3 < text.size() && HexValue(text[i + 2]) >= 0 && HexValue(text[i + 3]) >= 0) {
            value += static_cast<wchar_t>(HexValue(text[i + 2]) * 16 + HexValue(text[i + 3]));
            i += 3;
        } else {
            value += text[i];
        }
    }
    return value;
}

std::wstring_view Trim(std::wstring_view text) {
    while (!text.empty() && (text.front() == L' ' || text.front() == L'\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == L' ' || text.back() == L'\t')) text.remove_suffix(1);
    return text;
}

}  // namespace

std::wstring EncodeIniValue(std::wstring_view value) {
    std::wstring stored = NeedsEscape(value) ? EscapeIni(value) : std::wstring{value};
    if (stored.empty()) return stored;
    const bool quoted = stored.size() > 1 && IsQuote(stored.front()) && stored.front() == stored.back();
    if (quoted || IsIniBlank(stored.front()) || IsIniBlank(stored.back())) {
        stored.insert(stored.begin(), L'"');
        stored += L'"';
    }
    return stored;
}

std::wstring DecodeIniValue(std::wstring_view stored) {
    return stored.starts_with(kEscaped) ? UnescapeIni(stored.substr(kEscaped.size())) : std::wstring{stored};
}

IniLine FindIniLine(std::wstring_view lines, std::wstring_view key) {
    while (!lines.empty()) {
        const std::wstring_view line = lines.substr(0, lines.find(L'\0'));
        lines.remove_prefix(line.size() < lines.size() ? line.size() + 1 : line.size());
        const std::size_t equals = line.find(L'=');
        if (equals == std::wstring_view::npos || !PathEqualsIgnoreCase(Trim(line.substr(0, equals)), key)) continue;
        const std::wstring_view value = Trim(line.substr(equals + 1));
        const bool quoted = !value.empty() && (IsQuote(value.front()) || IsQuote(value.back()));
        return {.kind = quoted ? IniLineKind::Quoted : IniLineKind::Plain, .value = value};
    }
    return {};
}

bool ParsePlainNumber(std::wstring_view text, int* number) {
    const bool negative = text.starts_with(L'-');
    const std::wstring_view digits = text.substr(negative ? 1 : 0);
    if (digits.empty() || digits.size() > 9 || (digits.size() > 1 && digits.front() == L'0'))
        return false;  // a leading zero may mark another base
    int value = 0;
    for (const wchar_t c : digits) {
        if (c < L'0' || c > L'9') return false;
        value = value * 10 + (c - L'0');
    }
    *number = negative ? -value : value;
    return true;
}
