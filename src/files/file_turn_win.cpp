#include "files/file_turn.h"

#include <windows.h>

#include <string>

FileTurn::FileTurn(const wchar_t* name)
    : mutex_(CreateMutexW(nullptr, FALSE, (std::wstring{L"Local\\KVX-Editor."} + name).c_str())) {
    constexpr DWORD kPatienceMs = 500;
    const DWORD result = mutex_ ? WaitForSingleObject(mutex_.Get(), kPatienceMs) : WAIT_FAILED;
    taken_ = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
}

FileTurn::~FileTurn() {
    if (taken_) ReleaseMutex(mutex_.Get());
}
