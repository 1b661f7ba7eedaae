// Measures the project tree over 100,000 files: from the command that shows it until its first rows are painted, with the
// longest time in which the window did not answer. Once they are in 1,000 folders, once in one, beside a bare listing of
// that folder.
#include "bench.h"

#include "resources/ids.h"

#include <commctrl.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr int kFiles = 100'000;
constexpr int kFilesOfFolder = 100;
constexpr int kRounds = 5;
constexpr double kGoalMs = 100;
constexpr double kLimitMs = 120'000;
constexpr double kStillMs = 1500;  // the window is watched on after the first rows, while the rest is read
constexpr std::string_view kSource = "' a file\r\n";

// Under Wine, a name that is made is compared with all others of its folder, unless it is given as one of the system below.
std::wstring QuickName(const std::wstring& path) {
    const bool wine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    if (!wine || !path.starts_with(L"Z:")) return path;
    std::wstring below = L"\\\\?\\unix" + path.substr(2);
    std::replace(below.begin() + 8, below.end(), L'\\', L'/');
    return below;
}

void MakeFiles(const std::wstring& root, bool inFolders) {
    for (int i = 0; i < kFiles; ++i) {
        const std::wstring folder = inFolders ? root + L"d" + std::to_wstring(i / kFilesOfFolder) + L"\\" : root;
        if (i % kFilesOfFolder == 0) std::filesystem::create_directories(folder);
        const std::wstring path = QuickName(folder + L"file" + std::to_wstring(i) + L".bas");
        const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE) Die("a file of the project cannot be made");
        CloseHandle(file);
    }
}

std::vector<double> ListTimes(const std::wstring& root) {
    std::vector<double> times;
    for (int round = 0; round < Runs(kRounds); ++round) {
        const double start = NowMs();
        WIN32_FIND_DATAW found;
        const HANDLE find = FindFirstFileExW((root + L"*").c_str(), FindExInfoBasic, &found, FindExSearchNameMatch,
                                             nullptr, FIND_FIRST_EX_LARGE_FETCH);
        if (find == INVALID_HANDLE_VALUE) Die("the folder cannot be listed");
        times.push_back(NowMs() - start);  // Wine has then read all of the folder, and gives it out
        FindClose(find);
    }
    return times;
}

struct TreeTimes {
    std::vector<double> shown;
    std::vector<double> blocked;
};

void ShowOnce(const Program& editor, HWND tree, LRESULT rows, TreeTimes* times) {
    double blocked = 0;
    const auto look = [&](UINT message) {
        // The command that shows the pane also places and paints the others, so it does not count.
        const bool shown = IsWindowVisible(tree) != FALSE;
        const double asked = NowMs();
        const LRESULT answer = Ask(tree, message);
        if (shown) blocked = std::max(blocked, NowMs() - asked);
        Pause(kLookMs);
        return answer;
    };
    const double start = NowMs();
    PostMessageW(editor.Main(), WM_COMMAND, IDM_VIEW_TREE, 0);
    while (look(TVM_GETCOUNT) < rows || IsWindowVisible(tree) == FALSE)
        if (NowMs() - start > kLimitMs) Die("the project tree is not filled");
    AwaitPainted(tree, start + kLimitMs);
    times->shown.push_back(NowMs() - start);
    for (const double end = NowMs() + kStillMs; NowMs() < end;) look(WM_NULL);
    times->blocked.push_back(blocked);
}

void MeasureRoot(const char* work, bool inFolders, LRESULT rows) {
    TreeTimes times;
    std::vector<double> floor;
    const Folder folder;
    const std::wstring root = folder.Path() + L"project\\";
    MakeFiles(root, inFolders);
    if (!inFolders) floor = ListTimes(root);
    const std::wstring file = folder.Path() + L"a.bas";
    WriteText(file, kSource);
    const std::wstring ini = folder.Path() + L"Editor.ini";
    if (!WritePrivateProfileStringW(L"Project", L"Root", root.c_str(), ini.c_str()))
        Die("the project folder cannot be set");
    for (int round = 0; round < Runs(kRounds); ++round) {
        WritePrivateProfileStringW(L"Project", L"ShowProjectTree", L"0", ini.c_str());
        Program editor(Kind::Editor, folder, file);
        editor.AwaitReady(kSource.size());
        editor.SettledMemory();
        ShowOnce(editor, GetDlgItem(editor.Main(), IDC_PROJECT_TREE), rows, &times);
    }
    Report({.work = work,
            .floor = floor,
            .program = times.shown,
            .maxValue = kGoalMs,
            .note = floor.empty() ? "" : "floor: a bare listing",
            .headline = true});
    Report({.work = "- slowest answer of the window, " + std::string(inFolders ? "in 1,000 folders" : "in one folder"),
            .program = times.blocked,
            .figure = Figure::Most,
            .maxValue = 50,
            .headline = true});
}

}  // namespace

void MeasureTree() {
    MeasureRoot("100,000 files in 1,000 folders, first level shown", true, 1 + kFiles / kFilesOfFolder);
    MeasureRoot("100,000 files in one folder, first rows shown", false, 1 + 200);
}
