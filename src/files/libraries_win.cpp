#include "files/libraries.h"

#include "base/bounded_text.h"
#include "base/path.h"
#include "files/file_io.h"

bool LibrariesLimitSearch() {
    return SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32) != FALSE;
}

HMODULE LoadProgramLibrary(const wchar_t* name) {
    wchar_t folder[kPathCapacity] = {};
    wchar_t path[kPathCapacity] = {};
    AppExeDirectory(folder, kPathCapacity);
    PathJoin(folder, name, path, kPathCapacity);
    if (!PathIsAbsolute(path)) {  // a bare name would be searched for
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    // What the DLL itself needs is sought beside it and in the system's folder.
    return LoadLibraryExW(path, nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
}

HMODULE LoadSystemLibrary(const wchar_t* name) { return LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32); }

std::wstring SystemFolder() {
    wchar_t system[MAX_PATH] = {};
    const UINT length = GetSystemDirectoryW(system, MAX_PATH);
    return length > 0 && length < MAX_PATH ? system : L"";
}
