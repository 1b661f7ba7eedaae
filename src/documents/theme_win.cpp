// Applies a theme and a lexer to the editors. The tables it walks are pure; which document has which file and dialect
// comes from the tab records. UI thread.
#include "documents/theme.h"

#include "documents/documents_state.h"
#include "documents/editor_pane.h"
#include "documents/margins.h"
#include "language/caret_colour.h"
#include "language/lexer_table.h"
#include "scintilla/sci.h"
#include "scintilla/scintilla_library.h"
#include "settings/settings_state.h"
#include "ui/chrome.h"
#include "ui/dpi.h"
#include "ui/theme_table.h"
#include "ui/ui_state.h"

#include <uxtheme.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace {

// Folding costs a pass of its own over the text; a document this large scrolls and types faster without.
constexpr LRESULT kLargestFolded = 4 << 20;

COLORREF Ref(Rgb rgb) { return ThemeColorRef(rgb); }
// Scintilla's elements take the colour with an opacity in the high byte.
LPARAM Opaque(Rgb rgb) { return static_cast<LPARAM>(0xFF000000u | ThemeColorRef(rgb)); }

const EditorPalette& CurrentPalette() { return ThemePalette(g_settings.editorStylePreset, ThemeIsDark()); }

COLORREF RoleColour(const EditorPalette& palette, TextRole role) {
    for (std::size_t i = 0; i < std::size(kOverriddenRoles); ++i)
        if (kOverriddenRoles[i] == role && g_settings.colors[i] != 0)
            return static_cast<COLORREF>(g_settings.colors[i]) & 0xFFFFFF;
    return Ref(palette.text[static_cast<std::size_t>(role)]);
}

void ApplyDefaultStyle(HWND editor, const EditorPalette& palette) {
    char font[3 * (sizeof(Settings::fontName) / sizeof(wchar_t)) + 1] = "";
    WideCharToMultiByte(CP_UTF8, 0, g_settings.fontName, -1, font, static_cast<int>(sizeof font), nullptr, nullptr);
    SciSend(editor, SCI_STYLESETFONT, STYLE_DEFAULT, reinterpret_cast<LPARAM>(font));
    SciSend(editor, SCI_STYLESETSIZE, STYLE_DEFAULT, g_settings.fontSize);
    SciSend(editor, SCI_STYLESETBACK, STYLE_DEFAULT, static_cast<LPARAM>(Ref(palette.back)));
    SciSend(editor, SCI_STYLESETFORE, STYLE_DEFAULT, static_cast<LPARAM>(RoleColour(palette, TextRole::Text)));
    SciSend(editor, SCI_STYLECLEARALL, 0, 0);
}

void ApplyTextStyles(HWND editor, const EditorPalette& palette, const LanguageLexer& lexer) {
    for (const StyleRole& row : lexer.styles) {
        SciSend(editor, SCI_STYLESETFORE, row.style, static_cast<LPARAM>(RoleColour(palette, row.role)));
        if (row.role == TextRole::Keyword && palette.boldKeywords) SciSend(editor, SCI_STYLESETBOLD, row.style, TRUE);
        if (row.role == TextRole::Comment && palette.italicComments)
            SciSend(editor, SCI_STYLESETITALIC, row.style, TRUE);
    }
}

void ApplyFrameStyles(HWND editor, const EditorPalette& palette) {
    SciSend(editor, SCI_STYLESETFORE, STYLE_LINENUMBER, static_cast<LPARAM>(Ref(palette.lineNumber)));
    SciSend(editor, SCI_STYLESETBACK, STYLE_LINENUMBER, static_cast<LPARAM>(Ref(palette.margin)));
    SciSend(editor, SCI_STYLESETSIZE, STYLE_LINENUMBER, std::max(g_settings.fontSize - 1, 6));
    SciSend(editor, SCI_STYLESETFORE, STYLE_INDENTGUIDE, static_cast<LPARAM>(Ref(palette.guide)));
    SciSend(editor, SCI_STYLESETBACK, STYLE_BRACELIGHT, static_cast<LPARAM>(Ref(palette.braceBack)));
    SciSend(editor, SCI_STYLESETFORE, STYLE_BRACEBAD, static_cast<LPARAM>(RoleColour(palette, TextRole::Error)));

    SciSend(editor, SCI_SETCARETFORE, CaretColourOn(Ref(palette.back)), 0);
    SciSend(editor, SCI_SETELEMENTCOLOUR, SC_ELEMENT_CARET_LINE_BACK, Opaque(palette.caretLine));
    for (const int element : {SC_ELEMENT_SELECTION_BACK, SC_ELEMENT_SELECTION_ADDITIONAL_BACK,
                              SC_ELEMENT_SELECTION_SECONDARY_BACK, SC_ELEMENT_SELECTION_INACTIVE_BACK})
        SciSend(editor, SCI_SETELEMENTCOLOUR, static_cast<WPARAM>(element), Opaque(palette.selection));
    SciSend(editor, SCI_SETELEMENTCOLOUR, SC_ELEMENT_WHITE_SPACE, Opaque(palette.guide));
    const ChromePalette& chrome = ThemeChromePalette(ThemeIsDark());
    SciSend(editor, SCI_CALLTIPSETBACK, Ref(chrome.paneBack), 0);
    SciSend(editor, SCI_CALLTIPSETFORE, Ref(chrome.paneText), 0);
    SciSend(editor, SCI_SETFOLDMARGINCOLOUR, TRUE, static_cast<LPARAM>(Ref(palette.margin)));
    SciSend(editor, SCI_SETFOLDMARGINHICOLOUR, TRUE, static_cast<LPARAM>(Ref(palette.margin)));
}

