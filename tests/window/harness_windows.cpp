// The program's windows: finding them, reading them, talking to them, and real mouse and keyboard input.
#include "harness.h"

#include <commctrl.h>
#include <dlgs.h>
#include <richedit.h>

#include <algorithm>
#include <cwchar>
#include <utility>

#include "class_name.h"
#include "drag_back.h"
#include "resources/ids.h"

namespace {

// Top-level windows of the process that are on the screen.
std::vector<HWND> WindowsOf(DWORD pid) {
    struct Search {
        DWORD pid;
        std::vector<HWND> found;
    } search{pid, {}};
    EnumWindows(
        [](HWND window, LPARAM data) -> BOOL {
            auto& wanted = *reinterpret_cast<Search*>(data);
            DWORD owner = 0;
            GetWindowThreadProcessId(window, &owner);
            if (owner == wanted.pid && IsWindowVisible(window)) wanted.found.push_back(window);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

std::vector<HWND> Descendants(HWND parent) {
    std::vector<HWND> found;
    EnumChildWindows(
        parent,
        [](HWND window, LPARAM data) -> BOOL {
            reinterpret_cast<std::vector<HWND>*>(data)->push_back(window);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

void SendOne(INPUT input) {
    SendInput(1, &input, sizeof(input));
    Sleep(10);  // lets the program see each step of a drag as its own message
}

void Mouse(DWORD flags) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    SendOne(input);
}

// Under Wine the X server echoes each move a moment later, older places after newer ones: the pointer has arrived only
// when it stays where it was sent.
void MouseTo(POINT screen) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
    input.mi.dx = (screen.x * 65536 + 32768) / GetSystemMetrics(SM_CXSCREEN);
    input.mi.dy = (screen.y * 65536 + 32768) / GetSystemMetrics(SM_CYSCREEN);
    EXPECT_TRUE(WaitFor([&] {
        SendOne(input);
        for (int i = 0; i < 4; ++i) {
            Sleep(10);
            POINT now{};
            if (!GetCursorPos(&now) || now.x != screen.x || now.y != screen.y) return false;
        }
        return true;
    })) << "the mouse does not go where it should";
}

}  // namespace

RemoteBlock::RemoteBlock(HANDLE owner, std::size_t bytes)
    : process(owner),
      address(VirtualAllocEx(owner, nullptr, bytes, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE)),
      size(bytes) {
    EXPECT_NE(address, nullptr) << "no memory in the program, error " << GetLastError();
}
RemoteBlock::~RemoteBlock() { VirtualFreeEx(process, address, 0, MEM_RELEASE); }
void RemoteBlock::Put(const void* data, std::size_t bytes, std::size_t offset) const {
    EXPECT_TRUE(WriteProcessMemory(process, static_cast<char*>(address) + offset, data, bytes, nullptr));
}
void RemoteBlock::Get(void* data, std::size_t bytes, std::size_t offset) const {
    EXPECT_TRUE(ReadProcessMemory(process, static_cast<char*>(address) + offset, data, bytes, nullptr));
}

bool Editor::AwaitReady() {
    const bool ready = WaitFor([&] {
        if (!main)
            for (HWND window : WindowsOf(pid))
                if (ClassOf(window) == L"KVXEEditorWnd") main = window;
        return (main && Log().find(L"DBG WM_USER+200 EXIT") != std::wstring::npos) ||
               WaitForSingleObject(process, 0) == WAIT_OBJECT_0;
    });
    const bool running = WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
    EXPECT_TRUE(ready && running) << "start-up did not complete\n" << Describe();
    return ready && running;
}

LRESULT Editor::Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) const {
    DWORD_PTR result = 0;
    bool answered = false, stood = true;  // while the machine slept nothing can have been answered
    while (!answered && stood) {
        const ULONGLONG began = GetTickCount64();
        SetLastError(0);
        answered = SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, kDeadline, &result) != 0;
        stood = GetTickCount64() - began > kDeadline + 2000;
    }
    if (!answered)
        ADD_FAILURE() << "message " << message << "(" << wParam << ") to " << Utf8(ClassOf(window))
                      << " was not answered, error " << GetLastError() << "\n"
                      << Describe();
    return static_cast<LRESULT>(result);
}

std::wstring Editor::TextOf(HWND window) const {
    const auto length = static_cast<std::size_t>(Send(window, WM_GETTEXTLENGTH));
    std::wstring text(length + 1, L'\0');
    const auto got =
        static_cast<std::size_t>(Send(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data())));
    text.resize(std::min(got, length));
    return text;
}

std::wstring Editor::Status(int part) const {
    const RemoteBlock block(process, 2048);
    wchar_t text[1024] = {};
    Send(Child(IDC_STATUS_BAR), SB_GETTEXTW, static_cast<WPARAM>(part), block.At());
    block.Get(text, sizeof(text));
    text[1023] = 0;
    return text;
}

GUITHREADINFO Editor::Input() const {
    GUITHREADINFO info{};
    info.cbSize = sizeof(info);
    GetGUIThreadInfo(GetWindowThreadProcessId(main, nullptr), &info);
    return info;
}

bool Editor::AwaitMenu(bool open) const {
    const bool came = WaitFor([&] { return ((Input().flags & GUI_INMENUMODE) != 0) == open; });
    EXPECT_TRUE(came) << (open ? "no menu\n" : "the menu stays\n") << Describe();
    return came;
}

namespace {

// A dialog may close while it is looked at, and its texts are empty then.
std::wstring TextIfThere(HWND window) {
    std::wstring text(8192, L'\0');
    DWORD_PTR got = 0;
    const auto place = reinterpret_cast<LPARAM>(text.data());
    const LRESULT answered = SendMessageTimeoutW(window, WM_GETTEXT, text.size(), place, SMTO_NORMAL, kDeadline, &got);
    EXPECT_TRUE(answered != 0 || !IsWindow(window)) << "a dialog does not answer";
    text.resize(answered != 0 ? got : 0);
    return text;
}

}  // namespace

std::vector<Dialog> Editor::Dialogs() const {
    std::vector<Dialog> found;
    for (HWND window : WindowsOf(pid)) {
        if (ClassOf(window) != L"#32770") continue;
        Dialog dialog{window, TextIfThere(window), L""};
        for (HWND child : Descendants(window))
            if (ClassOf(child) == L"Static") dialog.text += TextIfThere(child);
        found.push_back(dialog);
    }
    return found;
}

Dialog Editor::AwaitDialog(std::wstring_view caption) const {
    Dialog found{};
    WaitFor([&] {
        for (const Dialog& dialog : Dialogs())
            if (dialog.caption == caption) found = dialog;
        return found.window != nullptr || WaitForSingleObject(process, 0) == WAIT_OBJECT_0;
    });
    EXPECT_NE(found.window, nullptr) << "no dialog \"" << Utf8(caption) << "\"\n" << Describe();
    return found;
}

void Editor::Press(const Dialog& dialog, int button) const {
    if (!dialog.window) return;
    PostMessageW(dialog.window, WM_COMMAND, static_cast<WPARAM>(button),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog.window, button)));
    EXPECT_TRUE(WaitFor([&] { return !IsWindow(dialog.window) || !IsWindowVisible(dialog.window); }))
        << "\"" << Utf8(dialog.caption) << "\" stays open";
}

