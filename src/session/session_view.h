// What a session's lines mean to the program: which settings they stand for, and what they do to an editor. Pure.
#pragma once

#include "documents/editor_message.h"
#include "session/session_text.h"
#include "settings/settings.h"

// What the header of a session says beside the settings.
struct SessionFrame {
    int activeTab = 0;
    bool showOutput = false;
    bool showAsmPane = false;
    bool splitHorizontal = false;
    bool fullScreen = false;
    bool operator==(const SessionFrame&) const = default;
};

SessionHeader SessionHeaderOf(const Settings& settings, const SessionFrame& frame);

// One line of the header into the settings or the frame.
void SessionApplyHeader(const SessionItem& item, Settings& settings, SessionFrame& frame);

// What one line of a file's section does to its editor; empty for a path and for a rule of a breakpoint.
EditorMessages SessionEditorMessages(const SessionItem& item);
