// The folder in which one run keeps the text of its unsaved documents: "Run ..." in the folder of recovery copies. While
// the run lives it holds a file in it open, so that another copy of the program leaves the folder alone. UI thread only.
#pragma once

#include "base/handles.h"

#include <string>
#include <vector>

struct RunFolder {
    std::wstring path;   // with the trailing backslash; empty: none
    UniqueHandle owner;  // gone with the process
    std::wstring run;    // RecoveryRun() of the process that made it
};

// Makes the folder of this run. `path` is empty when that fails.
RunFolder RunFolderCreate();
// The folders of runs that have ended without removing them; they belong to this process from now on. Makes no folder.
std::vector<RunFolder> RunFoldersLeft();
// Removes the folder when nothing but its own file is in it, and gives it up.
void RunFolderRelease(RunFolder& folder);
