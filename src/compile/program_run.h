// Runs a built program in the output pane: its output is shown there, and the terminal line is its input. Stop Build
// ends it.
#pragma once

#include "compile/build_values.h"
#include "output/last_build.h"

#include <string>
#include <string_view>

// The command "Run in Output Pane": runs the program of the last build, or that of the active document when nothing was
// built in this run of the editor. UI thread only.
void RunInOutputPane();
// Starts the program of a finished build in a window of its own. UI thread only.
void RunBuiltProgram(const std::wstring& program);

// --- Texts for the output pane, each with its line break. Pure.
// What is odd about the program; empty when it is of the last build, and that was of the source as it is now.
std::wstring RunDoubt(const BuildRecord& last, bool sourceModified);
std::wstring ProgramEndText(const StageResult& result);
