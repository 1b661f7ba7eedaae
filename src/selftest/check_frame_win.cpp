// Toolbar, panes, files and the end of the program.
#include "base/hex_text.h"
#include "base/utf8.h"
#include "commands/toolbar_table.h"
#include "files/file_io.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "selftest/check_modules.h"
#include "selftest/checks.h"
#include "selftest/samples.h"
#include "settings/compilers.h"

#include <commctrl.h>

#include <vector>

namespace selftest {

namespace {

std::vector<TBBUTTON> Buttons() {
    std::vector<TBBUTTON> buttons;
    const HWND bar = Pane(IDC_TOOLBAR);
    for (LRESULT i = 0, count = Ask(bar, TB_BUTTONCOUNT); i < count; ++i) {
        TBBUTTON button = {};
        if (Ask(bar, TB_GETBUTTON, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&button)) != 0)
            buttons.push_back(button);
    }
    return buttons;
}

// The button is shown and enabled.
bool Works(int command) {
    for (const TBBUTTON& button : Buttons())
        if (button.idCommand == command)
            return (button.fsState & TBSTATE_HIDDEN) == 0 && (button.fsState & TBSTATE_ENABLED) != 0;
    return false;
}

// The buttons stand in the order of the table.
bool InOrder() {
    std::size_t next = 0;
    const std::vector<TBBUTTON> buttons = Buttons();
    for (const ButtonRow& row : kToolbarButtons) {
        if (row.command == 0) continue;
        for (std::size_t i = 0; i < buttons.size(); ++i) {
            if (buttons[i].idCommand != row.command) continue;
            if (i < next) {
                CheckSays("command " + std::to_string(row.command));
                return false;
            }
            next = i;
        }
    }
    return !buttons.empty();
}

bool HavePictures() {
    for (const TBBUTTON& button : Buttons()) {
        if ((button.fsStyle & BTNS_SEP) != 0 || button.iBitmap != I_IMAGENONE || button.idCommand == IDM_COMPILER_MENU)
            continue;
        if (button.iString != 0 && button.iString != -1) continue;
        CheckSays("command " + std::to_string(button.idCommand));
        return false;
    }
    return true;
}

// The pop-up menu with the command, and those that lead to it, get their states as when the user opens them.
bool OpenMenuWith(HMENU menu, int command) {
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        if (GetMenuItemID(menu, i) == static_cast<UINT>(command)) return true;
        const HMENU popup = GetSubMenu(menu, i);
        if (popup == nullptr) continue;
        Ask(Frame(), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(popup), i);
        if (OpenMenuWith(popup, command)) return true;
    }
    return false;
}

bool ItemIs(int command, bool enabled, bool checked = false) {
    const HMENU bar = GetMenu(Frame());
    const UINT state = OpenMenuWith(bar, command) ? GetMenuState(bar, static_cast<UINT>(command), MF_BYCOMMAND) : ~0U;
    const bool is = state != ~0U && ((state & MF_GRAYED) == 0) == enabled && ((state & MF_CHECKED) != 0) == checked;
    if (!is) CheckSays("command " + std::to_string(command));
    return is;
}

std::wstring CompilerButtonText() {
    wchar_t text[256] = {};
    const HWND bar = Pane(IDC_TOOLBAR);
    const LRESULT length = Ask(bar, TB_GETBUTTONTEXTW, IDM_COMPILER_MENU, 0);
    if (length > 0 && length < 256) Ask(bar, TB_GETBUTTONTEXTW, IDM_COMPILER_MENU, reinterpret_cast<LPARAM>(text));
    return text;
}

std::string BytesOf(const std::wstring& path) {
    const HANDLE file =
        CreateFileW(PathForSystem(path.c_str()).c_str(), GENERIC_READ,
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return {};
    std::string bytes(GetFileSize(file, nullptr), '\0');
    DWORD got = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &got, nullptr);
    CloseHandle(file);
    return bytes;
}

// The bytes as hexadecimal numbers.
std::string BytesText(const std::string& bytes) {
    std::wstring text;
    for (const char byte : bytes) text += HexText(static_cast<unsigned char>(byte), 2);
    return ToUtf8(text);
}

}  // namespace

