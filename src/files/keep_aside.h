// Keeps a file of the editor's own that is damaged before it is written anew. Any thread.
#pragma once

#include <string>

// Copies the file to a name beside it: ".bad", or ".bad2" to ".bad9" when that is taken by another one, and then the last
// of these. Returns the name; empty, with GetLastError(), when no copy could be made.
std::wstring KeepAside(const std::wstring& path);
