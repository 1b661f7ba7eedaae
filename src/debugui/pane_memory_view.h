// What the parts of the memory view share: its state, reading and writing, and its window. Private to these files. UI
// thread only.
#pragma once

#include "debugui/pane_memory.h"
#include "ui/wheel.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

struct MemoryView : MemoryPlace {
    HWND window = nullptr;
    bool filled = false;            // something has been read in this session
    std::uint64_t base = 0;         // the address of the address box
    int characters = 80;            // that fit into a row
    std::uint32_t processId = 0;    // of the shown program
    std::uint64_t serial = 0;       // of the shown stop
    std::vector<MemoryByte> bytes;  // from `top` on
    std::uint64_t beforeTop = 0;    // `top` and `bytes` of the previous stop
    std::vector<MemoryByte> before;
    WheelRest wheel;
};
extern MemoryView g_memory;

void MemoryRead();  // reads what is visible, in rows as long as the window allows
bool MemoryChanged(std::uint64_t address, const MemoryByte& now);
// Types one character over the byte at the caret; false when it is refused.
bool MemoryWrite(wchar_t typed);
// Scrolls by rows, at most to either end of the address space.
void MemoryScroll(std::int64_t rows);
// Moves the caret by bytes, or by one digit or character, and scrolls it into view.
void MemoryMoveCaret(std::int64_t bytes);
void MemoryStepCaret(int step);
std::wstring MemoryText();  // every visible row
std::wstring MemoryCaretRowText();
