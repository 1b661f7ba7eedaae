// The history and the messages of the terminal line. Pure.
#pragma once

#include "compile/build_values.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

inline constexpr std::size_t kTerminalHistory = 200;      // commands that are remembered
inline constexpr std::size_t kLongestKeptCommand = 2000;  // characters, of one that is kept for the next run

struct TerminalHistory {
    std::vector<std::wstring> commands;  // oldest first, each once
    std::size_t at = 0;  // index of the command shown; equal to the size of `commands` for the line being typed
    std::wstring typed;  // that line, while a command is shown
};
void TerminalRemember(TerminalHistory& history, const std::wstring& command);
// Steps to an older or a newer command; `shown` is the present text of the line. After the newest comes the line that was
// being typed. Returns false when there is none; `shown` is then unchanged.
bool TerminalRecall(TerminalHistory& history, bool older, std::wstring* shown);

// Whether the command goes into the file of the user's history. A blank in front keeps one out of it.
bool TerminalIsKept(std::wstring_view command);
// The file: UTF-8, a command a line, oldest first. Reading takes any bytes and leaves out what is not kept.
std::string TerminalHistoryBytes(const std::vector<std::wstring>& commands);
std::vector<std::wstring> TerminalHistoryOf(std::string_view bytes);

// The command line for the system's command interpreter, with its full path, because the folder of a document must not
// supply another one. `systemFolder` has no backslash at its end; empty: unknown.
std::wstring TerminalCommandLine(std::wstring_view systemFolder, std::wstring_view command);

// The line for the output pane; empty: none.
std::wstring TerminalEndText(const StageResult& result);
