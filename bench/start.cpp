// Measures the time from the creation of the process to an editable file, and the memory. The floor program and the
// editor are started in turn, so that both have the same load of the machine. The least time is given beside the
// median, because the load of the machine only adds to it.
#include "bench.h"

#include <cstdio>
#include <string>

namespace {

struct Case {
    const char* name;
    std::size_t size;
    Furnishing furnishing;
    int runs;
    double maxTime;  // goals as multiples of the floor; 0: none
    double maxResident;
    double maxPeak;
};

constexpr Case kCases[] = {
    {"50 kB", 50'000, {}, 15, 1.5, 1.25, 0},
    {"50 kB, no compilers", 50'000, {.compilers = false}, 5, 1.5, 1.25, 0},
    {"50 kB, first start", 50'000, {.settings = false}, 5, 0, 0, 0},
    {"10 MB", 10'000'000, {}, 5, 0, 0, 0},
    {"100 MB", 100'000'000, {}, 5, 1.2, 0, 0.8},
};

struct Figures {
    std::vector<double> time;
    std::vector<double> resident;
    std::vector<double> peak;
};

void RunOnce(Kind kind, const Case& c, const std::wstring& file, std::size_t size, Figures* figures) {
    const Folder folder(c.furnishing);
    Program program(kind, folder, file);
    figures->time.push_back(program.AwaitReady(size));
    const Memory memory = program.SettledMemory();
    figures->resident.push_back(memory.residentMb);
    figures->peak.push_back(memory.peakMb);
}

}  // namespace

void MeasureStart() {
    for (const Case& c : kCases) {
        std::size_t size = 0;
        const std::wstring file = SourceOfSize(c.size, &size);
        Figures floor;
        Figures editor;
        Figures unused;
        RunOnce(Kind::Floor, c, file, size, &unused);  // loads the file and both programs into the system's cache
        RunOnce(Kind::Editor, c, file, size, &unused);
        for (int run = 0; run < c.runs; ++run) {
            RunOnce(Kind::Floor, c, file, size, &floor);
            RunOnce(Kind::Editor, c, file, size, &editor);
        }
        const std::string name = std::string("start, ") + c.name;
        const std::string runs = "median of " + std::to_string(c.runs);
        char least[64];
        std::snprintf(least, sizeof(least), ", least %.0f, floor's %.0f, %.2fx", Quantile(editor.time, 0),
                      Quantile(floor.time, 0), Quantile(editor.time, 0) / Quantile(floor.time, 0));
        Report({.work = name,
                .floor = Median(floor.time),
                .program = Median(editor.time),
                .maxRatio = c.maxTime,
                .note = runs + least});
        Report({.work = name + ": resident",
                .floor = Median(floor.resident),
                .program = Median(editor.resident),
                .unit = "MB",
                .maxRatio = c.maxResident,
                .note = runs});
        Report({.work = name + ": peak memory",
                .floor = Median(floor.peak),
                .program = Median(editor.peak),
                .unit = "MB",
                .maxRatio = c.maxPeak,
                .note = runs});
    }
}