void DefineMarker(HWND editor, int marker, int symbol, Rgb fore, Rgb back) {
    SciSend(editor, SCI_MARKERDEFINE, static_cast<WPARAM>(marker), symbol);
    SciSend(editor, SCI_MARKERSETFORE, static_cast<WPARAM>(marker), static_cast<LPARAM>(Ref(fore)));
    SciSend(editor, SCI_MARKERSETBACK, static_cast<WPARAM>(marker), static_cast<LPARAM>(Ref(back)));
}

// A small disc with a ring around it, so that it is seen on the large one of a breakpoint too.
void DefineDot(HWND editor, int marker, Rgb colour, Rgb ring) {
    const int size = UiScaled(12) | 1;  // odd: it has a middle
    const double radius = UiScaled(30) / 10.0, middle = size / 2;
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < size * size; ++i) {
        const double away = std::hypot(i % size - middle, i / size - middle);
        const Rgb shown = away < radius + 0.5 ? colour : ring;
        const double cover = std::clamp(radius + 1.0 + UiScaled(10) / 10.0 - away, 0.0, 1.0);
        for (const int shift : {16, 8, 0}) pixels.push_back(static_cast<std::uint8_t>(shown >> shift & 0xFF));
        pixels.push_back(static_cast<std::uint8_t>(cover * 255));
    }
    SciSend(editor, SCI_RGBAIMAGESETWIDTH, static_cast<WPARAM>(size));
    SciSend(editor, SCI_RGBAIMAGESETHEIGHT, static_cast<WPARAM>(size));
    SciSend(editor, SCI_MARKERDEFINERGBAIMAGE, static_cast<WPARAM>(marker), reinterpret_cast<LPARAM>(pixels.data()));
}

void ApplyMargins(HWND editor, const EditorPalette& palette, bool folding) {
    const ChromePalette& chrome = ThemeChromePalette(ThemeIsDark());
    DefineMarker(editor, kMarkBookmark, SC_MARK_BOOKMARK, chrome.accent, chrome.accent);
    DefineMarker(editor, kMarkBreakpoint, SC_MARK_CIRCLE, chrome.error, chrome.error);
    DefineMarker(editor, kMarkError, SC_MARK_SHORTARROW, chrome.error, chrome.error);
    // Dark edge, bright inside: it may lie on a red disc.
    DefineMarker(editor, kMarkCurrent, SC_MARK_ARROW, ThemeIsDark() ? chrome.paneBack : chrome.paneText,
                 chrome.stopLine);
    DefineMarker(editor, kMarkHollow, SC_MARK_CIRCLE, chrome.error, palette.margin);
    DefineMarker(editor, kMarkDisabled, SC_MARK_CIRCLE, palette.lineNumber, palette.lineNumber);
    DefineMarker(editor, kMarkConditional, SC_MARK_PLUS, palette.margin, palette.margin);
    DefineDot(editor, kMarkFolded, chrome.error, palette.margin);
    DefineMarker(editor, kMarkCurrentLine, SC_MARK_BACKGROUND, chrome.stopLine, chrome.stopLine);
    // Under the text, not as the line's background: the line of the caret has one already, and that would win.
    SciSend(editor, SCI_MARKERSETALPHA, kMarkCurrentLine, ThemeStopLineAlpha(ThemeIsDark()));
    SciSend(editor, SCI_MARKERSETLAYER, kMarkCurrentLine, SC_LAYER_UNDER_TEXT);

    // The line's background shows only as long as its marker belongs to a margin; in the margin it draws nothing.
    constexpr int kSymbolMask = 1 << kMarkBookmark | 1 << kMarkBreakpoint | 1 << kMarkError | 1 << kMarkCurrent |
                                1 << kMarkHollow | 1 << kMarkDisabled | 1 << kMarkConditional | 1 << kMarkCurrentLine |
                                1 << kMarkFolded;
    SciSend(editor, SCI_SETMARGINTYPEN, kMarginNumbers, SC_MARGIN_NUMBER);
    SciSend(editor, SCI_SETMARGINTYPEN, kMarginSymbols, SC_MARGIN_SYMBOL);
    SciSend(editor, SCI_SETMARGINMASKN, kMarginSymbols, kSymbolMask);
    SciSend(editor, SCI_SETMARGINSENSITIVEN, kMarginSymbols, TRUE);
    SciSend(editor, SCI_SETMARGINWIDTHN, kMarginSymbols, UiScaled(16));
    SciSend(editor, SCI_SETMARGINTYPEN, kMarginFolding, SC_MARGIN_SYMBOL);
    SciSend(editor, SCI_SETMARGINMASKN, kMarginFolding, static_cast<LPARAM>(SC_MASK_FOLDERS));
    SciSend(editor, SCI_SETMARGINSENSITIVEN, kMarginFolding, TRUE);
    SciSend(editor, SCI_SETMARGINWIDTHN, kMarginFolding, folding ? UiScaled(14) : 0);
    SciSend(editor, SCI_SETMARGINMASKN, kMarginChanges, 1 << kMarkChange);
    // A little air between the margins and the text.
    SciSend(editor, SCI_SETMARGINLEFT, 0, UiScaled(6));

    if (!folding) return;
    constexpr struct {
        int marker, symbol;
    } kFoldMarks[] = {
        {SC_MARKNUM_FOLDEROPEN, SC_MARK_ARROWDOWN}, {SC_MARKNUM_FOLDER, SC_MARK_ARROW},
        {SC_MARKNUM_FOLDERSUB, SC_MARK_EMPTY},      {SC_MARKNUM_FOLDERTAIL, SC_MARK_EMPTY},
        {SC_MARKNUM_FOLDEREND, SC_MARK_ARROW},      {SC_MARKNUM_FOLDEROPENMID, SC_MARK_ARROWDOWN},
        {SC_MARKNUM_FOLDERMIDTAIL, SC_MARK_EMPTY},
    };
    for (const auto& mark : kFoldMarks)
        DefineMarker(editor, mark.marker, mark.symbol, palette.lineNumber, palette.lineNumber);
    SciSend(editor, SCI_SETAUTOMATICFOLD, SC_AUTOMATICFOLD_SHOW | SC_AUTOMATICFOLD_CLICK | SC_AUTOMATICFOLD_CHANGE, 0);
}

