#include "ui/clipboard.h"

#include "base/log.h"

#include <cstring>

void ClipboardPutText(HWND owner, const std::wstring& text) {
    if (OpenClipboard(owner) == FALSE) {
        AppLogMsg(L"FAIL: ClipboardPutText error=%lu", GetLastError());
        return;
    }
    EmptyClipboard();
    const std::size_t bytes = (text.size() + 1) * sizeof(wchar_t);
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes);
    void* target = block != nullptr ? GlobalLock(block) : nullptr;
    if (target != nullptr) {
        std::memcpy(target, text.c_str(), bytes);
        GlobalUnlock(block);
    }
    if (target == nullptr || SetClipboardData(CF_UNICODETEXT, block) == nullptr) GlobalFree(block);
    CloseClipboard();
}