void Editor::Answer(std::wstring_view caption, std::wstring_view text, int button) const {
    const Dialog dialog = AwaitDialog(caption);
    EXPECT_EQ(Utf8(dialog.text.substr(0, text.size())), Utf8(text));
    Press(dialog, button);
}

// The common dialog with its name field, an edit control that is bare or inside a combo box.
static std::pair<Dialog, HWND> AwaitFileDialog(const Editor& editor) {
    Dialog dialog{};
    HWND field = nullptr;
    WaitFor([&] {
        for (const Dialog& candidate : editor.Dialogs())
            for (int id : {cmb13, edt1})
                if (HWND found = GetDlgItem(candidate.window, id)) dialog = candidate, field = found;
        return field != nullptr;
    });
    EXPECT_NE(field, nullptr) << "no file dialog\n" << editor.Describe();
    for (HWND inner : Descendants(field))
        if (ClassOf(inner) == L"Edit") field = inner;
    return {dialog, field};
}

std::wstring Editor::NameInFileDialog() const { return TextOf(AwaitFileDialog(*this).second); }

void Editor::AnswerFileDialog(const std::wstring& path, int button) const {
    const auto [dialog, field] = AwaitFileDialog(*this);
    ASSERT_NE(field, nullptr);
    Send(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
    EXPECT_EQ(TextOf(field), path);
    Press(dialog, button);
}

int Editor::Tabs() const { return static_cast<int>(Send(Child(IDC_TABS), TCM_GETITEMCOUNT)); }
int Editor::ActiveTab() const { return static_cast<int>(Send(Child(IDC_TABS), TCM_GETCURSEL)); }

std::wstring Editor::TabLabel(int index) const {
    constexpr std::size_t kOffset = 256;
    const RemoteBlock block(process, kOffset + 1024);
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    item.pszText = reinterpret_cast<wchar_t*>(block.At(kOffset));
    item.cchTextMax = 500;
    block.Put(&item, sizeof(item));
    wchar_t text[512] = {};
    if (!Send(Child(IDC_TABS), TCM_GETITEMW, static_cast<WPARAM>(index), block.At())) return L"(no tab)";
    block.Get(text, sizeof(text) - 2, kOffset);
    return text;
}

RECT Editor::TabRect(int index) const {
    return Ask<RECT>(Child(IDC_TABS), TCM_GETITEMRECT, static_cast<WPARAM>(index));
}

bool Editor::ButtonShown(int command) const {
    return Send(Child(IDC_TOOLBAR), TB_ISBUTTONHIDDEN, static_cast<WPARAM>(command)) == 0;
}
bool Editor::ButtonWorks(int command) const {
    return Send(Child(IDC_TOOLBAR), TB_ISBUTTONENABLED, static_cast<WPARAM>(command)) != 0;
}
RECT Editor::ButtonRect(int command) const {
    return Ask<RECT>(Child(IDC_TOOLBAR), TB_GETRECT, static_cast<WPARAM>(command));
}

COLORREF Editor::ColourAt(HWND pane, std::size_t at) const {
    Send(pane, EM_SETSEL, at, static_cast<LPARAM>(at + 1));
    CHARFORMAT2W format{};
    format.cbSize = sizeof(format);
    return Ask(pane, EM_GETCHARFORMAT, SCF_SELECTION, format).crTextColor;
}

void Editor::ShowAt(int dpi, int width, int height) const {
    ShowWindow(main, SW_RESTORE);
    Ask(main, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), RECT{0, 0, width, height});
    Send(main, WM_NULL);
}

