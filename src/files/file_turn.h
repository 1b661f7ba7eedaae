// Several running editors share some files of the user's folder. Whoever reads such a file, changes what was read and
// writes it back, does so while it has its turn, so that it does not write over the changes of another. Any thread.
#pragma once

#include "base/handles.h"

class FileTurn {
public:
    // Waits until no other thread, of this process or another, has the turn of that name, for at most half a second. An
    // editor that has died gives its turn back.
    explicit FileTurn(const wchar_t* name);
    ~FileTurn();
    FileTurn(const FileTurn&) = delete;
    FileTurn& operator=(const FileTurn&) = delete;

private:
    UniqueHandle mutex_;
    bool taken_ = false;
};
