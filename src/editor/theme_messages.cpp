// A theme as messages to Scintilla. Pure.
#include "editor/theme_messages.h"

#include "editor/margins.h"
#include "language/caret_colour.h"

#include <Scintilla.h>

#include <algorithm>
#include <iterator>

namespace {

std::intptr_t ColourOf(Rgb rgb) { return static_cast<std::intptr_t>(ThemeColorRef(rgb)); }
// SCI_SETELEMENTCOLOUR takes the opacity in the high byte.
std::intptr_t OpaqueColour(Rgb rgb) { return static_cast<std::intptr_t>(0xFF000000u | ThemeColorRef(rgb)); }
std::intptr_t AtDpi(int pixels, int dpi) { return (pixels * dpi + 48) / 96; }

std::intptr_t RoleColour(const ThemeInputs& theme, TextRole role) {
    return static_cast<std::intptr_t>(RoleColourRef(theme, role));
}

void DefineMarker(EditorMessages& out, int marker, int symbol, Rgb fore, Rgb back) {
    out.push_back({SCI_MARKERDEFINE, marker, symbol});
    out.push_back({SCI_MARKERSETFORE, marker, ColourOf(fore)});
    out.push_back({SCI_MARKERSETBACK, marker, ColourOf(back)});
}

}  // namespace

std::uint32_t RoleColourRef(const ThemeInputs& theme, TextRole role) {
    for (std::size_t i = 0; i < std::size(kOverriddenRoles); ++i)
        if (kOverriddenRoles[i] == role && theme.overrides[i] != 0)
            return static_cast<std::uint32_t>(theme.overrides[i]) & 0xFFFFFF;
    return ThemeColorRef(theme.palette.text[static_cast<std::size_t>(role)]);
}

EditorMessages DefaultStyleMessages(const ThemeInputs& theme) {
    return {{SCI_STYLESETSIZE, STYLE_DEFAULT, theme.fontSize},
            {SCI_STYLESETBACK, STYLE_DEFAULT, ColourOf(theme.palette.back)},
            {SCI_STYLESETFORE, STYLE_DEFAULT, RoleColour(theme, TextRole::Text)},
            {SCI_STYLECLEARALL}};
}

EditorMessages TextStyleMessages(const ThemeInputs& theme, const LanguageLexer& lexer) {
    EditorMessages out;
    for (const StyleRole& row : lexer.styles) {
        out.push_back({SCI_STYLESETFORE, row.style, RoleColour(theme, row.role)});
        if (row.role == TextRole::Keyword && theme.palette.boldKeywords)
            out.push_back({SCI_STYLESETBOLD, row.style, 1});
        if (row.role == TextRole::Comment && theme.palette.italicComments)
            out.push_back({SCI_STYLESETITALIC, row.style, 1});
    }
    return out;
}

EditorMessages FrameStyleMessages(const ThemeInputs& theme) {
    const EditorPalette& palette = theme.palette;
    EditorMessages out = {
        {SCI_STYLESETFORE, STYLE_LINENUMBER, ColourOf(palette.lineNumber)},
        {SCI_STYLESETBACK, STYLE_LINENUMBER, ColourOf(palette.margin)},
        {SCI_STYLESETSIZE, STYLE_LINENUMBER, std::max(theme.fontSize - 1, 6)},
        {SCI_STYLESETFORE, STYLE_INDENTGUIDE, ColourOf(palette.guide)},
        {SCI_STYLESETBACK, STYLE_BRACELIGHT, ColourOf(palette.braceBack)},
        {SCI_STYLESETBACK, kStyleRemovedLine, ColourOf(palette.errorBack)},
        {SCI_STYLESETFORE, STYLE_BRACEBAD, RoleColour(theme, TextRole::Error)},
        {SCI_SETCARETFORE, static_cast<std::intptr_t>(CaretColourOn(ThemeColorRef(palette.back)))},
        {SCI_SETELEMENTCOLOUR, SC_ELEMENT_CARET_LINE_BACK, OpaqueColour(palette.caretLine)},
        {SCI_SETELEMENTCOLOUR, SC_ELEMENT_WHITE_SPACE, OpaqueColour(palette.guide)},
        {SCI_CALLTIPSETBACK, ColourOf(theme.chrome.paneBack)},
        {SCI_CALLTIPSETFORE, ColourOf(theme.chrome.paneText)},
        {SCI_CALLTIPSETFOREHLT, ColourOf(theme.chrome.accent)},
        {SCI_SETFOLDMARGINCOLOUR, 1, ColourOf(palette.margin)},
        {SCI_SETFOLDMARGINHICOLOUR, 1, ColourOf(palette.margin)},
    };
    for (const int element : {SC_ELEMENT_SELECTION_BACK, SC_ELEMENT_SELECTION_ADDITIONAL_BACK,
                              SC_ELEMENT_SELECTION_SECONDARY_BACK, SC_ELEMENT_SELECTION_INACTIVE_BACK})
        out.push_back({SCI_SETELEMENTCOLOUR, element, OpaqueColour(palette.selection)});
    for (const int element : {SC_ELEMENT_SELECTION_TEXT, SC_ELEMENT_SELECTION_ADDITIONAL_TEXT,
                              SC_ELEMENT_SELECTION_SECONDARY_TEXT, SC_ELEMENT_SELECTION_INACTIVE_TEXT})
        if (palette.selectionText)
            out.push_back({SCI_SETELEMENTCOLOUR, element, OpaqueColour(*palette.selectionText)});
        else
            out.push_back({SCI_RESETELEMENTCOLOUR, element});
    return out;
}

