// The log of what is done, the wait for its end, what is found to be wrong, and the way back to rest.
#include "window/torture_driver.h"

#include <commctrl.h>

#include <algorithm>

#include "resources/ids.h"

namespace torture {

namespace {

constexpr int kAnswerMs = 30000;  // that a window may leave a message in its queue on a loaded machine
constexpr int kRestMs = 60000;

std::wstring ClassNameOf(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

std::string CaptionOf(HWND window) {
    wchar_t caption[128] = {};
    InternalGetWindowText(window, caption, 128);
    return Utf8(caption);
}

}  // namespace

void Driver::Say(const std::string& what) {
    const std::string line = std::to_string(number) + " " + std::to_string(GetTickCount64() - start) + " " + what;
    std::fprintf(log, "%s\n", line.c_str());
    if (what.starts_with("at rest")) std::printf("torture: %s\n", line.c_str()), std::fflush(stdout);
    std::fflush(log);
    last.push_back(line);
    if (last.size() > kLast) last.pop_front();
}

void Driver::Fault(const std::string& what) {
    if (faulty) return;
    faulty = true;
    std::string text = what + "\nseed " + std::to_string(seed) + ", the last actions:\n";
    for (const std::string& line : last) text += "  " + line + "\n";
    std::fprintf(log, "FAULT %s\n", what.c_str());
    std::fflush(log);
    if (!Ended() && !Variable(L"KVX_TORTURE_LINGER").empty()) Sleep(600000);  // for whoever wants to look at it
    ADD_FAILURE() << text << editor.Describe();
}

bool Driver::Settle() {
    const HWND bar = editor.Child(IDC_STATUS_BAR);
    constexpr UINT kStepMs = 1000;
    DWORD_PTR before = 0;
    const auto ask = [&](DWORD_PTR* result) {
        return SendMessageTimeoutW(bar, CCM_GETUNICODEFORMAT, 0, 0, SMTO_NORMAL, kStepMs, result) != 0;
    };
    // A value of a control that nothing reads is set once all that was posted before has been taken. It is posted again,
    // because work on a file drops what comes meanwhile.
    ULONGLONG sincePosted = kStepMs;
    const auto settled = [&, last = GetTickCount64()]() mutable {
        sincePosted += std::min<ULONGLONG>(GetTickCount64() - last, kStepMs);
        last = GetTickCount64();
        if (sincePosted >= kStepMs) {
            PostMessageW(bar, CCM_SETUNICODEFORMAT, before == 0, 0);
            sincePosted = 0;
        }
        DWORD_PTR value = 0;
        return Ended() || (ask(&value) && (value != 0) != (before != 0));
    };
    if (WaitFor([&] { return Ended() || ask(&before); }, kAnswerMs) && WaitFor(settled, kAnswerMs) && !Ended())
        return true;
    if (Ended()) {
        DWORD code = 0;
        GetExitCodeProcess(editor.process, &code);
        Fault("the program has ended with " + std::to_string(code));
    } else {
        Fault("the window does not answer");
    }
    return false;
}

LRESULT Driver::Ask(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    DWORD_PTR result = 0;
    const bool answered = WaitFor(
        [&] {
            return SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, 1000, &result) != 0 ||
                   !IsWindow(window);
        },
        kAnswerMs);
    if (!answered) Fault("\"" + CaptionOf(window) + "\" does not answer " + std::to_string(message));
    return static_cast<LRESULT>(result);
}

void Driver::Key(int key) {
    const HWND focus = editor.Focus() != nullptr ? editor.Focus() : editor.main;
    const auto code = static_cast<LPARAM>(MapVirtualKeyW(static_cast<UINT>(key), MAPVK_VK_TO_VSC)) << 16 | 1;
    PostMessageW(focus, WM_KEYDOWN, static_cast<WPARAM>(key), code);
    PostMessageW(focus, WM_KEYUP, static_cast<WPARAM>(key), code | static_cast<LPARAM>(0xC0000000));
}

void Driver::Letters(std::wstring_view text) {
    const HWND focus = editor.Focus();
    if (focus == nullptr) return;
    for (const wchar_t letter : text) PostMessageW(focus, WM_CHAR, letter, 1);
}

void Driver::Real(std::initializer_list<int> keys) {
    SetForegroundWindow(Box() != nullptr ? Box() : editor.main);
    std::vector<INPUT> inputs;
    const auto add = [&](int key, DWORD flags) {
        INPUT input = {.type = INPUT_KEYBOARD};
        input.ki.wVk = static_cast<WORD>(key);
        input.ki.dwFlags = flags;
        inputs.push_back(input);
    };
    for (const int key : keys) add(key, 0);
    for (auto key = keys.end(); key != keys.begin();) add(*--key, KEYEVENTF_KEYUP);
    SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
    Sleep(20);
}

void Driver::Click(HWND window, POINT at, UINT down, WPARAM keys) {
    const LPARAM place = MAKELPARAM(at.x, at.y);
    PostMessageW(window, WM_MOUSEMOVE, 0, place);
    PostMessageW(window, down, keys, place);
    PostMessageW(window, down + 1, 0, place);  // each button's "up" follows its "down"
}

void Driver::Drag(HWND window, POINT from, POINT to) {
    PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(from.x, from.y));
    for (int step = 1; step <= 4; ++step)
        PostMessageW(window, WM_MOUSEMOVE, MK_LBUTTON,
                     MAKELPARAM(from.x + (to.x - from.x) * step / 4, from.y + (to.y - from.y) * step / 4));
    PostMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(to.x, to.y));
}

