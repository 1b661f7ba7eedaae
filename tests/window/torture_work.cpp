// Pieces of work that take several steps, as a person does them: each may be broken off at any of them.
#include "window/torture_driver.h"

#include <utility>

#include "resources/ids.h"
#include "support/start_process.h"

namespace torture {

namespace {

constexpr int kMostSteps = 6;

// The keyboard is in the text, and the window can be used.
bool InText(Driver& driver) {
    PostMessageW(driver.editor.main, MSG_FOCUS_EDITOR, 0, 0);
    return driver.Settle() && !driver.IsAsking() && driver.editor.Sci() != nullptr;
}

void GiveSome(Driver& driver, int command) {
    for (int i = driver.Below(kMostSteps); i >= 0; --i) driver.Post(command);
}

// To a place in the text where a name may stand.
void GoSomewhere(Driver& driver) {
    const auto length = static_cast<int>(driver.editor.Sci(SCI_GETLENGTH));
    const LRESULT at = driver.editor.Sci(SCI_WORDSTARTPOSITION, static_cast<WPARAM>(driver.Below(length + 1)), TRUE);
    driver.editor.Sci(SCI_GOTOPOS, static_cast<WPARAM>(at));
}

}  // namespace

// Carets in lines below each other, typed into, undone.
Texts ManyCarets(Driver& driver) {
    constexpr const wchar_t* kTyped[] = {L"x", L"(", L"\"", L"END ", L"a.b", L"'", L"\u6f22"};
    constexpr int kKeys[] = {VK_BACK, VK_DELETE, VK_RETURN, VK_TAB, VK_HOME, VK_END, VK_LEFT, VK_ESCAPE};
    if (!InText(driver)) return Texts::Any;
    GoSomewhere(driver);
    const bool below = driver.Chance(70);
    driver.Say(below ? "carets below" : "carets above");
    GiveSome(driver, below ? IDM_CARET_BELOW : IDM_CARET_ABOVE);
    for (int i = driver.Below(kMostSteps); i >= 0 && driver.Settle() && !driver.IsAsking(); --i) {
        if (driver.Chance(40))
            driver.Key(driver.OneOf(kKeys));
        else
            driver.Letters(driver.OneOf(kTyped));
        if (driver.Chance(25)) GiveSome(driver, IDM_EDIT_UNDO);
        if (driver.Chance(10)) driver.Post(IDM_EDIT_PASTE);
    }
    return Texts::Any;
}

// A snippet is typed at the start of a line, its fields are filled in.
Texts SnippetFields(Driver& driver) {
    constexpr const wchar_t* kNames[] = {L"for", L"function", L"select", L"type", L"if", L"forlocal", L"sub", L"none"};
    if (!InText(driver)) return Texts::Any;
    const wchar_t* const name = driver.OneOf(kNames);
    driver.Say("snippet " + Utf8(name));
    GoSomewhere(driver);
    driver.Letters(L"\r");
    driver.Letters(name);
    driver.Key(driver.Chance(85) ? VK_TAB : VK_RETURN);
    for (int i = driver.Below(kMostSteps); i > 0 && driver.Settle() && !driver.IsAsking(); --i) {
        if (driver.Chance(60)) driver.Letters(driver.Chance(80) ? L"n" : L"(a, b)");
        if (driver.Chance(20)) driver.Post(IDM_EDIT_UNDO);
        if (driver.Chance(10)) driver.Post(IDM_NEXT_TAB);
        driver.Key(driver.Chance(85) ? VK_TAB : VK_ESCAPE);
    }
    return Texts::Any;
}

Texts RenameSymbol(Driver& driver) {
    if (!InText(driver)) return Texts::Any;
    GoSomewhere(driver);
    const std::wstring name = (driver.Chance(80) ? L"renamed" : L"END ") + std::to_wstring(driver.Below(5));
    driver.Say("rename to " + Utf8(name));
    driver.Post(IDM_SYMBOL_RENAME);
    HWND box = nullptr;
    WaitFor([&] { return (box = driver.Box()) != nullptr; }, 500);
    const HWND field = box != nullptr ? GetDlgItem(box, IDC_RENAME_NAME) : nullptr;
    if (field == nullptr || !driver.Settle()) return Texts::Any;
    driver.Ask(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
    if (driver.Chance(80)) PostMessageW(box, WM_COMMAND, IDOK, reinterpret_cast<LPARAM>(GetDlgItem(box, IDOK)));
    if (driver.Settle() && driver.Chance(50)) driver.Post(IDM_EDIT_UNDO);
    return Texts::Any;
}

// A peek is looked through, while its text may change or go.
Texts Peek(Driver& driver) {
    constexpr int kKeys[] = {VK_DOWN, VK_UP, VK_TAB, VK_F12, VK_NEXT, VK_RETURN, VK_ESCAPE};
    constexpr int kMeanwhile[] = {IDM_NEXT_TAB, IDM_FILE_CLOSE,      IDM_EDIT_UNDO,
                                  IDM_FOLD_ALL, IDM_VIEW_DARK_THEME, IDM_PEEK_CALLERS};
    if (!InText(driver)) return Texts::Any;
    GoSomewhere(driver);
    const int command = driver.Chance(60) ? IDM_PEEK_DEFINITION : IDM_PEEK_CALLERS;
    driver.Say("peek " + std::to_string(command));
    driver.Post(command);
    for (int i = driver.Below(kMostSteps); i > 0 && driver.Settle() && !driver.IsAsking(); --i) {
        const int key = driver.OneOf(kKeys);
        driver.Say("  key " + std::to_string(key));
        driver.Key(key);
        if (driver.Chance(15)) driver.Post(driver.OneOf(kMeanwhile));
    }
    return Texts::Any;
}

// Another program changes the active file; the text is read again and goes back behind that.
Texts UndoOverReload(Driver& driver) {
    const std::wstring path = driver.ActiveFile();
    if (path.empty() || !InText(driver) || driver.editor.Sci(SCI_GETLENGTH) > 200000) return Texts::Any;
    std::string text = driver.editor.Text();
    const auto at = static_cast<std::size_t>(driver.Below(static_cast<int>(text.size()) + 1));
    const std::size_t gone = driver.Chance(50) ? static_cast<std::size_t>(driver.Below(40)) : 0;
    text.replace(at, gone, driver.Chance(50) ? "\r\n' by another program\r\n" : "y");
    driver.Say("reload " + Utf8(path));
    driver.Unsure(3000);
    WriteIfFree(path, text);
    driver.Post(IDM_FILE_RELOAD);
    if (!driver.Settle() || driver.IsAsking()) return Texts::Any;
    GiveSome(driver, IDM_EDIT_UNDO);
    if (driver.Chance(50)) driver.Letters(L"z");
    if (driver.Settle() && !driver.IsAsking() && driver.Chance(40)) driver.CheckUndo();
    return Texts::Any;
}

Texts Sessions(Driver& driver) {
    const std::wstring path = driver.folder.File(L"files\\s" + std::to_wstring(driver.Below(2)) + L".kvxsess");
    const bool save = driver.Chance(50) || !Exists(path);
    driver.Say(save ? "session, save" : "session, open");
    driver.Unsure(2000);
    driver.ChooseBy(save ? IDM_SESSION_SAVE_AS : IDM_SESSION_OPEN, path);
    return Texts::Any;
}

// Another start of the program gives its files to this one and ends.
Texts SecondStart(Driver& driver) {
    const auto names = FileNames();
    std::wstring line = L"\"" + driver.folder.File(L"KVX-Editor.exe") + L"\"";
    for (int i = driver.Below(3); i >= 0; --i) line += OpenArgument(driver.folder.File(driver.OneOf(names)));
    driver.Say("second start " + Utf8(line.substr(driver.folder.path.size())));
    if (!RunToEnd(line, driver.folder.path.c_str(), 20000)) driver.Say("  it did not end");
    return Texts::Any;
}

// Hits are walked through while the search still runs or after it.
Texts FoundInFiles(Driver& driver) {
    const HWND list = GetDlgItem(driver.editor.Child(IDC_FILES_PANE), IDC_FILES_LIST);
    if (list == nullptr || !IsWindowVisible(list)) return Texts::Any;
    driver.Say("hits");
    for (int i = driver.Below(kMostSteps); i >= 0; --i) {
        PostMessageW(list, WM_KEYDOWN, driver.Chance(60) ? VK_DOWN : VK_END, 1);
        if (driver.Chance(40)) PostMessageW(list, WM_KEYDOWN, VK_RETURN, 1);
        if (driver.Chance(15)) PostMessageW(list, WM_KEYDOWN, VK_DELETE, 1);
        if (!driver.Settle() || driver.IsAsking()) break;
    }
    return Texts::Any;
}

// A selection is dragged with the mouse to another place, or given up by Escape.
Texts DragText(Driver& driver) {
    if (!InText(driver) || IsIconic(driver.editor.main)) return Texts::Any;
    const HWND sci = driver.editor.Sci();
    GoSomewhere(driver);
    const LRESULT from = driver.editor.Sci(SCI_GETCURRENTPOS),
                  to = driver.editor.Sci(SCI_WORDENDPOSITION, static_cast<WPARAM>(from), TRUE);
    driver.editor.Sci(SCI_SETSEL, static_cast<WPARAM>(from), to);
    const POINT start = {static_cast<LONG>(driver.editor.Sci(SCI_POINTXFROMPOSITION, 0, from)) + 3,
                         static_cast<LONG>(driver.editor.Sci(SCI_POINTYFROMPOSITION, 0, from)) + 3};
    RECT client = {};
    GetClientRect(sci, &client);
    const POINT end = {driver.Below(client.right + 1), driver.Below(client.bottom + 1)};
    POINT screen = start;
    ClientToScreen(sci, &screen);
    SetForegroundWindow(driver.editor.main);
    if (from == to || !PtInRect(&client, start) || !driver.Settle() || WindowFromPoint(screen) != sci)
        return Texts::Any;
    driver.Say("drag text " + std::to_string(from) + " to " + std::to_string(to));
    driver.DragByMouse(sci, start, end, driver.Chance(25));
    return Texts::Any;
}

}  // namespace torture
