#include "compile/held_console.h"

#include "compile/program_run.h"

#include <algorithm>

namespace {

constexpr std::wstring_view kOption = L"--hold-console";

void SkipBlanks(std::wstring_view* text) {
    text->remove_prefix(std::min(text->find_first_not_of(L" \t"), text->size()));
}

// A word, which may stand in quotation marks.
std::wstring TakeWord(std::wstring_view* text) {
    SkipBlanks(text);
    const bool quoted = text->starts_with(L'"');
    if (quoted) text->remove_prefix(1);
    const std::size_t end = std::min(text->find_first_of(quoted ? L"\"" : L" \t"), text->size());
    std::wstring word(text->substr(0, end));
    text->remove_prefix(std::min(end + (quoted ? 1 : 0), text->size()));
    return word;
}

}  // namespace

std::wstring HeldArguments(const HeldProgram& program) {
    return std::wstring(kOption) + L" \"" + program.farewell + L"\" " + program.commandLine;
}

std::optional<HeldProgram> HeldProgramOf(std::wstring_view commandLine) {
    TakeWord(&commandLine);  // the editor
    if (TakeWord(&commandLine) != kOption) return std::nullopt;
    HeldProgram program;
    program.farewell = TakeWord(&commandLine);
    SkipBlanks(&commandLine);
    program.commandLine = commandLine;
    return program;
}

std::wstring FarewellText(std::wstring_view farewell, std::uint32_t exitCode) {
    std::wstring text(farewell);
    if (const std::size_t at = text.find(L"{1}"); at != std::wstring::npos) text.replace(at, 3, ExitCodeText(exitCode));
    return text;
}
