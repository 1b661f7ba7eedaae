// Shows the sticky header of an editor: reads the lines that the cache does not know yet, and puts the header's text
// into the label. UI thread.
#include "documents/editor_pane.h"

#include "base/utf8.h"
#include "documents/documents_state.h"
#include "documents/pane_state.h"
#include "documents/sticky_header.h"
#include "scintilla/sci.h"

#include <algorithm>
#include <cwchar>
#include <string>

namespace {

constexpr UINT_PTR kTimer = 0x4B53;
constexpr UINT kTimerMs = 10;
constexpr LRESULT kBudget = 4 << 20;  // bytes read at a time, which takes a few milliseconds

void CALLBACK OnStickyTimer(HWND editor, UINT, UINT_PTR timer, DWORD) {
    KillTimer(editor, timer);
    if (editor == g_documents.hEditor) UpdateStickyHeader(editor, g_documents.hStickyHeader);
}

LRESULT LineStart(HWND editor, std::int64_t line) {
    return SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(line), 0);
}

// Reads at most `budget` bytes of the lines that the cache needs for `line`. True when the cache then has the answer.
bool LookUp(HWND editor, StickyCache& cache, std::int64_t line, LRESULT budget) {
    const StickyRange wanted = StickyWanted(cache, line);
    if (wanted.first > wanted.last) return true;
    const LRESULT end = SciSend(editor, SCI_GETLINEENDPOSITION, static_cast<WPARAM>(wanted.last), 0);
    LRESULT start = LineStart(editor, wanted.first);
    if (end - start > budget) {
        const LRESULT cut = SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(end - budget), 0);
        start = LineStart(editor, std::clamp<std::int64_t>(cut + 1, wanted.first, wanted.last));
    }
    // SCI_GETRANGEPOINTER gives Scintilla's own buffer. After typing, the text before the caret is in one piece there,
    // so no text is moved.
    const LRESULT length = end - start;
    const char* text =
        length > 0
            ? reinterpret_cast<const char*>(SciSend(editor, SCI_GETRANGEPOINTER, static_cast<WPARAM>(start), length))
            : "";
    if (text == nullptr) return true;
    StickyLearn(cache, line, StickyScanUp({text, static_cast<std::size_t>(length)}, wanted.last));
    const StickyRange left = StickyWanted(cache, line);
    return left.first > left.last;
}

// Line of the header above the caret, or kStickyNone. With `whole` the search reads on to the top; otherwise it stops
// after kBudget bytes, and then `*finished` is false.
std::int64_t HeaderLine(HWND editor, bool whole, bool* finished) {
    StickyCache local;
    PaneState* state = PaneStateOf(editor);
    StickyCache& cache = state != nullptr ? state->sticky : local;
    const LRESULT caret = SciSend(editor, SCI_GETCURRENTPOS, 0, 0);
    const LRESULT line = SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(caret), 0);
    *finished = LookUp(editor, cache, line, kBudget);
    while (whole && !*finished) *finished = LookUp(editor, cache, line, kBudget);
    return *finished && cache.header != kStickyNone && cache.header <= line ? cache.header : kStickyNone;
}

std::wstring LineText(HWND editor, std::int64_t line) {
    char utf8[kStickyMaximumLine + 1];
    const LRESULT start = LineStart(editor, line);
    const LRESULT end = SciSend(editor, SCI_GETLINEENDPOSITION, static_cast<WPARAM>(line), 0);
    const LRESULT length = std::min<LRESULT>(end - start, kStickyMaximumLine);
    Sci_TextRangeFull range = {};
    range.chrg = {start, start + length};
    range.lpstrText = utf8;
    SciSend(editor, SCI_GETTEXTRANGEFULL, 0, reinterpret_cast<LPARAM>(&range));
    return Utf8ToWideText({utf8, static_cast<std::size_t>(std::max<LRESULT>(length, 0))});
}

}  // namespace

void UpdateStickyHeader(HWND editor, HWND label) {
    if (editor == nullptr || label == nullptr) return;
    bool finished = true;
    const std::int64_t header = HeaderLine(editor, false, &finished);
    if (!finished) SetTimer(editor, kTimer, kTimerMs, OnStickyTimer);
    const std::wstring text = header != kStickyNone ? LineText(editor, header) : std::wstring();
    // The label repaints at every SetWindowTextW, so it gets only a new text.
    wchar_t shown[kStickyMaximumLine + 2] = {};
    GetWindowTextW(label, shown, kStickyMaximumLine + 2);
    if (text != shown) SetWindowTextW(label, text.c_str());
}

std::size_t EditorPaneProcedureLine(HWND editor, wchar_t* out, std::size_t capacity) {
    if (out == nullptr || capacity == 0) return 0;
    out[0] = L'\0';
    if (editor == nullptr) return 0;
    bool finished = true;
    const std::int64_t header = HeaderLine(editor, true, &finished);
    if (header != kStickyNone) SafeCopyW(out, capacity, LineText(editor, header));
    return std::wcslen(out);
}

void StickyHeaderForget(HWND editor, int line, int linesAdded) {
    if (PaneState* state = PaneStateOf(editor); state != nullptr) StickyForget(state->sticky, line, linesAdded);
}
