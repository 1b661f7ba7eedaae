// Decides what the project tree shows of a folder, and which names can be given. Pure.
#include "project/tree_rules.h"

#include "base/bounded_text.h"
#include "base/path.h"
#include "base/texts.h"
#include "settings/file_type_table.h"

#include <algorithm>
#include <cwctype>
#include <iterator>
#include <span>

namespace {

constexpr std::wstring_view kIncludes[] = {L".inc", L".bi", L".pbi", L".h", L".hpp", L".hxx"};
constexpr std::wstring_view kResources[] = {L".rc",  L".rc2", L".manifest", L".ico",  L".cur",
                                            L".bmp", L".png", L".jpg",      L".jpeg", L".gif"};
constexpr std::wstring_view kTexts[] = {L".txt",  L".md",      L".ini",     L".json",      L".xml", L".log",
                                        L".bat",  L".cmd",     L".ps1",     L".sh",        L".cfg", L".yml",
                                        L".yaml", L".csv",     L".lst",     L".map",       L".def", L".htm",
                                        L".html", L".kvxsess", L".kvxproj", L".gitignore", L""};
constexpr std::wstring_view kBinaries[] = {
    L".exe", L".dll", L".obj", L".o",   L".a",   L".lib", L".pdb", L".ilk", L".exp",  L".res", L".com", L".sys",
    L".ocx", L".pch", L".gch", L".pyc", L".zip", L".7z",  L".gz",  L".rar", L".cab",  L".msi", L".png", L".jpg",
    L".gif", L".bmp", L".ico", L".cur", L".tif", L".mp3", L".wav", L".mp4", L".avi",  L".pdf", L".ttf", L".otf",
    L".db",  L".mdb", L".chm", L".bin", L".iso", L".dmp", L".so",  L".jar", L".webp", L".jpeg"};

bool IsOneOf(std::span<const std::wstring_view> extensions, std::wstring_view extension) {
    return std::ranges::any_of(
        extensions, [&](std::wstring_view each) { return PathEqualsIgnoreCase(each, extension); });
}

// The names of devices, which the system takes for them whatever the extension.
bool IsDeviceName(std::wstring_view name) {
    const std::wstring_view stem = name.substr(0, name.find(L'.'));
    for (const std::wstring_view device : {L"CON", L"PRN", L"AUX", L"NUL"})
        if (PathEqualsIgnoreCase(stem, device)) return true;
    return stem.size() == 4 && stem[3] >= L'1' && stem[3] <= L'9' &&
           (PathEqualsIgnoreCase(stem.substr(0, 3), L"COM") || PathEqualsIgnoreCase(stem.substr(0, 3), L"LPT"));
}

}  // namespace

bool TreeShows(const TreeFilter& filter, std::wstring_view name, bool isFolder, bool isHidden) {
    if (name.empty() || name == L"." || name == L"..") return false;
    if (!filter.hidden && (name.front() == L'.' || isHidden)) return false;
    if (isFolder) return true;
    if (filter.sourcesOnly) return FileTypeOfPath(name) != nullptr;
    return filter.binaries || !TreeIsBinary(name);
}

TreePicture TreePictureOf(std::wstring_view name) {
    const std::wstring_view extension = FileExtension(name);
    if (IsOneOf(kIncludes, extension)) return TreePicture::Include;
    if (const FileType* type = FileTypeOfExtension(extension); type != nullptr) switch (type->language) {
            case Language::Basic: return TreePicture::Basic;
            case Language::C: return TreePicture::C;
            case Language::Assembly:
            case Language::GnuAssembly: return TreePicture::Assembly;
            case Language::None: break;
        }
    if (IsOneOf(kResources, extension)) return TreePicture::Resource;
    return IsOneOf(kTexts, extension) ? TreePicture::Text : TreePicture::Other;
}

bool TreeIsBinary(std::wstring_view name) { return IsOneOf(kBinaries, FileExtension(name)); }

void TreeSort(std::vector<TreeEntry>& entries) {
    const auto lower = [](wchar_t letter) { return std::towlower(static_cast<std::wint_t>(letter)); };
    const auto before = [&](const TreeEntry& a, const TreeEntry& b) {
        if (a.isFolder != b.isFolder) return a.isFolder;
        return std::lexicographical_compare(a.name.begin(), a.name.end(), b.name.begin(), b.name.end(),
                                            [&](wchar_t x, wchar_t y) { return lower(x) < lower(y); });
    };
    // Most systems list the names in order, so that only the folders have to come first.
    if (!std::is_sorted(entries.begin(), entries.end(), before)) std::sort(entries.begin(), entries.end(), before);
}

std::wstring TreeJoin(std::wstring_view folder, std::wstring_view name) {
    std::wstring path{folder};
    if (!path.ends_with(L'\\')) path += L'\\';
    return path.append(name);
}

std::wstring TreeRootOf(std::wstring_view setting) {
    std::wstring root{setting};
    while (root.size() > 1 && root.ends_with(L'\\')) root.pop_back();
    return root.ends_with(L':') ? root + L"\\" : root;
}

std::wstring TreeRootLabel(std::wstring_view root) {
    std::wstring_view trimmed = root;
    while (!trimmed.empty() && trimmed.back() == L'\\') trimmed.remove_suffix(1);
    const std::size_t slash = trimmed.rfind(L'\\');
    const std::wstring_view last = slash == std::wstring_view::npos ? trimmed : trimmed.substr(slash + 1);
    return std::wstring{last.empty() ? root : last};
}

std::wstring TreeRelative(std::wstring_view root, std::wstring_view path) {
    if (!PathIsWithin(root, path)) return std::wstring{path};
    while (root.ends_with(L'\\')) root.remove_suffix(1);
    path.remove_prefix(std::min(root.size() + 1, path.size()));
    return std::wstring{path};
}

std::wstring TreeNameTyped(std::wstring_view text) {
    const std::size_t first = text.find_first_not_of(L" \t");
    if (first == std::wstring_view::npos) return {};
    return std::wstring{text.substr(first, text.find_last_not_of(L" \t") - first + 1)};
}

std::wstring TreeNameProblem(std::wstring_view folder, std::wstring_view name) {
    if (name.empty()) return Text(L"A name needs at least one character.");
    if (name.find_first_of(L"\\/:*?\"<>|") != std::wstring_view::npos)
        return Text(L"A name cannot contain any of these characters:  \\ / : * ? \" < > |");
    if (std::ranges::any_of(name, [](wchar_t letter) { return letter < L' '; }))
        return Text(L"A name cannot contain control characters.");
    if (name.ends_with(L'.')) return Text(L"A name cannot end with a dot: Windows would leave it out.");
    if (IsDeviceName(name)) return Text(L"Windows keeps this name for a device.");
    if (name.size() > 255) return Text(L"A name can have at most 255 characters.");
    if (TreeJoin(folder, name).size() >= kPathCapacity - 1)
        return Text(L"The whole path would be too long for the editor.");
    return {};
}

std::size_t TreeStemLength(std::wstring_view name, bool isFolder) {
    const std::size_t dot = name.rfind(L'.');
    return isFolder || dot == std::wstring_view::npos || dot == 0 ? name.size() : dot;
}

std::int32_t TreeFirstWidth(std::int32_t width) { return width > 400 ? 200 : width; }
