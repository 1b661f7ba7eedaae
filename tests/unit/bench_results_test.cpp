#include "results.h"

#include <gtest/gtest.h>

namespace {

Row RowOf(const char* work, std::vector<double> floor, std::vector<double> program) {
    return {.work = work, .floor = std::move(floor), .program = std::move(program), .group = "Start"};
}

TEST(BenchResults, AreTheSameAfterWritingAndReading) {
    Row row = RowOf("a \"start\", 50 kB", {100, 110.5, 120}, {150, 160, 170.25});
    row.figure = Figure::Most;
    row.unit = "MB";
    row.maxRatio = 1.5;
    row.maxValue = 33;
    row.note = "a note";
    row.headline = true;
    const Results written = {
        .machine = "two | processors", .commit = "abc", .date = "2026-11-22", .quick = true, .rows = {row}};
    Results read;
    ASSERT_TRUE(ResultsFromJson(ResultsToJson(written), &read));
    EXPECT_EQ(ResultsToJson(read), ResultsToJson(written));
    EXPECT_EQ(TextTable(read), TextTable(written));
    for (const char* bad : {"", "{", "[]", R"({"rows":1})", R"({"rows":[{"work":"a","editor":[]}]})"})
        EXPECT_FALSE(ResultsFromJson(bad, &read)) << bad;
}

TEST(BenchResults, GoalsBoundTheFigureThatCounts) {
    struct Case {
        Figure figure;
        double maxRatio, maxValue;
        bool met;
    };
    // The floor's median is 10; of the program the median is 15, the most 40.
    for (const auto& [figure, maxRatio, maxValue, met] : {Case{Figure::Median, 1.5, 0, true},
                                                          {Figure::Median, 1.4, 0, false},
                                                          {Figure::Median, 0, 15, true},
                                                          {Figure::Median, 1.5, 14, false},
                                                          {Figure::Most, 0, 39, false},
                                                          {Figure::Most, 4, 40, true},
                                                          {Figure::Most, 0, 0, true}}) {
        Row row = RowOf("a", {9, 10, 30}, {14, 15, 40});
        row.figure = figure;
        row.maxRatio = maxRatio;
        row.maxValue = maxValue;
        EXPECT_EQ(MeetsGoal(row), met) << maxRatio << " " << maxValue;
        const std::string table = MarkdownTable({.rows = {row}}, false);
        EXPECT_EQ(table.find("| NO |") == std::string::npos, met) << table;
    }
}

// Each row: before and now, and what the comparison says of it.
TEST(BenchResults, AreSlowerOnlyBeyondTheSpread) {
    struct Case {
        const char* what;
        Row before, now;
        const char* said;
    };
    const std::vector<double> floor = {100, 100, 100, 100, 100}, slowFloor = {200, 200, 200, 200, 200};
    const Case cases[] = {
        {"the same", RowOf("a", floor, {150, 151, 152, 153, 154}), RowOf("a", floor, {150, 151, 152, 153, 154}),
         "1 within"},
        {"spreads that meet", RowOf("a", floor, {140, 150, 160, 170, 180}),
         RowOf("a", floor, {150, 165, 175, 180, 190}), "1 within"},
        {"beyond the spread", RowOf("a", floor, {140, 150, 160, 170, 180}),
         RowOf("a", floor, {170, 180, 190, 200, 210}), "1 slower"},
        {"a steady row, by less than a twentieth", RowOf("a", floor, {150, 150, 150, 150, 150}),
         RowOf("a", floor, {155, 155, 155, 155, 155}), "1 within"},
        {"the machine is slower", RowOf("a", floor, {150, 151, 152, 153, 154}),
         RowOf("a", slowFloor, {300, 302, 304, 306, 308}), "1 within"},
        {"quicker", RowOf("a", floor, {150, 151, 152, 153, 154}), RowOf("a", floor, {110, 111, 112, 113, 114}),
         "1 faster"},
        {"one row is new, one gone", RowOf("b", floor, {150}), RowOf("a", floor, {150}), "1 new, 1 gone"},
    };
    for (const Case& c : cases) {
        const Comparison comparison = CompareResults({.rows = {c.before}}, {.rows = {c.now}});
        EXPECT_NE(comparison.text.find(c.said), std::string::npos) << c.what << "\n" << comparison.text;
        EXPECT_EQ(comparison.slower, std::string_view(c.said) == "1 slower" ? 1 : 0) << c.what;
    }
}

// A row without a floor is compared after the change of the floors is taken off, memory is not, and a group that was not
// measured now is not missed.
TEST(BenchResults, OfRowsWithoutAFloorTheMachineIsTakenOff) {
    Row memory = RowOf("memory", {}, {50, 50, 50, 50, 50});
    memory.unit = "MB";
    Row other = RowOf("keys", {}, {1});
    other.group = "Keys";
    const Results before = {
        .rows = {RowOf("with", {100, 100, 100}, {150, 150, 150}), RowOf("without", {}, {10, 10, 10}), memory, other}};
    memory.program = {100, 100, 100, 100, 100};
    const Results now = {
        .rows = {RowOf("with", {200, 200, 200}, {300, 300, 300}), RowOf("without", {}, {20, 20, 20}), memory}};
    const Comparison comparison = CompareResults(before, now);
    EXPECT_EQ(comparison.slower, 1) << comparison.text;
    EXPECT_NE(comparison.text.find("Start: memory"), std::string::npos) << comparison.text;
    EXPECT_NE(comparison.text.find("2 within the spread, 0 new, 0 gone"), std::string::npos) << comparison.text;
}

}  // namespace
