// Layout that windows share: columns and tabs in too little room, lengths by DPI, the parts of bars and panes.
#include "ai/ai_pane_layout.h"
#include "commands/status_bar_text.h"
#include "commands/status_fields.h"
#include "resources/ids.h"
#include "ui/block_size.h"
#include "ui/box_buttons.h"
#include "ui/box_text.h"
#include "ui/dialog_fit.h"
#include "ui/dialog_units.h"
#include "ui/drag_pace.h"
#include "ui/fit.h"
#include "ui/menu_text.h"
#include "ui/scale.h"
#include "ui/wheel.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(BoxText, NoWordIsWiderThanTheScreen) {
    EXPECT_EQ(BreakLongWords(L"a\n\nbc d", 3), L"a\n\nbc d");
    EXPECT_EQ(BreakLongWords(L"C:\\ab\\cd\\ef.bas:", 8), L"C:\\ab\\\ncd\\ef.ba\ns:");
    EXPECT_EQ(BreakLongWords(L"xxxxxxxx C:\\1234567", 5), L"xxxxx\nxxx C:\\\n12345\n67");
    EXPECT_EQ(BreakLongWords(L"\x6587\x6587\x6587", 4), L"\x6587\x6587\n\x6587");
    EXPECT_EQ(ShortenedPath(L"C:\\a.bas", 8), L"C:\\a.bas");
    EXPECT_EQ(ShortenedPath(L"C:\\one\\two\\three.bas", 15), L"C:\\on...ree.bas");
    EXPECT_EQ(ShortenedPath(L"", 15), L"");
    const std::wstring face = L"\xD83D\xDE00";  // two halves that stay together
    for (std::size_t most = 2; most < 12; ++most) {
        const std::wstring broken = BreakLongWords(face + face + face + L"x", most);
        for (std::size_t at = broken.find(L'\n'); at != std::wstring::npos; at = broken.find(L'\n', at + 1))
            EXPECT_NE(broken[at + 1] & 0xFC00, 0xDC00) << most;
    }
}

TEST(DialogFit, TheListGivesWhatTheScreenLacks) {
    // A label, a list, a box below it, a second list beside the box, a button.
    const std::vector<FitPart> dialog = {
        {10, 30, true}, {40, 240, false}, {250, 270, true}, {250, 350, false}, {360, 390, true}};
    std::vector<FitPart> parts = dialog;
    EXPECT_EQ(FitDialogHeight(parts, 70, 60), 70);
    EXPECT_EQ(parts[1].end, 170);
    EXPECT_EQ(parts[2].start, 180);
    EXPECT_EQ(parts[4].end, 320);
    EXPECT_EQ(parts[0].end, 30);
    parts = dialog;
    EXPECT_EQ(FitDialogHeight(parts, 160, 60), 160) << "the second gives what the first cannot";
    EXPECT_EQ(parts[1].end - parts[1].start, 60);
    EXPECT_EQ(parts[3].end - parts[3].start, 80);
    EXPECT_EQ(FitDialogHeight(parts, 1000, 60), 20) << "no more than there is";

    std::vector<FitPart> row = {{10, 100, true}, {110, 400, false}, {280, 340, true}, {350, 400, true}};
    FitDialogWidth(row, 410, 50);
    EXPECT_EQ(row[0].end, 100);
    EXPECT_EQ(row[1].end, 350) << "a field becomes shorter";
    EXPECT_EQ(row[2].start, 230) << "buttons move";
    EXPECT_EQ(row[3].end, 350);

    // Buttons at the right edge, of which some begin before the middle, and a check box in the row above.
    row = {{10, 90, true, 0, 20}, {150, 230, true, 30, 50}, {240, 320, true, 30, 50}, {330, 400, true, 30, 50}};
    FitDialogWidth(row, 410, 60);
    EXPECT_EQ(row[0].start, 10) << "nothing comes over it";
    EXPECT_EQ(row[1].start, 90) << "the next one would lie over it";
    EXPECT_EQ(row[2].start, 180);
    EXPECT_EQ(row[3].end, 340);
}

TEST(DialogUnits, ADialogThatGoesFromScreenToScreenStaysAsItWasMade) {
    const DialogBase first = {7, 15}, bases[] = {{9, 20}, {11, 23}, {13, 31}, {8, 17}, first};
    const PixelPlace made = {11, 23, 187, 31};
    KeptPlace kept = {UnitsOfPlace(made, first), made};
    DialogBase base = first;
    for (const DialogBase& next : bases) {
        kept.units = WantedPlace(&kept, kept.shown, base);
        kept.shown = PixelsOfPlace(kept.units, next);
        base = next;
    }
    EXPECT_EQ(kept.shown, made);
    EXPECT_EQ(PixelsOfPlace({8, 16, 50, 14}, {6, 13}), (PixelPlace{12, 26, 75, 23}));
    const UnitPlace moved = WantedPlace(&kept, {11, 53, 187, 31}, first);  // by its dialog, since then
    EXPECT_EQ(PixelsOfPlace(moved, {14, 30}), (PixelPlace{22, 106, 374, 62}));
}

