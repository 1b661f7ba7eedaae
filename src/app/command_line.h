// The program's options as data: what each word of the command line asks for. Pure; carrying them out is the
// business of start-up.
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
    Detect,       // ends the scan
    Log,
    Help,
    SelfTest,  // text: the option
};

struct CommandLineStep {
    CommandLineAction action;
    std::wstring text;
    int number = 0;
};

// `arguments` without the program's own name. Unknown words, an unknown compiler, a font size outside 6..72 and an
// option whose argument is missing are passed over. Steps come in the order of the words; nothing follows Detect.
std::vector<CommandLineStep> ParseCommandLineSteps(std::span<const std::wstring> arguments);

// What has to be known before anything is created.
struct EarlyOptions {
    bool testMode = false;      // --test MODULE or --test-all
    std::string testModule;     // UTF-8, at most 63 bytes
    bool testList = false;      // --test-list
    bool selftestTabs = false;  // any option that begins "--selftest-"
};
EarlyOptions ParseEarlyOptions(std::span<const std::wstring> arguments);

// CompilerId, or -1 for a name that is not one of the accepted spellings.
int CompilerIdFromName(std::wstring_view name);

// What "--help" shows.
std::wstring CommandLineHelp();
