// Rules of the watch list. Pure.
#include "debugui/pane_watches.h"

#include "base/hex_digit.h"
#include "base/texts.h"
#include "base/utf8.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>

namespace {

template <typename View>
View TrimmedExpression(View text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return text;
}

// Value of a text of digits of one base. Nothing for other characters and for more than 64 bits.
std::optional<std::uint64_t> Digits(std::string_view text, std::uint64_t base) {
    if (text.empty()) return {};
    std::uint64_t value = 0;
    for (const char c : text) {
        const auto digit = static_cast<std::uint64_t>(HexValue(c));  // no digit: -1, above any base
        if (digit >= base || value > (std::numeric_limits<std::uint64_t>::max() - digit) / base) return {};
        value = value * base + digit;
    }
    return value;
}

bool StartsHex(std::string_view text) {
    return text.size() > 2 &&
           ((text[0] == '0' && (text[1] | 0x20) == 'x') || (text[0] == '&' && (text[1] | 0x20) == 'h'));
}

// Value of an integer that fits into `bits` bits, signed or not; nothing otherwise.
std::optional<std::uint64_t> Integer(std::string_view text, int bits) {
    const bool negative = !text.empty() && text.front() == '-';
    if (negative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
    const auto value = StartsHex(text) ? Digits(text.substr(2), 16) : Digits(text, 10);
    if (!value) return {};
    const std::uint64_t highest = std::numeric_limits<std::uint64_t>::max() >> (64 - bits);
    if (*value > (negative ? highest / 2 + 1 : highest)) return {};
    return negative ? 0 - *value : *value;
}

template <typename Value>
std::vector<std::uint8_t> WatchNumberBytes(Value value) {
    std::vector<std::uint8_t> bytes(sizeof(value));
    std::memcpy(bytes.data(), &value, sizeof(value));
    return bytes;
}

WatchBytes TextBytes(std::string_view text, std::size_t room) {
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') text = text.substr(1, text.size() - 2);
    if (text.size() > room)
        return {{}, TextWith(L"Longer than the {1} bytes of the text that is there", {std::to_wstring(room)})};
    WatchBytes result{{text.begin(), text.end()}, {}};
    if (text.size() < room) result.bytes.push_back(0);
    return result;
}

// `room`: bytes, as for TextBytes.
WatchBytes WideTextBytes(std::string_view utf8, std::size_t room) {
    if (utf8.size() >= 2 && utf8.front() == '"' && utf8.back() == '"') utf8 = utf8.substr(1, utf8.size() - 2);
    std::vector<std::uint8_t> bytes;
    const auto put = [&bytes](std::uint32_t unit) {
        bytes.push_back(static_cast<std::uint8_t>(unit));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
    };
    for (const wchar_t c : Utf8ToWideText(utf8)) put(static_cast<std::uint16_t>(c));
    if (bytes.size() > room)
        return {{}, TextWith(L"Longer than the {1} characters of the text that is there", {std::to_wstring(room / 2)})};
    if (bytes.size() < room) put(0);
    return {bytes, {}};
}

// The kind of a watch for which the user has chosen none. "[RSP+8]" asks for what is in memory there; "RSP+8" is an
// address.
WatchKind OwnKindOf(std::wstring_view expression) {
    return expression.ends_with(L']') ? WatchKind::Value : WatchKind::Long;
}

std::size_t BytesOfWhole(WatchKind kind) {
    switch (kind) {
        case WatchKind::Byte: return 1;
        case WatchKind::Word:
        case WatchKind::Integer: return 2;
        case WatchKind::Quad: return 8;
        default: return 4;
    }
}

ListRow WatchRow(Watch& watch, const WatchProgram& program, bool newStop) {
    ListRow row;
    std::wstring shown;
    if (program.stopped) {
        const Evaluation address = program.evaluate(watch.expression);
        if (newStop) watch.before = watch.value;
        watch.ofName = program.kindOf ? program.kindOf(watch.expression) : std::nullopt;
        watch.value = address.value ? program.read(watch, *address.value) : L"";
        shown = address.value ? watch.value : address.problem;
        if (!address.value || IsUnreadableWatch(watch.value)) row.tone = ListTone::Problem;
        if (!watch.before.empty() && watch.before != watch.value) row.changed = 1U << kWatchValue;
    } else if (program.session) {
        shown = watch.value;
    } else {
        watch.value.clear();
        watch.before.clear();
    }
    row.cells = {watch.expression, WatchKindName(KindOfWatch(watch)), shown};
    return row;
}

}  // namespace

WatchKind KindOfWatch(const Watch& watch) {
    const bool own = !watch.chosen && watch.kind == OwnKindOf(watch.expression);
    return own ? watch.ofName.value_or(watch.kind) : watch.kind;
}

bool WatchSetExpression(std::vector<Watch>& watches, std::size_t row, std::wstring_view expression) {
    expression = TrimmedExpression(expression);
    if (row >= watches.size()) {
        if (expression.empty()) return false;
        watches.push_back(
            {.expression = std::wstring(expression), .kind = OwnKindOf(expression), .value = {}, .before = {}});
        return true;
    }
    Watch& watch = watches[row];
    if (watch.expression == expression) return false;
    const bool chosen = watch.chosen || watch.kind != OwnKindOf(watch.expression);
    if (expression.empty())
        watches.erase(watches.begin() + static_cast<std::ptrdiff_t>(row));
    else
        watch = {.expression = std::wstring(expression),
                 .kind = chosen ? watch.kind : OwnKindOf(expression),
                 .value = {},
                 .before = {},
                 .chosen = chosen};
    return true;
}

std::wstring WatchEditText(WatchKind kind, std::wstring_view shown) {
    if (IsTextKind(kind)) {
        if (shown.size() >= 2 && shown.front() == L'"' && shown.back() == L'"')
            shown = shown.substr(1, shown.size() - 2);
        return std::wstring(shown);
    }
    return std::wstring(shown.substr(0, shown.find(L" (")));
}

WatchBytes WatchBytesOf(WatchKind kind, std::string_view utf8, std::size_t room) {
    if (kind == WatchKind::Text) return TextBytes(utf8, room);
    if (kind == WatchKind::WideText) return WideTextBytes(utf8, room);
    if (kind == WatchKind::Value) return {{}, Text(L"What an expression comes to cannot be written")};
    const std::string text(TrimmedExpression(utf8));
    if (kind == WatchKind::Double || kind == WatchKind::Single) {
        char* end = nullptr;
        const double value = std::strtod(text.c_str(), &end);
        if (text.empty() || *end != '\0') return {{}, Text(L"Not a number")};
        return {kind == WatchKind::Double ? WatchNumberBytes(value) : WatchNumberBytes(static_cast<float>(value)), {}};
    }
    const std::size_t bytes = BytesOfWhole(kind);
    const auto value = Integer(text, static_cast<int>(8 * bytes));
    if (!value) return {{}, TextWith(L"Not a whole number of {1} bits", {std::to_wstring(8 * bytes)})};
    std::vector<std::uint8_t> result = WatchNumberBytes(*value);
    result.resize(bytes);  // the lowest bytes come first
    return {result, {}};
}

std::vector<ListRow> WatchRows(WatchList& list, const WatchProgram& program) {
    const bool newStop = program.stopped && program.serial != list.serial;
    if (program.stopped) list.serial = program.serial;
    std::vector<ListRow> rows;
    for (Watch& watch : list.watches) rows.push_back(WatchRow(watch, program, newStop));
    rows.push_back({.cells = {TextWith(L"Type an address here, or a name: {1}+8, [{2}+16], i = {2}-4, LONG",
                                       {StackPointerName(program.x64), FramePointerName(program.x64)}),
                              L"", L""},
                    .tone = ListTone::Quiet});
    return rows;
}

Watch* WatchAt(std::vector<Watch>& watches, int row) {
    return row >= 0 && row < static_cast<int>(watches.size()) ? &watches[static_cast<std::size_t>(row)] : nullptr;
}

bool WatchHasValue(const Watch* watch, bool stopped) {
    return watch != nullptr && stopped && !watch->value.empty() && !IsUnreadableWatch(watch->value);
}

WatchAction WatchActionOf(int column, const Watch* watch, bool stopped) {
    if (column == kWatchKind) return WatchAction::ChooseKind;
    if (watch == nullptr || column == kWatchExpression) return WatchAction::EditExpression;
    return column == -1 && !WatchHasValue(watch, stopped) ? WatchAction::EditExpression : WatchAction::EditValue;
}

WatchBytes WatchInput(WatchKind kind, const Evaluation& address, std::string_view utf8, const ProgramMemory& memory) {
    if (!address.value) return {{}, address.problem};
    if (kind == WatchKind::WideText) {
        std::array<std::uint16_t, kLongestWatchText> units = {};
        const std::size_t count = memory.readSome(*address.value, units.data(), sizeof(units)) / sizeof(std::uint16_t);
        const auto length = std::find(units.begin(), units.begin() + count, std::uint16_t{0}) - units.begin();
        return WatchBytesOf(kind, utf8, static_cast<std::size_t>(length) * sizeof(std::uint16_t));
    }
    std::array<char, kLongestWatchText> old = {};
    const std::size_t readable = memory.readSome(*address.value, old.data(), old.size());
    const auto* const end = std::find(old.begin(), old.begin() + readable, '\0');
    return WatchBytesOf(kind, utf8, static_cast<std::size_t>(end - old.begin()));
}
