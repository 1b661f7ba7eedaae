// Reads a file for a document: a small one at once, a large one piece by piece on a worker, with progress, into a
// Scintilla document of its own that the editor takes over when all is there. A file on the network is read on a worker
// whatever its size, because a share that went away answers after many seconds. UI thread only.
#pragma once

#include "base/handles.h"
#include "documents/document.h"
#include "documents/load_rules.h"
#include "files/file_progress.h"
#include "scintilla/document_loader.h"

#include <cstddef>
#include <memory>

// A file that has been read and is not shown yet.
struct LoadedFile {
    TextEncoding encoding = TextEncoding::Utf8;
    LineEnding lineEnding = LineEnding::CrLf;
    DiskForm form;
    bool plain = false;     // must be shown without colours, folding and word wrap
    HeapBlock<char> bytes;  // of a small file; null: `loader` has the text
    std::size_t length = 0;
    LoaderOwner loader;
    FileState onDisk;
};

// Begins to read a large file that will soon be opened, so that the rest of a start goes on meanwhile. Does nothing for
// any other file. DocumentRead takes the text over, if the file is still the one that was read. Returns the progress, null
// when nothing is read.
std::shared_ptr<const FileProgress> DocumentReadAhead(const wchar_t* path);
void DocumentReadAheadEnd();  // drops what was not taken
// Reads the file as `code`. `label` is its name for the progress.
LoadEnd DocumentRead(const wchar_t* path, const wchar_t* label, LoadedFile* file, SourceCode code = SourceCode::Guess);
// Sets what the record says about the file.
void DocumentNoteRead(DocumentTab& tab, const LoadedFile& file);
// Replaces the text of `tab.editor` by what was read, and sets what the record says about the file. False when the
// editor does not hold all of it; its text is then undefined.
bool DocumentShow(DocumentTab& tab, LoadedFile file);
