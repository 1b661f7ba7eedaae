// Reads the statements that declare something. A heading that has no name yet, or any other half-typed statement,
// declares nothing. Pure.
#include "language/symbol_statements.h"

#include "language/symbol_parts.h"

#include <algorithm>
#include <utility>

namespace {

// --- Types of variables

bool EndsType(const DeclarationReader& reader, const StatementPart& part) {
    if (part.token.kind == TokenKind::Operator) return part.text != "*";
    if (part.token.kind != TokenKind::Word) return part.token.kind == TokenKind::String;
    switch (WordOf(reader, part)) {
        case BasicWord::Export:
        case BasicWord::ThreadSafe:
        case BasicWord::Static:
        case BasicWord::Override:
        case BasicWord::Private:
        case BasicWord::Public: return true;
        default: return CompareNames(part.text, "at") == 0;
    }
}

// The parts of the type after the AS at `as`; empty when there is no AS.
Parts TypeAfter(const DeclarationReader& reader, Parts parts, std::size_t as) {
    if (as >= parts.size()) return {};
    const std::size_t from = as + 1;
    const std::size_t to =
        FindOutside(parts, from, [&](std::size_t i) { return parts[i].text == "," || EndsType(reader, parts[i]); });
    return parts.subspan(from, to - from);
}

std::size_t FindAs(const DeclarationReader& reader, Parts parts, std::size_t at) {
    return FindOutside(
        parts, at, [&](std::size_t i) { return WordOf(reader, parts[i]) == BasicWord::As; });
}

// --- Variables

struct Variable {
    Parts item;
    Parts type;
    Declared declared;
};

// DIM a AS STATIC LONG: the scope stands before the type.
void TakeScope(const DeclarationReader& reader, Variable& variable) {
    if (variable.type.size() < 2) return;
    switch (WordOf(reader, variable.type[0])) {
        case BasicWord::Global:
        case BasicWord::Thread:
        case BasicWord::Threaded: variable.declared.kind = SymbolKind::Global; break;
        case BasicWord::Instance: variable.declared.kind = SymbolKind::Member; break;
        case BasicWord::Static: variable.declared.flags |= kSymbolStatic; break;
        case BasicWord::Local: break;
        default: return;
    }
    variable.type = variable.type.subspan(1);
}

// "a, b AS LONG, c$": a name without a type has that of the next one that has.
void ReadVariables(DeclarationReader& reader, Parts list, Declared declared) {
    std::vector<Variable> variables;
    ForEachItem(list, [&](Parts item) {
        if (!IsName(item, 0) || IsMark(item, 1, ".")) return;
        Variable variable{item, TypeAfter(reader, item, FindAs(reader, item, 1)), declared};
        // DIM a AS STATIC LONG: a word that ends a type may stand before it.
        const std::size_t as = FindAs(reader, item, 1);
        if (WordAt(reader, item, as + 1) == BasicWord::Static && as + 2 < item.size())
            variable.type = item.subspan(as + 1, TypeAfter(reader, item, as + 1).size() + 1);
        TakeScope(reader, variable);
        variables.push_back(variable);
    });
    for (std::size_t i = variables.size(); i-- > 1;)
        if (Variable& before = variables[i - 1]; before.type.empty() && before.item[0].token.suffix == 0) {
            before.type = variables[i].type;
            before.declared.kind = variables[i].declared.kind;
        }
    for (Variable& variable : variables) {
        variable.declared.type = variable.type;
        if (IsMark(variable.item, 1, "(")) variable.declared.flags |= kSymbolArray;
        AddSymbol(reader, variable.item[0], variable.declared);
    }
}

void ReadParameters(DeclarationReader& reader, Parts list) {
    ForEachItem(
        list,
        [&](Parts item) {
            Declared declared{.kind = SymbolKind::Parameter};
            if (!item.empty() && item[0].text == "[") {
                declared.flags |= kSymbolOptional;
                item = item.subspan(1);
            }
            std::size_t name = 0;
            for (; IsName(item, name); ++name) {
                const BasicWord word = WordOf(reader, item[name]);
                if (word == BasicWord::ByVal || word == BasicWord::ByCopy) declared.flags |= kSymbolByVal;
                if (word == BasicWord::ByRef) declared.flags |= kSymbolByRef;
                if (word == BasicWord::Optional) declared.flags |= kSymbolOptional;
                if (!IsName(item, name + 1) || WordAt(reader, item, name + 1) == BasicWord::As) break;
            }
            if (!IsName(item, name)) return;
            if (IsMark(item, name + 1, "(")) declared.flags |= kSymbolArray;
            declared.type = TypeAfter(reader, item, FindAs(reader, item, name + 1));
            AddSymbol(reader, item[name], declared);
        });
}

// --- Procedures

// The parameters with their parentheses, from `at` on.
Parts FindParameters(const DeclarationReader& reader, Parts parts, std::size_t at) {
    while (at < parts.size() && parts[at].text != "(") {
        if (WordOf(reader, parts[at]) == BasicWord::As || parts[at].text == "=") return {};
        ++at;
    }
    if (at == parts.size()) return {};
    const std::size_t end = FindOutside(parts, at + 1, [](std::size_t) { return false; });
    return parts.subspan(at, std::min(end + 1, parts.size()) - at);
}

struct Heading {
    Parts statement;
    std::size_t name = 0;
    Parts parameters;
    std::size_t after = 0;  // behind the parameters, or the name
};
Heading HeadingAt(const DeclarationReader& reader, Parts statement, std::size_t name) {
    while (IsMark(statement, name + 1, ".") && IsName(statement, name + 2)) name += 2;
    Heading heading{statement, name, FindParameters(reader, statement, name + 1), name + 1};
    if (!heading.parameters.empty())
        heading.after =
            static_cast<std::size_t>(heading.parameters.data() - statement.data()) + heading.parameters.size();
    return heading;
}
Parts Inner(Parts parameters) {
    if (parameters.size() < 2) return {};
    return parameters.subspan(1, parameters.size() - (parameters.back().text == ")" ? 2 : 1));
}

void ReadProcedure(DeclarationReader& reader, Parts statement, std::size_t name, Declared declared) {
    const BasicWord accessor = WordAt(reader, statement, name);
    if (declared.kind == SymbolKind::Property && IsName(statement, name + 1) &&
        (accessor == BasicWord::Get || accessor == BasicWord::Set)) {
        if (accessor == BasicWord::Set) declared.kind = SymbolKind::PropertySet;
        ++name;
    }
    if (!IsName(statement, name)) return;
    const Heading heading = HeadingAt(reader, statement, name);
    declared.detail = heading.parameters;
    declared.type = TypeAfter(reader, statement, FindAs(reader, statement, heading.after));
    const StatementPart& named = statement[heading.name];
    if (IsIn(reader.blocks, Bit(Block::Interface))) declared.flags |= kSymbolDeclare;
    if ((declared.flags & kSymbolDeclare) != 0) {
        AddSymbol(reader, named, declared);
        return;
    }
    CloseBlocksBeforeProcedure(reader, statement[0].line);
    AddWithBody(reader, named, declared, Block::Procedure);
    ReadParameters(reader, Inner(heading.parameters));
}

// MACRO name(a) = text; MACRO [FUNCTION] name(a) ... END MACRO. Its parameters stand in it either way.
void ReadMacro(DeclarationReader& reader, Parts statement, std::size_t name) {
    if (WordAt(reader, statement, name) == BasicWord::Function && IsName(statement, name + 1)) ++name;
    if (!IsName(statement, name)) return;
    const Heading heading = HeadingAt(reader, statement, name);
    Declared declared{.kind = SymbolKind::Macro, .detail = heading.parameters};
    const bool oneLine = IsMark(statement, heading.after, "=");
    if (oneLine) declared.definition = statement.subspan(heading.after + 1);
    CloseBlocksBeforeProcedure(reader, statement[0].line);
    AddWithBody(reader, statement[heading.name], declared, Block::Macro);
    ReadParameters(reader, Inner(heading.parameters));
    if (oneLine) CloseBlocksUpTo(reader, Bit(Block::Macro), statement.back().line);
}

// --- Types, enumerations, classes

bool InType(const DeclarationReader& reader) { return IsIn(reader.blocks, Bit(Block::Type) | Bit(Block::Unnamed)); }

bool InEnum(const DeclarationReader& reader) { return IsIn(reader.blocks, Bit(Block::Enum) | Bit(Block::UnnamedEnum)); }

void ReadType(DeclarationReader& reader, Parts statement, SymbolKind kind) {
    if (WordAt(reader, statement, 1) == BasicWord::Set) return;  // TYPE SET
    if (!IsName(statement, 1)) {
        if (statement.size() == 1 && InType(reader)) OpenBlock(reader, Block::Unnamed);
        return;
    }
    Declared declared{.kind = kind};
    if (WordAt(reader, statement, 2) == BasicWord::As) {  // another name for a type
        declared.type = TypeAfter(reader, statement, 2);
        AddSymbol(reader, statement[1], declared);
        return;
    }
    AddWithBody(reader, statement[1], declared, Block::Type);
}

void ReadEnum(DeclarationReader& reader, Parts statement) {
    if (IsName(statement, 1))
        AddWithBody(reader, statement[1], {.kind = SymbolKind::Enum}, Block::Enum);
    else
        OpenBlock(reader, Block::UnnamedEnum);
}

// "name AS type = value": constants and values of an ENUM.
void ReadValues(DeclarationReader& reader, Parts list, SymbolKind kind) {
    ForEachItem(
        list,
        [&](Parts item) {
            if (!IsName(item, 0) && item[0].token.kind != TokenKind::Equate) return;
            const std::size_t equals = FindOutside(
                item, 1, [item](std::size_t i) { return item[i].text == "="; });
            const Parts value = equals < item.size() ? item.subspan(equals + 1) : Parts{};
            const Parts type = TypeAfter(reader, item, FindAs(reader, item, 1));
            AddSymbol(reader, item[0], {.kind = kind, .type = type, .detail = value});
        });
}

void ReadContainer(DeclarationReader& reader, Parts statement, SymbolKind kind, Block block) {
    if (!IsName(statement, 1)) return;
    if (kind == SymbolKind::Interface && IsIn(reader.blocks, Bit(Block::Class))) block = Block::ClassInterface;
    if (kind == SymbolKind::Class) CloseBlocksBeforeProcedure(reader, statement[0].line);
    AddWithBody(reader, statement[1], {.kind = kind}, block);
}

// --- Metastatements

bool IsDirective(const StatementPart& part, std::string_view word) {
    std::string_view text = part.text.substr(1);
    while (!text.empty() && (text[0] == ' ' || text[0] == '\t')) text.remove_prefix(1);
    return CompareNames(text, word) == 0;
}

void ReadDirective(DeclarationReader& reader, Parts statement) {
    if (IsDirective(statement[0], "include")) {
        const auto file =
            std::ranges::find(statement, TokenKind::String, [](const StatementPart& part) { return part.token.kind; });
        const bool whole = file != statement.end() && file->text.size() > 2 && !file->token.Is(kTokenOpen);
        if (whole) AddSymbol(reader, *file, {.kind = SymbolKind::Include}, 1);
    } else if (IsDirective(statement[0], "define") && IsName(statement, 1)) {
        const bool isMacro = IsMark(statement, 2, "(") && statement[2].token.start == statement[1].token.End();
        Declared declared{.kind = isMacro ? SymbolKind::Macro : SymbolKind::Constant};
        const Parts parameters = isMacro ? FindParameters(reader, statement, 2) : Parts{};
        const Parts rest = statement.subspan(2 + parameters.size());
        declared.detail = isMacro ? parameters : rest;
        if (isMacro) declared.definition = rest;
        AddSymbol(reader, statement[1], declared);
    }
}

// --- Ends

std::uint32_t BlocksEndedBy(BasicWord word) {
    switch (word) {
        case BasicWord::EndSub:
        case BasicWord::EndFunction:
        case BasicWord::EndMethod:
        case BasicWord::EndProperty:
        case BasicWord::EndFastProc:
        case BasicWord::Sub:
        case BasicWord::Function:
        case BasicWord::Method:
        case BasicWord::Property:
        case BasicWord::FastProc: return Bit(Block::Procedure);
        case BasicWord::EndMacro:
        case BasicWord::Macro: return Bit(Block::Macro);
        case BasicWord::EndType:
        case BasicWord::EndUnion:
        case BasicWord::Type:
        case BasicWord::Union: return Bit(Block::Type) | Bit(Block::Unnamed);
        case BasicWord::EndEnum:
        case BasicWord::Enum: return Bit(Block::Enum) | Bit(Block::UnnamedEnum);
        case BasicWord::EndClass:
        case BasicWord::Class: return Bit(Block::Class);
        case BasicWord::EndInterface:
        case BasicWord::Interface: return Bit(Block::Interface) | Bit(Block::ClassInterface);
        case BasicWord::EndNamespace:
        case BasicWord::Namespace: return Bit(Block::Namespace);
        default: return 0;
    }
}

bool IsEnd(BasicWord word) { return word >= BasicWord::EndAsm && word <= BasicWord::EndWith; }

// True when the statement is an end of any kind.
bool ReadEnd(DeclarationReader& reader, Parts statement) {
    const BasicWord first = WordOf(reader, statement[0]);
    if (first != BasicWord::End && !IsEnd(first)) return false;
    if (WordAt(reader, statement, 1) == BasicWord::As) return false;  // a member of that name
    const BasicWord ended = first == BasicWord::End ? WordAt(reader, statement, 1) : first;
    CloseBlocksUpTo(reader, BlocksEndedBy(ended), statement.back().line);
    return true;
}

// --- Statements that begin with a word

// Words that may stand before SUB, FUNCTION and the like.
struct Modifiers {
    std::size_t count = 0;
    std::uint8_t flags = 0;
};
Modifiers ModifiersOf(const DeclarationReader& reader, Parts statement) {
    Modifiers modifiers;
    for (; modifiers.count < statement.size(); ++modifiers.count) switch (WordOf(reader, statement[modifiers.count])) {
            case BasicWord::Declare: modifiers.flags |= kSymbolDeclare; break;
            case BasicWord::Callback: modifiers.flags |= kSymbolCallback; break;
            case BasicWord::Class:
                if (WordAt(reader, statement, modifiers.count + 1) != BasicWord::Method) return modifiers;
                break;
            case BasicWord::Static:
            case BasicWord::Thread:
            case BasicWord::ThreadSafe:
            case BasicWord::Private:
            case BasicWord::Public:
            case BasicWord::Export:
            case BasicWord::Override:
            case BasicWord::Inline: break;
            default: return modifiers;
        }
    return modifiers;
}

bool ReadHeading(DeclarationReader& reader, Parts statement) {
    static constexpr std::pair<BasicWord, SymbolKind> kProcedures[] = {
        {BasicWord::Sub, SymbolKind::Sub},           {BasicWord::Function, SymbolKind::Function},
        {BasicWord::Method, SymbolKind::Method},     {BasicWord::Property, SymbolKind::Property},
        {BasicWord::FastProc, SymbolKind::FastProc},
    };
    const Modifiers modifiers = ModifiersOf(reader, statement);
    const BasicWord word = WordAt(reader, statement, modifiers.count);
    if (word == BasicWord::None) return false;
    const auto* const row = std::ranges::find(kProcedures, word, &std::pair<BasicWord, SymbolKind>::first);
    if (row != std::end(kProcedures))
        ReadProcedure(reader, statement, modifiers.count + 1, {.kind = row->second, .flags = modifiers.flags});
    else if (word == BasicWord::Macro)
        ReadMacro(reader, statement, modifiers.count + 1);
    return row != std::end(kProcedures) || word == BasicWord::Macro;
}

// DIM, LOCAL and the like: the kind of what the list after the word declares.
void ReadVariableStatement(DeclarationReader& reader, Parts statement, BasicWord word) {
    if (IsIn(reader.blocks, Bit(Block::Macro)) || InType(reader)) return;
    const bool local = IsIn(reader.blocks, Bit(Block::Procedure));
    Declared declared{.kind = local ? SymbolKind::Local : SymbolKind::Global};
    if (IsIn(reader.blocks, Bit(Block::Class) | Bit(Block::ClassInterface))) declared.kind = SymbolKind::Member;
    std::size_t from = 0;
    for (bool more = true; more; from += more ? 1u : 0u) {
        if (word == BasicWord::Global || word == BasicWord::Threaded) declared.kind = SymbolKind::Global;
        if (word == BasicWord::Static && local) declared.flags |= kSymbolStatic;
        if (!IsName(statement, from + 1)) break;
        word = WordAt(reader, statement, from + 1);
        more = word == BasicWord::Dim || word == BasicWord::Static || word == BasicWord::Global ||
               (IsName(statement, from + 2) && CompareNames(statement[from + 1].text, "shared") == 0);
    }
    ReadVariables(reader, statement.subspan(std::min(from + 1, statement.size())), declared);
}

// FOR i AS LONG = 1 TO 9
void ReadLoopVariable(DeclarationReader& reader, Parts statement) {
    std::size_t name = 1;
    if (IsName(statement, 2) && WordAt(reader, statement, 2) != BasicWord::As) ++name;  // FOR EACH
    if (!IsName(statement, name) || WordAt(reader, statement, name + 1) != BasicWord::As) return;
    ReadVariableStatement(reader, statement.subspan(name - 1), BasicWord::Local);
}

void ReadKeyword(DeclarationReader& reader, Parts statement, BasicWord word) {
    switch (word) {
        case BasicWord::Type: return ReadType(reader, statement, SymbolKind::Type);
        case BasicWord::Union: return ReadType(reader, statement, SymbolKind::Union);
        case BasicWord::Enum: return ReadEnum(reader, statement);
        case BasicWord::Class: return ReadContainer(reader, statement, SymbolKind::Class, Block::Class);
        case BasicWord::Interface: return ReadContainer(reader, statement, SymbolKind::Interface, Block::Interface);
        case BasicWord::Namespace: return ReadContainer(reader, statement, SymbolKind::Namespace, Block::Namespace);
        case BasicWord::Const: return ReadValues(reader, statement.subspan(1), SymbolKind::Constant);
        case BasicWord::Dim:
        case BasicWord::Global:
        case BasicWord::Instance:
        case BasicWord::Local:
        case BasicWord::Private:
        case BasicWord::Public:
        case BasicWord::Register:
        case BasicWord::Static:
        case BasicWord::Threaded: return ReadVariableStatement(reader, statement, word);
        case BasicWord::For:
        case BasicWord::ForEach: return ReadLoopVariable(reader, statement);
        default: return;
    }
}

// A line of a TYPE or of a CLASS that begins with a name: true when it declares members.
bool ReadMembers(DeclarationReader& reader, Parts statement) {
    const bool inClass = IsIn(reader.blocks, Bit(Block::Class));
    if (!InType(reader) && !inClass) return false;
    const std::size_t as = FindAs(reader, statement, 1);
    const bool named = as == 1 || (WordOf(reader, statement[0]) == BasicWord::None && !inClass);
    const bool typed = as < statement.size() || statement[0].token.suffix != 0;
    if (!named || !typed) return false;
    ReadVariables(reader, statement, {.kind = SymbolKind::Member});
    return true;
}

void ReadWordStatement(DeclarationReader& reader, Parts statement) {
    if (ReadEnd(reader, statement) || ReadMembers(reader, statement)) return;
    const BasicWord word = WordOf(reader, statement[0]);
    const bool assigned = IsMark(statement, 1, "=");
    if (InEnum(reader) && (word == BasicWord::None || assigned || statement.size() == 1))
        return ReadValues(reader, statement, SymbolKind::EnumValue);
    if (word == BasicWord::None || assigned || ReadHeading(reader, statement)) return;
    ReadKeyword(reader, statement, word);
}

}  // namespace

