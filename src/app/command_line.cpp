// Parses the options and carries none of them out. Pure.
#include "app/command_line.h"

#include "base/decimal.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "settings/compilers.h"
#include "settings/version.h"

#include <algorithm>
#include <array>

namespace {

struct SelfTestRow {
    std::wstring_view name;
    const wchar_t* help;
};
constexpr SelfTestRow kSelfTestOptions[] = {
    {L"--selftest", English(L"Test Scintilla mouse-click processing")},
    {L"--selftest-tabs", English(L"Test real tab switching and Scintilla mouse selection")},
    {L"--selftest-editor-all", English(L"Test tab close, editing, KVXB64 build, and debug command guards")},
    {L"--selftest-toolbar", English(L"Test debug toolbar icons and compiler button order")},
    {L"--selftest-compilers", English(L"Test editor build path for all configured compilers")},
    {L"--selftest-exit", English(L"Test File > Exit command closes the main window")},
    {L"--selftest-kb-debug", English(L"Test KeldorBasic /D PBD single-step debugging")},
    {L"--selftest-kvxb64-debug", English(L"Test KVXB64 DOUBLE IF/ELSE single-step debugging")},
};

constexpr std::wstring_view kHighContrastOption = L"--high-contrast";

struct OptionRow {
    std::wstring_view name;
    CommandLineAction action;
    bool takesArgument;
};
constexpr OptionRow kOptions[] = {
    {L"--open", CommandLineAction::Open, true},
    {L"--goto", CommandLineAction::Open, true},
    {L"--compiler", CommandLineAction::SetCompiler, true},
    {L"--font", CommandLineAction::SetFont, true},
    {L"--fontsize", CommandLineAction::SetFontSize, true},
    {L"--detect", CommandLineAction::Detect, false},
    {L"--log", CommandLineAction::Log, false},
    {kHighContrastOption, CommandLineAction::HighContrast, false},
    {L"--help", CommandLineAction::Help, false},
    {L"-h", CommandLineAction::Help, false},
};

// The first accepted name of each compiler.
std::wstring CompilerOptionNames() {
    std::wstring names;
    for (const std::uint32_t id : g_defaultOrder)
        names.append(names.empty() ? L"" : L", ").append(g_compilers[id].optionNames[0]);
    return names;
}

constexpr std::size_t kHelpColumn = 22;  // least characters of an option in the help text

std::wstring HelpLine(std::wstring_view option, std::wstring_view help) {
    std::wstring line{option};
    line.resize(std::max(line.size(), kHelpColumn), L' ');
    return L"  " + line + L" " + std::wstring(help) + L"\n";
}

bool IsSelfTestOption(std::wstring_view word) {
    return std::ranges::find(kSelfTestOptions, word, &SelfTestRow::name) != std::end(kSelfTestOptions);
}

// The number that the whole text is, or -1 when it has anything but one to nine digits.
int WholeNumber(std::wstring_view text) {
    const bool digits = std::ranges::all_of(text, [](wchar_t c) { return c >= L'0' && c <= L'9'; });
    return digits && !text.empty() && text.size() <= 9 ? DecimalNumber(text) : -1;
}

// Takes ":NUMBER" from the end of the text. Returns 0, and leaves the text, when there is none, or when the rest would
// be no more than a drive.
int TakeNumber(std::wstring_view& text) {
    const std::size_t colon = text.rfind(L':');
    if (colon == std::wstring_view::npos || colon < 2) return 0;
    const int number = WholeNumber(text.substr(colon + 1));
    if (number <= 0) return 0;
    text = text.substr(0, colon);
    return number;
}

// False when the argument is not valid; the step is then left out.
bool TakeArgument(CommandLineStep& step, const std::wstring& argument) {
    switch (step.action) {
        case CommandLineAction::SetCompiler: step.number = CompilerIdFromName(argument); return step.number >= 0;
        case CommandLineAction::SetFontSize:
            step.number = DecimalNumber(
                std::wstring_view(argument).substr(std::min(argument.find_first_not_of(L" \t"), argument.size())));
            return step.number >= 6 && step.number <= 72;
        default: step.text = argument; return true;
    }
}

}  // namespace

