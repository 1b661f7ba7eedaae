#include "build/decode.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>

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

}  // namespace

wchar_t* DecodeCompilerText(const char* bytes, std::size_t count) {
    if (bytes == nullptr || count == 0 || count > 0x7FFFFFFF) return nullptr;
    const int length = static_cast<int>(count);
    for (const UINT codePage : {static_cast<UINT>(CP_UTF8), static_cast<UINT>(CP_ACP), static_cast<UINT>(CP_OEMCP)}) {
        if (wchar_t* text = Convert(codePage, MB_ERR_INVALID_CHARS, bytes, length)) return text;
    }
    return Convert(CP_ACP, 0, bytes, length);
}
