// The margins and markers of every editor by number: drawn by the theme, set by the pane, kept by sessions. Pure.
#pragma once

inline constexpr int kMarginNumbers = 0;
inline constexpr int kMarginSymbols = 1;
inline constexpr int kMarginFolding = 2;
inline constexpr int kMarginChanges = 3;
inline constexpr int kMarginCount = 4;

inline constexpr int kMarkBookmark = 1;
inline constexpr int kMarkBreakpoint = 2;
inline constexpr int kMarkError = 3;
inline constexpr int kMarkCurrent = 4;
inline constexpr int kMarkChange = 5;
// Drawn over the disc of a breakpoint, which stays below them.
inline constexpr int kMarkHollow = 6;       // its line has no code
inline constexpr int kMarkDisabled = 7;     // switched off
inline constexpr int kMarkConditional = 8;  // stops only if
inline constexpr int kMarkCurrentLine = 9;  // background of the line where the program stands
inline constexpr int kMarkFolded = 10;      // header of a folded block that has breakpoints in it
