// The steps by which the editor opens documents when it starts, and what it asks when it ends. Pure.
#pragma once

#include "documents/row_rules.h"

#include <cstdint>
#include <span>

enum class StartupStep : std::uint8_t {
    OfferSession,  // the auto-saved session, if the user wants it; the first step
    Workspace,     // the workspace file beside the executable, if there is one
    RecentFiles,   // the newest files of the list that still exist
    NewDocument,   // an empty document
    Done,
};

// The step after `step`. `anyDocument`: a document is open now, from the command line or an earlier step. Workspace and
// RecentFiles are done only with `restoreLastSession`.
StartupStep StartupStepAfter(StartupStep step, bool anyDocument, bool restoreLastSession);

// --- The end
// The next document to ask about before everything is given up: the first with changes that is not among those asked
// already. 0: none is left. A question may close, save or change other documents, so the row is read again after each.
DocumentId NextToAskAbout(std::span<const RowEntry> row, std::span<const DocumentId> asked);
