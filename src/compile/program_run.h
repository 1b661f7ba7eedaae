// Runs a built program in the output pane: its output is shown there, and the terminal line is its input. Stop Build
// ends it.
#pragma once

#include "compile/build_values.h"
#include "output/last_build.h"
#include "program/pe_image.h"

#include <string>
#include <string_view>

// The command "Run in Output Pane": runs the program of the last build, or that of the active document when nothing was
// built in this run of the editor. UI thread only.
void RunInOutputPane();
// Tells the user once when the running program does not read its input. Called on TIMER_BUILD. UI thread only.
void ProgramWatchInput();
// Starts the program of a finished build in a window of its own. UI thread only.
void RunBuiltProgram(const std::wstring& program);

// --- Texts for the output pane, each with its line break. Pure.
// What is odd about the program; empty when it is of the last build, and that was of the source as it is now.
std::wstring RunDoubt(const BuildRecord& last, bool sourceModified);
// What the user must know about a program that imports functions which wait for keys of a console; else empty. Those get
// nothing here: the console of the program is not shown, and nobody types into it.
std::wstring ConsoleKeysText(const PeImage& program);
// For a program that leaves its input unread.
std::wstring UnreadInputText();
std::wstring RunningText(const std::wstring& program, const std::wstring& arguments);
std::wstring RunFailedText(std::uint32_t error, const std::wstring& reason);
std::wstring ExitCodeText(std::uint32_t exitCode);  // of a crash in hexadecimal form, by which it is known
std::wstring ProgramEndText(const StageResult& result);
