#include "files/shared_read.h"

#include "base/handles.h"
#include "files/file_io.h"

#include <algorithm>
#include <cstdint>

bool ReadSharedFile(const std::wstring& path, std::size_t most, std::string* bytes) {
    bytes->clear();
    if (path.empty()) return false;
    const UniqueHandle file(CreateFileW(PathForSystem(path.c_str()).c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    LARGE_INTEGER size = {};
    if (!file || GetFileType(file.Get()) != FILE_TYPE_DISK || GetFileSizeEx(file.Get(), &size) == FALSE) return false;
    if (static_cast<std::uint64_t>(size.QuadPart) > std::min<std::uint64_t>(most, 0x7FFFFFFF)) return false;
    bytes->resize(static_cast<std::size_t>(size.QuadPart));
    DWORD read = 0;
    if (!bytes->empty() &&
        ReadFile(file.Get(), bytes->data(), static_cast<DWORD>(bytes->size()), &read, nullptr) == FALSE)
        return false;
    bytes->resize(read);
    return true;
}
