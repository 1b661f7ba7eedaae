// The two readers of expressions: a plain one for conditions, and one with sums and brackets for the debug pane. Must
// not know a thread.
#include "debugger/expressions.h"

#include "base/hex_text.h"
#include "base/scan_text.h"
#include "base/texts.h"

namespace {

constexpr std::string_view kTypeSuffixes = "%&!#$@?";

// Bytes above ASCII are letters of other alphabets.
bool IsNameCharacter(char c) {
    return IsDigit(c) || (UpperAscii(c) >= 'A' && UpperAscii(c) <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) > 127;
}

// Sums, products and brackets, read from left to right.
class PaneParser {
public:
    PaneParser(const RegisterSet& registers, std::string_view text, const MemoryReader& read, const NameReader& names)
        : registers_(registers), rest_(text), read_(read), names_(names) {}

    Evaluation Run() {
        const std::uint64_t value = Sum();
        Skip();
        if (problem_.empty() && !rest_.empty()) Fail(TextWith(L"not understood from here: {1}", {Shown(rest_)}));
        if (!problem_.empty()) return {.value = std::nullopt, .problem = problem_};
        return {.value = registers_.x64 ? value : value & 0xFFFFFFFF, .problem = {}};
    }

private:
    static constexpr int kDeepest = 32;

    static std::wstring Shown(std::string_view text) {
        std::wstring wide;
        for (const char c : text.substr(0, 40)) wide += c >= ' ' && c < 127 ? static_cast<wchar_t>(c) : L'?';
        return wide;
    }
    void Fail(std::wstring text) {
        if (problem_.empty()) problem_ = std::move(text);
    }
    void Skip() { rest_ = WithoutLeadingBlanks(rest_); }
    bool Take(char c) {
        Skip();
        if (rest_.empty() || rest_.front() != c) return false;
        rest_.remove_prefix(1);
        return true;
    }
    void Close(char bracket) {
        if (Take(bracket)) return;
        Fail(rest_.empty() ? std::wstring(Text(L"a bracket is not closed"))
                           : TextWith(L"not understood from here: {1}", {Shown(rest_)}));
    }
    std::uint64_t Sum() {
        std::uint64_t value = Product();
        for (;;)
            if (Take('+'))
                value += Product();
            else if (Take('-'))
                value -= Product();
            else
                return value;
    }
    std::uint64_t Product() {
        std::uint64_t value = Operand();
        while (Take('*')) value *= Operand();
        return value;
    }
    std::uint64_t Operand() {
        if (!problem_.empty()) return 0;
        if (++depth_ > kDeepest) {
            Fail(Text(L"too many brackets"));
            return 0;
        }
        const std::uint64_t value = OperandInside();
        --depth_;
        return value;
    }
    std::uint64_t OperandInside() {
        if (Take('-')) return 0 - Operand();
        if (Take('(')) {
            const std::uint64_t value = Sum();
            Close(')');
            return value;
        }
        if (Take('[')) return Memory(registers_.x64 ? 8 : 4);
        Skip();
        if (rest_.empty()) {
            Fail(Text(L"a value is missing"));
            return 0;
        }
        return IsDigit(rest_.front()) || rest_.front() == '&' ? Number() : Name();
    }
    // The opening bracket is taken.
    std::uint64_t Memory(std::size_t bytes) {
        const std::uint64_t sum = Sum();
        const std::uint64_t address = registers_.x64 ? sum : sum & 0xFFFFFFFF;
        Close(']');
        if (!problem_.empty()) return 0;
        std::uint64_t value = 0;
        if (!read_ || !read_(address, &value, bytes))
            Fail(TextWith(L"no memory can be read at 0x{1}", {HexText(address, 1)}));
        return value;
    }
    // Bytes of the memory that a name before a bracket asks for; 0: it is no such name.
    static std::size_t SizeOfName(std::string_view name) {
        std::string upper;
        for (const char c : name) upper += UpperAscii(c);
        return upper == "BYTE" ? 1 : upper == "WORD" ? 2 : upper == "DWORD" ? 4 : upper == "QWORD" ? 8 : 0;
    }
    // A hexadecimal number as assemblers write it: digits, and an h behind them.
    static std::optional<std::uint64_t> TakeNumberWithH(std::string_view* text) {
        std::string_view rest = *text;
        const auto value = TakeNumber(&rest, 16);
        if (!value || !TakePrefix(&rest, "H") || (!rest.empty() && IsNameCharacter(rest.front()))) return std::nullopt;
        *text = rest;
        return value;
    }
    std::uint64_t Number() {
        if (const auto value = TakeNumberWithH(&rest_)) return *value;
        const bool hexadecimal = TakePrefix(&rest_, "0X") || TakePrefix(&rest_, "&H");
        const auto value = TakeNumber(&rest_, hexadecimal ? 16 : 10);
        if (!value) Fail(Text(L"a number is missing"));
        return value.value_or(0);
    }
    // A name of the user, with the suffix or without it. Nothing: there is none.
    std::optional<std::uint64_t> Given(std::string_view whole, bool place) {
        if (!names_) return std::nullopt;
        for (const std::string_view name : {whole, WithoutTypeSuffix(whole)}) {
            const std::optional<Evaluation> found = names_(name, place);
            if (!found) continue;
            rest_.remove_prefix(whole.size());
            if (!found->value) Fail(found->problem);
            return found->value.value_or(0);
        }
        return std::nullopt;
    }
    // VARPTR is taken.
    std::uint64_t PlaceOfGiven() {
        if (!Take('(')) Fail(Text(L"a bracket is missing after VARPTR"));
        Skip();
        const std::string_view name = NameAtStart(rest_);
        const auto place = Given(name, true);
        if (!place) Fail(Unknown(name));
        Close(')');
        return place.value_or(0);
    }
    std::wstring Unknown(std::string_view name) const {
        if (name.empty()) return TextWith(L"not understood from here: {1}", {Shown(rest_)});
        if (!names_) return TextWith(L"no register: {1}", {Shown(name)});
        return TextWith(
            L"{1} is not known. The compilers write no names of variables: name its place, as {1} = {2}, LONG",
            {Shown(name), std::wstring(FramePointerName(registers_.x64)) + L"-4"});
    }
    // Why a register of this frame cannot be used; empty: it can.
    std::wstring Lost(std::string_view name) const {
        if (registers_.frame == FrameState::Whole) return {};
        std::string upper;
        for (const char c : name) upper += UpperAscii(c);
        const bool framePointer = upper == "RBP" || upper == "EBP";
        if (registers_.frame == FrameState::Coming)
            return framePointer ? TextWith(L"{1} does not belong to this procedure yet: step once", {Shown(name)})
                                : L"";
        const bool known = upper == "RIP" || upper == "EIP" || (framePointer && registers_.general[kBp] != 0) ||
                           ((upper == "RSP" || upper == "ESP") && registers_.general[kSp] != 0);
        return known ? L"" : TextWith(L"{1} of a caller is not known", {Shown(name)});
    }
    std::uint64_t Name() {
        const std::string_view whole = NameAtStart(rest_);
        if (const auto given = Given(whole, false)) return *given;
        const std::string_view name = WithoutTypeSuffix(whole);
        rest_.remove_prefix(name.size());
        if (std::string_view word = name; names_ && TakePrefix(&word, "VARPTR") && word.empty()) return PlaceOfGiven();
        if (const std::size_t bytes = SizeOfName(name); bytes != 0) {
            Skip();
            std::string_view behind = rest_;
            if (TakePrefix(&behind, "PTR") && WithoutLeadingBlanks(behind).starts_with('[')) rest_ = behind;
            if (Take('[')) return Memory(bytes);
        }
        const auto value = RegisterByName(registers_, name);
        if (!value) Fail(Unknown(name));
        if (const std::wstring lost = Lost(name); value && !lost.empty()) Fail(lost);
        return value.value_or(0);
    }

