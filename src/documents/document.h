// One open document: what a tab stands for. Records live in `g_documents.tabs`, in tab order; adding or removing a tab
// moves them, so hold an index, not a pointer, across such a call. UI thread only.
#pragma once

#include "base/bounded_text.h"
#include "base/events.h"
#include "files/text_encoding.h"

#include <windows.h>

#include <cstdint>

enum class BuildMark : std::uint8_t { None, Error, Ok };  // what the last build said of this document

struct DocumentTab {
    DocumentId id = 0;                 // of this document and no other for the whole run
    HWND editor = nullptr;             // Scintilla child of the main window, owned by the tab
    wchar_t path[kPathCapacity] = {};  // empty while untitled
    wchar_t label[kLabelCapacity] = {};
    std::uint32_t compilerId = 0;  // compiler whose dialect colours this document
    TextEncoding encoding = TextEncoding::Utf8;
    LineEnding lineEnding = LineEnding::CrLf;
    bool modified = false;
    bool hasFile = false;  // bound to a file on disk
    BuildMark buildMark = BuildMark::None;
};
