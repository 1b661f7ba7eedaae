#include "app/recent_text.h"

#include "base/bounded_text.h"
#include "base/path.h"

#include <algorithm>

namespace {

constexpr std::size_t kLongest = 70;  // characters of a path in the menu
constexpr std::size_t kHead = 20;

// The start of the path, an ellipsis and its end. Cuts at a backslash where there is one nearby.
std::wstring Shortened(std::wstring_view path) {
    if (path.size() <= kLongest) return std::wstring(path);
    std::size_t head = path.rfind(L'\\', kHead);
    head = head == std::wstring_view::npos || head < 2 ? kHead : head + 1;
    std::size_t tail = path.size() - (kLongest - head - 3);
    if (const std::size_t folder = path.find(L'\\', tail); folder != std::wstring_view::npos) tail = folder;
    if (path[tail] >= 0xDC00 && path[tail] < 0xE000) ++tail;  // half of a character
    if (path[head - 1] >= 0xD800 && path[head - 1] < 0xDC00) --head;
    return std::wstring(path.substr(0, head)).append(L"...").append(path.substr(tail));
}

}  // namespace

std::wstring RecentMenuText(int index, std::wstring_view path) {
    std::wstring text = index == 9 ? L"1&0 " : L"&" + std::to_wstring(index + 1) + L" ";
    for (const wchar_t c : Shortened(path)) text.append(c == L'&' ? 2 : 1, c);  // a single & would be a mnemonic
    return text;
}

std::vector<int> SessionRowsToOffer(const Settings& settings, std::wstring_view ownSession) {
    std::vector<int> rows;
    const int count = std::clamp<int>(settings.sessionMruCount, 0, kMruCapacity);
    for (int i = 0; i < count; ++i)
        if (!PathEqualsIgnoreCase(FileNameOf(settings.sessionMruFiles[i]), FileNameOf(ownSession))) rows.push_back(i);
    return rows;
}

void RecentRowRemove(wchar_t (&rows)[kMruCapacity][kPathCapacity], std::int32_t& count, int row) {
    for (int i = row; i + 1 < count; ++i) SafeCopyW(rows[i], rows[i + 1]);
    if (row < count) --count;
}
