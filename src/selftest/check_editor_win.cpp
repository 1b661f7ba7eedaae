// The editor by mouse and keyboard, and the tabs.
#include "base/utf8.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "selftest/check_modules.h"
#include "selftest/checks.h"
#include "settings/compiler_id.h"

#include <string_view>

namespace selftest {

namespace {

LRESULT Caret() { return EditorAsk(SCI_GETCURRENTPOS); }
LRESULT LineStart(int line) { return EditorAsk(SCI_POSITIONFROMLINE, static_cast<WPARAM>(line)); }

bool Selects(LRESULT from, LRESULT to) {
    return Await([&] { return EditorAsk(SCI_GETSELECTIONSTART) == from && EditorAsk(SCI_GETSELECTIONEND) == to; });
}

bool ShowsText(std::string_view part) {
    return Await([&] { return EditorText().find(part) != std::string::npos; });
}

bool IsColoured(std::string_view word) {
    const std::size_t at = EditorText().find(word);
    return at != std::string::npos &&
           Await([&] { return EditorAsk(SCI_GETSTYLEAT, at) != EditorAsk(SCI_GETSTYLEAT, at + word.size()); });
}

void ActivateTab(int tab, const std::string& text) {
    Check(
        "a click on tab " + std::to_string(tab + 1) + " shows its text",
        [&] {
            ClickTab(tab);
            return Await([&] { return ActiveTabNow() == tab; }) && ShowsText(text);
        });
}

}  // namespace

void CheckMouse() {
    const HWND editor = EditorNow();
    EditorAsk(SCI_GOTOPOS, 0);
    const LRESULT word = LineStart(2);
    Check(
        "a click moves the caret",
        [&] {
            Click(editor, PlaceOf(word + 3));
            return Await([&] { return Caret() == word + 3; });
        });
    Check("a click beyond the end of a line goes to its end", [&] {
        POINT at = PlaceOf(word);
        at.x += 2000;
        Click(editor, at);
        return Await([&] { return Caret() == EditorAsk(SCI_GETLINEENDPOSITION, 2); });
    });
    Check("a double click selects a word", [&] {
        Click(editor, PlaceOf(word + 2), 0, 2);
        return Selects(word, word + 5);
    });
    Check("a drag selects", [&] {
        Sleep(GetDoubleClickTime() + 50);  // else it would be the third click
        Drag(editor, PlaceOf(LineStart(4)), PlaceOf(LineStart(6) + 4));
        return Selects(LineStart(4), LineStart(6) + 4);
    });
    Check(
        "a click with Shift extends the selection",
        [&] {
            Click(editor, PlaceOf(LineStart(3)));
            Sleep(GetDoubleClickTime() + 50);
            Click(editor, PlaceOf(LineStart(5) + 2), MK_SHIFT);
            return Selects(LineStart(3), LineStart(5) + 2);
        });
    Check("the wheel scrolls", [&] {
        const LRESULT before = EditorAsk(SCI_GETFIRSTVISIBLELINE);
        PostMessageW(editor, WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-3 * WHEEL_DELTA)), 0);
        return Await([&] { return EditorAsk(SCI_GETFIRSTVISIBLELINE) > before; });
    });
}

void CheckTabs() {
    Check("three tabs are open", [] { return Await([] { return TabCountNow() == 3; }); });
    ActivateTab(0, "one = 1");
    ActivateTab(1, "two = 2");
    ActivateTab(2, "three = 3");
    Check(
        "the mouse selects in the tab that is shown",
        [] {
            const LRESULT start = LineStart(1);
            Click(EditorNow(), PlaceOf(start + 1), 0, 2);
            return Selects(start, start + 5);
        });
    Check(
        "the next tab after the last is the first",
        [] {
            Command(IDM_NEXT_TAB);
            return Await([] { return ActiveTabNow() == 0; }) && ShowsText("one = 1");
        });
    Check(
        "the previous tab of the first is the last",
        [] {
            Command(IDM_PREVIOUS_TAB);
            return Await([] { return ActiveTabNow() == 2; });
        });
    Check(
        "the selection is still there", [] { return Selects(LineStart(1), LineStart(1) + 5); });
    Check("closing the one in the middle keeps the others", [] {
        ClickTab(1);
        if (!Await([] { return ActiveTabNow() == 1; })) return false;
        Command(IDM_FILE_CLOSE);
        return Await([] { return TabCountNow() == 2; }) && TabTextOf(0).starts_with(L"one") &&
               TabTextOf(1).starts_with(L"three");
    });
}

void CheckEditing() {
    Check("a new document is empty", [] {
        const int before = TabCountNow();
        Command(IDM_FILE_NEW);
        return Await([&] { return TabCountNow() == before + 1; }) && EditorText().empty();
    });
    Check("typing reaches the text", [] {
        TypeText("' first\r' second");
        return ShowsText("' first") && ShowsText("' second");
    });
    Check("undo and redo", [] {
        const std::string typed = EditorText();
        for (int i = 0; i < 40 && !EditorText().empty(); ++i) Command(IDM_EDIT_UNDO);
        const bool undone = EditorText().empty();
        for (int i = 0; i < 40 && EditorText() != typed; ++i) Command(IDM_EDIT_REDO);
        return undone && EditorText() == typed;
    });
    Check(
        "select all and delete",
        [] {
            Command(IDM_EDIT_SELECT_ALL);
            Ask(EditorNow(), SCI_CLEAR);
            return EditorText().empty();
        });
    Check(
        "closing it leaves the others",
        [] {
            const int before = TabCountNow();
            Command(IDM_FILE_CLOSE);
            return Await([&] { return TabCountNow() == before - 1; });
        });
    Check(
        "an edited file is saved",
        [] {
            ClickTab(0);
            if (!ShowsText("PBMAIN")) return false;
            EditorAsk(SCI_GOTOPOS, 0);
            TypeText("' edited\r");
            Command(IDM_FILE_SAVE);
            return Await([] { return EditorAsk(SCI_GETMODIFY) == 0; }) && ShowsText("' edited");
        });
    Check("words of BASIC have colours", [] { return IsColoured("FUNCTION"); });
    Check("words of C have colours", [] {  // from the library beside the program
        const bool coloured = DropFile(MakeSample("colours.c")) && IsColoured("return");
        Command(IDM_FILE_CLOSE);
        ClickTab(0);
        return coloured;
    });
    static constexpr struct {
        int command;
        const char* name;
    } kGuarded[] = {{IDM_DEBUG_STOP, "Stop"},         {IDM_DEBUG_CONTINUE, "Continue"},   {IDM_DEBUG_PAUSE, "Pause"},
                    {IDM_DEBUG_STEP_OUT, "Step Out"}, {IDM_DEBUG_REGISTERS, "Registers"}, {IDM_DEBUG_MEMORY, "Memory"}};
    for (const auto& row : kGuarded)
        Check(std::string(row.name) + " without a program does nothing", [&] {
            Command(row.command);
            return StatusText().find(L"Stopped at") == std::wstring::npos && IsWindowEnabled(Frame()) != FALSE;
        });
    if (!CompilerIsInstalled(kCompilerKvxb64)) return SkipCheck("a KVXB64 build", "the compiler is not installed");
    Check("a KVXB64 build", [] {
        Command(IDM_USE_KVXB64);
        return BuildSucceeds();
    });
}

}  // namespace selftest
