#include "app/handover.h"
#include "app/app_state.h"
#include "app/command_line.h"
#include "app/handover_files.h"
#include "app/main_window.h"
#include "base/handles.h"
#include "base/log.h"
#include "base/path.h"
#include "documents/document_place.h"
#include "documents/document_row.h"
#include "documents/file_commands.h"
#include "documents/file_work.h"
#include "editor/caret_place.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "session/session.h"
#include "ui/long_work.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace {

constexpr ULONG_PTR kHandover = 0x4B565845;  // tells our messages from those of others
constexpr DWORD kStartMs = 8000;             // for the start before this one
constexpr DWORD kAnswerMs = 3000;            // for the running copy; one that hangs is left alone

std::vector<std::wstring> g_filesWaiting;

std::wstring OwnPath() {
    wchar_t path[kPathCapacity] = {};
    GetModuleFileNameW(nullptr, path, kPathCapacity);
    return path;
}

// Whether the window is of another process of the same executable.
bool IsOfThisProgram(HWND window) {
    DWORD pid = 0;
    GetWindowThreadProcessId(window, &pid);
    if (pid == 0 || pid == GetCurrentProcessId()) return false;
    const UniqueHandle process{OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, pid)};
    wchar_t path[kPathCapacity] = {};
    DWORD length = kPathCapacity;
    return process && QueryFullProcessImageNameW(process.Get(), 0, path, &length) != FALSE &&
           PathEqualsIgnoreCase(path, OwnPath());
}

bool Takes(HWND window, const std::wstring& text) {
    DWORD pid = 0;
    GetWindowThreadProcessId(window, &pid);
    AllowSetForegroundWindow(pid);
    COPYDATASTRUCT data = {kHandover, static_cast<DWORD>(text.size() * sizeof(wchar_t)),
                           const_cast<wchar_t*>(text.data())};
    DWORD_PTR taken = 0;
    return SendMessageTimeoutW(window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data), SMTO_ABORTIFHUNG, kAnswerMs,
                               &taken) != 0 &&
           taken == TRUE;
}

// Nothing else is going on that another document would disturb.
bool MayOpenNow() {
    return SessionSavesAllowed() && IsWindowEnabled(g_app.hMainWnd) != FALSE && !FileWorkRuns() && !LongWorkRuns() &&
           !FileWorkCloseIsQueued();
}

}  // namespace

StartTurn::StartTurn() {
    const std::wstring name =
        L"Local\\KVX-Editor.Start." + std::to_wstring(std::hash<std::wstring>{}(PathKey(OwnPath())));
    mutex_ = CreateMutexW(nullptr, FALSE, name.c_str());
    const DWORD result = mutex_ != nullptr ? WaitForSingleObject(mutex_, kStartMs) : WAIT_FAILED;
    if (result == WAIT_OBJECT_0 || result == WAIT_ABANDONED || mutex_ == nullptr) return;
    CloseHandle(std::exchange(mutex_, nullptr));
}

void StartTurn::End() {
    if (mutex_ == nullptr) return;
    ReleaseMutex(mutex_);
    CloseHandle(std::exchange(mutex_, nullptr));
}

bool HandOver(const std::vector<std::wstring>& files) {
    const std::wstring text = HandoverText(files);
    // The windows come in their order on the screen: the one that was used last is the first.
    for (HWND window = nullptr; (window = FindWindowExW(nullptr, window, kMainClass, nullptr)) != nullptr;)
        if (IsOfThisProgram(window) && Takes(window, text)) return true;
    return false;
}

bool HandoverTake(const COPYDATASTRUCT& data) {
    if (data.dwData != kHandover || data.cbData % sizeof(wchar_t) != 0 || (data.lpData == nullptr && data.cbData != 0))
        return false;
    const std::wstring_view text{static_cast<const wchar_t*>(data.lpData), data.cbData / sizeof(wchar_t)};
    for (std::wstring& file : FilesOfHandover(text)) g_filesWaiting.push_back(std::move(file));
    if (IsIconic(g_app.hMainWnd) != FALSE) ShowWindow(g_app.hMainWnd, SW_RESTORE);
    SetForegroundWindow(GetLastActivePopup(g_app.hMainWnd));
    PostMessageW(g_app.hMainWnd, WM_NULL, 0, 0);  // so that the queue becomes empty once more
    return true;
}

void HandoverOpenWaiting() {
    if (g_filesWaiting.empty() || !MayOpenNow()) return;
    for (const std::wstring& file : std::exchange(g_filesWaiting, {})) OpenPlace(file);
}

void HandoverStartAgain() {
    if (g_filesWaiting.empty()) return;
    std::wstring line = L"\"" + OwnPath() + L"\"";
    for (const std::wstring& file : std::exchange(g_filesWaiting, {})) line += L" \"" + file + L"\"";
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started = {};
    if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &started) ==
        FALSE) {
        AppLogMsg(L"FAIL: files that came while the window closed, error %lu", GetLastError());
        return;
    }
    AllowSetForegroundWindow(started.dwProcessId);
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
}

static FilePlace PlaceNamed(const std::wstring& text) {
    const bool whole = PathAnswers(text.c_str()) && FileExists(text.c_str());
    return whole ? FilePlace{.path = text} : ParseFilePlace(text);
}

void ReadPlaceAhead(const std::wstring& text) { FileReadAhead(PlaceNamed(text).path.c_str()); }

void OpenPlace(const std::wstring& text, std::wstring* problem) {
    const FilePlace place = PlaceNamed(text);
    const bool asText = place.line > 0 && FileIsProject(place.path.c_str());
    const int opened = asText ? FileShow(place.path.c_str(), false) : FileOpen(place.path.c_str(), problem);
    if (opened == 0 || place.line == 0) return;
    const DocumentTab& document = TabAt(g_app.activeTab);
    CaretGoTo(document.editor, CaretPositionOfFileColumn(document, place.line - 1, std::max(place.column - 1, 0)));
    CaretShowInMiddle(document.editor);
}
