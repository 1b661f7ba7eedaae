// What is done at random, one row each. Longer pieces of work are in torture_work.cpp.
#include "window/torture_driver.h"

#include <commctrl.h>

#include <algorithm>

#include "commands/command_table.h"
#include "resources/ids.h"

namespace torture {

namespace {

// Commands that no unattended run can drive.
struct NotDriven {
    int command;
    const char* why;
};
constexpr NotDriven kNotDriven[] = {
    {IDM_FILE_EXIT, "ends the program, which the end of the run does"},
    {IDM_TAB_OPEN_FOLDER, "starts the system's file manager, which stays"},
    {IDM_AI_TRANSCRIBE, "listens to a microphone"},
    {IDM_PROJECT_FOLDER, "the system's box of folders takes no path"},
};

const std::string kLong(5000, 'x');
const std::string kOddTexts[] = {
    "",
    "x",
    " ",
    "\t",
    "\n",
    "\r\n",
    "\r",
    "é",
    "漢字",
    "\xF0\x9F\x98\x80",
    "e\xCC\x81",
    "\xE2\x80\xAE rtl",
    "\xE2\x80\xA8",
    "\xEF\xBB\xBF",
    "\xFF\xFE\xC0",
    std::string("nul\0nul", 7),
    kLong,
    "PRINT \"a\"; 1 + 2\r\n",
    "FUNCTION Half(BYVAL n AS LONG) AS LONG\r\n  FUNCTION = n \\ 2\r\nEND FUNCTION\r\n",
    "END IF\r\n",
    "' comment\r\n\r\n\r\n",
    "SELECT CASE x\r\nCASE 1\r\n",
    "\"open string\r\n",
    "LOCAL i AS LONG\n",
    "#INCLUDE \"part.inc\"\r\n",
};
constexpr const wchar_t* kTyped[] = {L"PRINT ",
                                     L"FOR i = 1 TO 10\r",
                                     L"LOCAL total AS LONG\r",
                                     L"tot",
                                     L"MID$(",
                                     L"\"",
                                     L"IF x THEN\r",
                                     L"FUNCTION a()\r",
                                     L"(",
                                     L"[{",
                                     L"' \u00e9\u6f22",
                                     L"x.y(1, ",
                                     L"END "};
constexpr int kKeys[] = {VK_UP,  VK_DOWN, VK_LEFT,   VK_RIGHT,  VK_HOME,   VK_END, VK_PRIOR, VK_NEXT, VK_RETURN,
                         VK_TAB, VK_BACK, VK_DELETE, VK_ESCAPE, VK_ESCAPE, VK_F1,  VK_F3,    VK_F6,   VK_SPACE,
                         VK_F12, 'A',     'Z',       VK_APPS,   VK_F2,     VK_F4,  VK_F8};

bool Takes(const Driver& driver, HWND sci) { return sci != nullptr && driver.editor.Sci(SCI_GETREADONLY) == 0; }

std::size_t Boundary(const std::string& text, std::size_t at) {
    at = std::min(at, text.size());
    while (at > 0 && at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80) --at;
    return at;
}

// A change of a range by the control's own message: the model knows what comes of it.
Texts Change(Driver& driver) {
    const HWND sci = driver.editor.Sci();
    const auto model = driver.models.find(sci);
    if (!Takes(driver, sci) || model == driver.models.end() || model->second.size() > 500000) return Texts::Stay;
    std::string& text = model->second;
    const std::size_t from = Boundary(text, static_cast<std::size_t>(driver.Below(static_cast<int>(text.size()) + 1)));
    const std::size_t to = Boundary(text, from + static_cast<std::size_t>(driver.Chance(50) ? driver.Below(60) : 0));
    std::string put = driver.OneOf(kOddTexts);
    if (put.starts_with('\xFF')) put = "x";  // nobody can type what is no text
    driver.Say("change " + std::to_string(from) + " to " + std::to_string(to) + " " +
               testing::PrintToString(put).substr(0, 40));
    const RemoteBlock block(driver.editor.process, put.size() + 1);
    block.Put(put.c_str(), put.size() + 1);
    driver.editor.Sci(SCI_SETTARGETRANGE, from, static_cast<LPARAM>(to));
    driver.editor.Sci(SCI_REPLACETARGET, put.size(), block.At());
    text.replace(from, to - from, put);
    return Texts::Known;
}

Texts Type(Driver& driver) {
    const std::wstring text = driver.OneOf(kTyped);
    driver.Say("type " + testing::PrintToString(Utf8(text)));
    if (driver.Chance(80)) PostMessageW(driver.editor.main, MSG_FOCUS_EDITOR, 0, 0), driver.Settle();
    driver.Letters(text);
    return Texts::Any;
}

Texts Paste(Driver& driver) {
    const std::string& text = driver.OneOf(kOddTexts);
    driver.Say("paste " + testing::PrintToString(text).substr(0, 40));
    const std::wstring wide = Wide(text);
    if (OpenClipboard(nullptr)) {
        EmptyClipboard();
        const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, (wide.size() + 1) * sizeof(wchar_t));
        wide.copy(static_cast<wchar_t*>(GlobalLock(block)), wide.size());
        static_cast<wchar_t*>(GlobalLock(block))[wide.size()] = 0;
        GlobalUnlock(block);
        SetClipboardData(CF_UNICODETEXT, block);
        CloseClipboard();
    }
    for (int i = driver.Below(3); i >= 0; --i) driver.Post(IDM_EDIT_PASTE);
    return Texts::Any;
}

Texts Select(Driver& driver) {
    const HWND sci = driver.editor.Sci();
    if (sci == nullptr) return Texts::Stay;
    const int length = static_cast<int>(driver.editor.Sci(SCI_GETLENGTH)) + 1;
    const auto place = [&](int most) {  // between two characters
        const LRESULT at = driver.editor.Sci(SCI_POSITIONAFTER, static_cast<WPARAM>(driver.Below(most)));
        return static_cast<int>(driver.editor.Sci(SCI_POSITIONBEFORE, static_cast<WPARAM>(at)));
    };
    const int from = place(length), to = driver.Chance(50) ? place(length) : from;
    const int carets = driver.Chance(25) ? driver.Below(5) : 0;
    driver.Say("select " + std::to_string(from) + " to " + std::to_string(to) + ", more " + std::to_string(carets));
    driver.editor.Sci(SCI_SETSEL, static_cast<WPARAM>(from), to);
    for (int i = 0; i < carets; ++i) {
        const int at = place(length);
        const LRESULT end = driver.Chance(50) ? at : driver.editor.Sci(SCI_POSITIONAFTER, static_cast<WPARAM>(at));
        driver.editor.Sci(SCI_ADDSELECTION, static_cast<WPARAM>(at), end);
    }
    if (driver.Chance(10)) driver.editor.Sci(SCI_SETSELECTIONMODE, SC_SEL_RECTANGLE);
    if (driver.Chance(10)) driver.editor.Sci(SCI_CANCEL);
    return Texts::Stay;
}

Texts UndoRedo(Driver& driver) {
    const int steps = driver.Below(10) + 1;
    const bool undo = driver.Chance(60);
    driver.Say(std::string(undo ? "undo " : "redo ") + std::to_string(steps));
    for (int i = 0; i < steps; ++i) driver.Post(undo ? IDM_EDIT_UNDO : IDM_EDIT_REDO);
    return Texts::Any;
}

Texts UndoAll(Driver& driver) {
    driver.Say("undo all, redo all");
    driver.CheckUndo();
    return Texts::Any;
}

Texts Command(Driver& driver) {
    static const std::vector<int> commands = DrivenCommands();
    const int count = driver.Chance(10) ? driver.Below(12) : 1;
    for (int i = 0; i < count; ++i) {
        const int command = driver.OneOf(commands);
        driver.Say("command " + std::to_string(command));
        driver.Post(command);
        // Nobody can give a command while a box waits for its answer.
        if (i + 1 < count && (!driver.Settle() || driver.IsAsking())) break;
    }
    return Texts::Any;
}

// Looks only: no text may change by them.
Texts Look(Driver& driver) {
    constexpr int kLooks[] = {
        IDM_VIEW_TOOLBAR,    IDM_VIEW_STATUS_BAR, IDM_VIEW_OUTPUT,      IDM_VIEW_ASM,         IDM_VIEW_AI,
        IDM_VIEW_TREE,       IDM_VIEW_TERMINAL,   IDM_VIEW_ERROR_LIST,  IDM_VIEW_OUTLINE,     IDM_VIEW_FILES_RESULTS,
        IDM_VIEW_DEBUG_PANE, IDM_VIEW_WHITESPACE, IDM_VIEW_WORD_WRAP,   IDM_VIEW_ERROR_TEXTS, IDM_VIEW_ZOOM_IN,
        IDM_VIEW_ZOOM_OUT,   IDM_VIEW_ZOOM_RESET, IDM_VIEW_LIGHT_THEME, IDM_VIEW_DARK_THEME,  IDM_STYLE_CODE,
        IDM_STYLE_STUDIO,    IDM_STYLE_PLUS,      IDM_STYLE_SUBLIME,    IDM_STYLE_CLASSIC,    IDM_STYLE_OWN,
        IDM_BOOKMARK_TOGGLE, IDM_BOOKMARK_NEXT,   IDM_FOLD_ALL,         IDM_UNFOLD_ALL,       IDM_FOLD,
        IDM_NEXT_TAB,        IDM_PREVIOUS_TAB,    IDM_NAV_BACK,         IDM_NAV_FORWARD,      IDM_NEXT_PANE,
        IDM_PREVIOUS_PANE,   IDM_TAB_PIN,         IDM_DEBUG_BREAKPOINT, IDM_EDIT_MATCH,       IDM_TAB_WIDTH_8,
        IDM_TAB_WIDTH_3,     IDM_PANE_SIZES,      IDM_PANE_CLOSE,       IDM_USE_KVXA64,       IDM_USE_KVXB64,
        IDM_USE_KELDORBASIC, IDM_NEXT_COMPILER,   IDM_OUTPUT_CLEAR,     IDM_PROFILE_FAST,     IDM_SEARCH_CLEAR_MARKS};
    const int command = driver.OneOf(kLooks);
    driver.Say("look " + std::to_string(command));
    driver.Post(command);
    return Texts::Stay;
}

Texts Keys(Driver& driver) {
    const int count = driver.Below(6) + 1;
    for (int i = 0; i < count; ++i) {
        const int key = driver.OneOf(kKeys);
        driver.Say("key " + std::to_string(key));
        driver.Key(key);
    }
    return Texts::Any;
}

Texts RealKeys(Driver& driver) {
    constexpr int kHeld[] = {VK_CONTROL, VK_SHIFT, VK_MENU};
    const int first = driver.OneOf(kHeld), second = driver.OneOf(kHeld);
    int key = driver.Chance(50) ? 'A' + driver.Below(26) : driver.OneOf(kKeys);
    // Alt+F4 ends the program, Alt+Space and Alt+Tab are the system's.
    if ((first == VK_MENU || second == VK_MENU) && (key == VK_F4 || key == VK_SPACE || key == VK_TAB)) key = 'X';
    const int form = driver.Below(4);
    driver.Say("keys " + std::to_string(first) + "+" + std::to_string(second) + "+" + std::to_string(key) + " form " +
               std::to_string(form));
    if (form == 0) driver.Real({key});
    if (form == 1) driver.Real({first, key});
    if (form == 2 && first != second) driver.Real({first, second, key});
    if (form == 3) driver.Real({VK_CONTROL, key});
    return Texts::Any;
}

std::vector<HWND> PanesOf(HWND parent) {
    std::vector<HWND> found;
    EnumChildWindows(
        parent,
        [](HWND window, LPARAM data) -> BOOL {
            if (IsWindowVisible(window)) reinterpret_cast<std::vector<HWND>*>(data)->push_back(window);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

POINT SomePoint(Driver& driver, HWND window) {
    RECT client = {};
    GetClientRect(window, &client);
    return {driver.Below(client.right + 1), driver.Below(client.bottom + 1)};
}

Texts Mouse(Driver& driver) {
    const std::vector<HWND> panes = PanesOf(driver.editor.main);
    if (panes.empty()) return Texts::Stay;
    const HWND pane = driver.OneOf(panes);
    const POINT at = SomePoint(driver, pane);
    constexpr UINT kButtons[] = {WM_LBUTTONDOWN, WM_LBUTTONDOWN, WM_LBUTTONDOWN, WM_RBUTTONDOWN, WM_MBUTTONDOWN};
    const UINT button = driver.OneOf(kButtons);
    driver.Say("click " + std::to_string(GetDlgCtrlID(pane)) + " at " + std::to_string(at.x) + "," +
               std::to_string(at.y) + " by " + std::to_string(button));
    driver.Click(pane, at, button);
    if (button == WM_LBUTTONDOWN && driver.Chance(30)) driver.Click(pane, at, WM_LBUTTONDBLCLK);
    if (button == WM_RBUTTONDOWN && driver.Chance(50)) {
        POINT screen = at;
        ClientToScreen(pane, &screen);
        PostMessageW(pane, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(pane), MAKELPARAM(screen.x, screen.y));
    }
    if (driver.Chance(20)) PostMessageW(pane, WM_MOUSEWHEEL, MAKEWPARAM(0, driver.Chance(50) ? 360 : -360), 0);
    return Texts::Any;
}

Texts Splitters(Driver& driver) {
    constexpr int kBars[] = {IDC_SPLIT_OUTPUT,     IDC_SPLIT_ASM,     IDC_SPLIT_TREE,   IDC_SPLIT_DEBUG,
                             IDC_SPLIT_ERROR_LIST, IDC_SPLIT_RESULTS, IDC_SPLIT_OUTLINE};
    const int id = driver.OneOf(kBars);
    const HWND bar = driver.editor.Child(id);
    const POINT to = {driver.Below(1200) - 600, driver.Below(800) - 400};
    driver.Say("splitter " + std::to_string(id) + " by " + std::to_string(to.x) + "," + std::to_string(to.y));
    if (bar != nullptr && IsWindowVisible(bar)) driver.Drag(bar, {2, 2}, to);
    return Texts::Stay;
}

Texts Tabs(Driver& driver) {
    const int count = driver.editor.Tabs();
    if (count == 0) return Texts::Stay;
    const int from = driver.Below(count), to = driver.Below(count);
    driver.Say("tab " + std::to_string(from) + " to " + std::to_string(to));
    driver.Drag(driver.editor.Child(IDC_TABS), driver.editor.TabCentre(from), driver.editor.TabCentre(to));
    return Texts::Stay;
}

Texts Size(Driver& driver) {
    const int width = 150 + driver.Below(1150), height = 100 + driver.Below(800), form = driver.Below(8);
    driver.Say("size " + std::to_string(width) + "x" + std::to_string(height) + " form " + std::to_string(form));
    const HWND main = driver.editor.main;
    if (form == 0) ShowWindowAsync(main, SW_MINIMIZE);
    if (form == 1) ShowWindowAsync(main, SW_MAXIMIZE);
    if (form > 1) {
        ShowWindowAsync(main, SW_RESTORE);
        SetWindowPos(main, nullptr, driver.Below(200), driver.Below(100), width, height,
                     SWP_NOZORDER | SWP_NOACTIVATE | SWP_ASYNCWINDOWPOS);
    }
    return Texts::Stay;
}

Texts Scaling(Driver& driver) {
    constexpr int kScalings[] = {96, 120, 144, 168, 192};
    const int dpi = driver.OneOf(kScalings);
    driver.Say("scaling " + std::to_string(dpi));
    driver.editor.ShowAt(dpi, 500 + driver.Below(700), 400 + driver.Below(450));
    return Texts::Stay;
}

// A command of the table, more often than by chance.
template <int command>
Texts Give(Driver& driver) {
    driver.Say("command " + std::to_string(command));
    driver.Post(command);
    return Texts::Any;
}

Texts Save(Driver& driver) {
    driver.Say("save " + Utf8(driver.ActiveFile()));
    driver.Post(IDM_FILE_SAVE);
    if (driver.Settle()) driver.CheckSaved();
    return Texts::Any;
}

// Another program changes or deletes a file, which may be open.
Texts Outside(Driver& driver) {
    const auto names = FileNames();
    const std::wstring& name = driver.OneOf(names);
    const std::string& text = driver.OneOf(kOddTexts);
    const bool gone = driver.Chance(15);
    driver.Say((gone ? "outside, delete " : "outside, write ") + Utf8(name));
    const std::wstring path = driver.folder.File(name);
    driver.Unsure(3000);
    if (gone)
        DeleteFileW(path.c_str());
    else
        WriteIfFree(path, text);
    return Texts::Any;
}

Texts Build(Driver& driver) {
    constexpr const char* kScripts[] = {"print ok\n",
                                        "errors 30 a.bas\nexit 1\n",
                                        "talk 5000\n",
                                        "flood 20000\n",
                                        "sleep 700\nprint late\n",
                                        "make\nprint made\n",
                                        "raw \\xFF\\xFE\\x00\\x0D\\x0Aabc\n",
                                        "sleep 10000\n",
                                        "flood 0\n",
                                        "exit 3\n"};
    constexpr int kBuilds[] = {IDM_BUILD, IDM_BUILD, IDM_BUILD_SYNTAX, IDM_BUILD_ALL, IDM_BUILD_RUN, IDM_RUN_IN_OUTPUT};
    const char* const script = driver.OneOf(kScripts);
    const int command = driver.OneOf(kBuilds), wait = driver.Below(600);
    driver.Say("build " + std::to_string(command) + " " + testing::PrintToString(std::string(script)) + " then " +
               std::to_string(wait) + " ms");
    WriteIfFree(driver.folder.File(L"KVXA64\\fake.txt"), script);
    if (driver.Chance(70)) driver.Post(IDM_USE_KVXA64);
    driver.Post(command);
    Sleep(static_cast<DWORD>(wait));
    if (driver.Chance(50)) driver.Post(IDM_BUILD_STOP);
    return Texts::Any;
}

// Opens a fresh copy of a source that can be built and debugged.
bool OpenFresh(Driver& driver) {
    constexpr const wchar_t* kPrograms[] = {L"steps.bas", L"loop.bas", L"threads.bas", L"endless.bas", L"maze.bas"};
    const std::wstring name = driver.OneOf(kPrograms), copy = L"src\\run" + std::to_wstring(driver.number) + name;
    driver.Say("fresh " + Utf8(copy));
    driver.folder.Write(copy, ReadBytes(driver.folder.File(L"kept\\" + name)).value_or(""));
    return driver.ChooseBy(IDM_FILE_OPEN, driver.folder.File(copy));
}

Texts Debug(Driver& driver) {
    constexpr int kSteps[] = {IDM_DEBUG_STEP_OVER,
                              IDM_DEBUG_STEP_OVER,
                              IDM_DEBUG_STEP_INTO,
                              IDM_DEBUG_STEP_OUT,
                              IDM_DEBUG_CONTINUE,
                              IDM_DEBUG_PAUSE,
                              IDM_DEBUG_RUN_TO_CURSOR,
                              IDM_DEBUG_RESTART,
                              IDM_DEBUG_BREAKPOINT,
                              IDM_DEBUG_STEP_INSTRUCTION,
                              IDM_DEBUG_STEP_OVER_INSTRUCTION,
                              IDM_DEBUG_SET_NEXT,
                              IDM_DEBUG_STOP,
                              IDM_DEBUG_REGISTERS,
                              IDM_DEBUG_CALL_STACK,
                              IDM_DEBUG_DISASSEMBLY,
                              IDM_DEBUG_MEMORY,
                              IDM_DEBUG_ENABLE_BREAKPOINT};
    const auto stopped = [&] { return driver.editor.Status().starts_with(L"Stopped at "); };
    if (!stopped()) {
        if (driver.Chance(75) && !OpenFresh(driver)) return Texts::Any;
        if (driver.Chance(50) && driver.editor.Sci() != nullptr)
            driver.editor.Sci(SCI_GOTOLINE, static_cast<WPARAM>(driver.Below(8)));
        constexpr int kCompilers[] = {IDM_USE_KVXB64, IDM_USE_KVXC64, IDM_USE_KVXA32, IDM_USE_KELDORBASIC};
        const int compiler = driver.OneOf(kCompilers);
        driver.Say("debug with " + std::to_string(compiler));
        driver.Post(compiler);
        driver.Post(IDM_DEBUG_BREAKPOINT);
        driver.Post(driver.Chance(70) ? IDM_DEBUG_BUILD_START : IDM_DEBUG_START);
        if (!driver.Settle()) return Texts::Any;
        if (driver.Chance(80))
            WaitFor(
                [&] {
                    return stopped() || driver.IsAsking() || driver.Ended() ||
                           !driver.editor.Status().ends_with(L"...");
                },
                6000);
        driver.Say("now " + Utf8(driver.editor.Status()));
    }
    for (int i = driver.Below(8); i > 0 && !driver.IsAsking(); --i) {
        const int step = driver.OneOf(kSteps);
        driver.Say("debug " + std::to_string(step));
        driver.Post(step);
        if (!driver.Settle()) break;
    }
    return Texts::Any;
}

Texts Search(Driver& driver) {
    constexpr int kSearches[] = {IDM_SEARCH_INCREMENTAL, IDM_QUICK_OPEN,        IDM_COMMAND_PALETTE,
                                 IDM_SYMBOL_IN_DOCUMENT, IDM_SYMBOL_IN_PROJECT, IDM_EDIT_COMPLETE};
    constexpr const wchar_t* kWords[] = {L"PRINT", L"tot",    L"e", L"view", L"@a", L":3",
                                         L"files", L"\u6f22", L"(", L"#x",   L">z"};
    const int command = driver.OneOf(kSearches);
    const std::wstring word = driver.OneOf(kWords);
    const bool exits = command == IDM_COMMAND_PALETTE && word == L"e";  // the command that ends the program
    const bool take = driver.Chance(40) && !exits;
    driver.Say("search " + std::to_string(command) + " " + Utf8(word) + (take ? " Return" : " Escape"));
    driver.Post(command);
    if (!driver.Settle()) return Texts::Any;
    driver.Letters(word);
    if (driver.Chance(70)) driver.Settle();
    driver.Key(VK_DOWN);
    driver.Key(take ? VK_RETURN : VK_ESCAPE);
    return Texts::Any;
}

Texts FilesSearch(Driver& driver) {
    const bool replace = driver.Chance(20);
    driver.Say(replace ? "replace in files" : "find in files");
    driver.Post(replace ? IDM_FILES_REPLACE : IDM_FILES_FIND);
    if (!driver.Settle()) return Texts::Any;
    const HWND box = driver.FilesBox();
    if (box == nullptr) return Texts::Any;
    if (const HWND what = GetDlgItem(box, IDC_FILES_WHAT))
        driver.editor.Send(what, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"PRINT"));
    PostMessageW(box, WM_COMMAND, IDOK, reinterpret_cast<LPARAM>(GetDlgItem(box, IDOK)));
    if (driver.Chance(50)) Sleep(static_cast<DWORD>(driver.Below(200)));
    driver.Key(VK_ESCAPE);
    return Texts::Any;
}

Texts Menus(Driver& driver) {
    const int letter = 'A' + driver.Below(26), downs = driver.Below(12);
    driver.Say("menu " + std::to_string(letter) + " down " + std::to_string(downs));
    PostMessageW(driver.editor.main, WM_SYSCOMMAND, SC_KEYMENU, letter);
    driver.Settle();
    for (int i = 0; i < downs; ++i) driver.Key(driver.Chance(85) ? VK_DOWN : VK_RIGHT);
    driver.Key(VK_ESCAPE);  // what the menus hold is driven by command
    return Texts::Stay;
}

struct ActionRow {
    int weight;
    Texts (*act)(Driver&);
};
constexpr ActionRow kActions[] = {
    {26, Command},
    {16, Change},
    {12, Look},
    {10, Type},
    {6, Paste},
    {10, Select},
    {6, UndoRedo},
    {2, UndoAll},
    {10, Keys},
    {5, RealKeys},
    {10, Mouse},
    {4, Splitters},
    {3, Tabs},
    {4, Size},
    {3, Scaling},
    {8, Give<IDM_FILE_OPEN>},
    {4, Give<IDM_FILE_CLOSE>},
    {5, Save},
    {3, Outside},
    {3, Build},
    {3, Debug},
    {6, Search},
    {2, FilesSearch},
    {2, Give<IDM_PROJECT_SETTINGS>},
    {2, Menus},
    {3, ManyCarets},
    {3, SnippetFields},
    {2, RenameSymbol},
    {2, Peek},
    {3, UndoOverReload},
    {2, Sessions},
    {1, SecondStart},
    {2, FoundInFiles},
    {2, DragText},
};

}  // namespace

std::vector<int> DrivenCommands() {
    std::vector<int> commands;
    for (const CommandRow& row : CommandTable())
        if (std::ranges::find(kNotDriven, row.id, &NotDriven::command) == std::end(kNotDriven))
            commands.push_back(row.id);
    return commands;
}

void Driver::Act() {
    ++number;
    random.seed(seed * 1000003U + static_cast<unsigned>(number));
    if (!Settle()) return;
    if (InMenu()) {
        Say("in a menu");
        if (Chance(50)) Key(Chance(50) ? VK_DOWN : VK_RIGHT);
        return LeaveMenu();
    }
    CheckBoxes();
    if (const HWND box = Box()) {
        PlayWithBox(box);
        return Unsure(700);
    }
    if (!IsWindowEnabled(editor.main)) return Sleep(10);
    int total = 0;
    for (const ActionRow& row : kActions) total += row.weight;
    int at = Below(total);
    const ActionRow* row = kActions;
    while (at >= row->weight) at -= (row++)->weight;
    if (onlyAction >= 0) row = kActions + static_cast<std::size_t>(onlyAction) % std::size(kActions);
    if (models.empty()) LookAtText(Texts::Any);
    const ULONGLONG before = GetTickCount64();
    const Texts texts = row->act(*this);
    if (!faulty && Settle()) LookAtText(texts);
    if (const ULONGLONG took = GetTickCount64() - before; took > 1500 && !faulty) {
        std::string text = "took " + std::to_string(took) + " ms; lines";
        for (const int pane : {IDC_OUTPUT, IDC_ASM, IDC_AI_CHAT})
            if (const HWND window = editor.Child(pane)) text += " " + std::to_string(Ask(window, EM_GETLINECOUNT));
        Say(text);
    }
}

}  // namespace torture
