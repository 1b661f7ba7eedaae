// Every command of the program, one row each: what it needs to be possible, and when it carries a check mark. Menu,
// toolbar and keys all ask this table. Pure.
#pragma once

#include <cstdint>
#include <span>

// What holds right now, as bits.
enum CommandCondition : std::uint32_t {
    kAlways = 0,
    kHasTab = 1u << 0,
    kCanUndo = 1u << 1,
    kCanRedo = 1u << 2,
    kHasSelection = 1u << 3,
    kHasFile = 1u << 5,
    kAnyModified = 1u << 7,
    kIdle = 1u << 8,  // no build runs
    kBuilding = 1u << 9,
    kHasErrors = 1u << 10,
    kBasicSource = 1u << 11,
    kNoSession = 1u << 12,
    kSession = 1u << 13,         // a program is debugged, or is about to be
    kProgramStopped = 1u << 14,  // and stands
    kProgramRunning = 1u << 15,
    kNever = 1u << 31,  // not in this version: never set, so the command stays grey
};

// What the check marks show.
struct CommandView {
    std::uint32_t conditions = 0;  // CommandCondition bits
    bool toolbar = false, statusBar = false;
    std::uint32_t panes = 0;  // PaneBit of those that are shown (ui/pane_id.h)
    bool whitespace = false, wrap = false;
    int theme = 0;     // 0 light, 1 dark
    int style = 0;     // style preset, 0 = none
    int compiler = 0;  // CompilerId
    int profile = 0;
    bool operator==(const CommandView&) const = default;
};

struct CommandState {
    bool enabled = false;
    bool checked = false;
};

// Where the user finds a command.
enum class CommandPlace : std::uint8_t {
    Menu,      // the main menu, which has its text
    Internal,  // keys, buttons and menus of panes only
};

struct CommandRow {
    int id = 0;
    std::uint32_t needs = 0;                        // every bit must hold
    bool (*checked)(const CommandView&) = nullptr;  // null: never checked
    CommandPlace place = CommandPlace::Menu;
};

std::span<const CommandRow> CommandTable();
const CommandRow* FindCommand(int id);
// An id that is not in the table is disabled.
CommandState CommandStateOf(int id, const CommandView& view);

// Keys beyond the accelerator table, which the editor's own key handling or the platform would otherwise take.
struct ExtraKey {
    std::uint16_t key;  // virtual key
    bool control, shift, alt;
    int command;
};
std::span<const ExtraKey> ExtraKeys();
// The command of a key press, or 0.
int CommandOfExtraKey(std::uint32_t key, bool control, bool shift, bool alt);
