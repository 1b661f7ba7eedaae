// What a build is asked for and how its parts end, as plain values. Pure.
#pragma once

#include <cstdint>

// What runs for the user: a build goes through up to three stages, a command of the terminal line has one.
enum class BuildStage : std::uint8_t { Idle, PreBuild, Compile, PostBuild, Terminal };

enum class BuildEnd : std::uint8_t { Ended, Stopped, TimedOut };  // how a stage came to its end

struct StageResult {
    BuildStage stage = BuildStage::Idle;
    BuildEnd end = BuildEnd::Ended;
    std::uint32_t exitCode = 0;  // means something only when `end` is Ended
    double seconds = 0.0;        // from the start of the stage until its output was shown
};

enum class AfterBuild : std::uint8_t { Nothing, RunProgram, NextOfBatch };

struct BuildOrder {
    bool syntaxOnly = false;
    bool debug = false;
    bool keepPane = false;  // adds to what the output pane shows, instead of replacing it
    AfterBuild after = AfterBuild::Nothing;
};

inline constexpr std::uint32_t kCompilerLimitMs = 300000;  // a compiler that has not ended by then is ended
inline constexpr std::uint32_t kCommandLimitMs = 30000;    // how long a pre- or post-build command is waited for
