// The command lines that the settings of a compiler lead to. Pure.
#include "settingsui/settings_preview.h"

#include "base/bounded_text.h"
#include "base/texts.h"
#include "compile/build_plan.h"
#include "settings/compiler_table.h"

namespace {

constexpr wchar_t kFolder[] = L"C:\\Sources\\";

std::wstring LineOf(std::uint32_t compiler, const Settings& settings, bool syntaxOnly) {
    const CompilerProfile& profile = Profile(compiler);
    const CompilerSettings& own = settings.compilers[profile.id];
    const std::wstring source = std::wstring{kFolder} + L"program.bas";
    wchar_t output[kPathCapacity] = {};
    wchar_t listing[kPathCapacity] = {};
    CompilerMakeOutputPath(source.c_str(), output, kPathCapacity);
    CompilerMakeAsmPath(source.c_str(), listing, kPathCapacity);
    const std::wstring flags =
        BuildFlagsOf({.syntaxOnly = syntaxOnly,
                      .profile = settings.profile,
                      .buildFlags = own.flags,
                      .syntaxFlags = own.syntaxFlags[0] != L'\0' ? own.syntaxFlags : profile.syntaxFlags,
                      .debugFlags = profile.debugFlags});
    LaunchRequest request = LaunchRequestOf(profile, own);
    request.compiler = own.path[0] != L'\0' ? own.path : profile.name;
    request.source = source;
    request.output = output;
    request.flags = flags;
    request.listing = listing;
    request.wantListing = !syntaxOnly;
    LaunchPlan plan;
    const CommandProblem problem = PlanLaunch(request, source, &plan);
    std::wstring line = problem == CommandProblem::None ? plan.commandLine : CommandProblemText(problem);
    while (line.ends_with(L'\n') || line.ends_with(L'\r')) line.pop_back();
    return line;
}

}  // namespace

std::wstring CommandPreviewOf(std::uint32_t compiler, const Settings& settings) {
    return TextWith(L"Build: {1}\r\n\r\nSyntax check: {2}",
                    {LineOf(compiler, settings, false), LineOf(compiler, settings, true)});
}
