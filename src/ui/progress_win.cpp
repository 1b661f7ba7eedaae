#include "ui/progress.h"

#include "base/events.h"

#include <array>
#include <cstddef>

void ProgressShow(ProgressOf work, const std::wstring& text) {
    static std::array<std::wstring, static_cast<std::size_t>(ProgressOf::Count)> shown;
    std::wstring& own = shown[static_cast<std::size_t>(work)];
    if (own == text) return;
    own = text;
    std::wstring all;
    for (const std::wstring& each : shown) {
        if (!all.empty() && !each.empty()) all += L"   ";
        all += each;
    }
    g_events.statusProgress(all.c_str());
}
