// Which of the texts that earlier runs have left are offered. Pure.
#pragma once

#include <cstdint>
#include <string>

struct LeftoverOrigin {
    std::wstring path;       // of the document's file; empty: it has none
    std::wstring run;        // RecoveryRun() of the process that wrote it; empty: not known
    std::uint64_t time = 0;  // when it was written
    bool ofSave = false;     // the copy of a save, which holds the document as it was then
};

// True when the same run has kept an earlier state of the same document, which nobody wants beside the later one. A kill
// within a save leaves both.
bool LeftoverReplaces(const LeftoverOrigin& later, const LeftoverOrigin& earlier);
