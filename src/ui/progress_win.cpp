#include "ui/progress.h"

#include "base/events.h"

#include <array>
#include <cstddef>

static std::array<std::wstring, static_cast<std::size_t>(ProgressOf::Count)> g_shown;

void ProgressShow(ProgressOf work, const std::wstring& text) {
    std::wstring& own = g_shown[static_cast<std::size_t>(work)];
    if (own == text) return;
    own = text;
    std::wstring all;
    for (const std::wstring& each : g_shown) {
        if (!all.empty() && !each.empty()) all += L"   ";
        all += each;
    }
    g_events.statusProgress(all.c_str());
}

bool ProgressRuns(ProgressOf work) { return !g_shown[static_cast<std::size_t>(work)].empty(); }
