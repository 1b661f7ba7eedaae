// Rules of the names of places. Must not know a process, an editor or a file.
#include "debugger/named_places.h"

#include "base/scan_text.h"
#include "base/texts.h"
#include "base/utf8.h"

#include <algorithm>
#include <array>
#include <bit>
#include <compare>
#include <cstdlib>
#include <cstring>
#include <variant>

namespace {

constexpr std::size_t kLongestName = 64, kLongestPlace = 120;  // bytes

std::string_view TrimmedBlanks(std::string_view text) {
    text = WithoutLeadingBlanks(text);
    return text.substr(0, text.find_last_not_of(" \t\r\n") + 1);
}

bool SameLetters(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, UpperAscii, UpperAscii);
}

RegisterSet AnyRegisters(bool x64) {
    RegisterSet registers;
    registers.x64 = x64;
    registers.general.fill(1);
    return registers;
}

struct KindWord {
    std::string_view word;
    WatchKind kind;
};
// What a BASIC source says after AS, and the names that the lists show.
constexpr KindWord kKindWords[] = {
    {"LONG", WatchKind::Long},         {"QUAD", WatchKind::Quad},          {"ASCIIZ", WatchKind::Text},
    {"ZSTRING", WatchKind::Text},      {"STRINGZ", WatchKind::Text},       {"TEXT", WatchKind::Text},
    {"DOUBLE", WatchKind::Double},     {"BYTE", WatchKind::Byte},          {"WORD", WatchKind::Word},
    {"DWORD", WatchKind::Dword},       {"INTEGER", WatchKind::Integer},    {"SINGLE", WatchKind::Single},
    {"WSTRINGZ", WatchKind::WideText}, {"WIDE TEXT", WatchKind::WideText}, {"VALUE", WatchKind::Value},
    {"STRING", WatchKind::TextPointer}};
constexpr KindWord kSuffixKinds[] = {
    {"%", WatchKind::Integer}, {"&", WatchKind::Long},    {"&&", WatchKind::Quad},
    {"!", WatchKind::Single},  {"#", WatchKind::Double},  {"?", WatchKind::Byte},
    {"??", WatchKind::Word},   {"???", WatchKind::Dword}, {"$", WatchKind::TextPointer}};

template <std::size_t N>
std::optional<WatchKind> KindOfWord(const KindWord (&words)[N], std::string_view text) {
    for (const KindWord& row : words)
        if (SameLetters(row.word, text)) return row.kind;
    return std::nullopt;
}

// --- Values

struct NoValue {
    std::wstring problem;
};
using NamedValue = std::variant<NoValue, std::int64_t, double, std::string>;

std::wstring Quoted(std::string_view name) { return Utf8ToWideText(name); }

// A whole number of the program's memory, with the sign of its kind.
template <typename Number>
NamedValue NumberOf(const ProgramMemory& memory, std::uint64_t address) {
    Number number = {};
    if (!memory.read(address, &number, sizeof(number))) return NoValue{};
    if constexpr (std::is_floating_point_v<Number>)
        return static_cast<double>(number);
    else
        return static_cast<std::int64_t>(number);
}

NamedValue TextAtPlace(const ProgramMemory& memory, WatchKind kind, std::uint64_t address) {
    std::wstring text = WatchValueText(static_cast<int>(kind), address, memory, {});
    if (text == kUnreadableWatch) return NoValue{};
    return ToUtf8(std::wstring_view(text).substr(1, text.size() - 2));  // without its quotation marks
}

