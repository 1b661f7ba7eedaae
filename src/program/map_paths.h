// Which file a name in a line map means: one rule for the debugger and for whoever else shows source lines of a program.
// No state; any thread.
#pragma once

#include <string>
#include <string_view>

// What was compiled.
struct MapSource {
    std::wstring source;
    std::wstring staged;  // the copy that the compiler saw, empty when it saw the source itself or that is unknown
};

// A path of a line map: as it stands when absolute, else beside the source. Slashes become backslashes.
std::wstring MapPath(std::wstring_view path, std::wstring_view sourceFolder);

// A file that may be the compiler's copy of the source, by its name alone: the source's with an extension that copies get.
bool LooksLikeCopy(std::wstring_view path, std::wstring_view source);

// The absolute path of the file that a name in the map means, in whatever encoding the producer wrote it; null is none.
// `first`: the map begins with it. Copies of the source are the source. Empty for what names no file.
std::wstring PathOfMapFile(const char* name, bool first, const MapSource& compiled);
