// The standard input of a program that runs in the output pane. Text is written without waiting, because the program may
// read it late or never. UI thread only.
#pragma once

#include <windows.h>

#include <string_view>

// Takes over the pipe, which must allow overlapped writes. Null: there is no input.
void ProgramInputOpen(HANDLE pipe);
bool ProgramInputIsOpen();  // false also after ProgramInputEnd
// Sends text in the OEM code page, as a console does. Returns false when too much waits unread; nothing is then sent.
bool ProgramInputSend(std::wstring_view text);
// The program reads the end of its input after the text that was sent.
void ProgramInputEnd();
// Goes on writing what waits. Called on TIMER_BUILD.
void ProgramInputPump();
// True once for each program: it has left its input unread for two seconds.
bool ProgramInputIsDoubtful();
// Drops what waits and closes the pipe.
void ProgramInputClose();
