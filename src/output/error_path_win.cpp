// The whole path of a file name that a compiler has printed.
#include "output/error_path.h"

#include "base/bounded_text.h"
#include "files/file_io.h"

#include <windows.h>

#include <string_view>

std::wstring ErrorPathWhole(const std::wstring& path) {
    wchar_t full[kPathCapacity] = {};
    const DWORD length = GetFullPathNameW(path.c_str(), kPathCapacity, full, nullptr);
    if (length == 0 || length >= kPathCapacity) return path;
    // A compiler that was started in a folder by its short name (8.3) may print that.
    wchar_t entire[kPathCapacity] = {};
    const bool isShort = std::wstring_view(full).find(L'~') != std::wstring_view::npos;
    const DWORD size = isShort ? GetLongPathNameW(PathForSystem(full).c_str(), entire, kPathCapacity) : 0;
    if (size == 0 || size >= kPathCapacity) return full;
    const std::wstring_view found(entire);
    return std::wstring(found.starts_with(L"\\\\?\\") && !found.starts_with(L"\\\\?\\UNC") ? found.substr(4) : found);
}
