// Drives the real KVX-Editor.exe from outside: its own fresh folder for each start, its windows found by process id,
// everything awaited with a deadline. Nothing here hangs: each message to the program is sent with a time limit.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <Scintilla.h>

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

inline constexpr int kDeadline = 15000;       // ms that anything may take on a loaded machine
inline constexpr int kBuildDeadline = 60000;  // and a build

// Parts of the status bar.
enum StatusPart {
    kPartMessage,
    kPartProgress,
    kPartPosition,
    kPartSelection,
    kPartEncoding,
    kPartLineEnding,
    kPartCompiler
};

// Captions of the program's boxes.
inline constexpr wchar_t kProgramTitle[] = L"KVXE - Unified Compiler Editor";
inline constexpr wchar_t kUnsaved[] = L"Unsaved Changes";
inline constexpr wchar_t kRestore[] = L"Restore Session";

inline constexpr wchar_t kSessionFile[] = L"Editor.ini_autosave.kvxsess";

// Polls until the condition holds; false when the time is over.
bool WaitFor(const std::function<bool()>& condition, int milliseconds = kDeadline);

int Count(std::wstring_view text, std::wstring_view part);
std::string Utf8(std::wstring_view text);
std::wstring Wide(std::string_view utf8);
bool Exists(const std::wstring& path);
std::optional<std::string> ReadBytes(const std::wstring& path);  // nothing when it cannot be opened
void WrittenFromNow(const std::wstring& path, int minutes);      // sets the time of the last write
void WriteBytes(const std::wstring& path, std::string_view bytes);
std::wstring Variable(const wchar_t* name);    // environment, empty when unset; a Unix path comes back as a Windows one
int EndProcesses(std::wstring_view fileName);  // how many there were
int CountProcesses(std::wstring_view fileName);       // running executables of that name, without regard to case
std::wstring OpenArgument(const std::wstring& path);  // for the program's command line, after others or none
void ClipboardEmpty();
std::wstring ClipboardText();  // empty when there is none

// What a program folder is furnished with.
enum Furnishing : unsigned { kBare = 0, kCompilers = 1, kNoScintilla = 2, kNoLexilla = 4 };

// A folder with its own copy of the program, removed at the end unless the test failed.
struct ProgramFolder {
    std::wstring path;  // with a backslash at the end

    explicit ProgramFolder(unsigned furnishing = kBare);
    ~ProgramFolder();
    ProgramFolder(const ProgramFolder&) = delete;
    ProgramFolder& operator=(const ProgramFolder&) = delete;

    std::wstring File(std::wstring_view name) const { return path + std::wstring(name); }
    std::wstring Write(std::wstring_view name, std::string_view bytes) const;  // creates folders; the full path
    std::string Read(std::wstring_view name) const;                            // empty when it is not there
    void FakeCompiler(std::string_view script) const;  // in the place of KVXA64; does what the script says

    // Editor.ini through the private-profile functions.
    std::wstring Ini(const wchar_t* section, const wchar_t* key, const wchar_t* fallback = L"(none)") const;
    void SetIni(const wchar_t* section, const wchar_t* key, const std::wstring& value) const;
    void KeepNoSession() const;  // no start offers or brings back what the one before left
};

inline POINT Centre(const RECT& rect) { return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2}; }

struct Dialog {
    HWND window;
    std::wstring caption;
    std::wstring text;  // of its static controls
};

// Memory in the program, for messages that carry pointers.
struct RemoteBlock {
    HANDLE process;
    void* address;
    std::size_t size;

    RemoteBlock(HANDLE owner, std::size_t bytes);
    ~RemoteBlock();
    RemoteBlock(const RemoteBlock&) = delete;
    RemoteBlock& operator=(const RemoteBlock&) = delete;
    void Put(const void* data, std::size_t bytes, std::size_t offset = 0) const;
    void Get(void* data, std::size_t bytes, std::size_t offset = 0) const;
    LPARAM At(std::size_t offset = 0) const { return reinterpret_cast<LPARAM>(address) + static_cast<LPARAM>(offset); }
};

enum class Until { Ready, Started };  // Ready: start-up is complete; Started: the process runs

