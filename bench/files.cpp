// Measures Find in Files over 10,000 files with 200 MB, with a warm cache: until all is found, until the first hits are
// shown, until a stopped search has ended, and how fast the window answers meanwhile. The floor is a bare program that
// walks the tree and reads and searches each file on two threads.
#include "bench.h"

#include <commctrl.h>
#include <tlhelp32.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "resources/ids.h"

namespace {

constexpr int kFolders = 200, kFilesEach = 50;
constexpr std::size_t kFileBytes = 20'000;
constexpr int kRuns = 5;
constexpr wchar_t kText[] = L"grand_total";  // in every hundredth file

std::string Lines(std::size_t bytes) {
    std::string text;
    for (int i = 0; text.size() < bytes; ++i)
        text += "  count = count + Value(" + std::to_string(i) + ") ' the grand sum of total values\r\n";
    return text;
}

// The folder with the files; made once a run.
std::wstring Tree() {
    const std::wstring root = RunFolder() + L"tree";
    if (std::filesystem::exists(root)) return root;
    const std::string plain = Lines(kFileBytes);
    const std::string hit = plain.substr(0, kFileBytes / 2) + "\r\ngrand_total = 1\r\n" + plain.substr(kFileBytes / 2);
    for (int i = 0; i < kFolders * kFilesEach; ++i) {
        const std::wstring folder = root + L"\\part" + std::to_wstring(i / kFilesEach);
        if (i % kFilesEach == 0) std::filesystem::create_directories(folder);
        WriteText(folder + L"\\module" + std::to_wstring(i) + L".bas", i % 100 == 0 ? hit : plain);
    }
    return root;
}

struct ResultWindows {
    HWND pane = nullptr, list = nullptr, button = nullptr;
};

ResultWindows Results(const Program& editor) {
    const HWND pane = GetDlgItem(editor.Main(), IDC_FILES_PANE);
    return {pane, GetDlgItem(pane, IDC_FILES_LIST), GetDlgItem(pane, IDC_FILES_AGAIN)};
}

// The button says "Stop" while the search runs.
bool Runs(const ResultWindows& results) {
    wchar_t text[32] = {};
    SendMessageW(results.button, WM_GETTEXT, 32, reinterpret_cast<LPARAM>(text));
    return text[0] == L'S' && text[1] == L't';
}

int ThreadCount(const Program& editor) {
    const DWORD process = GetProcessId(editor.Process());
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 thread = {};
    thread.dwSize = sizeof(thread);
    int count = 0;
    for (BOOL more = Thread32First(snapshot, &thread); more != FALSE; more = Thread32Next(snapshot, &thread))
        count += thread.th32OwnerProcessID == process ? 1 : 0;
    CloseHandle(snapshot);
    return count;
}

// Fills the dialog and presses its button. Returns the time at which the button was pressed.
double StartSearch(const Program& editor, const std::wstring& root, bool matchCase) {
    Ask(editor.Main(), WM_COMMAND, IDM_FILES_FIND);
    const HWND dialog = FindWindowW(L"#32770", L"Find in Files");
    if (dialog == nullptr) Die("there is no dialog for a search over files");
    Ask(GetDlgItem(dialog, IDC_FILES_SCOPE), CB_SETCURSEL, 2);
    Ask(dialog, WM_COMMAND, MAKEWPARAM(IDC_FILES_SCOPE, CBN_SELCHANGE));
    Ask(GetDlgItem(dialog, IDC_FILES_WHAT), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(kText));
    Ask(GetDlgItem(dialog, IDC_FILES_FOLDER), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(root.c_str()));
    Ask(GetDlgItem(dialog, IDC_FILES_CASE), BM_SETCHECK, matchCase ? BST_CHECKED : BST_UNCHECKED);
    const double pressed = NowMs();
    Ask(dialog, WM_COMMAND, IDOK);
    return pressed;
}

struct SearchTimes {
    double first = 0, all = 0, answer = 0;
};

SearchTimes SearchOnce(const Program& editor, const std::wstring& root, bool matchCase) {
    SearchTimes times;
    const double start = StartSearch(editor, root, matchCase);
    const ResultWindows results = Results(editor);
    for (bool runs = true; runs;) {
        const double asked = NowMs();
        Ask(editor.Main(), WM_NULL);
        times.answer = std::max(times.answer, NowMs() - asked);
        if (times.first == 0 && Ask(results.list, LVM_GETITEMCOUNT) > 0) times.first = NowMs() - start;
        runs = Runs(results);
        if (runs) Pause(2);
    }
    times.all = NowMs() - start;
    if (Ask(results.list, LVM_GETITEMCOUNT) != 2 * kFolders * kFilesEach / 100) Die("the search did not find all");
    return times;
}

// Until the pane says that the search has ended, and until its threads have.
double StopOnce(const Program& editor, const std::wstring& root) {
    const int threads = ThreadCount(editor);
    StartSearch(editor, root, true);
    const ResultWindows results = Results(editor);
    Pause(150);
    if (!Runs(results)) return -1;  // too fast to be stopped
    const double start = NowMs();
    Ask(results.pane, WM_COMMAND, IDC_FILES_AGAIN);
    if (Runs(results)) Die("the search was not stopped");
    while (ThreadCount(editor) > threads) Pause(1);
    return NowMs() - start;
}

}  // namespace

void MeasureFiles() {
    const std::wstring root = Tree();
    const std::wstring floorArguments = L"--search \"" + root + L"\" " + kText;
    RunFloor(floorArguments);  // warms the cache
    const Folder folder;
    std::size_t size = 0;
    const std::wstring file = SourceOfSize(50'000, &size);
    Program editor(Kind::Editor, folder, file);
    editor.AwaitReady(size);
    std::vector<double> floor, all, anyCase, first, answer, stop;
    for (int i = 0; i < Runs(kRuns); ++i) {
        floor.push_back(RunFloor(floorArguments));
        const SearchTimes times = SearchOnce(editor, root, true);
        all.push_back(times.all);
        first.push_back(times.first);
        answer.push_back(times.answer);
        anyCase.push_back(SearchOnce(editor, root, false).all);
        if (const double stopped = StopOnce(editor, root); stopped >= 0) stop.push_back(stopped);
    }
    Report({.work = "10,000 files, 200 MB",
            .floor = floor,
            .program = all,
            .maxRatio = 1.3,
            .note = "floor: walks, reads, memchr and memcmp",
            .headline = true});
    Report({.work = "- without regard to case", .floor = floor, .program = anyCase});
    Report({.work = "- first hits shown", .program = first, .figure = Figure::Most, .maxValue = 200, .headline = true});
    Report({.work = "- slowest answer of the window",
            .program = answer,
            .figure = Figure::Most,
            .maxValue = 50,
            .headline = true});
    if (!stop.empty())
        Report({.work = "- stopped, until its threads have ended",
                .program = stop,
                .figure = Figure::Most,
                .maxValue = 100});
}
