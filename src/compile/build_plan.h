// Computes the command line and the paths of a build from the settings and the source's path. Pure.
#pragma once

#include "compile/command_line.h"
#include "output/last_build.h"
#include "settings/compiler_table.h"
#include "settings/settings.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// The flags of a build. `profile`: 0 Debug, 1 Release, 2 Fast.
struct FlagChoice {
    bool syntaxOnly = false;
    bool debug = false;
    int profile = 0;
    std::wstring_view buildFlags;   // from the settings
    std::wstring_view syntaxFlags;  // used instead of `buildFlags` for a syntax check
    std::wstring_view debugFlags;
    std::wstring_view projectFlags;  // come last, as they are
};
// At most kFlagsCapacity - 1 characters and those of the project; another flag that does not fit is left out.
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
    std::vector<std::wstring> includeFolders;  // of the project
    std::wstring_view includePath;
    std::wstring_view listingTemplate;
    std::wstring_view listing;  // path of the listing, used with `wantListing`
    bool wantListing = false;
    bool wantLog = true;  // the build log
};

// The request for a compiler with its settings; the paths of the build are still to be filled in.
LaunchRequest LaunchRequestOf(const CompilerProfile& profile, const CompilerSettings& settings);

struct LaunchPlan {
    std::wstring commandLine;
    std::wstring workingDirectory;
    std::wstring header;   // for the output pane and the build log
    std::wstring logPath;  // empty: no build log
};

// Why the compiler cannot be started, as a line for the output pane; empty when it can.
std::wstring LaunchObstacle(const LaunchRequest& request);
// `compiled` is the path that the compiler reads: the source or its staged copy.
CommandProblem PlanLaunch(const LaunchRequest& request, std::wstring_view compiled, LaunchPlan* plan);

// The record of a build that starts now. `staged`: the copy that the compiler reads; empty when it reads the source.
BuildRecord LaunchRecord(const LaunchRequest& request, const LaunchPlan& plan, std::wstring_view staged,
                         std::uint64_t startTime);

// The command with the full path of its program, when `folder` has that program under the name that the command gives,
// or under this name with ".exe", ".com", ".bat" or ".cmd". The system looks for a bare name everywhere but in the
// working folder of the new process. Empty when the folder has none. `systemFolder` is needed for batch files.
using FileProbe = std::function<bool(const std::wstring& path)>;
std::wstring CommandBeside(std::wstring_view command, std::wstring_view folder, std::wstring_view systemFolder,
                           const FileProbe& exists);

// These return a line for the output pane.
std::wstring LaunchErrorLine(std::uint32_t error, std::wstring_view systemMessage);
std::wstring NotStagedLine(std::wstring_view target);
std::wstring StagedElsewhereLine(std::wstring_view target);
std::wstring LeftoverLine(std::wstring_view target, std::wstring_view aside);
std::wstring NotDeletedLine(std::wstring_view path, std::wstring_view reason);
std::wstring RunErrorLine(std::wstring_view program, long error);

// The files that a compiler may write beside the source without being asked to, without the source itself.
std::vector<std::wstring> SideFilesOf(std::wstring_view source);
// The files that the Clean command deletes: results and side files with the source's name, never the source itself.
std::vector<std::wstring> CleanTargets(std::wstring_view source, std::wstring_view output, std::wstring_view listing);
