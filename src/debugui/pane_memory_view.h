// The memory view between its parts: what is shown, reading and writing it, and its window. Private to these files. UI
// thread only.
#pragma once

#include "debugui/pane_memory.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

struct MemoryView : MemoryPlace {
    HWND window = nullptr;
    bool filled = false;            // something has been read in this session
    std::uint64_t base = 0;         // what the address box says
    int characters = 80;            // that a row has room for
    std::uint32_t processId = 0;    // of the program that is shown
    std::uint64_t serial = 0;       // of the stop that is shown
    std::vector<MemoryByte> bytes;  // from `top` on
    std::uint64_t beforeTop = 0;    // the same at the stop before
    std::vector<MemoryByte> before;
};
extern MemoryView g_memory;

void MemoryRead();  // what is visible, in rows as long as there is room for
bool MemoryChanged(std::uint64_t address, const MemoryByte& now);
// Types one character over the byte at the caret; false when that is refused.
bool MemoryWrite(wchar_t typed);
// Scrolls by rows, up to either end of the address space.
void MemoryScroll(std::int64_t rows);
// Moves the caret by bytes, or digits of them, and scrolls it into view.
void MemoryMoveCaret(std::int64_t bytes);
void MemoryStepCaret(int step);
std::wstring MemoryText();  // every visible row
std::wstring MemoryCaretRowText();
