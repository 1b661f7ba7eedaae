// The steps by which the editor opens documents when it starts. Pure.
#pragma once

#include <cstdint>

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
