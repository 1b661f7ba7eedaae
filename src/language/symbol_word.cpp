// Names at places of a text. Pure.
#include "language/symbol_word.h"

#include <algorithm>

namespace {

bool IsDot(std::string_view line, const Token& token) { return TokenText(line, token) == "."; }

// The names before the dot at `dot`, from the left. Empty when something without a name is among them.
std::vector<std::string> QualifierBefore(std::string_view line, const std::vector<Token>& tokens, std::size_t dot) {
    std::vector<std::string> names;
    for (std::size_t at = dot; at > 0;) {
        --at;
        if (TokenText(line, tokens[at]) == ")") {
            int depth = 1;
            while (at > 0 && depth > 0) {
                const std::string_view text = TokenText(line, tokens[--at]);
                depth += text == ")" ? 1 : text == "(" ? -1 : 0;
            }
            if (at == 0) return {};
            --at;
        }
        if (tokens[at].kind != TokenKind::Word) return {};
        names.insert(names.begin(), std::string(TokenName(line, tokens[at])));
        if (at == 0 || !IsDot(line, tokens[at - 1])) break;
        --at;
    }
    return names;
}

bool IsNameToken(const Token& token) {
    return token.kind == TokenKind::Word || token.kind == TokenKind::Label || token.kind == TokenKind::Equate;
}

bool IsInclude(std::string_view line, const std::vector<Token>& tokens) {
    if (tokens.empty() || tokens[0].kind != TokenKind::Directive) return false;
    const std::string_view word = TokenText(line, tokens[0]).substr(1);
    const std::size_t letters = word.find_first_not_of(" \t");
    return letters != std::string_view::npos && CompareNames(word.substr(letters), "include") == 0;
}

}  // namespace

std::optional<SymbolWord> SymbolWordAt(std::string_view line, std::size_t column, const Dialect& dialect) {
    LineReader reader{.text = line, .dialect = &dialect};
    if (!ReadLine(reader)) return std::nullopt;
    const std::vector<Token>& tokens = reader.tokens;
    // Where two tokens meet, a name wins.
    auto found = std::ranges::find_if(tokens, [column](const Token& token) {
        return IsNameToken(token) && token.start <= column && column <= token.End();
    });
    SymbolWord word;
    if (found != tokens.end()) {
        word.name = TokenName(line, *found);
        word.start = found->start;
        const auto index = static_cast<std::size_t>(found - tokens.begin());
        word.isMember = found->Is(kTokenName) && index > 0 && IsDot(line, tokens[index - 1]);
        if (word.isMember) word.qualifier = QualifierBefore(line, tokens, index - 1);
        const bool keyword = found->kind == TokenKind::Word && !found->Is(kTokenName | kTokenAssembly) &&
                             LookUpWord(word.name, dialect).kind == WordClass::Statement;
        return keyword ? std::nullopt : std::optional(word);
    }
    if (!IsInclude(line, tokens)) return std::nullopt;
    found = std::ranges::find(tokens, TokenKind::String, &Token::kind);
    if (found == tokens.end() || found->Is(kTokenOpen) || found->length < 3) return std::nullopt;
    word.name = TokenText(line, *found).substr(1, found->length - 2);
    word.start = found->start + 1;
    word.isInclude = true;
    return column >= found->start && column <= found->End() ? std::optional(word) : std::nullopt;
}

std::vector<NamePlace> PlacesOfName(std::string_view text, std::string_view name, const Dialect& dialect,
                                    std::size_t most) {
    std::vector<NamePlace> places;
    LineReader reader{.text = text, .dialect = &dialect};
    for (std::uint32_t line = 0; places.size() < most && ReadLine(reader); ++line)
        for (std::size_t i = 0; i < reader.tokens.size(); ++i) {
            const Token& token = reader.tokens[i];
            if (!IsNameToken(token) || CompareNames(TokenName(reader.line, token), name) != 0) continue;
            const bool member = token.Is(kTokenName) && i > 0 && IsDot(reader.line, reader.tokens[i - 1]);
            places.push_back({line, token.start, member});
        }
    if (places.size() > most) places.resize(most);
    return places;
}

bool IsNewName(std::string_view name, std::string_view oldName, const Dialect& dialect) {
    const std::size_t marks = std::min(oldName.find_first_not_of("%$"), oldName.size());
    if (name.substr(0, marks) != oldName.substr(0, marks)) return false;
    LineReader reader{.text = name, .dialect = &dialect};
    if (!ReadLine(reader) || reader.tokens.size() != 1 || reader.next != name.size()) return false;
    const Token& token = reader.tokens[0];
    if (token.length != name.size() || token.suffix != 0) return false;
    if (marks != 0) return token.kind == TokenKind::Equate;
    return token.kind == TokenKind::Word && LookUpWord(name, dialect).kind == WordClass::None;
}
