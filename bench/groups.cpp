#include "groups.h"

#include "bench.h"

#include "base/handles.h"
#include "support/start_process.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace {

constexpr Group kGroups[] = {
    {"start", "Start", MeasureStart},
    {"large", "A file of 600 MB", MeasureLarge},
    {"keys", "Keys", MeasureKeys},
    {"completion", "Keys with completion", MeasureCompletion},
    {"symbols", "Symbols", MeasureSymbols},
    {"colour", "Colours and formatter", MeasureColour},
    {"edits", "Large edits", MeasureEdits},
    {"find", "Find", MeasureFind},
    {"files", "Find in Files", MeasureFiles},
    {"finder", "Go to File and command palette", MeasureFinder},
    {"output", "Output", MeasureOutput},
    {"prompts", "Prompts", MeasurePrompts},
    {"stop", "Stop Build", MeasureStop},
    {"debugger", "Debugger", MeasureDebugger},
    {"maps", "Line maps", MeasureMaps},
    {"code", "Machine code", MeasureCode},
    {"panes", "Resizing", MeasurePanes},
    {"sessions", "Sessions and recovery", MeasureSessions},
    {"tree", "Project tree", MeasureTree},
    {"settings", "Settings", MeasureSettings},
    {"ai", "Assistant", MeasureAi},
};

constexpr int kTries = 3;
Results g_own;  // of the process of a group

// Ends a process of a group with all that it has started, when it is destroyed.
class Job {
public:
    Job() : job_(CreateJobObjectW(nullptr, nullptr)) {
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
        if (!job_ || !SetInformationJobObject(job_.Get(), JobObjectExtendedLimitInformation, &limits, sizeof(limits)))
            Die("no job");
    }
    ~Job() { TerminateJobObject(job_.Get(), 1); }
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;
    void Add(HANDLE process) const { AssignProcessToJobObject(job_.Get(), process); }

private:
    UniqueHandle job_;
};

std::wstring OwnPath() {
    wchar_t path[1024] = {};
    GetModuleFileNameW(nullptr, path, 1024);
    return path;
}

std::string WhyItFailed(const Group& group, const std::wstring& rowsFile, double limitMs) {
    const Job job;
    const std::wstring name(group.name, group.name + std::string_view(group.name).size());
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE), errors = GetStdHandle(STD_ERROR_HANDLE);
    for (const HANDLE handle : {output, errors}) SetHandleInformation(handle, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    PROCESS_INFORMATION started = {};
    if (!StartProcess(L"\"" + OwnPath() + L"\" --group " + name + L" \"" + rowsFile + L"\"", &started,
                      {.flags = CREATE_SUSPENDED, .output = output, .errors = errors}))
        return "its process cannot be started";
    const UniqueHandle process{started.hProcess}, thread{started.hThread};
    job.Add(process.Get());
    ResumeThread(thread.Get());
    if (WaitForSingleObject(process.Get(), static_cast<DWORD>(limitMs)) != WAIT_OBJECT_0) return "it took too long";
    DWORD code = 1;
    GetExitCodeProcess(process.Get(), &code);
    return code == 0 ? "" : "its process ended with " + std::to_string(code);
}

}  // namespace

std::span<const Group> Groups() { return kGroups; }

const Group* GroupOf(std::string_view name) {
    const auto* group = std::ranges::find(kGroups, name, &Group::name);
    return group != std::end(kGroups) ? group : nullptr;
}

void Report(Row row) {
    if (row.program.empty()) Die("no values were measured: " + row.work);
    std::printf("  %s: %.2f %s", row.work.c_str(), FigureOf(row), row.unit.c_str());
    if (!row.floor.empty()) std::printf(", floor %.2f, %.2fx", Median(row.floor), RatioOf(row));
    std::printf("%s\n", !HasGoal(row) ? "" : MeetsGoal(row) ? ", ok" : ", MISSED");
    std::fflush(stdout);
    g_own.rows.push_back(std::move(row));
}

int RunGroupHere(const Group& group, const std::wstring& rowsFile) {
    group.measure();
    for (Row& row : g_own.rows) row.group = group.title;
    WriteText(rowsFile, ResultsToJson(g_own));
    return 0;
}

bool RunGroup(const Group& group, double limitMs, Results* results) {
    const std::wstring rowsFile = RunFolder() + L"rows.json";
    const double end = NowMs() + limitMs;
    for (int tries = 1; tries <= kTries && NowMs() < end; ++tries) {
        DeleteFileW(rowsFile.c_str());
        const std::string why = WhyItFailed(group, rowsFile, end - NowMs());
        Results own;
        if (why.empty() && ResultsFromJson(ReadText(rowsFile), &own)) {
            results->rows.insert(results->rows.end(), own.rows.begin(), own.rows.end());
            return true;
        }
        std::printf("  %s was not measured at try %d: %s\n", group.name, tries, why.c_str());
        std::fflush(stdout);
    }
    return false;
}

std::string ReadText(const std::wstring& path) {
    std::ifstream stream(Narrow(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}
