// The tables of the results.
#include "results.h"

#include <algorithm>
#include <cstdio>
#include <map>

namespace {

using Line = std::vector<std::string>;

std::string Format(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

std::string Digits(double value) { return Format(value < 10 ? "%.2f" : value < 100 ? "%.1f" : "%.0f", value); }
std::string Number(double value, const std::string& unit) { return Digits(value) + " " + unit; }
std::string Times(double ratio) { return ratio > 0 ? Format("%.2fx", ratio) : ""; }

std::string GoalOf(const Row& row) {
    std::string goal = row.maxRatio > 0 ? Times(row.maxRatio) : "";
    if (row.maxValue > 0) goal += (goal.empty() ? "" : ", ") + Number(row.maxValue, row.unit);
    return goal;
}

std::string SpreadOf(const std::vector<double>& runs) {
    return Digits(Quantile(runs, 0)) + " to " + Digits(Quantile(runs, 1));
}

std::string FloorOf(const Row& row) { return row.floor.empty() ? "" : Number(Median(row.floor), row.unit); }

Line LineOf(const Row& row) {
    return {row.work,
            FloorOf(row),
            row.floor.empty() ? "" : SpreadOf(row.floor),
            Number(FigureOf(row), row.unit) + (row.figure == Figure::Most ? " (most)" : ""),
            SpreadOf(row.program),
            std::to_string(row.program.size()),
            Times(RatioOf(row)),
            GoalOf(row),
            !HasGoal(row)    ? ""
            : MeetsGoal(row) ? "yes"
                             : "NO",
            row.note};
}

const Line kTitles = {"work", "floor", "least to most", "editor", "least to most",
                      "runs", "ratio", "goal",          "met",    "remarks"};

std::string Aligned(const std::vector<Line>& lines) {
    std::vector<std::size_t> widths(lines[0].size());
    for (const Line& line : lines)
        for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], line[i].size());
    std::string text;
    for (std::size_t n = 0; n < lines.size(); ++n) {
        for (std::size_t i = 0; i < widths.size(); ++i) {
            std::string cell = lines[n][i];
            cell.resize(widths[i], ' ');
            text += "| " + cell + " ";
        }
        text += "|\n";
        if (n > 0) continue;
        for (const std::size_t width : widths) text += "|" + std::string(width + 2, '-');
        text += "|\n";
    }
    return text;
}

std::string MarkdownLine(const Line& line) {
    std::string text = "|";
    for (const std::string& cell : line) text += " " + cell + (cell.empty() ? "|" : " |");
    return text + "\n";
}

std::string MarkdownHead(const Line& titles) {
    std::string text = MarkdownLine(titles) + "|";
    for (std::size_t i = 0; i < titles.size(); ++i) text += "---|";
    return text + "\n";
}

std::string Headlines(const Results& results) {
    std::string text = MarkdownHead({"work", "floor", "editor", "ratio", "goal", "met"});
    for (const Row& row : results.rows) {
        if (!row.headline) continue;
        const Line line = LineOf(row);
        text += MarkdownLine({line[0], line[1], line[3], line[6], line[7], line[8]});
    }
    return text;
}

// --- Beside an earlier run

enum class Change { Same, Slower, Faster };
struct Verdict {
    Change change = Change::Same;
    double times = 1;     // the figure of now is so many times that of then
    bool floors = false;  // both have a floor
};

// The runs of a row are divided by `by`.
struct Compared {
    double low = 0, figure = 0, high = 0;
};

Compared ComparedOf(const Row& row, double by) {
    return {Quantile(row.program, 0.25) / by, FigureOf(row) / by, Quantile(row.program, 0.75) / by};
}

