// The process: start-up, command line, message loop, shut-down. UI thread.
#include "app/app_state.h"
#include "app/command_line.h"
#include "app/detect_report.h"
#include "app/handover.h"
#include "app/handover_files.h"
#include "app/main_window.h"
#include "app/start_page.h"
#include "base/log.h"
#include "base/texts.h"
#include "commands/command_table.h"
#include "commands/quick_open.h"
#include "compile/build.h"
#include "compile/held_console.h"
#include "documents/document_load.h"
#include "documents/file_work.h"
#include "files/file_io.h"
#include "files/libraries.h"
#include "recovery/crash.h"
#include "resources/ids.h"
#include "search/files_search.h"
#include "search/find.h"
#include "search/find_bar.h"
#include "selftest/selftest.h"
#include "settings/compiler_table.h"
#include "settings/file_types.h"
#include "settings/settings_state.h"
#include "settings/settings_store.h"
#include "symbols/peek_window.h"
#include "tabs/tab_switcher.h"
#include "ui/chrome.h"
#include "ui/message.h"
#include "ui/mouse_drag.h"

#include <commctrl.h>
#include <shellapi.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

bool g_testMode = false;
std::string g_testModule;

// The words after the program's name. Empty when `raw` is null or empty.
std::vector<std::wstring> Arguments(const char* raw) {
    std::vector<std::wstring> words;
    if (raw == nullptr || *raw == '\0') return words;
    int count = 0;
    wchar_t** values = CommandLineToArgvW(GetCommandLineW(), &count);
    if (values == nullptr) return words;
    for (int i = 1; i < count; ++i) words.emplace_back(values[i]);
    LocalFree(values);
    return words;
}

void ParseCommandLineEarly(const char* raw) {
    const EarlyOptions early = ParseEarlyOptions(Arguments(raw));
    g_testMode = early.testMode || early.testList;
    g_testModule = early.testList ? "list" : early.testModule;
    if (early.highContrast) ThemeAssumeHighContrast();
    g_selftestTabsMode = early.selftestTabs || SelfTestIsChild();
    if (SelfTestIsChild()) SelfTestTellMessages();
}

// The options that begin with "--selftest". They run before a window of this process is made, because its start would
// write to the user's settings, log and registry.
std::vector<std::wstring> SelfTestOptions(const char* raw) {
    std::vector<std::wstring> options;
    for (const CommandLineStep& step : ParseCommandLineSteps(Arguments(raw)))
        if (step.action == CommandLineAction::SelfTest) options.push_back(step.text);
    return options;
}

// For the installer. "--register" switches the setting of the "Open with" list on for each compiler, "--unregister" takes
// back every entry of this executable in the shell. False when neither is there.
bool ChangesRegistration(const char* raw) {
    const std::vector<std::wstring> words = Arguments(raw);
    const bool on = std::ranges::find(words, L"--register") != words.end();
    if (!on && std::ranges::find(words, L"--unregister") == words.end()) return false;
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(nullptr, ini, kPathCapacity);
    SettingsDefaults(g_app.settings);
    for (const CompilerProfile& compiler : g_compilers) {
        if (on) WriteIniText(ini, compiler.section, L"RegisterExtension", L"1");
        g_app.settings.compilers[compiler.id].registerExtension = 1;
        if (!on && FileExtIsRegistered(compiler.id)) FileExtUnregisterCompiler(compiler.id);
        if (!on) UnregisterFileExtensions(compiler.id);
    }
    if (on) RegisterFileExtensions();
    FileExtNotifyShell();
    return true;
}

bool GivesToRunningCopy(const char* raw) {
    if (g_selftestTabsMode) return false;
    wchar_t folder[kPathCapacity] = {};
    if (GetCurrentDirectoryW(kPathCapacity, folder) == 0) return false;
    const auto files = FilesToHandOver(Arguments(raw), std::wstring(folder) + L'\\');
    return files && HandOver(*files);
}

[[noreturn]] void EndProcess(int code) {
    CloseLog();
    ExitProcess(static_cast<UINT>(code));
}

void ReopenLog() {
    wchar_t directory[kPathCapacity] = {};
    AppExeDirectory(directory, kPathCapacity);
    OpenLog(directory);
    AppLogMsg(L"=== KVX-Editor Session Started (verbose log) ===");
}

void SelectCompiler(int id) {
    if (id == g_app.settings.activeCompiler) return;
    SettingsChange([id](Settings& settings) { OverrideCompiler(g_app.overrides, settings, id); });
}

