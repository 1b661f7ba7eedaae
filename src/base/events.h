// News that an area tells whoever shows it. An area knows nothing of the areas to its right: it tells the event, and the
// frame has connected at start-up who hears of it (app/events_win.cpp). Wishes that go to the right are commands, posted
// to the main window. There is no third way up. UI thread only.
#pragma once

// Identifies an open document for the whole run; never used again. 0: none.
using DocumentId = int;

struct Settings;

// Telling never fails and never waits. Until the frame connects an event it does nothing, so that a test may run an area
// alone.
template <typename... Arguments>
struct Event {
    void (*listener)(Arguments...) = [](Arguments...) {};
    void operator()(Arguments... arguments) const { listener(arguments...); }
    Event& operator=(void (*connected)(Arguments...)) {
        listener = connected;
        return *this;
    }
};

struct Events {
    // --- Documents. The record exists while an event names it, unless the event says otherwise.
    Event<DocumentId> documentOpened;       // a record with its editor and its text is in the row
    Event<DocumentId> documentActivated;    // its editor is shown now; 0: none is
    Event<DocumentId> documentChanged;      // label, modified mark, build mark or encoding
    Event<int, int> documentMoved;          // from this index in the row to that one
    Event<DocumentId> documentSaved;        // its file holds what the editor shows
    Event<DocumentId, int> documentClosed;  // the record is gone from this index in the row
    Event<DocumentId> textLeaving;          // its text is about to go, by a reload or with its editor
    Event<DocumentId> textArrived;          // its text is there, for the first time or again
    Event<const wchar_t*> folderChosen;     // the user opened a file in this folder (with its trailing backslash)

    Event<const Settings&> settingsChanged;  // what the record of the settings held before

    // --- Builds
    Event<const wchar_t*, const wchar_t*> programBuilt;  // source and listing; before the post-build command
    Event<bool, bool> buildEnded;                        // whether it succeeded, and whether it was a debug build

    Event<> debuggerChanged;  // a session began, stopped, ran on or ended

    // --- What the frame shows for everyone
    Event<const wchar_t*> statusText;      // first part of the status bar; stays until the next one
    Event<const wchar_t*> statusProgress;  // time and moving mark of what runs; empty: nothing
    Event<> layoutWanted;                  // panes were shown, hidden or resized: places them now
    Event<> refreshNow;                    // menu and toolbar at once: at the start and end of what runs
    Event<> refreshWanted;                 // menu, toolbar and position: shown anew once the message queue is empty
};
extern Events g_events;
