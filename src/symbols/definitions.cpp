// The meaning of words over several tables. Pure.
#include "symbols/definitions.h"

#include <algorithm>

namespace {

const Symbol& At(SymbolTables tables, const SymbolPlace& place) { return tables[place.text]->symbols[place.symbol]; }

bool IsMemberKind(SymbolKind kind) {
    return kind == SymbolKind::Member || kind == SymbolKind::Method || kind == SymbolKind::Property ||
           kind == SymbolKind::PropertySet || kind == SymbolKind::EnumValue;
}

bool HasMembers(SymbolKind kind) { return kind >= SymbolKind::Type && kind <= SymbolKind::Namespace; }

// Seen in its own procedure only.
bool IsOwn(const Symbol& symbol) {
    return symbol.kind == SymbolKind::Local || symbol.kind == SymbolKind::Parameter || symbol.kind == SymbolKind::Label;
}

// Members of that name in a type, those of the interfaces of a class included.
void AddMembers(SymbolTables tables, const SymbolPlace& type, std::string_view name, std::vector<SymbolPlace>& found) {
    const SymbolTable& table = *tables[type.text];
    for (const std::uint32_t index : SymbolsNamed(table, name)) {
        const bool inside = index > type.symbol && index < table.symbols[type.symbol].next;
        if (inside && !IsOwn(table.symbols[index])) found.push_back({type.text, index});
    }
}

std::vector<SymbolPlace> AllMembers(SymbolTables tables, std::string_view name) {
    std::vector<SymbolPlace> found;
    for (std::size_t text = 0; text < tables.size(); ++text)
        for (const std::uint32_t index : SymbolsNamed(*tables[text], name))
            if (IsMemberKind(tables[text]->symbols[index].kind)) found.push_back({text, index});
    return found;
}

std::vector<SymbolPlace> MeantByName(std::string_view name, std::uint32_t line, SymbolTables tables) {
    std::vector<SymbolPlace> found;
    constexpr std::uint32_t kNoLine = 0xFFFFFFFF;  // behind all procedures
    for (std::size_t text = 0; text < tables.size(); ++text) {
        for (const std::uint32_t index : SymbolsMeantAt(*tables[text], text == 0 ? line : kNoLine, name))
            found.push_back({text, index});
        if (text == 0 && !found.empty() && IsOwn(At(tables, found.front()))) return found;
    }
    return found;
}

std::vector<SymbolPlace> WithBodies(SymbolTables tables, std::vector<SymbolPlace> found) {
    const auto declares = [tables](const SymbolPlace& place) { return At(tables, place).Is(kSymbolDeclare); };
    if (!std::ranges::all_of(found, declares)) std::erase_if(found, declares);
    return found;
}

}  // namespace

std::vector<SymbolPlace> TypesNamed(std::string_view type, SymbolTables tables) {
    // The name is before PTR, "*" or a dimension.
    const std::string_view name = type.substr(0, type.find_first_of(" *("));
    std::vector<SymbolPlace> found;
    if (name.empty()) return found;
    for (std::size_t text = 0; text < tables.size(); ++text)
        for (const std::uint32_t index : SymbolsNamed(*tables[text], name))
            if (HasMembers(tables[text]->symbols[index].kind)) found.push_back({text, index});
    return found;
}

std::vector<SymbolPlace> TypesOfQualifier(std::span<const std::string> names, std::uint32_t line, SymbolTables tables) {
    std::vector<SymbolPlace> types;
    for (std::size_t i = 0; i < names.size(); ++i) {
        std::vector<SymbolPlace> meant;
        if (i == 0)
            meant = MeantByName(names[0], line, tables);
        else
            for (const SymbolPlace& type : types) AddMembers(tables, type, names[i], meant);
        types.clear();
        for (const SymbolPlace& place : meant) {
            const Symbol& symbol = At(tables, place);
            if (HasMembers(symbol.kind)) {  // an ENUM, a CLASS, a NAMESPACE by its own name
                types.push_back(place);
                continue;
            }
            const std::vector<SymbolPlace> named = TypesNamed(SymbolType(*tables[place.text], symbol), tables);
            types.insert(types.end(), named.begin(), named.end());
        }
    }
    return types;
}

