// Computes constants. Pure.
#include "completion/constant_value.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <vector>

namespace {

constexpr int kDeepest = 24;  // constants that refer to others, and parentheses

using Value = std::optional<std::int64_t>;

struct Expression {
    SymbolTables tables;
    const Dialect& dialect;
    std::string_view text;
    std::vector<Token> tokens;
    std::size_t next = 0;
    int depth = 0;
};

Value ValueOf(SymbolTables tables, const SymbolPlace& constant, const Dialect& dialect, int depth);
Value Evaluate(Expression& expression, int least);

std::string_view NextText(const Expression& expression) {
    return expression.next < expression.tokens.size() ? TokenText(expression.text, expression.tokens[expression.next])
                                                      : std::string_view();
}

Value NumberOf(std::string_view text) {
    int base = 10;
    const char mark = text.size() > 2 && text[0] == '&' ? static_cast<char>(text[1] | 0x20) : '\0';
    if (mark != '\0') {
        base = mark == 'h' ? 16 : mark == 'b' ? 2 : 8;
        text.remove_prefix(mark == 'h' || mark == 'b' || mark == 'o' || mark == 'q' ? 2 : 1);
    }
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    if (base == 10 && number > INT64_MAX) return std::nullopt;
    return static_cast<std::int64_t>(number);
}

Value NameValue(const Expression& expression, std::string_view name) {
    for (std::size_t text = 0; text < expression.tables.size(); ++text)
        for (const std::uint32_t index : SymbolsNamed(*expression.tables[text], name)) {
            const SymbolKind kind = expression.tables[text]->symbols[index].kind;
            if (kind == SymbolKind::Constant || kind == SymbolKind::EnumValue)
                return ValueOf(expression.tables, {text, index}, expression.dialect, expression.depth + 1);
        }
    return std::nullopt;
}

Value Operand(Expression& expression) {
    if (expression.next == expression.tokens.size() || expression.depth > kDeepest) return std::nullopt;
    const Token token = expression.tokens[expression.next++];
    const std::string_view text = TokenText(expression.text, token);
    if (token.kind == TokenKind::Number) return NumberOf(TokenName(expression.text, token));
    if (text == "(" || text == "-" || text == "+" || CompareNames(text, "not") == 0) {
        constexpr int kSign = 7, kNot = 4;
        ++expression.depth;
        const bool inside = text == "(";
        Value value = Evaluate(expression, inside ? 0 : text.size() == 1 ? kSign : kNot);
        --expression.depth;
        if (inside && NextText(expression) != ")") return std::nullopt;
        if (inside) ++expression.next;
        if (!value) return value;
        if (text == "-") return static_cast<std::int64_t>(0 - static_cast<std::uint64_t>(*value));
        return inside || text == "+" ? value : Value(~*value);
    }
    const bool named = token.kind == TokenKind::Word || token.kind == TokenKind::Equate;
    return named ? NameValue(expression, TokenName(expression.text, token)) : std::nullopt;
}

// How tightly an operator binds; 0: it is none that is known.
int Binding(std::string_view text) {
    static constexpr struct {
        std::string_view text;
        int binding;
    } kOperators[] = {{"*", 8}, {"/", 8}, {"\\", 7}, {"mod", 6}, {"+", 5}, {"-", 5}, {"and", 3}, {"or", 2}, {"xor", 1}};
    for (const auto& row : kOperators)
        if (CompareNames(row.text, text) == 0) return row.binding;
    return 0;
}

Value Apply(std::string_view text, std::int64_t a, std::int64_t b) {
    std::int64_t result = 0;
    const bool divides = text == "/" || text == "\\" || CompareNames(text, "mod") == 0;
    if (divides && (b == 0 || b == -1)) {
        if (b == 0 || a == INT64_MIN) return std::nullopt;
        return text.size() == 1 ? -a : 0;
    }
    if (text == "*") return __builtin_mul_overflow(a, b, &result) ? Value() : Value(result);
    if (text == "+") return __builtin_add_overflow(a, b, &result) ? Value() : Value(result);
    if (text == "-") return __builtin_sub_overflow(a, b, &result) ? Value() : Value(result);
    if (text == "/") return a % b == 0 ? Value(a / b) : Value();  // else it is no whole number
    if (text == "\\") return a / b;
    if (CompareNames(text, "mod") == 0) return a % b;
    if (CompareNames(text, "and") == 0) return a & b;
    if (CompareNames(text, "or") == 0) return a | b;
    return a ^ b;
}

Value Evaluate(Expression& expression, int least) {
    Value left = Operand(expression);
    while (left) {
        const std::string_view text = NextText(expression);
        const int binding = Binding(text);
        if (binding == 0 || binding <= least) break;
        ++expression.next;
        const Value right = Evaluate(expression, binding);
        left = right ? Apply(text, *left, *right) : std::nullopt;
    }
    return left;
}

Value ValueOfText(SymbolTables tables, std::string_view detail, const Dialect& dialect, int depth) {
    // Behind an equals sign, because at the start of a line a number is a label.
    const std::string text = "x = " + std::string(detail);
    Expression expression{tables, dialect, text, {}, 2, depth};
    ScanLine(text, 0, 0, dialect, expression.tokens);
    while (!expression.tokens.empty() && expression.tokens.back().kind == TokenKind::Comment)
        expression.tokens.pop_back();
    const Value value = Evaluate(expression, 0);
    return expression.next == expression.tokens.size() ? value : std::nullopt;
}

// A value of an ENUM without a text of its own is one more than the one before it.
Value ValueOf(SymbolTables tables, const SymbolPlace& constant, const Dialect& dialect, int depth) {
    if (depth > kDeepest) return std::nullopt;
    const SymbolTable& table = *tables[constant.text];
    std::int64_t more = 0;
    for (std::uint32_t at = constant.symbol;; --at) {
        const Symbol& symbol = table.symbols[at];
        const std::string_view detail = SymbolDetail(table, symbol);
        if (!detail.empty()) {
            const Value value = ValueOfText(tables, detail, dialect, depth);
            return value ? Apply("+", *value, more) : std::nullopt;
        }
        if (symbol.kind != SymbolKind::EnumValue) return std::nullopt;
        if (at == 0 || at - 1 == symbol.container) return more;
        ++more;
    }
}

}  // namespace

std::optional<std::int64_t> ConstantValue(SymbolTables tables, const SymbolPlace& constant, const Dialect& dialect) {
    return ValueOf(tables, constant, dialect, 0);
}

std::string WithHex(std::int64_t value) {
    const bool is32 = value >= INT32_MIN && value <= UINT32_MAX;
    char digits[20] = {};
    const auto bits = is32 ? static_cast<std::uint32_t>(value) : static_cast<std::uint64_t>(value);
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, bits, 16);
    std::string hex(digits, end);
    for (char& c : hex)
        if (c >= 'a') c = static_cast<char>(c - 32);
    return std::to_string(value) + " (&H" + hex + ")";
}
