// The request for the text of the ASM pane. Pure.
#pragma once

#include "output/last_build.h"

#include <string>

// The files of the build, and the caret's place.
struct AsmRequest {
    std::wstring source;
    std::wstring staged;  // the copy that the compiler read; empty when unknown
    std::wstring listing;
    std::wstring program;    // empty: unknown
    std::wstring caretFile;  // the active editor's file
    int caretLine = 0;       // from 1; 0: none
    bool bytes = true;       // the bytes of the instructions are shown
};

// Characters of a line: what an instruction needs beside its address, and beside its bytes too.
inline constexpr int kAsmCharacters = 46;
inline constexpr int kAsmCharactersWithBytes = 78;

// Fills `staged` and `program` when the last build was of this source.
AsmRequest AsmRequestOf(const BuildRecord& last, std::wstring source, std::wstring listing);

// Returns the line, from 0, that is to be the pane's first visible one after text was added; `first` was the first
// visible one before. When the user has scrolled, the pane stays there. Otherwise it goes to `place` as soon as that
// line exists.
struct AsmScroll {
    int place = -1;         // line of the caret's code, from 0; -1: not known yet
    std::size_t lines = 0;  // lines in the pane
    long long top = 0;      // the first visible line that the pane itself set
};
long long AsmTopLine(const AsmScroll& scroll, long long first);