std::vector<SymbolPlace> DefinitionsOf(const SymbolWord& word, std::uint32_t line, SymbolTables tables) {
    if (tables.empty()) return {};
    if (!word.isMember) {
        std::vector<SymbolPlace> found = WithBodies(tables, MeantByName(word.name, line, tables));
        if (!found.empty()) return found;
        // On the declaration of a member itself.
        found = AllMembers(tables, word.name);
        std::erase_if(found,
                      [&](const SymbolPlace& place) { return place.text != 0 || At(tables, place).line != line; });
        return found;
    }
    std::vector<SymbolPlace> found;
    for (const SymbolPlace& type : TypesOfQualifier(word.qualifier, line, tables))
        AddMembers(tables, type, word.name, found);
    return WithBodies(tables, found.empty() ? AllMembers(tables, word.name) : found);
}

ReferenceTarget TargetOf(const SymbolTable& table, std::uint32_t symbol) {
    const Symbol& target = table.symbols[symbol];
    const std::uint32_t procedure = SymbolAround(table, target.container, [](const Symbol& around) {
        return IsProcedure(around.kind) || around.kind == SymbolKind::Macro;
    });
    if (IsOwn(target) && procedure != kNoSymbol)
        return {ReferenceScope::Procedure, table.symbols[procedure].line, table.symbols[procedure].endLine};
    if (target.kind == SymbolKind::Label)
        return {.scope = ReferenceScope::Procedure, .lastLine = table.lines, .betweenProcedures = true};
    // The members of a class are also used without a dot, in its methods.
    const bool ofType = target.kind == SymbolKind::Member && target.container != kNoSymbol &&
                        table.symbols[target.container].kind != SymbolKind::Class;
    const bool member = ofType || target.kind == SymbolKind::Method || target.kind == SymbolKind::Property ||
                        target.kind == SymbolKind::PropertySet;
    const bool qualified = target.kind == SymbolKind::EnumValue ||
                           (target.container != kNoSymbol && HasMembers(table.symbols[target.container].kind));
    return {.scope = member ? ReferenceScope::Member : ReferenceScope::Outside, .afterDot = qualified};
}

std::vector<NamePlace> PlacesOfTarget(const ReferenceTarget& target, std::string_view name,
                                      std::span<const NamePlace> places, const SymbolTable& table) {
    const std::span<const std::uint32_t> named = SymbolsNamed(table, name);
    const auto declaredAt = [&](const NamePlace& place) {
        const auto found = std::ranges::find_if(named, [&](std::uint32_t index) {
            return table.symbols[index].line == place.line && table.symbols[index].column == place.column;
        });
        return found == named.end() ? kNoSymbol : *found;
    };
    std::vector<NamePlace> kept;
    for (const NamePlace& place : places) {
        const std::uint32_t declared = declaredAt(place);
        const bool memberDeclared = declared != kNoSymbol && IsMemberKind(table.symbols[declared].kind);
        bool meant = false;
        switch (target.scope) {
            case ReferenceScope::Procedure:
                meant = !place.isMember && place.line >= target.firstLine && place.line <= target.lastLine &&
                        !(target.betweenProcedures && ProcedureAtLine(table, place.line) != kNoSymbol);
                break;
            case ReferenceScope::Member: meant = place.isMember || memberDeclared; break;
            case ReferenceScope::Outside: {
                const std::vector<std::uint32_t> here = SymbolsMeantAt(table, place.line, name);
                const bool hidden = !here.empty() && IsOwn(table.symbols[here.front()]);
                const bool typeMember = memberDeclared && table.symbols[declared].kind == SymbolKind::Member;
                meant = (!place.isMember || target.afterDot) && !hidden && !typeMember;
                break;
            }
        }
        if (meant) kept.push_back(place);
    }
    return kept;
}
