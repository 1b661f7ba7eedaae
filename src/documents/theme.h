// Themes, styles and lexers of the editors: which colours and which lexer a document gets. UI thread only; the tables
// for them are pure (ui/theme_table.h, language/lexer_table.h).
#pragma once

#include <windows.h>

#include <cstdint>

// Of inline assembly in BASIC source.
COLORREF ThemeAssemblyColour();

// Lexer, keywords, colours, fonts and margins of one editor for a compiler's dialect, by the current theme, style
// preset and font settings. The file name picks the lexer (BASIC, C, assembly, none); null or empty: BASIC.
void SyntaxThemeApply(HWND editor, std::uint32_t compilerId, const wchar_t* path);
// The same for an editor that already belongs to a tab: its path is looked up in `g_documents.tabs`.
void SyntaxThemeApplyDefault(HWND editor, std::uint32_t compilerId);
// All tabs. Called when the theme, the style preset, the font or the active compiler changes.
void SyntaxThemeApplyAll();
