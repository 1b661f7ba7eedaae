#include "base/system_error.h"

#include <windows.h>

#include <iterator>

std::wstring SystemErrorText(std::uint32_t error) {
    wchar_t text[512] = {};
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text,
                   static_cast<DWORD>(std::size(text)), nullptr);
    const std::wstring whole = text;
    return whole.substr(0, whole.find_first_of(L"\r\n"));
}
