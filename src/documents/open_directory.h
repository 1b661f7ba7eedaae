// Which folder the open dialog starts in. Pure.
#pragma once

#include <cstddef>

struct OpenDirectoryInputs {
    const wchar_t* activeFile;     // path of the active document, empty when it has none
    const wchar_t* lastDirectory;  // folder of the file last opened or saved under a new name, or empty
    const wchar_t* exeDirectory;   // folder of the executable, with its trailing backslash
};

using DirectoryProbe = bool (*)(const wchar_t* path);  // does this folder exist?

// The active file's folder, else the last one used, else the first examples folder that exists beside the executable,
// else the executable's folder. False when none of them gives a folder.
bool ResolveOpenDirectory(const OpenDirectoryInputs& inputs, DirectoryProbe exists, wchar_t* out, std::size_t capacity);
