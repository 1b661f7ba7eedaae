// The file that a document is bound to, and how its text is written there. Pure.
#pragma once

#include "base/bounded_text.h"
#include "files/text_encoding.h"

struct FileBinding {
    wchar_t path[kPathCapacity] = {};  // empty while untitled
    wchar_t label[kLabelCapacity] = {};
    TextEncoding encoding = TextEncoding::Utf8;
    LineEnding lineEnding = LineEnding::CrLf;
    bool hasFile = false;  // bound to a file on disk
};

// What a document is bound to once it is saved under a new name: always ANSI with CRLF, whatever it was before.
FileBinding BindingForNewName(const wchar_t* path);
