// Applies the theme and the lexer to an editor. UI thread.
#include "editor/theme.h"

#include "base/utf8.h"
#include "editor/editor_pane.h"
#include "editor/margins.h"
#include "editor/pane_rules.h"
#include "editor/pane_state.h"
#include "editor/stop_sign.h"
#include "editor/theme_messages.h"
#include "language/basic_lexer.h"
#include "language/lexer_table.h"
#include "scintilla/sci.h"
#include "scintilla/scintilla_library.h"
#include "settings/settings_state.h"
#include "ui/chrome.h"
#include "ui/control_theme.h"
#include "ui/dpi.h"
#include "ui/fonts.h"
#include "ui/theme_table.h"
#include "ui/ui_state.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

namespace {

// Bytes. A larger document is not folded, because folding needs a pass of its own over the text. The lexer of BASIC
// needs none and folds documents of any size; the levels take 4 bytes for each line (12 MB of a document of 100 MB).
constexpr LRESULT kLargestFolded = 4 << 20;

ThemeInputs CurrentTheme() {
    // The user's own colours were chosen for another background than that of the high-contrast mode.
    static constexpr std::int32_t kNoOverrides[std::size(kOverriddenRoles)] = {};
    return {.palette = ThemeCurrentPalette(),
            .chrome = ThemeCurrentChromePalette(),
            .dark = ThemeIsDark(),
            .fontSize = g_settings.fontSize,
            .overrides = SystemHighContrast() ? kNoOverrides : g_settings.colors,
            .dpi = g_ui.dpi};
}

void SendAll(HWND editor, const EditorMessages& messages) {
    for (const EditorMessage& message : messages) PaneSend(editor, message.message, message.wParam, message.lParam);
}

// Defines a marker as a small disc with a ring around it, so that it can be seen on the large disc of a breakpoint too.
void DefineDot(HWND editor, int marker, Rgb colour, Rgb ring) {
    const int size = UiScaled(12) | 1;  // odd, so that it has a middle pixel
    const std::vector<std::uint8_t> pixels = MarkerDot(size, UiScaled(30) / 10.0, UiScaled(10) / 10.0, colour, ring);
    MarkerDefinePicture(editor, marker, size, pixels);
}

void DefineStopAtCondition(HWND editor, const ThemeInputs& theme) {
    const int size = std::min(UiScaled(kSymbolsWidth), static_cast<int>(SciSend(editor, SCI_TEXTHEIGHT)));
    const StopSignColours colours = {.disc = theme.chrome.error,
                                     .plus = theme.palette.margin,
                                     .edge = StopArrowEdge(theme),
                                     .arrow = theme.chrome.stopLine};
    MarkerDefinePicture(editor, kMarkStopConditional, size, StopAtConditionSign(size, colours));
}

void SetProperty(HWND editor, const char* key, const char* value) {
    SciSend(editor, SCI_SETPROPERTY, reinterpret_cast<WPARAM>(key), reinterpret_cast<LPARAM>(value));
}

Scintilla::ILexer5* NewLexer(Language language) {
    return language == Language::Basic ? CreateBasicLexer() : ScintillaCreateLexer(LexerOf(language).name);
}

// Sets the lexer and its words. False when there is no lexer: without Lexilla all is plain text, BASIC too. A lexer is set
// only when the language changes, because SCI_SETILEXER discards the colours of the whole document.
bool ApplyLexer(HWND editor, Language language, std::uint32_t compilerId) {
    const LanguageLexer& lexer = LexerOf(language);
    const bool none = lexer.name == nullptr || g_scintilla.createLexer == nullptr;
    char current[32] = "";
    if (SciSend(editor, SCI_GETLEXER, 0, 0) != 0 && SciSend(editor, SCI_GETLEXERLANGUAGE, 0, 0) < 32)
        SciSend(editor, SCI_GETLEXERLANGUAGE, 0, reinterpret_cast<LPARAM>(current));
    if (std::strcmp(current, none ? "" : lexer.name) != 0)
        SciSend(editor, SCI_SETILEXER, 0, reinterpret_cast<LPARAM>(none ? nullptr : NewLexer(language)));
    if (none) return false;
    if (language == Language::Basic) SetProperty(editor, "dialect", std::to_string(compilerId).c_str());
    for (int set = 0; set < kKeywordSets; ++set) {
        const std::string words = LexerKeywords(language, set);
        if (!words.empty())
            SciSend(editor, SCI_SETKEYWORDS, static_cast<WPARAM>(set), reinterpret_cast<LPARAM>(words.c_str()));
    }
    return true;
}

}  // namespace

