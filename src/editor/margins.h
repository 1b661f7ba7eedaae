// The numbers of the margins, markers and styles that every editor has, beside those of its lexer. Pure.
#pragma once

inline constexpr int kMarginNumbers = 0;
inline constexpr int kMarginSymbols = 1;
inline constexpr int kMarginFolding = 2;
inline constexpr int kMarginChanges = 3;
inline constexpr int kMarginProblems = 4;  // has no width in a text that no compiler reads
inline constexpr int kMarginCount = 5;
inline constexpr int kSymbolsWidth = 16;  // of kMarginSymbols, pixels at 96 dpi

inline constexpr int kMarkBookmark = 1;
inline constexpr int kMarkBreakpoint = 2;
inline constexpr int kMarkError = 3;
inline constexpr int kMarkCurrent = 4;
inline constexpr int kMarkChange = 5;
// Drawn over the disc of a breakpoint, which the line keeps.
inline constexpr int kMarkHollow = 6;       // the line has no code
inline constexpr int kMarkDisabled = 7;     // the breakpoint is switched off
inline constexpr int kMarkConditional = 8;  // the breakpoint has a condition
inline constexpr int kMarkCurrentLine = 9;  // background of the line at which the program stopped
inline constexpr int kMarkFolded = 10;      // first line of a folded block with breakpoints in it
inline constexpr int kMarkNewLine = 11;     // background of a line of a replacement that waits to be accepted
inline constexpr int kMarkPlace = 12;       // never drawn: keeps a line while the text is replaced
inline constexpr int kMarkOwnCloser = 13;   // nothing to see: END IF and the like that the editor has added itself
inline constexpr int kMarkWarningSign = 14;
inline constexpr int kMarkErrorSign = 15;  // over that of a warning on the same line
// The stop once more, over the sign of a breakpoint on its line (6 to 8), which would hide kMarkCurrent.
inline constexpr int kMarkStopOver = 16;
inline constexpr int kMarkStopConditional = 17;  // where the breakpoint has a condition

// Indicators: 8 marks the words of a block, 21 what the search bar has found, 24 to 26 names and snippet fields.
inline constexpr int kIndicatorFound = 20;  // all matches, on command
inline constexpr int kIndicatorWarning = 16;
inline constexpr int kIndicatorError = 17;

// No lexer uses numbers from 192 on.
inline constexpr int kStyleRemovedLine = 200;  // annotation with the lines that such a replacement has removed
inline constexpr int kStyleErrorText = 201;    // message of a diagnostic behind its line
inline constexpr int kStyleWarningText = 202;