// Opens a file before the window is ready. A failure is told later, because a box now would keep the rest of the start
// waiting.
void OpenAtStart(const std::wstring& file, std::wstring& problems) {
    std::wstring problem;
    OpenPlace(file, &problem);
    if (!problem.empty()) problems += (problems.empty() ? L"" : L"\n\n") + problem;
}

// `problems` gets what the user is to be told of files.
void RunStep(const CommandLineStep& step, std::wstring& problems) {
    switch (step.action) {
        case CommandLineAction::Open: OpenAtStart(step.text, problems); break;
        case CommandLineAction::SetCompiler: SelectCompiler(step.number); break;
        case CommandLineAction::SetFont:
            SettingsChange([&](Settings& settings) { OverrideFont(g_app.overrides, settings, step.text); });
            break;
        case CommandLineAction::SetFontSize:
            SettingsChange([&](Settings& settings) { OverrideFontSize(g_app.overrides, settings, step.number); });
            break;
        case CommandLineAction::Detect: ShowDetectReport(); EndProcess(0);
        case CommandLineAction::Log: ReopenLog(); break;
        case CommandLineAction::Help: TellUser(Text(L"Editor Help"), CommandLineHelp().c_str(), AskIcon::None); break;
        case CommandLineAction::SelfTest:             // they have run
        case CommandLineAction::HighContrast: break;  // the window has its colours
    }
}

// The first file that the command line opens is read while the window is made. Nothing is read that the start does not
// come to: an option before it may end the program.
void ReadFirstFileAhead(const char* raw) {
    for (const CommandLineStep& step : ParseCommandLineSteps(Arguments(raw))) {
        if (step.action == CommandLineAction::Detect) return;
        if (step.action == CommandLineAction::Open) return ReadPlaceAhead(step.text);
    }
}

// A file that is opened chooses its compiler by its name. One that the command line names holds for its files instead,
// those before it and those after it.
void ParseCommandLine(const char* raw) {
    int compiler = -1;
    std::wstring problems;
    for (const CommandLineStep& step : ParseCommandLineSteps(Arguments(raw))) {
        if (step.action == CommandLineAction::Open && FileWorkCloseIsQueued()) continue;
        if (step.action == CommandLineAction::SetCompiler) compiler = step.number;
        RunStep(step, problems);
        if (step.action == CommandLineAction::Open && compiler >= 0) SelectCompiler(compiler);
    }
    if (!problems.empty()) g_events.noticeWanted(problems.c_str());
}

void InitControls() {
    INITCOMMONCONTROLSEX classes = {};
    classes.dwSize = sizeof(classes);
    classes.dwICC = ICC_TAB_CLASSES | ICC_STANDARD_CLASSES;
    InitCommonControlsEx(&classes);
}

void LogCommandLineResult() {
    AppLogMsg(L"After CLI: activeCompiler=%d", static_cast<int>(g_app.settings.activeCompiler));
    for (const std::uint32_t id : kCompilerSectionOrder)
        AppLogMsg(L"After CLI: %s=%s", g_compilers[id].section, g_app.settings.compilers[id].path);
}

bool IsDown(int key) { return GetKeyState(key) < 0; }

// A command was given by Alt and a key or a click, and Alt is still down.
bool g_altIsUsed = false;

// The key, where the layout of the keyboard matters: the one left of the 1 counts as the backquote, which not every layout
// has there or has at all.
std::uint32_t KeyOfMessage(const MSG& message) {
    constexpr unsigned kScanCodeLeftOfOne = 0x29;
    const bool left = (static_cast<unsigned>(message.lParam) >> 16 & 0x1FF) == kScanCodeLeftOfOne;
    return left && IsDown(VK_CONTROL) ? VK_OEM_3 : static_cast<std::uint32_t>(message.wParam);
}

// Sends the command of a key that is not in the accelerator table (ExtraKeys). False for any other message.
bool TranslateExtraKey(const MSG& message) {
    if (message.message != WM_KEYDOWN && message.message != WM_SYSKEYDOWN) return false;
    if (message.hwnd != g_app.hMainWnd && !IsChild(g_app.hMainWnd, message.hwnd)) return false;
    const int command = CommandOfExtraKey(KeyOfMessage(message), IsDown(VK_CONTROL), IsDown(VK_SHIFT), IsDown(VK_MENU),
                                          message.hwnd == g_app.hEditor);
    if (command == 0) return false;
    g_altIsUsed = IsDown(VK_MENU);
    SendMessageW(g_app.hMainWnd, WM_COMMAND, MAKEWPARAM(command, 1), 0);
    return true;
}

