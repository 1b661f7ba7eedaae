#include "selftest/checks.h"

#include "base/bounded_text.h"
#include "base/utf8.h"
#include "files/file_io.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "selftest/check_modules.h"
#include "selftest/report.h"
#include "selftest/samples.h"
#include "ui/subclass.h"

#include <commctrl.h>
#include <shellapi.h>
#include <shlobj.h>

#include <array>
#include <cstring>
#include <cwchar>
#include <utility>

namespace selftest {

namespace {

constexpr UINT kAskMs = 30'000;
constexpr DWORD kLookMs = 15;
constexpr int kReadyMs = 30'000;

struct ChecksState {
    HWND frame = nullptr;
    bool hung = false;  // the window did not answer; it is not asked again
    bool failed = false;
    std::string why;
};
ChecksState g_checks;

UINT CallMessage() {
    static const UINT message = RegisterWindowMessageW(L"KVX-Editor self-test call");
    return message;
}

LRESULT CALLBACK CallProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    if (message != CallMessage()) return SubclassNext(window, message, wParam, lParam);
    (*reinterpret_cast<const std::function<void()>*>(lParam))();
    return 1;
}

BOOL CALLBACK FindEditor(HWND window, LPARAM found) {
    wchar_t name[16] = {};
    GetClassNameW(window, name, 16);
    if (std::wcscmp(name, L"Scintilla") != 0 || !IsWindowVisible(window)) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

}  // namespace

void SendCheckLine(const CheckLine& line) {
    const std::string text = CheckLineText(line);
    DWORD put = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), text.data(), static_cast<DWORD>(text.size()), &put, nullptr);
}

void ChecksAttach(HWND frame) { SubclassAdd(frame, CallProc); }

bool RunChecks(const SelfTestModule& module, HWND frame) {
    g_checks = {.frame = frame};
    Check("the editor comes up",
          [] { return Await([] { return EditorNow() != nullptr && TabCountNow() > 0; }, kReadyMs); });
    if (!g_checks.failed) RunCheckModule(module.name);
    return !g_checks.failed;
}

void Check(const std::string& name, const std::function<bool()>& holds) {
    SendCheckLine({.end = CheckEnd::Begun, .name = name});
    g_checks.why.clear();
    const bool passed = !g_checks.hung && holds() && !g_checks.hung;
    if (g_checks.hung) g_checks.why = "the window does not answer";
    g_checks.failed = g_checks.failed || !passed;
    SendCheckLine(
        {.end = passed ? CheckEnd::Passed : CheckEnd::Failed, .name = name, .why = passed ? "" : g_checks.why});
}

void SkipCheck(const std::string& name, const std::string& why) {
    SendCheckLine({.end = CheckEnd::Skipped, .name = name, .why = why});
}

void CheckSays(const std::string& why) { g_checks.why = why; }

bool Await(const std::function<bool()>& holds, int milliseconds) {
    for (const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(milliseconds);;) {
        if (holds()) return true;
        if (g_checks.hung || GetTickCount64() > end) return false;
        Sleep(kLookMs);
    }
}

HWND Frame() { return g_checks.frame; }
HWND Pane(int id) { return GetDlgItem(g_checks.frame, id); }

LRESULT Ask(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    DWORD_PTR result = 0;
    if (g_checks.hung || window == nullptr) return 0;
    if (SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, kAskMs, &result) == 0)
        g_checks.hung = IsWindow(window) != FALSE;
    return static_cast<LRESULT>(result);
}

void Command(int id) { Ask(Frame(), WM_COMMAND, static_cast<WPARAM>(id)); }

void OnUiThread(const std::function<void()>& work) { Ask(Frame(), CallMessage(), 0, reinterpret_cast<LPARAM>(&work)); }