std::int64_t SignedOfProgram(std::uint64_t value, bool x64) {
    return x64 ? static_cast<std::int64_t>(value) : static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

NamedValue ValueAtPlace(WatchKind kind, std::uint64_t address, const NameScope& scope) {
    const ProgramMemory& memory = scope.memory;
    switch (kind) {
        case WatchKind::Long: return NumberOf<std::int32_t>(memory, address);
        case WatchKind::Quad: return NumberOf<std::int64_t>(memory, address);
        case WatchKind::Byte: return NumberOf<std::uint8_t>(memory, address);
        case WatchKind::Word: return NumberOf<std::uint16_t>(memory, address);
        case WatchKind::Dword: return NumberOf<std::uint32_t>(memory, address);
        case WatchKind::Integer: return NumberOf<std::int16_t>(memory, address);
        case WatchKind::Single: return NumberOf<float>(memory, address);
        case WatchKind::Double: return NumberOf<double>(memory, address);
        case WatchKind::Value: return SignedOfProgram(address, scope.registers.x64);
        case WatchKind::Text:
        case WatchKind::WideText:
        case WatchKind::TextPointer: return TextAtPlace(memory, kind, address);
    }
    return NoValue{};
}

NamedValue ValueOfName(const NamedPlace& named, const NameScope& scope) {
    const Evaluation address = AddressOfName(named, scope);
    if (!address.value) return NoValue{address.problem};
    NamedValue value = ValueAtPlace(named.kind, *address.value, scope);
    if (std::holds_alternative<NoValue>(value))
        return NoValue{TextWith(L"{1} cannot be read: {2}",
                                {Quoted(named.name), WhyUnreadable(named.kind, *address.value, scope.memory)})};
    return value;
}

NameReader ReaderOf(const NameScope& scope) {
    return [&scope](std::string_view name, bool place) -> std::optional<Evaluation> {
        const NamedPlace* const named = FindNamedPlace(scope.names, name);
        if (named == nullptr) return std::nullopt;
        if (place) return AddressOfName(*named, scope);
        const NamedValue value = ValueOfName(*named, scope);
        if (const auto* none = std::get_if<NoValue>(&value)) return Evaluation{.value = {}, .problem = none->problem};
        const auto* whole = std::get_if<std::int64_t>(&value);
        if (whole != nullptr) return Evaluation{.value = static_cast<std::uint64_t>(*whole), .problem = {}};
        return Evaluation{
            .value = {},
            .problem = TextWith(L"{1} is no whole number: it can stand alone only", {Quoted(named->name)})};
    };
}

// --- Conditions

// The text without what stands in quotation marks, at the same places.
std::string WithoutQuoted(std::string_view text) {
    std::string bare(text);
    bool inside = false;
    for (char& c : bare) {
        if (c == '"') inside = !inside;
        if (inside || c == '"') c = '"';
    }
    return bare;
}

bool IsInName(char c) { return !NameAtStart({&c, 1}).empty(); }

// Where the word stands by itself, in any letter case; npos: nowhere.
std::size_t FindWord(std::string_view bare, std::string_view word) {
    for (std::size_t at = 0; at + word.size() <= bare.size(); ++at) {
        const std::size_t end = at + word.size();
        if (!SameLetters(bare.substr(at, word.size()), word) || (at > 0 && IsInName(bare[at - 1]))) continue;
        if (end == bare.size() || !IsInName(bare[end])) return at;
    }
    return std::string_view::npos;
}

NamedValue ValueOfSide(std::string_view side, const NameScope& scope) {
    side = TrimmedBlanks(side);
    if (side.empty()) return NoValue{Text(L"a value is missing")};
    if (side.size() >= 2 && side.front() == '"' && side.back() == '"')
        return std::string(side.substr(1, side.size() - 2));
    if (const NamedPlace* named = FindNamedPlace(scope.names, side)) return ValueOfName(*named, scope);
    const std::string number(side);
    char* end = nullptr;
    const double real = std::strtod(number.c_str(), &end);
    if (*end == '\0' && number.find('.') != std::string::npos) return real;
    const Evaluation sum = EvaluateWithNames(side, scope);
    if (!sum.value) return NoValue{sum.problem};
    return SignedOfProgram(*sum.value, scope.registers.x64);
}

double RealOf(const NamedValue& value) {
    const auto* whole = std::get_if<std::int64_t>(&value);
    return whole != nullptr ? static_cast<double>(*whole) : std::get<double>(value);
}

// Nothing when the two cannot be compared.
std::partial_ordering Order(const NamedValue& left, const NamedValue& right) {
    const auto *leftText = std::get_if<std::string>(&left), *rightText = std::get_if<std::string>(&right);
    if (leftText != nullptr && rightText != nullptr) return *leftText <=> *rightText;
    if (leftText != nullptr || rightText != nullptr) return std::partial_ordering::unordered;
    const auto *a = std::get_if<std::int64_t>(&left), *b = std::get_if<std::int64_t>(&right);
    if (a != nullptr && b != nullptr) return *a <=> *b;
    return RealOf(left) <=> RealOf(right);
}

struct Sign {
    std::string_view text;
    bool less, equal, greater;
};
constexpr Sign kSigns[] = {{">=", false, true, true}, {"<=", true, true, false},  {"!=", true, false, true},
                           {"<>", true, false, true}, {"==", false, true, false}, {"=", false, true, false},
                           {">", false, false, true}, {"<", true, false, false}};

NamedVerdict ComparisonHolds(std::string_view text, const NameScope& scope) {
    const std::string bare = WithoutQuoted(text);
    const Sign* sign = nullptr;
    std::size_t at = std::string::npos;
    for (const Sign& each : kSigns) {
        const std::size_t found = bare.find(each.text);
        if (found == std::string::npos || (sign != nullptr && found >= at)) continue;
        sign = &each;
        at = found;
    }
    const NamedValue left = ValueOfSide(text.substr(0, at), scope);
    if (const auto* none = std::get_if<NoValue>(&left)) return {.holds = true, .problem = none->problem};
    if (sign == nullptr) {
        if (std::holds_alternative<std::string>(left))
            return {.holds = !std::get<std::string>(left).empty(), .problem = {}};
        return {.holds = RealOf(left) != 0, .problem = {}};
    }
    const NamedValue right = ValueOfSide(text.substr(at + sign->text.size()), scope);
    if (const auto* none = std::get_if<NoValue>(&right)) return {.holds = true, .problem = none->problem};
    const std::partial_ordering order = Order(left, right);
    if (std::holds_alternative<std::string>(left) != std::holds_alternative<std::string>(right))
        return {.holds = true, .problem = Text(L"a text and a number cannot be compared")};
    return {.holds = (std::is_lt(order) && sign->less) || (std::is_eq(order) && sign->equal) ||
                     (std::is_gt(order) && sign->greater),
            .problem = {}};
}

// Parts joined by a word: with OR one that holds is enough, with AND all must.
// `every`: also those that do not count any more.
NamedVerdict JoinedHolds(std::string_view text, const NameScope& scope, bool orWord, bool every = false) {
    const std::string bare = WithoutQuoted(text);
    const std::string_view word = orWord ? "OR" : "AND";
    for (std::size_t from = 0;;) {
        const std::size_t found = FindWord(std::string_view(bare).substr(from), word);
        const std::string_view part = text.substr(from, found);
        NamedVerdict verdict = orWord ? JoinedHolds(part, scope, false, every) : ComparisonHolds(part, scope);
        const bool decided = (verdict.holds == orWord && !every) || !verdict.problem.empty();
        if (decided || found == std::string::npos) return verdict;
        from += found + word.size();
    }
}

}  // namespace

