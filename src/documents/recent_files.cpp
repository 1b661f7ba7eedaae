// The "most recent first" lists of the settings. Pure.
#include "documents/recent_files.h"

#include "base/bounded_text.h"
#include "base/path.h"

#include <algorithm>
#include <cwchar>

namespace {

bool IsSame(std::wstring_view a, std::wstring_view b, RecentMatch match) {
    return match == RecentMatch::Exact ? a == b : PathEqualsIgnoreCase(a, b);
}

}  // namespace

int RecentListAdd(wchar_t* rows, std::size_t rowCapacity, int capacity, int count, std::wstring_view text,
                  RecentMatch match) {
    count = std::clamp(count, 0, capacity);
    if (text.empty() || text.size() >= rowCapacity || capacity < 1) return count;
    const auto row = [&](int index) { return rows + static_cast<std::size_t>(index) * rowCapacity; };

    int place = 0;
    while (place < count && !IsSame(row(place), text, match)) ++place;
    const bool isNew = place == count;
    // `text` may point into one of the rows, so the row is rotated to the front and `text` is not read after that.
    const int last = isNew ? std::min(count, capacity - 1) : place;
    if (isNew)
        SafeCopyW(row(last), rowCapacity, text);
    else if (text.data() != row(place))
        SafeCopyW(row(place), rowCapacity, text);
    std::rotate(row(0), row(last), row(last) + rowCapacity);
    return isNew ? std::min(count + 1, capacity) : count;
}
