// The temporary copy of the source that some compilers need under another name. A file that is not ours is neither
// overwritten nor deleted: where one stands in the way it is moved aside and put back. Any thread.
#pragma once

#include "base/bounded_text.h"
#include "settings/compiler_table.h"

#include <windows.h>

#include <string>

struct StagedSource {
    std::wstring path;      // what the compiler is to read; the source itself when nothing had to be copied
    bool copied = false;    // `path` is a copy of ours, to be deleted
    std::wstring aside;     // where a file that stood in the way waits, empty: none did
    std::wstring leftover;  // where an earlier build left such a file when it was cut off, empty: it did not
    FILETIME written = {};  // of the copy, to notice that someone else has written there since
    ULARGE_INTEGER length = {};
};

// False when the source cannot be brought under the name that KeldorBasic needs; `error` is then the Win32 error. The
// other compilers get the source itself if no copy can be made.
bool StageSource(const wchar_t* source, const wchar_t* output, CommandStyle style, StagedSource* staged, DWORD* error);

// Deletes the copy and puts back what was moved aside. Returns a line for the user when something had to be left,
// else empty text. Does nothing the second time.
std::wstring UnstageSource(StagedSource* staged);