TEST(DialogFit, LongTextsMoveWhatIsBesideThem) {
    // Two labels with fields, a check box with a free end, and two buttons at the right edge.
    std::vector<GrowPart> parts = {{10, 60, 90, false}, {70, 270, 0, false},   {10, 60, 55, false},
                                   {70, 270, 0, false}, {70, 150, 120, false}, {150, 210, 60, true},
                                   {220, 270, 80, true}};
    EXPECT_EQ(FreeEnd(parts[4], std::vector<GrowPart>{parts[1]}, 4, 270), 270);
    EXPECT_EQ(FreeEnd(parts[0], std::vector<GrowPart>{parts[1]}, 4, 270), 66);
    parts[4].end = 190;
    EXPECT_EQ(GrowDialogParts(parts, 280), 40 + 30);
    EXPECT_EQ(parts[0].end, 100);
    EXPECT_EQ(parts[1].start, 110) << "the field beside the label moves";
    EXPECT_EQ(parts[3].start, 110) << "and so does the other one of its column";
    EXPECT_EQ(parts[1].end, 340) << "to the dialog's new edge";
    EXPECT_EQ(parts[5].start, 190);
    EXPECT_EQ(parts[5].end, 250) << "a button gets no longer than it needs";
    EXPECT_EQ(parts[6].start, 260);
    EXPECT_EQ(parts[6].end, 340);

    // A button above two that share its width.
    std::vector<GrowPart> column = {{200, 280, 70, true}, {200, 238, 50, true}, {242, 280, 38, true}};
    EXPECT_EQ(GrowDialogParts(column, 290), 12);
    EXPECT_EQ(column[0].start, 200);
    EXPECT_EQ(column[0].end, 292);
    EXPECT_EQ(column[2].start, 254);
}

TEST(Columns, ShrinkInProportion) {
    const std::vector<ColumnRoom> columns = {{100, 60}, {50, 50}, {200, 80}};
    const struct {
        int room;
        std::vector<int> widths;
    } cases[] = {
        {350, {100, 50, 200}}, {500, {100, 50, 350}}, {270, {80, 50, 140}}, {190, {60, 50, 80}}, {20, {60, 50, 80}}};
    for (const auto& each : cases) EXPECT_EQ(FitColumns(columns, each.room), each.widths) << each.room;
    EXPECT_TRUE(FitColumns({}, 100).empty());
}

TEST(Wheel, SmallMovementsAddUpToNotches) {
    WheelRest rest;
    int notches = 0;
    for (int i = 0; i < 25; ++i) notches += WheelNotches(rest, 10);
    EXPECT_EQ(notches, 2);
    EXPECT_EQ(WheelNotches(rest, -110), 0) << "turned round: the rest of the other direction does not count";
    EXPECT_EQ(WheelNotches(rest, -10), -1);
    EXPECT_EQ(WheelNotches(rest, 300), 2) << "a fast wheel";
    EXPECT_EQ(WheelNotches(rest, 60), 1);
}

TEST(Tabs, TheSelectedOneIsAmongThoseThatFit) {
    const std::vector<int> widths = {40, 30, 20, 30, 40};
    const struct {
        int room, selected, first;
        TabSpan shown;
    } cases[] = {{160, 0, 0, {0, 5}}, {100, 0, 0, {0, 3}}, {100, 3, 0, {1, 4}}, {100, 4, 1, {2, 5}},
                 {100, 3, 2, {2, 5}}, {100, 1, 2, {1, 4}}, {160, 4, 3, {0, 5}}, {10, 2, 0, {2, 3}}};
    for (const auto& each : cases) {
        const TabSpan got = FitTabs(widths, each.room, each.selected, each.first);
        EXPECT_EQ(got, each.shown) << each.room << " " << each.selected << ": " << got.first << " to " << got.end;
    }
}

TEST(Tabs, BlanksShrinkBeforeTabsGo) {
    const struct {
        int room, pixels;
        bool all;
    } cases[] = {{400, 14, true}, {280, 10, true}, {240, 6, true}, {239, 6, false}, {220, 6, false}, {0, 6, false}};
    for (const auto& each : cases) {
        const TabBlank blank = FitTabBlank(each.room, 180, 5, 6, 14);
        EXPECT_EQ(blank.pixels, each.pixels) << each.room;
        EXPECT_EQ(blank.all, each.all) << each.room;
    }
}

