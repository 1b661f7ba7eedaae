// Where the window of Go to File stands, and what its preview shows.
#include "commands/quick_layout.h"
#include "search/preview_lines.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(QuickLayout, FitsEveryWindowAndScale) {
    for (const int dpi : {96, 144, 192})
        for (const int width : {480, 900, 1280, 3000})
            for (const int height : {330, 700, 1400})
                for (const bool pane : {false, true}) {  // beside the editor
                    const QuickArea room = {0, 100, width, height - 20};
                    const QuickArea editor = {pane ? width / 2 : 0, 122, width, height / 2};
                    const QuickLayout layout = QuickLayoutOf({.room = room,
                                                              .editor = editor,
                                                              .dpi = dpi,
                                                              .textHeight = dpi / 6,
                                                              .rowHeight = dpi / 4,
                                                              .preview = true});
                    SCOPED_TRACE(std::to_string(dpi) + " dpi, " + std::to_string(width) + "x" + std::to_string(height));
                    EXPECT_GE(layout.window.left, room.left);
                    EXPECT_LE(layout.window.right, room.right);
                    EXPECT_EQ(layout.window.top, editor.top);
                    const int rows = (layout.list.bottom - layout.list.top) / (dpi / 4);
                    EXPECT_EQ((layout.list.bottom - layout.list.top) % (dpi / 4), 0) << "no half rows";
                    EXPECT_TRUE(rows == 1 || layout.window.bottom <= room.bottom);
                    EXPECT_GT(layout.field.right, layout.field.left);
                    EXPECT_LE(layout.status.bottom, layout.window.bottom - layout.window.top);
                    const bool preview = layout.preview.Width() > 0;
                    EXPECT_EQ(preview, layout.window.Width() * 96 / dpi >= 780);
                    EXPECT_GT(preview ? layout.preview.left : layout.window.Width(), layout.list.right);
                }
    const QuickLayout none = QuickLayoutOf(
        {.room = {0, 60, 1200, 760}, .editor = {}, .dpi = 96, .textHeight = 16, .rowHeight = 24, .preview = false});
    EXPECT_EQ(none.window.left, 280) << "in the middle, without an editor too";
}

TEST(PreviewLines, ShowLinesAroundAPlace) {
    std::string text;
    for (int i = 1; i <= 100; ++i)
        text += "line " + std::to_string(i) + (i % 3 == 0 ? "\r" : i % 3 == 1 ? "\n" : "\r\n");
    const PreviewLines start = PreviewLinesOf(text, 0, 3);
    EXPECT_EQ(start.first, 1);
    EXPECT_EQ(start.lines, (std::vector<std::wstring>{L"line 1", L"line 2", L"line 3"}));
    const PreviewLines around = PreviewLinesOf(text, 50, 20);
    EXPECT_EQ(around.lines.at(static_cast<std::size_t>(50 - around.first)), L"line 50");
    EXPECT_EQ(PreviewLinesOf("a\tb\x01\xC3\xA4", 0, 5).lines, (std::vector<std::wstring>{L"a   b \u00e4"}));
    EXPECT_LE(PreviewLinesOf(std::string(5000, 'x'), 0, 5).lines.at(0).size(), 400u);
    for (const std::string& other : {std::string(), std::string("MZ\0", 3)})
        EXPECT_FALSE(PreviewLinesOf(other, 0, 5).problem.empty());
    EXPECT_FALSE(PreviewLinesOf("a\nb", 500, 5).problem.empty());
}

}  // namespace
