// The looks of a list's rows: colours by their role, and the shape of a mark. Pure.
#pragma once

#include "ui/list_rows.h"

enum class ListColour : std::uint8_t {
    Back,
    SelectedBack,  // with the keyboard in the list
    QuietBack,     // selected without it
    StopBack,      // where the program stopped
    Text,
    Quiet,
    Accent,
    Error,
    Arrow,
};
// `stale`: the whole list is out of date.
ListColour RowBackOf(const ListRow& row, bool stale, bool selected, bool focused);
ListColour MarkColourOf(const ListRow& row, bool stale);
ListColour CellColourOf(const ListRow& row, bool stale, int column, bool lastColumn);

enum class MarkShape : std::uint8_t { None, Arrow, Dot, ArrowOnDot, Box, Error, Warning };
MarkShape MarkShapeOf(ListMark mark);

// The last cell with text. Its text is drawn over the empty cells after it.
int LastFilledCell(const ListRow& row);
