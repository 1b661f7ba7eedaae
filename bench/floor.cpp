// The floor program: does as little as a program can for the same result. KVX-Editor is measured against it.
//   floor.exe FILE            one window with one Scintilla pane that holds the file; ends when its window is closed
//   floor.exe --replace edit|undo FILE, --indent edit|undo FILE
//                             replaces each "total" or indents each line; prints the milliseconds of that or its undo
//   floor.exe --output LINES  a Rich Edit fed that many lines, a tenth of them coloured, as RTF blocks of 1,000;
//                             prints the milliseconds and ends
//   floor.exe --search FOLDER TEXT
//                             reads every file below the folder and looks for the text on two threads; prints the
//                             milliseconds
// Uses no code of the editor. Scintilla.dll is loaded from the folder above the one of this executable.
#include <windows.h>

#include <richedit.h>
#include <shellapi.h>

#include <Scintilla.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/flood_lines.h"

namespace {

constexpr int kBlockLines = 1000;
constexpr int kWindowHeight = 800;  // pixels, as in the editor
constexpr int kPaneHeight = 230;    // pixels, as the editor's output pane with its caption

int Fail(const char* what) {
    std::fprintf(stderr, "floor: %s (error %lu)\n", what, GetLastError());
    return 1;
}

LRESULT CALLBACK FrameProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE: MoveWindow(GetWindow(window, GW_CHILD), 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE); return 0;
        case WM_SETFOCUS: SetFocus(GetWindow(window, GW_CHILD)); return 0;
        case WM_DESTROY: PostQuitMessage(0); return 0;
        default: return DefWindowProcW(window, message, wParam, lParam);
    }
}

// Makes a frame window filled by one child of the given class. Returns null when either cannot be made. The child is
// stored in `child`.
HWND CreateFrame(const wchar_t* childClass, DWORD childStyle, int height, HWND* child) {
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    WNDCLASSW frameClass = {};
    frameClass.lpfnWndProc = FrameProc;
    frameClass.hInstance = instance;
    frameClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    frameClass.lpszClassName = L"KvxFloor";
    RegisterClassW(&frameClass);
    const HWND frame = CreateWindowExW(0, L"KvxFloor", L"floor", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0, 0, 1200,
                                       height, nullptr, nullptr, instance, nullptr);
    if (frame == nullptr) return nullptr;
    *child = CreateWindowExW(0, childClass, L"", WS_CHILD | WS_VISIBLE | WS_VSCROLL | childStyle, 0, 0, 10, 10, frame,
                             nullptr, instance, nullptr);
    return *child != nullptr ? frame : nullptr;
}

struct FileBytes {
    std::unique_ptr<char[]> bytes;
    DWORD size = 0;
    bool read = false;
};

FileBytes ReadWhole(const wchar_t* path) {
    FileBytes out;
    const HANDLE file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return out;
    const DWORD size = GetFileSize(file, nullptr);
    // The buffer is not initialised, because zeroing 100 MB would be part of the measured time.
    out.bytes.reset(new char[size]);
    out.read = ReadFile(file, out.bytes.get(), size, &out.size, nullptr) && out.size == size;
    CloseHandle(file);
    return out;
}

bool LoadScintilla() {
    wchar_t path[MAX_PATH * 2];
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH * 2);
    std::wstring folder(path, length);
    for (int up = 0; up < 2; ++up) folder.resize(folder.find_last_of(L'\\'));
    return LoadLibraryW((folder + L"\\Scintilla.dll").c_str()) != nullptr;
}

// Makes the frame with a Scintilla pane that holds the file. Returns null when it cannot.
HWND FrameWithFile(const wchar_t* path, HWND* pane) {
    if (!LoadScintilla()) return nullptr;
    const HWND frame = CreateFrame(L"Scintilla", 0, kWindowHeight, pane);
    const FileBytes file = ReadWhole(path);
    if (frame == nullptr || !file.read) return nullptr;
    SendMessageW(*pane, SCI_SETUNDOCOLLECTION, 0, 0);
    SendMessageW(*pane, SCI_SETCODEPAGE, SC_CP_UTF8, 0);
    SendMessageW(*pane, SCI_ADDTEXT, file.size, reinterpret_cast<LPARAM>(file.bytes.get()));
    SendMessageW(*pane, SCI_SETUNDOCOLLECTION, 1, 0);
    SendMessageW(*pane, SCI_GOTOPOS, 0, 0);
    return frame;
}