bool WordDeclares(BasicWord word) {
    switch (word) {
        case BasicWord::Callback:
        case BasicWord::Class:
        case BasicWord::Const:
        case BasicWord::Declare:
        case BasicWord::Dim:
        case BasicWord::End:
        case BasicWord::Enum:
        case BasicWord::Export:
        case BasicWord::FastProc:
        case BasicWord::For:
        case BasicWord::ForEach:
        case BasicWord::Function:
        case BasicWord::Global:
        case BasicWord::Inline:
        case BasicWord::Instance:
        case BasicWord::Interface:
        case BasicWord::Local:
        case BasicWord::Macro:
        case BasicWord::Method:
        case BasicWord::Namespace:
        case BasicWord::Override:
        case BasicWord::Private:
        case BasicWord::Property:
        case BasicWord::Public:
        case BasicWord::Register:
        case BasicWord::Static:
        case BasicWord::Sub:
        case BasicWord::Thread:
        case BasicWord::Threaded:
        case BasicWord::ThreadSafe:
        case BasicWord::Type:
        case BasicWord::Union: return true;
        default: return IsEnd(word);
    }
}

bool BlockListsNames(std::uint64_t blocks) {
    return IsIn(blocks, Bit(Block::Type) | Bit(Block::Unnamed) | Bit(Block::Enum) | Bit(Block::UnnamedEnum) |
                            Bit(Block::Class));
}

void ReadDeclaration(DeclarationReader& reader, Parts statement) {
    const StatementPart& first = statement[0];
    switch (first.token.kind) {
        case TokenKind::Label:
            AddSymbol(reader, first,
                      {.kind = SymbolKind::Label,
                       .flags = first.token.Is(kTokenAssembly) ? std::uint8_t{kSymbolAssembly} : std::uint8_t{0}});
            return;
        case TokenKind::Equate:
            if (InEnum(reader))
                ReadValues(reader, statement, SymbolKind::EnumValue);
            else if (IsMark(statement, 1, "="))
                AddSymbol(reader, first, {.kind = SymbolKind::Constant, .detail = statement.subspan(2)});
            return;
        case TokenKind::Directive: return ReadDirective(reader, statement);
        case TokenKind::Word:
            if (!first.token.Is(kTokenAssembly)) ReadWordStatement(reader, statement);
            return;
        default: return;
    }
}
