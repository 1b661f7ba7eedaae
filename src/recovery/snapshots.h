// Keeps the text of unsaved documents in the folder of this run, so that a crash, a kill or a log-off loses a few seconds
// at most. A key costs nothing but a note; the text is copied in pauses, a piece at a time, and written by a worker. What
// is kept of a document goes when it is saved, taken back to what its file holds, or closed. UI thread only.
#pragma once

#include "base/events.h"

#include <windows.h>

#include <string>
#include <vector>

struct SCNotification;

void SnapshotsOnModified(DocumentId document, const SCNotification& change);  // SCN_MODIFIED
void SnapshotsOnChanged(DocumentId document);                                 // its modified mark may be another
void SnapshotsOnTextArrived(DocumentId document);
void SnapshotsOnClosed(DocumentId document);
void SnapshotsOnTimer();                 // TIMER_SNAPSHOTS
void SnapshotsOnWritten(WPARAM wParam);  // MSG_SNAPSHOT_WRITTEN

// Writes what is not written yet, at once and on this thread: the session ends, or the program crashes. Returns how many
// unsaved documents are kept.
int SnapshotsWriteNow();
// Files of an earlier run whose text the document has now. They go once the document has been kept or saved.
void SnapshotsTakeOver(DocumentId document, std::vector<std::wstring> files);
// The user has decided about every document: removes what this run has kept.
void SnapshotsEnd();
// The folder of this run with its backslash; empty while nothing was kept.
const std::wstring& SnapshotsFolder();
