#include "commands/status_bar_text.h"

#include "files/text_encoding.h"
#include "settings/compiler_table.h"

#include <iterator>

namespace {

constexpr const wchar_t* kLineEndings[] = {L"CRLF", L"LF", L"CR"};

}  // namespace

std::wstring PositionText(std::ptrdiff_t line, std::ptrdiff_t column) {
    return L"Ln " + std::to_wstring(line) + L", Col " + std::to_wstring(column);
}

std::wstring SelectionText(const SelectionFacts& facts) {
    if (facts.selections > 1) return std::to_wstring(facts.selections) + L" selections";
    if (facts.characters == 0) return {};
    if (facts.lines > 1) return std::to_wstring(facts.lines) + L" lines selected";
    return std::to_wstring(facts.characters) + L" selected";
}

const wchar_t* LineEndingName(int lineEnding) {
    return kLineEndings[static_cast<std::size_t>(lineEnding) % std::size(kLineEndings)];
}

std::vector<std::pair<StatusPart, std::wstring>> StatusSamples() {
    std::vector<std::pair<StatusPart, std::wstring>> samples = {
        {kProgress, L"\\ 88:88"}, {kPosition, L"Ln 888888, Col 888"}, {kSelection, L"88888 selected"}};
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
