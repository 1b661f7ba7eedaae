// Which part of a document has its colours. Pure.
#include "editor/colour_marks.h"

#include <algorithm>

namespace {

constexpr std::ptrdiff_t kNearEnough = 32 << 10;  // bytes above the view that one paint can colour too

std::ptrdiff_t Moved(std::ptrdiff_t mark, const ColourChange& change) {
    if (mark <= change.position) return mark;
    return std::max(mark - change.deleted, change.position) + change.inserted;
}

}  // namespace

void ColourMarksOnChange(ColourMarks* marks, const ColourChange& change) {
    marks->known = Moved(marks->known, change);
    marks->settles = std::max(Moved(marks->settles, change), change.settles);
    marks->coloured = std::min(marks->coloured, change.lineStart);
    if (change.position < marks->view.start)
        marks->view = {};
    else
        marks->view.end = std::clamp(Moved(marks->view.end, change), marks->view.start,
                                     std::max(marks->view.start, change.lineStart));
}

void ColourMarksOnPass(ColourMarks* marks, std::ptrdiff_t to, bool same, std::ptrdiff_t next) {
    const bool settled = same && to >= marks->settles;
    marks->coloured = settled ? std::max(to, marks->known) : to;
    marks->known = std::max(marks->known, marks->coloured);
    marks->settles = marks->coloured == marks->known ? 0 : std::max(marks->settles, next);
}

void ColourMarksOnView(ColourMarks* marks, PaneSpan view, std::ptrdiff_t next) {
    marks->settles = std::max(marks->settles, next);
    marks->view = view;
}

void ColourMarksOnReset(ColourMarks* marks, std::ptrdiff_t position) {
    marks->coloured = std::min(marks->coloured, position);
    marks->known = marks->coloured;
    marks->view = {};
}

PaintColours ColoursForPaint(const ColourMarks& marks, PaneSpan visible) {
    if (marks.coloured >= visible.end) return PaintColours::Ready;
    if (visible.start - marks.coloured <= kNearEnough) return PaintColours::FromMark;
    if (visible.start < marks.view.start || visible.start > marks.view.end) return PaintColours::VisibleOnly;
    return visible.end <= marks.view.end ? PaintColours::Ready : PaintColours::FromView;
}

std::ptrdiff_t ColourSliceWanted(const ColourMarks& marks, std::ptrdiff_t chunk, std::ptrdiff_t length) {
    constexpr std::ptrdiff_t kBeyond = 2 << 10;
    const bool maySettle = marks.settles < marks.known;
    const std::ptrdiff_t soon = maySettle ? std::max(marks.settles, marks.coloured) + kBeyond : length;
    return std::min({marks.coloured + chunk, soon, length});
}
