// The table of symbols: made from the pieces of a text, and asked by name and by line. Pure.
#include "language/symbols.h"

#include "base/scan_text.h"
#include "language/symbol_parts.h"

#include <algorithm>

namespace {

std::string_view TextAt(const SymbolTable& table, std::size_t start, std::size_t length) {
    return std::string_view(table.arena).substr(start, length);
}

// The table on its way: the symbols whose bodies are open.
struct Joining {
    SymbolTable& table;
    std::vector<std::uint32_t> open;
};

void CloseBody(Joining& joining, std::uint32_t line) {
    if (joining.open.empty()) return;
    Symbol& symbol = joining.table.symbols[joining.open.back()];
    symbol.endLine = std::max(line, symbol.line);
    symbol.next = static_cast<std::uint32_t>(joining.table.symbols.size());
    joining.open.pop_back();
}

void JoinSymbol(Joining& joining, const Symbol& found, std::uint32_t firstLine, std::uint32_t texts) {
    const std::uint32_t line = firstLine + found.line;
    if (found.kind == kBodyEnds) {
        for (std::uint32_t i = 0; i < found.next; ++i) CloseBody(joining, line - std::min(line, found.column));
        return;
    }
    const auto index = static_cast<std::uint32_t>(joining.table.symbols.size());
    Symbol symbol = found;
    symbol.line = symbol.endLine = line;
    symbol.container = joining.open.empty() ? kNoSymbol : joining.open.back();
    symbol.next = index + 1;
    symbol.texts += texts;
    joining.table.symbols.push_back(symbol);
    if (found.next == kHasBody) joining.open.push_back(index);
}

// Eight bytes of a name in upper case, because numbers are compared faster than texts. The last one is 0 when the name
// ends before it.
std::uint64_t SortKey(std::string_view name) {
    std::uint64_t key = 0;
    for (std::size_t i = 0; i < sizeof(key); ++i)
        key = (key << 8) | (i < name.size() ? static_cast<std::uint8_t>(UpperAscii(name[i])) : 0u);
    return key;
}

struct NameKey {
    std::uint64_t part;
    std::uint32_t index;
};

// Sorts by what the names have from `offset` on, eight bytes after the other; equal names by their places.
void SortNames(const SymbolTable& table, std::span<NameKey> keys, std::size_t offset) {
    constexpr std::size_t kInParts = 64;
    const auto rest = [&](std::uint32_t index) {
        const std::string_view name = SymbolName(table, table.symbols[index]);
        return name.substr(std::min(offset, name.size()));
    };
    if (offset == kInParts) {
        std::ranges::sort(keys, [&](const NameKey& a, const NameKey& b) {
            const int order = CompareNames(rest(a.index), rest(b.index));
            return order != 0 ? order < 0 : a.index < b.index;
        });
        return;
    }
    for (NameKey& key : keys) key.part = SortKey(rest(key.index));
    std::ranges::sort(keys, [](const NameKey& a, const NameKey& b) {
        return a.part != b.part ? a.part < b.part : a.index < b.index;
    });
    while (!keys.empty()) {
        const std::uint64_t part = keys.front().part;
        std::size_t same = 1;
        while (same < keys.size() && keys[same].part == part) ++same;
        if (same > 1 && (part & 0xFF) != 0) SortNames(table, keys.first(same), offset + sizeof(part));
        keys = keys.subspan(same);
    }
}

void SortByName(SymbolTable& table) {
    std::vector<NameKey> keys;
    keys.reserve(table.symbols.size());
    for (std::uint32_t i = 0; i < table.symbols.size(); ++i) keys.push_back({0, i});
    SortNames(table, keys, 0);
    table.byName.reserve(keys.size());
    for (const NameKey& key : keys) table.byName.push_back(key.index);
}

// Those of the sorted symbols for which `compare(name)` is 0; their names are sorted by it.
template <typename Compare>
std::span<const std::uint32_t> EqualNames(const SymbolTable& table, const std::vector<std::uint32_t>& sorted,
                                          Compare compare) {
    const auto name = [&table](std::uint32_t index) { return SymbolName(table, table.symbols[index]); };
    const auto first = std::partition_point(
        sorted.begin(), sorted.end(), [&](std::uint32_t index) { return compare(name(index)) < 0; });
    const auto last =
        std::partition_point(first, sorted.end(), [&](std::uint32_t index) { return compare(name(index)) == 0; });
    return {first, last};
}

auto BeginsWith(std::string_view prefix) {
    return [prefix](std::string_view name) { return CompareNames(name.substr(0, prefix.size()), prefix); };
}

// The last symbol that begins on or before the line; kNoSymbol: none.
std::uint32_t LastUpTo(const SymbolTable& table, std::uint32_t line) {
    const auto after = std::ranges::upper_bound(table.symbols, line, {}, &Symbol::line);
    return after == table.symbols.begin() ? kNoSymbol : static_cast<std::uint32_t>(after - table.symbols.begin()) - 1;
}

bool HoldsNames(const Symbol& symbol) { return IsProcedure(symbol.kind) || symbol.kind == SymbolKind::Macro; }

bool IsInside(const SymbolTable& table, std::uint32_t index, std::uint32_t container) {
    return container != kNoSymbol && index > container && index < table.symbols[container].next;
}

// Whether a name outside procedures may mean the symbol.
bool IsMeantOutside(const Symbol& symbol) {
    switch (symbol.kind) {
        case SymbolKind::Local:
        case SymbolKind::Parameter:
        case SymbolKind::Member:
        case SymbolKind::Include: return false;
        case SymbolKind::Label: return symbol.container == kNoSymbol;
        default: return true;
    }
}

void ListOutside(SymbolTable& table) {
    std::string_view last;
    for (const std::uint32_t index : table.byName) {
        const Symbol& symbol = table.symbols[index];
        const bool method = symbol.kind >= SymbolKind::Method && symbol.kind <= SymbolKind::PropertySet;
        if (method || !IsMeantOutside(symbol)) continue;
        const std::string_view name = SymbolName(table, symbol);
        if (!table.outside.empty() && name.size() == last.size() && CompareNames(name, last) == 0) continue;
        table.outside.push_back(index);
        last = name;
    }
}

}  // namespace

