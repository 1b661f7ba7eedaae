// What Scintilla shows of the diagnostics in a text: indicators below the places, signs in a margin, texts behind the
// lines.
#include "output/mark_draw.h"

#include "base/utf8.h"
#include "documents/documents_state.h"
#include "editor/margins.h"
#include "editor/theme.h"
#include "settings/settings_state.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/severity_sign.h"
#include "ui/theme_table.h"

#include <algorithm>
#include <map>
#include <vector>

namespace {

constexpr int kMarginWidth = 16;  // at 96 dpi, like the next
constexpr int kSignSize = 13;
constexpr std::size_t kLongestText = 300;  // characters behind a line

LRESULT Ask(HWND editor, UINT message, LRESULT wParam = 0, LPARAM lParam = 0) {
    return SciSend(editor, message, static_cast<WPARAM>(wParam), lParam);
}

struct SeverityLooks {
    int indicator, style, marker, text;
};
// By CompilerError::severity. A warning differs in its shapes, too.
constexpr SeverityLooks kLooks[] = {
    {kIndicatorError, INDIC_SQUIGGLE, kMarkErrorSign, kStyleErrorText},
    {kIndicatorWarning, INDIC_DASH, kMarkWarningSign, kStyleWarningText},
};

const SeverityLooks& LooksOf(const SourceMark& mark) { return kLooks[mark.severity == 0 ? 0 : 1]; }

void DefineSign(HWND editor, const SeverityLooks& looks, Rgb colour, Rgb inside) {
    const int size = UiScaled(kSignSize) | 1;
    const std::vector<std::uint8_t> pixels = SeveritySign(size, looks.marker == kMarkErrorSign, colour, inside);
    MarkerDefinePicture(editor, looks.marker, size, pixels);
}

void DefineLooks(HWND editor, const SeverityLooks& looks) {
    const EditorPalette& palette = ThemeCurrentPalette();
    const Rgb colour = SeverityColour(palette, ThemeCurrentChromePalette(), looks.marker == kMarkErrorSign);
    Ask(editor, SCI_INDICSETSTYLE, looks.indicator, looks.style);
    Ask(editor, SCI_INDICSETFORE, looks.indicator, static_cast<LPARAM>(ThemeColorRef(colour)));
    Ask(editor, SCI_INDICSETSTROKEWIDTH, looks.indicator, std::max(UiScaled(100), 100));  // in 1/100 pixel
    DefineSign(editor, looks, colour, palette.back);
    Ask(editor, SCI_STYLESETFORE, looks.text, static_cast<LPARAM>(ThemeColorRef(colour)));
    Ask(editor, SCI_STYLESETBACK, looks.text, static_cast<LPARAM>(ThemeColorRef(palette.back)));
    Ask(editor, SCI_STYLESETITALIC, looks.text, TRUE);
}

}  // namespace

void MarkDrawPrepare(HWND editor) {
    for (const SeverityLooks& looks : kLooks) DefineLooks(editor, looks);
    MarkDrawMargin(editor, true);
}

void MarkDrawMargin(HWND editor, bool shown) {
    const int width = shown ? UiScaled(kMarginWidth) : 0;
    if (Ask(editor, SCI_GETMARGINWIDTHN, kMarginProblems) == width) return;
    Ask(editor, SCI_SETMARGINTYPEN, kMarginProblems, SC_MARGIN_SYMBOL);
    Ask(editor, SCI_SETMARGINMASKN, kMarginProblems, 1 << kMarkErrorSign | 1 << kMarkWarningSign);
    Ask(editor, SCI_SETMARGINWIDTHN, kMarginProblems, width);
    InvalidateRect(g_documents.hStickyHeader, nullptr, FALSE);  // its text begins where that of the editor does
}

void MarkDraw(HWND editor, const SourceMark& mark, LRESULT line) {
    if (MarkIsGone(mark.place)) return;
    const SeverityLooks& looks = LooksOf(mark);
    if ((Ask(editor, SCI_MARKERGET, line) >> looks.marker & 1) == 0) Ask(editor, SCI_MARKERADD, line, looks.marker);
    const LRESULT length = mark.place.end - mark.place.start;
    if (length <= 0) return;
    Ask(editor, SCI_SETINDICATORCURRENT, looks.indicator);
    Ask(editor, SCI_INDICATORFILLRANGE, mark.place.start, length);
}

void MarkDrawTexts(HWND editor, std::span<const std::pair<LRESULT, const SourceMark*>> marks) {
    if (g_settings.showErrorTexts == 0) {
        if (Ask(editor, SCI_EOLANNOTATIONGETVISIBLE) != EOLANNOTATION_HIDDEN)
            Ask(editor, SCI_EOLANNOTATIONSETVISIBLE, EOLANNOTATION_HIDDEN);
        return;
    }
    std::map<LRESULT, std::vector<const SourceMark*>> lines;
    for (const auto& [line, mark] : marks)
        if (!MarkIsGone(mark->place)) lines[line].push_back(mark);
    for (const auto& [line, here] : lines) {
        std::wstring text = MarkTexts(here, L"  |  ");
        if (text.size() > kLongestText) text = text.substr(0, kLongestText) + L"\u2026";
        const std::string utf8 = ToUtf8(L"    " + text);
        Ask(editor, SCI_EOLANNOTATIONSETTEXT, line, reinterpret_cast<LPARAM>(utf8.c_str()));
        Ask(editor, SCI_EOLANNOTATIONSETSTYLE, line,
            std::ranges::any_of(here, [](const SourceMark* mark) { return mark->severity == 0; }) ? kStyleErrorText
                                                                                                  : kStyleWarningText);
    }
    Ask(editor, SCI_EOLANNOTATIONSETVISIBLE, EOLANNOTATION_STANDARD);
}

void MarkDrawClear(HWND editor) {
    const LRESULT before = Ask(editor, SCI_GETINDICATORCURRENT);
    for (const SeverityLooks& looks : kLooks) {
        SciClearMarker(editor, looks.marker);
        Ask(editor, SCI_SETINDICATORCURRENT, looks.indicator);
        Ask(editor, SCI_INDICATORCLEARRANGE, 0, Ask(editor, SCI_GETLENGTH));
    }
    Ask(editor, SCI_SETINDICATORCURRENT, before);
    if (Ask(editor, SCI_EOLANNOTATIONGETVISIBLE) != EOLANNOTATION_HIDDEN) Ask(editor, SCI_EOLANNOTATIONCLEARALL);
}
