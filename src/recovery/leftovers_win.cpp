#include "recovery/leftovers.h"

#include "base/bounded_text.h"
#include "base/handles.h"
#include "base/path.h"
#include "files/file_io.h"
#include "files/recovery.h"
#include "files/share_probe.h"
#include "files/user_folder.h"
#include "recovery/leftover_rules.h"
#include "recovery/run_folder.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr wchar_t kPathEnd[] = L".path";           // of the file beside the copy of a save that failed
constexpr std::size_t kLargestNote = 1 << 16;      // bytes
constexpr std::uint64_t kMostCompared = 32 << 20;  // bytes
constexpr std::size_t kLargestText = 0x7FFF0000;   // bytes

std::vector<RunFolder> g_leftFolders;

std::vector<WIN32_FIND_DATAW> FilesIn(const std::wstring& folder, const wchar_t* pattern) {
    std::vector<WIN32_FIND_DATAW> files;
    WIN32_FIND_DATAW found = {};
    const UniqueFind search{FindFirstFileW(PathForSystem((folder + pattern).c_str()).c_str(), &found)};
    if (!search) return files;
    do {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) files.push_back(found);
    } while (FindNextFileW(search.Get(), &found) != FALSE);
    return files;
}

std::uint64_t SizeOf(const WIN32_FIND_DATAW& file) {
    return (std::uint64_t{file.nFileSizeHigh} << 32U) | file.nFileSizeLow;
}

bool HasEnd(const wchar_t* name, std::wstring_view end) {
    return PathEqualsIgnoreCase(std::wstring_view{name}.substr(std::wstring_view{name}.size() -
                                                               std::min(end.size(), std::wstring_view{name}.size())),
                                end);
}

std::string ReadNote(const std::wstring& path) {
    std::string text;
    if (!ReadSharedFile(path, kLargestNote, &text)) text.clear();
    return text;
}

// The texts that a run has left. A ".new" file is a text that was not whole when the run ended.
void AddSnapshots(const RunFolder& run, std::vector<Leftover>& left) {
    const std::wstring& folder = run.path;
    for (const WIN32_FIND_DATAW& file : FilesIn(folder, L"*")) {
        if (HasEnd(file.cFileName, kSnapshotNoteEnd) || HasEnd(file.cFileName, L".new") ||
            PathEqualsIgnoreCase(file.cFileName, L"owner"))
            continue;
        Leftover one;
        one.text = folder + file.cFileName;
        one.files = {one.text, one.text + kSnapshotNoteEnd};
        one.note = ParseSnapshotNote(ReadNote(one.files[1]));
        if (one.note.label.empty()) one.note.label = file.cFileName;
        one.run = run.run;
        one.time = file.ftLastWriteTime;
        one.size = SizeOf(file);
        left.push_back(std::move(one));
    }
}

// Deletes what belongs to no text: a run ended between two steps.
void DeleteStrays(const std::wstring& folder) {
    for (const WIN32_FIND_DATAW& file : FilesIn(folder, L"*")) {
        const std::wstring path = folder + file.cFileName;
        const bool lonely = HasEnd(file.cFileName, kSnapshotNoteEnd) &&
                            !FileExists(path.substr(0, path.size() - std::size(kSnapshotNoteEnd) + 1).c_str());
        if (lonely || HasEnd(file.cFileName, L".new")) DeleteFileW(PathForSystem(path.c_str()).c_str());
    }
}

// Whether another copy of the program, which still runs, has written it and may remove it.
bool WriterRuns(const wchar_t* name) {
    const DWORD writer = RecoveryCopyWriter(name);
    if (writer == 0 || writer == GetCurrentProcessId()) return false;
    // A process that has ended can be opened for as long as another one has a handle of it.
    const UniqueHandle process{OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, writer)};
    wchar_t theirs[kPathCapacity] = {}, ours[kPathCapacity] = {};
    DWORD length = kPathCapacity;
    return process && WaitForSingleObject(process.Get(), 0) == WAIT_TIMEOUT &&
           QueryFullProcessImageNameW(process.Get(), 0, theirs, &length) != FALSE &&
           GetModuleFileNameW(nullptr, ours, kPathCapacity) != 0 &&
           PathEqualsIgnoreCase(FileNameOf(theirs), FileNameOf(ours));
}

// The run ended while it wrote the copy: the target has not been touched yet.
void DeleteUnfinishedCopy(const Leftover& copy) {
    if (RecoveryCopyWriter(FileNameOf(copy.text)) == 0) return;  // not ours
    DeleteFileW(PathForSystem((copy.text + kRecoveryUnfinished).c_str()).c_str());
    DeleteFileW(PathForSystem(copy.files[1].c_str()).c_str());
}

