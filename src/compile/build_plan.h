// What the compiler is started with, worked out from the settings and the source's path. Pure.
#pragma once

#include "compile/command_line.h"
#include "settings/compiler_table.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The flags of a build. `profile`: 0 Debug, 1 Release, 2 Fast.
struct FlagChoice {
    bool syntaxOnly = false;
    bool debug = false;
    int profile = 0;
    std::wstring_view buildFlags;   // as the settings give them
    std::wstring_view syntaxFlags;  // in their place for a syntax check
    std::wstring_view debugFlags;
};
// At most kFlagsCapacity - 1 characters: what does not fit is left out.
std::wstring BuildFlagsOf(const FlagChoice& choice);

struct LaunchRequest {
    std::uint32_t compilerId = 0;
    CommandStyle style = CommandStyle::Kvx;
    std::wstring_view compilerName;
    std::wstring_view compiler;  // path
    std::wstring_view source;
    std::wstring_view output;
    std::wstring_view flags;
    std::wstring_view includeSwitch;
    std::wstring_view includePath;
    std::wstring_view listingTemplate;
    std::wstring_view listing;  // where it would be
    bool wantListing = false;
};

struct LaunchPlan {
    std::wstring commandLine;
    std::wstring workingDirectory;
    std::wstring header;   // for the output pane and the build log
    std::wstring logPath;  // empty: the build log would take the place of the source
};

// Why there is nothing to launch, as a line for the output pane; empty: there is.
std::wstring LaunchObstacle(const LaunchRequest& request);
// `compiled` is the source as the compiler is to see it.
CommandProblem PlanLaunch(const LaunchRequest& request, std::wstring_view compiled, LaunchPlan* plan);

// Lines for the output pane.
std::wstring LaunchErrorLine(std::uint32_t error, std::wstring_view systemMessage);
std::wstring NotStagedLine(std::wstring_view target);
std::wstring LeftoverLine(std::wstring_view target, std::wstring_view aside);
std::wstring RunErrorLine(std::wstring_view program, long error);

// What Clean deletes: results and side files that bear the source's name, never the source itself.
std::vector<std::wstring> CleanTargets(std::wstring_view source, std::wstring_view output, std::wstring_view listing);
