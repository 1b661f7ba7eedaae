// What the parts of the memory view share: its state, reading and writing, and its window. Private to these files. UI
// thread only.
#pragma once

#include "debugui/pane_memory.h"
#include "ui/wheel.h"

#include <windows.h>

#include <cstdint>
#include <string>

struct MemoryView : MemoryContent {
    HWND window = nullptr;
    WheelRest wheel;
};
extern MemoryView g_memory;

void MemoryRead();  // reads what is visible, in rows as long as the window allows
// Types one character over the byte at the caret; false when it is refused.
bool MemoryWrite(wchar_t typed);
// Scrolls by rows, at most to either end of the address space.
void MemoryScroll(std::int64_t rows);
// Moves the caret by bytes, or by one digit or character, and scrolls it into view.
void MemoryMoveCaret(std::int64_t bytes);
void MemoryStepCaret(int step);
std::wstring MemoryCaretRowText();
