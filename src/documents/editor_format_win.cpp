// The formatter at work in an editor: reads whole lines, replaces what the formatter changes. UI thread only.
#include "documents/editor_format.h"

#include "documents/pane_state.h"
#include "language/format.h"
#include "language/format_range.h"
#include "settings/settings_state.h"

#include <algorithm>
#include <string>

namespace {

LineRange LinesToFormat(HWND editor, bool selectionOnly) {
    if (!selectionOnly) return {0, static_cast<int>(PaneSend(editor, SCI_GETLINECOUNT)) - 1};
    const LRESULT end = PaneSend(editor, SCI_GETSELECTIONEND);
    const LRESULT first = PaneSend(editor, SCI_LINEFROMPOSITION, PaneSend(editor, SCI_GETSELECTIONSTART));
    const LRESULT last = PaneSend(editor, SCI_LINEFROMPOSITION, end);
    return LinesOfSelection(static_cast<int>(first), static_cast<int>(last),
                            PaneSend(editor, SCI_POSITIONFROMLINE, last) == end);
}

std::string TextOf(HWND editor, LRESULT start, LRESULT end) {
    std::string text(static_cast<std::size_t>(end - start), '\0');
    PaneSend(editor, SCI_SETTARGETRANGE, start, end);
    PaneSend(editor, SCI_GETTARGETTEXT, 0, reinterpret_cast<LPARAM>(text.data()));
    return text;
}

// What is marked on a line stays on it, also when this is undone.
void ReplaceLines(HWND editor, LRESULT start, const std::vector<TextReplacement>& replacements) {
    PaneSend(editor, SCI_BEGINUNDOACTION);
    for (const TextReplacement& each : replacements) {
        const LRESULT from = start + static_cast<LRESULT>(each.start);
        PaneSend(editor, SCI_SETTARGETRANGE, from, from + static_cast<LRESULT>(each.length));
        SciSend(editor, SCI_REPLACETARGET, each.text.size(), reinterpret_cast<LPARAM>(each.text.data()));
    }
    PaneSend(editor, SCI_ENDUNDOACTION);
}

}  // namespace

void EditorFormat(HWND editor, bool selectionOnly) {
    if (editor == nullptr) return;
    const LineRange lines = LinesToFormat(editor, selectionOnly);
    const LRESULT start = PaneSend(editor, SCI_POSITIONFROMLINE, lines.first);
    const bool toEnd = lines.last + 1 >= static_cast<int>(PaneSend(editor, SCI_GETLINECOUNT));
    const std::string text =
        TextOf(editor, start,
               toEnd ? PaneSend(editor, SCI_GETLENGTH) : PaneSend(editor, SCI_POSITIONFROMLINE, lines.last + 1));
    const int width = std::max(1, static_cast<int>(g_settings.tabWidth));
    const auto indentation = static_cast<int>(PaneSend(editor, SCI_GETLINEINDENTATION, lines.first));
    const std::string formatted = FormatBasicSource(
        text,
        {.indentWidth = width, .useTabs = g_settings.useTabs != 0, .upperKeywords = g_settings.autoUpperKeywords != 0},
        FormatDepth(lines.first, indentation, width));
    if (formatted == text) return;
    const LRESULT caretLine = PaneSend(editor, SCI_LINEFROMPOSITION, PaneSend(editor, SCI_GETCURRENTPOS));
    const LRESULT topLine = PaneSend(editor, SCI_GETFIRSTVISIBLELINE);
    ReplaceLines(editor, start, LineReplacements(text, formatted));
    PaneSend(editor, SCI_GOTOPOS, PaneSend(editor, SCI_GETLINEINDENTPOSITION, caretLine));
    PaneSend(editor, SCI_SETFIRSTVISIBLELINE, topLine);
}