const NamedPlace* FindNamedPlace(std::span<const NamedPlace> names, std::string_view name) {
    const auto found =
        std::ranges::find_if(names, [&](const NamedPlace& each) { return SameLetters(each.name, name); });
    return found == names.end() ? nullptr : &*found;
}

std::wstring PlaceNameProblem(std::string_view name) {
    if (name.empty()) return Text(L"A name is missing.");
    if (name.size() > kLongestName) return Text(L"The name is too long.");
    if (IsDigit(name.front()) || NameAtStart(name) != name)
        return Text(L"A name has letters, digits and underscores, and a letter first.");
    const bool narrow = name.size() == 3 && UpperAscii(name[0]) == 'E' && RegisterByName(AnyRegisters(false), name);
    if (narrow || FullRegisterByName(AnyRegisters(true), name)) return TextWith(L"{1} is a register.", {Quoted(name)});
    for (const std::string_view word : {"BYTE", "WORD", "DWORD", "QWORD", "VARPTR", "AND", "OR"})
        if (SameLetters(name, word)) return TextWith(L"{1} has a meaning of its own in expressions.", {Quoted(name)});
    return {};
}

std::wstring PlaceProblem(std::string_view place, std::optional<bool> x64) {
    place = TrimmedBlanks(place);
    if (place.empty()) return Text(L"A place is missing, such as RBP-4 or [RBP+16] (EBP in 32-bit programs).");
    if (place.size() > kLongestPlace) return Text(L"The place is too long.");
    const MemoryReader anything = [](std::uint64_t, void*, std::size_t) { return true; };
    std::wstring problem;
    for (const bool wide : {true, false}) {
        if (x64 && *x64 != wide) continue;
        const Evaluation tried = EvaluatePaneExpression(AnyRegisters(wide), place, anything);
        if (tried.value) return {};
        if (problem.empty()) problem = tried.problem;
    }
    const bool wide = x64.value_or(true);
    return TextWith(L"Not a place: {1}. Write it as {2}-4, {2}-10h or [{2}+16].", {problem, FramePointerName(wide)});
}

