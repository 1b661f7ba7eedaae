// Recovery copies. While a save overwrites its target, a second file holds the whole new text, flushed to the disk.
// This copy is in the user's own folder ("KVX-Editor\Recovery" under the local application data). Its name is that of
// the target with a tag, and a ".path" file beside it holds the full path of the target and, in a second line, the run of
// the program. While it is written, its name ends in ".new". The copy is deleted once the target has been written and
// read back, and stays when the save failed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct FileProgress;

// --- recovery.cpp: pure
// "demo.bas" of C:\src becomes "demo [1f00c0de-3a4-2].bas". The tag is a hash of the path without regard to case, the
// id of the process and a number.
std::wstring RecoveryCopyName(std::wstring_view targetPath, std::uint32_t processId, std::uint32_t number);

// The id of the process that wrote a copy of that name, with or without a folder. 0: it is none of ours.
std::uint32_t RecoveryCopyWriter(std::wstring_view name);

// What a ".path" file says.
struct RecoveryNote {
    std::wstring target;
    std::wstring run;  // RecoveryRun() of the writer; empty: not known
};
RecoveryNote ParseRecoveryNote(std::wstring_view text);

inline constexpr wchar_t kRecoveryUnfinished[] = L".new";  // follows the name of a copy that is being written

struct RecoveryCopy {
    std::wstring path;      // the copy; empty when there is none
    std::wstring notePath;  // the ".path" file; empty for a copy beside its target
};

// The copies that failed saves have left: one for each target, whose path is compared without regard to case.
class KeptCopies {
public:
    // Notes the copy that a failed save has left. Returns the copies of earlier failures, which the caller deletes. An
    // empty copy replaces none.
    std::vector<RecoveryCopy> Keep(std::wstring_view target, const RecoveryCopy& copy);
    // Notes that a save succeeded. Returns the copies that the caller deletes.
    std::vector<RecoveryCopy> Forget(std::wstring_view target);
    bool Has(std::wstring_view target) const;
    // The path of the copy that the latest save left. Empty when that save succeeded or could not keep a copy.
    const std::wstring& LastPath() const { return lastPath_; }

private:
    struct Kept {
        std::wstring target;
        RecoveryCopy copy;
    };
    std::vector<RecoveryCopy> Take(std::wstring_view target);

    std::vector<Kept> kept_;
    std::wstring lastPath_;
};

// --- recovery_win.cpp: any thread

// Names this run of the program; no other run ever has the same.
std::wstring RecoveryRun();

// Writes the copy and flushes it to the disk. When the user's folder cannot take it, it is written beside the target.
// Returns false when neither place can take it; no part of it is left then.
// `progress` (may be null) counts the bytes and can stop it.
bool RecoveryWrite(const wchar_t* target, const char* bytes, std::size_t length, RecoveryCopy* copy,
                   FileProgress* progress = nullptr);
// After a successful save: deletes this copy, and those that failed saves of the same target have left in this process.
void RecoveryDiscard(const wchar_t* target, const RecoveryCopy& copy);
// After a failed save: the copy stays, and those of earlier failed saves of the same target are deleted. An empty copy
// deletes none.
void RecoveryKeep(const wchar_t* target, const RecoveryCopy& copy);

// True when a failed save of this target has left a copy in this process and none has succeeded since. The target may
// then be damaged.
bool RecoveryHasKept(const wchar_t* target);

// The path of the copy that the latest save left. Empty when that save succeeded or could not keep a copy.
std::wstring RecoveryLastPath();

// The folder of the copies with its trailing backslash. Creates it when it is missing; empty when that fails.
std::wstring RecoveryFolder();
