// Random use of the real window, repeatable by a seed: what the actions, the boxes and the looks between them share.
#pragma once

#include "window/harness.h"

#include <cstdint>
#include <cstdio>
#include <deque>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace torture {

// What an action may do to the texts.
enum class Texts : std::uint8_t {
    Stay,   // to none anything
    Known,  // it tells the model itself what the active one becomes
    Any,    // the model takes the texts as they are then
};

// What the system has given to the program. Two of them compare only between moments of rest.
struct Counts {
    int handles = 0;    // of the kernel, of the process
    int gdi = 0;        // of the process
    int user = 0;       // windows, menus, icons; under Wine of all programs of this desktop
    int windows = 0;    // of the process, shown or not
    int threads = 0;    // of the process
    int processes = 0;  // that it or its children have started and that still run
};
Counts CountsNow(const Editor& editor);
std::string TextOf(const Counts& counts);
std::vector<DWORD> StartedProcesses(const Editor& editor);  // process ids, without the editor's own

struct Driver {
    const Editor& editor;
    const ProgramFolder& folder;
    unsigned seed;
    std::FILE* log;
    int number = 0;       // of the action
    int onlyAction = -1;  // when set, nothing else is done, to find out what causes a fault
    ULONGLONG start = GetTickCount64();
    int fileDialogs = 0, filesChosen = 0;
    bool faulty = false;                     // nothing more is done
    std::mt19937 random;                     // of this action: what one draws changes no other
    std::deque<std::string> last;            // what was done last, at most kLast
    std::map<HWND, std::string> models;      // text of each editor that was seen since a text may have changed
    std::map<HWND, std::string> beginnings;  // text at the end of all undoing, where it is known
    static constexpr std::size_t kLast = 50;

    ULONGLONG unsureUntil = 0;  // until this tick a text may change by itself, because of what was answered or written

    int Below(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }
    bool Chance(int percent) { return Below(100) < percent; }
    template <typename List>
    const auto& OneOf(const List& list) {
        return *(std::begin(list) + Below(static_cast<int>(std::size(list))));
    }
    void Say(const std::string& what);    // of the action, to the log
    void Fault(const std::string& what);  // the test fails, with the last actions and what is on the screen

    // Waits until what was posted has been handled, or stands in a box of its own. False: a fault.
    bool Settle();
    bool Ended() const { return WaitForSingleObject(editor.process, 0) != WAIT_TIMEOUT; }

    void Unsure(int milliseconds) { unsureUntil = GetTickCount64() + static_cast<ULONGLONG>(milliseconds); }
    LRESULT Ask(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);  // of a window that may be gone

    void Post(int command) const { editor.Post(command); }
    void Key(int key);                           // to the window that has the keyboard, through the queue
    void Letters(std::wstring_view text);        // as typed
    void Real(std::initializer_list<int> keys);  // by the keyboard, the last one while the others are held
    void Click(HWND window, POINT at, UINT down = WM_LBUTTONDOWN, WPARAM keys = 0);
    void Drag(HWND window, POINT from, POINT to);
    void DragByMouse(HWND window, POINT from, POINT to,
                     bool escape);  // the mouse itself, as the system's dragging needs

    // Top-level windows that are shown, other than the main window, the front one first.
    std::vector<HWND> Boxes() const;
    static bool IsFileDialog(HWND box);
    void CheckBoxes();  // a box that must be answered keeps the main window from being used
    HWND Box() const;   // the one that keeps the main window from being used; null: none
    // A box or a menu is open, or about to be: a box is shown a moment after the window was disabled.
    bool IsAsking() const { return InMenu() || !IsWindowEnabled(editor.main); }
    HWND FilesBox() const;  // that of a search over files, which stays open beside the work
    bool InMenu() const { return (editor.Input().flags & GUI_INMENUMODE) != 0; }
    void ChooseFile(HWND box, const std::wstring& path);
    // Gives a command whose file dialog then gets this path. False: it did not come to that, or a box is open behind it.
    bool ChooseBy(int command, const std::wstring& path);
    void PlayWithBox(HWND box);          // edits its controls, presses its buttons
    void CloseBox(HWND box, int tries);  // ever harder
    void LeaveMenu();

    // The texts
    void LookAtText(Texts texts);     // compares the active text with its model, or takes it
    void CheckUndo();                 // to the start, to the end
    void CheckSaved();                // the file of the active document
    std::wstring ActiveFile() const;  // empty: none

    void Act();   // the next action
    void Rest();  // ends everything: boxes, builds, programs, documents; the window as at the start
};

// Pieces of work that take several steps of a person.
Texts ManyCarets(Driver& driver);
Texts SnippetFields(Driver& driver);
Texts RenameSymbol(Driver& driver);
Texts Peek(Driver& driver);
Texts UndoOverReload(Driver& driver);
Texts Sessions(Driver& driver);
Texts SecondStart(Driver& driver);
Texts FoundInFiles(Driver& driver);
Texts DragText(Driver& driver);

// Writes what another program may have open; then nothing is written.
void WriteIfFree(const std::wstring& path, std::string_view text);

// Every command that is driven at all, and those that are not.
std::vector<int> DrivenCommands();

// Files for the program to open, odd ones among them. Those below "files\" may be changed by anybody.
void FurnishFiles(const ProgramFolder& folder);
std::vector<std::wstring> FileNames();  // relative to the folder

}  // namespace torture