// A walk meets nothing when the editors change places meanwhile.
HWND Editor::Sci() const {
    constexpr int kWalks = 20;
    for (int walk = 0; walk < kWalks; ++walk, Sleep(1))
        for (HWND child = GetWindow(main, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
            if (IsWindowVisible(child) && ClassOf(child) == L"Scintilla") return child;
    return nullptr;
}

std::string Editor::Text() const {
    const auto length = static_cast<std::size_t>(Sci(SCI_GETLENGTH));
    const RemoteBlock block(process, length + 1);
    std::string text(length, '\0');
    Sci(SCI_GETTEXT, length, block.At());
    if (length) block.Get(text.data(), length);
    return text;
}

void Editor::Type(std::string_view utf8) const {
    const RemoteBlock block(process, utf8.size() + 1);
    block.Put(utf8.data(), utf8.size());
    Sci(SCI_TARGETFROMSELECTION);
    Sci(SCI_REPLACETARGET, utf8.size(), block.At());
    Sci(SCI_GOTOPOS, static_cast<WPARAM>(Sci(SCI_GETTARGETEND)));
}

int Editor::Line() const {
    return static_cast<int>(Sci(SCI_LINEFROMPOSITION, static_cast<WPARAM>(Sci(SCI_GETCURRENTPOS)))) + 1;
}
int Editor::Column() const {
    return static_cast<int>(Sci(SCI_GETCURRENTPOS) - Sci(SCI_POSITIONFROMLINE, static_cast<WPARAM>(Line() - 1))) + 1;
}

std::wstring Editor::Output() const {
    std::wstring text = TextOf(Child(IDC_OUTPUT));
    // Rich Edit hands out CR LF or bare CR, by its mood: compare with bare LF.
    std::erase(text, L'\n');
    std::replace(text.begin(), text.end(), L'\r', L'\n');
    return text;
}

bool Editor::AwaitOutput(std::wstring_view part, int milliseconds) const {
    const bool found = WaitFor([&] { return Output().find(part) != std::wstring::npos; }, milliseconds);
    EXPECT_TRUE(found) << "the output never held \"" << Utf8(part) << "\"\n" << Describe();
    return found;
}

void Editor::Foreground() const {
    EXPECT_TRUE(WaitFor([&] {
        SetForegroundWindow(main);
        return GetForegroundWindow() == main;
    })) << "the window does not come to the foreground";
}

std::wstring Editor::CellOf(HWND list, int row, int column) const {
    const RemoteBlock block(process, sizeof(LVITEMW) + 1024);
    LVITEMW item = {};
    item.iSubItem = column;
    item.cchTextMax = 500;
    item.pszText = reinterpret_cast<wchar_t*>(block.At(sizeof(item)));
    block.Put(&item, sizeof(item));
    const auto length = static_cast<std::size_t>(Send(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), block.At()));
    wchar_t text[512] = {};
    block.Get(text, 1000, sizeof(item));
    return {text, std::min<std::size_t>(length, 500)};
}

// The last one with the others held. Wine lets go of held keys when the X focus moves, as it does a moment after a dialog
// has gone: only keys that stayed down for a while count, and until then nothing is typed.
void Editor::Keys(std::initializer_list<int> keys) const {
    const std::vector<int> held(keys.begin(), keys.end() - 1);
    const auto send = [](int key, DWORD flags) {
        INPUT input{};
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = static_cast<WORD>(key);
        input.ki.dwFlags = flags;
        SendOne(input);
    };
    const auto release = [&] {
        for (auto key = held.rbegin(); key != held.rend(); ++key) send(*key, KEYEVENTF_KEYUP);
    };
    EXPECT_TRUE(WaitFor([&] {
        if (GetForegroundWindow() != main || !Focus()) return false;
        for (int key : held) send(key, 0);
        Sleep(held.empty() ? 0 : 70);  // the system looks at most every 50 ms at what other processes press
        if (std::all_of(held.begin(), held.end(), [](int key) { return GetAsyncKeyState(key) < 0; })) return true;
        release();
        return false;
    })) << "the keys do not stay pressed\n"
        << Describe();
    send(keys.end()[-1], 0);
    send(keys.end()[-1], KEYEVENTF_KEYUP);
    release();
}

// The button stays down. Both ends are in client coordinates of the window.
static void DragTo(const Editor& editor, HWND window, POINT from, POINT to) {
    constexpr int kSteps = 3;
    // In screen coordinates first: the window may move under the mouse.
    ClientToScreen(window, &from);
    ClientToScreen(window, &to);
    MouseTo(from);
    Mouse(MOUSEEVENTF_LEFTDOWN);
    EXPECT_TRUE(WaitFor([&] { return editor.Input().hwndCapture == window; })) << "the press begins no drag";
    for (int step = 1; step <= kSteps; ++step)
        MouseTo({from.x + (to.x - from.x) * step / kSteps, from.y + (to.y - from.y) * step / kSteps});
}

void Editor::Drag(HWND window, POINT from, POINT to) const {
    DragTo(*this, window, from, to);
    Mouse(MOUSEEVENTF_LEFTUP);
}

void DragAndTakeBack(const Editor& editor, HWND window, POINT from, POINT to) {
    DragTo(editor, window, from, to);
    editor.Keys({VK_ESCAPE});
    EXPECT_TRUE(WaitFor([&] { return editor.Input().hwndCapture == nullptr; })) << "Esc does not end the drag";
    Mouse(MOUSEEVENTF_LEFTUP);
}

void DragAndLoseMouse(const Editor& editor, HWND window, POINT from, POINT to) {
    POINT end = to;
    ClientToScreen(window, &end);
    DragTo(editor, window, from, to);
    EXPECT_TRUE(WaitFor([&] {
        POINT held = from;
        ClientToScreen(window, &held);
        return held.x == end.x && held.y == end.y;
    })) << "the window does not follow the mouse";
    editor.Send(window, WM_CANCELMODE);
    EXPECT_EQ(editor.Input().hwndCapture, nullptr);
    Mouse(MOUSEEVENTF_LEFTUP);
}

void Editor::Click(HWND window, POINT at, DWORD down, int times) const {
    ClientToScreen(window, &at);
    MouseTo(at);
    EXPECT_TRUE(WaitFor([&] { return IsWindowEnabled(main) && GetForegroundWindow() == main; })) << "a box is still up";
    for (int i = 0; i < times; ++i) {
        Mouse(down);
        Mouse(down << 1);  // each button's "up" is the bit above its "down"
    }
}

std::string Editor::Describe() const {
    std::string text = "--- windows of the program:\n";
    for (HWND window : WindowsOf(pid)) {
        wchar_t caption[256] = {};
        InternalGetWindowText(window, caption, 256);
        text += "  " + Utf8(ClassOf(window)) + " \"" + Utf8(caption) + "\"";
        if (ClassOf(window) == L"#32770")
            for (HWND child : Descendants(window)) {
                InternalGetWindowText(child, caption, 256);
                text += " [" + Utf8(caption) + "]";
            }
        text += "\n";
    }
    const std::wstring log = Log();
    text += "--- end of the log:\n" + Utf8(log.substr(log.size() > 600 ? log.size() - 600 : 0));
    return text + "--- of " + Utf8(folder.path) + "\n";
}
