// What every restore of a session or a workspace begins with. UI thread only.
#pragma once

// Exists while a session or a workspace is being restored: neither is saved meanwhile.
struct RestoreScope {
    RestoreScope();
    ~RestoreScope();
    RestoreScope(const RestoreScope&) = delete;
    RestoreScope& operator=(const RestoreScope&) = delete;
};

// Asks about each modified document, and then closes all. A document that the user does not want to close is closed too,
// because a session starts without documents, but its text is first written to a recovery copy and the user is told
// where. False when a copy could not be written: nothing is closed then, and the session must not be loaded.
bool CloseEveryTab();
