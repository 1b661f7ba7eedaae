// Chooses the folder in which the open dialog starts. Pure.
#pragma once

#include <cstddef>

struct OpenDirectoryInputs {
    const wchar_t* activeFile;     // path of the active document, empty when it has none
    const wchar_t* lastDirectory;  // folder of the file last opened or saved under a new name, or empty
    const wchar_t* exeDirectory;   // folder of the executable, with its trailing backslash
};

using DirectoryProbe = bool (*)(const wchar_t* path);  // does this folder exist?

// Writes the first of these into `out` (`capacity` characters): the active file's folder, the last folder used, the
// first examples folder that exists beside the executable, the executable's folder. False when all of them are empty.
bool ResolveOpenDirectory(const OpenDirectoryInputs& inputs, DirectoryProbe exists, wchar_t* out, std::size_t capacity);