    const RegisterSet& registers_;
    std::string_view rest_;
    const MemoryReader& read_;
    const NameReader& names_;
    std::wstring problem_;
    int depth_ = 0;
};

}  // namespace

std::uint64_t EvaluateExpression(const RegisterSet& registers, std::string_view text) {
    text = WithoutLeadingBlanks(text);
    std::string_view digits = text;
    if (TakePrefix(&digits, "0X")) return TakeNumber(&digits, 16).value_or(0);
    if (!text.empty() && IsDigit(text.front())) return TakeNumber(&text, 10).value_or(0);
    return registers.x64 ? FullRegisterByName(registers, text).value_or(0) : 0;
}

Condition ParseCondition(std::string_view text) {
    using Operator = Condition::Operator;
    constexpr struct {
        std::string_view sign;
        Operator op;
    } kSigns[] = {{">=", Operator::GreaterEqual}, {"<=", Operator::LessEqual}, {"!=", Operator::NotEqual},
                  {"==", Operator::Equal},        {">", Operator::Greater},    {"<", Operator::Less}};
    for (const auto& row : kSigns) {
        const std::size_t at = text.find(row.sign);
        if (at == std::string_view::npos) continue;
        return {.op = row.op,
                .left = WithoutLeadingBlanks(text.substr(0, at)),
                .right = WithoutLeadingBlanks(text.substr(at + row.sign.size()))};
    }
    return {};
}

bool ConditionHolds(const Condition& condition, const RegisterSet* registers) {
    const auto value = [&](std::string_view side) {
        return registers != nullptr ? EvaluateExpression(*registers, side) : 0;
    };
    const std::uint64_t left = value(condition.left);
    const std::uint64_t right = value(condition.right);
    switch (condition.op) {
        case Condition::Operator::GreaterEqual: return left >= right;
        case Condition::Operator::LessEqual: return left <= right;
        case Condition::Operator::NotEqual: return left != right;
        case Condition::Operator::Equal: return left == right;
        case Condition::Operator::Greater: return left > right;
        case Condition::Operator::Less: return left < right;
        default: return true;
    }
}

Evaluation EvaluatePaneExpression(const RegisterSet& registers, std::string_view text, const MemoryReader& read,
                                  const NameReader& names) {
    return PaneParser(registers, text, read, names).Run();
}

std::string_view NameAtStart(std::string_view text) {
    std::size_t end = 0;
    while (end < text.size() && IsNameCharacter(text[end])) ++end;
    if (end > 0)
        while (end < text.size() && kTypeSuffixes.find(text[end]) != std::string_view::npos) ++end;
    return text.substr(0, end);
}

std::string_view WithoutTypeSuffix(std::string_view name) {
    return name.substr(0, name.find_last_not_of(kTypeSuffixes) + 1);
}
