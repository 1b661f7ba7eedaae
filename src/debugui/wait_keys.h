// What becomes of a key that is pressed while a command waits for the debugged program: text goes on into the editor,
// Stop is obeyed, commands come afterwards. Pure.
#pragma once

#include <cstdint>

// A key as it was pressed. `key` is a virtual key.
struct WaitKey {
    std::uint32_t key = 0;
    bool system = false;  // WM_SYSKEYDOWN
    bool control = false, shift = false, alt = false;
    bool inEditor = false;         // the window that it is for
    bool inField = false;          // a line of text
    bool makesCharacter = false;   // the key has a character of its own
    bool earlierKeyWaits = false;  // another key was put off
};

enum class WaitKeyAction : std::uint8_t {
    Stop,           // the user ends the wait
    Drop,           // a modifier
    EditorCommand,  // copy, paste and the like, in the editor
    Handle,         // at once, in its window: it edits text there
    Translate,      // its character is the next message
    PutOff,         // until the wait is over
};
WaitKeyAction ActionOfWaitKey(const WaitKey& key);

// What becomes of a character.
enum class WaitCharacter : std::uint8_t { Drop, Handle, PutOff };
WaitCharacter ActionOfWaitCharacter(std::uint32_t character, bool inEditor, bool inField, bool earlierKeyWaits);
