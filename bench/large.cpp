// Measures a file of 600 MB that is opened in the running editor: until its pane has all of it, and whether the window
// answers meanwhile.
#include "bench.h"

#include "base/handles.h"
#include "resources/ids.h"

#include <Scintilla.h>

#include <algorithm>
#include <memory>
#include <string>

namespace {

constexpr std::size_t kBytes = 600'000'000;
constexpr int kRuns = 5;
constexpr double kLimitMs = 120'000;
constexpr DWORD kPauseMs = 2;

// All bytes, in the pieces that programs read; they come from the system's cache.
double ReadOnce(const std::wstring& path) {
    constexpr DWORD kPiece = 1 << 20;
    const auto piece = std::make_unique_for_overwrite<char[]>(kPiece);
    const UniqueHandle file{CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_SEQUENTIAL_SCAN, nullptr)};
    const double start = NowMs();
    DWORD got = 0;
    do {
        if (!ReadFile(file.Get(), piece.get(), kPiece, &got, nullptr)) Die("the large file cannot be read");
    } while (got > 0);
    return NowMs() - start;
}

double FloorOnce(const std::wstring& path, std::size_t size) {
    const Folder folder;
    Program floor(Kind::Floor, folder, path);
    return floor.AwaitReady(size);
}

HWND ShownPane(HWND frame) {
    HWND pane = nullptr;
    do pane = FindWindowExW(frame, pane, L"Scintilla", nullptr);
    while (pane != nullptr && !IsWindowVisible(pane));
    return pane;
}

struct OpenTimes {
    double opened = 0, slowestAnswer = 0, peakMb = 0;
};

// As a recent file, the one after that of the start, so that no box is between the command and the work.
OpenTimes OpenOnce(const std::wstring& path, std::size_t size) {
    const Folder folder;
    const std::wstring settings = folder.Path() + L"Editor.ini";
    WritePrivateProfileStringW(L"MRU", L"Count", L"1", settings.c_str());
    WritePrivateProfileStringW(L"MRU", L"File0", path.c_str(), settings.c_str());
    std::size_t first = 0;
    Program editor(Kind::Editor, folder, SourceOfSize(50'000, &first));
    editor.AwaitReady(first);
    editor.SettledMemory();
    OpenTimes times;
    const double start = NowMs();
    PostMessageW(editor.Main(), WM_COMMAND, IDM_RECENT_FILE_FIRST + 1, 0);
    for (double asked = start;; asked = NowMs()) {
        const HWND pane = ShownPane(editor.Main());
        const bool done = pane != nullptr && Ask(pane, SCI_GETLENGTH) == static_cast<LRESULT>(size);
        times.slowestAnswer = std::max(times.slowestAnswer, NowMs() - asked);
        if (done) break;
        if (asked - start > kLimitMs) Die("the large file is not opened");
        Sleep(kPauseMs);
    }
    times.opened = NowMs() - start;
    times.peakMb = editor.SettledMemory().peakMb;
    return times;
}

}  // namespace

void MeasureLarge() {
    std::size_t size = 0;
    const std::wstring path = SourceOfSize(kBytes, &size);
    ReadOnce(path);  // into the system's cache
    std::vector<double> floor, opened, beyond, slowest, peak;
    for (int i = 0; i < Runs(kRuns); ++i) {
        floor.push_back(FloorOnce(path, size));
        const double read = ReadOnce(path);
        const OpenTimes times = OpenOnce(path, size);
        opened.push_back(times.opened);
        beyond.push_back(times.opened - read);
        slowest.push_back(times.slowestAnswer);
        peak.push_back(times.peakMb);
    }
    Report({.work = "600 MB opened, until its pane has all",
            .floor = floor,
            .program = opened,
            .note = "floor: the bare program's start with it"});
    Report({.work = "- longer than a bare read of its bytes", .program = beyond, .maxValue = 2000, .headline = true});
    Report({.work = "- slowest answer of the window meanwhile",
            .program = slowest,
            .figure = Figure::Most,
            .maxValue = 200,
            .headline = true});
    Report({.work = "- peak memory", .program = peak, .unit = "MB"});
}
