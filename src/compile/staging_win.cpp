// Staging on the real disk (StageDisk by Win32 calls).
#include "compile/staging.h"

#include "base/handles.h"
#include "base/path.h"
#include "files/file_identity.h"
#include "files/file_io.h"
#include "files/user_folder.h"

#include <mutex>
#include <string>
#include <utility>

namespace {

static_assert(kErrorFileThere == ERROR_FILE_EXISTS && kErrorStagedElsewhere == ERROR_BUSY);

constexpr DWORD kDeleteTries = 10;  // a compiler that has just ended may hold the copy open for a moment
constexpr DWORD kDeletePauseMs = 20;

// True when the paths are equal as text or name the same file (links, short names).
bool IsSameFile(const std::wstring& a, const std::wstring& b) {
    if (SamePathText(a, b)) return true;
    const FileIdentity first = FileIdentityOf(a.c_str());
    return first.IsKnown() && first == FileIdentityOf(b.c_str());
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

// The note of the copy that exists now. An open note is of a running editor: nobody else can open it. One staging is
// under way at a time; its end may come on the reader thread.
std::mutex g_noteLock;
UniqueHandle g_note;  // under g_noteLock
std::wstring g_notePath;

UniqueHandle g_claim;  // under g_noteLock; the object that reserves the name of the copy

// Another editor would take the copy for the user's file and move it aside. The object ends with its editor.
bool ClaimTarget(const std::wstring& target) {
    std::wstring path = target;
    CharUpperBuffW(path.data(), static_cast<DWORD>(path.size()));
    const std::wstring name = L"Local\\KVX-Editor-staged-" + std::to_wstring(std::hash<std::wstring>()(path));
    UniqueHandle claim(CreateMutexW(nullptr, FALSE, name.c_str()));
    if (claim && GetLastError() == ERROR_ALREADY_EXISTS) return false;
    const std::lock_guard lock(g_noteLock);
    g_claim = std::move(claim);
    return true;
}

constexpr wchar_t kNotePrefix[] = L"Staged-";

void WriteNote(const std::wstring& source, const StagedSource& staged) {
    const std::lock_guard lock(g_noteLock);
    if (!g_note) {
        const std::wstring folder = UserFolder();
        if (folder.empty()) return;
        g_notePath = folder + kNotePrefix + std::to_wstring(GetCurrentProcessId()) + L"-" +
                     std::to_wstring(GetTickCount64()) + L".txt";
        g_note.Reset(CreateFileW(PathForSystem(g_notePath.c_str()).c_str(), GENERIC_WRITE, FILE_SHARE_DELETE, nullptr,
                                 CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    }
    if (!g_note) return;  // without a note an interrupted build is found at the next build only
    const std::string text =
        StageNoteText({.source = source, .target = staged.path, .aside = staged.aside, .stamp = staged.stamp});
    DWORD written = 0;
    SetFilePointer(g_note.Get(), 0, nullptr, FILE_BEGIN);
    WriteFile(g_note.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    SetEndOfFile(g_note.Get());
    FlushFileBuffers(g_note.Get());
}

// Ends the reservation and the note. The note stays on the disk when something was not put back.
void EndNote(bool settled) {
    const std::lock_guard lock(g_noteLock);
    g_claim.Reset();
    if (!g_note) return;
    if (settled) DeleteFileW(PathForSystem(g_notePath.c_str()).c_str());
    g_note.Reset();
}

StageDisk RealDisk() {
    return {.exists = [](const std::wstring& path) { return FileExists(path.c_str()) != 0; },
            .sameFile = IsSameFile,
            .copyNew = CopyToFreeName,
            .move = MoveToFreeName,
            .stamp = ReadFileStamp,
            .remove = DeleteWithPatience,
            .claim = ClaimTarget,
            .note = WriteNote};
}

}  // namespace

bool StageSource(const wchar_t* source, const wchar_t* output, CommandStyle style, StagedSource* staged,
                 std::uint32_t* error) {
    const bool done = StageOnDisk(RealDisk(), source, output, style, staged, error);
    if (!done && *error != kErrorStagedElsewhere) EndNote(true);
    return done;
}

std::wstring UnstageSource(StagedSource* staged) {
    std::wstring notice = UnstageOnDisk(RealDisk(), staged);
    EndNote(notice.empty());
    return notice;
}

std::vector<std::wstring> StagedRecover() {
    std::vector<std::wstring> lines;
    const std::wstring folder = UserFolderPath();
    WIN32_FIND_DATAW found = {};
    const UniqueFind search(FindFirstFileW(PathForSystem((folder + kNotePrefix + L"*").c_str()).c_str(), &found));
    if (folder.empty() || !search) return lines;
    do {
        const std::wstring path = folder + found.cFileName;
        const UniqueHandle note(CreateFileW(PathForSystem(path.c_str()).c_str(), GENERIC_READ, FILE_SHARE_DELETE,
                                            nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!note) continue;  // of an editor that runs
        char text[16 * 1024];
        DWORD length = 0;
        if (!ReadFile(note.Get(), text, sizeof(text), &length, nullptr)) continue;
        const StageNote staged = StageNoteOfText({text, length});
        if (!staged.target.empty())
            if (std::wstring line = RecoverOnDisk(RealDisk(), staged); !line.empty()) lines.push_back(std::move(line));
        DeleteFileW(PathForSystem(path.c_str()).c_str());
    } while (FindNextFileW(search.Get(), &found));
    return lines;
}
