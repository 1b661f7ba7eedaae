// The request for a build and the results of its stages, as plain values. Pure.
#pragma once

#include <cstdint>

// The stages. A build has up to three; a command of the terminal line and a program run in the output pane have one.
enum class BuildStage : std::uint8_t { Idle, PreBuild, Compile, PostBuild, Terminal, Program };

// Whether the stage belongs to a build, whose errors and warnings are counted and listed. Those that a command of the
// terminal line prints are only coloured.
constexpr bool StageIsOfBuild(BuildStage stage) {
    return stage == BuildStage::PreBuild || stage == BuildStage::Compile || stage == BuildStage::PostBuild;
}

enum class BuildEnd : std::uint8_t { Ended, Stopped, TimedOut };  // how a stage ended

struct StageResult {
    BuildStage stage = BuildStage::Idle;
    BuildEnd end = BuildEnd::Ended;
    std::uint32_t exitCode = 0;  // valid only when `end` is Ended
    double seconds = 0.0;        // from the start of the stage until its output was shown
};

enum class AfterBuild : std::uint8_t { Nothing, RunProgram, NextOfBatch };

struct BuildOrder {
    bool syntaxOnly = false;
    bool debug = false;
    bool keepPane = false;      // the output is added to the pane instead of replacing its text
    bool documentOnly = false;  // the active document, also while a project is open
    AfterBuild after = AfterBuild::Nothing;
};

inline constexpr std::uint32_t kCompilerLimitMs = 300000;  // a compiler is ended after this time without output
inline constexpr std::uint32_t kCommandLimitMs = 30000;    // a pre- or post-build command is waited for so long