// A new lexer only where the language changes: setting one throws away the colours of the whole document.
bool ApplyLexer(HWND editor, Language language, std::uint32_t compilerId) {
    const LanguageLexer& lexer = LexerOf(language);
    char current[32] = "";
    if (SciSend(editor, SCI_GETLEXER, 0, 0) != 0 && SciSend(editor, SCI_GETLEXERLANGUAGE, 0, 0) < 32)
        SciSend(editor, SCI_GETLEXERLANGUAGE, 0, reinterpret_cast<LPARAM>(current));
    if (std::strcmp(current, lexer.name ? lexer.name : "") != 0)
        SciSend(editor, SCI_SETILEXER, 0, reinterpret_cast<LPARAM>(ScintillaCreateLexer(lexer.name)));
    if (!lexer.name || !g_scintilla.createLexer) return false;
    for (int set = 0; set < kKeywordSets; ++set) {
        const std::string words = LexerKeywords(language, compilerId, set);
        SciSend(editor, SCI_SETKEYWORDS, static_cast<WPARAM>(set), reinterpret_cast<LPARAM>(words.c_str()));
    }
    return true;
}

void SetProperty(HWND editor, const char* key, const char* value) {
    SciSend(editor, SCI_SETPROPERTY, reinterpret_cast<WPARAM>(key), reinterpret_cast<LPARAM>(value));
}

}  // namespace

COLORREF ThemeAssemblyColour() { return RoleColour(CurrentPalette(), TextRole::Assembly); }

void SyntaxThemeApply(HWND editor, std::uint32_t compilerId, const wchar_t* path) {
    if (!editor) return;
    const Language language = LexerFromExtension(path ? path : L"");
    const EditorPalette& palette = CurrentPalette();
    const bool lexed = ApplyLexer(editor, language, compilerId);
    const bool folding = lexed && SciSend(editor, SCI_GETLENGTH, 0, 0) <= kLargestFolded;
    SetProperty(editor, "fold", folding ? "1" : "0");
    SetProperty(editor, "fold.compact", "0");

    ApplyDefaultStyle(editor, palette);
    if (lexed) ApplyTextStyles(editor, palette, LexerOf(language));
    ApplyFrameStyles(editor, palette);
    ApplyMargins(editor, palette, folding);
    // The scroll bars; systems without a dark theme of that name keep their own.
    SetWindowTheme(editor, ThemeIsDark() ? L"DarkMode_Explorer" : L"Explorer", nullptr);
}

void SyntaxThemeApplyDefault(HWND editor, std::uint32_t compilerId) {
    const wchar_t* path = nullptr;
    for (const DocumentTab& tab : g_documents.tabs)
        if (tab.editor == editor) path = tab.path;
    SyntaxThemeApply(editor, compilerId, path);
}

void SyntaxThemeApplyAll() {
    for (const DocumentTab& tab : g_documents.tabs) SyntaxThemeApply(tab.editor, tab.compilerId, tab.path);
}

void SettingsApplyToEditor() {
    SyntaxThemeApplyAll();
    for (const DocumentTab& tab : g_documents.tabs) EditorPaneApplySettings(tab.editor);
}
