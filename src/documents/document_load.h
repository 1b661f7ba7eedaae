// Reading a file into a document's editor. UI thread only.
#pragma once

#include "documents/document.h"

// Reads `tab.path` into its editor and sets encoding and line ending. False when the file cannot be read.
bool TabLoadFile(DocumentTab& tab);
