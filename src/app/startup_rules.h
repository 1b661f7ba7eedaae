// What the editor opens when it starts. Pure.
#pragma once

#include <cstdint>

enum class StartupStep : std::uint8_t {
    OfferSession,  // the session that was saved automatically, if the user wants it; the first step of every start
    Workspace,     // the workspace file beside the executable, if there is one
    RecentFiles,   // the newest of them that still exist
    NewDocument,
    Done,
};

// The step after `step`. `anyDocument`: one is open now, from the command line or by a step.
StartupStep StartupStepAfter(StartupStep step, bool anyDocument, bool restoreLastSession);
