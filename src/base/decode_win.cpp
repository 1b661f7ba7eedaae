#include "base/decode.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <span>

namespace {

wchar_t* Convert(UINT codePage, DWORD flags, const char* bytes, int count) {
    const int length = MultiByteToWideChar(codePage, flags, bytes, count, nullptr, 0);
    if (length <= 0) return nullptr;
    auto* text = static_cast<wchar_t*>(std::malloc((static_cast<std::size_t>(length) + 1) * sizeof(wchar_t)));
    if (text == nullptr) return nullptr;
    if (MultiByteToWideChar(codePage, flags, bytes, count, text, length) != length) {
        std::free(text);
        return nullptr;
    }
    *std::remove(text, text + length, L'\0') = L'\0';
    return text;
}

wchar_t* Decode(const char* bytes, std::size_t count, std::span<const UINT> codePages) {
    if (bytes == nullptr || count == 0 || count > 0x7FFFFFFF) return nullptr;
    const int length = static_cast<int>(count);
    for (const UINT codePage : codePages)
        if (wchar_t* text = Convert(codePage, MB_ERR_INVALID_CHARS, bytes, length)) return text;
    return Convert(CP_ACP, 0, bytes, length);
}

}  // namespace

std::string LeadBytesOf(unsigned codePage) {
    std::string bytes;
    for (int byte = 0x80; byte <= 0xFF; ++byte)
        if (IsDBCSLeadByteEx(codePage, static_cast<BYTE>(byte)) != FALSE) bytes += static_cast<char>(byte);
    return bytes;
}

wchar_t* DecodeCompilerText(const char* bytes, std::size_t count) {
    constexpr UINT codePages[] = {CP_UTF8, CP_ACP, CP_OEMCP};
    return Decode(bytes, count, codePages);
}

wchar_t* DecodeConsoleText(const char* bytes, std::size_t count) {
    constexpr UINT codePages[] = {CP_UTF8, CP_OEMCP};
    return Decode(bytes, count, codePages);
}
