// Registers by name, as text, and in expressions. Must not know a thread.
#include "debugger/registers.h"

#include "debugger/hex_text.h"

#include <iterator>

namespace {

constexpr const wchar_t* kNames64[] = {L"RAX", L"RBX", L"RCX", L"RDX", L"RSI", L"RDI", L"RBP", L"RSP",
                                       L"R8",  L"R9",  L"R10", L"R11", L"R12", L"R13", L"R14", L"R15"};
constexpr const wchar_t* kNames32[] = {L"EAX", L"EBX", L"ECX", L"EDX", L"ESI", L"EDI", L"EBP", L"ESP"};
constexpr const wchar_t* kXmmNames[] = {L"XMM0", L"XMM1", L"XMM2",  L"XMM3",  L"XMM4",  L"XMM5",  L"XMM6",  L"XMM7",
                                        L"XMM8", L"XMM9", L"XMM10", L"XMM11", L"XMM12", L"XMM13", L"XMM14", L"XMM15"};
constexpr const wchar_t* kSegmentNames[] = {L"CS", L"DS", L"ES", L"FS", L"GS", L"SS"};

constexpr char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsBlank(char c) { return c == ' ' || c == '\t'; }

int HexValue(char c) {
    if (IsDigit(c)) return c - '0';
    const char upper = Upper(c);
    return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

bool SameName(std::string_view text, const wchar_t* name) {
    for (const char c : text) {
        if (*name == L'\0' || static_cast<wchar_t>(Upper(c)) != *name) return false;
        ++name;
    }
    return *name == L'\0';
}

std::string_view WithoutLeadingBlanks(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    return text;
}

// Digits at the start of `text`, taken off it; nothing when there are none.
std::optional<std::uint64_t> TakeNumber(std::string_view* text, unsigned base) {
    std::uint64_t value = 0;
    std::size_t taken = 0;
    while (taken < text->size()) {
        const int digit = HexValue((*text)[taken]);
        if (digit < 0 || static_cast<unsigned>(digit) >= base) break;
        value = value * base + static_cast<unsigned>(digit);
        ++taken;
    }
    text->remove_prefix(taken);
    return taken == 0 ? std::nullopt : std::optional(value);
}

bool TakePrefix(std::string_view* text, std::string_view prefix) {
    if (text->size() < prefix.size()) return false;
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        if (Upper((*text)[i]) != prefix[i]) return false;
    }
    text->remove_prefix(prefix.size());
    return true;
}

// The 64-bit general registers and RIP.
std::optional<std::uint64_t> FullRegister(const RegisterSet& registers, std::string_view name) {
    for (std::size_t i = 0; i < std::size(kNames64); ++i) {
        if (SameName(name, kNames64[i])) return registers.general[i];
    }
    return SameName(name, L"RIP") ? std::optional(registers.ip) : std::nullopt;
}

// Names of parts: the low 32, 16 and 8 bits, and bits 8 to 15, of the first registers.
struct PartRow {
    const wchar_t* name;
    int index;
    int shift;
    std::uint64_t mask;
};
constexpr std::uint64_t kLow32 = 0xFFFFFFFF, kLow16 = 0xFFFF, kLow8 = 0xFF;
constexpr PartRow kParts[] = {
    {L"EAX", 0, 0, kLow32}, {L"EBX", 1, 0, kLow32}, {L"ECX", 2, 0, kLow32}, {L"EDX", 3, 0, kLow32},
    {L"ESI", 4, 0, kLow32}, {L"EDI", 5, 0, kLow32}, {L"EBP", 6, 0, kLow32}, {L"ESP", 7, 0, kLow32},
    {L"AX", 0, 0, kLow16},  {L"BX", 1, 0, kLow16},  {L"CX", 2, 0, kLow16},  {L"DX", 3, 0, kLow16},
    {L"SI", 4, 0, kLow16},  {L"DI", 5, 0, kLow16},  {L"BP", 6, 0, kLow16},  {L"SP", 7, 0, kLow16},
    {L"AL", 0, 0, kLow8},   {L"BL", 1, 0, kLow8},   {L"CL", 2, 0, kLow8},   {L"DL", 3, 0, kLow8},
    {L"AH", 0, 8, kLow8},   {L"BH", 1, 8, kLow8},   {L"CH", 2, 8, kLow8},   {L"DH", 3, 8, kLow8},
};
constexpr PartRow kParts64[] = {
    {L"SIL", 4, 0, kLow8}, {L"DIL", 5, 0, kLow8}, {L"BPL", 6, 0, kLow8}, {L"SPL", 7, 0, kLow8}};

template <std::size_t N>
std::optional<std::uint64_t> PartByName(const RegisterSet& registers, std::string_view name, const PartRow (&rows)[N]) {
    for (const PartRow& row : rows) {
        if (SameName(name, row.name))
            return registers.general[static_cast<std::size_t>(row.index)] >> row.shift & row.mask;
    }
    return std::nullopt;
}

// R8D, R8W, R8B and so on.
std::optional<std::uint64_t> NumberedPart(const RegisterSet& registers, std::string_view name) {
    if (name.size() < 3) return std::nullopt;
    const char suffix = Upper(name.back());
    const auto whole = FullRegister(registers, name.substr(0, name.size() - 1));
    if (!whole || !IsDigit(name[1])) return std::nullopt;
    if (suffix == 'D') return *whole & kLow32;
    if (suffix == 'W') return *whole & kLow16;
    return suffix == 'B' ? std::optional(*whole & kLow8) : std::nullopt;
}

// Sums, products and brackets, read from left to right.
class PaneParser {
public:
    PaneParser(const RegisterSet& registers, std::string_view text) : registers_(registers), rest_(text) {}

