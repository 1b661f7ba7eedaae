// The small dialogs of the debugger: one line of text, and a breakpoint's condition. Modal, UI thread only.
#pragma once

#include <windows.h>

#include <span>
#include <string>

// A choice beside the line, such as the kind of a watch.
struct InputKinds {
    std::span<const wchar_t* const> names;
    int* chosen = nullptr;  // index into `names`; changed only when the answer is true
};

// Asks for one line of at most 255 characters; `text` is what stands there first, and the answer. False: cancelled.
bool AskText(HWND owner, const wchar_t* caption, const wchar_t* label, std::wstring* text,
             const InputKinds* kinds = nullptr);

// Asks for the condition of a breakpoint at `place` ("steps.bas:12"): at most 128 characters that fit the engine's 63
// bytes of UTF-8; longer ones are refused in the dialog. `condition` (UTF-8) is the old one and the answer.
bool AskCondition(HWND owner, const wchar_t* place, std::string* condition);
