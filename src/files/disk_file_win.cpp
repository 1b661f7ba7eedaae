// Asks the system what a file is at the moment. Any thread.
#include "files/disk_file.h"

#include "base/handles.h"
#include "files/file_handle.h"
#include "files/file_io.h"

#include <string>
#include <vector>

namespace {

constexpr std::size_t kPiece = 1 << 20;
constexpr DWORD kEveryone = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

UniqueHandle OpenToLook(const wchar_t* path, DWORD access) {
    return UniqueHandle{CreateFileW(PathForSystem(path).c_str(), access, kEveryone, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_SEQUENTIAL_SCAN, nullptr)};
}

// Why a file could not be opened. A drive that was taken out has not lost its files.
FileState StateWithoutFile(const wchar_t* path, DWORD error) {
    FileState state;
    const DWORD attributes = GetFileAttributesW(PathForSystem(path).c_str());
    const bool isFolder = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    const std::wstring root = std::wstring(path).substr(0, 3);
    const bool rootIsThere = root[1] != L':' || GetFileAttributesW(root.c_str()) != INVALID_FILE_ATTRIBUTES;
    const bool notFound = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    if (isFolder || (notFound && rootIsThere)) state.presence = FilePresence::Missing;
    return state;
}

bool HashHandle(HANDLE file, const std::function<bool()>& stop, ContentHash* hash) {
    ContentHasher hasher;
    std::vector<char> piece(kPiece);
    for (;;) {
        DWORD taken = 0;
        if ((stop && stop()) || ReadFile(file, piece.data(), kPiece, &taken, nullptr) == FALSE) return false;
        if (taken == 0) break;
        hasher.Add({piece.data(), taken});
    }
    *hash = hasher.Value();
    return true;
}

}  // namespace

FileState FileStateOfHandle(HANDLE file) {
    FileState state;
    BY_HANDLE_FILE_INFORMATION info = {};
    if (GetFileType(file) != FILE_TYPE_DISK || GetFileInformationByHandle(file, &info) == FALSE) return state;
    const auto joined = [](DWORD high, DWORD low) { return (static_cast<std::uint64_t>(high) << 32U) | low; };
    state.presence = FilePresence::There;
    state.readOnly = (info.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
    state.written = joined(info.ftLastWriteTime.dwHighDateTime, info.ftLastWriteTime.dwLowDateTime);
    state.size = joined(info.nFileSizeHigh, info.nFileSizeLow);
    state.identity = FileIdentityOfHandle(file);
    return state;
}

FileState FileStateOf(const wchar_t* path) {
    const UniqueHandle file = OpenToLook(path, 0);
    return file ? FileStateOfHandle(file.Get()) : StateWithoutFile(path, GetLastError());
}

FileState FileStateToCompare(const wchar_t* path, const FileState& known, const std::function<bool()>& stop) {
    const FileState seen = FileStateOf(path);
    if (!FileNeedsHash(known, seen)) return seen;
    const UniqueHandle file = OpenToLook(path, GENERIC_READ);
    if (!file) return seen;
    FileState state = FileStateOfHandle(file.Get());
    if (FileNeedsHash(known, state)) HashHandle(file.Get(), stop, &state.hash);
    return state;
}
