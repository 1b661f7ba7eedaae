// Reading the options. Must not carry any of them out.
#include "app/command_line.h"

#include "settings/compiler_id.h"

#include <algorithm>
#include <array>
#include <cwchar>

namespace {

struct CompilerNameRow {
    std::wstring_view name;
    int id;
};
constexpr CompilerNameRow kCompilerNames[] = {
    {L"kvxa64", kCompilerKvxa64},           {L"KVXA64", kCompilerKvxa64},           {L"kvxb64", kCompilerKvxb64},
    {L"KVXB64", kCompilerKvxb64},           {L"kvxa32", kCompilerKvxa32},           {L"KVXA32", kCompilerKvxa32},
    {L"keldorbasic", kCompilerKeldorBasic}, {L"KeldorBasic", kCompilerKeldorBasic}, {L"kb", kCompilerKeldorBasic},
    {L"KB", kCompilerKeldorBasic},          {L"kvxc64", kCompilerKvxc64},           {L"KVXC64", kCompilerKvxc64},
};

constexpr std::wstring_view kSelfTestOptions[] = {
    L"--selftest",           L"--selftest-tabs", L"--selftest-editor-all", L"--selftest-toolbar",
    L"--selftest-compilers", L"--selftest-exit", L"--selftest-kb-debug",   L"--selftest-kvxb64-debug",
};

struct OptionRow {
    std::wstring_view name;
    CommandLineAction action;
    bool takesArgument;
};
constexpr OptionRow kOptions[] = {
    {L"--open", CommandLineAction::Open, true},      {L"--compiler", CommandLineAction::SetCompiler, true},
    {L"--font", CommandLineAction::SetFont, true},   {L"--fontsize", CommandLineAction::SetFontSize, true},
    {L"--detect", CommandLineAction::Detect, false}, {L"--log", CommandLineAction::Log, false},
    {L"--help", CommandLineAction::Help, false},     {L"-h", CommandLineAction::Help, false},
};

bool IsSelfTestOption(std::wstring_view word) {
    return std::ranges::find(kSelfTestOptions, word) != std::end(kSelfTestOptions);
}

// False: the step has no effect and is left out.
bool TakeArgument(CommandLineStep& step, const std::wstring& argument) {
    switch (step.action) {
        case CommandLineAction::SetCompiler: step.number = CompilerIdFromName(argument); return step.number >= 0;
        case CommandLineAction::SetFontSize:
            step.number = static_cast<int>(std::wcstol(argument.c_str(), nullptr, 10));
            return step.number >= 6 && step.number <= 72;
        default: step.text = argument; return true;
    }
}

}  // namespace

int CompilerIdFromName(std::wstring_view name) {
    const auto* row = std::ranges::find(kCompilerNames, name, &CompilerNameRow::name);
    return row == std::end(kCompilerNames) ? -1 : row->id;
}

std::vector<CommandLineStep> ParseCommandLineSteps(std::span<const std::wstring> arguments) {
    std::vector<CommandLineStep> steps;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (IsSelfTestOption(arguments[i])) {
            steps.push_back({.action = CommandLineAction::SelfTest, .text = arguments[i]});
            continue;
        }
        const auto* option = std::ranges::find(kOptions, std::wstring_view(arguments[i]), &OptionRow::name);
        if (option == std::end(kOptions)) continue;
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

EarlyOptions ParseEarlyOptions(std::span<const std::wstring> arguments) {
    EarlyOptions early;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::wstring& word = arguments[i];
        if (word == L"--test" && i + 1 < arguments.size()) {
            early.testMode = true;
            for (const wchar_t c : arguments[++i])
                if (early.testModule.size() < 63) early.testModule += c < 0x80 ? static_cast<char>(c) : '?';
        } else if (word == L"--test-all") {
            early.testMode = true;
            early.testModule = "all";
        } else if (word == L"--test-list") {
            early.testList = true;
        } else if (word.starts_with(L"--selftest-") && IsSelfTestOption(word)) {
            early.selftestTabs = true;
        }
    }
    return early;
}