Rgb StopArrowEdge(const ThemeInputs& theme) { return theme.dark ? theme.chrome.paneBack : theme.chrome.paneText; }

EditorMessages MarkerMessages(const ThemeInputs& theme) {
    const ChromePalette& chrome = theme.chrome;
    const EditorPalette& palette = theme.palette;
    EditorMessages out;
    // It fills the margin, so that the disc of a breakpoint leaves something of it to be seen.
    DefineMarker(out, kMarkBookmark, SC_MARK_FULLRECT, chrome.accent, chrome.accent);
    DefineMarker(out, kMarkBreakpoint, SC_MARK_CIRCLE, chrome.error, chrome.error);
    DefineMarker(out, kMarkError, SC_MARK_SHORTARROW, chrome.error, chrome.error);
    // A dark edge and a bright inside, because the arrow may be on a red disc.
    for (const int marker : {kMarkCurrent, kMarkStopOver})
        DefineMarker(out, marker, SC_MARK_ARROW, StopArrowEdge(theme), chrome.stopLine);
    DefineMarker(out, kMarkHollow, SC_MARK_CIRCLE, chrome.error, palette.margin);
    DefineMarker(out, kMarkDisabled, SC_MARK_CIRCLE, palette.lineNumber, palette.lineNumber);
    DefineMarker(out, kMarkConditional, SC_MARK_PLUS, palette.margin, palette.margin);
    DefineMarker(out, kMarkCurrentLine, SC_MARK_BACKGROUND, chrome.stopLine, chrome.stopLine);
    DefineMarker(out, kMarkNewLine, SC_MARK_BACKGROUND, chrome.success, chrome.success);
    out.push_back({SCI_MARKERSETALPHA, kMarkCurrentLine, ThemeStopLineAlpha(theme.dark)});
    out.push_back({SCI_MARKERSETALPHA, kMarkNewLine, kNewLineAlpha});
    // SC_LAYER_UNDER_TEXT, because as a plain background it would be hidden by the background of the caret's line. After
    // the opacity, which puts a marker over the text.
    for (const int marker : {kMarkCurrentLine, kMarkNewLine})
        out.push_back({SCI_MARKERSETLAYER, marker, SC_LAYER_UNDER_TEXT});
    return out;
}

EditorMessages MarginMessages(bool folding, int dpi) {
    // The markers of backgrounds are in the mask because Scintilla draws them only when a margin has them. In the margin
    // itself it draws nothing.
    constexpr int kSymbolMask = 1 << kMarkBookmark | 1 << kMarkBreakpoint | 1 << kMarkError | 1 << kMarkCurrent |
                                1 << kMarkHollow | 1 << kMarkDisabled | 1 << kMarkConditional | 1 << kMarkCurrentLine |
                                1 << kMarkFolded | 1 << kMarkNewLine | 1 << kMarkStopOver | 1 << kMarkStopConditional;
    return {
        {SCI_SETMARGINTYPEN, kMarginNumbers, SC_MARGIN_NUMBER},
        {SCI_SETMARGINTYPEN, kMarginSymbols, SC_MARGIN_SYMBOL},
        {SCI_SETMARGINMASKN, kMarginSymbols, kSymbolMask},
        {SCI_SETMARGINSENSITIVEN, kMarginSymbols, 1},
        {SCI_SETMARGINWIDTHN, kMarginSymbols, AtDpi(kSymbolsWidth, dpi)},
        {SCI_SETMARGINTYPEN, kMarginFolding, SC_MARGIN_SYMBOL},
        {SCI_SETMARGINMASKN, kMarginFolding, static_cast<std::intptr_t>(SC_MASK_FOLDERS)},
        {SCI_SETMARGINSENSITIVEN, kMarginFolding, 1},
        {SCI_SETMARGINWIDTHN, kMarginFolding, folding ? AtDpi(14, dpi) : 0},
        {SCI_SETMARGINMASKN, kMarginChanges, 1 << kMarkChange},
        {SCI_SETMARGINLEFT, 0, AtDpi(6, dpi)},  // space between the margins and the text
    };
}

EditorMessages FoldMessages(const ThemeInputs& theme) {
    constexpr struct {
        int marker, symbol;
    } kFoldMarks[] = {
        {SC_MARKNUM_FOLDEROPEN, SC_MARK_ARROWDOWN}, {SC_MARKNUM_FOLDER, SC_MARK_ARROW},
        {SC_MARKNUM_FOLDERSUB, SC_MARK_EMPTY},      {SC_MARKNUM_FOLDERTAIL, SC_MARK_EMPTY},
        {SC_MARKNUM_FOLDEREND, SC_MARK_ARROW},      {SC_MARKNUM_FOLDEROPENMID, SC_MARK_ARROWDOWN},
        {SC_MARKNUM_FOLDERMIDTAIL, SC_MARK_EMPTY},
    };
    EditorMessages out;
    for (const auto& mark : kFoldMarks)
        DefineMarker(out, mark.marker, mark.symbol, theme.palette.lineNumber, theme.palette.lineNumber);
    out.push_back({SCI_SETAUTOMATICFOLD, SC_AUTOMATICFOLD_SHOW | SC_AUTOMATICFOLD_CLICK | SC_AUTOMATICFOLD_CHANGE});
    return out;
}
