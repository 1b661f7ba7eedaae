// Texts about words. Pure.
#include "completion/hover_text.h"

#include "completion/call_tip.h"
#include "completion/constant_value.h"

#include <algorithm>

namespace {

constexpr std::size_t kMostMembers = 10;  // of a TYPE that are told

std::string_view KindName(SymbolKind kind) {
    static constexpr std::string_view kNames[] = {
        "SUB",        "FUNCTION", "METHOD", "PROPERTY GET", "PROPERTY SET", "FASTPROC",  "MACRO",
        "TYPE",       "UNION",    "ENUM",   "CLASS",        "INTERFACE",    "NAMESPACE", "member",
        "ENUM value", "constant", "global", "local",        "parameter",    "label",     "include"};
    static_assert(std::size(kNames) == static_cast<std::size_t>(SymbolKind::Count));
    return kNames[static_cast<std::size_t>(kind)];
}

bool HasInside(SymbolKind kind) { return kind >= SymbolKind::Type && kind <= SymbolKind::Namespace; }

// "BYVAL lines() AS Point", "name$", "Red = 1".
std::string DeclarationOf(const SymbolTable& table, const Symbol& symbol) {
    std::string text;
    if (symbol.kind == SymbolKind::Parameter) {
        if (symbol.Is(kSymbolOptional)) text += "OPTIONAL ";
        if (symbol.Is(kSymbolByVal)) text += "BYVAL ";
        if (symbol.Is(kSymbolByRef)) text += "BYREF ";
    }
    if (symbol.Is(kSymbolStatic)) text += "STATIC ";
    text += SymbolName(table, symbol);
    const std::string_view type = SymbolType(table, symbol), detail = SymbolDetail(table, symbol);
    const bool word = !type.empty() && (type.front() >= 'A');
    if (!word) text += type;
    if (symbol.Is(kSymbolArray)) text += "()";
    if (word) text.append(" AS ").append(type);
    if (!detail.empty()) text.append(" = ").append(detail);
    return text;
}

// The members directly inside, as "    x AS LONG".
void AddMembers(std::string& text, const SymbolTable& table, std::uint32_t index) {
    std::size_t count = 0;
    std::string members;
    for (std::uint32_t at = index + 1; at < table.symbols[index].next; ++at) {
        const Symbol& member = table.symbols[at];
        if (member.container != index || ++count > kMostMembers) continue;
        const bool procedure = IsProcedure(member.kind);
        members.append("\n    ").append(procedure ? SignatureOfSymbol(table, member).text
                                                  : DeclarationOf(table, member));
    }
    const bool values = table.symbols[index].kind == SymbolKind::Enum;
    text.append(", ").append(std::to_string(count)).append(values ? " value" : " member").append(count == 1 ? "" : "s");
    text += members;
    if (count > kMostMembers) text.append("\n    and ").append(std::to_string(count - kMostMembers)).append(" more");
}

}  // namespace

std::string HoverTextOf(SymbolTables tables, const SymbolPlace& place, std::string_view where, const Dialect& dialect) {
    const SymbolTable& table = *tables[place.text];
    const Symbol& symbol = table.symbols[place.symbol];
    std::string text;
    if (IsProcedure(symbol.kind) || symbol.kind == SymbolKind::Macro) {
        text = symbol.Is(kSymbolDeclare) ? "DECLARE " : "";
        text += SignatureOfSymbol(table, symbol).text;
    } else {
        text.append(KindName(symbol.kind)).append(" ").append(DeclarationOf(table, symbol));
    }
    const bool inside = symbol.container != kNoSymbol && symbol.kind >= SymbolKind::Member;
    if (inside) {
        const Symbol& container = table.symbols[symbol.container];
        text.append(" (").append(KindName(container.kind)).append(" ").append(SymbolName(table, container)).append(")");
    }
    if (HasInside(symbol.kind)) AddMembers(text, table, place.symbol);
    if (symbol.kind == SymbolKind::Constant || symbol.kind == SymbolKind::EnumValue)
        if (const std::optional<std::int64_t> value = ConstantValue(tables, place, dialect))
            text.append("\nvalue: ").append(WithHex(*value));
    if (!where.empty()) text.append("\n").append(where);
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ' ' && c != '\n') c = ' ';
    return text;
}

std::string HoverTextOfBuiltins(std::span<const Builtin* const> builtins) {
    std::string text;
    for (const Builtin* builtin : builtins) {
        if (!text.empty()) text += '\n';
        text.append(builtin->signature).append("\n    ").append(builtin->text);
    }
    return text;
}
