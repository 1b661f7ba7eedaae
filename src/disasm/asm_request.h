// What the ASM pane is asked to show. Pure.
#pragma once

#include "output/last_build.h"

#include <string>

// What was built, and where the user stands.
struct AsmRequest {
    std::wstring source;
    std::wstring staged;  // the copy of it that the compiler saw, empty when that is unknown
    std::wstring listing;
    std::wstring program;    // empty: unknown
    std::wstring caretFile;  // of the active editor
    int caretLine = 0;       // from 1; 0: none
};

// Copy and program are known when the last build was of this source.
AsmRequest AsmRequestOf(const BuildRecord& last, std::wstring source, std::wstring listing);

// The line, from 0, that becomes the pane's first one after text was added, `first` being the one before. The reader stays
// where they are; while they have not scrolled, they are taken to the place as soon as it is there.
struct AsmScroll {
    int place = -1;         // line of the code where the user stands, from 0; -1: not known
    std::size_t lines = 0;  // shown
    long long top = 0;      // first visible line, where the pane itself left it
};
long long AsmTopLine(const AsmScroll& scroll, long long first);
