// The part of the rule that asks the system: encodings, "..", and whether a copy is gone.
#include "program/map_paths.h"

#include "base/bounded_text.h"
#include "base/decode.h"
#include "base/handles.h"
#include "base/path.h"
#include "files/file_io.h"

#include <cstring>

std::wstring PathOfMapFile(const char* name, bool first, const MapSource& compiled) {
    if (name == nullptr) return {};
    const HeapBlock<wchar_t> decoded(DecodeCompilerText(name, std::strlen(name)));
    if (!decoded) return {};
    std::wstring path = MapPath(decoded.get(), FolderOf(compiled.source));
    wchar_t whole[kPathCapacity];
    if (PathNormalizeInput(path.c_str(), whole, kPathCapacity)) path = whole;
    if (path.empty() || path.ends_with(L'\\')) return {};
    if (compiled.source.empty()) return path;
    if (!compiled.staged.empty() && PathEqualsIgnoreCase(path, compiled.staged)) return compiled.source;
    // The file of the first line is what was compiled, under whatever name it is gone now.
    return (first || LooksLikeCopy(path, compiled.source)) && !FileExists(path.c_str()) ? compiled.source : path;
}
