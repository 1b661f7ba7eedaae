#include "search/find_bar_rules.h"

#include "base/texts.h"

#include <algorithm>

namespace {

using enum FindBarPart;

constexpr int Index(FindBarPart part) { return static_cast<int>(part); }

int WidthOf(const FindBarSizes& sizes, const bool (&shown)[kFindBarParts]) {
    int width = sizes.gap;
    for (int i = 0; i < kFindBarParts; ++i)
        if (shown[i]) width += sizes.widths[i] + sizes.gap;
    return width;
}

}  // namespace

void PlaceFindBar(const FindBarSizes& sizes, int width, FindBarPlace (&places)[kFindBarParts]) {
    bool shown[kFindBarParts];
    std::ranges::fill(shown, true);
    for (const FindBarPart part : {Previous, Next, Close, Count, Word, Case, Regex})
        if (WidthOf(sizes, shown) > width) shown[Index(part)] = false;
    int spare = std::max(0, width - WidthOf(sizes, shown));
    int x = sizes.gap;
    for (int i = 0; i < kFindBarParts; ++i) {
        places[i] = {};
        if (!shown[i]) continue;
        int own = sizes.widths[i];
        // The field gets two thirds of what is left, but is never wider than twice its least.
        if (i == Index(Field)) {
            const int more = shown[Index(Count)] ? std::min(spare * 2 / 3, own) : spare;
            own += more;
            spare -= more;
        } else if (i == Index(Count)) {
            own += spare;
        }
        own = std::max(0, std::min(own, width - x));
        places[i] = {x, (sizes.height - sizes.controlHeight) / 2, own, sizes.controlHeight};
        x += own + sizes.gap;
    }
}

std::wstring FindBarCountText(const FindBarCount& count) {
    if (count.total == 0) return count.counting ? Text(L"Searching...") : Text(L"No matches");
    const std::wstring number = std::to_wstring(count.total) + (count.counting ? L"..." : L"");
    const std::wstring total = count.capped ? TextWith(L"more than {1}", {number}) : number;
    if (count.current > 0) return TextWith(L"{1} of {2}", {std::to_wstring(count.current), total});
    return TextWith(count.total == 1 && !count.counting ? English(L"{1} match") : English(L"{1} matches"), {total});
}