TEST(Scale, RoundsToTheNearestPixelOnBothSidesOfZero) {
    EXPECT_EQ(ScaledTo(5, 96), 5);
    EXPECT_EQ(ScaledTo(5, 144), 8);
    EXPECT_EQ(ScaledTo(-5, 144), -8);
    EXPECT_EQ(ScaledTo(3, 120), 4);
}

TEST(MenuText, AMnemonicOfSeveralItemsGoesOnToTheNext) {
    const std::vector<std::wstring> names = {L"&Save", L"Save &As", L"R&&D", L"&Sort", L"&Dark"};
    const struct {
        int selected;
        wchar_t key;
        int item;
        bool alone;
    } cases[] = {{-1, L's', 0, false}, {0, L'S', 3, false}, {3, L's', 0, false},
                 {2, L'a', 1, true},   {-1, L'd', 4, true}, {-1, L'&', -1, false}};
    for (const auto& c : cases) {
        const MenuMnemonic found = FindMenuMnemonic(names, c.selected, c.key);
        EXPECT_TRUE(found.item == c.item && found.alone == c.alone) << c.selected << static_cast<char>(c.key);
    }
    EXPECT_EQ(SplitMenuText(L"&Save\tCtrl+S").key, L"Ctrl+S");
    EXPECT_EQ(SplitMenuText(L"Clean").key, L"");
    EXPECT_EQ(MenuNameShown(L"Build && &Run"), L"Build & Run");
}

TEST(StatusBar, WhatIsSelected) {
    EXPECT_EQ(SelectionText({.selections = 3, .characters = 120}), L"3 selections, 120 characters");
    EXPECT_EQ(SelectionText({.selections = 3}), L"3 selections");
    EXPECT_EQ(SelectionText({.length = 1234567}), L"1,234,567 bytes in all");
    EXPECT_EQ(SelectionText({.length = 1}), L"1 byte in all");
    EXPECT_EQ(SelectionText({.lines = 2, .characters = 1}), L"2 lines, 1 character");
    EXPECT_EQ(SelectionText({.characters = 1000, .inBytes = true}), L"1,000 bytes");
    EXPECT_EQ(ZoomText(12, 0), L"100 %");
    EXPECT_EQ(ZoomText(12, -20), L"8 %");
    EXPECT_EQ(ZoomText(12, 2), L"117 %") << "rounded";
    EXPECT_EQ(TabText(4, false), L"Blanks 4");
}

TEST(StatusBar, TheKeyboardWalksOverWhatReactsAndIsShown) {
    //                             message, progress, position, selection, encoding, ending, compiler, project, tab, zoom
    constexpr StatusWidths kEnds = {100, 100, 200, 250, 300, 300, 400, 400, 450, 500};
    const auto walk = [&](StatusPart from, bool next) { return StatusPartBeside(kEnds, from, next); };
    EXPECT_EQ(walk(kMessage, true), kPosition) << "no progress is shown";
    EXPECT_EQ(walk(kPosition, true), kEncoding) << "the selection does not react";
    EXPECT_EQ(walk(kEncoding, true), kCompiler);
    EXPECT_EQ(walk(kCompiler, true), kTabWidth);
    EXPECT_EQ(walk(kZoom, true), kZoom);
    EXPECT_EQ(walk(kPosition, false), kPosition);
    EXPECT_EQ(StatusPartAt(kEnds, 99), kMessage);
    EXPECT_EQ(StatusPartAt(kEnds, 100), kPosition);
    EXPECT_EQ(StatusPartAt(kEnds, 600), kZoom);
    EXPECT_TRUE(StatusFieldIsHidden(StatusFieldToggled(0, kZoom), kZoom));
    EXPECT_FALSE(StatusFieldIsHidden(-1, kMessage)) << "always there";
    EXPECT_EQ(StatusFieldToggled(StatusFieldToggled(4, kZoom), kZoom), 4);
}

TEST(StatusBar, AClickOnTheProgressStopsWhatItShowsFirst) {
    EXPECT_EQ(StatusProgressStop(false, true).command, IDM_FILES_STOP);
    EXPECT_EQ(StatusProgressStop(true, true).command, IDM_BUILD_STOP);
    EXPECT_EQ(StatusProgressStop(false, false).command, 0);
    EXPECT_STRNE(StatusProgressStop(true, false).tip, StatusProgressStop(false, true).tip);
}

