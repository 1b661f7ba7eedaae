// Staging on the real disk (StageDisk by Win32 calls).
#include "compile/staging.h"

#include "base/handles.h"
#include "base/path.h"
#include "files/file_io.h"

namespace {

static_assert(kErrorFileThere == ERROR_FILE_EXISTS);

constexpr DWORD kDeleteTries = 10;  // a compiler that has just ended may hold the copy open for a moment
constexpr DWORD kDeletePauseMs = 20;

bool ReadFileIdentity(const std::wstring& path, BY_HANDLE_FILE_INFORMATION* info) {
    const UniqueHandle file(CreateFileW(PathForSystem(path.c_str()).c_str(), 0,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    return file && GetFileInformationByHandle(file.Get(), info);
}

// True when the paths are equal as text or name the same file (links, short names).
bool IsSameFile(const std::wstring& a, const std::wstring& b) {
    if (SamePathText(a, b)) return true;
    BY_HANDLE_FILE_INFORMATION first = {};
    BY_HANDLE_FILE_INFORMATION second = {};
    return ReadFileIdentity(a, &first) && ReadFileIdentity(b, &second) &&
           first.dwVolumeSerialNumber == second.dwVolumeSerialNumber && first.nFileIndexHigh == second.nFileIndexHigh &&
           first.nFileIndexLow == second.nFileIndexLow;
}

std::uint32_t CopyToFreeName(const std::wstring& from, const std::wstring& to) {
    const std::wstring copy = PathForSystem(to.c_str());
    if (!CopyFileW(PathForSystem(from.c_str()).c_str(), copy.c_str(), TRUE)) return GetLastError();
    // The copy inherits the read-only attribute of the source, and could then not be deleted.
    SetFileAttributesW(copy.c_str(), FILE_ATTRIBUTE_NORMAL);
    return 0;
}

bool MoveToFreeName(const std::wstring& from, const std::wstring& to) {
    return MoveFileExW(PathForSystem(from.c_str()).c_str(), PathForSystem(to.c_str()).c_str(), 0) != FALSE;
}

bool DeleteWithPatience(const std::wstring& path) {
    const std::wstring file = PathForSystem(path.c_str());
    for (DWORD attempt = 0; attempt < kDeleteTries; ++attempt) {
        if (DeleteFileW(file.c_str()) || GetLastError() == ERROR_FILE_NOT_FOUND) return true;
        Sleep(kDeletePauseMs);
    }
    return false;
}

StageDisk RealDisk() {
    return {.exists = [](const std::wstring& path) { return FileExists(path.c_str()) != 0; },
            .sameFile = IsSameFile,
            .copyNew = CopyToFreeName,
            .move = MoveToFreeName,
            .stamp = ReadFileStamp,
            .remove = DeleteWithPatience};
}

}  // namespace

bool StageSource(const wchar_t* source, const wchar_t* output, CommandStyle style, StagedSource* staged,
                 std::uint32_t* error) {
    return StageOnDisk(RealDisk(), source, output, style, staged, error);
}

std::wstring UnstageSource(StagedSource* staged) { return UnstageOnDisk(RealDisk(), staged); }
