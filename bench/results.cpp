// The statistics and the table of results.
#include "bench.h"

#include <algorithm>
#include <cstdio>

namespace {

std::vector<Row> g_rows;

std::string Number(double value, const char* unit) {
    char text[64];
    std::snprintf(text, sizeof(text), value < 10 ? "%.2f %s" : value < 100 ? "%.1f %s" : "%.0f %s", value, unit);
    return text;
}

std::string Ratio(double value) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.2fx", value);
    return text;
}

struct Cells {
    std::string cell[7];
};

Cells Format(const Row& row) {
    const double ratio = row.floor > 0 ? row.program / row.floor : 0;
    std::string goal;
    if (row.maxRatio > 0) goal = "<= " + Ratio(row.maxRatio);
    if (row.maxValue > 0) goal += (goal.empty() ? "<= " : ", <= ") + Number(row.maxValue, row.unit);
    const bool missed = (row.maxRatio > 0 && ratio > row.maxRatio) || (row.maxValue > 0 && row.program > row.maxValue);
    return {{row.work, row.floor > 0 ? Number(row.floor, row.unit) : "", Number(row.program, row.unit),
             row.floor > 0 ? Ratio(ratio) : "", goal,
             goal.empty() ? ""
             : missed     ? "MISSED"
                          : "ok",
             row.note}};
}

}  // namespace

double NowMs() {
    LARGE_INTEGER frequency = {};
    LARGE_INTEGER now = {};
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&now);
    return 1000.0 * static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

double Quantile(std::vector<double> values, double share) {
    if (values.empty()) Die("no values were measured");
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1) + 0.5)];
}

void Report(Row row) {
    g_rows.push_back(std::move(row));
    const Cells cells = Format(g_rows.back());
    std::printf("  %s: floor %s, editor %s, %s %s\n", cells.cell[0].c_str(), cells.cell[1].c_str(),
                cells.cell[2].c_str(), cells.cell[3].c_str(), cells.cell[5].c_str());
    std::fflush(stdout);
}

void PrintTable() {
    std::vector<Cells> lines = {{{"work", "floor", "editor", "ratio", "goal", "", "remarks"}}};
    for (const Row& row : g_rows) lines.push_back(Format(row));
    std::size_t widths[7] = {};
    for (const Cells& line : lines)
        for (std::size_t i = 0; i < 7; ++i) widths[i] = std::max(widths[i], line.cell[i].size());
    std::printf("\n");
    for (std::size_t n = 0; n < lines.size(); ++n) {
        for (std::size_t i = 0; i < 7; ++i)
            std::printf("| %-*s ", static_cast<int>(widths[i]), lines[n].cell[i].c_str());
        std::printf("|\n");
        if (n > 0) continue;
        for (const std::size_t width : widths) std::printf("|%s", std::string(width + 2, '-').c_str());
        std::printf("|\n");
    }
}
