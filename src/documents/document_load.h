// Reading a file into a document's editor. UI thread only.
#pragma once

#include "documents/document.h"

// Reads `tab.path` into `tab.editor` and sets encoding and line ending. False when the file cannot be read or is not in the
// editor whole; the editor's text means nothing then.
bool TabLoadFile(DocumentTab& tab);
