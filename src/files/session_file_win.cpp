// Replacing a small file in one step. Any thread.
#include "files/session_file.h"

#include "base/handles.h"
#include "files/file_io.h"

#include <string>

namespace {

bool WriteTemporary(const std::wstring& path, std::string_view bytes) {
    const UniqueHandle file{CreateFileW(PathForSystem(path.c_str()).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr)};
    DWORD written = 0;
    return file && WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != FALSE &&
           written == bytes.size() && FlushWritten(file.Get());
}

}  // namespace

bool ReplaceFileWithText(const wchar_t* path, std::string_view bytes) {
    // One temporary name per process: two editors that close at the same time do not write into one file.
    const std::wstring beside = std::wstring{path} + L"." + std::to_wstring(GetCurrentProcessId()) + L".tmp";
    if (WriteTemporary(beside, bytes) && MoveFileExW(PathForSystem(beside.c_str()).c_str(), PathForSystem(path).c_str(),
                                                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE)
        return true;
    const DWORD error = GetLastError();
    DeleteFileW(PathForSystem(beside.c_str()).c_str());  // there may be none
    // A folder that takes no new file may still hold a file that can be written. A full disk is no such case: it would
    // cost the old content as well.
    return error != ERROR_DISK_FULL && WriteFileUtf8(path, bytes.data(), bytes.size());
}
