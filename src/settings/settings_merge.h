// Several running editors, or an editor and a person with a text editor, share one settings file. A save writes what this
// run has changed and leaves the rest as the file has it now. Pure.
#pragma once

#include "settings/settings_schema.h"

#include <cstddef>
#include <vector>

// What the settings were when they were last read or written: enough to tell what has changed since.
struct SettingsMark {
    struct Row {
        std::size_t value = 0;             // hash of a text or a number
        std::vector<std::size_t> entries;  // hashes of the texts of a list
    };
    std::vector<Row> rows;  // in the order of SettingRows(); the recent sessions follow
};

SettingsMark MarkOf(const Settings& settings);

// Takes into `ours` what `theirs`, the settings of the file, has and this run has not changed since the mark. Lists of
// recent things are joined: ours first, then what others have added; what was taken out of ours does not come back.
void MergeSettings(Settings& ours, const SettingsMark& mark, const Settings& theirs);

// Copies the lists of recent files and sessions.
void CopyRecentLists(Settings& to, const Settings& from);
