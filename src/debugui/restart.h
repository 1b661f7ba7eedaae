// Debugging the same program again. UI thread only.
#pragma once

#include <string>

// Called at each start: the source whose program is debugged.
void DebugRememberSource(const std::wstring& source);
// Ends a session, shows the source that was debugged last - a stop may have opened another file of the program - builds
// it and starts it. Without such a source, starts the active document.
void DebugRestart();
