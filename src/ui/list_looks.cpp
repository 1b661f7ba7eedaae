#include "ui/list_looks.h"

MarkShape MarkShapeOf(ListMark mark) {
    switch (mark) {
        case ListMark::None: return MarkShape::None;
        case ListMark::Current:
        case ListMark::Chosen: return MarkShape::Arrow;
        case ListMark::Breakpoint: return MarkShape::Dot;
        case ListMark::CurrentBreakpoint: return MarkShape::ArrowOnDot;
        case ListMark::Error: return MarkShape::Error;
        case ListMark::Warning: return MarkShape::Warning;
        case ListMark::Unchecked:
        case ListMark::Checked: break;
    }
    return MarkShape::Box;
}

ListColour RowBackOf(const ListRow& row, bool stale, bool selected, bool focused) {
    if (selected) return focused ? ListColour::SelectedBack : ListColour::QuietBack;
    const bool current = row.mark == ListMark::Current || row.mark == ListMark::CurrentBreakpoint;
    return current && !stale ? ListColour::StopBack : ListColour::Back;
}

ListColour MarkColourOf(const ListRow& row, bool stale) {
    if (stale || row.tone == ListTone::Quiet) return ListColour::Quiet;
    switch (MarkShapeOf(row.mark)) {
        case MarkShape::Error:
        case MarkShape::Dot:
        case MarkShape::ArrowOnDot: return ListColour::Error;
        case MarkShape::Warning:
        case MarkShape::Arrow: return ListColour::Arrow;
        default: return ListColour::Text;
    }
}

ListColour CellColourOf(const ListRow& row, bool stale, int column, bool lastColumn) {
    if (stale || row.tone == ListTone::Quiet) return ListColour::Quiet;
    if (row.tone == ListTone::Source) return ListColour::Accent;
    if (row.tone == ListTone::Problem && lastColumn) return ListColour::Error;
    return (row.changed >> column & 1) != 0 ? ListColour::Error : ListColour::Text;
}

int LastFilledCell(const ListRow& row) {
    int last = static_cast<int>(row.cells.size()) - 1;
    while (last > 0 && row.cells[static_cast<std::size_t>(last)].empty()) --last;
    return last;
}
