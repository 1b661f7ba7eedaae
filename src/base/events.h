// Events by which an area reports what has happened. An area does not know the areas to its right: it raises an event,
// and the frame has connected the listener at start-up (app/events_win.cpp). When an area wants something done by an
// area to its right, it posts a command to the main window. There is no third way. UI thread only.
#pragma once

#include <string_view>

// Identifies an open document. A number is not used again during the run. 0: no document.
using DocumentId = int;

struct Settings;

// Raising an event calls its listener at once. An event that is not connected does nothing, so that a test can run an
// area alone.
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
    // --- Documents. The record of the document exists while the listener runs, unless the event says otherwise.
    Event<DocumentId> documentOpened;       // a record with its editor and its text is in the row
    Event<bool> documentsComing;            // true: many are about to be opened; false: they are in the row
    Event<DocumentId> documentActivated;    // its editor is now the one that is shown; 0: none is shown
    Event<DocumentId> documentChanged;      // its label, modified mark, build mark or encoding
    Event<int, int> documentMoved;          // the index in the row before and after
    Event<DocumentId> documentSaved;        // its text has been saved to its file
    Event<DocumentId> documentClosing;      // its editor and its text are still there
    Event<DocumentId, int> documentClosed;  // its record is gone; the index that it had in the row
    Event<DocumentId> textLeaving;  // its text is about to be discarded by a reload or because its editor closes
    Event<DocumentId> textArrived;  // its text has been loaded, for the first time or again
    Event<DocumentId, const wchar_t*> documentNotice;  // something unusual about its file, as a sentence
    // Whether the word names a variable or a procedure at that line (from 0) of the document; the listener sets the flag if
    // it does.
    Event<DocumentId, int, std::string_view, bool*> variableAsked;
    // A mark of a line was put on another line: its handle before and after. -1 after: it is off, and may come back.
    Event<DocumentId, int, int> markerRenewed;
    // A file, or a folder with files, has got another name, which the open documents have already: the paths before and
    // after. true: it was saved under the new name, and the old file is still there.
    Event<const wchar_t*, const wchar_t*, bool> fileRenamed;
    Event<const wchar_t*> folderChosen;  // the user opened a file in this folder (with its trailing backslash)
    // The user opened this project file, an absolute path. The listener sets the flag when the project is open then.
    Event<const wchar_t*, bool*> projectChosen;
    // Whether the user's choice of a compiler stays when he opens this file; the listener sets the flag if it does.
    Event<const wchar_t*, bool*> compilerChoiceAsked;
    Event<> projectChanged;                    // a project was opened or closed, or what it gives to builds has changed
    Event<const wchar_t*> searchFolderWanted;  // the user wants to search in the files of this folder

    Event<const Settings&> settingsChanged;  // the settings as they were before the change

    // --- Builds
    Event<const wchar_t*, const wchar_t*> programBuilt;  // paths of source and listing; before the post-build command
    Event<bool, bool> buildEnded;                        // whether it succeeded, and whether it was a debug build

    Event<> aiReplacementChanged;  // a replacement by the assistant waits, or no longer does

    Event<> debuggerChanged;  // a debug session began or ended, or its program stopped or continued

    // --- What the frame shows for everyone
    Event<const wchar_t*> statusText;  // first part of the status bar; shown until the next text
    // The same for a text about one document: it goes when another one is shown. An empty text takes back only a text
    // about that document.
    Event<DocumentId, const wchar_t*> documentStatus;
    Event<const wchar_t*> statusProgress;  // elapsed time and moving mark of a running build; empty: none runs
    Event<const wchar_t*> noticeWanted;    // what the user must be told in a message box, once none is open
    Event<> layoutWanted;                  // panes were shown, hidden or resized and must be placed at once
    Event<> refreshNow;                    // update menu and toolbar at once: a build or a debug session begins or ends
    Event<> refreshWanted;                 // update menu, toolbar and position once the message queue is empty
};
extern Events g_events;
