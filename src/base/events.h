// News that an area tells whoever shows it. An area knows nothing of the areas to its right: it calls the event, and the
// frame has connected at start-up who is to hear of it (app/events_win.cpp). Wishes that go to the right are commands,
// posted to the main window. There is no third way up. UI thread only.
#pragma once

// Identifies an open document for the whole run; never used again. 0: none.
using DocumentId = int;

struct Settings;

// Events never fail and never wait. Until the frame connects them they do nothing, so that a test may run an area alone.
struct Events {
    // --- Documents. A record exists before the first and after the last event that names it, unless the event says so.
    void (*documentOpened)(DocumentId document) = [](DocumentId) {
    };  // a record with its editor and its text is in the row
    void (*documentActivated)(DocumentId document) = [](DocumentId) {};  // its editor is shown now; 0: none is
    void (*documentChanged)(DocumentId document) = [](DocumentId) {};    // label, modified mark, build mark or encoding
    void (*documentMoved)(int from, int to) = [](int, int) {};           // indexes in the row
    void (*documentSaved)(DocumentId document) = [](DocumentId) {};      // its file holds what the editor shows
    void (*documentClosed)(DocumentId document, int index) = [](DocumentId, int) {
    };  // the record is gone, `index` was its place
    void (*textLeaving)(DocumentId document) = [](DocumentId) {
    };  // its text is about to go, by a reload or with its editor
    void (*textArrived)(DocumentId document) = [](DocumentId) {};  // its text is there, for the first time or again

    // The user opened or saved a file in this folder (with its trailing backslash).
    void (*folderChosen)(const wchar_t* folder) = [](const wchar_t*) {};

    // The record of the settings was changed; `before` is what it held.
    void (*settingsChanged)(const Settings& before) = [](const Settings&) {};

    // --- Builds
    void (*programBuilt)(const wchar_t* source, const wchar_t* listing) = [](const wchar_t*, const wchar_t*) {
    };  // before the post-build command
    void (*buildEnded)(bool success, bool debug) = [](bool, bool) {};

    void (*debuggerChanged)() = [] {};  // a session began, stopped, ran on or ended

    // --- What the frame shows for everyone
    void (*statusText)(const wchar_t* text) = [](const wchar_t*) {
    };  // first part of the status bar; stays until the next one
    void (*statusProgress)(const wchar_t* text) = [](const wchar_t*) {
    };                                // time and moving mark of what runs; empty: nothing
    void (*layoutWanted)() = [] {};   // panes were shown, hidden or resized: places them now
    void (*refreshNow)() = [] {};     // menu and toolbar, before work that keeps the message queue from emptying
    void (*refreshWanted)() = [] {};  // menu, toolbar and position: shown anew once the message queue is empty
};
extern Events g_events;
