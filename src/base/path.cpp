// Text of paths. Nothing here looks at the disk. Pure; any thread.
#include "base/path.h"

#include "base/bounded_text.h"

#include <algorithm>
#include <cwchar>

namespace {

constexpr std::size_t kPlainLimit = 248;

// The length of the directory part with its backslash.
std::size_t DirectoryLength(std::wstring_view path) {
    const std::size_t last = path.rfind(L'\\');
    return last == std::wstring_view::npos ? 0 : last + 1;
}

// Upper-case letters that the file system treats like their lower-case partners. With step 1, each letter of the range
// is `delta` below its partner. With step 2, upper and lower case alternate, and the first letter is upper case.
struct CaseRange {
    int first;
    int last;
    int delta;
    int step;
};
constexpr CaseRange kCaseRanges[] = {
    {0x41, 0x5A, 32, 1},     {0xC0, 0xD6, 32, 1},   {0xD8, 0xDE, 32, 1},    {0x100, 0x12E, 1, 2},
    {0x132, 0x136, 1, 2},    {0x139, 0x147, 1, 2},  {0x14A, 0x176, 1, 2},   {0x178, 0x178, 0xFF - 0x178, 1},
    {0x179, 0x17D, 1, 2},    {0x386, 0x386, 38, 1}, {0x388, 0x38A, 37, 1},  {0x38C, 0x38C, 64, 1},
    {0x38E, 0x38F, 63, 1},   {0x391, 0x3A1, 32, 1}, {0x3A3, 0x3AB, 32, 1},  {0x400, 0x40F, 80, 1},
    {0x410, 0x42F, 32, 1},   {0x460, 0x480, 1, 2},  {0x48A, 0x4BE, 1, 2},   {0x4C1, 0x4CD, 1, 2},
    {0x4D0, 0x52E, 1, 2},    {0x531, 0x556, 48, 1}, {0x1E00, 0x1E94, 1, 2}, {0x1EA0, 0x1EFE, 1, 2},
    {0xFF21, 0xFF3A, 32, 1},
};

int FoldCase(wchar_t character) {
    const auto c = static_cast<int>(character);
    for (const CaseRange& range : kCaseRanges) {
        if (c < range.first) break;
        if (c <= range.last) return (c - range.first) % range.step == 0 ? c + range.delta : c;
    }
    return c;
}

}  // namespace

bool StrStartsWithW(const wchar_t* text, const wchar_t* prefix) {
    return text != nullptr && prefix != nullptr && std::wstring_view{text}.starts_with(prefix);
}

void PathGetDir(const wchar_t* path, wchar_t* out, std::size_t capacity) {
    if (path == nullptr) return;
    const std::wstring_view whole = path;
    SafeCopyW(out, capacity, whole.substr(0, DirectoryLength(whole)));
}

void PathGetFile(const wchar_t* path, wchar_t* out, std::size_t capacity) {
    if (path == nullptr) return;
    const std::wstring_view whole = path;
    SafeCopyW(out, capacity, whole.substr(DirectoryLength(whole)));
}

void PathJoin(const wchar_t* directory, const wchar_t* name, wchar_t* out, std::size_t capacity) {
    if (directory == nullptr || name == nullptr || out == nullptr || capacity == 0) return;
    const std::wstring_view folder = directory;
    const std::wstring_view file = name;
    const bool separator = folder.empty() || folder.back() != L'\\';
    if (folder.size() + file.size() + (separator ? 1 : 0) >= capacity) {
        SafeCopyW(out, capacity, folder);
        return;
    }
    // Joined in a string of its own, because `out` may be one of the inputs.
    std::wstring joined{folder};
    if (separator) joined += L'\\';
    joined += file;
    SafeCopyW(out, capacity, joined);
}

void StripTrailingSlash(wchar_t* path) {
    if (path == nullptr) return;
    std::size_t length = std::wcslen(path);
    while (length > 0 && path[length - 1] == L'\\') path[--length] = L'\0';
}

bool PathEqualsIgnoreCase(std::wstring_view a, std::wstring_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && FoldCase(a[i]) != FoldCase(b[i])) return false;
    return true;
}

wchar_t PathFoldedCharacter(wchar_t character) { return static_cast<wchar_t>(FoldCase(character)); }

std::wstring PathKey(std::wstring_view path) {
    std::wstring key{path};
    for (wchar_t& character : key) character = PathFoldedCharacter(character);
    return key;
}

wchar_t OtherCase(wchar_t character) {
    const auto c = static_cast<int>(character);
    for (const CaseRange& range : kCaseRanges) {
        const bool isUpper = range.first <= c && c <= range.last && (c - range.first) % range.step == 0;
        if (isUpper) return static_cast<wchar_t>(c + range.delta);
        const int upper = c - range.delta;
        if (range.first <= upper && upper <= range.last && (upper - range.first) % range.step == 0)
            return static_cast<wchar_t>(upper);
    }
    return character;
}

bool PathIsWithin(std::wstring_view folder, std::wstring_view path) {
    while (folder.ends_with(L'\\')) folder.remove_suffix(1);
    return !folder.empty() && path.size() >= folder.size() &&
           PathEqualsIgnoreCase(path.substr(0, folder.size()), folder) &&
           (path.size() == folder.size() || path[folder.size()] == L'\\');
}

std::wstring PathAfterMove(std::wstring_view path, std::wstring_view from, std::wstring_view to) {
    if (!PathIsWithin(from, path)) return std::wstring{path};
    return std::wstring{to} + std::wstring{path.substr(from.size())};
}

bool PathIsAbsolute(std::wstring_view path) {
    return (path.size() > 1 && path[1] == L':') || path.starts_with(L"\\\\");
}

std::wstring PathExtended(std::wstring_view path) {
    if (path.size() < kPlainLimit || path.starts_with(L"\\\\?\\") || path.starts_with(L"\\\\.\\"))
        return std::wstring{path};
    if (path.starts_with(L"\\\\")) return L"\\\\?\\UNC\\" + std::wstring{path.substr(2)};
    if (path.size() > 2 && path[1] == L':' && path[2] == L'\\') return L"\\\\?\\" + std::wstring{path};
    return std::wstring{path};
}

static std::size_t ExtensionStart(std::wstring_view path) {
    const std::size_t slash = path.find_last_of(L"\\/");
    const std::size_t dot = path.rfind(L'.');
    const bool inName = dot != std::wstring_view::npos && (slash == std::wstring_view::npos || dot > slash);
    return inName ? dot : path.size();
}

std::wstring ReplaceExtension(std::wstring_view path, std::wstring_view extension) {
    return std::wstring(path.substr(0, ExtensionStart(path))) + std::wstring(extension);
}

std::wstring_view FileExtension(std::wstring_view path) { return path.substr(ExtensionStart(path)); }

bool SamePathText(std::wstring_view a, std::wstring_view b) {
    const auto backslashed = [](std::wstring_view path) {
        std::wstring text(path);
        std::replace(text.begin(), text.end(), L'/', L'\\');
        return text;
    };
    return PathEqualsIgnoreCase(backslashed(a), backslashed(b));
}

std::wstring_view FileNameOf(std::wstring_view path) {
    return path.substr(path.find_last_of(L"\\/") + 1);  // npos + 1 is 0
}

std::wstring FolderOf(std::wstring_view path) {
    const std::size_t slash = path.find_last_of(L"\\/");
    if (slash == std::wstring_view::npos) return {};
    const bool root = slash == 0 || path[slash - 1] == L':';
    return std::wstring(path.substr(0, slash + (root ? 1 : 0)));
}