// One run of the program. The destructor ends whatever is left of it and, in a failed test, notes what was on screen.
struct Editor {
    const ProgramFolder& folder;
    HANDLE process = nullptr;
    HANDLE job = nullptr;
    DWORD pid = 0;
    HWND main = nullptr;

    Editor(const ProgramFolder& programFolder, const std::wstring& arguments = L"", Until until = Until::Ready);
    ~Editor();
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    bool AwaitReady();  // finds the main window, waits for the end of start-up
    std::optional<DWORD> ExitCode(int milliseconds = kDeadline);  // nothing while it runs
    std::optional<DWORD> Close();                                 // WM_CLOSE; the exit code

    // Windows and messages. Do() returns when the command is done, Post() at once (for what opens a dialog).
    HWND Child(int id) const { return GetDlgItem(main, id); }
    LRESULT Send(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    void Do(int command) const { Send(main, WM_COMMAND, static_cast<WPARAM>(command)); }
    void Post(int command) const { PostMessageW(main, WM_COMMAND, static_cast<WPARAM>(command), 0); }
    // A message whose parameter points to a record: the record as the program leaves it.
    template <typename Record>
    Record Ask(HWND window, UINT message, WPARAM wParam, Record record = {}) const {
        const RemoteBlock block(process, sizeof(record));
        block.Put(&record, sizeof(record));
        Send(window, message, wParam, block.At());
        block.Get(&record, sizeof(record));
        return record;
    }
    std::wstring TextOf(HWND window) const;
    std::wstring CellOf(HWND list, int row, int column) const;  // of a list view
    std::wstring Title() const { return TextOf(main); }
    std::wstring Log() const;
    std::wstring Status(int part = kPartMessage) const;
    GUITHREADINFO Input() const;  // of the program's thread: focus, capture, menu
    HWND Focus() const { return Input().hwndFocus; }
    bool AwaitMenu(bool open) const;  // that takes the keys, or the end of it; a failure when it does not come

    // Dialogs
    std::vector<Dialog> Dialogs() const;
    Dialog AwaitDialog(std::wstring_view caption) const;  // a failure and an empty record when none comes
    void Press(const Dialog& dialog, int button) const;   // and waits until it is gone
    void Answer(std::wstring_view caption, std::wstring_view text, int button) const;  // text: how it begins
    void AnswerFileDialog(const std::wstring& path, int button = IDOK) const;
    std::wstring NameInFileDialog() const;

    // Tabs and the active document
    int Tabs() const;
    int ActiveTab() const;
    std::wstring TabLabel(int index) const;
    RECT TabRect(int index) const;  // client coordinates of the tab control
    POINT TabCentre(int index) const { return Centre(TabRect(index)); }
    HWND Sci() const;  // editor of the active tab
    LRESULT Sci(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return Send(Sci(), message, wParam, lParam);
    }
    std::string Text() const;
    void Type(std::string_view utf8) const;  // replaces the selection: a modification like any other
    bool Modified() const { return Sci(SCI_GETMODIFY) != 0; }
    int Line() const;    // of the caret, from 1
    int Column() const;  // bytes before the caret in its line, from 1

    // Toolbar
    bool ButtonShown(int command) const;
    bool ButtonWorks(int command) const;
    RECT ButtonRect(int command) const;  // client coordinates of the bar
    POINT ButtonPlace(int command) const { return Centre(ButtonRect(command)); }

    // Panes
    std::wstring Output() const;
    bool AwaitOutput(std::wstring_view part, int milliseconds = kDeadline) const;

    COLORREF ColourAt(HWND pane, std::size_t at) const;  // of a character of a Rich Edit pane; selects it

    // As the system tells a window that it is on a screen of that resolution.
    void ShowAt(int dpi, int width, int height) const;

    // Real input
    void Foreground() const;
    void Keys(std::initializer_list<int> keys) const;    // the last one while the others are held
    void Drag(HWND window, POINT from, POINT to) const;  // client coordinates of the window
    void Click(HWND window, POINT at, DWORD down = MOUSEEVENTF_LEFTDOWN, int times = 1) const;

    std::string Describe() const;  // windows, log and output, for a failed test
};
