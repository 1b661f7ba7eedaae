// One open document, which has one tab. The records are in `g_documents.tabs`, in the order of the tabs. Adding, moving
// or removing a record changes the index and the address of others, so code that remembers a document keeps its id. UI
// thread only.
#pragma once

#include "base/events.h"
#include "documents/file_binding.h"
#include "documents/outside_rules.h"
#include "files/disk_file.h"

#include <windows.h>

#include <cstdint>

enum class BuildMark : std::uint8_t { None, Error, Ok };  // result of the last build of this document

struct DocumentTab : FileBinding {
    DocumentId id = 0;  // unique; not used again during the run
    // Scintilla window, child of the main window; TabBarRemove destroys it. Null: the file of a session, which is read
    // when it is first shown (TabBarRead).
    HWND editor = nullptr;
    std::uint32_t compilerId = 0;  // the compiler whose dialect decides the colours
    bool modified = false;
    bool mustSave = false;        // its file may not hold its text, so only a save makes it unmodified
    std::uint64_t lastShown = 0;  // counts the documents that were shown; 0: never
    FileState onDisk;             // its file, when it was last read or written; unknown: it is not compared
    OutsideChange outside;        // what another program has done to its file since
    std::uint32_t askedIn = 0;  // the stay in the program (documents/outside.h) in which the user was asked; 0: not yet
    bool answered = false;      // and did not put it off
    BuildMark buildMark = BuildMark::None;  // Ok goes with the first change of the text
    bool headerShown = false;               // the sticky header has its place above the editor
    bool building = false;                  // a build of it runs
    bool debugged = false;                  // the program that is debugged was built from it
    bool pinned = false;  // stands with the other pinned ones before the rest, and stays when others are closed
};
