// Names of imported functions for the code that the debug pane shows. UI thread only.
#pragma once

#include <cstdint>
#include <string>

// The name of an import whose slot or whose jump is at an address of the program ("kernel32!ExitProcess"), or empty. The
// program's file is read once a session, and only up to 16 MB.
std::string PaneSymbolAt(std::uint64_t address);
