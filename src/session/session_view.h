// Turns the values of a session into settings and editor messages, and settings into a header. Pure.
#pragma once

#include "debugui/breakpoints.h"
#include "editor/editor_message.h"
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

// Writes one value of the header into the settings or the frame. A number out of range is limited as the same setting
// in the settings file is, because the settings are saved after a restore; a split that no window can have is left out.
void SessionApplyHeader(const SessionItem& item, Settings& settings, SessionFrame& frame);

// The breakpoints of the document that a session must describe: those that are disabled or do not stop at each hit.
std::vector<SessionBreakpoint> SessionRulesOf(std::span<const UserBreakpoint> breakpoints, DocumentId document);

// Tells which files of a session could not be opened, and asks whether the session should keep them.
std::wstring MissingFilesQuestion(std::span<const SessionFile> missing);

// The messages that apply one value of a file section to its editor. Empty for Path and BreakpointRule.
EditorMessages SessionEditorMessages(const SessionItem& item);
