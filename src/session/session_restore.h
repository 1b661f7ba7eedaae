// The course of restoring a session: its lines in turn, against documents behind an interface. Pure.
#pragma once

#include "session/session_view.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

// The documents as a restore sees them. `index` is a document's place in the row.
struct SessionTarget {
    std::function<bool(const std::string& path)> open;  // opens a file (UTF-8) without showing it; false: not possible
    std::function<bool(int index)> has;
    // Takes a line of a document whose file is read later; false: the document has its text.
    std::function<bool(int index, const SessionItem& item)> keep;
    std::function<void(int index, const EditorMessage& message)> send;
    std::function<void(int index, const SessionBreakpoint& rule)> setRule;  // of a breakpoint
    std::function<void()> pin;                                              // the document that was opened last
    std::function<void(const SessionFrame& frame)> showFrame;               // after a value of the frame has changed
};

// Applies the lines to the settings and the documents. `frame` is the present one, and has the restored values
// afterwards; its active tab is the first one when the session names none. Returns the files that could not be opened,
// with their places.
//
// The number of a file section decides which document gets its values, not the document that its "Path" opened. When a
// file is gone, the values of the later sections therefore go to other documents.
std::vector<SessionFile> SessionRestore(std::span<const SessionItem> items, const SessionTarget& target,
                                        Settings& settings, SessionFrame& frame);

// The file sections of a session: those of the open documents, and after them the missing files, so that the places of
// the open ones keep their tabs while these stay away. `isOpen` tells whether a missing file is open by now.
std::vector<SessionFile> SessionFilesToSave(std::vector<SessionFile> open, std::span<const SessionFile> missing,
                                            const std::function<bool(const std::string& path)>& isOpen);
