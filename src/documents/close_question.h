// One question about the changes of documents that are to be closed by a command that closes all it can. Modal. UI thread only.
#pragma once

#include "base/events.h"

#include <cstdint>
#include <string>
#include <vector>

struct CloseRow {
    DocumentId document = 0;
    std::wstring label;
    std::wstring folder;  // empty: the document has no file
    bool ticked = true;   // it is to be saved
};

enum class CloseAnswer : std::uint8_t { Cancel, Save, Discard };

// Shows the rows with check boxes. With Save, `ticked` tells which are to be saved; the changes of the others, and with
// Discard those of all, are given up. A self-test run discards.
CloseAnswer CloseQuestionAsk(std::vector<CloseRow>& rows);
