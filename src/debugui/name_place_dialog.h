// The dialog that gives a name to a place of the program's memory. Modal, UI thread only.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

// For the word at the caret of the active document, in the procedure around it.
void AskNameOfPlace(HWND owner);
// For a place that the code of a line uses (a file and line of the program's map), in the procedure of that line.
void AskNameOfPlaceAt(HWND owner, std::uint32_t fileId, std::uint32_t line, const std::string& place);
