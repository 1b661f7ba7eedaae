// Turns the fields of the "go to line" dialog into a position. Pure.
#include "documents/goto_line.h"

#include "base/decimal.h"

#include <algorithm>

int GotoNumber(std::wstring_view field) {
    const std::size_t start = field.find_first_not_of(L" \t\n\v\f\r");
    return start == std::wstring_view::npos ? 0 : DecimalNumber(field.substr(start));
}

GotoPlace GotoPlaceOf(std::wstring_view field) {
    const std::size_t sign = field.find_first_of(L":,");
    GotoPlace place = {.line = GotoNumber(field)};
    if (sign != std::wstring_view::npos) place.column = std::max(0, GotoNumber(field.substr(sign + 1)));
    return place;
}

std::ptrdiff_t GotoLineIndex(int line, std::ptrdiff_t lineCount) {
    return line < 1 ? -1 : std::min<std::ptrdiff_t>(line, lineCount) - 1;
}
