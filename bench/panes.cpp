// Measures a step of a resize: the window gets another size, and everything in it is placed and painted. The floor is the
// bare window with its one pane. Floor and editor take turns, each in front of the other.
#include "bench.h"

#include "output/kept_lines.h"
#include "resources/ids.h"

#include <richedit.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int kTurns = 5;
constexpr int kStepPixels = 8;
constexpr DWORD kBetweenSteps = 30;  // ms: a drag comes in steps, and what a step leaves to do is not part of the next
constexpr double kGoalMs = 16;
constexpr double kLimitMs = 60'000;
constexpr int kSmallBuild = 200, kLargeBuild = 20'000;  // lines that the compiler prints
constexpr std::pair<int, int> kPanes[] = {
    // command and window
    {IDM_VIEW_OUTPUT, IDC_OUTPUT},
    {IDM_VIEW_TREE, IDC_PROJECT_TREE},
    {IDM_VIEW_OUTLINE, IDC_OUTLINE_PANE},
    {IDM_VIEW_ASM, IDC_ASM},
    {IDM_VIEW_AI, IDC_AI_CHAT},
    {IDM_VIEW_FILES_RESULTS, IDC_FILES_PANE},
    {IDM_VIEW_DEBUG_PANE, IDC_DEBUG_PANE},
    {IDM_VIEW_TERMINAL, IDC_TERMINAL},
    {IDM_VIEW_ERROR_LIST, IDC_ERROR_LIST},
};

// The window shrinks, then grows by the same steps, an even number. A run is the median of them.
void ResizeTurn(const Program& program, int steps, std::vector<double>* runs) {
    BringToFront(program);
    const ShownWindows shown(program.Main());
    shown.AwaitPainted(NowMs() + kLimitMs);
    RECT place = {};
    GetWindowRect(program.Main(), &place);
    std::vector<double> times;
    int width = static_cast<int>(place.right - place.left), height = static_cast<int>(place.bottom - place.top);
    for (int i = 0; i < steps; ++i) {
        const int by = i < steps / 2 ? -kStepPixels : kStepPixels;
        width += by;
        height += by / 2;
        Sleep(kBetweenSteps);
        const double start = NowMs();
        SetWindowPos(program.Main(), nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        shown.AwaitPainted(start + kLimitMs);
        times.push_back(NowMs() - start);
    }
    runs->push_back(Median(times));
}

bool IsShown(const Program& editor, int pane) {
    const HWND window = GetDlgItem(editor.Main(), pane);
    return window != nullptr && IsWindowVisible(window) != FALSE;
}

void ShowAllPanes(const Program& editor) {
    for (const auto& [command, pane] : kPanes)
        if (!IsShown(editor, pane)) Ask(editor.Main(), WM_COMMAND, static_cast<WPARAM>(command));
    for (const auto& [command, pane] : kPanes)
        if (!IsShown(editor, pane)) Die("the pane of command " + std::to_string(command) + " is not shown");
    Ask(editor.Main(), MSG_FOCUS_EDITOR);  // the terminal line has it
}

// Until as many lines as are kept stand in the output pane.
void BuildToTheEnd(const Program& editor, int lines) {
    const HWND output = GetDlgItem(editor.Main(), IDC_OUTPUT);
    const auto kept = std::min(lines, static_cast<int>(kFirstLinesKept + kLastLinesKept));
    const double start = NowMs();
    PostMessageW(editor.Main(), WM_COMMAND, IDM_BUILD, 0);
    while (Ask(output, EM_GETLINECOUNT) < kept) {
        if (NowMs() - start > kLimitMs) Die("the build does not end");
        Sleep(10);
    }
    editor.SettledMemory();
}

struct State {
    const char* name;
    bool allPanes;
    int lines;  // that the compiler prints
    int steps;  // of a run
};
constexpr State kStates[] = {{"panes as after a start", false, kSmallBuild, 12},
                             {"all panes", true, kSmallBuild, 12},
                             {"15,000 lines in the output pane", false, kLargeBuild, 4}};

// The editor in one state, beside the floor.
void MeasureResize(const State& state) {
    std::size_t size = 0;
    const std::wstring file = SourceOfSize(50'000, &size);
    const Folder folder({.compilers = false, .settings = false, .floodLines = state.lines});
    WriteText(folder.Path() + L"Editor.ini", "[Editor]\r\nActiveCompiler=0\r\n");
    Program floor(Kind::Floor, folder, file);
    floor.AwaitReady(size);
    Program editor(Kind::Editor, folder, file);
    editor.AwaitReady(size);
    if (state.allPanes) ShowAllPanes(editor);
    BuildToTheEnd(editor, state.lines);
    std::vector<double> bare, all;
    for (int turn = 0; turn < Runs(kTurns); ++turn) {
        ResizeTurn(floor, state.steps, &bare);
        ResizeTurn(editor, state.steps, &all);
    }
    Report({.work = std::string("a step, to painted, ") + state.name,
            .floor = bare,
            .program = all,
            .maxValue = kGoalMs,
            .note = "each run the median of " + std::to_string(state.steps),
            .headline = true});
}

}  // namespace

void MeasurePanes() {
    for (const State& state : kStates) MeasureResize(state);
}
