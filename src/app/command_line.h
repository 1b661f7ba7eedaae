// The options of the command line as data, and the help text. main_win.cpp carries the options out. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

enum class CommandLineAction : std::uint8_t {
    Open,         // text: file, as it was given
    SetCompiler,  // number: CompilerId
    SetFont,      // text: face
    SetFontSize,  // number: points, 6..72
    Detect,       // always the last step
    Log,
    Help,
    SelfTest,      // text: the option
    HighContrast,  // known early
};

struct CommandLineStep {
    CommandLineAction action;
    std::wstring text;
    int number = 0;
};

// The steps in the order of the words; no step follows Detect. `arguments` does not have the program's name. A word that
// does not begin with a minus is a file to open. Unknown options, an unknown compiler, a font size that is not a number
// from 6 to 72 and an option without its argument are left out.
std::vector<CommandLineStep> ParseCommandLineSteps(std::span<const std::wstring> arguments);

// A file as compilers print it: "path", "path:line" or "path:line:column".
struct FilePlace {
    std::wstring path;
    int line = 0;    // from 1; 0: none given
    int column = 0;  // from 1; 0: none given
};
FilePlace ParseFilePlace(std::wstring_view text);

// The options that must be known before a window is created.
struct EarlyOptions {
    bool testMode = false;      // --test MODULE or --test-all
    std::string testModule;     // UTF-8, at most 63 bytes; several are parted by commas
    bool testList = false;      // --test-list
    bool highContrast = false;  // --high-contrast
    bool selftestTabs = false;  // any known option that begins with "--selftest-"
};
EarlyOptions ParseEarlyOptions(std::span<const std::wstring> arguments);

// CompilerId of an accepted name, else -1.
int CompilerIdFromName(std::wstring_view name);

// What "--help" shows.
std::wstring CommandLineHelp();