int ShowFile(const wchar_t* path) {
    HWND pane = nullptr;
    const HWND frame = FrameWithFile(path, &pane);
    if (frame == nullptr) return Fail("cannot show the file");
    ShowWindow(frame, SW_SHOW);
    UpdateWindow(frame);
    SetFocus(pane);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}

struct RtfText {
    const char* bytes;
    std::size_t size;
};

DWORD CALLBACK FeedRtf(DWORD_PTR cookie, LPBYTE buffer, LONG capacity, LONG* written) {
    RtfText& text = *reinterpret_cast<RtfText*>(cookie);
    const std::size_t count =
        text.size < static_cast<std::size_t>(capacity) ? text.size : static_cast<std::size_t>(capacity);
    CopyMemory(buffer, text.bytes, count);
    text.bytes += count;
    text.size -= count;
    *written = static_cast<LONG>(count);
    return 0;
}

// Makes `count` lines from line number `first` on, with the diagnostics in red.
std::string RtfBlock(int first, int count) {
    std::string rtf = "{\\rtf1\\ansi{\\colortbl;\\red0\\green0\\blue0;\\red200\\green0\\blue0;}";
    for (int i = first; i < first + count; ++i)
        rtf += (IsFloodError(i) ? "\\cf2 " : "\\cf1 ") + FloodLine(i) + "\\par\n";
    return rtf + "}";
}

void DrainMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

int FeedOutput(int lines) {
    if (LoadLibraryW(L"msftedit.dll") == nullptr) return Fail("cannot load msftedit.dll");
    HWND pane = nullptr;
    const HWND frame = CreateFrame(L"RICHEDIT50W", ES_MULTILINE | ES_AUTOVSCROLL | ES_READONLY, kPaneHeight, &pane);
    if (frame == nullptr) return Fail("cannot make the window");
    SendMessageW(pane, EM_EXLIMITTEXT, 0, 0x7FFFFFFE);
    ShowWindow(frame, SW_SHOW);
    DrainMessages();

    LARGE_INTEGER frequency, start, end;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    for (int first = 1; first <= lines; first += kBlockLines) {
        const std::string rtf = RtfBlock(first, lines - first + 1 < kBlockLines ? lines - first + 1 : kBlockLines);
        RtfText text = {rtf.data(), rtf.size()};
        EDITSTREAM stream = {reinterpret_cast<DWORD_PTR>(&text), 0, FeedRtf};
        SendMessageW(pane, WM_SETREDRAW, FALSE, 0);
        SendMessageW(pane, EM_SETSEL, static_cast<WPARAM>(-1), -1);
        SendMessageW(pane, EM_STREAMIN, SF_RTF | SFF_SELECTION, reinterpret_cast<LPARAM>(&stream));
        SendMessageW(pane, WM_SETREDRAW, TRUE, 0);
        SendMessageW(pane, WM_VSCROLL, SB_BOTTOM, 0);
        InvalidateRect(pane, nullptr, TRUE);
        DrainMessages();
    }
    QueryPerformanceCounter(&end);
    const LRESULT got = SendMessageW(pane, EM_GETLINECOUNT, 0, 0);
    if (got < lines) return Fail("lines are missing");
    std::printf("%.1f\n",
                1000.0 * static_cast<double>(end.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart));
    return 0;
}

// Replaces each "total" from the end to the start, or indents each line, and undoes it. Prints the milliseconds of the
// edit or of its undo.
int EditFile(bool indent, bool undo, const wchar_t* path) {
    HWND pane = nullptr;
    const HWND frame = FrameWithFile(path, &pane);
    if (frame == nullptr) return Fail("cannot show the file");
    const auto call = reinterpret_cast<SciFnDirect>(SendMessageW(pane, SCI_GETDIRECTFUNCTION, 0, 0));
    const sptr_t pointer = SendMessageW(pane, SCI_GETDIRECTPOINTER, 0, 0);
    const auto send = [&](unsigned message, uptr_t wParam, sptr_t lParam) {
        return call(pointer, message, wParam, lParam);
    };
    ShowWindow(frame, SW_SHOW);
    DrainMessages();
    LARGE_INTEGER frequency, start, edited, undone;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    send(SCI_BEGINUNDOACTION, 0, 0);
    const auto text = [](const char* bytes) { return reinterpret_cast<sptr_t>(bytes); };
    if (indent) {
        for (sptr_t line = send(SCI_GETLINECOUNT, 0, 0) - 2; line > 0; --line) {
            const sptr_t at = send(SCI_POSITIONFROMLINE, static_cast<uptr_t>(line), 0);
            send(SCI_SETTARGETRANGE, static_cast<uptr_t>(at), at);
            send(SCI_REPLACETARGET, 4, text("    "));
        }
    } else {
        for (sptr_t at = send(SCI_GETLENGTH, 0, 0); at > 0;) {
            send(SCI_SETTARGETRANGE, static_cast<uptr_t>(at), 0);
            at = send(SCI_SEARCHINTARGET, 5, text("total"));
            if (at >= 0) send(SCI_REPLACETARGET, 11, text("grand_total"));
        }
    }
    send(SCI_ENDUNDOACTION, 0, 0);
    UpdateWindow(pane);
    QueryPerformanceCounter(&edited);
    send(SCI_UNDO, 0, 0);
    UpdateWindow(pane);
    QueryPerformanceCounter(&undone);
    const LONGLONG ticks = undo ? undone.QuadPart - edited.QuadPart : edited.QuadPart - start.QuadPart;
    std::printf("%.1f\n", 1000.0 * static_cast<double>(ticks) / static_cast<double>(frequency.QuadPart));
    return 0;
}

