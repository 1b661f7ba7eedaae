// Applies colours, fonts and lexers to an editor. The tables are in ui/theme_table.h and language/lexer_table.h. UI
// thread only.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>

// Sets the lexer, keywords, colours, font and margins of one editor by the compiler's dialect, the current theme, the
// style preset and the font settings. The extension of `path` decides the lexer (BASIC, C, assembly, none); null or
// empty: BASIC.
void SyntaxThemeApply(HWND editor, std::uint32_t compilerId, const wchar_t* path);
// The same with the path that EditorPaneSetFile or the last call gave the editor.
void SyntaxThemeApplyDefault(HWND editor, std::uint32_t compilerId);
// Gives a marker a picture of `size` x `size` pixels (RGBA).
void MarkerDefinePicture(HWND editor, int marker, int size, std::span<const std::uint8_t> pixels);
