// One open document: what a tab stands for. Records live in `g_documents.tabs`, in the order of the row. Adding, moving or
// removing one moves the others: whoever remembers a document remembers its id. UI thread only.
#pragma once

#include "base/events.h"
#include "documents/file_binding.h"

#include <windows.h>

#include <cstdint>

enum class BuildMark : std::uint8_t { None, Error, Ok };  // what the last build said of this document

struct DocumentTab : FileBinding {
    DocumentId id = 0;             // of this document and no other for the whole run
    HWND editor = nullptr;         // Scintilla child of the main window, owned by the document
    std::uint32_t compilerId = 0;  // compiler whose dialect colours this document
    bool modified = false;
    BuildMark buildMark = BuildMark::None;
};
