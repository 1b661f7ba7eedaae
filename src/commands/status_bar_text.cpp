#include "commands/status_bar_text.h"

#include "files/text_encoding.h"
#include "settings/compiler_table.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr const wchar_t* kLineEndings[] = {L"CRLF", L"LF", L"CR"};

}  // namespace

std::wstring PositionText(std::ptrdiff_t line, std::ptrdiff_t column) {
    return L"Ln " + std::to_wstring(line) + L", Col " + std::to_wstring(column);
}

std::wstring SelectionText(const SelectionFacts& facts) {
    std::wstring text;
    if (facts.selections > 1) text = GroupedNumber(facts.selections) + L" selections";
    if (facts.characters == 0 && facts.selections <= 1 && facts.length < 0) return {};
    if (facts.characters == 0) return facts.selections > 1 ? text : GroupedNumber(facts.length) + L" bytes in all";
    if (facts.selections == 1 && facts.lines > 1) text = GroupedNumber(facts.lines) + L" lines";
    if (!text.empty()) text += L", ";
    const wchar_t* const unit = facts.inBytes ? L" byte" : L" character";
    return text + GroupedNumber(facts.characters) + unit + (facts.characters == 1 ? L"" : L"s");
}

std::wstring GroupedNumber(std::ptrdiff_t number) {
    std::wstring digits = std::to_wstring(number);
    for (std::size_t at = digits.size(); at > 3;) digits.insert(at -= 3, 1, L',');
    return digits;
}

std::wstring TabText(int width, bool insertsTab) {
    return (insertsTab ? L"Tab " : L"Blanks ") + std::to_wstring(width);
}

std::wstring ZoomText(int fontSize, int zoom) {
    const int size = std::max(1, fontSize);
    return std::to_wstring((std::max(1, size + zoom) * 100 + size / 2) / size) + L" %";
}

const wchar_t* LineEndingName(int lineEnding) {
    return kLineEndings[static_cast<std::size_t>(lineEnding) % std::size(kLineEndings)];
}

std::vector<std::pair<StatusPart, std::wstring>> StatusSamples() {
    std::vector<std::pair<StatusPart, std::wstring>> samples = {{kProgress, L"Searching 8888"},
                                                                {kPosition, L"Ln 888888, Col 888"},
                                                                {kSelection, L"88 lines, 888 characters"},
                                                                {kTabWidth, L"Blanks 8"},
                                                                {kZoom, L"888 %"}};
    for (const Utf16Order order : {Utf16Order::None, Utf16Order::Little, Utf16Order::Big})
        for (const TextEncoding encoding : {TextEncoding::Utf8, TextEncoding::Ansi})
            samples.emplace_back(kEncoding, EncodingName(encoding, {.utf16 = order}));
    for (const wchar_t* lineEnding : kLineEndings) samples.emplace_back(kLineEnding, lineEnding);
    for (std::uint32_t id = 0; id < kCompilerCount; ++id) samples.emplace_back(kCompiler, CompilerLabel(id, false));
    return samples;
}

std::wstring ProjectPartText(std::wstring_view name) {
    constexpr std::size_t kLongest = 20;  // characters
    if (name.empty()) return {};
    const bool cut = name.size() > kLongest;
    return L"Project: " + std::wstring(name.substr(0, cut ? kLongest - 3 : kLongest)) + (cut ? L"..." : L"");
}
