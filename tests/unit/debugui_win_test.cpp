// The debug pane as a window over real programs, in this process: when it reads, threads, and editing of registers.
#include "debug_fixture.h"

#include "app/app_state.h"
#include "debugui/debug_pane.h"
#include "debugui/pane_internal.h"
#include "resources/ids.h"

#include <commctrl.h>

#include <functional>

namespace {

using namespace debugtest;

constexpr UINT kAskForRefresh = WM_APP + 77;

LRESULT CALLBACK ParentProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == kAskForRefresh) DebugPaneInvalidate();
    return DefWindowProcW(window, message, wParam, lParam);
}

class DebugPane : public DebugBothTest {
protected:
    void SetUp() override {
        SettingsDefaults(g_app.settings);
        g_app.hInstance = GetModuleHandleW(nullptr);
        WNDCLASSW description = {};
        description.lpfnWndProc = ParentProc;
        description.hInstance = g_app.hInstance;
        description.lpszClassName = L"KVXETestParent";
        RegisterClassW(&description);
        parent_ = CreateWindowW(description.lpszClassName, L"", WS_POPUP, 0, 0, 700, 400, nullptr, nullptr,
                                g_app.hInstance, nullptr);
        // Not activated, because an activated window takes two seconds to close under an X server without a window
        // manager.
        ShowWindow(parent_, SW_SHOWNOACTIVATE);
        g_app.hDebugPane = DebugPaneCreate(parent_, IDC_DEBUG_PANE);
        ASSERT_NE(g_app.hDebugPane, nullptr);
        SetWindowPos(g_app.hDebugPane, nullptr, 0, 0, 680, 360, SWP_NOZORDER | SWP_SHOWWINDOW);
        DebugBothTest::SetUp();
    }
    void TearDown() override {
        g_app.debugger = {};
        DebugBothTest::TearDown();
        DestroyWindow(parent_);
        g_app.hDebugPane = nullptr;
    }
    // Gives the pane the state of the session, selects a view and refreshes it.
    void Show(DebugTab tab) {
        g_app.debugger = state;
        DebugPaneSelect(tab);
        Refresh();
    }
    void Refresh() {
        const unsigned before = PaneRefreshCount();
        DebugPaneInvalidate();
        EXPECT_TRUE(PumpUntil([&] { return PaneRefreshCount() != before; })) << "no refresh came";
    }
    static bool PumpUntil(const std::function<bool()>& done) {
        const ULONGLONG end = GetTickCount64() + kWaitMs;
        MSG message = {};
        while (!done()) {
            if (GetTickCount64() > end) return false;
            if (MsgWaitForMultipleObjects(0, nullptr, FALSE, 100, QS_ALLINPUT) != WAIT_OBJECT_0) continue;
            while (!done() && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        }
        return true;
    }
    static HWND List() { return GetDlgItem(g_app.hDebugPane, IDC_DEBUG_LIST); }
    static int Rows() {
        return IsWindowVisible(List()) ? static_cast<int>(SendMessageW(List(), LVM_GETITEMCOUNT, 0, 0)) : 0;
    }
    static std::wstring Cell(int row, int column) {
        wchar_t text[256] = {};
        LVITEMW item = {};
        item.iSubItem = column;
        item.pszText = text;
        item.cchTextMax = 256;
        SendMessageW(List(), LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
        return text;
    }
    static int RowOf(int column, const std::wstring& text) {
        for (int row = 0; row < Rows(); ++row)
            if (Cell(row, column).starts_with(text)) return row;
        return -1;
    }
    HWND parent_ = nullptr;
};
FOR_BOTH_KINDS(DebugPane);

TEST_P(DebugPane, ReadsOnceForManyRequestsAndNotWhileHidden) {
    Refresh();
    unsigned before = PaneRefreshCount();
    for (int i = 0; i < 500; ++i) PostMessageW(parent_, kAskForRefresh, 0, 0);
    EXPECT_TRUE(PumpUntil([&] { return PaneRefreshCount() != before; }));
    EXPECT_EQ(PaneRefreshCount(), before + 1) << "each posted step would read the program";
    MSG message = {};
    EXPECT_FALSE(PeekMessageW(&message, parent_, kAskForRefresh, kAskForRefresh, PM_NOREMOVE))
        << "read before the rest";

    ShowWindow(g_app.hDebugPane, SW_HIDE);
    before = PaneRefreshCount();
    DebugPaneInvalidate();
    EXPECT_FALSE(PumpUntil([until = GetTickCount64() + 200, before] {
                     return GetTickCount64() > until || PaneRefreshCount() != before;
                 }) &&
                 PaneRefreshCount() != before);
    ShowWindow(g_app.hDebugPane, SW_SHOW);
    EXPECT_TRUE(PumpUntil([&] { return PaneRefreshCount() != before; })) << "shown again it reads what it missed";
}

TEST_P(DebugPane, TheChosenThreadIsWhatTheViewsShow) {
    ASSERT_TRUE(Start("threads"));
    ASSERT_EQ(RunTo(7), 7);
    Show(DebugTab::Threads);
    const int worker = RowOf(1, L"Worker, shown");
    const int main = RowOf(1, L"Main");
    ASSERT_GE(worker, 0);
    ASSERT_GE(main, 0);
    EXPECT_EQ(Cell(worker, 0), std::to_wstring(state.stopThreadId));
    EXPECT_EQ(Cell(worker, 3), L"line 7");

    Show(DebugTab::Registers);
    const std::wstring pointer = Bits() == 64 ? L"RSP" : L"ESP";
    const std::wstring ofWorker = Cell(RowOf(0, pointer), 1);
    Show(DebugTab::Threads);
    ListViewSelect(PaneList(), main);
    SendMessageW(List(), WM_KEYDOWN, VK_RETURN, 1);
    Refresh();
    EXPECT_EQ(Cell(main, 1), L"Main, shown");
    Show(DebugTab::Registers);
    EXPECT_NE(Cell(RowOf(0, pointer), 1), ofWorker);
    Show(DebugTab::CallStack);
    EXPECT_GE(Rows(), 1);
    EXPECT_NE(Cell(0, 2), L"line 7");

    ASSERT_EQ(Step(), 8);  // a new stop shows the thread that stopped
    Show(DebugTab::CallStack);
    EXPECT_EQ(Cell(0, 2), L"line 8");
}

TEST_P(DebugPane, WritesGeneralRegistersAndNothingElse) {
    const bool wide = Bits() == 64;
    const wchar_t* name = wide ? L"r12" : L"edi";
    const std::uint64_t value = wide ? 0x123456789ABC : 0x9ABCDEF0;
    EXPECT_FALSE(DebugSetRegister(&state, 0, name, 1)) << "without a session";
    ASSERT_TRUE(Start("straight"));
    const RegisterSet before = Registers();
    ASSERT_TRUE(DebugSetRegister(&state, state.stopThreadId, name, value));
    RegisterSet expected = before;
    expected.general[wide ? 12 : 5] = value;
    EXPECT_TRUE(Registers() == expected) << "one register and no other";
    for (const wchar_t* bad : {L"RIP", L"EIP", L"EFL", L"AL", L"", wide ? L"EDI" : L"RDI"})
        EXPECT_FALSE(DebugSetRegister(&state, state.stopThreadId, bad, 1));
    EXPECT_FALSE(DebugSetRegister(&state, 1, name, 1)) << "no such thread";
    if (!wide) EXPECT_FALSE(DebugSetRegister(&state, state.stopThreadId, name, std::uint64_t{1} << 32));
    EXPECT_TRUE(Registers() == expected);
    ASSERT_GT(Step(), 0);
    EXPECT_EQ(Registers().general[wide ? 12 : 5], value) << "the program runs with it";
}

TEST_P(DebugPane, TipsOverRegisterNames) {
    wchar_t tip[64] = {};
    const wchar_t* name = Bits() == 64 ? L"rip" : L"eip";
    g_app.debugger = state;
    EXPECT_FALSE(DebugRegisterTip(name, tip, 64)) << "nothing is debugged";
    ASSERT_TRUE(Start("straight"));
    g_app.debugger = state;
    ASSERT_TRUE(DebugRegisterTip(name, tip, 64));
    EXPECT_NE(std::wstring(tip).find(FormatW(Bits() == 64 ? L"IP = %016llX (" : L"IP = %08llX (", Registers().ip)),
              std::wstring::npos);
    EXPECT_FALSE(DebugRegisterTip(L"total", tip, 64));
    g_app.debugger.run = DebugRun::Running;
    EXPECT_FALSE(DebugRegisterTip(name, tip, 64)) << "a running program has none";
}

}  // namespace
