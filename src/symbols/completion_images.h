// The small images before the rows of the completion list. UI thread only.
#pragma once

#include <windows.h>

// Gives the editor one image for each RowKind, as high as its text; the image's number is that of the kind.
void CompletionImagesPrepare(HWND editor);
