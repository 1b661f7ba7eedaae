// Measures the scan for symbols: a source as people write it, and one that is nothing but declarations.
#include "language/symbol_pieces.h"

#include "bench.h"

#include <cstdio>
#include <string>

namespace {

constexpr std::size_t kBytes = 10'000'000;
constexpr int kRuns = 5;
constexpr double kGoalMbPerSecond = 50;

std::string Declarations() {
    std::string text;
    for (int i = 0; text.size() < kBytes; ++i)
        text +=
            (i % 3 == 0 ? "GLOBAL number" + std::to_string(i) + " AS LONG" : "%EQUATE_" + std::to_string(i) + " = 7") +
            "\r\n";
    return text;
}

// As often as a program of 200 lines has them.
std::string Program200() {
    std::string text;
    for (int i = 0; text.size() < kBytes; ++i) {
        const std::string number = std::to_string(i);
        text += "' Adds what the file holds.\r\nFUNCTION Total" + number +
                "(BYVAL path AS STRING) AS LONG\r\n    LOCAL line AS STRING, sum AS LONG\r\n    OPEN path FOR INPUT AS "
                "#1\r\n"
                "    WHILE NOT EOF(1)\r\n        LINE INPUT #1, line\r\n        IF LEN(line) > 0 THEN sum = sum + "
                "VAL(line)\r\n"
                "    WEND\r\n    CLOSE #1\r\n    FUNCTION = sum\r\nEND FUNCTION\r\n\r\n";
    }
    return text;
}

void MeasureScan(const char* what, const std::string& text) {
    std::vector<double> scans, all;
    std::size_t symbols = 0, bytes = 0;
    for (int i = 0; i < Runs(kRuns); ++i) {
        const double start = NowMs();
        const auto pieces = ScanPieces(text, 0, AnyDialect(), true);
        scans.push_back(NowMs() - start);
        const SymbolTable table = JoinSymbols(pieces);
        all.push_back(NowMs() - start);
        symbols = table.symbols.size();
        bytes = table.symbols.size() * (sizeof(Symbol) + sizeof(std::uint32_t)) + table.arena.size();
    }
    char note[128];
    std::snprintf(note, sizeof(note), "%.0f MB/s with the index, %.0f without; %d symbols, table of %.1f MB",
                  static_cast<double>(text.size()) / Median(all) / 1e3,
                  static_cast<double>(text.size()) / Median(scans) / 1e3, static_cast<int>(symbols),
                  static_cast<double>(bytes) / 1e6);
    Report({.work = std::string("10 MB of ") + what + " scanned",
            .program = all,
            .maxValue = static_cast<double>(kBytes) / kGoalMbPerSecond / 1e3,
            .note = note,
            .headline = true});
}

}  // namespace

void MeasureSymbols() {
    MeasureScan("procedures", Program200());
    MeasureScan("declarations", Declarations());
    MeasureKeysWithSymbols();
}
