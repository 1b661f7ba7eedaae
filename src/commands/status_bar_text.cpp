#include "commands/status_bar_text.h"

#include "base/texts.h"
#include "files/text_encoding.h"
#include "settings/compiler_table.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr const wchar_t* kLineEndings[] = {L"CRLF", L"LF", L"CR"};

}  // namespace

std::wstring PositionText(std::ptrdiff_t line, std::ptrdiff_t column) {
    return TextWith(L"Ln {1}, Col {2}", {std::to_wstring(line), std::to_wstring(column)});
}

std::wstring SelectionText(const SelectionFacts& facts) {
    std::wstring text;
    if (facts.selections > 1) text = TextWith(L"{1} selections", {GroupedNumber(facts.selections)});
    if (facts.characters == 0 && facts.selections <= 1 && facts.length < 0) return {};
    if (facts.characters == 0)
        return facts.selections > 1 ? text
                                    : TextWith(facts.length == 1 ? L"{1} byte in all" : L"{1} bytes in all",
                                               {GroupedNumber(facts.length)});
    if (facts.selections == 1 && facts.lines > 1) text = TextWith(L"{1} lines", {GroupedNumber(facts.lines)});
    if (!text.empty()) text += L", ";
    const wchar_t* const one = facts.inBytes ? English(L"{1} byte") : English(L"{1} character");
    const wchar_t* const many = facts.inBytes ? English(L"{1} bytes") : English(L"{1} characters");
    return text + TextWith(facts.characters == 1 ? one : many, {GroupedNumber(facts.characters)});
}

std::wstring GroupedNumber(std::ptrdiff_t number) {
    std::wstring digits = std::to_wstring(number);
    for (std::size_t at = digits.size(); at > 3;) digits.insert(at -= 3, 1, L',');
    return digits;
}

std::wstring TabText(int width, bool insertsTab) {
    return TextWith(insertsTab ? L"Tab {1}" : L"Blanks {1}", {std::to_wstring(width)});
}

std::wstring ZoomText(int fontSize, int zoom) {
    const int size = std::max(1, fontSize);
    return std::to_wstring((std::max(1, size + zoom) * 100 + size / 2) / size) + L" %";
}

const wchar_t* LineEndingName(int lineEnding, bool mixed) {
    return mixed ? Text(L"Mixed") : kLineEndings[static_cast<std::size_t>(lineEnding) % std::size(kLineEndings)];
}

std::vector<std::pair<StatusPart, std::wstring>> StatusSamples() {
    std::vector<std::pair<StatusPart, std::wstring>> samples = {
        {kProgress, TextWith(L"Searching {1}", {L"8888"})},
        {kPosition, PositionText(888888, 888)},
        {kSelection, SelectionText({.lines = 88, .characters = 888})},
        {kTabWidth, TabText(8, false)},
        {kZoom, L"888 %"}};
    for (const Utf16Order order : {Utf16Order::None, Utf16Order::Little, Utf16Order::Big})
        for (const TextEncoding encoding : {TextEncoding::Utf8, TextEncoding::Ansi})
            samples.emplace_back(kEncoding, EncodingName(encoding, {.utf16 = order}));
    samples.emplace_back(kLineEnding, LineEndingName(0, true));
    for (const wchar_t* lineEnding : kLineEndings) samples.emplace_back(kLineEnding, lineEnding);
    for (std::uint32_t id = 0; id < kCompilerCount; ++id) samples.emplace_back(kCompiler, CompilerLabel(id, false));
    return samples;
}

std::wstring ProjectPartText(std::wstring_view name) {
    constexpr std::size_t kLongest = 20;  // characters
    if (name.empty()) return {};
    const bool cut = name.size() > kLongest;
    return TextWith(L"Project: {1}{2}",
                    {std::wstring(name.substr(0, cut ? kLongest - 3 : kLongest)), (cut ? L"..." : L"")});
}
