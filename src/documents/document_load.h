// Reads a file into a document's editor. UI thread only.
#pragma once

#include "documents/document.h"

// Reads the file `tab.path` into `tab.editor` and sets `tab.encoding` and `tab.lineEnding`. Returns false when the file
// cannot be read or the editor does not hold all of it; the editor's text is then undefined.
bool TabLoadFile(DocumentTab& tab);
