// Which lines carry the sign is remembered here and follows the edits: looking for markers would cost a pass over the
// whole text. UI thread only.
#include "debugui/fold_signs.h"

#include "debugui/breakpoint_rules.h"
#include "documents/margins.h"
#include "scintilla/sci.h"

#include <algorithm>
#include <vector>

namespace {

struct Signs {
    HWND editor;
    std::vector<int> lines;  // in order
};
std::vector<Signs> g_signs;  // of the editors that have any

LRESULT Ask(HWND editor, UINT message, int line, LPARAM more = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(line), more);
}

bool HasSign(HWND editor, int line) { return (Ask(editor, SCI_MARKERGET, line) >> kMarkFolded & 1) != 0; }

}  // namespace

int FoldHeaderOf(HWND editor, int line) {
    if (Ask(editor, SCI_GETLINEVISIBLE, line) != 0) return -1;
    // A hidden line takes no room: it counts as the row behind the last one that is shown before it.
    const auto row = static_cast<int>(Ask(editor, SCI_VISIBLEFROMDOCLINE, line));
    return static_cast<int>(Ask(editor, SCI_DOCLINEFROMVISIBLE, row - 1));
}

void FoldSignsUpdate(HWND editor, std::span<const int> breakpointLines) {
    std::vector<int> headers;
    for (const int line : breakpointLines) {
        const int header = FoldHeaderOf(editor, line);
        if (header >= 0) headers.push_back(header);
    }
    std::ranges::sort(headers);
    headers.erase(std::unique(headers.begin(), headers.end()), headers.end());
    const auto hasSign = [editor](int line) { return HasSign(editor, line); };
    const auto known = std::ranges::find(g_signs, editor, &Signs::editor);
    std::vector<int> old;
    if (known != g_signs.end()) {
        if (known->lines == headers && std::ranges::all_of(headers, hasSign)) return;
        old = std::move(known->lines);
        g_signs.erase(known);
    }
    // One that is not where it should be was taken along by an edit of several lines.
    const bool lost = !std::ranges::all_of(old, hasSign);
    if (lost) SciSend(editor, SCI_MARKERDELETEALL, kMarkFolded);
    for (const int line : old) Ask(editor, SCI_MARKERDELETE, line, kMarkFolded);
    if (headers.empty()) return;
    for (const int line : headers) Ask(editor, SCI_MARKERADD, line, kMarkFolded);
    g_signs.push_back({editor, std::move(headers)});
}

void FoldSignsOnLinesMoved(HWND editor, int first, int added) {
    const auto known = std::ranges::find(g_signs, editor, &Signs::editor);
    if (known == g_signs.end()) return;
    for (int& line : known->lines) line = MovedLine(line, first, added);
}
