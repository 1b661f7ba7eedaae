// A build from the request to its report: pre-build command, compiler, post-build command, and what is to follow.
// UI thread only.
#pragma once

#include <cstdint>
#include <string>

enum class AfterBuild : std::uint8_t { Nothing, RunProgram, NextOfBatch };

struct BuildOrder {
    bool syntaxOnly = false;
    bool debug = false;
    bool keepPane = false;  // behind what the output pane shows, instead of in its place
    AfterBuild after = AfterBuild::Nothing;
};

inline constexpr const wchar_t* kBuildBusy = L"Build already in progress.";  // status bar

// A debugged program's file is in use and cannot be written: says so. True: no build may start.
bool BuildRefusedByDebugger();

// Builds the active document. 1 when its pre-build command or its compiler was started.
int BuildStart(const BuildOrder& order);

// What follows a build (build_commands_win.cpp).
void RunBuiltProgram(const std::wstring& program);
void BatchOnBuildEnd(bool success);
