// Registers and flags as rows. Pure.
#include "debugui/pane_rows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>

namespace {

struct Flag {
    int bit;
    const wchar_t* name;
};
constexpr std::array<Flag, 9> kFlags = {
    {{0, L"CF"}, {2, L"PF"}, {4, L"AF"}, {6, L"ZF"}, {7, L"SF"}, {8, L"TF"}, {9, L"IF"}, {10, L"DF"}, {11, L"OF"}}};

// Register names are ASCII; any other character becomes '?', which is in no name.
std::string NarrowName(std::wstring_view text) {
    std::string narrow;
    for (const wchar_t c : text) narrow += c > 0 && c < 0x80 ? static_cast<char>(c) : '?';
    return narrow;
}

std::string UpperName(std::string text) {
    for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return text;
}

int GeneralCount(bool x64) { return x64 ? 16 : 8; }

// Number of hexadecimal digits of a register or a part of one, told from how its name is formed.
int RegisterDigits(bool x64, const std::string& name) {
    if (name.size() < 2) return 2;
    if (name.front() == 'R' && name[1] >= '0' && name[1] <= '9') {
        switch (name.back()) {
            case 'D': return 8;
            case 'W': return 4;
            case 'B':
            case 'L': return 2;
            default: return 16;
        }
    }
    if (name.size() == 3 && name.front() == 'R') return x64 ? 16 : 8;
    if (name.size() == 3 && name.front() == 'E') return 8;
    return name.back() == 'L' || name.back() == 'H' ? 2 : 4;
}

std::wstring DoubleText(std::uint64_t bits) {
    char text[40];
    std::snprintf(text, sizeof(text), "%.15g", std::bit_cast<double>(bits));
    return {text, text + std::char_traits<char>::length(text)};
}

std::wstring InOtherWords(const RegisterSet& registers, std::wstring_view name, std::size_t xmm) {
    if (name == L"EFL") return FlagsText(registers.flags);
    if (name.starts_with(L"XMM")) return xmm < registers.xmmLow.size() ? DoubleText(registers.xmmLow[xmm]) : L"";
    if (!IsGeneralRegister(registers.x64, name)) return {};
    const std::uint64_t value = RegisterByName(registers, NarrowName(name)).value_or(0);
    return registers.x64 ? std::to_wstring(static_cast<std::int64_t>(value))
                         : std::to_wstring(static_cast<std::int32_t>(static_cast<std::uint32_t>(value)));
}

}  // namespace

std::wstring FlagsText(std::uint32_t flags) {
    std::wstring text;
    for (const Flag& flag : kFlags) {
        if ((flags >> flag.bit & 1) == 0) continue;
        if (!text.empty()) text += L' ';
        text += flag.name;
    }
    return text.empty() ? L"-" : text;
}

std::vector<ListRow> RegisterPaneRows(const RegisterSet& now, const RegisterSet* before) {
    const std::vector<RegisterRow> values = RegisterRows(now);
    const std::vector<RegisterRow> old =
        before != nullptr && before->x64 == now.x64 ? RegisterRows(*before) : std::vector<RegisterRow>{};
    std::vector<ListRow> rows;
    std::size_t xmm = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        ListRow row;
        row.cells = {values[i].name, values[i].value, InOtherWords(now, values[i].name, xmm)};
        if (std::wstring_view(values[i].name).starts_with(L"XMM")) ++xmm;
        if (i < old.size() && old[i].value != values[i].value) row.changed = 0b110;
        rows.push_back(std::move(row));
    }
    return rows;
}

bool IsGeneralRegister(bool x64, std::wstring_view name) {
    RegisterSet numbered;
    numbered.x64 = x64;
    for (std::size_t i = 0; i < numbered.general.size(); ++i) numbered.general[i] = i + 1;
    // Each register holds its number here. A part such as AL holds it too, so the width is compared as well.
    const std::string upper = UpperName(NarrowName(name));
    const auto value = RegisterByName(numbered, upper);
    return value && *value >= 1 && *value <= static_cast<std::uint64_t>(GeneralCount(x64)) &&
           RegisterDigits(x64, upper) == (x64 ? 16 : 8) && upper != "EIP" && upper != "RIP";
}

Evaluation RegisterInput(const RegisterSet& registers, std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') return EvaluatePaneExpression(registers, "0" + std::string(text));
    return EvaluatePaneExpression(registers, text);
}

std::wstring RegisterTipText(const RegisterSet& registers, std::wstring_view word) {
    const std::string name = UpperName(NarrowName(word));
    const auto value = RegisterByName(registers, name);
    if (!value) return {};
    const int digits = RegisterDigits(registers.x64, name);
    const int unused = 64 - 4 * digits;  // the shifts below extend the sign of a narrower register
    const auto number = static_cast<std::int64_t>(*value << unused) >> unused;
    return std::wstring(name.begin(), name.end()) + L" = " + HexText(*value, digits) + L" (" + std::to_wstring(number) +
           L")";
}
