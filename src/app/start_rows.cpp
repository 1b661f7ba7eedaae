#include "app/start_rows.h"

#include "app/recent_text.h"
#include "base/path.h"
#include "base/texts.h"
#include "resources/ids.h"

#include <algorithm>

namespace {

void AddStartRow(std::vector<StartRow>& rows, int command, const wchar_t* kind, std::wstring_view path) {
    const std::size_t slash = path.find_last_of(L"\\/");
    const std::size_t name = slash == std::wstring_view::npos ? 0 : slash + 1;
    rows.push_back({.command = command,
                    .key = 0,
                    .kind = kind,
                    .name = std::wstring(path.substr(name)),
                    .folder = std::wstring(path.substr(0, name > 0 ? name - 1 : 0))});
}

int KeptRows(std::int32_t count) { return std::clamp<int>(count, 0, kMruCapacity); }

}  // namespace

std::vector<StartRow> StartRows(const Settings& settings, std::wstring_view ownSession,
                                const std::vector<std::wstring>& samples) {
    std::vector<StartRow> rows;
    for (int i = 0; i < KeptRows(settings.mruCount); ++i) {
        AddStartRow(rows, IDM_RECENT_FILE_FIRST + i, Text(L"File"), settings.mruFiles[i]);
        rows.back().key = static_cast<wchar_t>(i == 9 ? L'0' : L'1' + i);
    }
    for (const int i : SessionRowsToOffer(settings, ownSession))
        AddStartRow(rows, IDM_RECENT_SESSION_FIRST + i, Text(L"Session"), settings.sessionMruFiles[i]);
    for (std::size_t i = 0; i < std::min<std::size_t>(samples.size(), kMruCapacity); ++i)
        AddStartRow(rows, IDM_SAMPLE_FIRST + static_cast<int>(i), Text(L"Sample"), samples[i]);
    return rows;
}
