// A debugged program and the debug pane as a test drives them from outside.
#pragma once

#include "harness.h"

#include <commctrl.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "editor/margins.h"
#include "resources/ids.h"

namespace debug_driver {

enum Tab { kBreakpoints, kStack, kRegisters, kLocals, kWatches, kMemory, kThreads, kDisassembly };

// Lines 1 to 5 of a source; a PBMAIN that calls it follows.
inline constexpr char kTwice[] =
    "FUNCTION Twice(BYVAL n AS LONG) AS LONG\r\n"  // 1
    "    LOCAL result AS LONG\r\n"                 // 2
    "    result = n + n\r\n"                       // 3
    "    FUNCTION = result\r\n"                    // 4
    "END FUNCTION\r\n";                            // 5

// The program with one source open, its own folder, and the debug pane shown.
struct Session {
    std::wstring sourceName;
    ProgramFolder folder{kCompilers};
    Editor editor;
    HWND pane;

    Session(const std::wstring& fileName, std::string_view source, const std::wstring& compiler, int theme = 0,
            const std::wstring& options = L"")
        : sourceName(fileName),
          editor(Prepared(folder, sourceName, source, theme),
                 OpenArgument(folder.File(sourceName)) + L" --compiler " + compiler + options) {
        editor.Do(IDM_VIEW_DEBUG_PANE);
        pane = editor.Child(IDC_DEBUG_PANE);
    }
    static const ProgramFolder& Prepared(const ProgramFolder& folder, const std::wstring& fileName,
                                         std::string_view source, int theme) {
        folder.Write(fileName, source);
        folder.SetIni(L"Editor", L"Theme", std::to_wstring(theme));
        folder.KeepNoSession();
        return folder;
    }
    bool AwaitStop(int line, int milliseconds = kDeadline) const {
        const std::wstring status = L"Stopped at " + sourceName + L":" + std::to_wstring(line);
        const bool came = WaitFor([&] { return editor.Status() == status; }, milliseconds);
        EXPECT_TRUE(came) << "line " << line << ", status: " << Utf8(editor.Status()) << "\n" << editor.Describe();
        return came;
    }
    // Steps over until the status is `exit`, at most 100 times; the lines of the stops.
    std::vector<int> StepOverToTheEnd(const std::wstring& exit) const {
        std::vector<int> lines;
        while (editor.Status() != exit && lines.size() < 100) {
            const std::wstring before = editor.Output();
            editor.Do(IDM_DEBUG_STEP_OVER);
            const bool done = WaitFor([&] {
                return editor.Output().size() > before.size() &&
                       (editor.Status() == exit || editor.Output().ends_with(L"\n"));
            });
            if (!done) break;
            if (editor.Status() != exit)
                lines.push_back(static_cast<int>(editor.Sci(SCI_MARKERNEXT, 0, 1 << kMarkCurrent)) + 1);
        }
        return lines;
    }
    void CaretTo(int line) const { editor.Sci(SCI_GOTOLINE, static_cast<WPARAM>(line - 1)); }
    bool Start() const {
        editor.Do(IDM_DEBUG_BUILD_START);
        return WaitFor([&] { return editor.Status().starts_with(L"Stopped at " + sourceName + L":"); },
                       kBuildDeadline) &&
               AwaitConsole();
    }
    // The program's own window comes up when it likes and takes the focus: what is typed comes after that.
    bool AwaitConsole() const {
        const auto shown = [] {
            const HWND console = FindWindowW(L"WineConsoleClass", nullptr);
            return console != nullptr && IsWindowVisible(console);
        };
        EXPECT_TRUE(WaitFor(shown)) << "no console";
        editor.Foreground();
        return true;
    }
    HWND List() const { return GetDlgItem(pane, IDC_DEBUG_LIST); }
    HWND Tabs() const { return GetDlgItem(pane, IDC_DEBUG_TABS); }
    HWND Address() const { return GetDlgItem(pane, IDC_DEBUG_ADDRESS); }
    HWND Memory() const { return GetDlgItem(pane, IDC_DEBUG_TEXT); }
    // As another program would do it: the control tells its owner.
    void Select(Tab tab) const { editor.Send(Tabs(), TCM_SETCURFOCUS, static_cast<WPARAM>(tab)); }
    int Rows() const { return IsWindowVisible(List()) ? static_cast<int>(editor.Send(List(), LVM_GETITEMCOUNT)) : 0; }
    std::wstring Cell(int row, int column) const { return editor.CellOf(List(), row, column); }
    std::wstring All() const {
        std::wstring text;
        for (int row = 0; row < Rows(); ++row)
            for (int column = 0; column < 4; ++column) text += Cell(row, column) + (column < 3 ? L"|" : L"\n");
        return text;
    }
    bool Await(const std::wstring& part) const {
        return WaitFor([&] { return All().find(part) != std::wstring::npos; });
    }
    int RowOf(int column, const std::wstring& text) const {
        for (int row = 0; row < Rows(); ++row)
            if (Cell(row, column) == text) return row;
        return -1;
    }
    std::wstring Register(const std::wstring& name) const { return Cell(RowOf(0, name), 1); }
    void SelectRow(int row) const {
        LVITEMW state = {};
        state.state = state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        editor.Ask(List(), LVM_SETITEMSTATE, static_cast<WPARAM>(row), state);
    }
    int PaneListRow() const {
        return static_cast<int>(editor.Send(List(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
    }
    POINT Place(int row, int column) const {  // a little right of a cell's left edge
        const RECT bounds = editor.Ask(List(), LVM_GETITEMRECT, static_cast<WPARAM>(row), RECT{LVIR_BOUNDS, 0, 0, 0});
        LONG left = bounds.left + 12;
        for (int i = 0; i < column; ++i)
            left += static_cast<LONG>(editor.Send(List(), LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(i)));
        return {left, (bounds.top + bounds.bottom) / 2};
    }
    // From the menu of a watch's kind: by its place in there, from 0.
    void ChooseKind(int row, int kind) const {
        editor.Foreground();
        editor.Click(List(), Place(row, 1), MOUSEEVENTF_LEFTDOWN, 2);
        editor.AwaitMenu(true);
        for (int i = 0; i <= kind; ++i) editor.Keys({VK_DOWN});
        editor.Keys({VK_RETURN});
        editor.AwaitMenu(false);
    }
    // From the menu of a right click: by the item's letter, or by arrows.
    void ChooseByMouse(HWND window, POINT at, std::initializer_list<int> keys) const {
        editor.Foreground();  // the program's own window may have come up since
        editor.Click(window, at, MOUSEEVENTF_RIGHTDOWN);
        editor.AwaitMenu(true);
        for (const int key : keys) editor.Keys({key});
        editor.AwaitMenu(false);
    }
    // From the menu of the window that has the keyboard.
    void ChooseByKeys(int key) const {
        editor.Keys({VK_APPS});
        editor.AwaitMenu(true);
        editor.Keys({key});
        editor.AwaitMenu(false);
    }
    int Checked(int row) const {  // 1: no, 2: yes
        return static_cast<int>(editor.Send(List(), LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_STATEIMAGEMASK) >>
                                12);
    }
    void Key(HWND window, int key) const { editor.Send(window, WM_KEYDOWN, static_cast<WPARAM>(key), 1); }
    HWND Field() const { return FindWindowExW(List(), nullptr, L"Edit", nullptr); }
    // Text into the field that is open over a cell; Enter takes it.
    void Enter(const std::wstring& text) const {
        EXPECT_TRUE(WaitFor([&] { return Field() != nullptr; })) << "no field is open";
        editor.Send(Field(), EM_SETSEL, 0, -1);
        for (const wchar_t c : text) editor.Send(Field(), WM_CHAR, c, 1);
        Key(Field(), VK_RETURN);
    }
    void GoTo(const std::wstring& address) const {
        editor.Send(Address(), EM_SETSEL, 0, -1);
        if (address.empty()) editor.Send(Address(), WM_CLEAR);
        for (const wchar_t c : address) editor.Send(Address(), WM_CHAR, c, 1);
        Key(Address(), VK_RETURN);
    }
    // Typing in whichever row adds one.
    void AddWatch(const std::wstring& expression) const {
        SelectRow(0);
        editor.Send(List(), WM_CHAR, static_cast<WPARAM>(expression.front()), 1);
        EXPECT_TRUE(WaitFor([&] { return Field() != nullptr; })) << "typing opens no field";
        for (const wchar_t c : expression.substr(1)) editor.Send(Field(), WM_CHAR, c, 1);
        Key(Field(), VK_RETURN);
    }
    void RunToLine(int line) const {
        CaretTo(line);
        editor.Do(IDM_DEBUG_RUN_TO_CURSOR);
        AwaitStop(line);
    }
};

}  // namespace debug_driver
