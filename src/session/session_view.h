// Turns the values of a session into settings and editor messages, and settings into a header. Pure.
#pragma once

#include "documents/editor_message.h"
#include "session/session_text.h"
#include "settings/settings.h"

// The values of the header that are no settings.
struct SessionFrame {
    int activeTab = 0;
    bool showOutput = false;
    bool showAsmPane = false;
    bool splitHorizontal = false;
    bool fullScreen = false;
    bool operator==(const SessionFrame&) const = default;
};

SessionHeader SessionHeaderOf(const Settings& settings, const SessionFrame& frame);

// Writes one value of the header into the settings or the frame.
void SessionApplyHeader(const SessionItem& item, Settings& settings, SessionFrame& frame);

// The messages that apply one value of a file section to its editor. Empty for Path and BreakpointRule.
EditorMessages SessionEditorMessages(const SessionItem& item);
