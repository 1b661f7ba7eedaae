// Shows the sticky header of an editor: reads the lines that the cache does not know yet, and puts the header's text
// into the label. UI thread.
#include "documents/sticky_label.h"

#include "base/events.h"
#include "base/utf8.h"
#include "documents/document_row.h"
#include "editor/editor_pane.h"
#include "editor/sticky_header.h"
#include "scintilla/sci.h"
#include "ui/dpi.h"

#include <algorithm>
#include <cwchar>
#include <optional>
#include <string>

namespace {

constexpr int kLeastHeight = 18;  // of the header, at 96 dpi
constexpr UINT_PTR kTimer = 0x4B53;
constexpr UINT kTimerMs = 10;
constexpr std::ptrdiff_t kBudget = 4 << 20;  // bytes read at a time, which takes a few milliseconds

void CALLBACK OnStickyTimer(HWND editor, UINT, UINT_PTR timer, DWORD) {
    KillTimer(editor, timer);
    if (editor == g_documents.hEditor) UpdateStickyHeader(editor, g_documents.hStickyHeader);
}

LRESULT LineStart(HWND editor, std::int64_t line) {
    return SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(line), 0);
}

StickySource SourceOf(HWND editor) {
    return {.lineStart = [editor](std::int64_t line) { return LineStart(editor, line); },
            .lineEnd = [editor](std::int64_t line) { return PaneSend(editor, SCI_GETLINEENDPOSITION, line); },
            .lineAt = [editor](std::ptrdiff_t position) { return PaneSend(editor, SCI_LINEFROMPOSITION, position); },
            // SCI_GETRANGEPOINTER gives Scintilla's own buffer. After typing, the text before the caret is in one piece
            // there, so no text is moved.
            .text = [editor](std::ptrdiff_t start, std::ptrdiff_t length) -> std::optional<std::string_view> {
                if (length <= 0) return std::string_view{};
                const LRESULT text = PaneSend(editor, SCI_GETRANGEPOINTER, start, length);
                if (text == 0) return std::nullopt;
                return std::string_view{reinterpret_cast<const char*>(text), static_cast<std::size_t>(length)};
            }};
}

// Line of the header above the caret, or kStickyNone. With `whole` the search reads on to the top; otherwise it stops
// after kBudget bytes, and then `*finished` is false.
std::int64_t HeaderLine(HWND editor, bool whole, bool* finished) {
    StickyCache local;
    StickyCache* const kept = EditorPaneStickyCache(editor);
    StickyCache& cache = kept != nullptr ? *kept : local;
    const LRESULT caret = SciSend(editor, SCI_GETCURRENTPOS, 0, 0);
    const LRESULT line = SciSend(editor, SCI_LINEFROMPOSITION, static_cast<WPARAM>(caret), 0);
    const StickySource source = SourceOf(editor);
    *finished = StickyLookUp(cache, line, kBudget, source);
    while (whole && !*finished) *finished = StickyLookUp(cache, line, kBudget, source);
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

std::int64_t DisplayLine(HWND editor, std::int64_t line) { return PaneSend(editor, SCI_VISIBLEFROMDOCLINE, line); }

// Gives the header its place above the active editor, or takes it, without moving the text on the screen.
void PlaceHeader(HWND editor, std::int64_t header) {
    if (editor != g_documents.hEditor || !IsTabIndex(g_documents.activeTab)) return;
    bool& shown = TabAt(g_documents.activeTab).headerShown;
    const std::int64_t top = SciSend(editor, SCI_GETFIRSTVISIBLELINE);
    const std::int64_t line = header != kStickyNone ? DisplayLine(editor, header) : kStickyNone;
    const bool wanted = StickyIsWanted(line, top, shown);
    if (wanted == shown) return;
    const std::int64_t caret =
        DisplayLine(editor, PaneSend(editor, SCI_LINEFROMPOSITION, SciSend(editor, SCI_GETCURRENTPOS)));
    shown = wanted;
    g_events.layoutWanted();
    SciSend(editor, SCI_SETFIRSTVISIBLELINE, static_cast<WPARAM>(StickyTopAfter(top, caret, wanted)));
}

}  // namespace

int StickyHeaderHeight() {
    if (!IsTabIndex(g_documents.activeTab) || !TabAt(g_documents.activeTab).headerShown) return 0;
    return std::max(static_cast<int>(SciSend(g_documents.hEditor, SCI_TEXTHEIGHT)), UiScaled(kLeastHeight));
}

void StickyHeaderOnScroll(HWND editor) {
    bool finished = true;
    const std::int64_t header = HeaderLine(editor, false, &finished);
    if (finished) PlaceHeader(editor, header);
}

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
    if (finished) PlaceHeader(editor, header);
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
