// The formatter at work in an editor: reads whole lines, replaces what the formatter changes. UI thread only.
#include "documents/editor_format.h"

#include "base/events.h"
#include "base/texts.h"
#include "documents/document_row.h"
#include "documents/documents_state.h"
#include "editor/editor_pane.h"
#include "editor/pane_state.h"
#include "language/format.h"
#include "language/format_range.h"
#include "settings/settings_state.h"
#include "ui/long_work.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace {

LineRange LinesToFormat(HWND editor, bool selectionOnly) {
    if (!selectionOnly) return {0, static_cast<int>(PaneSend(editor, SCI_GETLINECOUNT)) - 1};
    const LRESULT end = PaneSend(editor, SCI_GETSELECTIONEND);
    const LRESULT first = PaneSend(editor, SCI_LINEFROMPOSITION, PaneSend(editor, SCI_GETSELECTIONSTART));
    const LRESULT last = PaneSend(editor, SCI_LINEFROMPOSITION, end);
    return LinesOfSelection(static_cast<int>(first), static_cast<int>(last),
                            PaneSend(editor, SCI_POSITIONFROMLINE, last) == end);
}

constexpr int kContinuation = 64;  // lines below the last one that its statement may go on

// The start of the line, or the end of the text behind its last line.
LRESULT StartOfLine(HWND editor, int line) {
    return line < static_cast<int>(PaneSend(editor, SCI_GETLINECOUNT)) ? PaneSend(editor, SCI_POSITIONFROMLINE, line)
                                                                       : PaneSend(editor, SCI_GETLENGTH);
}

// What is marked on a line stays on it, also when this is undone. Undoes everything when the user stops the work.
void ReplaceLines(HWND editor, LRESULT start, const std::vector<LineReplacement>& replacements, LongWork& work) {
    PaneSend(editor, SCI_BEGINUNDOACTION);
    double done = 0;
    for (const LineReplacement& each : replacements) {
        const LRESULT from = start + static_cast<LRESULT>(each.start);
        PaneSend(editor, SCI_SETTARGETRANGE, from, from + static_cast<LRESULT>(each.length));
        SciSend(editor, SCI_REPLACETARGET, each.text.size(), reinterpret_cast<LPARAM>(each.text.data()));
        if (!work.GoesOn((1 + ++done / static_cast<double>(replacements.size())) / 2)) break;
    }
    PaneSend(editor, SCI_ENDUNDOACTION);
    if (work.Stopped()) EditorPaneTakeBack(editor);
}

// A place in the text that keeps to its character while the line is formatted.
struct KeptPlace {
    LRESULT line = 0;
    std::string before;
    std::size_t place = 0;
};

std::string TextOfLine(HWND editor, LRESULT line) {
    return EditorPaneTextBetween(editor, PaneSend(editor, SCI_POSITIONFROMLINE, line),
                                 PaneSend(editor, SCI_GETLINEENDPOSITION, line));
}

KeptPlace KeepPlace(HWND editor, LRESULT position) {
    const LRESULT line = PaneSend(editor, SCI_LINEFROMPOSITION, position);
    const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, line);
    return {line, TextOfLine(editor, line), static_cast<std::size_t>(position - start)};
}

LRESULT PositionOf(HWND editor, const KeptPlace& kept) {
    const std::size_t place = SamePlaceInLine(kept.before, TextOfLine(editor, kept.line), kept.place);
    return PaneSend(editor, SCI_POSITIONFROMLINE, kept.line) + static_cast<LRESULT>(place);
}

void TellFormatted(HWND editor, const wchar_t* text) { g_events.documentStatus(DocumentOfEditor(editor), text); }

std::wstring FormattedText(std::size_t changed) {
    return TextWith(changed == 1 ? L"Formatted: {1} line changed" : L"Formatted: {1} lines changed",
                    {std::to_wstring(changed)});
}

}  // namespace

void EditorFormat(HWND editor, bool selectionOnly) {
    if (editor == nullptr) return;
    const LineRange lines = LinesToFormat(editor, selectionOnly);
    const LRESULT start = StartOfLine(editor, lines.first);
    const LRESULT end = StartOfLine(editor, lines.last + 1);
    // A selection is formatted as it would be within the whole document, so the lines above it are read too.
    const std::string all = EditorPaneTextBetween(editor, 0, StartOfLine(editor, lines.last + 1 + kContinuation));
    const FormatOptions options = {.indentWidth = std::max(1, static_cast<int>(g_settings.tabWidth)),
                                   .useTabs = g_settings.useTabs != 0,
                                   .upperKeywords = g_settings.autoUpperKeywords != 0,
                                   .dialect = &EditorPaneDialect(editor)};
    LongWork work(
        Text(L"Formatting"), [](const wchar_t* progress) { g_events.statusText(progress); });
    const std::string formatted = FormatBasicLines(all, options, lines.first, lines.last,
                                                   [&work](double share) { return work.GoesOn(share / 2); });
    const std::string_view text =
        std::string_view(all).substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
    if (formatted == text && !work.Stopped()) {
        TellFormatted(editor, Text(L"Formatted: nothing had to be changed"));
        return;
    }
    const KeptPlace caret = KeepPlace(editor, PaneSend(editor, SCI_GETCURRENTPOS));
    const KeptPlace anchor = KeepPlace(editor, PaneSend(editor, SCI_GETANCHOR));
    const LRESULT topLine = PaneSend(editor, SCI_GETFIRSTVISIBLELINE);
    const std::vector<LineReplacement> changes =
        work.Stopped() ? std::vector<LineReplacement>() : LineReplacements(text, formatted);
    if (!work.Stopped()) ReplaceLines(editor, start, changes, work);
    TellFormatted(editor,
                  work.Stopped() ? Text(L"Stopped: nothing was formatted") : FormattedText(changes.size()).c_str());
    PaneSend(editor, SCI_SETSEL, PositionOf(editor, anchor), PositionOf(editor, caret));
    PaneSend(editor, SCI_SETFIRSTVISIBLELINE, topLine);
}