// --- Searching files

struct SearchFloor {
    std::wstring folder;
    std::string text;
    std::mutex mutex;  // guards `files` and `walked`
    std::vector<std::wstring> files;
    bool walked = false;
    std::atomic<int> hits{0};
};

void WalkFolder(SearchFloor& search, const std::wstring& folder) {
    WIN32_FIND_DATAW found;
    const HANDLE find = FindFirstFileExW((folder + L"\\*").c_str(), FindExInfoBasic, &found, FindExSearchNameMatch,
                                         nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (find == INVALID_HANDLE_VALUE) return;
    do {
        const std::wstring path = folder + L"\\" + found.cFileName;
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            const std::lock_guard lock(search.mutex);
            search.files.push_back(path);
        } else if (found.cFileName[0] != L'.') {
            WalkFolder(search, path);
        }
    } while (FindNextFileW(find, &found));
    FindClose(find);
}

void SearchBytes(SearchFloor& search, const char* at, std::size_t size) {
    const std::size_t length = search.text.size();
    const char* const end = at + size;
    while (static_cast<std::size_t>(end - at) >= length) {
        at = static_cast<const char*>(std::memchr(at, search.text[0], static_cast<std::size_t>(end - at) - length + 1));
        if (at == nullptr) return;
        if (std::memcmp(at, search.text.data(), length) == 0) ++search.hits;
        ++at;
    }
}

void SearchFiles(SearchFloor& search) {
    for (;;) {
        std::wstring path;
        bool walked = false;
        {
            const std::lock_guard lock(search.mutex);
            walked = search.walked;
            if (!search.files.empty()) {
                path = std::move(search.files.back());
                search.files.pop_back();
            }
        }
        if (path.empty() && walked) return;
        if (path.empty()) {
            Sleep(1);
            continue;
        }
        const FileBytes file = ReadWhole(path.c_str());
        if (file.read) SearchBytes(search, file.bytes.get(), file.size);
    }
}

int SearchFolder(const wchar_t* folder, const wchar_t* text) {
    SearchFloor search;
    search.folder = folder;
    for (; *text != L'\0'; ++text) search.text += static_cast<char>(*text);
    LARGE_INTEGER frequency, start, end;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    std::thread other([&search] { SearchFiles(search); });
    WalkFolder(search, search.folder);
    {
        const std::lock_guard lock(search.mutex);
        search.walked = true;
    }
    SearchFiles(search);
    other.join();
    QueryPerformanceCounter(&end);
    if (search.hits == 0) return Fail("the text was not found");
    std::printf("%.1f\n",
                1000.0 * static_cast<double>(end.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart));
    return 0;
}

}  // namespace

int main() {
    int count = 0;
    wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (arguments == nullptr) return Fail("no command line");
    if (count == 3 && wcscmp(arguments[1], L"--output") == 0) return FeedOutput(_wtoi(arguments[2]));
    const bool indent = count == 4 && wcscmp(arguments[1], L"--indent") == 0;
    if (indent || (count == 4 && wcscmp(arguments[1], L"--replace") == 0))
        return EditFile(indent, wcscmp(arguments[2], L"undo") == 0, arguments[3]);
    if (count == 4 && wcscmp(arguments[1], L"--search") == 0) return SearchFolder(arguments[2], arguments[3]);
    if (count == 2) return ShowFile(arguments[1]);
    std::fprintf(stderr,
                 "usage: floor FILE | floor --output LINES | floor --search FOLDER TEXT | floor --replace|--indent "
                 "edit|undo FILE\n");
    return 2;
}
