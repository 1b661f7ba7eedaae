// The history and the messages of the terminal line. Pure.
#pragma once

#include "compile/build_values.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

inline constexpr std::size_t kTerminalHistory = 50;  // commands remembered until the editor ends

struct TerminalHistory {
    std::vector<std::wstring> commands;  // oldest first, each once
    std::size_t at = 0;  // index of the command shown; equal to the size of `commands` for the line being typed
};
void TerminalRemember(TerminalHistory& history, const std::wstring& command);
// Steps to an older or a newer command. After the newest comes an empty line. Returns false when there is none; `shown`
// is then unchanged.
bool TerminalRecall(TerminalHistory& history, bool older, std::wstring* shown);

// The command line for the system's command interpreter, with its full path, because the folder of a document must not
// supply another one. `systemFolder` has no backslash at its end; empty: unknown.
std::wstring TerminalCommandLine(std::wstring_view systemFolder, std::wstring_view command);

// The line for the output pane; empty: none.
std::wstring TerminalEndText(const StageResult& result);
