// Builds and debug sessions with the compilers that are installed.
#include "base/utf8.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "selftest/check_modules.h"
#include "selftest/checks.h"
#include "selftest/samples.h"
#include "settings/compiler_table.h"

#include <algorithm>
#include <array>
#include <vector>

namespace selftest {

namespace {

constexpr int kMostSteps = 60;

// A file name that belongs to the compiler.
constexpr std::array<const char*, 5> kExtensions = {".kxa", ".kxb", ".ka32", ".bas", ".bas"};

bool IsBusy() { return StatusText().ends_with(L"..."); }

// The line at which the program stands; 0: it does not.
int StoppedLine() {
    const std::wstring status = StatusText();
    const std::size_t colon = status.rfind(L':');
    return status.starts_with(L"Stopped at ") && colon != std::wstring::npos ? _wtoi(status.c_str() + colon + 1) : 0;
}

bool HasEnded() { return StatusText().starts_with(L"Exited with code"); }

// Waits for the next stop or the end. The line; 0: the end, -1: neither came.
int NextStop(int milliseconds) {
    const bool came = Await([] { return !IsBusy() && (StoppedLine() > 0 || HasEnded()); }, milliseconds);
    return !came ? -1 : HasEnded() ? 0 : StoppedLine();
}

bool Open(const CompilerProfile& compiler, const std::string& stem) {
    const bool opened = DropFile(MakeSample(stem + kExtensions[compiler.id]));
    if (opened) Command(compiler.command);
    return opened;
}

// Steps through the sample from its start to its end. The lines in their order.
std::vector<int> StepThrough() {
    std::vector<int> lines;
    Command(IDM_DEBUG_START);
    for (int line = NextStop(kBuildMs); line > 0 && lines.size() < kMostSteps; line = NextStop(10'000)) {
        lines.push_back(line);
        Command(IDM_DEBUG_STEP_OVER);
        // The status keeps the text of a stop at the same line, so the step is over once the bar has said so or moved.
        Await([&] { return StoppedLine() != line || HasEnded(); }, 2000);
    }
    return lines;
}

std::string LinesText(const std::vector<int>& lines) {
    std::string text = "lines";
    for (const int line : lines) text += " " + std::to_string(line);
    return text + ", status " + ToUtf8(StatusText());
}

void CheckSteps(std::uint32_t id) {
    const CompilerProfile& compiler = Profile(id);
    const std::string name = ToUtf8(compiler.name);
    if (!CompilerIsInstalled(id)) return SkipCheck("steps with " + name, "the compiler is not installed");
    Check("the sample is opened", [&] { return Open(compiler, "steps"); });
    std::vector<int> lines;
    Check(
        name + " builds it, and it stops at its first line",
        [&] {
            lines = StepThrough();
            CheckSays(LinesText(lines));
            return !lines.empty();
        });
    const auto passes = [&](int line) { return std::ranges::find(lines, line) != lines.end(); };
    Check("the steps go down the lines", [&] {
        CheckSays(LinesText(lines));
        return std::ranges::is_sorted(lines) && lines.size() > 3;
    });
    if (id == kCompilerKeldorBasic || id == kCompilerKvxb64)
        Check("they pass the branch that is taken", [&] {
            CheckSays(LinesText(lines));
            return passes(kBranchTaken);
        });
    Check("the program ends with its own exit code", [] {
        CheckSays(ToUtf8(StatusText()));
        return StatusText() == L"Exited with code 2";
    });
}

}  // namespace

bool CompilerIsInstalled(unsigned id) {
    bool installed = false;
    OnUiThread([&] { installed = CompilerExists(id); });
    return installed;
}

bool BuildSucceeds() {
    Command(IDM_BUILD);
    const bool ended =
        Await([] { return !IsBusy() && OutputText().find(L"Build succeeded") != std::wstring::npos; }, kBuildMs);
    if (!ended) {
        const std::wstring output = OutputText();
        CheckSays(ToUtf8(output.substr(output.size() > 300 ? output.size() - 300 : 0)));
    }
    return ended;
}

void CheckCompilers() {
    for (const CompilerProfile& compiler : g_compilers) {
        const std::string name = "a build with " + ToUtf8(compiler.name);
        if (!CompilerIsInstalled(compiler.id))
            SkipCheck(name, "the compiler is not installed");
        else
            Check(name, [&] { return Open(compiler, "hello") && BuildSucceeds(); });
    }
}

void CheckKeldorSteps() { CheckSteps(kCompilerKeldorBasic); }
void CheckKvxb64Steps() { CheckSteps(kCompilerKvxb64); }

}  // namespace selftest
