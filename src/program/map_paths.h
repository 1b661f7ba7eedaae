// Finds the file that a name in a line map means, for the debugger and for the ASM pane. No state; any thread.
#pragma once

#include <string>
#include <string_view>

// The source that was compiled.
struct MapSource {
    std::wstring source;
    std::wstring staged;  // the copy that the compiler read; empty: it read the source, or unknown
};

// Returns an absolute path unchanged, any other path joined to `sourceFolder`. Slashes become backslashes.
std::wstring MapPath(std::wstring_view path, std::wstring_view sourceFolder);

// True when the path may be the compiler's copy of the source: the source's name with an extension that copies get.
bool LooksLikeCopy(std::wstring_view path, std::wstring_view source);

// Returns the absolute path of the file that a name in a map means. The name may be in UTF-8 or the ANSI code page; it
// may be null. `first`: it is the file of the map's first record. A copy of the source gives the source. Empty when the
// name means no file.
std::wstring PathOfMapFile(const char* name, bool first, const MapSource& compiled);
