// The names of recovery copies, and which copies are kept. Pure; any thread.
#include "files/recovery.h"

#include "base/path.h"

#include <algorithm>

namespace {

constexpr std::size_t kStemLimit = 120;  // characters; leaves room for folder, tag and extension
constexpr std::size_t kExtensionLimit = 20;

// 32-bit FNV-1a of the path with its ASCII letters in lower case. It tells targets of the same name apart.
std::uint32_t HashPath(std::wstring_view path) {
    std::uint32_t hash = 2166136261U;
    for (const wchar_t c : path) {
        const auto code = static_cast<std::uint32_t>(c >= L'A' && c <= L'Z' ? c + (L'a' - L'A') : c);
        for (unsigned shift = 0; shift < 16; shift += 8) hash = (hash ^ ((code >> shift) & 0xFFU)) * 16777619U;
    }
    return hash;
}

std::wstring Hex(std::uint32_t value) {
    std::wstring text;
    do {
        text.insert(text.begin(), L"0123456789abcdef"[value % 16]);
        value /= 16;
    } while (value != 0);
    return text;
}

}  // namespace

std::wstring RecoveryCopyName(std::wstring_view targetPath, std::uint32_t processId, std::uint32_t number) {
    const std::size_t slash = targetPath.find_last_of(L"\\/:");
    const std::wstring_view name = slash == std::wstring_view::npos ? targetPath : targetPath.substr(slash + 1);
    std::size_t dot = name.rfind(L'.');
    if (dot == std::wstring_view::npos || dot == 0 || name.size() - dot > kExtensionLimit) dot = name.size();
    std::wstring result{name.substr(0, std::min(dot, kStemLimit))};
    result += L" [" + Hex(HashPath(targetPath)) + L'-' + Hex(processId) + L'-' + std::to_wstring(number) + L']';
    result += name.substr(dot);
    return result;
}

std::uint32_t RecoveryCopyWriter(std::wstring_view name) {
    const std::size_t open = name.rfind(L" ["), close = name.rfind(L']');
    if (open == std::wstring_view::npos || close == std::wstring_view::npos || close < open) return 0;
    const std::wstring_view tag = name.substr(open + 2, close - open - 2);
    const std::size_t first = tag.find(L'-'), second = tag.rfind(L'-');
    if (first == std::wstring_view::npos || second == first || second - first > 9) return 0;
    std::uint32_t writer = 0;
    for (const wchar_t digit : tag.substr(first + 1, second - first - 1)) {
        const std::size_t value = std::wstring_view(L"0123456789abcdef").find(digit);
        if (value == std::wstring_view::npos) return 0;
        writer = writer * 16 + static_cast<std::uint32_t>(value);
    }
    return writer;
}

RecoveryNote ParseRecoveryNote(std::wstring_view text) {
    const std::size_t end = text.find(L'\n');
    if (end == std::wstring_view::npos) return {.target = std::wstring{text}, .run = {}};
    return {.target = std::wstring{text.substr(0, end)}, .run = std::wstring{text.substr(end + 1)}};
}

std::vector<RecoveryCopy> KeptCopies::Take(std::wstring_view target) {
    std::vector<RecoveryCopy> taken;
    std::erase_if(kept_, [&](const Kept& kept) {
        const bool same = PathEqualsIgnoreCase(kept.target, target);
        if (same) taken.push_back(kept.copy);
        return same;
    });
    return taken;
}

std::vector<RecoveryCopy> KeptCopies::Keep(std::wstring_view target, const RecoveryCopy& copy) {
    lastPath_ = copy.path;
    if (copy.path.empty()) return {};
    std::vector<RecoveryCopy> older = Take(target);
    kept_.push_back({std::wstring{target}, copy});
    return older;
}

std::vector<RecoveryCopy> KeptCopies::Forget(std::wstring_view target) {
    lastPath_.clear();
    return Take(target);
}

bool KeptCopies::Has(std::wstring_view target) const {
    return std::ranges::any_of(
        kept_, [target](const Kept& kept) { return PathEqualsIgnoreCase(kept.target, target); });
}
