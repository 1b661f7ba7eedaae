// Command line, start, pane arithmetic and window placement.
#include "app/command_line.h"
#include "app/layout.h"
#include "app/move_order.h"
#include "app/notify_rules.h"
#include "app/recent_text.h"
#include "app/split_ratios.h"
#include "app/start_rows.h"
#include "app/startup_rules.h"
#include "app/window_place.h"
#include "editor/margins.h"
#include "resources/ids.h"
#include "support/golden_file.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

namespace {

std::vector<CommandLineStep> Steps(std::vector<std::wstring> words) { return ParseCommandLineSteps(words); }

TEST(CommandLine, StepsComeInOrderAndBadOnesAreLeftOut) {
    const auto steps = Steps({L"--bogus", L"--open", L"a.bas", L"--fontsize", L"5", L"--fontsize", L"72", L"--compiler",
                              L"Kvxa64", L"--compiler", L"kb", L"--open", L"b.bas", L"-h", L"--font"});
    ASSERT_EQ(steps.size(), 5U);
    EXPECT_EQ(steps[0].text, L"a.bas");
    EXPECT_EQ(steps[1].number, 72);
    EXPECT_EQ(steps[2].number, 3);
    EXPECT_EQ(steps[3].text, L"b.bas");
    EXPECT_EQ(steps[4].action, CommandLineAction::Help);
}

TEST(CommandLine, WordsThatAreNoOptionsAreFilesWithAPlace) {
    const auto steps = Steps({L"a.bas", L"--font", L"x.bas", L"-q", L"sub\\b c.bas:12:5", L""});
    ASSERT_EQ(steps.size(), 3U);
    EXPECT_EQ(steps[0].text, L"a.bas");
    EXPECT_EQ(steps[1].action, CommandLineAction::SetFont);
    const struct {
        const wchar_t *text, *path;
        int line, column;
    } cases[] = {{L"a.bas", L"a.bas", 0, 0},   {L"C:\\a.bas:7", L"C:\\a.bas", 7, 0},
                 {L"a b:12:5", L"a b", 12, 5}, {L"C:12", L"C:12", 0, 0},
                 {L"C:12:3", L"C:12", 3, 0},   {L"a:0", L"a:0", 0, 0},
                 {L"aa:", L"aa:", 0, 0},       {L"aa:3:", L"aa:3:", 0, 0},
                 {L"aa:3x:4", L"aa:3x", 4, 0}, {L"aa:9999999999", L"aa:9999999999", 0, 0},
                 {L"aa:1:2:3", L"aa:1", 2, 3}, {L":4", L":4", 0, 0},
                 {L"aa:7:0", L"aa", 7, 0}};
    for (const auto& c : cases) {
        const FilePlace place = ParseFilePlace(c.text);
        EXPECT_TRUE(place.path == c.path && place.line == c.line && place.column == c.column)
            << std::string(c.text, c.text + wcslen(c.text)) << " " << place.line << " " << place.column;
    }
}

TEST(CommandLine, TheHelpAndTheReadmeNameEveryOptionThatIsTaken) {
    const std::wstring help = CommandLineHelp();
    const std::string source = ReadBytes(std::string(KVX_ROOT_DIR) + "/src/app/command_line.cpp");
    const std::string readme = ReadBytes(std::string(KVX_ROOT_DIR) + "/README.md");
    int count = 0;
    // A row of the tables begins with {L"--name".
    for (std::size_t at = source.find("{L\"-"); at != std::string::npos; at = source.find("{L\"-", at + 1), ++count) {
        const std::string option = source.substr(at + 3, source.find('"', at + 3) - at - 3);
        if (option == "--goto") {  // another name of --open
            EXPECT_NE(readme.find(option), std::string::npos);
            continue;
        }
        EXPECT_NE(help.find(std::wstring(option.begin(), option.end())), std::wstring::npos) << option;
        if (option.starts_with("--") && !option.starts_with("--selftest"))
            EXPECT_NE(readme.find("`" + option), std::string::npos) << option;
    }
    EXPECT_GT(count, 10);
}

TEST(CommandLine, FontSizeLimits) {
    const struct {
        const wchar_t* value;
        bool taken;
    } cases[] = {{L"5", false},   {L"6", true},  {L"72", true},  {L"73", false}, {L"x", false},
                 {L"12pt", true}, {L" 8", true}, {L"-8", false}, {L"", false}};
    for (const auto& c : cases)
        EXPECT_EQ(Steps({L"--fontsize", c.value}).size(), c.taken ? 1U : 0U)
            << std::string(c.value, c.value + wcslen(c.value));
}

TEST(CommandLine, DetectEndsTheScanAndAnOptionTakesTheNextWordWhateverItIs) {
    EXPECT_EQ(Steps({L"--detect", L"--help"}).size(), 1U);
    const auto steps = Steps({L"--open", L"--help"});
    ASSERT_EQ(steps.size(), 1U);
    EXPECT_EQ(steps[0].action, CommandLineAction::Open);
}

TEST(CommandLine, EarlyPassFindsTheSelfTests) {
    const auto early = [](std::vector<std::wstring> words) { return ParseEarlyOptions(words); };
    EXPECT_TRUE(early({L"--selftest-exit"}).selftestTabs);
    EXPECT_FALSE(early({L"--selftest"}).selftestTabs);
    EXPECT_EQ(early({L"--test", std::wstring(100, L'm')}).testModule.size(), 63U);
    EXPECT_FALSE(early({L"--test"}).testMode);
    EXPECT_TRUE(early({L"a.bas", L"--high-contrast"}).highContrast);
    EXPECT_FALSE(early({L"a.bas"}).highContrast);
    EXPECT_EQ(early({L"--test", L"tabs", L"--test", L"n\u00F6"}).testModule, "tabs,n\u00F6");
    EXPECT_EQ(early({L"--test", std::wstring(62, L'm') + L'\u00F6'}).testModule.size(), 62U) << "no half a character";
}

TEST(Startup, OpensTheFirstThingThatThereIs) {
    // `opens` lists by a letter (s, w, r) the steps that open something.
    const auto run = [](const char* opens, bool atOnce, bool restore) {
        std::string path;
        bool any = atOnce;
        const std::string_view open = opens;
        for (StartupStep step = StartupStep::OfferSession; step != StartupStep::Done;) {
            const char letter = "swrn"[static_cast<int>(step)];
            path += letter;
            any = any || letter == 'n' || open.find(letter) != std::string_view::npos;
            step = StartupStepAfter(step, any, restore);
        }
        return path;
    };
    EXPECT_EQ(run("", true, true), "s") << "files of the command line: the session is offered, and nothing else";
    EXPECT_EQ(run("s", false, true), "s");
    EXPECT_EQ(run("w", false, true), "sw");
    EXPECT_EQ(run("r", false, true), "swr");
    EXPECT_EQ(run("", false, true), "swrn");
    EXPECT_EQ(run("wr", false, false), "sn") << "without the option neither workspace nor recent files";
}

LayoutInput InputOf(int width, int height, unsigned panes, int dpi) {
    LayoutInput input;
    input.clientWidth = width;
    input.clientHeight = height;
    input.dpi = dpi;
    input.toolbarHeight = (panes & 1) != 0 ? 34 * dpi / 96 : 0;
    input.statusHeight = (panes & 2) != 0 ? 24 * dpi / 96 : 0;
    input.tabHeight = 28 * dpi / 96;
    input.stickyHeight = 22 * dpi / 96;
    constexpr struct {
        PaneId id;
        PaneArea area;
        unsigned bit;
        int height;
    } kPanes[] = {{PaneId::Output, PaneArea::Bottom, 4, 0},
                  {PaneId::ErrorList, PaneArea::BelowBottom, 8, 150},
                  {PaneId::Terminal, PaneArea::BelowBottom, 16, kLineHeight},
                  {PaneId::Asm, PaneArea::Right, 32, 0},
                  {PaneId::Ai, PaneArea::Right, 64, 0},
                  {PaneId::Tree, PaneArea::Left, 128, 0},
                  {PaneId::Debug, PaneArea::BottomRight, 256, 0},
                  {PaneId::FilesResults, PaneArea::Bottom, 512, 0},
                  {PaneId::Outline, PaneArea::Left, 1024, 0}};
    for (const auto& pane : kPanes)
        input.panes[PaneIndex(pane.id)] = {.area = pane.area,
                                           .shown = (panes & pane.bit) != 0,
                                           .height = pane.height * dpi / 96,
                                           .hasTitle = pane.id != PaneId::Terminal && (panes & 2048) != 0,
                                           .hasBar = pane.id == PaneId::ErrorList};
    input.titleHeight = 20 * dpi / 96;
    input.outputSplit = 400;
    input.sideWidth = 300 * dpi / 96;
    input.treeWidth = 200 * dpi / 96;
    return input;
}

std::vector<PaneRect> Parts(const PaneLayout& l) {
    std::vector<PaneRect> all = {
        l.toolbar,          l.status,       l.tabs,           l.sticky,        l.editor,          l.startPage,
        l.treeSplitter,     l.sideSplitter, l.outputSplitter, l.debugSplitter, l.resultsSplitter, l.outlineSplitter,
        l.errorListSplitter};
    all.insert(all.end(), l.panes.begin(), l.panes.end());
    all.insert(all.end(), l.titles.begin(), l.titles.end());
    return all;
}

std::vector<PaneRect> Visible(const PaneLayout& l) {
    std::vector<PaneRect> all = Parts(l);
    std::erase_if(all, [](const PaneRect& r) { return r.empty(); });
    return all;
}

TEST(Notifications, OfLinesAndOfTheMouse) {
    EXPECT_EQ(LineBeforeMoved(5, 2, true), 4) << "the line moves with what was inserted above its text";
    EXPECT_EQ(LineBeforeMoved(5, 2, false), 5);
    EXPECT_EQ(LineBeforeMoved(5, -2, true), 5);
    EXPECT_TRUE(CouldNameRegister(8));
    EXPECT_FALSE(CouldNameRegister(9));
    for (const int x : {10, 29}) EXPECT_TRUE(IsWithinMargin(x, 10, 20)) << x;
    for (const int x : {9, 30}) EXPECT_FALSE(IsWithinMargin(x, 10, 20)) << x;
    EXPECT_FALSE(IsWithinMargin(10, 10, 0)) << "a hidden one";
    EXPECT_EQ(DwellPlaceOf(kMarginSymbols, -1), DwellPlace::SymbolMargin);
    EXPECT_EQ(DwellPlaceOf(kMarginProblems, 0), DwellPlace::ProblemMargin);
    EXPECT_EQ(DwellPlaceOf(-1, 0), DwellPlace::Text);
    EXPECT_EQ(DwellPlaceOf(-1, -1), DwellPlace::Nothing);
}

// Tries every combination of panes at every size: no panes overlap or leave the window, and the editor stays usable.
TEST(Layout, PanesNeverOverlapAndTheEditorKeepsItsPlace) {
    const struct {
        int width, height, dpi;
    } sizes[] = {{640, 400, 96}, {1000, 700, 96}, {1920, 1040, 96}, {960, 600, 144},
                 {200, 90, 96},  {0, 0, 96},      {480, 320, 192}};
    for (const auto& size : sizes) {
        for (unsigned panes = 0; panes < 4096; ++panes) {
            const std::string name = std::to_string(size.width) + "x" + std::to_string(size.height) + " dpi " +
                                     std::to_string(size.dpi) + " panes " + std::to_string(panes);
            LayoutInput input = InputOf(size.width, size.height, panes, size.dpi);
            if (panes % 3 == 0) input.startPageBelow = 100 * size.dpi / 96;
            const PaneLayout layout = ComputePaneLayout(input);
            const std::vector<PaneRect> rects = Visible(layout);
            for (std::size_t i = 0; i < rects.size(); ++i) {
                const PaneRect& a = rects[i];
                ASSERT_TRUE(a.left >= 0 && a.top >= 0 && a.right <= size.width && a.bottom <= size.height) << name;
                for (std::size_t j = i + 1; j < rects.size(); ++j) {
                    const PaneRect& b = rects[j];
                    ASSERT_TRUE(a.right <= b.left || b.right <= a.left || a.bottom <= b.top || b.bottom <= a.top)
                        << name << " rects " << i << " and " << j;
                }
            }
            if (size.width >= 640 && size.height >= 400) {
                ASSERT_GE(layout.editor.width(), 200 * size.dpi / 96 - 20) << name;
                ASSERT_GE(layout.editor.height(), 25) << name;
            }
        }
    }
}

TEST(Layout, TheDebugPaneSharesTheBottomOrHasItAlone) {
    const struct {
        const char* name;
        bool output;
        int wanted, left, width;
    } cases[] = {{"half", true, 0, 502, 498},
                 {"as wide as asked", true, 300, 700, 300},
                 {"output keeps 160", true, 900, 163, 837},
                 {"keeps 160 itself", true, 10, 840, 160},
                 {"alone", false, 300, 0, 1000}};
    for (const auto& c : cases) {
        LayoutInput input = InputOf(1000, 700, 256 | (c.output ? 4u : 0u), 96);
        input.debugWidth = c.wanted;
        const PaneLayout layout = ComputePaneLayout(input);
        EXPECT_EQ(layout.pane(PaneId::Debug).left, c.left) << c.name;
        EXPECT_EQ(layout.pane(PaneId::Debug).width(), c.width) << c.name;
        EXPECT_EQ(layout.pane(PaneId::Output).empty(), !c.output) << c.name;
        EXPECT_EQ(layout.debugSplitter.empty(), !c.output) << c.name;
        EXPECT_EQ(layout.pane(PaneId::Debug).top, layout.outputSplitter.bottom) << c.name;
        EXPECT_TRUE(!c.output || layout.pane(PaneId::Output).right == layout.debugSplitter.left) << c.name;
    }
    LayoutInput low = InputOf(1000, 700, 256 | 4u, 96);
    low.outputSplit = 650;
    const PaneLayout raised = ComputePaneLayout(low);
    EXPECT_GE(raised.pane(PaneId::Debug).height(), 180) << "its views keep some rows";
    EXPECT_GT(raised.outputSplit, 600) << "what the user wants of the bar is kept";
    low.clientHeight = 300;
    EXPECT_GE(ComputePaneLayout(low).editor.height(), 60) << "the editor keeps its half of a small window";
}

TEST(Layout, OutputAndErrorListKeepSomeRowsEach) {
    LayoutInput input = InputOf(1000, 700, 4 | 8 | 16, 96);
    input.outputSplit = PositionAt(kFirstOutputRatio, 28, 700);  // right for the output alone
    const PaneLayout layout = ComputePaneLayout(input);
    EXPECT_GE(layout.pane(PaneId::Output).height(), 5 * 16);
    EXPECT_GE(layout.pane(PaneId::ErrorList).height(), 24 + 4 * 20) << "with its header";
    EXPECT_EQ(SplitterValueOf(layout, Splitter::Output, 96), layout.outputSplitter.top) << "where a drag begins";
    input.outputSplit = 640;
    EXPECT_EQ(ComputePaneLayout(input).outputSplitter.top, 640) << "the user has put it there";
    LayoutInput results = InputOf(1000, 700, 4 | 512, 96);
    results.outputSplit = PositionAt(kFirstOutputRatio, 28, 700);
    EXPECT_GE(ComputePaneLayout(results).pane(PaneId::FilesResults).height(), 34 + 8 * 19) << "with its buttons";
    input.outputSplit = PositionAt(kFirstOutputRatio, 28, 300);
    input.clientHeight = 300;
    EXPECT_GE(ComputePaneLayout(input).editor.height(), 60) << "the editor keeps its half of a small window";
}

// A screen on which windows are moved one after the other. Each takes along what is at its old place.
class Screen {
public:
    Screen(int width, int height) : width_(width), pixels_(static_cast<std::size_t>(width * height), -1) {}
    // Returns how many pixels of the area are of that window.
    int Count(const PaneRect& area, int window) const {
        int count = 0;
        for (int y = area.top; y < area.bottom; ++y)
            for (int x = area.left; x < area.right; ++x) count += pixels_[At(x, y)] == window ? 1 : 0;
        return count;
    }
    void Paint(const PaneRect& area, int window) {
        for (int y = area.top; y < area.bottom; ++y)
            for (int x = area.left; x < area.right; ++x) pixels_[At(x, y)] = window;
    }

private:
    std::size_t At(int x, int y) const { return static_cast<std::size_t>(y * width_ + x); }
    int width_;
    std::vector<int> pixels_;
};

// Moves the windows from one layout to the other. Returns how many of them lose their picture, or come to where another
// one still is.
int MoveAll(const std::vector<PaneRect>& from, const std::vector<PaneRect>& to, const std::string& name) {
    Screen screen(1200, 900);
    std::vector<PaneMove> moves;
    for (std::size_t i = 0; i < from.size(); ++i) {
        screen.Paint(from[i], static_cast<int>(i));
        moves.push_back({from[i], to[i]});
    }
    constexpr int kNone = -1;
    int harmed = 0;
    std::vector<std::size_t> order = OrderMoves(moves);
    for (const std::size_t i : order) {
        const PaneMove& move = moves[i];
        const int window = static_cast<int>(i);
        PaneRect picture = move.from;
        picture.right = std::min(picture.right, picture.left + move.to.width());
        picture.bottom = std::min(picture.bottom, picture.top + move.to.height());
        const int own = picture.empty() ? 0 : picture.width() * picture.height();
        if (!move.covered) EXPECT_TRUE(screen.Count(picture, window) == own || own == 0) << name << " window " << i;
        screen.Paint(move.from, kNone);
        const bool free = screen.Count(move.to, kNone) == move.to.width() * move.to.height();
        harmed += move.covered || !free ? 1 : 0;
        screen.Paint(move.to, window);
    }
    std::ranges::sort(order);
    for (std::size_t i = 0; i < from.size(); ++i) EXPECT_TRUE(order.size() == from.size() && order[i] == i) << name;
    return harmed;
}

TEST(Layout, AMovedWindowTakesAlongNothingOfAnother) {
    constexpr unsigned kAll = 4095;
    const auto partsAt = [](int width, int height, unsigned panes, int tree = 200, int split = 400) {
        LayoutInput input = InputOf(width, height, panes, 96);
        input.treeWidth = tree;
        input.outputSplit = split;
        return Parts(ComputePaneLayout(input));
    };
    for (const unsigned panes : {kAll, 2u | 4 | 128 | 2048, 4u | 8 | 32 | 64 | 512 | 2048}) {
        const std::string name = "panes " + std::to_string(panes);
        const std::vector<PaneRect> before = partsAt(1000, 700, panes);
        for (const int wide : {-160, -8, -1, 1, 8, 160})
            for (const int high : {-60, 0, 60}) {
                const std::string step = name + " by " + std::to_string(wide) + " and " + std::to_string(high);
                const int harmed = MoveAll(before, partsAt(1000 + wide, 700 + high, panes, 200, 400 + high), step);
                EXPECT_EQ(harmed, 0) << step;
            }
        for (const int tree : {120, 192, 208, 400}) MoveAll(before, partsAt(1000, 700, panes, tree), name + " tree");
        MoveAll(before, partsAt(1000, 700, panes ^ (8 | 64 | 128)), name + " others shown");
    }
    const PaneRect left = {0, 0, 100, 100}, right = {100, 0, 200, 100};
    EXPECT_EQ(MoveAll({left, right}, {right, left}, "they change places"), 2);
}

// Two panes of one area share it, and no other pane changes its place.
TEST(Layout, PanesOfOneAreaShareIt) {
    LayoutInput input = InputOf(1000, 700, 4 | 128, 96);
    const PaneLayout alone = ComputePaneLayout(input);
    const struct {
        PaneArea area;
        PaneId first;
        bool beside;
    } cases[] = {{PaneArea::Bottom, PaneId::Output, true}, {PaneArea::Left, PaneId::Tree, false}};
    for (const auto& c : cases) {
        LayoutInput shared = input;
        shared.panes[PaneIndex(PaneId::Asm)] = {c.area, true, 0};
        const PaneLayout layout = ComputePaneLayout(shared);
        const PaneRect &whole = alone.pane(c.first), &first = layout.pane(c.first), &second = layout.pane(PaneId::Asm);
        const PaneRect& bar = c.beside ? layout.resultsSplitter : layout.outlineSplitter;
        const auto& [before, after] = PaneId::Asm < c.first ? std::tie(second, first) : std::tie(first, second);
        EXPECT_EQ(layout.editor, alone.editor);
        EXPECT_EQ(before.left, whole.left);
        EXPECT_EQ(after.right, whole.right);
        EXPECT_EQ(after.bottom, whole.bottom);
        EXPECT_EQ(c.beside ? before.right : before.bottom, c.beside ? bar.left : bar.top);
        EXPECT_EQ(c.beside ? bar.right : bar.bottom, c.beside ? after.left : after.top);
        EXPECT_LE(std::abs(c.beside ? first.width() - second.width() : first.height() - second.height()), 1);
    }
    EXPECT_EQ(PanesIn(InputOf(1000, 700, 8 | 16, 96), PaneArea::BelowBottom), 0) << "only with the bottom";
}

// What a bar's place says is what a drag starts from: setting it to that moves nothing.
TEST(Layout, APlacedBarHasTheValueThatPutsItThere) {
    LayoutInput input = InputOf(1000, 700, 2047 & ~64u, 96);
    input.resultsWidth = 5000;  // more than there is room for
    input.debugWidth = 1;
    input.outlineHeight = 200;
    const PaneLayout before = ComputePaneLayout(input);
    const auto value = [&](Splitter bar) { return SplitterValueOf(before, bar, 96); };
    EXPECT_EQ(value(Splitter::Outline), 200);
    EXPECT_EQ(value(Splitter::ErrorList), 121) << "half of what the terminal line leaves";
    input.outputSplit = value(Splitter::Output);
    input.sideWidth = value(Splitter::Side);
    input.treeWidth = value(Splitter::Tree);
    input.debugWidth = value(Splitter::Debug);
    input.resultsWidth = value(Splitter::Results);
    input.panes[PaneIndex(PaneId::ErrorList)].height = value(Splitter::ErrorList);
    EXPECT_EQ(Visible(ComputePaneLayout(input)), Visible(before));
}

TEST(Layout, TheStartPageLeavesTheDocumentItsLinesOrHasThePlaceAlone) {
    LayoutInput input = InputOf(1000, 700, 0, 96);
    const PaneRect whole = ComputePaneLayout(input).editor;
    for (const int kept : {0, 120}) {
        input.startPageBelow = kept;
        const PaneLayout layout = ComputePaneLayout(input);
        EXPECT_EQ(layout.editor.height(), kept);
        EXPECT_EQ(layout.startPage.top, whole.top + kept);
        EXPECT_EQ(layout.startPage.bottom, whole.bottom);
    }
    input.startPageBelow = whole.height() - 100;
    EXPECT_TRUE(ComputePaneLayout(input).startPage.empty()) << "no room below the document";
}

TEST(Layout, DraggedSplittersKeepTheirLimits) {
    const struct {
        const char* name;
        Splitter bar;
        int start, x, y, dpi, value;
    } cases[] = {
        {"output follows up and down", Splitter::Output, 400, 50, -30, 96, 370},
        {"debug grows to the left", Splitter::Debug, 300, -40, 9, 96, 340},
        {"debug keeps something", Splitter::Debug, 300, 900, 0, 96, 1},
        {"tree grows to the right", Splitter::Tree, 120, 40, 0, 96, 160},
        {"tree by the length at 96 dpi", Splitter::Tree, 120, 60, 0, 144, 160},
        {"tree at its widest", Splitter::Tree, 120, 900, 0, 96, 800},
        {"side grows to the left", Splitter::Side, 300, -100, 0, 96, 400},
        {"side at its least", Splitter::Side, 300, 900, 0, 96, 150},
        {"error list grows upwards", Splitter::ErrorList, 150, 9, -60, 144, 190},
        {"error list at its least", Splitter::ErrorList, 150, 0, 900, 96, 40},
        {"results grow to the left", Splitter::Results, 300, -30, 0, 96, 330},
        {"outline grows upwards", Splitter::Outline, 200, 0, -30, 96, 230},
    };
    for (const auto& c : cases) EXPECT_EQ(DraggedSplitter(c.bar, c.start, c.x, c.y, c.dpi), c.value) << c.name;
}

TEST(Layout, SplitterLimits) {
    const struct {
        const char* name;
        int total, top, split, expected;
    } cases[] = {
        {"no span", 50, 50, 77, 77},       {"inverted", 40, 50, 77, 77}, {"narrow", 102, 0, 5, 71},
        {"above", 700, 60, 0, 110},        {"below", 700, 60, 900, 647}, {"inside", 700, 60, 400, 400},
        {"smallest span", 103, 0, 80, 50},
    };
    for (const auto& c : cases) EXPECT_EQ(ClampSplitter(c.total, c.top, c.split), c.expected) << c.name;
}

TEST(Layout, RatiosKeepASplitterInPlaceThroughAResizeAndBack) {
    const double ratio = RatioOf(400, 62, 776);
    EXPECT_EQ(PositionAt(ratio, 62, 776), 400);
    EXPECT_LT(PositionAt(ratio, 62, 376), 260);
    EXPECT_EQ(PositionAt(RatioOf(PositionAt(ratio, 62, 1000), 62, 1000), 62, 776), 400);
}

TEST(WindowPlacement, ComesBackWhereAMonitorStillIs) {
    const PaneRect work{0, 0, 1280, 900};
    const struct {
        const char* name;
        PaneRect window, place;
    } cases[] = {
        {"inside", {100, 100, 900, 700}, {100, 100, 900, 700}},
        {"over the edge, but it can be moved", {900, 100, 1600, 700}, {900, 100, 1600, 700}},
        {"on a monitor that is gone", {2000, 100, 2800, 700}, {480, 100, 1280, 700}},
        {"larger than what is left", {-3000, -2000, 1000, 1000}, {0, 0, 1280, 900}},
    };
    for (const auto& c : cases) {
        const PaneRect place = PlaceForReturn(c.window, work, 30);
        EXPECT_TRUE(place == c.place) << c.name << ": " << place.left << "," << place.top << " to " << place.right
                                      << "," << place.bottom;
    }
}

TEST(WindowPlacement, TheStoredSizeFollowsTheDpiAndIsNeverTooSmall) {
    const PaneRect doubled = StoredRectAt({.left = 10, .top = 20, .width = 800, .height = 600, .dpi = 96}, 192);
    EXPECT_TRUE((doubled == PaneRect{10, 20, 1610, 1220}));
    // A window that fitted at 96 dpi does not leave a screen of 150 %; one that is as it was may reach beyond the edge.
    const PaneRect screen = {0, 0, 1280, 900};
    const StoredPlace stored = {.left = 20, .top = 10, .width = 863, .height = 700, .dpi = 96};
    const PaneRect grown = PlaceForReturnAt(stored, 144, screen, 30);
    EXPECT_EQ(grown.width(), 1280);
    EXPECT_TRUE(LiesInside(grown, screen));
    EXPECT_FALSE(LiesInside(PlaceForReturnAt({700, 10, 863, 700, 0, 96}, 96, screen, 30), screen));
    const PaneRect tiny = StoredRectAt({.left = 0, .top = 0, .width = 200, .height = 100, .dpi = 96}, 96);
    EXPECT_TRUE((tiny == PaneRect{0, 0, kMinimumWidth, kMinimumHeight}));
    const PaneRect forged = FarRect(INT_MIN, INT_MAX, INT_MAX, INT_MIN);
    EXPECT_TRUE(forged.width() > 0 && forged.height() == 0);
}

TEST(Layout, ABarThatWasMovedByHandInTheFileCountsItself) {
    Settings settings = {};
    settings.aiSidebarWidth = 200;
    for (const int splitter : {400, 300}) {  // the ratio was stored for 400
        settings.splitter = splitter;
        settings.splitterRatio = {5000, 400};
        SplitRatios ratios;
        RatiosRestore(ratios, settings, {.top = 100, .bottom = 900, .width = 1000, .dpi = 96});
        EXPECT_EQ(settings.splitter, splitter == 400 ? 500 : 300);
        EXPECT_EQ(settings.splitterRatio.of, settings.splitter);
    }
}

TEST(Layout, AtAFirstStartTheOutputTakesLessThanAQuarter) {
    const struct {
        const char* name;
        StoredRatio stored;
        int splitter, placed;
    } cases[] = {{"first start", {0, 0}, 400, 724}, {"chosen", {3750, 400}, 400, 400}, {"by hand", {0, 0}, 500, 500}};
    for (const auto& c : cases) {
        Settings settings = {};
        settings.splitter = c.splitter;
        settings.splitterRatio = c.stored;
        SplitRatios ratios;
        RatiosRestore(ratios, settings, {.top = 100, .bottom = 900, .width = 1000, .dpi = 96});
        EXPECT_EQ(settings.splitter, c.placed) << c.name;
        EXPECT_GT(settings.splitterRatio.ratio, 0) << c.name;
    }
}

TEST(StartPage, ListsFilesWithDigitsThenSessionsAndSamples) {
    static Settings settings = {};
    settings.mruCount = 12;  // more than there are
    for (auto& file : settings.mruFiles) SafeCopyW(file, L"C:\\work\\a.bas");
    settings.sessionMruCount = 3;
    SafeCopyW(settings.sessionMruFiles[0], L"D:\\old\\editor.INI_autosave.kvxsess");
    SafeCopyW(settings.sessionMruFiles[1], L"x.kvxsess");
    SafeCopyW(settings.sessionMruFiles[2], L"C:\\p\\Editor.ini_autosave.kvxsess");
    const std::vector<StartRow> rows =
        StartRows(settings, L"C:\\p\\Editor.ini_autosave.kvxsess", std::vector<std::wstring>(11, L"\\\\s\\t\\b.bas"));
    ASSERT_EQ(rows.size(), 21U) << "the editor's own session is not offered, wherever it is";
    EXPECT_EQ(rows[10].command, IDM_RECENT_SESSION_FIRST + 1) << "its row stays where it is";
    EXPECT_TRUE(rows[0].key == L'1' && rows[8].key == L'9' && rows[9].key == L'0' && rows[10].key == 0);
    EXPECT_TRUE(rows[0].name == L"a.bas" && rows[0].folder == L"C:\\work");
    EXPECT_TRUE(rows[10].name == L"x.kvxsess" && rows[10].folder.empty());
    EXPECT_EQ(rows[20].command - rows[11].command, 9) << "no more samples than commands";
}

TEST(RecentMenu, RowsAreShortAndKeepTheirName) {
    EXPECT_EQ(RecentMenuText(0, L"C:\\a & b\\x.bas"), L"&1 C:\\a && b\\x.bas");
    EXPECT_EQ(RecentMenuText(9, L"C:\\x.bas"), L"1&0 C:\\x.bas");
    const std::wstring deep = L"C:\\sources\\" + std::wstring(200, L'd') + L"\\programs\\main.bas";
    EXPECT_EQ(RecentMenuText(1, deep), L"&2 C:\\sources\\...\\programs\\main.bas");
    EXPECT_LE(RecentMenuText(1, std::wstring(900, L'n')).size(), 73U);
}

TEST(WindowPlacement, IsMovedIntoTheWorkArea) {
    const PaneRect work{0, 30, 1280, 900};
    const struct {
        const char* name;
        PaneRect window;
        int left, top;
    } cases[] = {
        {"inside", {100, 100, 900, 700}, 100, 100},
        {"left of it", {-5000, 100, -4200, 700}, 0, 100},
        {"right of it", {4000, 100, 4800, 700}, 480, 100},
        {"wider than it", {4000, 100, 6000, 700}, 0, 100},
        {"above", {100, -900, 900, -300}, 100, 30},
        {"below", {100, 2000, 900, 2600}, 100, 300},
        {"partly over the edge stays", {1000, 100, 1800, 700}, 1000, 100},
    };
    for (const auto& c : cases) {
        const PaneRect fitted = FitToWorkArea(c.window, work);
        EXPECT_EQ(fitted.left, c.left) << c.name;
        EXPECT_EQ(fitted.top, c.top) << c.name;
        EXPECT_EQ(fitted.width(), c.window.width()) << c.name;
    }
}

}  // namespace