std::string_view SymbolName(const SymbolTable& table, const Symbol& symbol) {
    return TextAt(table, symbol.texts, symbol.nameLength);
}

std::string_view SymbolType(const SymbolTable& table, const Symbol& symbol) {
    return TextAt(table, symbol.texts + symbol.nameLength, symbol.typeLength);
}

std::string_view SymbolDetail(const SymbolTable& table, const Symbol& symbol) {
    return TextAt(table, symbol.texts + symbol.nameLength + symbol.typeLength, symbol.detailLength);
}

int CompareNames(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i)
        if (const int order = static_cast<std::uint8_t>(UpperAscii(a[i])) - static_cast<std::uint8_t>(UpperAscii(b[i]));
            order != 0)
            return order;
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

std::span<const std::uint32_t> SymbolsNamed(const SymbolTable& table, std::string_view name) {
    return EqualNames(
        table, table.byName, [name](std::string_view other) { return CompareNames(other, name); });
}

std::span<const std::uint32_t> SymbolsWithPrefix(const SymbolTable& table, std::string_view prefix) {
    return EqualNames(table, table.byName, BeginsWith(prefix));
}

std::span<const std::uint32_t> OutsideWithPrefix(const SymbolTable& table, std::string_view prefix) {
    return EqualNames(table, table.outside, BeginsWith(prefix));
}

std::uint32_t ProcedureAtLine(const SymbolTable& table, std::uint32_t line) {
    return SymbolAround(
        table, LastUpTo(table, line),
        [line](const Symbol& symbol) { return HoldsNames(symbol) && symbol.endLine >= line; });
}

std::uint32_t SymbolAtLine(const SymbolTable& table, std::uint32_t line) {
    std::uint32_t index = LastUpTo(table, line);
    const auto ofProcedure = [&table](std::uint32_t i) {
        return table.symbols[i].kind == SymbolKind::Local || table.symbols[i].kind == SymbolKind::Parameter;
    };
    while (index != kNoSymbol && table.symbols[index].line == line && ofProcedure(index))
        index = index == 0 ? kNoSymbol : index - 1;
    return SymbolAround(table, index, [&](const Symbol& symbol) {
        const auto i = static_cast<std::uint32_t>(&symbol - table.symbols.data());
        return !ofProcedure(i) && symbol.line <= line && symbol.endLine >= line;
    });
}

// DIM of an array without a type, which may be declared elsewhere.
static bool OnlyGivesBounds(const Symbol& symbol) {
    return symbol.kind == SymbolKind::Local && symbol.Is(kSymbolArray) && symbol.typeLength == 0;
}

std::vector<std::uint32_t> SymbolsMeantAt(const SymbolTable& table, std::uint32_t line, std::string_view name) {
    const std::uint32_t procedure = ProcedureAtLine(table, line);
    const std::uint32_t object =
        SymbolAround(table, procedure, [](const Symbol& symbol) { return symbol.kind == SymbolKind::Class; });
    std::vector<std::uint32_t> own, bounds, ofClass, outside;
    for (const std::uint32_t index : SymbolsNamed(table, name)) {
        const Symbol& symbol = table.symbols[index];
        const bool local = IsVariable(symbol.kind) || symbol.kind == SymbolKind::Label;
        if (local && symbol.kind != SymbolKind::Global && IsInside(table, index, procedure))
            (OnlyGivesBounds(symbol) ? bounds : own).push_back(index);
        else if (symbol.kind == SymbolKind::Member && symbol.container == object && object != kNoSymbol)
            ofClass.push_back(index);
        else if (IsMeantOutside(symbol))
            outside.push_back(index);
    }
    if (!own.empty()) return own;
    if (!ofClass.empty()) return ofClass;
    const bool array = std::ranges::any_of(outside, [&](std::uint32_t i) { return table.symbols[i].Is(kSymbolArray); });
    if (!bounds.empty() && !array) return bounds;
    std::stable_partition(outside.begin(), outside.end(),
                          [&](std::uint32_t i) { return !table.symbols[i].Is(kSymbolDeclare); });
    return outside;
}

SymbolTable JoinSymbols(std::span<const std::shared_ptr<const SymbolPiece>> pieces) {
    SymbolTable table;
    std::size_t symbols = 0, texts = 0;
    for (const auto& piece : pieces) {
        symbols += piece->symbols.size();
        texts += piece->arena.size();
    }
    table.symbols.reserve(symbols);
    table.arena.reserve(texts);
    Joining joining{table, {}};
    for (const auto& piece : pieces) {
        const auto start = static_cast<std::uint32_t>(table.arena.size());
        for (const Symbol& symbol : piece->symbols) JoinSymbol(joining, symbol, table.lines, start);
        table.arena += piece->arena;
        table.lines += piece->lines;
    }
    while (!joining.open.empty()) CloseBody(joining, table.lines - std::min(table.lines, 1u));
    SortByName(table);
    ListOutside(table);
    return table;
}