TEST(StatusBar, TheMessageKeepsItsRoomAndTheLeastNeededPartsGo) {
    constexpr StatusWidths kWanted = {140, 96, 130, 110, 64, 52, 168};
    const auto width = [&](int bar, StatusPart part) {
        const auto ends = FitStatusParts(bar, kWanted);
        return ends[part] - (part == kMessage ? 0 : ends[static_cast<std::size_t>(part) - 1]);
    };
    EXPECT_EQ(FitStatusParts(1000, kWanted).back(), 1000);
    EXPECT_EQ(width(1000, kMessage), 380);
    EXPECT_EQ(width(1000, kSelection), 110);
    EXPECT_EQ(width(700, kSelection), 0) << "goes first";
    EXPECT_EQ(width(700, kProgress), 96);
    EXPECT_EQ(width(480, kProgress), 0);
    EXPECT_EQ(width(480, kPosition), 130) << "stays";
    EXPECT_EQ(width(480, kCompiler), 168) << "stays";
}

TEST(AiPane, ItsPartsShareTheAreaAndVanishWithIt) {
    const AiPaneLayout layout = LayOutAiPane({700, 60, 1000, 660}, 96);
    EXPECT_EQ(layout.chat, (PaneRect{700, 60, 1000, 630}));
    EXPECT_EQ(layout.input, (PaneRect{700, 630, 936, 660}));
    EXPECT_EQ(layout.send, (PaneRect{936, 630, 1000, 660}));
    EXPECT_EQ(LayOutAiPane({0, 0, 40, 20}, 96).chat.height(), 10) << "half of what there is";
    EXPECT_TRUE(LayOutAiPane({}, 96).send.empty());
}

TEST(BlockSize, GoesHalfWayToWhatTheTimeAllows) {
    const struct {
        const char* name;
        std::size_t lines, inserted;
        double milliseconds;
        std::size_t next;
    } cases[] = {
        {"as long as wanted", 400, 400, 30, 400}, {"twice as fast", 400, 400, 15, 600},
        {"one slow block", 400, 400, 3000, 202},  {"not full: says nothing", 400, 399, 3000, 400},
        {"never tiny", 60, 60, 100000, 50},       {"never endless", 1900, 1900, 0, 2000},
        {"more than a block", 100, 200, 30, 150},
    };
    for (const auto& each : cases) {
        BlockSize size = {.lines = each.lines};
        BlockSizeLearn(size, each.inserted, each.milliseconds);
        EXPECT_EQ(size.lines, each.next) << each.name;
    }
}

TEST(BoxButtons, LongNamesFindRoom) {
    const struct {
        const char* name;
        BoxButtons row;
        std::vector<int> wanted;
        int client;
        std::vector<BoxButton> buttons;
    } cases[] = {
        {"short names change nothing", {300, {{60, 80}, {160, 80}}}, {40, 50}, 300, {{60, 80}, {160, 80}}},
        {"in the middle", {400, {{110, 80}, {210, 80}}}, {120, 40}, 400, {{90, 120}, {230, 80}}},
        {"at the right edge", {400, {{200, 80}, {290, 80}}}, {120, 40}, 400, {{160, 120}, {290, 80}}},
        {"the box grows",
         {280, {{10, 80}, {100, 80}, {190, 80}}},
         {200, 80, 80},
         400,
         {{10, 200}, {220, 80}, {310, 80}}},
    };
    for (const auto& each : cases) {
        BoxButtons wider = WiderBoxButtons(each.row, each.wanted);
        for (int again = 0; again < 2; ++again) {
            EXPECT_EQ(wider.client, each.client) << each.name;
            for (std::size_t i = 0; i < each.buttons.size(); ++i) {
                EXPECT_EQ(wider.buttons[i].left, each.buttons[i].left) << each.name;
                EXPECT_EQ(wider.buttons[i].width, each.buttons[i].width) << each.name;
            }
            wider = WiderBoxButtons(wider, each.wanted);  // nothing more
        }
    }
}

TEST(DragPace, TwoLateStepsMakeASlowDragUntilTheHandIsStill) {
    DragPace pace;
    double now = 1000;
    const auto step = [&](double takes, double allowance = 0) {
        DragStepBegins(pace, now);
        DragStepBegins(pace, now + takes / 2);  // a second layout before the painting belongs to the same step
        DragStepEnds(pace, now + takes, allowance);
        now += takes + 10;
        return DragIsSlow(pace, now);
    };
    EXPECT_FALSE(step(40)) << "one may be chance";
    EXPECT_FALSE(step(10));
    EXPECT_FALSE(step(40)) << "not one after the other";
    EXPECT_FALSE(step(30, 16)) << "what tells of the end came late";
    EXPECT_FALSE(step(40));
    EXPECT_TRUE(step(40));
    EXPECT_TRUE(step(5)) << "the steps are fast because something is left out";
    EXPECT_TRUE(step(5));
    now += kStillMs;
    EXPECT_FALSE(DragIsSlow(pace, now));
    EXPECT_FALSE(step(40)) << "a new drag begins anew";
    DragStepEnds(pace, now + 500, 0);
    EXPECT_FALSE(DragIsSlow(pace, now)) << "an end without a beginning is no step";
}

}  // namespace
