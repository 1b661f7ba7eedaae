#include "files/session_file.h"

#include "files/file_io.h"
#include "files/whole_file.h"

#include <string>

bool ReplaceFileWithText(const wchar_t* path, std::string_view bytes) {
    // The name holds the process id, so that two editors that close at the same time do not write to one file.
    const std::wstring beside = std::wstring{path} + L"." + std::to_wstring(GetCurrentProcessId()) + L".tmp";
    const std::wstring systemBeside = PathForSystem(beside.c_str());
    if (WriteWholeFile(systemBeside, bytes, {}) &&
        MoveFileExW(systemBeside.c_str(), PathForSystem(path).c_str(),
                    MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE)
        return true;
    const DWORD error = GetLastError();
    DeleteFileW(systemBeside.c_str());  // there may be none
    // A folder that takes no new file may still have a file that can be written. After ERROR_DISK_FULL that is not
    // tried, because it would cost the old content as well.
    return error != ERROR_DISK_FULL && WriteFileUtf8(path, bytes.data(), bytes.size());
}
