// Sends messages to Scintilla windows, directly or through the system. UI thread only.
#include "scintilla/sci.h"

#include <vector>

namespace {

struct Attached {
    HWND editor;
    SciFnDirect call;
    sptr_t pointer;
};
std::vector<Attached> g_attached;  // one for each open document; searched for every message, because they are few

}  // namespace

void SciAttach(HWND editor) {
    const auto call = reinterpret_cast<SciFnDirect>(SciSend(editor, SCI_GETDIRECTFUNCTION));
    const sptr_t pointer = SciSend(editor, SCI_GETDIRECTPOINTER);
    if (call != nullptr && pointer != 0) g_attached.push_back({editor, call, pointer});
}

void SciDetach(HWND editor) {
    std::erase_if(
        g_attached, [editor](const Attached& row) { return row.editor == editor; });
}

LRESULT SciSend(HWND editor, UINT message, WPARAM wParam, LPARAM lParam) {
    if (editor == nullptr) return 0;
    if (message >= SCI_START) {  // the system's messages must reach the window and its subclass
        for (const Attached& row : g_attached)
            if (row.editor == editor) return row.call(row.pointer, message, wParam, lParam);
    }
    return SendMessageW(editor, message, wParam, lParam);
}

void SciClearMarker(HWND editor, int marker) {
    constexpr int kFewMarks = 256;
    LRESULT line = 0;
    for (int i = 0; i < kFewMarks; ++i) {
        // Starts at the same line again, because a line can have a marker more than once.
        line = SciSend(editor, SCI_MARKERNEXT, static_cast<WPARAM>(line), LPARAM{1} << marker);
        if (line < 0) return;
        SciSend(editor, SCI_MARKERDELETE, static_cast<WPARAM>(line), marker);
    }
    SciSend(editor, SCI_MARKERDELETEALL, static_cast<WPARAM>(marker));
}

void SciSendString(HWND editor, UINT message, WPARAM wParam, const wchar_t* text) {
    if (editor == nullptr || text == nullptr) return;
    constexpr int kCapacity = 512;
    char utf8[kCapacity];
    int length = WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8, kCapacity, nullptr, nullptr);
    if (length <= 0) {
        // Too long for the buffer: converts as many whole characters as fit. A UTF-16 unit needs at most three bytes,
        // so the loop ends. A surrogate pair is never split.
        int units = lstrlenW(text) < kCapacity ? lstrlenW(text) : kCapacity - 1;
        do {
            if (IS_HIGH_SURROGATE(text[units - 1])) --units;
            length = WideCharToMultiByte(CP_UTF8, 0, text, units, utf8, kCapacity - 1, nullptr, nullptr);
            --units;
        } while (length <= 0 && units > 0);
        utf8[length > 0 ? length : 0] = '\0';
    }
    SendMessageA(editor, message, wParam, reinterpret_cast<LPARAM>(utf8));
}