void CheckToolbar() {
    Check(
        "the buttons stand in their order", [] { return InOrder(); });
    Check(
        "each button has a picture", [] { return HavePictures(); });
    Check("without a program the debugger's start works, its stop does not",
          [] { return Await([] { return Works(IDM_DEBUG_BUTTON_START) && !Works(IDM_DEBUG_BUTTON_STOP); }); });
    for (const CompilerProfile& compiler : g_compilers)
        Check("the bar names " + ToUtf8(compiler.name), [&] {
            Command(compiler.command);
            const bool named = Await([&] { return CompilerButtonText().find(compiler.name) != std::wstring::npos; });
            if (!named) CheckSays(ToUtf8(CompilerButtonText()));
            return named;
        });
}

void CheckPanes() {
    static constexpr struct {
        int command, pane;
        const char* name;
    } kPanes[] = {{IDM_VIEW_OUTPUT, IDC_OUTPUT, "output"},
                  {IDM_VIEW_ASM, IDC_ASM, "ASM"},
                  {IDM_VIEW_AI, IDC_AI_CHAT, "assistant"},
                  {IDM_VIEW_DEBUG_PANE, IDC_DEBUG_PANE, "debug"}};
    for (const auto& row : kPanes) {
        const auto visible = [&] { return IsWindowVisible(Pane(row.pane)) != FALSE; };
        const bool before = visible();
        Check(std::string("the ") + row.name + " pane is shown and hidden", [&] {
            Command(row.command);
            if (!Await([&] { return visible() != before; }) || !ItemIs(row.command, true, !before)) return false;
            Command(row.command);
            return Await([&] { return visible() == before; }) && ItemIs(row.command, true, before);
        });
    }
    Check(
        "menu items follow the text, the selection and the program",
        [] {
            if (!ItemIs(IDM_EDIT_UNDO, false) || !ItemIs(IDM_EDIT_CUT, false) || !ItemIs(IDM_DEBUG_STEP_OVER, false))
                return false;
            TypeText("x");
            if (!ItemIs(IDM_EDIT_UNDO, true) || !ItemIs(IDM_EDIT_REDO, false)) return false;
            Command(IDM_EDIT_SELECT_ALL);
            if (!ItemIs(IDM_EDIT_CUT, true)) return false;
            Command(IDM_EDIT_UNDO);
            return ItemIs(IDM_EDIT_UNDO, false) && ItemIs(IDM_EDIT_REDO, true);
        });
    Check("menu items follow the last closed document", [] {
        if (!ItemIs(IDM_FILE_SAVE_AS, true)) return false;
        Command(IDM_FILE_CLOSE);
        return Await([] { return TabCountNow() == 0; }) && ItemIs(IDM_FILE_SAVE_AS, false) &&
               ItemIs(IDM_EDIT_SELECT_ALL, false) && ItemIs(IDM_FILE_NEW, true);
    });
}

void CheckFiles() {
    static constexpr const wchar_t* kNames[] = {L"utf8.bas", L"marked.bas", L"lines.bas", L"ansi.bas"};
    for (int tab = 0; tab < 4; ++tab) {
        const std::wstring name = kNames[tab];
        Check(ToUtf8(name) + " is saved in its own form", [&] {
            ClickTab(tab);
            if (!Await([&] { return ActiveTabNow() == tab; })) return false;
            const std::string before = SelfTestSample(ToUtf8(name));
            EditorAsk(SCI_GOTOPOS, static_cast<WPARAM>(EditorAsk(SCI_GETLENGTH)));
            TypeText("'x");
            if (!Await([] { return EditorAsk(SCI_GETMODIFY) != 0; })) return false;
            Command(IDM_FILE_SAVE);
            const std::string added = "'x";
            const bool saved = Await([&] { return BytesOf(SamplePath(ToUtf8(name))) == before + added; });
            CheckSays(BytesText(BytesOf(SamplePath(ToUtf8(name)))) + "; " + ToUtf8(StatusText()));
            return saved;
        });
    }
}

void CheckExit() {
    Check(
        "File > Exit closes the window",
        [] {
            PostMessageW(Frame(), WM_COMMAND, IDM_FILE_EXIT, 0);
            return Await([] { return IsWindow(Frame()) == FALSE; });
        });
}

}  // namespace selftest
