// The lexer of BASIC for Scintilla: colours and fold levels from the scanner and the blocks, in one pass. It keeps the
// LineState behind each line as Scintilla's state of that line. Styles are the SCE_B_... of Lexilla. Pure.
//
// Why not Lexilla's: it knows neither inline assembly nor blocks, and takes longer.
#pragma once

#include "language/blocks.h"

namespace Scintilla {
class ILexer5;
}

inline constexpr char kBasicLexerName[] = "kvx-basic";
inline constexpr int kBasicLexer = 1990;  // SCI_GETLEXER

// Scintilla owns it after SCI_SETILEXER. Properties: "dialect", the number of a compiler; "fold", 0 or 1.
Scintilla::ILexer5* CreateBasicLexer();

// SCI_PRIVATELEXERCALL returns the document's BlockTable, which the LineStates refer to. The lexer owns it.
inline constexpr int kGetBlockTable = 1;
// The same way: not null when the last line that was coloured has the state that it had before.
inline constexpr int kStateIsAsBefore = 2;
