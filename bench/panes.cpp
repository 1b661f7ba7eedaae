// Measures a step of a resize with every pane shown: the window gets another size, and everything in it is placed and
// painted. The floor is the bare window with its one pane.
#include "bench.h"

#include "resources/ids.h"

#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr int kSteps = 60;
constexpr int kStepPixels = 8;
constexpr double kGoalMs = 16;
constexpr double kLimitMs = 30'000;
constexpr int kPaneCommands[] = {IDM_VIEW_TREE,          IDM_VIEW_OUTLINE,    IDM_VIEW_ASM,      IDM_VIEW_AI,
                                 IDM_VIEW_FILES_RESULTS, IDM_VIEW_DEBUG_PANE, IDM_VIEW_TERMINAL, IDM_VIEW_ERROR_LIST};

void AwaitAllPainted(HWND window, double limit) {
    AwaitPainted(window, limit);
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        if (IsWindowVisible(child) != FALSE) AwaitPainted(child, limit);
}

// The window grows and shrinks in turns, by the same steps.
std::vector<double> ResizeSteps(HWND window) {
    std::vector<double> times;
    RECT place = {};
    GetWindowRect(window, &place);
    int width = static_cast<int>(place.right - place.left), height = static_cast<int>(place.bottom - place.top);
    for (int i = 0; i < kSteps; ++i) {
        const int by = i < kSteps / 2 ? -kStepPixels : kStepPixels;
        width += by;
        height += by / 2;
        const double start = NowMs();
        SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        Ask(window, WM_NULL);
        AwaitAllPainted(window, start + kLimitMs);
        times.push_back(NowMs() - start);
    }
    return times;
}

}  // namespace

void MeasurePanes() {
    std::size_t size = 0;
    const std::wstring file = SourceOfSize(50'000, &size);
    const Folder folder;
    Program floor(Kind::Floor, folder, file);
    floor.AwaitReady(size);
    Program editor(Kind::Editor, folder, file);
    editor.AwaitReady(size);
    std::vector<double> bare = ResizeSteps(floor.Main());
    SetForegroundWindow(editor.Main());
    const std::vector<double> plain = ResizeSteps(editor.Main());
    for (const int command : kPaneCommands) Ask(editor.Main(), WM_COMMAND, static_cast<WPARAM>(command));
    editor.SettledMemory();
    const std::vector<double> all = ResizeSteps(editor.Main());
    char note[160];
    std::snprintf(note, sizeof(note), "median of %d; 95 of 100 within %.1f, slowest %.1f; with the output alone %.1f",
                  kSteps, Quantile(all, 0.95), Quantile(all, 1), Median(plain));
    Report({.work = "a step of a resize, all panes shown, to painted",
            .floor = Median(bare),
            .program = Median(all),
            .maxValue = kGoalMs,
            .note = note});
}
