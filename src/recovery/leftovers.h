// What earlier runs have left: the texts of documents that were not saved when a run ended, and the copies of saves that
// failed. UI thread only.
#pragma once

#include "recovery/snapshot_note.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

struct Leftover {
    std::wstring text;                // path of its text
    std::vector<std::wstring> files;  // all of its files, and those of texts that are not offered beside it
    std::wstring run;                 // RecoveryRun() of its writer; empty: not known
    SnapshotNote note;
    bool asWritten = false;  // the text has the encoding of its file, instead of UTF-8
    FILETIME time = {};      // when it was written
    std::uint64_t size = 0;  // bytes
};

// Newest first, without the texts that their files hold by now, which are deleted. The folders of runs that have ended
// belong to this process from the first call on. A call that finds nothing makes no folder and costs two looks into a
// folder.
std::vector<Leftover> LeftoversFind();
// The text as UTF-8. False when it cannot be read.
bool LeftoverRead(const Leftover& leftover, std::string* utf8);  // any thread
// Deletes its files: the user does not want it, or it has been kept elsewhere.
void LeftoverDelete(const Leftover& leftover);
// Gives up the folders of earlier runs, and removes those that are empty.
void LeftoversEnd();