int CompilerIdFromName(std::wstring_view name) {
    if (name.empty()) return -1;
    for (const CompilerProfile& compiler : g_compilers)
        if (std::ranges::find(compiler.optionNames, name) != compiler.optionNames.end())
            return static_cast<int>(compiler.id);
    return -1;
}

std::wstring CommandLineHelp() {
    std::wstring text =
        TextWith(L"{1}\n\nUsage: KVX-Editor.exe [options]\n\nOptions:\n", {L"VQ Unified Editor v" KVX_VERSION});
    text += HelpLine(L"--open <file>", Text(L"Open file on startup"));
    text += HelpLine(L"--compiler <name>", TextWith(L"Set compiler ({1})", {CompilerOptionNames()}));
    text += HelpLine(L"--font <name>", Text(L"Set editor font"));
    text += HelpLine(L"--fontsize <n>", Text(L"Set font size (6-72)"));
    text += HelpLine(L"--detect", Text(L"Test compiler auto-detect, show results, exit"));
    for (const SelfTestRow& row : kSelfTestOptions)
        text += HelpLine(row.name, TextWith(L"{1}, exit", {Text(row.help)}));
    text += HelpLine(L"--log", Text(L"Enable verbose logging to Editor_Detect.log"));
    text += HelpLine(L"--help, -h", Text(L"Show this help"));
    return TextWith(L"{1}\nAll features are also accessible via GUI menu/toolbar.", {text});
}

std::vector<CommandLineStep> ParseCommandLineSteps(std::span<const std::wstring> arguments) {
    std::vector<CommandLineStep> steps;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (IsSelfTestOption(arguments[i])) {
            steps.push_back({.action = CommandLineAction::SelfTest, .text = arguments[i]});
            continue;
        }
        const auto* option = std::ranges::find(kOptions, std::wstring_view(arguments[i]), &OptionRow::name);
        if (option == std::end(kOptions)) {
            if (!arguments[i].empty() && arguments[i].front() != L'-')
                steps.push_back({.action = CommandLineAction::Open, .text = arguments[i]});
            continue;
        }
        CommandLineStep step{.action = option->action, .text = {}};
        if (option->takesArgument) {
            if (i + 1 == arguments.size()) break;
            if (!TakeArgument(step, arguments[++i])) continue;
        }
        steps.push_back(step);
        if (step.action == CommandLineAction::Detect) break;
    }
    return steps;
}

FilePlace ParseFilePlace(std::wstring_view text) {
    FilePlace place;
    if (text.ends_with(L":0")) {  // tools that count columns from 0 name the start of the line so
        std::wstring_view line = text.substr(0, text.size() - 2);
        if (TakeNumber(line) > 0) text.remove_suffix(2);
    }
    const int last = TakeNumber(text);
    const int before = last > 0 ? TakeNumber(text) : 0;
    place.line = before > 0 ? before : last;
    place.column = before > 0 ? last : 0;
    place.path = text;
    return place;
}

EarlyOptions ParseEarlyOptions(std::span<const std::wstring> arguments) {
    EarlyOptions early;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::wstring& word = arguments[i];
        if (word == L"--test" && i + 1 < arguments.size()) {
            early.testMode = true;
            early.testModule += (early.testModule.empty() ? "" : ",") + ToUtf8(arguments[++i]);
        } else if (word == L"--test-all") {
            early.testMode = true;
            early.testModule = "all";
        } else if (word == L"--test-list") {
            early.testList = true;
        } else if (word == kHighContrastOption) {
            early.highContrast = true;
        } else if (word.starts_with(L"--selftest-") && IsSelfTestOption(word)) {
            early.selftestTabs = true;
        }
    }
    constexpr std::size_t kMostBytes = 63;
    if (early.testModule.size() > kMostBytes)
        early.testModule.resize(WholeCharacters(std::string_view(early.testModule).substr(0, kMostBytes)));
    return early;
}
