// Measures the search bar in a source of 100 MB: until all matches are counted, and whether the window answers meanwhile.
#include "bench.h"

#include "resources/ids.h"

#include <algorithm>
#include <string>

namespace {

constexpr std::size_t kBytes = 100'000'000;
constexpr int kRuns = 5;
constexpr double kLimitMs = 60'000;
constexpr DWORD kPauseMs = 2;
constexpr wchar_t kText[] = L"MOD 3 = 0";  // once in each procedure
constexpr int kLeastMatches = 200'000;

std::wstring TextOf(HWND window) {
    wchar_t text[64] = {};
    Ask(window, WM_GETTEXT, 64, reinterpret_cast<LPARAM>(text));
    return text;
}

// "1 of 300000"; while it counts "1 of 2000..."
bool IsCounted(const std::wstring& text) {
    const std::size_t of = text.find(L"of ");
    return of != std::wstring::npos && !text.ends_with(L"...") && std::stoi(text.substr(of + 3)) >= kLeastMatches;
}

struct FindTimes {
    std::vector<double> counted, slowest;
};

void FindOnce(const Program& editor, FindTimes* times) {
    Ask(editor.Main(), WM_COMMAND, IDM_SEARCH_INCREMENTAL);
    const HWND bar = GetDlgItem(editor.Main(), IDC_FIND_BAR);
    const HWND field = GetDlgItem(bar, IDC_BAR_FIELD), count = GetDlgItem(bar, IDC_BAR_COUNT);
    Ask(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L""));
    Ask(editor.Main(), WM_NULL);
    double slowest = 0;
    const double start = NowMs();
    Ask(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(kText));
    for (double asked = start; !IsCounted(TextOf(count)); asked = NowMs()) {
        Ask(editor.Main(), WM_NULL);
        slowest = std::max(slowest, NowMs() - asked);
        if (asked - start > kLimitMs) Die("the matches are not counted: " + Narrow(TextOf(count)));
        Sleep(kPauseMs);
    }
    times->counted.push_back(NowMs() - start);
    times->slowest.push_back(slowest);
    Ask(bar, WM_COMMAND, IDC_BAR_CLOSE);
}

}  // namespace

void MeasureFind() {
    const Folder folder;
    std::size_t size = 0;
    const std::wstring file = SourceOfSize(kBytes, &size);
    Program editor(Kind::Editor, folder, file);
    editor.AwaitReady(size);
    editor.SettledMemory();
    FindTimes times;
    for (int i = 0; i < Runs(kRuns); ++i) FindOnce(editor, &times);
    Report({.work = "all matches in 100 MB counted by the search bar", .program = times.counted});
    Report({.work = "- slowest answer of the window meanwhile",
            .program = times.slowest,
            .figure = Figure::Most,
            .maxValue = 100});
}