void MarkerDefinePicture(HWND editor, int marker, int size, std::span<const std::uint8_t> pixels) {
    SciSend(editor, SCI_RGBAIMAGESETWIDTH, static_cast<WPARAM>(size));
    SciSend(editor, SCI_RGBAIMAGESETHEIGHT, static_cast<WPARAM>(size));
    SciSend(editor, SCI_MARKERDEFINERGBAIMAGE, static_cast<WPARAM>(marker), reinterpret_cast<LPARAM>(pixels.data()));
}

const Dialect& EditorPaneDialect(HWND editor) {
    const PaneState* const state = PaneStateOf(editor);
    return state != nullptr && state->compilerId ? DialectOf(*state->compilerId) : AnyDialect();
}

void EditorPaneSetFile(HWND editor, DocumentId document, const wchar_t* path) {
    PaneState* const state = PaneStateOf(editor);
    if (state == nullptr) return;
    state->document = document;
    state->path = path != nullptr ? path : L"";
}

void SyntaxThemeApply(HWND editor, std::uint32_t compilerId, const wchar_t* path) {
    if (editor == nullptr) return;
    if (PaneState* const state = PaneStateOf(editor); state != nullptr) {
        state->compilerId = compilerId;
        state->path = path != nullptr ? path : L"";
    }
    const bool plain = EditorPaneIsPlain(editor);
    const Language language = plain ? Language::None : LexerFromExtension(path != nullptr ? path : L"");
    const ThemeInputs theme = CurrentTheme();
    const bool lexed = ApplyLexer(editor, language, compilerId);
    const bool folding =
        lexed && (language == Language::Basic || SciSend(editor, SCI_GETLENGTH, 0, 0) <= kLargestFolded);
    SetProperty(editor, "fold", folding ? "1" : "0");
    SetProperty(editor, "fold.compact", "0");

    // A plain pane has lines of megabytes. With a monospaced font Scintilla need not measure their ASCII text: a key in a
    // line of 20 MB takes 0.5 instead of 3 s.
    const std::string font = ToUtf8(plain ? UiFixedFace(g_settings.fontName).c_str() : g_settings.fontName);
    SciSend(editor, SCI_STYLESETFONT, STYLE_DEFAULT, reinterpret_cast<LPARAM>(font.c_str()));
    SciSend(editor, SCI_STYLESETCHECKMONOSPACED, STYLE_DEFAULT, plain);
    SendAll(editor, DefaultStyleMessages(theme));
    if (lexed) SendAll(editor, TextStyleMessages(theme, LexerOf(language)));
    SendAll(editor, FrameStyleMessages(theme));
    SendAll(editor, MarkerMessages(theme));
    DefineDot(editor, kMarkFolded, theme.chrome.error, theme.palette.margin);
    DefineStopAtCondition(editor, theme);
    SendAll(editor, MarginMessages(folding, theme.dpi));
    ApplyChangeMargin(editor, g_settings.showChangeMargin != 0);
    if (folding) SendAll(editor, FoldMessages(theme));
    ScrollBarsApplyTheme(editor);
}

void SyntaxThemeApplyDefault(HWND editor, std::uint32_t compilerId) {
    const PaneState* const state = PaneStateOf(editor);
    const std::wstring path = state != nullptr ? state->path : std::wstring{};
    SyntaxThemeApply(editor, compilerId, path.c_str());
}
