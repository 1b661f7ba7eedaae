// Recovery copies: while a save overwrites its target, the new bytes stand whole and flushed in a second file. The
// copy lies in the user's own folder ("KVX-Editor\Recovery" under the local application data), under the target's name
// with a tag, with a ".path" file beside it that holds the target's full path. It goes when the target was written and
// read back, and stays when the save failed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// --- recovery.cpp: pure
// "demo.bas" of C:\src becomes "demo [1f00c0de-3a4-2].bas": hash of the path (without regard to case), process, number.
std::wstring RecoveryCopyName(std::wstring_view targetPath, std::uint32_t processId, std::uint32_t number);

// --- recovery_win.cpp: any thread
struct RecoveryCopy {
    std::wstring path;      // the copy; empty when there is none
    std::wstring notePath;  // the ".path" file; empty for a copy that stands beside its target
};

// Writes the copy and has it on the disk when it returns true. When the user's folder cannot take it, it is put beside
// the target. False: nowhere; nothing is left behind.
bool RecoveryWrite(const wchar_t* target, const char* bytes, std::size_t length, RecoveryCopy* copy);
// The save succeeded: removes this copy and those that failed saves of the same target left in this process.
void RecoveryDiscard(const wchar_t* target, const RecoveryCopy& copy);
// The save failed: the copy stays, in place of those that failed saves of the same target left before. An empty copy
// replaces none.
void RecoveryKeep(const wchar_t* target, const RecoveryCopy& copy);

// A failed save of this target left a copy in this process and none has succeeded since: the target may be damaged.
bool RecoveryHasKept(const wchar_t* target);

// The copy that the latest failed save left, empty when the latest save succeeded or nothing could be kept.
std::wstring RecoveryLastPath();

// Folder of the copies with its trailing backslash, created when missing; empty when that fails.
std::wstring RecoveryFolder();
