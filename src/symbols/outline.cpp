// The rows of the outline. Pure.
#include "symbols/outline.h"

#include "base/texts.h"
#include "base/utf8.h"

#include <algorithm>

namespace {

bool IsShown(SymbolKind kind) {
    return kind != SymbolKind::Local && kind != SymbolKind::Parameter && kind != SymbolKind::Count;
}

// Whether the text holds the letters of the filter one after the other, without regard to ASCII case.
bool Holds(std::string_view text, std::string_view filter) {
    const auto found = std::search(text.begin(), text.end(), filter.begin(), filter.end(), [](char a, char b) {
        return CompareNames({&a, 1}, {&b, 1}) == 0;
    });
    return found != text.end();
}

std::string DetailOf(const SymbolTable& table, const Symbol& symbol) {
    if (!IsProcedure(symbol.kind) && symbol.kind != SymbolKind::Macro && symbol.detailLength != 0)
        return std::string(SymbolDetail(table, symbol));
    return std::string(SymbolType(table, symbol));
}

ListRow RowOf(const SymbolTable& table, const Symbol& symbol, bool indented) {
    std::string name;
    for (std::uint32_t c = symbol.container; indented && c != kNoSymbol; c = table.symbols[c].container) name += "    ";
    name += SymbolName(table, symbol);
    if (symbol.Is(kSymbolArray)) name += "()";
    if (IsProcedure(symbol.kind) || symbol.kind == SymbolKind::Macro) name += SymbolDetail(table, symbol);
    ListRow row{.cells = {std::wstring(OutlineMark(symbol.kind)), Utf8ToWideText(name),
                          Utf8ToWideText(DetailOf(table, symbol))}};
    // What has a body is what one looks for.
    if (symbol.Is(kSymbolDeclare) || symbol.kind == SymbolKind::Member || symbol.kind == SymbolKind::EnumValue)
        row.tone = ListTone::Quiet;
    return row;
}

std::vector<std::uint32_t> Chosen(const SymbolTable& table, const OutlineWish& wish) {
    std::vector<std::uint32_t> chosen;
    const std::string filter = ToUtf8(wish.filter);
    const auto take = [&](std::uint32_t index) {
        const Symbol& symbol = table.symbols[index];
        if (IsShown(symbol.kind) && (filter.empty() || Holds(SymbolName(table, symbol), filter)))
            chosen.push_back(index);
    };
    if (wish.byName)
        for (const std::uint32_t index : table.byName) take(index);
    else
        for (std::uint32_t i = 0; i < table.symbols.size(); ++i) take(i);
    return chosen;
}

}  // namespace

std::wstring_view OutlineMark(SymbolKind kind) {
    static constexpr std::wstring_view kMarks[] = {L"S", L"F", L"M", L"P", L"P", L"Q", L"X", L"T", L"U", L"E", L"C",
                                                   L"I", L"N", L".", L"=", L"=", L"G", L"",  L"",  L":", L"#"};
    static_assert(std::size(kMarks) == static_cast<std::size_t>(SymbolKind::Count));
    return kMarks[static_cast<std::size_t>(kind)];
}

Outline OutlineOf(const SymbolTable& table, const OutlineWish& wish) {
    Outline outline;
    outline.symbols = Chosen(table, wish);
    const std::size_t all = outline.symbols.size();
    if (all > kMostOutlineRows) outline.symbols.resize(kMostOutlineRows);
    for (const std::uint32_t index : outline.symbols)
        outline.content.rows.push_back(RowOf(table, table.symbols[index], !wish.byName && wish.filter.empty()));
    const auto tell = [&outline](std::wstring text) {
        outline.content.rows.push_back({.cells = {L"", std::move(text), L""}, .tone = ListTone::Quiet});
    };
    if (all > kMostOutlineRows)
        tell(TextWith(L"{1} more; type to find them", {std::to_wstring(all - kMostOutlineRows)}));
    if (all == 0) tell(wish.filter.empty() ? Text(L"No symbols") : Text(L"Nothing matches"));
    return outline;
}

int OutlineBestRow(const SymbolTable& table, const Outline& outline, std::wstring_view filter) {
    const std::string typed = ToUtf8(filter);
    const auto farness = [&](std::uint32_t index) {
        const Symbol& symbol = table.symbols[index];
        std::string_view name = SymbolName(table, symbol);
        name.remove_prefix(std::min(name.find_first_not_of("%$"), name.size()));
        const int start = !Holds(name.substr(0, typed.size()), typed) ? 2 : name.size() > typed.size() ? 1 : 0;
        return 2 * start + (symbol.Is(kSymbolDeclare) ? 1 : 0);
    };
    return static_cast<int>(std::ranges::min_element(outline.symbols, {}, farness) - outline.symbols.begin());
}

int OutlineRowAtLine(const SymbolTable& table, const Outline& outline, std::uint32_t line) {
    const std::uint32_t wanted = SymbolAround(table, SymbolAtLine(table, line), [&](const Symbol& symbol) {
        const auto index = static_cast<std::uint32_t>(&symbol - table.symbols.data());
        return std::ranges::find(outline.symbols, index) != outline.symbols.end();
    });
    if (wanted == kNoSymbol) return -1;
    return static_cast<int>(std::ranges::find(outline.symbols, wanted) - outline.symbols.begin());
}
