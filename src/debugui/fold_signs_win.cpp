// Signs of folded breakpoints. The lines with a sign are remembered here and follow the edits, because finding the
// markers would mean a pass over the whole text. UI thread only.
#include "debugui/fold_signs.h"

#include "debugui/breakpoint_rules.h"
#include "editor/margins.h"
#include "scintilla/sci.h"

#include <algorithm>
#include <vector>

namespace {

struct FoldSigns {
    DocumentId document = 0;
    std::vector<int> lines;  // in order
};
std::vector<FoldSigns> g_signs;  // of the documents that have any

LRESULT AskLine(HWND editor, UINT message, int line, LPARAM more = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(line), more);
}

bool HasSign(HWND editor, int line) { return (AskLine(editor, SCI_MARKERGET, line) >> kMarkFolded & 1) != 0; }

auto SignsOf(DocumentId document) { return std::ranges::find(g_signs, document, &FoldSigns::document); }

}  // namespace

int FoldHeaderOf(HWND editor, int line) {
    if (AskLine(editor, SCI_GETLINEVISIBLE, line) != 0) return -1;
    // A hidden line takes no display row: SCI_VISIBLEFROMDOCLINE gives it the row after the last shown line before it.
    const auto row = static_cast<int>(AskLine(editor, SCI_VISIBLEFROMDOCLINE, line));
    return static_cast<int>(AskLine(editor, SCI_DOCLINEFROMVISIBLE, row - 1));
}

void FoldSignsUpdate(DocumentId document, HWND editor, std::span<const int> breakpointLines) {
    std::vector<int> headers;
    for (const int line : breakpointLines) {
        const int header = FoldHeaderOf(editor, line);
        if (header >= 0) headers.push_back(header);
    }
    std::ranges::sort(headers);
    headers.erase(std::unique(headers.begin(), headers.end()), headers.end());
    const auto hasSign = [editor](int line) { return HasSign(editor, line); };
    const auto known = SignsOf(document);
    std::vector<int> old;
    if (known != g_signs.end()) {
        if (known->lines == headers && std::ranges::all_of(headers, hasSign)) return;
        old = std::move(known->lines);
        g_signs.erase(known);
    }
    // A sign that is not on its remembered line was moved by an edit of several lines, to an unknown line.
    const bool lost = !std::ranges::all_of(old, hasSign);
    if (lost) SciClearMarker(editor, kMarkFolded);
    for (const int line : old) AskLine(editor, SCI_MARKERDELETE, line, kMarkFolded);
    if (headers.empty()) return;
    for (const int line : headers) AskLine(editor, SCI_MARKERADD, line, kMarkFolded);
    g_signs.push_back({document, std::move(headers)});
}

void FoldSignsOnLinesMoved(DocumentId document, int first, int added) {
    const auto known = SignsOf(document);
    if (known == g_signs.end()) return;
    for (int& line : known->lines) line = MovedLine(line, first, added);
}

void FoldSignsForget(DocumentId document) {
    if (const auto known = SignsOf(document); known != g_signs.end()) g_signs.erase(known);
}