std::wstring TextOf(HWND window) {
    const auto length = static_cast<std::size_t>(Ask(window, WM_GETTEXTLENGTH));
    std::wstring text(length + 1, L'\0');
    text.resize(static_cast<std::size_t>(Ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

std::wstring StatusText(int part) {
    wchar_t text[1024] = {};
    const HWND bar = Pane(IDC_STATUS_BAR);
    if (LOWORD(Ask(bar, SB_GETTEXTLENGTHW, static_cast<WPARAM>(part))) < 1024)
        Ask(bar, SB_GETTEXTW, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(text));
    return text;
}

std::wstring OutputText() { return TextOf(Pane(IDC_OUTPUT)); }

int TabCountNow() { return static_cast<int>(Ask(Pane(IDC_TABS), TCM_GETITEMCOUNT)); }
int ActiveTabNow() { return static_cast<int>(Ask(Pane(IDC_TABS), TCM_GETCURSEL)); }

std::wstring TabTextOf(int tab) {
    wchar_t text[512] = {};
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    item.pszText = text;
    item.cchTextMax = 512;
    Ask(Pane(IDC_TABS), TCM_GETITEMW, static_cast<WPARAM>(tab), reinterpret_cast<LPARAM>(&item));
    return text;
}

void ClickTab(int tab) {
    RECT area = {};
    Ask(Pane(IDC_TABS), TCM_GETITEMRECT, static_cast<WPARAM>(tab), reinterpret_cast<LPARAM>(&area));
    Click(Pane(IDC_TABS), {(2 * area.left + area.right) / 3, (area.top + area.bottom) / 2});
}

HWND EditorNow() {
    HWND found = nullptr;
    EnumChildWindows(Frame(), FindEditor, reinterpret_cast<LPARAM>(&found));
    return found;
}

LRESULT EditorAsk(UINT message, WPARAM wParam, LPARAM lParam) { return Ask(EditorNow(), message, wParam, lParam); }

std::string EditorText() {
    std::string text(static_cast<std::size_t>(EditorAsk(SCI_GETLENGTH)) + 1, '\0');
    EditorAsk(SCI_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    text.pop_back();
    return text;
}

void TypeText(const std::string& ascii) {
    const HWND editor = EditorNow();
    const LRESULT before = EditorAsk(SCI_GETLENGTH);
    for (const char c : ascii) PostMessageW(editor, WM_CHAR, static_cast<WPARAM>(c), 1);
    // A sent message overtakes the posted ones.
    Await([&] { return EditorAsk(SCI_GETLENGTH) >= before + static_cast<LRESULT>(ascii.size()); });
}

POINT PlaceOf(LRESULT position) {
    const LRESULT height = EditorAsk(SCI_TEXTHEIGHT);
    return {static_cast<LONG>(EditorAsk(SCI_POINTXFROMPOSITION, 0, position)) + 1,
            static_cast<LONG>(EditorAsk(SCI_POINTYFROMPOSITION, 0, position) + height / 2)};
}

void Click(HWND window, POINT at, WPARAM keys, int times) {
    const LPARAM place = MAKELPARAM(at.x, at.y);
    for (int i = 0; i < times; ++i) {
        PostMessageW(window, WM_LBUTTONDOWN, keys | MK_LBUTTON, place);  // Scintilla counts them itself
        PostMessageW(window, WM_LBUTTONUP, keys, place);
    }
    Ask(window, WM_NULL);
}

void Drag(HWND window, POINT from, POINT to) {
    constexpr int kSteps = 8;
    PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(from.x, from.y));
    for (int i = 1; i <= kSteps; ++i)
        PostMessageW(window, WM_MOUSEMOVE, MK_LBUTTON,
                     MAKELPARAM(from.x + (to.x - from.x) * i / kSteps, from.y + (to.y - from.y) * i / kSteps));
    PostMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(to.x, to.y));
    Ask(window, WM_NULL);
}

std::wstring SamplePath(const std::string& name) {
    std::array<wchar_t, kPathCapacity> folder = {};
    AppExeDirectory(folder.data(), folder.size());
    const std::wstring path = folder.data();
    return (path.empty() || path.back() == L'\\' ? path : path + L'\\') + Utf8ToWideText(name);
}

std::wstring MakeSample(const std::string& name) {
    std::wstring path = SamplePath(name);
    const HANDLE file = CreateFileW(PathForSystem(path.c_str()).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return path;
    const std::string bytes = SelfTestSample(name);
    DWORD put = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &put, nullptr);
    CloseHandle(file);
    return path;
}

bool DropFile(const std::wstring& path) {
    const std::size_t size = sizeof(DROPFILES) + (path.size() + 2) * sizeof(wchar_t);
    const HGLOBAL memory = GlobalAlloc(GHND, size);
    if (memory == nullptr) return false;
    auto* drop = static_cast<DROPFILES*>(GlobalLock(memory));
    drop->pFiles = sizeof(DROPFILES);
    drop->fWide = TRUE;
    std::memcpy(reinterpret_cast<char*>(drop) + sizeof(DROPFILES), path.c_str(), path.size() * sizeof(wchar_t));
    GlobalUnlock(memory);
    PostMessageW(Frame(), WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0);  // the receiver frees it
    const std::wstring name = path.substr(path.rfind(L'\\') + 1);
    return Await([&] { return TabTextOf(ActiveTabNow()).find(name) != std::wstring::npos; });
}

}  // namespace selftest
