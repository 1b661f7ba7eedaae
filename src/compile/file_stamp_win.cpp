#include "compile/file_stamp.h"

#include "files/file_io.h"

#include <windows.h>

bool ReadFileStamp(const std::wstring& path, FileStamp* stamp) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!GetFileAttributesExW(PathForSystem(path.c_str()).c_str(), GetFileExInfoStandard, &data) ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return false;
    stamp->written = std::uint64_t{data.ftLastWriteTime.dwHighDateTime} << 32 | data.ftLastWriteTime.dwLowDateTime;
    stamp->length = std::uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow;
    return true;
}
