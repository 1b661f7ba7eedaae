#include "compile/products.h"

#include "base/path.h"
#include "base/utf8.h"

#include <algorithm>
#include <charconv>

namespace {

// Takes a number and the blank after it.
bool TakeNumber(std::string_view& line, std::uint64_t* number) {
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), *number);
    if (error != std::errc{} || end == line.data() + line.size() || *end != ' ') return false;
    line.remove_prefix(static_cast<std::size_t>(end - line.data()) + 1);
    return true;
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
