// What a run of the measurements has found: rows of figures, as a file of JSON, as tables, and beside an earlier run. Pure.
#pragma once

#include <string>
#include <string_view>
#include <vector>

enum class Figure { Median, Most };  // which of its runs is the figure of a row

struct Row {
    std::string work;
    std::vector<double> floor{};  // the floor program's, one of each run; empty: this work has no floor
    std::vector<double> program{};
    std::string unit = "ms";
    Figure figure = Figure::Median;
    double maxRatio = 0;  // largest allowed figure / median of the floor; 0: no goal
    double maxValue = 0;  // largest allowed figure in `unit`; 0: no goal
    std::string note{};
    bool headline = false;  // stands in the README, too
    std::string group{};    // its title; given by the group that is measured
};

struct Results {
    std::string machine, commit, date;
    bool quick = false;  // too few runs for figures
    std::vector<Row> rows{};
};

// Of these values, so many of one parts are at most the result. `values` is not empty.
double Quantile(std::vector<double> values, double share);
inline double Median(const std::vector<double>& values) { return Quantile(values, 0.5); }

double FigureOf(const Row& row);
double RatioOf(const Row& row);  // 0 without a floor
bool HasGoal(const Row& row);
bool MeetsGoal(const Row& row);  // true without a goal

std::string ResultsToJson(const Results& results);
// False when the text is not such a file.
bool ResultsFromJson(const std::string& json, Results* results);

std::string TextTable(const Results& results);
// A heading for each group, or one table of the headlines.
std::string MarkdownTable(const Results& results, bool headlines);

struct Comparison {
    std::string text;  // a table of what has changed, and a summary
    int slower = 0;
};
// A row has changed when the middle halves of its runs do not meet and its figure differs by more than a twentieth. What
// has a floor is compared as multiples of it, so that the load of the machine does not count; of the other times the
// change of all floors is taken off.
Comparison CompareResults(const Results& before, const Results& now);
