#include "compile/terminal_complete.h"

#include "base/events.h"
#include "base/texts.h"
#include "base/worker.h"
#include "compile/terminal_names.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "resources/ids.h"
#include "ui/window_text.h"

#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kMostListed = 20000;  // names of a folder that are looked at

struct NamesRequest {
    HWND window;
    int number;
    std::wstring folder;  // absolute, with its backslash
    std::wstring name;
};

struct TerminalNames {
    int number = 0;
    bool answered = true;  // the share did
    std::vector<std::wstring> names;
};
using TerminalNamesPtr = std::unique_ptr<TerminalNames>;

struct Completing {
    TerminalCompletion completion;
    int number = 0;        // of the last request
    std::wstring line;     // as it was when the names were asked for
    bool forward = true;   // the direction of the key that asked
    bool waiting = false;  // for the names
};
Completing g_completing;

// On the worker.
void ListNames(NamesRequest& request, const WorkerCancel& cancel) {
    auto found = std::make_unique<TerminalNames>();
    found->number = request.number;
    found->answered = PathAnswers(request.folder.c_str());
    if (found->answered) {
        WIN32_FIND_DATAW entry = {};
        const UniqueFind find{FindFirstFileW(PathForSystem((request.folder + L"*").c_str()).c_str(), &entry)};
        std::vector<std::wstring> names;
        if (find) do {
                names.emplace_back(entry.cFileName);
            } while (names.size() < kMostListed && !cancel.Asked() && FindNextFileW(find.Get(), &entry) != FALSE);
        found->names = TerminalNamesFitting(std::move(names), request.name);
    }
    WorkerPost(request.window, MSG_TERMINAL_NAMES, std::move(found));
}

std::size_t CaretOf(HWND window) {
    DWORD start = 0, end = 0;
    SendMessageW(window, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    return end;
}

void ShowNextName(HWND window) {
    std::wstring line = WindowText(window);
    std::size_t caret = 0;
    if (!TerminalCompleteNext(g_completing.completion, &line, &caret, g_completing.forward)) return;
    SetWindowTextW(window, line.c_str());
    SendMessageW(window, EM_SETSEL, caret, static_cast<LPARAM>(caret));
}

}  // namespace

void TerminalComplete(HWND window, const std::wstring& folder, bool forward) {
    const std::wstring line = WindowText(window);
    g_completing.forward = forward;
    if (!g_completing.completion.names.empty() && line == g_completing.completion.shown) return ShowNextName(window);
    if (g_completing.waiting && line == g_completing.line) return;  // a share takes its time
    g_completing.completion = {.word = TerminalWordAt(line, CaretOf(window))};
    g_completing.line = line;
    const TerminalWord& word = g_completing.completion.word;
    g_completing.waiting =
        static_cast<bool>(WorkerStart<ListNames>(NamesRequest{.window = window,
                                                              .number = ++g_completing.number,
                                                              .folder = TerminalFolderOf(folder, word.folder),
                                                              .name = word.name}));
}

void TerminalOnNames(HWND window, WPARAM wParam) {
    const auto found = WorkerTake<TerminalNamesPtr>(wParam);
    if (found->number != g_completing.number) return;
    g_completing.waiting = false;
    if (WindowText(window) != g_completing.line) return;  // the user has typed on
    if (!found->answered) return g_events.statusText(Text(L"The folder does not answer"));
    if (found->names.empty()) return g_events.statusText(Text(L"No file name fits"));
    g_completing.completion.names = std::move(found->names);
    ShowNextName(window);
}