std::wstring PlaceNotice(std::string_view place) {
    place = TrimmedBlanks(place);
    const std::size_t open = place.find('[');
    if (open == std::string_view::npos || place.find(']') != place.size() - 1) return {};
    const std::wstring inside = Quoted(TrimmedBlanks(place.substr(open + 1, place.size() - open - 2)));
    return TextWith(L"In brackets: where the address leads to that is kept at {1}. Without them: {1} itself.",
                    {inside});
}

std::optional<WatchKind> WatchKindNamed(std::string_view text) { return KindOfWord(kKindWords, TrimmedBlanks(text)); }

std::optional<WatchKind> WatchKindOfType(std::string_view type) {
    type = TrimmedBlanks(type);
    if (const auto kind = KindOfWord(kSuffixKinds, type)) return kind;
    const std::string_view word = type.substr(0, type.find_first_of(" *"));
    const bool fixed = type.find('*') != std::string_view::npos;  // "STRING * 20": the text itself
    if (fixed && SameLetters(word, "STRING")) return WatchKind::Text;
    return KindOfWord(kKindWords, word);
}

bool IsNamedDefinition(std::string_view text) {
    text = WithoutLeadingBlanks(text);
    const std::string_view name = NameAtStart(text);
    const std::string_view rest = WithoutLeadingBlanks(text.substr(name.size()));
    return !name.empty() && rest.starts_with('=') && !rest.starts_with("==");
}

NamedInput NamedPlaceOf(std::string_view text, WatchKind kind, std::optional<bool> x64) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos)
        return {.named = {}, .field = NamedField::Place, .problem = Text(L"A place is missing: i = RBP-4, LONG")};
    const std::size_t comma = text.find(',', equals);
    const std::string_view place =
        text.substr(equals + 1, comma == std::string_view::npos ? comma : comma - equals - 1);
    NamedInput input;
    input.named = {.name = std::string(TrimmedBlanks(text.substr(0, equals))),
                   .place = std::string(TrimmedBlanks(place)),
                   .kind = kind};
    const auto refuse = [&input](NamedField field, std::wstring problem) {
        if (problem.empty() || input.field != NamedField::None) return;
        input.field = field;
        input.problem = std::move(problem);
    };
    refuse(NamedField::Name, PlaceNameProblem(input.named.name));
    refuse(NamedField::Place, PlaceProblem(input.named.place, x64));
    if (comma == std::string_view::npos) return input;
    const std::string_view word = TrimmedBlanks(text.substr(comma + 1));
    if (const auto named = WatchKindNamed(word))
        input.named.kind = *named;
    else
        refuse(NamedField::Kind, TextWith(L"{1} is no type: LONG, QUAD, DOUBLE, STRING, ASCIIZ, ...", {Quoted(word)}));
    return input;
}

std::string NamedPlaceText(const NamedPlace& named) {
    return named.name + " = " + named.place + ", " + ToUtf8(WatchKindName(named.kind));
}

Evaluation AddressOfName(const NamedPlace& named, const NameScope& scope) {
    return EvaluatePaneExpression(scope.registers, named.place, scope.memory.read);
}

bool MentionsName(std::string_view text, std::span<const NamedPlace> names) {
    if (names.empty()) return false;
    const std::string bare = WithoutQuoted(text);
    for (std::string_view rest = bare; !rest.empty();) {
        const std::string_view word = NameAtStart(rest);
        if (!word.empty() && !IsDigit(word.front()) &&
            (FindNamedPlace(names, word) != nullptr || FindNamedPlace(names, WithoutTypeSuffix(word)) != nullptr))
            return true;
        rest.remove_prefix(std::max<std::size_t>(word.size(), 1));
    }
    return false;
}

Evaluation EvaluateWithNames(std::string_view text, const NameScope& scope) {
    return EvaluatePaneExpression(scope.registers, text, scope.memory.read, ReaderOf(scope));
}

NamedVerdict NamedConditionHolds(std::string_view condition, const NameScope& scope) {
    return JoinedHolds(condition, scope, true);
}

std::wstring NamedConditionProblem(std::string_view condition, const NameScope& scope) {
    return JoinedHolds(condition, scope, true, true).problem;
}
