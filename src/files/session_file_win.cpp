#include "files/session_file.h"

#include "files/file_io.h"
#include "files/save_errors.h"
#include "files/whole_file.h"

#include <string>

constexpr unsigned kWaitMs = 100;

bool MoveInPlace(const std::wstring& from, const std::wstring& to, unsigned waitMs) {
    constexpr DWORD kPause = 20;  // ms
    for (unsigned waited = 0;; waited += kPause) {
        if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE)
            return true;
        const DWORD error = GetLastError();
        if (waited >= waitMs || (error != ERROR_SHARING_VIOLATION && error != ERROR_ACCESS_DENIED)) return false;
        Sleep(kPause);
    }
}

bool ReplaceFileWhole(const wchar_t* path, std::string_view bytes) {
    // The name holds the process id, so that two editors that close at the same time do not write to one file.
    const std::wstring beside = std::wstring{path} + L"." + std::to_wstring(GetCurrentProcessId()) + L".tmp";
    const std::wstring systemBeside = PathForSystem(beside.c_str());
    if (WriteWholeFile(systemBeside, bytes, {}) && MoveInPlace(systemBeside, PathForSystem(path), kWaitMs)) return true;
    const DWORD error = GetLastError();
    DeleteFileW(systemBeside.c_str());  // there may be none
    SetLastError(error);
    return false;
}

bool ReplaceFileWithText(const wchar_t* path, std::string_view bytes) {
    return ReplaceFileWhole(path, bytes) || (MayWriteInPlace(GetLastError()) &&
                                             WriteWholeFile(PathForSystem(path), bytes, {.sharing = FILE_SHARE_READ}));
}
