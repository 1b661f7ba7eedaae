#include "compile/build_plan.h"

#include "base/bounded_text.h"
#include "base/path.h"
#include "base/texts.h"
#include "compile/terminal_text.h"

#include <algorithm>
#include <utility>

std::wstring BuildFlagsOf(const FlagChoice& choice) {
    wchar_t flags[kFlagsCapacity] = {};
    SafeCopyW(flags, choice.syntaxOnly ? choice.syntaxFlags : choice.buildFlags);
    if (choice.debug) AppendBuildFlag(flags, choice.debugFlags);
    if (!choice.syntaxOnly) AppendBuildFlag(flags, ProfileFlags(choice.profile, choice.debugFlags));
    std::wstring all = flags;
    if (!choice.projectFlags.empty()) all += (all.empty() ? L"" : L" ") + std::wstring(choice.projectFlags);
    return all;
}

LaunchRequest LaunchRequestOf(const CompilerProfile& profile, const CompilerSettings& settings) {
    return {.compilerId = profile.id,
            .style = profile.commandStyle,
            .compilerName = profile.name,
            .includeSwitch = profile.includeSwitch,
            .includeFolders = {},
            .includePath = settings.includePath,
            .listingTemplate = settings.asmFlag[0] != L'\0' ? settings.asmFlag : profile.asmFlag};
}

std::wstring LaunchObstacle(const LaunchRequest& request) {
    if (request.compiler.empty() || request.source.empty() || request.output.empty())
        return Text(L"Build launch failed: missing compiler, source, or output path.\r\n");
    if (SamePathText(request.source, request.output))
        return Text(L"Build launch failed: the program would take the place of its source.\r\n");
    return {};
}

CommandProblem PlanLaunch(const LaunchRequest& request, std::wstring_view compiled, LaunchPlan* plan) {
    // The listing of an assembly source, or of a file without an extension, would overwrite the source.
    const bool listable = request.wantListing && !SamePathText(request.listing, request.source);
    const CommandProblem problem = AssembleCommandLine({.style = request.style,
                                                        .compilerId = request.compilerId,
                                                        .compiler = request.compiler,
                                                        .flags = request.flags,
                                                        .includeSwitch = request.includeSwitch,
                                                        .includeFolders = request.includeFolders,
                                                        .includePath = request.includePath,
                                                        .listingTemplate = request.listingTemplate,
                                                        .listing = listable ? request.listing : std::wstring_view(),
                                                        .source = compiled,
                                                        .output = request.output},
                                                       &plan->commandLine);
    if (problem != CommandProblem::None) return problem;
    plan->workingDirectory = FolderOf(request.style == CommandStyle::Keldor ? request.output : request.compiler);
    plan->header =
        TextWith(L"--- Build started: {1} ---\r\nSource: {2}\r\nOutput: {3}\r\nCWD: {4}\r\nCommand: {5}\r\n\r\n",
                 {request.compilerName, request.source, request.output, plan->workingDirectory, plan->commandLine});
    const std::wstring log = ReplaceExtension(request.source, L".buildlog");
    plan->logPath = !request.wantLog || SamePathText(log, request.source) ? std::wstring() : log;
    return CommandProblem::None;
}

BuildRecord LaunchRecord(const LaunchRequest& request, const LaunchPlan& plan, std::wstring_view staged,
                         std::uint64_t startTime) {
    return {.source = std::wstring(request.source),
            .output = std::wstring(request.output),
            .staged = std::wstring(staged),
            .listing = std::wstring(request.listing),
            .workingDirectory = plan.workingDirectory,
            .includeFolders = request.includeFolders,
            .compilerId = request.compilerId,
            .startTime = startTime};
}

std::wstring CommandBeside(std::wstring_view command, std::wstring_view folder, std::wstring_view systemFolder,
                           const FileProbe& exists) {
    command.remove_prefix(std::min(command.find_first_not_of(L" \t"), command.size()));
    const bool quoted = command.starts_with(L'"');
    if (quoted) command.remove_prefix(1);
    const std::size_t end = std::min(command.find_first_of(quoted ? L"\"" : L" \t"), command.size());
    const std::wstring program(command.substr(0, end));
    std::wstring_view rest = command.substr(end);
    if (quoted && !rest.empty()) rest.remove_prefix(1);
    if (program.empty() || PathIsAbsolute(program)) return {};
    const std::wstring base = std::wstring(folder) + (folder.ends_with(L'\\') ? L"" : L"\\") + program;
    for (const wchar_t* extension : {L"", L".exe", L".com", L".bat", L".cmd"}) {
        const std::wstring path = base + extension;
        if (!exists(path)) continue;
        const std::wstring line = L'"' + path + L'"' + std::wstring(rest);
        const std::wstring_view kind = FileExtension(path);
        const bool batch = PathEqualsIgnoreCase(kind, L".bat") || PathEqualsIgnoreCase(kind, L".cmd");
        return batch ? TerminalCommandLine(systemFolder, line) : line;
    }
    return {};
}

std::wstring LaunchErrorLine(std::uint32_t error, std::wstring_view systemMessage) {
    while (systemMessage.ends_with(L'\r') || systemMessage.ends_with(L'\n')) systemMessage.remove_suffix(1);
    return TextWith(L"Build launch failed (Win32 error {1}): {2}\r\n", {std::to_wstring(error), systemMessage});
}

std::wstring NotStagedLine(std::wstring_view target) {
    return TextWith(L"Build launch failed: {1} cannot be written.\r\n", {target});
}

std::wstring StagedElsewhereLine(std::wstring_view target) {
    return TextWith(L"Build launch failed: another editor is building with {1} at the moment.\r\n", {target});
}

std::wstring LeftoverLine(std::wstring_view target, std::wstring_view aside) {
    return TextWith(L"An earlier build was cut off: your own text of {1} is in {2}\r\n", {target, aside});
}

std::wstring NotDeletedLine(std::wstring_view path, std::wstring_view reason) {
    return TextWith(L"Not deleted: {1}{2}\r\n", {path, reason});
}

std::wstring RunErrorLine(std::wstring_view program, long error) {
    return TextWith(L"Run failed for: {1}\r\nShellExecute error: {2}\r\n", {program, std::to_wstring(error)});
}

std::vector<std::wstring> SideFilesOf(std::wstring_view source) {
    std::vector<std::wstring> files;
    for (const wchar_t* extension : {L".log", L".lst", L".err"})
        if (std::wstring path = ReplaceExtension(source, extension); !SamePathText(path, source))
            files.push_back(std::move(path));
    return files;
}

std::vector<std::wstring> CleanTargets(std::wstring_view source, std::wstring_view output, std::wstring_view listing) {
    std::vector<std::wstring> targets = {std::wstring(output)};
    // For a source without an extension in a folder with a dot in its name, the listing's path is outside that folder.
    if (SamePathText(FolderOf(listing), FolderOf(source))) targets.emplace_back(listing);
    for (std::wstring& side : SideFilesOf(source)) targets.push_back(std::move(side));
    targets.push_back(ReplaceExtension(source, L".buildlog"));
    std::erase_if(targets, [source](const std::wstring& target) { return SamePathText(target, source); });
    return targets;
}