// The end of Alt, which would open the menu although the key with it was a command.
bool IsEndOfUsedAlt(const MSG& message) {
    if (message.message == WM_LBUTTONDOWN && IsDown(VK_MENU)) g_altIsUsed = true;  // a caret more, or a column
    if (message.wParam != VK_MENU) return false;
    const bool up = message.message == WM_SYSKEYUP || message.message == WM_KEYUP;
    const bool pressed = message.message == WM_SYSKEYDOWN && (HIWORD(message.lParam) & KF_REPEAT) == 0;
    return (up || pressed) && std::exchange(g_altIsUsed, false) && up;
}

// True after a key or a button of the mouse, by which a field may have got a selection, or another window the keyboard.
bool IsEndOfInput(UINT message) {
    return message == WM_KEYUP || message == WM_SYSKEYUP || message == WM_LBUTTONUP || message == WM_RBUTTONUP;
}

int RunMessageLoop() {
    HACCEL accelerators = LoadAcceleratorsW(g_app.hInstance, MAKEINTRESOURCEW(IDR_ACCELERATORS));
    MSG message = {};
    for (;;) {
        // One refresh for all that happened since the queue was empty the last time.
        if (!PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE)) MainWnd_RunPendingRefresh();
        if (GetMessageW(&message, nullptr, 0, 0) <= 0) return static_cast<int>(message.wParam);
        if (MouseDragIsMessage(message) || IsEndOfUsedAlt(message) || TabSwitchIsMessage(message) ||
            QuickOpenIsMessage(message) || PeekIsMessage(message))
            continue;
        if (accelerators != nullptr && TranslateAcceleratorW(g_app.hMainWnd, accelerators, &message) != 0) continue;
        if (TranslateExtraKey(message) || StartPageIsMessage(message) || FindDialogIsMessage(&message) ||
            FindBarIsMessage(&message) || FilesDialogIsMessage(&message))
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
        // An editor tells of its selection and its text itself, at each change.
        if (IsEndOfInput(message.message) && message.hwnd != g_app.hEditor) MainWindow_RequestStateRefresh();
    }
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR commandLine, int showCommand) {
    const bool limited = LibrariesLimitSearch();
    if (const auto held = HeldProgramOf(GetCommandLineW())) return HoldConsole(*held);
    g_app.hInstance = instance;
    ParseCommandLineEarly(commandLine);
    if (g_testMode) return RunTestMode(g_testModule.c_str());
    if (const std::vector<std::wstring> options = SelfTestOptions(commandLine); !options.empty())
        return RunSelfTestOptions(options);
    if (ChangesRegistration(commandLine)) return 0;
    StartTurn turn;
    if (GivesToRunningCopy(commandLine)) return 0;
    SettingsDefaults(g_app.settings);
    InitControls();
    HMODULE richEdit = LoadSystemLibrary(L"Msftedit.dll");
    HMODULE unused = nullptr;
    const auto unloadAndFail = [&] {
        if (richEdit != nullptr) FreeLibrary(richEdit);
        CloseLog();
        return 1;
    };
    if (ScintillaLoad(&g_app.scintilla.scintilla, &g_app.scintilla.lexilla, &unused) == 0) {
        TellUser(Text(L"Error"), Text(L"Failed to load Scintilla.dll"), AskIcon::Error);
        return unloadAndFail();
    }
    ReadFirstFileAhead(commandLine);
    wchar_t directory[kPathCapacity] = {};
    AppExeDirectory(directory, kPathCapacity);
    OpenLog(directory);
    if (!limited) AppLogMsg(L"FAIL: SetDefaultDllDirectories");
    CrashWatch();
    CompilerBridgeInit();
    BuildInit();
    if (MainWindow_Init(instance, showCommand) == nullptr) {
        ScintillaUnload(g_app.scintilla.scintilla, g_app.scintilla.lexilla);
        return unloadAndFail();
    }
    turn.End();
    AppLogMsg(L"=== KVX-Editor Startup ===");
    AppLogMsg(L"EXE dir: %s", directory);
    ParseCommandLine(commandLine);
    DocumentReadAheadEnd();  // of a file that was not opened
    LogCommandLineResult();
    MainWnd_CommandLineDone();
    const int code = SelfTestEnd(RunMessageLoop());
    ScintillaUnload(g_app.scintilla.scintilla, g_app.scintilla.lexilla);
    if (richEdit != nullptr) FreeLibrary(richEdit);
    HandoverStartAgain();
    CloseLog();
    return code;
}