void AddFailedSaves(const std::wstring& folder, std::vector<Leftover>& left) {
    for (const WIN32_FIND_DATAW& file : FilesIn(folder, L"*.path")) {
        Leftover one;
        one.text = folder + file.cFileName;
        one.text.resize(one.text.size() - std::size(kPathEnd) + 1);
        one.files = {one.text, folder + file.cFileName};
        WIN32_FILE_ATTRIBUTE_DATA copy = {};
        if (WriterRuns(file.cFileName)) continue;
        if (GetFileAttributesExW(PathForSystem(one.text.c_str()).c_str(), GetFileExInfoStandard, &copy) == FALSE) {
            DeleteUnfinishedCopy(one);
            continue;
        }
        const auto [target, run] = ParseRecoveryNote(Utf8ToWideText(ReadNote(one.files[1])));
        one.run = run;
        one.note.label = FileNameOf(target);
        if (one.note.label.empty())  // a note that is damaged
            one.note.label = FileNameOf(one.text);
        else if (target.find(L'\\') != std::wstring::npos)
            one.note.path = target;  // otherwise it is the label of an untitled one
        one.asWritten = true;
        one.time = copy.ftLastWriteTime;
        one.size = (std::uint64_t{copy.nFileSizeHigh} << 32U) | copy.nFileSizeLow;
        left.push_back(std::move(one));
    }
}

LeftoverOrigin OriginOf(const Leftover& leftover) {
    return {.path = leftover.note.path,
            .run = leftover.run,
            .time = (std::uint64_t{leftover.time.dwHighDateTime} << 32U) | leftover.time.dwLowDateTime,
            .ofSave = leftover.asWritten};
}

bool AreEqual(const Leftover& a, const Leftover& b) {
    std::string first, second;
    return !a.note.path.empty() && PathEqualsIgnoreCase(a.note.path, b.note.path) &&
           std::max(a.size, b.size) <= kMostCompared && LeftoverRead(a, &first) && LeftoverRead(b, &second) &&
           first == second;
}

// Whether its file holds the text, so that nobody wants it any more.
bool IsInItsFile(const Leftover& leftover) {
    const wchar_t* const path = leftover.note.path.c_str();
    WIN32_FILE_ATTRIBUTE_DATA file = {};
    if (path[0] == L'\0' || leftover.size > kMostCompared || !PathAnswers(path) ||
        GetFileAttributesExW(PathForSystem(path).c_str(), GetFileExInfoStandard, &file) == FALSE ||
        file.nFileSizeHigh != 0 || file.nFileSizeLow > kMostCompared)
        return false;
    std::size_t length = 0;
    DiskForm form;
    const HeapBlock<char> onDisk{ReadSourceFileForEditor(path, &length, nullptr, nullptr, &form)};
    std::string kept;
    return onDisk && !form.inexact && LeftoverRead(leftover, &kept) && kept == std::string_view{onDisk.get(), length};
}

void DropSaved(std::vector<Leftover>& left) {
    std::erase_if(
        left,
        [](const Leftover& one) {
            const bool saved = IsInItsFile(one);
            if (saved) LeftoverDelete(one);
            return saved;
        });
}

// Of the texts of one file those stay that say something of their own. The files of the others go with the one that stands
// for them. Newest first.
void DropRepeated(std::vector<Leftover>& left) {
    std::vector<Leftover> kept;
    for (Leftover& one : left) {
        const auto standsForIt = std::ranges::find_if(kept, [&one](const Leftover& newer) {
            return LeftoverReplaces(OriginOf(newer), OriginOf(one)) || AreEqual(newer, one);
        });
        if (standsForIt == kept.end())
            kept.push_back(std::move(one));
        else
            std::ranges::move(one.files, std::back_inserter(standsForIt->files));
    }
    left = std::move(kept);
}

}  // namespace

std::vector<Leftover> LeftoversFind() {
    std::vector<Leftover> left;
    const std::wstring user = UserFolderPath();
    if (user.empty()) return left;
    std::ranges::move(RunFoldersLeft(), std::back_inserter(g_leftFolders));
    for (const RunFolder& folder : g_leftFolders) {
        DeleteStrays(folder.path);
        AddSnapshots(folder, left);
    }
    AddFailedSaves(user + L"Recovery\\", left);
    std::ranges::sort(left, [](const Leftover& a, const Leftover& b) {
        const LONG order = CompareFileTime(&a.time, &b.time);
        return order != 0 ? order > 0 : a.asWritten && !b.asWritten;
    });
    DropRepeated(left);
    DropSaved(left);
    return left;
}

bool LeftoverRead(const Leftover& leftover, std::string* utf8) {
    if (!leftover.asWritten) return ReadSharedFile(leftover.text, kLargestText, utf8);
    std::size_t length = 0;
    const HeapBlock<char> text{ReadSourceFileForEditor(leftover.text.c_str(), &length, nullptr, nullptr)};
    if (text) utf8->assign(text.get(), length);
    return text != nullptr;
}

void LeftoverDelete(const Leftover& leftover) {
    for (const std::wstring& file : leftover.files) DeleteFileW(PathForSystem(file.c_str()).c_str());
}

void LeftoversEnd() {
    for (RunFolder& folder : g_leftFolders) RunFolderRelease(folder);
    g_leftFolders.clear();
}