void Driver::DragByMouse(HWND window, POINT from, POINT to, bool escape) {
    constexpr int kSteps = 5;
    const auto send = [](DWORD flags) {
        INPUT input = {.type = INPUT_MOUSE};
        input.mi.dwFlags = flags;
        SendInput(1, &input, sizeof(input));
    };
    ClientToScreen(window, &from);
    ClientToScreen(window, &to);
    SetCursorPos(from.x, from.y);
    send(MOUSEEVENTF_LEFTDOWN);
    for (int step = 1; step <= kSteps; ++step) {
        Sleep(20);
        SetCursorPos(from.x + (to.x - from.x) * step / kSteps, from.y + (to.y - from.y) * step / kSteps);
    }
    if (escape) Real({VK_ESCAPE});
    Sleep(20);
    send(MOUSEEVENTF_LEFTUP);
}

std::vector<HWND> Driver::Boxes() const {
    struct Search {
        const Editor& editor;
        std::vector<HWND> found;
    } search{editor, {}};
    EnumWindows(
        [](HWND window, LPARAM data) -> BOOL {
            auto& wanted = *reinterpret_cast<Search*>(data);
            DWORD owner = 0;
            GetWindowThreadProcessId(window, &owner);
            if (owner == wanted.editor.pid && window != wanted.editor.main && IsWindowVisible(window))
                wanted.found.push_back(window);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

HWND Driver::Box() const {
    if (IsWindowEnabled(editor.main)) return nullptr;
    for (const HWND window : Boxes())
        if (IsWindowEnabled(window) && ClassNameOf(window) == L"#32770") return window;
    return nullptr;
}

void Driver::CheckBoxes() {
    const auto open = [this] {  // but for the two that stay open beside the work
        if (!IsWindowEnabled(editor.main)) return std::string();
        for (const HWND window : Boxes())
            if (ClassNameOf(window) == L"#32770" && GetDlgItem(window, IDC_FIND_WHAT) == nullptr &&
                GetDlgItem(window, IDC_FILES_WHAT) == nullptr && GetDlgItem(window, IDC_BAR_FIELD) == nullptr)
                return CaptionOf(window);
        return std::string();
    };
    // One that ends at this moment is gone soon.
    if (!open().empty() && !WaitFor([&] { return open().empty(); }, 1000))
        Fault("the window can be used while \"" + open() + "\" is open");
}

HWND Driver::FilesBox() const {
    for (const HWND window : Boxes())
        if (GetDlgItem(window, IDC_FILES_WHAT) != nullptr) return window;
    return nullptr;
}

void Driver::LeaveMenu() {
    for (int i = 0; i < 20 && InMenu(); ++i) {
        PostMessageW(editor.Input().hwndMenuOwner, i < 10 ? WM_KEYDOWN : WM_CANCELMODE, i < 10 ? VK_ESCAPE : 0, 0);
        Settle();
    }
    if (InMenu()) Fault("a menu stays open");
}

void Driver::CloseBox(HWND box, int tries) {
    const auto press = [&](int button) {
        PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), reinterpret_cast<LPARAM>(GetDlgItem(box, button)));
    };
    if (IsFileDialog(box)) ++fileDialogs;
    // "No" before "Cancel": what asks whether to save would keep its document open for ever.
    constexpr int kButtons[] = {IDC_CLOSE_DISCARD, IDNO, IDCANCEL, IDOK, IDYES, IDABORT, IDIGNORE};
    std::vector<int> there;
    for (const int button : kButtons)
        if (const HWND window = GetDlgItem(box, button); window != nullptr && IsWindowEnabled(window))
            there.push_back(button);
    if (there.empty() || tries % 8 == 7)
        PostMessageW(box, WM_CLOSE, 0, 0);
    else
        press(there[static_cast<std::size_t>(tries / 3) % there.size()]);
    if (tries > 40) Fault("a box stays open: \"" + CaptionOf(box) + "\"");
}

void Driver::Rest() {
    Say("rest");
    models.clear();
    beginnings.clear();
    int tries = 0, steps = 0;  // steps of 50 ms: the machine may sleep
    const auto late = [&] { return ++steps > kRestMs / 50; };
    for (int step = 0; !faulty; ++step) {
        if (!Settle()) return;
        if (InMenu()) LeaveMenu();
        CheckBoxes();
        if (const HWND box = Box()) {
            CloseBox(box, tries++);
            continue;
        }
        if (!IsWindowEnabled(editor.main)) {  // it waits for work on a file
            if (late()) Fault("the window stays disabled");
            Sleep(50);
            continue;
        }
        tries = 0;
        Key(VK_ESCAPE);
        Post(IDM_DEBUG_STOP);
        Post(IDM_BUILD_STOP);
        Post(IDM_AI_CANCEL);
        const std::wstring status = editor.Status();
        if (editor.Tabs() > 0) Post(IDM_FILE_CLOSE_ALL);
        const bool runs = !StartedProcesses(editor).empty();
        if (step > 3 && editor.Tabs() == 0 && !runs) break;
        if (runs && step > 40)  // it may wait for a user of its own
            for (const DWORD id : StartedProcesses(editor))
                if (const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, id)) {
                    TerminateProcess(process, 1);
                    CloseHandle(process);
                }
        if (late())
            Fault("no rest: " + std::to_string(editor.Tabs()) + " documents, " +
                  std::to_string(StartedProcesses(editor).size()) + " programs, \"" + Utf8(status) + "\"");
        Sleep(50);
    }
    for (const HWND window : Boxes())  // those that do not keep the window from being used
        if (ClassNameOf(window) == L"#32770") PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
    if (faulty) return;
    Post(IDM_PROJECT_CLOSE);
    Post(IDM_OUTPUT_CLEAR);
    Post(IDM_VIEW_LIGHT_THEME);
    Post(IDM_VIEW_ZOOM_RESET);
    Settle();
    editor.ShowAt(96, 1000, 700);
    Settle();
    if (const HWND box = Box()) Fault("a box came up at rest: \"" + CaptionOf(box) + "\"");
}

}  // namespace torture
