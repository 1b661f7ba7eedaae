// The options of the command line as data, and the help text. main_win.cpp carries the options out. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

enum class CommandLineAction : std::uint8_t {
    Open,         // text: file
    SetCompiler,  // number: CompilerId
    SetFont,      // text: face
    SetFontSize,  // number: points, 6..72
    Detect,       // always the last step
    Log,
    Help,
    SelfTest,  // text: the option
};

struct CommandLineStep {
    CommandLineAction action;
    std::wstring text;
    int number = 0;
};

// The steps in the order of the words; no step follows Detect. `arguments` does not have the program's name. Unknown
// words, an unknown compiler, a font size outside 6..72 and an option without its argument are left out.
std::vector<CommandLineStep> ParseCommandLineSteps(std::span<const std::wstring> arguments);

// The options that must be known before a window is created.
struct EarlyOptions {
    bool testMode = false;      // --test MODULE or --test-all
    std::string testModule;     // at most 63 ASCII characters; any other becomes '?'
    bool testList = false;      // --test-list
    bool selftestTabs = false;  // any known option that begins with "--selftest-"
};
EarlyOptions ParseEarlyOptions(std::span<const std::wstring> arguments);

// CompilerId of an accepted name, else -1.
int CompilerIdFromName(std::wstring_view name);

// What "--help" shows.
std::wstring CommandLineHelp();
