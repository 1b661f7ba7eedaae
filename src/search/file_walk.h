// The files below a folder, for a search over all of them. Nothing here belongs to a window. A walk is made of steps, one
// for each folder, and several threads may take steps of the same walk.
#pragma once

#include "files/file_identity.h"
#include "files/ignore_rules.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

struct WalkRules {
    std::wstring root;             // absolute and normalised, with or without a backslash at its end
    std::vector<NameRule> only;    // the files that are taken; empty: all but the logs of builds
    std::vector<NameRule> except;  // files and folders that are left out
    bool subfolders = true;
    bool hidden = false;  // hidden and system files and folders too, and names that begin with a dot
    bool gitIgnore = true;
    ExcludedFolders excluded;  // of the open project
};

// --- file_walk.cpp: pure

struct WalkEntry {
    std::wstring name;
    bool isFolder = false;
    bool isHidden = false;  // hidden or system
};
// `folder` has its backslash; `scope` may be null.
bool WalkTakes(const WalkRules& rules, std::wstring_view folder, const WalkEntry& entry, const IgnoreScope* scope);

// --- file_walk_win.cpp: any thread

struct WalkedFile {
    std::wstring path;
    std::uint64_t size = 0;
    bool sizeKnown = false;      // not of a link, whose own size it would be
    std::uint64_t modified = 0;  // FILETIME
};

enum class WalkStep : std::uint8_t {
    Listed,   // a folder was listed; it may have had no files
    Waiting,  // other threads list the folders that are left: more may come
    Done,     // no folder is left
};

class FileWalk {
public:
    explicit FileWalk(WalkRules rules);
    // Lists one folder and appends the files that the rules take, in no certain order. `unreadable` gets the folder when it
    // could not be listed, and is emptied otherwise. `cancel` (may be null) ends a long listing early.
    WalkStep Next(std::vector<WalkedFile>* files, std::wstring* unreadable, const std::atomic<bool>* cancel = nullptr);

private:
    struct Folder {
        std::wstring path;  // with the backslash at its end
        std::shared_ptr<const IgnoreScope> ignore;
    };
    bool List(const Folder& folder, std::vector<WalkedFile>* files, std::vector<Folder>* folders,
              const std::atomic<bool>* cancel);
    bool MayFollow(const std::wstring& folder, const std::wstring& link);

    const WalkRules rules_;
    std::size_t rootLength_ = 0;  // characters, with the backslash
    std::mutex mutex_;            // guards what follows
    std::vector<Folder> folders_;
    int listing_ = 0;  // threads that list a folder
    bool started_ = false;
    std::vector<FileIdentity> followed_;  // the folders to which links have led
};
