// Recovery copies: while a save overwrites its target, the new text stands whole and flushed in a second file. The copy
// lies in the user's own folder ("KVX-Editor\Recovery" under the local application data), named after the target with a tag,
// and beside it a ".path" file with the target's full path. It is removed once the target was written and read back, and
// stays when the save failed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// --- recovery.cpp: pure
// "demo.bas" of C:\src becomes "demo [1f00c0de-3a4-2].bas". The tag is a hash of the path (without regard to case), the
// process and a number.
std::wstring RecoveryCopyName(std::wstring_view targetPath, std::uint32_t processId, std::uint32_t number);

struct RecoveryCopy {
    std::wstring path;      // the copy; empty when there is none
    std::wstring notePath;  // the ".path" file; empty for a copy that stands beside its target
};

// The copies that failed saves have left, by target (without regard to case): one for each.
class KeptCopies {
public:
    // A save failed and left this copy. Returns the copies of earlier failures, which are no longer needed; an empty copy
    // replaces none.
    std::vector<RecoveryCopy> Keep(std::wstring_view target, const RecoveryCopy& copy);
    // A save succeeded. Returns the copies that are no longer needed.
    std::vector<RecoveryCopy> Forget(std::wstring_view target);
    bool Has(std::wstring_view target) const;
    // The copy that the latest save left, empty when it succeeded or could not keep one.
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

// Writes the copy; true once the disk has it. It is put beside the target when the user's folder cannot take it. False:
// it fits nowhere, and nothing is left behind.
bool RecoveryWrite(const wchar_t* target, const char* bytes, std::size_t length, RecoveryCopy* copy);
// The save succeeded: removes this copy and those that failed saves of the same target left in this process.
void RecoveryDiscard(const wchar_t* target, const RecoveryCopy& copy);
// The save failed: the copy stays, and those that earlier failed saves of the same target left are removed. An empty copy
// removes none.
void RecoveryKeep(const wchar_t* target, const RecoveryCopy& copy);

// A failed save of this target left a copy in this process and none has succeeded since: the target may be damaged.
bool RecoveryHasKept(const wchar_t* target);

// The copy that the latest failed save left, empty when the latest save succeeded or nothing could be kept.
std::wstring RecoveryLastPath();

// Folder of the copies with its trailing backslash, created when missing; empty when that fails.
std::wstring RecoveryFolder();
