// Every command of the program, one row each: the conditions that enable it, and when it has a check mark. Menu,
// toolbar and keys use this table. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <string>

// Conditions of the program's state, as bits.
enum CommandCondition : std::uint32_t {
    kAlways = 0,
    kHasTab = 1u << 0,  // a document is open
    kCanUndo = 1u << 1,
    kCanRedo = 1u << 2,
    kHasSelection = 1u << 3,  // in the editor
    kHasOtherTabs = 1u << 4,  // others that are not pinned
    kHasFile = 1u << 5,       // the active document has a file
    kHasTabsRight = 1u << 6,  // the same, to the right of the active one
    kAnyModified = 1u << 7,
    kIdle = 1u << 8,      // no build runs
    kBuilding = 1u << 9,  // a build runs, or processes that a finished one started
    kHasErrors = 1u << 10,
    kBasicSource = 1u << 11,
    kNoSession = 1u << 12,
    kSession = 1u << 13,         // a program is debugged or about to be debugged
    kProgramStopped = 1u << 14,  // the debugged program is stopped
    kProgramRunning = 1u << 15,
    // These, kCanUndo and kCanRedo are of the window that has the keyboard.
    kCanCut = 1u << 16,
    kCanCopy = 1u << 17,
    kCanPaste = 1u << 18,
    kCanSelectAll = 1u << 19,
    // Of the assistant.
    kAiRunning = 1u << 20,  // a request runs
    kAiReply = 1u << 21,    // a reply has come, or a request about text of a document has ended
    kAiPending = 1u << 22,  // a replacement waits to be accepted or undone
    kAiCode = 1u << 23,     // the chat holds code
    kProjectOpen = 1u << 24,
    kCanBuild = 1u << 25,    // the active document has a file, or the project has one to build
    kSearching = 1u << 26,   // a search in files runs
    kHasCorners = 1u << 27,  // text is selected, or a selection of columns
    kHasClosed = 1u << 29,   // a document was closed that can be opened again
    kHasSaved = 1u << 30,    // a document without changes that is not pinned
    kNever = 1u << 31,       // never set, so the command stays disabled: not in this version
};

// The state on which enabled and checked depend.
struct CommandView {
    std::uint32_t conditions = 0;  // CommandCondition bits
    bool toolbar = false, statusBar = false;
    std::uint32_t panes = 0;  // PaneBit of the panes that are shown (ui/pane_id.h)
    bool whitespace = false, wrap = false;
    bool stepsFollow = false;   // steps follow the program
    bool keepsConsole = false;  // the console of a program stays open after its end
    bool errorTexts = false;    // diagnostics behind their lines
    int theme = 0;              // 0 light, 1 dark
    int style = 0;              // style preset, 0: none
    int compiler = 0;           // CompilerId
    int tab = -1;               // index of the active document
    bool pinned = false;        // the active document is
    bool columns = false;       // its selection is one of columns
    int profile = 0;            // build profile: 0 debug, 1 release, 2 fast
    int fileForm = -1;          // of the active document: FileForm; -1: there is none
    int lineEnding = -1;        // LineEnding
    int tabWidth = 0;
    bool tabKeyInsertsTab = false;
    bool operator==(const CommandView&) const = default;
};

struct CommandState {
    bool enabled = false;
    bool checked = false;
};

// Where the user can find a command.
enum class CommandPlace : std::uint8_t {
    Menu,      // in the main menu, which has its text
    Internal,  // only by keys, buttons and menus of panes
};

struct CommandRow {
    int id = 0;
    std::uint32_t needs = 0;                        // CommandCondition bits that must all be set
    bool (*checked)(const CommandView&) = nullptr;  // null: never checked
    CommandPlace place = CommandPlace::Menu;
};

std::span<const CommandRow> CommandTable();
const CommandRow* FindCommand(int id);  // null: not in the table
// A command that is not in the table is disabled and not checked.
CommandState CommandStateOf(int id, const CommandView& view);

// Keys that are not in the accelerator table and that the editor or the system would otherwise handle.
struct ExtraKey {
    std::uint16_t key;  // virtual key
    bool control, shift, alt;
    int command;
    bool editorOnly = false;  // a list or a tree that has the keyboard uses the key itself
};
std::span<const ExtraKey> ExtraKeys();
std::wstring NameOfExtraKey(const ExtraKey& key);  // as menus write it: "Ctrl+Shift+F5"
// The menu shows F5 at Start Debugging, too, but the key is that of Build & Run.
bool MenuKeyIsOfAnother(int command);
std::wstring FirstExtraKeyOf(int command);  // its name; empty: the command has none
// The command of a key, or 0. `key` is a virtual key; `inEditor`: an editor has the keyboard.
int CommandOfExtraKey(std::uint32_t key, bool control, bool shift, bool alt, bool inEditor);
