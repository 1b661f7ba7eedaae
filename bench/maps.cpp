// Measures the line map of a large program: loading it with its structural lines moved, and the lookups for a margin
// full of breakpoints.
#include "base/log.h"
#include "bench.h"
#include "program/line_map.h"

#include "support/pe_bytes.h"

#include <string>
#include <vector>

namespace {

constexpr std::uint32_t kRecords = 200000;
constexpr int kTurns = 5;

struct Inputs {
    std::wstring program, source;
    std::size_t sourceSize = 0;
};

// Makes a PBMAIN of 5 MB. Every fifth record is of an ELSE line.
Inputs MakeInputs() {
    std::string source = "FUNCTION PBMAIN () AS LONG\r\n";
    std::vector<pe_bytes::Record> records;
    for (std::uint32_t i = 0; i < kRecords; ++i) {
        source += i % 5 == 4 ? "        ELSE ' or\r\n" : "        total = total + 1\r\n";
        records.push_back({1, i + 2, 0x1000 + 4 * i});
    }
    const Inputs inputs = {RunFolder() + L"map.exe", RunFolder() + L"map.bas", source.size()};
    WriteText(inputs.source, source);
    WriteText(
        inputs.program,
        pe_bytes::Image(true, 0x140000000, {{".text", 0x1000, "code"}, {".sdbg", 0x2000, pe_bytes::Sdbg2(records)}}));
    return inputs;
}

double LoadMs(const Inputs& inputs, SdbgMap* map) {
    const double start = NowMs();
    if (!SdbgLoad(inputs.program.c_str(), map)) Die("the map does not load");
    NormalizeSdbgControlLines(map, inputs.source.c_str());
    const double took = NowMs() - start;
    if (SdbgLineToRva(map, 6) != 0 || SdbgLineToRva(map, 5) != 0x100C) Die("the map is not the one expected");
    return took;
}

std::vector<double> LoadTimes(const Inputs& inputs) {
    std::vector<double> turns;
    for (int i = 0; i < Runs(kTurns); ++i) {
        SdbgMap map = {};
        turns.push_back(LoadMs(inputs, &map));
        SdbgFree(&map);
    }
    return turns;
}

double QuestionsMs(const SdbgMap& map) {
    const double start = NowMs();
    for (std::int32_t line = 1; line <= static_cast<std::int32_t>(kRecords); ++line) {
        const std::uint32_t rva = SdbgLineToRva(&map, line);
        SdbgRvaToLine(&map, rva);
        SdbgNextStop(&map, rva, 0, 1);
    }
    return NowMs() - start;
}

}  // namespace

void MeasureMaps() {
    const Inputs inputs = MakeInputs();
    const std::string size = std::to_string(inputs.sourceSize / 100000) + "00 kB of source";
    Report({.work = "line map of 200,000 records", .program = LoadTimes(inputs), .maxValue = 300, .note = size});
    OpenLog(RunFolder().c_str());
    Report({.work = "- with 40,000 log lines", .program = LoadTimes(inputs), .note = "logging on"});
    CloseLog();

    SdbgMap map = {};
    LoadMs(inputs, &map);
    std::vector<double> times;
    for (int i = 0; i < Runs(kTurns); ++i) times.push_back(QuestionsMs(map));
    Report({.work = "- 600,000 questions to it", .program = times, .note = "by line, by address, next stop"});
    SdbgFree(&map);
}
