// Measures what keeps work safe, and what brings it back: a session of many files, its saving, and the copying of unsaved
// text.
#include "bench.h"

#include "resources/ids.h"

#include <Scintilla.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

constexpr int kFiles = 300;
constexpr int kStarts = 5;
constexpr int kSaves = 20;
constexpr int kSwitches = 20;           // of a run
constexpr DWORD kBetweenSwitches = 50;  // ms
constexpr DWORD kAfterReturn = 3000;    // ms
constexpr double kLimitMs = 20000;

template <typename Condition>
void AwaitOrDie(const char* what, Condition condition) {
    const double end = NowMs() + kLimitMs;
    while (!condition()) {
        if (NowMs() > end) Die(what);
        Sleep(1);  // a look at all windows is work for Wine's server
    }
}

// The auto-saved session of so many files of 50 kB, of which the middle one is active.
std::wstring WriteSession(const Folder& folder, int files, std::size_t* size) {
    const std::wstring source = SourceOfSize(50'000, size);
    std::string text = "[Session]\r\nVersion=1\r\nActiveTab=" + std::to_string(files / 2) +
                       "\r\nTabCount=" + std::to_string(files) + "\r\n";
    for (int i = 0; i < files; ++i) {
        const std::wstring copy = folder.Path() + L"file" + std::to_wstring(i) + L".bas";
        fs::copy_file(source, copy, fs::copy_options::overwrite_existing);
        text += "\r\n[File" + std::to_string(i + 1) + "]\r\nPath=" + Narrow(copy) + "\r\nCursor=10\r\n";
    }
    WriteText(folder.Path() + L"Editor.ini_autosave.kvxsess", text);
    return folder.Path() + L"file0.bas";
}

HWND FindQuestion(DWORD pid) {
    for (HWND box = nullptr; (box = FindWindowExW(nullptr, box, L"#32770", L"Restore Session")) != nullptr;) {
        DWORD owner = 0;
        GetWindowThreadProcessId(box, &owner);
        if (owner == pid && IsWindowVisible(box)) return box;
    }
    return nullptr;
}

void AnswerRestore(const Program& editor) {
    HWND box = nullptr;
    AwaitOrDie("no question about the session", [&] {
        box = FindQuestion(GetProcessId(editor.Process()));
        return box != nullptr;
    });
    PostMessageW(box, WM_COMMAND, IDYES, 0);
}

// Until the active file of the session is there, its question answered as soon as it is asked.
double RestoreOnce(int files) {
    const Folder folder;
    std::size_t size = 0;
    WriteSession(folder, files, &size);
    Program editor(Kind::Editor, folder, L"");
    AnswerRestore(editor);
    return editor.AwaitReady(size);
}

double StartOnce() {
    const Folder folder;
    std::size_t size = 0;
    const std::wstring file = SourceOfSize(50'000, &size);
    Program editor(Kind::Editor, folder, file);
    return editor.AwaitReady(size);
}

void MeasureRestore() {
    std::vector<double> one, many;
    RestoreOnce(kFiles);  // into the system's cache
    for (int i = 0; i < Runs(kStarts); ++i) {
        one.push_back(StartOnce());
        many.push_back(RestoreOnce(kFiles));
    }
    Report({.work = "start with a session of " + std::to_string(kFiles) + " files",
            .floor = one,
            .program = many,
            .maxRatio = 2.0,
            .note = "floor: the editor's start with one file",
            .headline = true});
}

// From the command until the other document and all around it are painted. The windows are looked for before, because
// among so many editors that takes longer than a switch.
void MeasureSwitches(const Program& editor) {
    BringToFront(editor);
    ShownWindows shown(editor.Main());
    Ask(editor.Main(), WM_COMMAND, IDM_TAB_RECENT);
    shown.Add();
    shown.AwaitPainted(NowMs() + kLimitMs);
    Sleep(kAfterReturn);  // the program looks at its files when it comes to the front
    std::vector<double> runs;
    for (int run = 0; run < Runs(kStarts); ++run) {
        std::vector<double> times;
        for (int i = 0; i < kSwitches; ++i) {
            Sleep(kBetweenSwitches);
            const double start = NowMs();
            Ask(editor.Main(), WM_COMMAND, IDM_TAB_RECENT);
            shown.AwaitPainted(start + kLimitMs);
            times.push_back(NowMs() - start);
        }
        runs.push_back(Quantile(times, 0.95));
    }
    Report({.work = "switch to the tab before, painted, of " + std::to_string(kFiles) + ", 95 of 100 within",
            .program = runs,
            .maxValue = 16,
            .headline = true});
}

void MeasureAutoSave() {
    const Folder folder;
    std::size_t size = 0;
    WriteSession(folder, kFiles, &size);
    Program editor(Kind::Editor, folder, L"");
    AnswerRestore(editor);
    editor.AwaitReady(size);
    for (int tab = 0; tab < kFiles; ++tab) Ask(editor.Main(), WM_COMMAND, IDM_NEXT_TAB);  // all are read
    editor.SettledMemory();
    MeasureSwitches(editor);
    std::vector<double> times;
    for (int i = 0; i < Runs(kSaves); ++i) {
        Ask(editor.Main(), WM_COMMAND, IDM_NEXT_TAB);  // another session than the last
        const double start = NowMs();
        Ask(editor.Main(), WM_TIMER, TIMER_SESSION);
        times.push_back(NowMs() - start);
    }
    Report({.work = "session of " + std::to_string(kFiles) + " open files saved",
            .program = times,
            .figure = Figure::Most,
            .maxValue = 50,
            .note = "on the window's thread",
            .headline = true});
}

std::size_t KeptBytes(const Folder& folder) {
    std::size_t most = 0;
    std::error_code fault;
    fs::recursive_directory_iterator at(folder.Path() + L"local\\KVX-Editor\\Recovery", fault), end;
    for (; !fault && at != end; at.increment(fault)) {
        const auto size = at->file_size(fault);
        if (!fault && at->path().extension() == L".bas") most = std::max<std::size_t>(most, size);
        fault.clear();
    }
    return most;
}

void MeasureSnapshots() {
    const Folder folder;
    std::size_t size = 0;
    const std::wstring file = SourceOfSize(10'000'000, &size);
    Program editor(Kind::Editor, folder, file);
    editor.AwaitReady(size);
    editor.SettledMemory();
    std::vector<double> pieces, kept;
    for (int i = 0; i < Runs(kStarts); ++i) {
        const double typed = NowMs();
        PostMessageW(editor.Sci(), WM_CHAR, 'x', 1);
        ++size;
        std::vector<double> ticks;
        // The timer of the window goes on beside these, so that some of its ticks are not seen, but none is other.
        while (KeptBytes(folder) != size) {
            if (NowMs() - typed > kLimitMs) Die("unsaved text is not kept");
            Ask(editor.Main(), WM_NULL);  // what else the window does is not part of it
            const double start = NowMs();
            Ask(editor.Main(), WM_TIMER, TIMER_SNAPSHOTS);
            ticks.push_back(NowMs() - start);
            Sleep(100);
        }
        kept.push_back(NowMs() - typed);
        pieces.push_back(Quantile(ticks, 0.95));
    }
    Report({.work = "unsaved 10 MB copied for recovery, a piece, 95 of 100 within",
            .program = pieces,
            .maxValue = 2,
            .note = "on the window's thread",
            .headline = true});
    Report({.work = "- from a key until it stands on the disk",
            .program = kept,
            .figure = Figure::Most,
            .maxValue = 7000,
            .headline = true});
}

}  // namespace

void MeasureSessions() {
    MeasureRestore();
    MeasureAutoSave();
    MeasureSnapshots();
}
