// Where the window of the file finder and its parts stand. Pure.
#include "commands/quick_layout.h"

#include "ui/scale.h"

#include <algorithm>

QuickLayout QuickLayoutOf(const QuickSizes& sizes) {
    const auto scaled = [&sizes](int length) { return ScaledTo(length, sizes.dpi); };
    constexpr int kMostRows = 14, kWidth = 640, kWidthWithPreview = 1100, kLeastWithPreview = 780;
    const int edge = scaled(8), inner = scaled(5);
    const QuickArea& editor = sizes.editor.Width() > 0 ? sizes.editor : sizes.room;
    const int most = std::max(sizes.room.Width() - 2 * edge, 0);
    // A narrow editor has panes beside it, over which the window may stand.
    int width = std::min(std::max(editor.Width() - 2 * edge, scaled(kWidth)), most);
    const bool preview = sizes.preview && width >= scaled(kLeastWithPreview);
    width = std::min(width, scaled(preview ? kWidthWithPreview : kWidth));

    QuickLayout layout;
    const int box = sizes.textHeight + 2 * inner, status = sizes.textHeight + inner;
    const int fixed = edge + box + inner + status;
    const int high = std::max(sizes.room.bottom - editor.top - edge - fixed, 0);
    const int rows = std::clamp(high / std::max(sizes.rowHeight, 1), 1, kMostRows);
    const int middle = (editor.left + editor.right) / 2;
    const int left = std::clamp(middle - width / 2, sizes.room.left + edge,
                                std::max(sizes.room.right - edge - width, sizes.room.left + edge));
    layout.window = {left, editor.top, left + width, editor.top + fixed + rows * sizes.rowHeight};
    layout.box = {edge, edge, width - edge, edge + box};
    layout.field = {layout.box.left + inner, layout.box.top + inner, layout.box.right - inner,
                    layout.box.bottom - inner};
    const int top = layout.box.bottom + inner, bottom = top + rows * sizes.rowHeight;
    const int split = preview ? edge + (width - 2 * edge) * 11 / 20 : width - edge;
    layout.list = {edge, top, split, bottom};
    if (preview) layout.preview = {split + inner, top, width - edge, bottom};
    layout.status = {edge, bottom, width - edge, bottom + status};
    return layout;
}
