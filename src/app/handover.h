// A second start hands its files to the copy that runs already, which comes to the front. UI thread only.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

// While it lives, other starts of this program wait until this one has its window, so that ten files that are opened at
// once from a folder come into one window.
class StartTurn {
public:
    StartTurn();
    ~StartTurn() { End(); }
    StartTurn(const StartTurn&) = delete;
    StartTurn& operator=(const StartTurn&) = delete;
    void End();

private:
    HANDLE mutex_ = nullptr;
};
// True when a running copy of the same executable has taken the files: this start is done.
bool HandOver(const std::vector<std::wstring>& files);

// In the running copy: WM_COPYDATA. Returns whether it was a handover. The files are opened when no box is open.
bool HandoverTake(const COPYDATASTRUCT& data);
// Opens a file as the command line names it, at the place that may follow its name: "path", "path:line:column".
// `problem` gets what a failure would tell in a message box; null: the box.
void OpenPlace(const std::wstring& text, std::wstring* problem = nullptr);
// Begins to read the file, if that takes long. The window is not needed for it.
void ReadPlaceAhead(const std::wstring& text);
// Opens what waits. Called when the message queue is empty.
void HandoverOpenWaiting();
// At the end of the process: a new copy opens what came while the user was asked before the window closed.
void HandoverStartAgain();
