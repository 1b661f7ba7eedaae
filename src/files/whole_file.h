// Reads and writes a file whole, for the functions of this folder. Private to this folder; any thread.
#pragma once

#include "files/disk_file.h"
#include "files/file_progress.h"

#include <windows.h>

#include <string>
#include <string_view>

struct WriteHow {
    DWORD disposition = CREATE_ALWAYS;
    DWORD attributes = FILE_ATTRIBUTE_NORMAL;
    bool flush = true;          // flushes the bytes to the disk before it returns
    bool removeFailed = false;  // deletes a file that was opened but not written whole
    DWORD sharing = 0;
    DWORD patience = 0;                // ms to try again for, while another program holds the file
    FileProgress* progress = nullptr;  // counts the bytes; stops the writing when it is cancelled and may be
    bool* opened = nullptr;            // becomes true once the file is open, and with CREATE_ALWAYS empty
};

// Returns true when all bytes were written; 4 GiB and more are refused. After a failed write GetLastError() tells the
// reason. `systemPath` has the form that PathForSystem returns.
bool WriteWholeFile(const std::wstring& systemPath, std::string_view bytes, const WriteHow& how);

// ReadFileUtf8, which also tells what the file was when it was read, with its hash.
char* ReadWholeFile(const wchar_t* path, std::size_t* length, FileState* state);
