// The file that a document belongs to, and how its text is written there. Pure.
#pragma once

#include "base/bounded_text.h"
#include "files/text_encoding.h"

struct FileBinding {
    wchar_t path[kPathCapacity] = {};  // empty while untitled
    wchar_t label[kLabelCapacity] = {};
    TextEncoding encoding = TextEncoding::Utf8;
    LineEnding lineEnding = LineEnding::CrLf;
    bool hasFile = false;  // `path` is a file on disk
    DiskForm form;
    bool formConfirmed = false;  // the user has said that the file stays UTF-16
    bool chosen = false;         // the user has chosen encoding or line ending, so they go with the text to a new name
    SourceCode readAs = SourceCode::Guess;  // as the user wants its bytes to be read
};

// The binding for a save under a new name: always `newFiles` with CRLF, whatever the document had before, unless the user
// has chosen another encoding or line ending for it. What the text is on the disk beside that (UTF-16, NUL bytes) stays
// as `before` has it. Defined in save_rules.cpp.
FileBinding BindingForNewName(const wchar_t* path, const FileBinding& before, TextEncoding newFiles);