Verdict VerdictOf(const Row& before, const Row& now, double machine) {
    constexpr double kLeastChange = 1.05;
    const bool floors = !before.floor.empty() && !now.floor.empty();
    const double by = now.unit == "ms" ? machine : 1;
    const Compared a = ComparedOf(before, floors ? Median(before.floor) : 1);
    const Compared b = ComparedOf(now, floors ? Median(now.floor) : by);
    Verdict verdict = {.times = b.figure / a.figure, .floors = floors};
    if (b.low > a.high && b.figure > a.figure * kLeastChange) verdict.change = Change::Slower;
    if (b.high < a.low && b.figure * kLeastChange < a.figure) verdict.change = Change::Faster;
    return verdict;
}

std::string KeyOf(const Row& row) { return row.group + "\n" + row.work; }

std::map<std::string, const Row*> ByName(const Results& results) {
    std::map<std::string, const Row*> rows;
    for (const Row& row : results.rows) rows[KeyOf(row)] = &row;
    return rows;
}

// How many times slower the floors were now than before; 1 when no time of a floor is in both.
double MachineNow(const Results& before, const Results& now) {
    const auto old = ByName(before);
    std::vector<double> changes;
    for (const Row& row : now.rows) {
        const auto at = old.find(KeyOf(row));
        if (at == old.end() || row.floor.empty() || at->second->floor.empty() || row.unit != "ms") continue;
        changes.push_back(Median(row.floor) / Median(at->second->floor));
    }
    return changes.empty() ? 1 : Median(changes);
}

}  // namespace

std::string TextTable(const Results& results) {
    std::vector<Line> lines = {kTitles};
    std::string group;
    for (const Row& row : results.rows) {
        if (row.group != group) lines.push_back({row.group + ":", "", "", "", "", "", "", "", "", ""});
        group = row.group;
        lines.push_back(LineOf(row));
    }
    return Aligned(lines);
}

std::string MarkdownTable(const Results& results, bool headlines) {
    std::string text =
        "Measured on " + results.date + " at commit " + results.commit + " on " + results.machine + ".\n\n";
    if (headlines) return text + Headlines(results);
    std::string group;
    for (const Row& row : results.rows) {
        if (row.group != group) text += (group.empty() ? "### " : "\n### ") + row.group + "\n" + MarkdownHead(kTitles);
        group = row.group;
        text += MarkdownLine(LineOf(row));
    }
    return text;
}

Comparison CompareResults(const Results& before, const Results& now) {
    const double machine = MachineNow(before, now);
    auto old = ByName(before);
    std::erase_if(old, [&](const auto& entry) {  // of a group that was not measured now
        return std::ranges::find(now.rows, entry.second->group, &Row::group) == now.rows.end();
    });
    std::vector<Line> lines = {{"work", "before", "now", "change", ""}};
    int counts[3] = {};
    int added = 0;
    for (const Row& row : now.rows) {
        const std::string name = row.group + ": " + row.work;
        const auto at = old.find(KeyOf(row));
        if (at == old.end()) {
            ++added;
            lines.push_back({name, "", Number(FigureOf(row), row.unit), "", "new"});
            continue;
        }
        const Row& last = *at->second;
        const Verdict verdict = VerdictOf(last, row, machine);
        const auto shown = [&](const Row& r) {
            return Number(FigureOf(r), r.unit) + (verdict.floors ? ", " + Times(RatioOf(r)) : "");
        };
        ++counts[static_cast<int>(verdict.change)];
        if (verdict.change != Change::Same)
            lines.push_back({name, shown(last), shown(row), Times(verdict.times),
                             verdict.change == Change::Slower ? "SLOWER" : "faster"});
        old.erase(at);
    }
    for (const auto& [key, row] : old)
        lines.push_back({row->group + ": " + row->work, Number(FigureOf(*row), row->unit), "", "", "gone"});
    const auto [same, slower, faster] = counts;
    return {"beside the run of " + before.date + " at commit " + before.commit + "; the floors take " + Times(machine) +
                " of their time then\n" + (lines.size() > 1 ? Aligned(lines) : "") + std::to_string(slower) +
                " slower, " + std::to_string(faster) + " faster, " + std::to_string(same) + " within the spread, " +
                std::to_string(added) + " new, " + std::to_string(old.size()) + " gone\n",
            slower};
}
