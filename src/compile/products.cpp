#include "compile/products.h"

#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "compile/build_plan.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr std::uint64_t kLongestCopied = 16 * 1024 * 1024;  // bytes of a file that is copied before a build
constexpr int kKeptNames = 9;

// Takes a number and the blank after it.
bool TakeNumber(std::string_view& line, std::uint64_t* number) {
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), *number);
    if (error != std::errc{} || end == line.data() + line.size() || *end != ' ') return false;
    line.remove_prefix(static_cast<std::size_t>(end - line.data()) + 1);
    return true;
}

std::optional<FileStamp> StampNow(const std::wstring& path, const ProductDisk& disk) {
    FileStamp stamp;
    return disk.stamp(path, &stamp) ? std::optional(stamp) : std::nullopt;
}

// The user's file is copied and not moved, because the source may read it.
std::wstring CopyBeside(const std::wstring& path, const FileStamp& stamp, const ProductDisk& disk) {
    if (stamp.length > kLongestCopied) return {};
    for (int attempt = 1; attempt <= kKeptNames; ++attempt) {
        std::wstring copy = path + L".kvx-kept" + std::to_wstring(attempt);
        if (disk.copyNew(path, copy)) return copy;
    }
    return {};
}

WatchedFile Watch(const std::wstring& path, bool copied, const ProductDisk& disk) {
    WatchedFile file = {.path = path, .before = StampNow(path, disk), .copy = {}};
    if (copied && file.before) file.copy = CopyBeside(path, *file.before, disk);
    return file;
}

// Whether a build may write the file. Otherwise there is a line that names it.
bool MayBeWritten(const std::vector<Product>& known, const std::wstring& path, const wchar_t* left,
                  const ProductDisk& disk, std::vector<std::wstring>* lines) {
    if (!StampNow(path, disk) || ProductIsMadeHere(known, path, disk)) return true;
    lines->push_back(TextWith(L"{1}, because no build of this editor has made {2}\r\n", {left, path}));
    return false;
}

}  // namespace

void ProductNote(std::vector<Product>& products, std::wstring_view path, const FileStamp& stamp) {
    std::erase_if(products, [path](const Product& product) { return SamePathText(product.path, path); });
    if (products.size() >= kMostProducts) products.erase(products.begin());
    products.push_back({.path = std::wstring(path), .stamp = stamp});
}

bool ProductIsKnown(const std::vector<Product>& products, std::wstring_view path, const FileStamp& now) {
    return std::ranges::any_of(
        products, [&](const Product& product) { return product.stamp == now && SamePathText(product.path, path); });
}

std::string ProductsText(const std::vector<Product>& products) {
    std::string text;
    for (const Product& product : products)
        text += std::to_string(product.stamp.written) + ' ' + std::to_string(product.stamp.length) + ' ' +
                ToUtf8(product.path) + '\n';
    return text;
}

std::vector<Product> ProductsOfText(std::string_view text) {
    std::vector<Product> products;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        Product product;
        if (!TakeNumber(line, &product.stamp.written) || !TakeNumber(line, &product.stamp.length) || line.empty())
            continue;
        product.path = Utf8ToWideText(line);
        products.push_back(std::move(product));
    }
    return products;
}

bool IsBuildLogText(std::string_view text) { return text.starts_with("--- Build started: "); }

bool ProductIsMadeHere(const std::vector<Product>& known, const std::wstring& path, const ProductDisk& disk) {
    const std::optional<FileStamp> now = StampNow(path, disk);
    if (!now) return false;
    return ProductIsKnown(known, path, *now) ||
           (PathEqualsIgnoreCase(FileExtension(path), L".buildlog") && disk.isBuildLog(path));
}

ProductGuard ProductsGuard(const ProductPaths& paths, const std::vector<Product>& known, const ProductDisk& disk,
                           std::vector<WatchedFile>* watched) {
    const std::wstring log = ReplaceExtension(paths.source, L".buildlog");
    ProductGuard guard;
    watched->clear();
    guard.log = !SamePathText(log, paths.source) && MayBeWritten(known, log, Text(L"No build log"), disk, &guard.lines);
    guard.listing = !paths.listing.empty() && !SamePathText(paths.listing, paths.source) &&
                    MayBeWritten(known, paths.listing, Text(L"No assembly listing"), disk, &guard.lines);
    watched->push_back(Watch(paths.output, false, disk));
    if (guard.log) watched->push_back(Watch(log, false, disk));
    if (guard.listing) watched->push_back(Watch(paths.listing, false, disk));
    for (const std::wstring& path : SideFilesOf(paths.source))
        watched->push_back(Watch(path, !ProductIsMadeHere(known, path, disk), disk));
    return guard;
}

std::vector<std::wstring> ProductsTakeUp(const std::vector<WatchedFile>& watched, std::vector<Product>& products,
                                         const ProductDisk& disk, bool* changed) {
    std::vector<std::wstring> lines;
    *changed = false;
    for (const WatchedFile& file : watched) {
        const std::optional<FileStamp> now = StampNow(file.path, disk);
        // What the user saved meanwhile is no product of the build.
        if (now && now != file.before && !disk.isOpen(file.path)) {
            ProductNote(products, file.path, *now);
            *changed = true;
        }
        if (file.copy.empty()) continue;
        if (now == file.before)
            disk.remove(file.copy);
        else
            lines.push_back(TextWith(L"The compiler has overwritten your file {1}, which is kept as {2}\r\n",
                                     {file.path, file.copy}));
    }
    return lines;
}
