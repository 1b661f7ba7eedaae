// Which share a path is on. Pure.
#include "files/share_probe.h"

#include <algorithm>

std::wstring ShareRootOf(std::wstring_view path) {
    std::wstring text(path);
    std::ranges::replace(text, L'/', L'\\');
    constexpr std::wstring_view kLong = L"\\\\?\\UNC\\";
    if (text.size() >= kLong.size() && text.starts_with(L"\\\\?\\")) {
        if (!text.starts_with(kLong)) return {};
        text = L"\\\\" + text.substr(kLong.size());
    }
    if (!text.starts_with(L"\\\\") || text.starts_with(L"\\\\.\\")) return {};
    const std::size_t server = text.find(L'\\', 2);
    if (server == std::wstring::npos || server == 2) return {};
    const std::size_t share = std::min(text.find(L'\\', server + 1), text.size());
    return share > server + 1 ? text.substr(0, share) + L"\\" : std::wstring();
}
