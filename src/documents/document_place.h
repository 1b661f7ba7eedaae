// Places of a document that are told in bytes of its file. UI thread only.
#pragma once

#include "documents/document.h"

// The position of a column of the line in the document's file: `column` counts its bytes from 0 in the file's own
// encoding. A line or a column outside the text gives the nearest one.
LRESULT CaretPositionOfFileColumn(const DocumentTab& document, LRESULT line, LRESULT column);
