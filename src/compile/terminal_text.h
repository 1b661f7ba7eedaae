// What the terminal line remembers and says. Pure.
#pragma once

#include "compile/build_values.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

inline constexpr std::size_t kTerminalHistory = 50;  // commands remembered for one run of the program

struct TerminalHistory {
    std::vector<std::wstring> commands;  // oldest first, each once
    std::size_t at = 0;                  // the one shown; the count of commands: the line being typed
};
void TerminalRemember(TerminalHistory& history, const std::wstring& command);
// Steps to an older or a newer command. False: there is none, the line stays as it is. Newer than all is an empty line.
bool TerminalRecall(TerminalHistory& history, bool older, std::wstring* shown);

// The system's own command interpreter, by its full path, because the folder of a document must not supply another one.
// `systemFolder`: without a backslash at its end; empty: unknown.
std::wstring TerminalCommandLine(std::wstring_view systemFolder, std::wstring_view command);

// For the output pane; empty: nothing is said.
std::wstring TerminalEndText(const StageResult& result);