    Evaluation Run() {
        const std::uint64_t value = Sum();
        Skip();
        if (problem_.empty() && !rest_.empty()) Fail(L"not understood from here: " + Shown(rest_));
        if (!problem_.empty()) return {.value = std::nullopt, .problem = problem_};
        return {.value = registers_.x64 ? value : value & kLow32, .problem = {}};
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
    std::uint64_t Sum() {
        std::uint64_t value = Product();
        for (;;) {
            if (Take('+'))
                value += Product();
            else if (Take('-'))
                value -= Product();
            else
                return value;
        }
    }
    std::uint64_t Product() {
        std::uint64_t value = Operand();
        while (Take('*')) value *= Operand();
        return value;
    }
    std::uint64_t Operand() {
        if (!problem_.empty()) return 0;
        if (++depth_ > kDeepest) {
            Fail(L"too many brackets");
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
            if (!Take(')')) Fail(L"a bracket is not closed");
            return value;
        }
        Skip();
        if (rest_.empty()) {
            Fail(L"a value is missing");
            return 0;
        }
        return IsDigit(rest_.front()) || rest_.front() == '&' ? Number() : Name();
    }
    std::uint64_t Number() {
        const bool hexadecimal = TakePrefix(&rest_, "0X") || TakePrefix(&rest_, "&H");
        const auto value = TakeNumber(&rest_, hexadecimal ? 16 : 10);
        if (!value) Fail(L"a number is missing");
        return value.value_or(0);
    }
    std::uint64_t Name() {
        std::size_t length = 0;
        const auto inName = [](char c) { return IsDigit(c) || (Upper(c) >= 'A' && Upper(c) <= 'Z'); };
        while (length < rest_.size() && inName(rest_[length])) ++length;
        const std::string_view name = rest_.substr(0, length);
        rest_.remove_prefix(length);
        const auto value = RegisterByName(registers_, name);
        if (!value) Fail(name.empty() ? L"not understood from here: " + Shown(rest_) : L"no register: " + Shown(name));
        return value.value_or(0);
    }

    const RegisterSet& registers_;
    std::string_view rest_;
    std::wstring problem_;
    int depth_ = 0;
};

}  // namespace

std::vector<RegisterRow> RegisterRows(const RegisterSet& registers) {
    std::vector<RegisterRow> rows;
    const int wordDigits = registers.x64 ? 16 : 8;
    const std::size_t generals = registers.x64 ? std::size(kNames64) : std::size(kNames32);
    for (std::size_t i = 0; i < generals; ++i)
        rows.push_back({registers.x64 ? kNames64[i] : kNames32[i], HexText(registers.general[i], wordDigits)});
    rows.push_back({registers.x64 ? L"RIP" : L"EIP", HexText(registers.ip, wordDigits)});
    rows.push_back({L"EFL", HexText(registers.flags, 8)});
    for (std::size_t i = 0; i < std::size(kSegmentNames); ++i)
        rows.push_back({kSegmentNames[i], HexText(registers.segments[i], 4)});
    for (std::size_t i = 0; i < (registers.x64 ? std::size(kXmmNames) : 8); ++i)
        rows.push_back({kXmmNames[i], HexText(registers.xmmHigh[i], 16) + HexText(registers.xmmLow[i], 16)});
    return rows;
}

std::optional<std::uint64_t> RegisterByName(const RegisterSet& registers, std::string_view name) {
    if (const auto part = PartByName(registers, name, kParts)) return part;
    if (!registers.x64) return SameName(name, L"EIP") ? std::optional(registers.ip) : std::nullopt;
    if (const auto whole = FullRegister(registers, name)) return whole;
    if (const auto part = PartByName(registers, name, kParts64)) return part;
    return NumberedPart(registers, name);
}

std::wstring FormatRegisters(const RegisterSet& registers) {
    if (!registers.x64) return L"x86 registers not available on x64 host";
    std::wstring text;
    for (std::size_t i = 0; i < std::size(kNames64); ++i) {
        const std::wstring name = kNames64[i];
        text += name + (name.size() < 3 ? L" =" : L"=") + HexText(registers.general[i], 16);
        text += i % 4 == 3 ? L"\r\n" : L"  ";
    }
    return text + L"RIP=" + HexText(registers.ip, 16) + L"  EFL=" + HexText(registers.flags, 8);
}

std::uint64_t EvaluateExpression(const RegisterSet& registers, std::string_view text) {
    text = WithoutLeadingBlanks(text);
    std::string_view digits = text;
    if (TakePrefix(&digits, "0X")) return TakeNumber(&digits, 16).value_or(0);
    if (!text.empty() && IsDigit(text.front())) return TakeNumber(&text, 10).value_or(0);
    return registers.x64 ? FullRegister(registers, text).value_or(0) : 0;
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

bool Compare(Condition::Operator op, std::uint64_t left, std::uint64_t right) {
    switch (op) {
        case Condition::Operator::GreaterEqual: return left >= right;
        case Condition::Operator::LessEqual: return left <= right;
        case Condition::Operator::NotEqual: return left != right;
        case Condition::Operator::Equal: return left == right;
        case Condition::Operator::Greater: return left > right;
        case Condition::Operator::Less: return left < right;
        default: return true;
    }
}

Evaluation EvaluatePaneExpression(const RegisterSet& registers, std::string_view text) {
    return PaneParser(registers, text).Run();
}
