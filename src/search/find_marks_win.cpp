// Marks matches in an editor, by two indicators. UI thread.
#include "editor/margins.h"
#include "scintilla/sci.h"
#include "search/find_internal.h"
#include "ui/chrome.h"

namespace {

constexpr int kBarIndicator = 21;

int IndicatorOf(FindMarks marks) { return marks == FindMarks::All ? kIndicatorFound : kBarIndicator; }

}  // namespace

void FindMarksPrepare(HWND editor, FindMarks marks) {
    const auto indicator = static_cast<WPARAM>(IndicatorOf(marks));
    const ThemeChrome& chrome = ThemeCurrentChrome();
    SciSend(editor, SCI_INDICSETSTYLE, indicator, INDIC_STRAIGHTBOX);
    SciSend(editor, SCI_INDICSETFORE, indicator,
            static_cast<LPARAM>(marks == FindMarks::All ? chrome.modified : chrome.accent));
    SciSend(editor, SCI_INDICSETALPHA, indicator, 70);
    SciSend(editor, SCI_INDICSETOUTLINEALPHA, indicator, 150);
    SciSend(editor, SCI_INDICSETUNDER, indicator, TRUE);
}

void FindMark(HWND editor, FindMarks marks, FindSpan span) {
    SciSend(editor, SCI_SETINDICATORCURRENT, static_cast<WPARAM>(IndicatorOf(marks)));
    if (span.end > span.start)
        SciSend(editor, SCI_INDICATORFILLRANGE, static_cast<WPARAM>(span.start), span.end - span.start);
}

void FindUnmark(HWND editor, FindMarks marks, FindSpan span) {
    SciSend(editor, SCI_SETINDICATORCURRENT, static_cast<WPARAM>(IndicatorOf(marks)));
    if (span.end > span.start)
        SciSend(editor, SCI_INDICATORCLEARRANGE, static_cast<WPARAM>(span.start), span.end - span.start);
}
