#include "compile/staging.h"

#include "base/handles.h"
#include "base/path.h"
#include "compile/build_paths.h"
#include "files/file_io.h"

namespace {

constexpr int kNames = 9;           // tried for a copy, and for a file moved aside
constexpr DWORD kDeleteTries = 10;  // a compiler just ended may hold the copy open for a moment longer
constexpr DWORD kDeletePauseMs = 20;

struct FileMark {
    FILETIME written = {};
    ULARGE_INTEGER length = {};
};

bool ReadMark(const std::wstring& path, FileMark* mark) {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!GetFileAttributesExW(PathForSystem(path.c_str()).c_str(), GetFileExInfoStandard, &data)) return false;
    mark->written = data.ftLastWriteTime;
    mark->length.LowPart = data.nFileSizeLow;
    mark->length.HighPart = data.nFileSizeHigh;
    return true;
}

bool Identity(const wchar_t* path, BY_HANDLE_FILE_INFORMATION* info) {
    const UniqueHandle file(CreateFileW(PathForSystem(path).c_str(), 0,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    return file && GetFileInformationByHandle(file.Get(), info);
}

// Two names of one file: the texts agree, or the file system says so (links, short names).
bool IsSameFile(const wchar_t* a, const wchar_t* b) {
    if (SamePathText(a, b)) return true;
    BY_HANDLE_FILE_INFORMATION first = {};
    BY_HANDLE_FILE_INFORMATION second = {};
    return Identity(a, &first) && Identity(b, &second) && first.dwVolumeSerialNumber == second.dwVolumeSerialNumber &&
           first.nFileIndexHigh == second.nFileIndexHigh && first.nFileIndexLow == second.nFileIndexLow;
}

bool CopyNew(const wchar_t* source, const std::wstring& target, StagedSource* staged) {
    const std::wstring copy = PathForSystem(target.c_str());
    if (!CopyFileW(PathForSystem(source).c_str(), copy.c_str(), TRUE)) return false;
    // A copy inherits the source's read-only mark, and could then not be deleted.
    SetFileAttributesW(copy.c_str(), FILE_ATTRIBUTE_NORMAL);
    FileMark mark;
    ReadMark(target, &mark);
    staged->path = target;
    staged->copied = true;
    staged->written = mark.written;
    staged->length = mark.length;
    return true;
}

bool Rename(const std::wstring& from, const std::wstring& to) {
    return MoveFileExW(PathForSystem(from.c_str()).c_str(), PathForSystem(to.c_str()).c_str(), 0) != FALSE;
}

std::wstring AsideName(const std::wstring& path, int attempt) {
    return path + L".kvx-aside" + std::to_wstring(attempt);
}

// Moves a user's file to a free name beside it. Empty: it could not be moved.
std::wstring MoveAside(const std::wstring& path) {
    for (int attempt = 1; attempt <= kNames; ++attempt) {
        std::wstring aside = AsideName(path, attempt);
        if (Rename(path, aside)) return aside;
    }
    return {};
}

bool StageForKeldor(const wchar_t* source, const std::wstring& target, StagedSource* staged, DWORD* error) {
    // The program ended in the middle of a build: what bears the user's name now may be a copy of ours.
    if (const std::wstring first = AsideName(target, 1); FileExists(first.c_str())) staged->leftover = first;
    if (IsSameFile(source, target.c_str())) return true;
    if (CopyNew(source, target, staged)) return true;
    *error = GetLastError();
    if (*error != ERROR_FILE_EXISTS) return false;
    staged->aside = MoveAside(target);
    if (staged->aside.empty()) return false;
    staged->path = target;
    if (CopyNew(source, target, staged)) return true;
    *error = GetLastError();
    UnstageSource(staged);
    staged->path = source;
    return false;
}

bool DeleteWithPatience(const std::wstring& path) {
    const std::wstring file = PathForSystem(path.c_str());
    for (DWORD attempt = 0; attempt < kDeleteTries; ++attempt) {
        if (DeleteFileW(file.c_str()) || GetLastError() == ERROR_FILE_NOT_FOUND) return true;
        Sleep(kDeletePauseMs);
    }
    return false;
}

}  // namespace

bool StageSource(const wchar_t* source, const wchar_t* output, CommandStyle style, StagedSource* staged, DWORD* error) {
    *staged = {.path = source};
    *error = ERROR_SUCCESS;
    if (style == CommandStyle::Keldor)
        return StageForKeldor(source, StagingTarget(source, output, style, 0), staged, error);
    for (int attempt = 0; attempt <= kNames; ++attempt) {
        const std::wstring target = StagingTarget(source, output, style, attempt);
        if (target.empty() || CopyNew(source, target, staged) || GetLastError() != ERROR_FILE_EXISTS) break;
    }
    return true;
}

std::wstring UnstageSource(StagedSource* staged) {
    std::wstring notice;
    if (staged->copied) {
        staged->copied = false;
        FileMark mark;
        const bool exists = ReadMark(staged->path, &mark);
        const bool ours =
            mark.length.QuadPart == staged->length.QuadPart && CompareFileTime(&mark.written, &staged->written) == 0;
        if (exists && !ours)
            notice = L"The temporary source was changed during the build and is kept: " + staged->path + L"\r\n";
        else if (exists && !DeleteWithPatience(staged->path))
            notice = L"The temporary source could not be deleted: " + staged->path + L"\r\n";
    }
    if (!staged->aside.empty()) {
        if (!Rename(staged->aside, staged->path))
            notice += L"Your file " + staged->path + L" was moved aside for the build and is kept as " + staged->aside +
                      L"\r\n";
        staged->aside.clear();
    }
    return notice;
}
