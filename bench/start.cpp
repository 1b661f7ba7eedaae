// Measures the time from the creation of the process to an editable file, and the memory. The floor program and the
// editor are started in turn, so that both have the same load of the machine.
#include "bench.h"

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
    {"50 kB, without compilers", 50'000, {.compilers = false}, 5, 1.5, 0, 0},
    {"50 kB, the first start", 50'000, {.settings = false}, 5, 0, 0, 0},
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
        for (int run = 0; run < Runs(c.runs); ++run) {
            RunOnce(Kind::Floor, c, file, size, &floor);
            RunOnce(Kind::Editor, c, file, size, &editor);
        }
        const std::string name = std::string("start, ") + c.name;
        Report({.work = name,
                .floor = floor.time,
                .program = editor.time,
                .maxRatio = c.maxTime,
                .headline = c.maxTime > 0});
        if (c.maxResident > 0)
            Report({.work = "- resident",
                    .floor = floor.resident,
                    .program = editor.resident,
                    .unit = "MB",
                    .maxRatio = c.maxResident,
                    .headline = true});
        if (c.maxPeak > 0)
            Report({.work = "- peak memory, " + std::string(c.name),
                    .floor = floor.peak,
                    .program = editor.peak,
                    .unit = "MB",
                    .maxRatio = c.maxPeak,
                    .headline = true});
    }
}
