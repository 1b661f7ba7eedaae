// The session and workspace in use. UI thread only.
#pragma once

#include "base/bounded_text.h"
#include "base/events.h"
#include "session/session_text.h"

#include <map>
#include <vector>

struct SessionState {
    wchar_t sessionPath[kPathCapacity] = {};    // current named session; empty: none
    wchar_t workspacePath[kPathCapacity] = {};  // current workspace; empty: the default beside the executable
    bool splitHorizontal = false;               // saved and restored with sessions
    bool fullScreen = false;                    // saved and restored with sessions
    bool starting = true;                       // until start-up is complete
    int restores = 0;                           // restores of a session or a workspace that are running
    bool autoSaveLost = false;  // the auto-saved session could not be read at start, so it is not overwritten
    // Of documents that have not been shown since a restore: the lines of their sections.
    std::map<DocumentId, std::vector<SessionItem>> unshown;
    // Files of the session or the workspace in use that could not be opened. They are saved with it again.
    std::vector<SessionFile> missing;
};
// A part of `g_app` (app/app_state.h).
extern SessionState& g_session;
