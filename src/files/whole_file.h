// Writing a file in one go: what the savers of this folder share. Private to this folder; any thread.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

struct WriteHow {
    DWORD disposition = CREATE_ALWAYS;
    DWORD attributes = FILE_ATTRIBUTE_NORMAL;
    bool flush = true;          // the disk has the bytes when the call returns true
    bool removeFailed = false;  // a file that was opened but not written whole is deleted
};

// True when all bytes were written; 4 GiB and more are refused. `systemPath` is of the form that PathForSystem gives.
bool WriteWholeFile(const std::wstring& systemPath, std::string_view bytes, const WriteHow& how);
