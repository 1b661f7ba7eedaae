// Measures KVX-Editor and the floor program:  bench [name of a measurement...]
// Without a name all are measured.
#include "bench.h"

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

struct Measurement {
    const char* name;
    void (*run)();
};
constexpr Measurement kMeasurements[] = {
    {"start", MeasureStart},       {"keys", MeasureKeys},
    {"edits", MeasureEdits},       {"colour", MeasureColour},
    {"output", MeasureOutput},     {"stop", MeasureStop},
    {"debugger", MeasureDebugger}, {"maps", MeasureMaps},
    {"code", MeasureCode},         {"ai", MeasureAi},
    {"files", MeasureFiles},       {"finder", MeasureFinder},
    {"settings", MeasureSettings}, {"completion", MeasureCompletion},
    {"symbols", MeasureSymbols},   {"sessions", MeasureSessions},
    {"tree", MeasureTree},         {"panes", MeasurePanes},
};

bool Wanted(int argc, char** argv, const std::string& name) {
    for (int i = 1; i < argc; ++i)
        if (name == argv[i]) return true;
    return argc == 1;
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        bool known = false;
        for (const Measurement& m : kMeasurements) known = known || std::string(m.name) == argv[i];
        if (!known) {
            std::fprintf(stderr, "bench: there is no measurement \"%s\"; there are", argv[i]);
            for (const Measurement& m : kMeasurements) std::fprintf(stderr, " %s", m.name);
            std::fprintf(stderr, "\n");
            return 2;
        }
    }
    std::filesystem::create_directories(RunFolder());
    for (const Measurement& m : kMeasurements) {
        if (!Wanted(argc, argv, m.name)) continue;
        std::printf("%s:\n", m.name);
        std::fflush(stdout);
        m.run();
    }
    PrintTable();
    return 0;
}
