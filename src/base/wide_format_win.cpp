// Wide formatting through the C runtime's own functions. Any thread.
#include "base/wide_format.h"

#include <algorithm>
#include <cwchar>

std::size_t FormatBufferArgsW(std::span<wchar_t> out, const wchar_t* format, std::va_list args) {
    if (out.empty()) return 0;
    // _vsnwprintf leaves the terminator out when the text fills the buffer, and returns a negative count when it
    // does not fit.
    const std::size_t room = out.size() - 1;
    const int written = _vsnwprintf(out.data(), room, format, args);
    out[room] = L'\0';
    if (written < 0) return std::wcslen(out.data());
    const std::size_t length = std::min(room, static_cast<std::size_t>(written));
    out[length] = L'\0';
    return length;
}

std::size_t FormatBufferW(std::span<wchar_t> out, const wchar_t* format, ...) {
    std::va_list args;
    va_start(args, format);
    const std::size_t length = FormatBufferArgsW(out, format, args);
    va_end(args);
    return length;
}

std::wstring FormatArgsW(const wchar_t* format, std::va_list args) {
    std::va_list measured;
    va_copy(measured, args);
    const int length = _vscwprintf(format, measured);
    va_end(measured);
    std::wstring text;
    if (length > 0) {
        text.resize(static_cast<std::size_t>(length));
        // The terminator that is written takes the place of the string's own.
        FormatBufferArgsW({text.data(), text.size() + 1}, format, args);
    }
    return text;
}

std::wstring FormatW(const wchar_t* format, ...) {
    std::va_list args;
    va_start(args, format);
    std::wstring text = FormatArgsW(format, args);
    va_end(args);
    return text;
}
