#include "documents/row_rules.h"

#include <algorithm>

int TabIndexAfterMove(int index, int from, int to) {
    if (index == from) return to;
    if (from < index && index <= to) return index - 1;
    if (to <= index && index < from) return index + 1;
    return index;
}

int TabIndexAfterRemoval(int active, int removed, int count) {
    const int left = count - 1;
    if (left <= 0 || active < 0) return -1;
    return removed < active ? active - 1 : std::min(active, left - 1);
}
